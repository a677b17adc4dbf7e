#pragma once

#include "QVEvent.h"
#include "QVHotKeyService.h"

#include <QMap>
#include <QObject>

#include <functional>
#include <memory>

class QVGlobalShortcutsSession;

// Hot keys through the desktop portal: the registrations become the session's
// shortcut list, bound together a moment after a burst of changes, and the
// desktop's activations come back as hot key events.
class QVPortalHotKeyService final : public QObject, public QVHotKeyService
{
    Q_OBJECT

public:
    using EventHandler = std::function<void(const QVEventRef &)>;

    explicit QVPortalHotKeyService(QVGlobalShortcutsSession &session, QObject *parent = nullptr);
    // Owning its session, as Corvane runs it.
    explicit QVPortalHotKeyService(std::unique_ptr<QVGlobalShortcutsSession> session);
    ~QVPortalHotKeyService() override;

    std::optional<Handle> registerHotKey(const QVHotKeyRegistration &registration, QString *reason = nullptr) override;
    void unregisterHotKey(Handle handle) override;

    // Where presses and releases go.
    void setEventHandler(EventHandler handler) { m_handler = std::move(handler); }
    // The trigger the desktop granted for a registration, empty while there is none.
    QString grantedTrigger(Handle handle) const;
    static QString shortcutId(const QVHotKeyRegistration &registration);

Q_SIGNALS:
    void grantedTriggersChanged();

private:
    struct Entry {
        QVHotKeyRegistration registration;
        QString id;
        QString preferredTrigger;
    };

    void scheduleBinding();
    void bindNow();
    void deliver(const QString &id, bool press);

    std::unique_ptr<QVGlobalShortcutsSession> m_ownSession; // before m_session, which may refer to it
    QVGlobalShortcutsSession &m_session;
    QMap<Handle, Entry> m_entries;
    Handle m_nextHandle = 1;
    bool m_bindingScheduled = false;
    EventHandler m_handler;
};
