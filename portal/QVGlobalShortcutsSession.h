#pragma once

#include "QVPortalRequest.h"
#include "QVPortalShortcut.h"

#include <QDBusConnection>
#include <QDBusMessage>
#include <QHash>
#include <QObject>

// One session of the desktop portal's GlobalShortcuts interface: binds a list of
// shortcuts and reports their activations. The session handle token stays the
// same from run to run, because the desktop files the bindings under it.
class QVGlobalShortcutsSession final : public QObject
{
    Q_OBJECT

public:
    QVGlobalShortcutsSession(const QDBusConnection &connection, const QString &sessionToken, QObject *parent = nullptr);
    ~QVGlobalShortcutsSession() override;

    // The interface's version property, 0 when the portal has no GlobalShortcuts.
    uint version();
    // Binds the list, replacing what an earlier call bound; the same list again does nothing.
    void bind(const QList<QVPortalShortcut> &shortcuts);
    // Opens the desktop's editor of the bindings (interface version 2 on); false where there is none.
    bool configureShortcuts(const QString &parentWindow = {});

    QString sessionPath() const { return m_sessionPath; }
    bool isBound() const { return m_bound; }
    // The trigger the desktop granted for a shortcut, as it shows it ("Ctrl+Alt+K").
    QString grantedTrigger(const QString &id) const { return m_granted.value(id); }
    // How long after the desktop ended the session it is bound again.
    void setRebindDelay(int milliseconds) { m_rebindDelayMs = milliseconds; }
    // How long to wait for the desktop's answer to one request.
    void setRequestTimeout(int milliseconds) { m_requestTimeoutMs = milliseconds; }

Q_SIGNALS:
    void bound();
    void refused(const QString &reason);
    void activated(const QString &id, qulonglong timestamp, const QString &activationToken);
    void deactivated(const QString &id, qulonglong timestamp, const QString &activationToken);
    void grantedTriggersChanged();
    void closedByDesktop();

private Q_SLOTS:
    void onActivated(const QDBusMessage &message);
    void onDeactivated(const QDBusMessage &message);
    void onShortcutsChanged(const QDBusMessage &message);
    void onClosed(const QDBusMessage &message);

private:
    QDBusMessage portalCall(const QString &method) const;
    QString expectedSessionPath() const;
    void startBinding();
    void createSession();
    void bindShortcuts();
    void closeSession();
    void finishBinding(bool success, const QString &reason = {});
    void takeGrantedTriggers(const QVariant &shortcuts);
    bool isOwnSignal(const QDBusMessage &message, QString *id, qulonglong *timestamp, QString *token) const;
    void connectSignals(bool connectThem);

    QDBusConnection m_connection;
    QString m_sessionToken;
    QString m_sessionPath;
    QList<QVPortalShortcut> m_wanted;
    QList<QVPortalShortcut> m_attempted; // the list of the running or last binding
    QHash<QString, QString> m_granted;
    int m_version = -1;
    int m_rebindDelayMs = 5000;
    int m_requestTimeoutMs = QVPortalRequest::defaultTimeoutMs;
    bool m_busy = false;
    bool m_bound = false;
};
