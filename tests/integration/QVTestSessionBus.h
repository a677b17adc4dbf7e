#pragma once

#include <QDBusConnection>
#include <QProcess>
#include <QString>

// A private D-Bus session bus for one test, so that tray watchers, menus and the
// accessibility bus of the test never meet the machine's own. Stopped by its
// process id when the object goes.
class QVTestSessionBus final
{
public:
    QVTestSessionBus();
    ~QVTestSessionBus();

    // False, with error set, when the daemon does not come up.
    bool start(QString *error);
    QString address() const { return m_address; }
    // The test's own connection to the bus.
    QDBusConnection connection() const;
    // Starts the accessibility bus (its launcher is activated on this bus) and
    // returns its address, for a reader of the accessibility tree.
    QString accessibilityBusAddress() const;

private:
    QProcess m_daemon;
    QString m_address;
    QString m_connectionName;
};
