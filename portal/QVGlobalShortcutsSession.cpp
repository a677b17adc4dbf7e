#include "QVGlobalShortcutsSession.h"

#include <QDBusObjectPath>
#include <QDBusVariant>
#include <QTimer>

namespace
{

const QString portalService = QStringLiteral("org.freedesktop.portal.Desktop");
const QString portalPath = QStringLiteral("/org/freedesktop/portal/desktop");
const QString shortcutsInterface = QStringLiteral("org.freedesktop.portal.GlobalShortcuts");
const QString sessionInterface = QStringLiteral("org.freedesktop.portal.Session");
constexpr int propertyTimeoutMs = 3000;

QString pathOf(const QVariant &value)
{
    if (value.metaType() == QMetaType::fromType<QDBusObjectPath>())
        return value.value<QDBusObjectPath>().path();
    return value.toString(); // the first portals answered a plain string
}

} // namespace

QVGlobalShortcutsSession::QVGlobalShortcutsSession(
    const QDBusConnection &connection, const QString &sessionToken, QObject *parent)
    : QObject(parent)
    , m_connection(connection)
    , m_sessionToken(sessionToken)
{
    QVPortalShortcut::registerDBusTypes();
    connectSignals(true);
}

QVGlobalShortcutsSession::~QVGlobalShortcutsSession()
{
    closeSession();
    connectSignals(false);
}

void QVGlobalShortcutsSession::connectSignals(bool connectThem)
{
    const auto apply = [this, connectThem](const QString &name, const char *slot) {
        if (connectThem)
            m_connection.connect(portalService, portalPath, shortcutsInterface, name, this, slot);
        else
            m_connection.disconnect(portalService, portalPath, shortcutsInterface, name, this, slot);
    };
    apply(QStringLiteral("Activated"), SLOT(onActivated(QDBusMessage)));
    apply(QStringLiteral("Deactivated"), SLOT(onDeactivated(QDBusMessage)));
    apply(QStringLiteral("ShortcutsChanged"), SLOT(onShortcutsChanged(QDBusMessage)));
}

uint QVGlobalShortcutsSession::version()
{
    if (m_version >= 0)
        return uint(m_version);
    QDBusMessage get = QDBusMessage::createMethodCall(
        portalService, portalPath, QStringLiteral("org.freedesktop.DBus.Properties"), QStringLiteral("Get"));
    get << shortcutsInterface << QStringLiteral("version");
    const QDBusMessage reply = m_connection.call(get, QDBus::Block, propertyTimeoutMs);
    m_version = reply.type() == QDBusMessage::ReplyMessage && !reply.arguments().isEmpty()
        ? int(reply.arguments().constFirst().value<QDBusVariant>().variant().toUInt())
        : 0;
    return uint(m_version);
}

QString QVGlobalShortcutsSession::expectedSessionPath() const
{
    return QStringLiteral("/org/freedesktop/portal/desktop/session/%1/%2")
        .arg(QVPortalRequest::senderPart(m_connection.baseService()), m_sessionToken);
}

QDBusMessage QVGlobalShortcutsSession::portalCall(const QString &method) const
{
    return QDBusMessage::createMethodCall(portalService, portalPath, shortcutsInterface, method);
}

void QVGlobalShortcutsSession::bind(const QList<QVPortalShortcut> &shortcuts)
{
    m_wanted = shortcuts;
    if (!m_busy)
        startBinding();
}

void QVGlobalShortcutsSession::startBinding()
{
    if (m_wanted == m_attempted)
        return;
    // The desktop cannot change a session's list: a new list means a new session.
    closeSession();
    m_attempted = m_wanted;
    if (m_attempted.isEmpty())
        return;
    m_busy = true;
    createSession();
}

void QVGlobalShortcutsSession::createSession()
{
    auto *request = new QVPortalRequest(m_connection, this);
    QVariantMap options {
        { QStringLiteral("handle_token"), request->token() },
        { QStringLiteral("session_handle_token"), m_sessionToken },
        // Plasma 5.27 follows the first draft: it binds only what CreateSession carries.
        { QStringLiteral("shortcuts"), QVariant::fromValue(m_attempted) },
    };
    QDBusMessage call = portalCall(QStringLiteral("CreateSession"));
    call << options;
    request->send(
        call,
        [this](uint code, const QVariantMap &results) {
            if (code != QVPortalRequest::Success) {
                // Unanswered is not undone: a session the desktop made would block the token's next use.
                m_connection.send(QDBusMessage::createMethodCall(
                    portalService, expectedSessionPath(), sessionInterface, QStringLiteral("Close")));
                finishBinding(false, QStringLiteral("the desktop did not open a session (code %1)").arg(code));
                return;
            }
            m_sessionPath = pathOf(results.value(QStringLiteral("session_handle")));
            m_connection.connect(portalService, m_sessionPath, sessionInterface, QStringLiteral("Closed"), this,
                SLOT(onClosed(QDBusMessage)));
            takeGrantedTriggers(results.value(QStringLiteral("shortcuts")));
            bindShortcuts();
        },
        m_requestTimeoutMs);
}

void QVGlobalShortcutsSession::bindShortcuts()
{
    auto *request = new QVPortalRequest(m_connection, this);
    QDBusMessage call = portalCall(QStringLiteral("BindShortcuts"));
    call << QVariant::fromValue(QDBusObjectPath(m_sessionPath)) << QVariant::fromValue(m_attempted) << QString()
         << QVariantMap { { QStringLiteral("handle_token"), request->token() } };
    request->send(
        call,
        [this](uint code, const QVariantMap &results) {
            if (code != QVPortalRequest::Success) {
                finishBinding(false,
                    code == QVPortalRequest::Cancelled
                        ? QStringLiteral("the desktop refused the shortcuts")
                        : QStringLiteral("binding the shortcuts failed (code %1)").arg(code));
                return;
            }
            // Plasma 5.27 answers an empty list here: what CreateSession granted stands.
            takeGrantedTriggers(results.value(QStringLiteral("shortcuts")));
            finishBinding(true);
        },
        m_requestTimeoutMs);
}

void QVGlobalShortcutsSession::finishBinding(bool success, const QString &reason)
{
    m_busy = false;
    m_bound = success;
    if (success) {
        Q_EMIT bound();
    } else {
        qWarning("Corvane: %s", qPrintable(reason));
        closeSession();
        Q_EMIT refused(reason);
    }
    if (m_wanted != m_attempted)
        startBinding();
}

void QVGlobalShortcutsSession::closeSession()
{
    m_bound = false;
    if (m_sessionPath.isEmpty())
        return;
    m_connection.disconnect(
        portalService, m_sessionPath, sessionInterface, QStringLiteral("Closed"), this, SLOT(onClosed(QDBusMessage)));
    m_connection.send(
        QDBusMessage::createMethodCall(portalService, m_sessionPath, sessionInterface, QStringLiteral("Close")));
    m_sessionPath.clear();
    if (!m_granted.isEmpty()) {
        m_granted.clear();
        Q_EMIT grantedTriggersChanged();
    }
}

bool QVGlobalShortcutsSession::configureShortcuts(const QString &parentWindow)
{
    if (version() < 2 || m_sessionPath.isEmpty())
        return false;
    QDBusMessage call = portalCall(QStringLiteral("ConfigureShortcuts"));
    call << QVariant::fromValue(QDBusObjectPath(m_sessionPath)) << parentWindow << QVariantMap();
    return m_connection.send(call);
}

void QVGlobalShortcutsSession::takeGrantedTriggers(const QVariant &shortcuts)
{
    const QList<QVPortalShortcut> granted = QVPortalShortcut::listFrom(shortcuts);
    bool changed = false;
    for (const QVPortalShortcut &shortcut : granted) {
        const QString trigger = shortcut.triggerDescription();
        if (m_granted.value(shortcut.id) != trigger) {
            m_granted.insert(shortcut.id, trigger);
            changed = true;
        }
    }
    if (changed)
        Q_EMIT grantedTriggersChanged();
}

bool QVGlobalShortcutsSession::isOwnSignal(
    const QDBusMessage &message, QString *id, qulonglong *timestamp, QString *token) const
{
    const QVariantList arguments = message.arguments();
    if (arguments.size() < 4 || m_sessionPath.isEmpty() || pathOf(arguments[0]) != m_sessionPath)
        return false;
    *id = arguments[1].toString();
    *timestamp = arguments[2].toULongLong();
    const QVariantMap options = qdbus_cast<QVariantMap>(arguments[3]);
    *token = options.value(QStringLiteral("activation_token")).toString();
    return true;
}

void QVGlobalShortcutsSession::onActivated(const QDBusMessage &message)
{
    QString id, token;
    qulonglong timestamp = 0;
    if (isOwnSignal(message, &id, &timestamp, &token))
        Q_EMIT activated(id, timestamp, token);
}

void QVGlobalShortcutsSession::onDeactivated(const QDBusMessage &message)
{
    QString id, token;
    qulonglong timestamp = 0;
    if (isOwnSignal(message, &id, &timestamp, &token))
        Q_EMIT deactivated(id, timestamp, token);
}

void QVGlobalShortcutsSession::onShortcutsChanged(const QDBusMessage &message)
{
    const QVariantList arguments = message.arguments();
    if (arguments.size() >= 2 && !m_sessionPath.isEmpty() && pathOf(arguments[0]) == m_sessionPath)
        takeGrantedTriggers(arguments[1]);
}

void QVGlobalShortcutsSession::onClosed(const QDBusMessage &)
{
    qInfo("Corvane: the desktop ended the shortcuts session; binding the shortcuts again shortly");
    m_connection.disconnect(
        portalService, m_sessionPath, sessionInterface, QStringLiteral("Closed"), this, SLOT(onClosed(QDBusMessage)));
    m_sessionPath.clear();
    m_bound = false;
    m_granted.clear();
    Q_EMIT grantedTriggersChanged();
    Q_EMIT closedByDesktop();
    QTimer::singleShot(m_rebindDelayMs, this, [this] {
        if (m_busy || m_bound || !m_sessionPath.isEmpty())
            return;
        m_attempted.clear(); // forget the ended binding so the same list is bound again
        startBinding();
    });
}
