#include "QVTestKWin.h"

#include <QDeadlineTimer>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QThread>

#include <signal.h>
#include <unistd.h>

namespace
{

constexpr int startDeadlineMilliseconds = 30000;
const QString installedKWin = QStringLiteral("/usr/bin/kwin_wayland");

} // namespace

QString QVTestKWin::missingProgram()
{
    return QFileInfo::exists(installedKWin) ? QString() : QStringLiteral("kwin_wayland");
}

std::unique_ptr<QVTestKWin> QVTestKWin::start(int outputCount, FakeInput fakeInput, double scale, QString *error)
{
    std::unique_ptr<QVTestKWin> kwin(new QVTestKWin);
    const QDir directory(kwin->m_directory.path());
    const QString runtime = kwin->runtimeDirectory();
    if (!kwin->m_directory.isValid() || !directory.mkpath(QStringLiteral("runtime"))
        || !QFile::setPermissions(runtime, QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner)
        || !directory.mkpath(QStringLiteral("home")) || !directory.mkpath(QStringLiteral("data/applications"))) {
        *error = QStringLiteral("cannot make the temporary folders");
        return nullptr;
    }
    if (fakeInput == FakeInput::Granted && !kwin->writeDesktopEntry(error))
        return nullptr;
    // The installed binary carries a file capability that containers refuse to exec; a copy has none.
    const QString program = directory.filePath(QStringLiteral("kwin_wayland"));
    if (!QFile::copy(installedKWin, program)
        || !QFile::setPermissions(program, QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner)) {
        *error = QStringLiteral("cannot copy %1").arg(installedKWin);
        return nullptr;
    }

    QProcessEnvironment environment;
    environment.insert(QStringLiteral("PATH"), QProcessEnvironment::systemEnvironment().value(QStringLiteral("PATH")));
    environment.insert(QStringLiteral("XDG_RUNTIME_DIR"), runtime);
    environment.insert(QStringLiteral("HOME"), directory.filePath(QStringLiteral("home")));
    environment.insert(QStringLiteral("XDG_DATA_HOME"), directory.filePath(QStringLiteral("data")));
    environment.insert(QStringLiteral("QT_QPA_PLATFORM"), QStringLiteral("offscreen"));
    kwin->m_kwin.setProcessEnvironment(environment);
    kwin->m_kwin.setWorkingDirectory(directory.path());
    kwin->m_kwin.setChildProcessModifier([] { setsid(); });
    kwin->m_kwin.setStandardOutputFile(directory.filePath(QStringLiteral("kwin.log")));
    kwin->m_kwin.setStandardErrorFile(directory.filePath(QStringLiteral("kwin.log")), QIODevice::Append);
    kwin->m_kwin.start(program,
        { QStringLiteral("--virtual"), QStringLiteral("--socket"), kwin->socketName(), QStringLiteral("--width"),
            QStringLiteral("1280"), QStringLiteral("--height"), QStringLiteral("800"),
            QStringLiteral("--no-lockscreen"), QStringLiteral("--no-kactivities"), QStringLiteral("--output-count"),
            QString::number(outputCount), QStringLiteral("--scale"), QString::number(scale) });
    if (!kwin->m_kwin.waitForStarted(startDeadlineMilliseconds)) {
        *error = QStringLiteral("cannot start kwin_wayland: %1").arg(kwin->m_kwin.errorString());
        return nullptr;
    }
    if (!kwin->waitForSocket(error))
        return nullptr;
    return kwin;
}

QVTestKWin::~QVTestKWin()
{
    if (m_kwin.state() == QProcess::NotRunning)
        return;
    // KWin leads a group of its own (setsid): the group goes with it.
    const pid_t group = pid_t(m_kwin.processId());
    ::kill(-group, SIGTERM);
    if (!m_kwin.waitForFinished(5000)) {
        ::kill(-group, SIGKILL);
        m_kwin.waitForFinished(5000);
    }
}

bool QVTestKWin::writeDesktopEntry(QString *error) const
{
    // KWin compares the entry's Exec with /proc/PID/exe of the client: the test itself.
    const QString executable = QFileInfo(QStringLiteral("/proc/self/exe")).symLinkTarget();
    QFile entry(m_directory.filePath(QStringLiteral("data/applications/org.corvane.Test.desktop")));
    const QByteArray contents = "[Desktop Entry]\nType=Application\nName=Corvane test\nExec="
        + QFile::encodeName(executable) + "\nX-KDE-Wayland-Interfaces=org_kde_kwin_fake_input\n";
    if (!entry.open(QIODevice::WriteOnly) || entry.write(contents) != contents.size()) {
        *error = QStringLiteral("cannot write %1").arg(entry.fileName());
        return false;
    }
    return true;
}

bool QVTestKWin::waitForSocket(QString *error)
{
    // The socket exists before KWin has made its outputs; the probe waits for those.
    const QString socket = QDir(runtimeDirectory()).filePath(socketName());
    QDeadlineTimer deadline(startDeadlineMilliseconds);
    while (!QFileInfo::exists(socket)) {
        if (m_kwin.state() == QProcess::NotRunning || deadline.hasExpired()) {
            *error = QStringLiteral("kwin_wayland did not come up:\n%1").arg(log());
            return false;
        }
        QThread::msleep(20);
    }
    return true;
}

QProcessEnvironment QVTestKWin::clientEnvironment() const
{
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.insert(QStringLiteral("XDG_RUNTIME_DIR"), runtimeDirectory());
    environment.insert(QStringLiteral("WAYLAND_DISPLAY"), socketName());
    environment.remove(QStringLiteral("DISPLAY"));
    return environment;
}

QString QVTestKWin::log() const
{
    QFile file(m_directory.filePath(QStringLiteral("kwin.log")));
    return file.open(QIODevice::ReadOnly) ? QString::fromUtf8(file.readAll().right(4000)) : QString();
}
