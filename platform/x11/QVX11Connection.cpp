#include "QVX11Connection.h"

#include "QVXcbReply.h"

#include <QAbstractEventDispatcher>
#include <QCoreApplication>

std::unique_ptr<QVX11Connection> QVX11Connection::open(const QByteArray &displayName, QString *error)
{
    int screenNumber = 0;
    xcb_connection_t *connection
        = xcb_connect(displayName.isEmpty() ? nullptr : displayName.constData(), &screenNumber);
    if (xcb_connection_has_error(connection)) {
        xcb_disconnect(connection);
        if (error)
            *error = QStringLiteral("cannot open X display \"%1\"").arg(QString::fromLocal8Bit(displayName));
        return nullptr;
    }
    xcb_screen_iterator_t screens = xcb_setup_roots_iterator(xcb_get_setup(connection));
    for (int index = 0; index < screenNumber && screens.rem; ++index)
        xcb_screen_next(&screens);
    return std::unique_ptr<QVX11Connection>(new QVX11Connection(connection, screens.data, screenNumber));
}

QVX11Connection::QVX11Connection(xcb_connection_t *connection, xcb_screen_t *screen, int screenNumber)
    : m_connection(connection)
    , m_screen(screen)
    , m_screenNumber(screenNumber)
{
}

void QVX11Connection::startWatching()
{
    if (m_notifier)
        return;
    m_notifier = std::make_unique<QSocketNotifier>(xcb_get_file_descriptor(m_connection), QSocketNotifier::Read);
    connect(m_notifier.get(), &QSocketNotifier::activated, this, &QVX11Connection::processEvents);
    // Replies read while waiting may bring events along that the socket will not
    // announce again: look for them whenever the loop is about to sleep.
    if (QAbstractEventDispatcher *dispatcher = QAbstractEventDispatcher::instance())
        connect(dispatcher, &QAbstractEventDispatcher::aboutToBlock, this, &QVX11Connection::processEvents);
}

QVX11Connection::~QVX11Connection()
{
    m_notifier.reset();
    xcb_disconnect(m_connection);
}

void QVX11Connection::flush()
{
    xcb_flush(m_connection);
}

void QVX11Connection::sync()
{
    QVXcbReply<xcb_get_input_focus_reply_t>(
        xcb_get_input_focus_reply(m_connection, xcb_get_input_focus(m_connection), nullptr));
}

void QVX11Connection::processEvents()
{
    if (m_dispatching)
        return;
    m_dispatching = true;
    bool any = false;
    while (xcb_generic_event_t *event = xcb_poll_for_event(m_connection)) {
        dispatch(event);
        any = true;
    }
    if (any && m_batchEnd)
        m_batchEnd();
    m_dispatching = false;
    flush();
}

void QVX11Connection::dispatch(xcb_generic_event_t *event)
{
    QVXcbReply<xcb_generic_event_t> owned(event);
    if (m_listener)
        m_listener(event);
}
