#pragma once

#include <QObject>
#include <QSocketNotifier>
#include <QString>

#include <functional>
#include <memory>

struct wl_display;
struct wl_interface;
struct wl_registry;

// Corvane's own connection to the Wayland compositor, apart from Qt's: its virtual
// devices and output listeners live here whatever Qt's platform plugin does. Events
// are read when the socket has data and before the event loop sleeps.
class QVWaylandConnection final : public QObject
{
    Q_OBJECT

public:
    struct Global {
        quint32 name = 0;
        QByteArray interface;
        quint32 version = 0;
    };

    // Nothing, with error set, when the compositor cannot be reached. socketName
    // empty: WAYLAND_DISPLAY, as every client finds it.
    static std::unique_ptr<QVWaylandConnection> open(const QString &socketName, QString *error);
    ~QVWaylandConnection() override;

    wl_display *display() const { return m_display; }

    // Told of every global the compositor offers or withdraws, from the first on.
    void setGlobalListeners(std::function<void(const Global &)> added, std::function<void(quint32)> removed);
    // A global bound at the lower of the offered and the wanted version.
    void *bind(const Global &global, const wl_interface *interface, quint32 wantedVersion);

    // Reads events from here on; needs the application's event loop.
    void startWatching();
    // Waits until the compositor has handled every request sent so far, and
    // handles what it sent back. False once the connection is lost.
    bool roundtrip();
    // Handles what has arrived, without waiting for more.
    void processEvents();
    void flush();
    bool isConnected() const;

private:
    explicit QVWaylandConnection(wl_display *display);
    void checkConnection();
    static void globalAdded(void *data, wl_registry *registry, uint32_t name, const char *interface, uint32_t version);
    static void globalRemoved(void *data, wl_registry *registry, uint32_t name);

    wl_display *m_display;
    wl_registry *m_registry = nullptr;
    std::unique_ptr<QSocketNotifier> m_notifier;
    std::function<void(const Global &)> m_added;
    std::function<void(quint32)> m_removed;
    bool m_dispatching = false;
    bool m_lossReported = false;
};
