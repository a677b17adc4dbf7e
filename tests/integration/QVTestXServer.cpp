#include "QVTestXServer.h"

#include <QCoreApplication>
#include <QDeadlineTimer>
#include <QFile>
#include <QFileInfo>
#include <QThread>

#include <xcb/xcb.h>

namespace
{

constexpr int startDeadlineMilliseconds = 20000;

} // namespace

QList<QVTestXServer::Monitor> QVTestXServer::threeMonitors()
{
    return { { QStringLiteral("P"), QRect(1280, 0, 1920, 1080), true },
        { QStringLiteral("L"), QRect(0, 280, 1280, 800), false },
        { QStringLiteral("R"), QRect(3200, 100, 960, 600), false } };
}

int QVTestXServer::freeDisplayNumber()
{
    // Spread the numbers by process so that parallel test runs do not collide.
    for (int offset = 0; offset < 400; ++offset) {
        const int number = 100 + (int(QCoreApplication::applicationPid()) * 7 + offset) % 400;
        if (!QFileInfo::exists(QStringLiteral("/tmp/.X11-unix/X%1").arg(number))
            && !QFileInfo::exists(QStringLiteral("/tmp/.X%1-lock").arg(number)))
            return number;
    }
    return 0;
}

std::unique_ptr<QVTestXServer> QVTestXServer::startXvfb(int width, int height, QString *error, bool resets)
{
    std::unique_ptr<QVTestXServer> server(new QVTestXServer);
    server->m_number = freeDisplayNumber();
    server->m_process.setProcessChannelMode(QProcess::ForwardedErrorChannel);
    QStringList arguments { server->displayName(), QStringLiteral("-screen"), QStringLiteral("0"),
        QStringLiteral("%1x%2x24").arg(width).arg(height), QStringLiteral("-nolisten"), QStringLiteral("tcp") };
    if (!resets)
        arguments.append(QStringLiteral("-noreset"));
    server->m_process.start(QStringLiteral("Xvfb"), arguments);
    if (!server->waitUntilReady(error))
        return nullptr;
    return server;
}

std::unique_ptr<QVTestXServer> QVTestXServer::startXorg(
    int width, int height, const QList<Monitor> &monitors, QString *error)
{
    std::unique_ptr<QVTestXServer> server(new QVTestXServer);
    server->m_number = freeDisplayNumber();
    QFile configTemplate(QStringLiteral(CORVANE_XORG_TEMPLATE));
    if (!configTemplate.open(QIODevice::ReadOnly)) {
        *error = QStringLiteral("cannot read %1").arg(configTemplate.fileName());
        return nullptr;
    }
    const QString configPath = server->temporaryPath(QStringLiteral("xorg.conf"));
    QFile config(configPath);
    if (!config.open(QIODevice::WriteOnly)) {
        *error = QStringLiteral("cannot write %1").arg(configPath);
        return nullptr;
    }
    config.write(QString::fromLatin1(configTemplate.readAll())
                     .arg(width)
                     .arg(height)
                     .arg(width + 40)
                     .arg(width + 140)
                     .arg(width + 240)
                     .arg(height + 3)
                     .arg(height + 13)
                     .arg(height + 40)
                     .toLatin1());
    config.close();
    server->m_process.setStandardOutputFile(QProcess::nullDevice());
    server->m_process.setStandardErrorFile(server->temporaryPath(QStringLiteral("xorg.stderr")));
    server->m_process.start(QStringLiteral("Xorg"),
        { server->displayName(), QStringLiteral("-noreset"), QStringLiteral("-nolisten"), QStringLiteral("tcp"),
            QStringLiteral("-config"), configPath, QStringLiteral("-logfile"),
            server->temporaryPath(QStringLiteral("xorg.log")) });
    if (!server->waitUntilReady(error))
        return nullptr;
    bool first = true;
    for (const Monitor &monitor : monitors) {
        const QRect &r = monitor.rootRect;
        const QString geometry = QStringLiteral("%1/%2x%3/%4+%5+%6")
                                     .arg(r.width())
                                     .arg(r.width() / 4)
                                     .arg(r.height())
                                     .arg(r.height() / 4)
                                     .arg(r.x())
                                     .arg(r.y());
        const QString name = (monitor.primary ? QStringLiteral("*") : QString()) + monitor.name;
        if (server
                ->run(QStringLiteral("xrandr"),
                    { QStringLiteral("--setmonitor"), name, geometry,
                        first ? QStringLiteral("DUMMY0") : QStringLiteral("none") })
                .isNull()) {
            *error = QStringLiteral("xrandr --setmonitor %1 failed").arg(name);
            return nullptr;
        }
        first = false;
    }
    return server;
}

QVTestXServer::~QVTestXServer()
{
    if (m_process.state() == QProcess::NotRunning)
        return;
    m_process.terminate(); // SIGTERM to this server's own process id
    if (!m_process.waitForFinished(10000)) {
        m_process.kill();
        m_process.waitForFinished(5000);
    }
}

bool QVTestXServer::waitUntilReady(QString *error)
{
    if (!m_process.waitForStarted(startDeadlineMilliseconds)) {
        *error = QStringLiteral("cannot start %1: %2").arg(m_process.program(), m_process.errorString());
        return false;
    }
    const QByteArray name = displayName().toLatin1();
    QDeadlineTimer deadline(startDeadlineMilliseconds);
    while (!deadline.hasExpired()) {
        if (m_process.state() == QProcess::NotRunning) {
            *error = QStringLiteral("%1 %2 exited at start").arg(m_process.program(), displayName());
            return false;
        }
        xcb_connection_t *probe = xcb_connect(name.constData(), nullptr);
        const bool up = !xcb_connection_has_error(probe);
        xcb_disconnect(probe);
        if (up)
            return true;
        QThread::msleep(20);
    }
    *error = QStringLiteral("%1 %2 did not come up in time").arg(m_process.program(), displayName());
    return false;
}

QString QVTestXServer::run(const QString &program, const QStringList &arguments) const
{
    QProcess process;
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.insert(QStringLiteral("DISPLAY"), displayName());
    process.setProcessEnvironment(environment);
    process.start(program, arguments);
    if (!process.waitForFinished(15000) || process.exitStatus() != QProcess::NormalExit || process.exitCode() != 0) {
        qWarning("%s failed: %s", qPrintable(program), process.readAllStandardError().constData());
        return {};
    }
    QString output = QString::fromLocal8Bit(process.readAllStandardOutput());
    if (output.isNull())
        output = QLatin1String(""); // success with nothing printed is not failure
    return output;
}

std::unique_ptr<QVTestXServer> QVTestXServer::startXvfbForThisProcess(int width, int height)
{
    QString error;
    std::unique_ptr<QVTestXServer> server = startXvfb(width, height, &error);
    if (!server) {
        qCritical("%s", qPrintable(error));
        return nullptr;
    }
    qputenv("DISPLAY", server->displayName().toLatin1());
    qputenv("QT_QPA_PLATFORM", "xcb");
    return server;
}
