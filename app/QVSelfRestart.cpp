#include "QVSelfRestart.h"

#include <QCoreApplication>
#include <QDir>
#include <QProcess>

bool QVSelfRestart::launchRestartHelper(QString *error)
{
    QProcess process;
    process.setProgram(QDir(QCoreApplication::applicationDirPath()).filePath(QStringLiteral("corvane-restart")));
    // BINARY PID ARGUMENT...: the arguments carry --settings over; the environment
    // (CORVANE_SETTINGS) is inherited.
    process.setArguments(
        QStringList { QCoreApplication::applicationFilePath(), QString::number(QCoreApplication::applicationPid()) }
        + QCoreApplication::arguments().mid(1));
    process.setStandardInputFile(QProcess::nullDevice());
    if (!process.startDetached()) {
        if (error)
            *error = QStringLiteral("cannot start %1: %2").arg(process.program(), process.errorString());
        return false;
    }
    return true;
}
