#include "QVTestSessionBus.h"

#include <QDBusMessage>
#include <QDeadlineTimer>
#include <QUuid>

#include <csignal>

QVTestSessionBus::QVTestSessionBus()
    : m_connectionName(QStringLiteral("test-bus-") + QUuid::createUuid().toString(QUuid::Id128))
{
}

QVTestSessionBus::~QVTestSessionBus()
{
    QDBusConnection::disconnectFromBus(m_connectionName);
    if (m_daemon.state() == QProcess::Running) {
        ::kill(pid_t(m_daemon.processId()), SIGTERM);
        m_daemon.waitForFinished(5000);
    }
}

bool QVTestSessionBus::start(QString *error)
{
    m_daemon.start(QStringLiteral("dbus-daemon"),
        { QStringLiteral("--session"), QStringLiteral("--nofork"), QStringLiteral("--print-address=1") });
    if (!m_daemon.waitForStarted(5000)) {
        *error = QStringLiteral("dbus-daemon does not start: ") + m_daemon.errorString();
        return false;
    }
    QDeadlineTimer deadline(10000);
    QByteArray output;
    while (!output.contains('\n') && !deadline.hasExpired() && m_daemon.waitForReadyRead(100))
        output += m_daemon.readAllStandardOutput();
    m_address = QString::fromUtf8(output).trimmed();
    if (m_address.isEmpty()) {
        *error = QStringLiteral("dbus-daemon printed no address: ") + QString::fromUtf8(m_daemon.readAllStandardError());
        return false;
    }
    if (!connection().isConnected()) {
        *error = QStringLiteral("cannot connect to the test bus at ") + m_address;
        return false;
    }
    return true;
}

QDBusConnection QVTestSessionBus::connection() const
{
    return QDBusConnection::connectToBus(m_address, m_connectionName);
}

QString QVTestSessionBus::accessibilityBusAddress() const
{
    const QDBusMessage reply = connection().call(QDBusMessage::createMethodCall(
        QStringLiteral("org.a11y.Bus"), QStringLiteral("/org/a11y/bus"), QStringLiteral("org.a11y.Bus"),
        QStringLiteral("GetAddress")));
    return reply.type() == QDBusMessage::ReplyMessage && !reply.arguments().isEmpty()
        ? reply.arguments().constFirst().toString()
        : QString();
}
