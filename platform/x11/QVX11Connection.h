#pragma once

#include <QByteArray>
#include <QObject>
#include <QSocketNotifier>
#include <QString>

#include <functional>
#include <memory>
#include <vector>

#include <xcb/xcb.h>

// Corvane's own connection to the X server, apart from Qt's: its grabs, XTest
// input and per-client keyboard flags must not disturb Qt's event handling.
// Events are read when the socket has data and before the event loop sleeps.
class QVX11Connection final : public QObject
{
    Q_OBJECT

public:
    using Listener = std::function<void(const xcb_generic_event_t *)>;

    // Nothing, with error set, when the display cannot be opened. Needs no
    // application object: opened before Qt's, it keeps a server that resets when
    // its last client leaves from resetting while Qt connects.
    static std::unique_ptr<QVX11Connection> open(const QByteArray &displayName, QString *error);
    ~QVX11Connection() override;

    xcb_connection_t *get() const { return m_connection; }
    xcb_screen_t *screen() const { return m_screen; }
    xcb_window_t root() const { return m_screen->root; }
    int screenNumber() const { return m_screenNumber; }

    void setListener(Listener listener) { m_listener = std::move(listener); }
    // Called once after each batch of events, for work that a burst should do once.
    void setBatchEndListener(std::function<void()> listener) { m_batchEnd = std::move(listener); }

    // Reads events from here on; needs the application's event loop.
    void startWatching();

    void flush();
    // Waits until the server has handled every request sent so far.
    void sync();
    void processEvents();

private:
    QVX11Connection(xcb_connection_t *connection, xcb_screen_t *screen, int screenNumber);
    void dispatch(xcb_generic_event_t *event);

    xcb_connection_t *m_connection;
    xcb_screen_t *m_screen;
    int m_screenNumber;
    std::unique_ptr<QSocketNotifier> m_notifier;
    Listener m_listener;
    std::function<void()> m_batchEnd;
    bool m_dispatching = false;
};
