#include "QVSelfRestart.h"

#include <QCoreApplication>
#include <QDir>
#include <QProcess>

namespace
{

QString &overriddenHelperPath()
{
    static QString path;
    return path;
}

} // namespace

QString QVSelfRestart::helperPath()
{
    if (!overriddenHelperPath().isEmpty())
        return overriddenHelperPath();
    const QString fromEnvironment = qEnvironmentVariable("CORVANE_RESTART_HELPER");
    if (!fromEnvironment.isEmpty())
        return fromEnvironment;
    return QDir(QCoreApplication::applicationDirPath()).filePath(QStringLiteral("corvane-restart"));
}

void QVSelfRestart::setHelperPath(const QString &path)
{
    overriddenHelperPath() = path;
}

QStringList QVSelfRestart::helperArguments()
{
    // The arguments carry --settings over; the environment (CORVANE_SETTINGS) is inherited.
    return QStringList { QCoreApplication::applicationFilePath(), QString::number(QCoreApplication::applicationPid()) }
    + QCoreApplication::arguments().mid(1);
}

bool QVSelfRestart::launchRestartHelper(QString *error)
{
    const QString helper = helperPath();
    QProcess process;
    process.setProgram(helper);
    process.setArguments(helperArguments());
    process.setStandardInputFile(QProcess::nullDevice());
    if (!process.startDetached()) {
        if (error)
            *error = QStringLiteral("cannot start %1: %2").arg(helper, process.errorString());
        return false;
    }
    return true;
}
