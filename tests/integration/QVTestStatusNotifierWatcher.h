#pragma once

#include <QDBusConnection>
#include <QObject>
#include <QStringList>

// The panel side of the tray protocol that desktops such as KDE and XFCE run:
// items register with it, hosts find them through it. Qt offers its tray icon
// this way only when a watcher with a registered host is on the bus at start.
class QVTestStatusNotifierWatcher final : public QObject
{
    Q_OBJECT
    Q_CLASSINFO("D-Bus Interface", "org.kde.StatusNotifierWatcher")
    Q_PROPERTY(bool IsStatusNotifierHostRegistered READ isStatusNotifierHostRegistered)
    Q_PROPERTY(int ProtocolVersion READ protocolVersion)
    Q_PROPERTY(QStringList RegisteredStatusNotifierItems READ registeredStatusNotifierItems)

public:
    explicit QVTestStatusNotifierWatcher(QDBusConnection connection);
    bool registerOnBus(QString *error);

    bool isStatusNotifierHostRegistered() const { return true; }
    int protocolVersion() const { return 0; }
    QStringList registeredStatusNotifierItems() const { return m_items; }
    // The service name of the last item that registered, empty if none did.
    QString lastItemService() const { return m_items.isEmpty() ? QString() : m_items.constLast(); }

public Q_SLOTS:
    void RegisterStatusNotifierItem(const QString &service);
    void RegisterStatusNotifierHost(const QString &service);

Q_SIGNALS:
    void StatusNotifierItemRegistered(const QString &service);
    void StatusNotifierItemUnregistered(const QString &service);
    void StatusNotifierHostRegistered();

private:
    QDBusConnection m_connection;
    QStringList m_items;
};
