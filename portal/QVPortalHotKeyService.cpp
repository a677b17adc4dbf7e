#include "QVPortalHotKeyService.h"

#include "QVGlobalShortcutsSession.h"
#include "QVModifierFlagBits.h"
#include "QVXdgShortcutTrigger.h"

#include <QSet>
#include <QTimer>

QVPortalHotKeyService::QVPortalHotKeyService(std::unique_ptr<QVGlobalShortcutsSession> session)
    : QVPortalHotKeyService(*session)
{
    m_ownSession = std::move(session);
}

QVPortalHotKeyService::~QVPortalHotKeyService() = default;

QVPortalHotKeyService::QVPortalHotKeyService(QVGlobalShortcutsSession &session, QObject *parent)
    : QObject(parent)
    , m_session(session)
{
    connect(&m_session, &QVGlobalShortcutsSession::activated, this, [this](const QString &id) { deliver(id, true); });
    connect(
        &m_session, &QVGlobalShortcutsSession::deactivated, this, [this](const QString &id) { deliver(id, false); });
    connect(&m_session, &QVGlobalShortcutsSession::grantedTriggersChanged, this,
        &QVPortalHotKeyService::grantedTriggersChanged);
}

QString QVPortalHotKeyService::shortcutId(const QVHotKeyRegistration &registration)
{
    return QStringLiteral("corvane-%1").arg(registration.identifier);
}

std::optional<QVHotKeyService::Handle> QVPortalHotKeyService::registerHotKey(
    const QVHotKeyRegistration &registration, QString *reason)
{
    const QString trigger = QVXdgShortcutTrigger::fromKeyCode(registration.keyCode, registration.carbonModifiers);
    if (trigger.isEmpty()) {
        if (reason)
            *reason = QStringLiteral("the key code %1 has no name the desktop understands").arg(registration.keyCode);
        return std::nullopt;
    }
    const Handle handle = m_nextHandle++;
    m_entries.insert(handle, Entry { registration, shortcutId(registration), trigger });
    scheduleBinding();
    return handle;
}

void QVPortalHotKeyService::unregisterHotKey(Handle handle)
{
    if (m_entries.remove(handle))
        scheduleBinding();
}

QString QVPortalHotKeyService::grantedTrigger(Handle handle) const
{
    const auto entry = m_entries.constFind(handle);
    return entry == m_entries.constEnd() ? QString() : m_session.grantedTrigger(entry->id);
}

void QVPortalHotKeyService::scheduleBinding()
{
    // Every binding costs the desktop a new session: one for a whole burst of changes.
    if (m_bindingScheduled)
        return;
    m_bindingScheduled = true;
    QTimer::singleShot(0, this, &QVPortalHotKeyService::bindNow);
}

void QVPortalHotKeyService::bindNow()
{
    m_bindingScheduled = false;
    QList<QVPortalShortcut> shortcuts;
    QSet<QString> listed;
    for (const Entry &entry : std::as_const(m_entries)) {
        if (listed.contains(entry.id))
            continue;
        listed.insert(entry.id);
        shortcuts << QVPortalShortcut::make(
            entry.id, QStringLiteral("Corvane control %1").arg(entry.registration.identifier), entry.preferredTrigger);
    }
    m_session.bind(shortcuts);
}

void QVPortalHotKeyService::deliver(const QString &id, bool press)
{
    if (!m_handler)
        return;
    for (auto it = m_entries.constBegin(); it != m_entries.constEnd(); ++it) {
        if (it->id != id)
            continue;
        auto event = std::make_shared<QVEvent>();
        event->type = QVEvent::SystemDefined;
        event->subtype = press ? QVEvent::HotKeyPressed : QVEvent::HotKeyReleased;
        event->data1 = it.key();
        event->keyCode = it->registration.keyCode;
        // The desktop says which shortcut, not which keys: the registered ones were held.
        event->modifierFlags = QVModifierFlagsFromCarbonModifiers(it->registration.carbonModifiers);
        m_handler(event);
        // A release ends the repetition whichever registration it was: one event is enough.
        if (!press)
            return;
    }
}
