#include "QVCorvaneProcess.h"

#include "QVTestXClient.h"

#include <QDeadlineTimer>
#include <QFile>
#include <QJsonDocument>
#include <QTest>
#include <QThread>

#include <csignal>

namespace
{
constexpr int readyDeadlineMilliseconds = 20000;
}

namespace
{

QProcessEnvironment x11Environment(const QString &displayName)
{
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.insert(QStringLiteral("DISPLAY"), displayName);
    environment.remove(QStringLiteral("WAYLAND_DISPLAY"));
    return environment;
}

} // namespace

QVCorvaneProcess::QVCorvaneProcess(const QString &displayName, const QString &settingsPath)
    : QVCorvaneProcess(x11Environment(displayName), settingsPath)
{
}

QVCorvaneProcess::QVCorvaneProcess(const QProcessEnvironment &environment, const QString &settingsPath)
    : m_settingsPath(settingsPath)
{
    QProcessEnvironment own = environment;
    own.remove(QStringLiteral("CORVANE_SETTINGS"));
    own.insert(QStringLiteral("QT_LOGGING_RULES"), QStringLiteral("*.debug=false"));
    m_process.setProcessEnvironment(own);
    m_process.setProgram(QStringLiteral(CORVANE_BINARY));
    m_process.setArguments({ QStringLiteral("--settings"), settingsPath });
}

QVCorvaneProcess::~QVCorvaneProcess()
{
    if (isRunning())
        stop(SIGKILL);
}

void QVCorvaneProcess::setEnvironmentVariable(const QString &name, const QString &value)
{
    QProcessEnvironment environment = m_process.processEnvironment();
    environment.insert(name, value);
    m_process.setProcessEnvironment(environment);
}

void QVCorvaneProcess::joinSessionBus(const QString &address, bool accessible)
{
    setEnvironmentVariable(QStringLiteral("DBUS_SESSION_BUS_ADDRESS"), address);
    if (accessible) // Qt 6.4 looks for a screen reader only when told to
        setEnvironmentVariable(QStringLiteral("QT_LINUX_ACCESSIBILITY_ALWAYS_ON"), QStringLiteral("1"));
}

bool QVCorvaneProcess::start()
{
    m_process.start();
    if (!m_process.waitForStarted(readyDeadlineMilliseconds))
        return false;
    QDeadlineTimer deadline(readyDeadlineMilliseconds);
    while (!deadline.hasExpired() && isRunning()) {
        if (log().contains(QLatin1String("started on ")))
            return true;
        m_process.waitForReadyRead(50);
    }
    return false;
}

int QVCorvaneProcess::stop(int signalNumber)
{
    // Never kill(0, ...): that would be the test's whole process group.
    if (isRunning() && m_process.processId() > 0) {
        ::kill(pid_t(m_process.processId()), signalNumber);
        if (!m_process.waitForFinished(15000))
            return -1;
    }
    log();
    return m_process.exitStatus() == QProcess::NormalExit ? m_process.exitCode() : -1;
}

int QVCorvaneProcess::perform(const QString &name, bool release, QString *errors, const QString &settingsPath) const
{
    QProcess process;
    QProcessEnvironment environment = m_process.processEnvironment();
    // It needs no display: the running corvane does the work.
    environment.remove(QStringLiteral("DISPLAY"));
    environment.remove(QStringLiteral("WAYLAND_DISPLAY"));
    process.setProcessEnvironment(environment);
    process.start(QStringLiteral(CORVANE_BINARY),
        { QStringLiteral("--settings"), settingsPath.isEmpty() ? m_settingsPath : settingsPath,
            release ? QStringLiteral("--perform-release") : QStringLiteral("--perform"), name });
    if (!process.waitForFinished(10000))
        return -1;
    *errors = QString::fromLocal8Bit(process.readAllStandardError());
    return process.exitCode();
}

QString QVCorvaneProcess::log()
{
    m_log += QString::fromUtf8(m_process.readAllStandardError());
    m_log += QString::fromUtf8(m_process.readAllStandardOutput());
    return m_log;
}

QJsonObject QVCorvaneProcess::control(qint64 action, quint16 keyCode, quint64 modifierFlags, const QJsonObject &extra)
{
    static int counter = 0;
    const QString identifier = QStringLiteral("TEST-%1").arg(++counter);
    QJsonObject control { { QStringLiteral("Identifier"), identifier }, { QStringLiteral("Action"), action } };
    control.insert(QStringLiteral("Hot Key"),
        QJsonObject { { QStringLiteral("Identifier"), identifier },
            { QStringLiteral("Visual Representation"), QStringLiteral("key %1").arg(keyCode) },
            { QStringLiteral("Key Code"), keyCode }, { QStringLiteral("Modifier Flags"), double(modifierFlags) } });
    for (auto it = extra.begin(); it != extra.end(); ++it)
        control.insert(it.key(), it.value());
    return control;
}

void QVCorvaneProcess::writeSettings(const QString &path, const QJsonObject &settings)
{
    QFile file(path);
    if (file.open(QIODevice::WriteOnly))
        file.write(QJsonDocument(settings).toJson());
}

QJsonObject QVCorvaneProcess::readSettings(const QString &path)
{
    return QJsonDocument::fromJson(readFile(path)).object();
}

QByteArray QVCorvaneProcess::readFile(const QString &path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

bool QVCorvaneProcess::tapMovesPointer(
    QVTestXClient &client, xcb_keycode_t key, const QList<xcb_keycode_t> &modifiers, const QPoint &offset)
{
    const QPoint start(600, 400);
    client.movePointer(start);
    client.tap(key, modifiers);
    if (offset.isNull()) {
        QTest::qWait(300); // the time a wrong move would take to show
        return client.pointer() == start;
    }
    QDeadlineTimer deadline(5000);
    while (!deadline.hasExpired() && client.pointer() == start)
        QTest::qWait(5);
    return client.pointer() == start + offset;
}
