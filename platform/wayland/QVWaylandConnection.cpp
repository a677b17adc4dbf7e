#include "QVWaylandConnection.h"

#include "QVLog.h"

#include <QAbstractEventDispatcher>
#include <QFile>

#include <wayland-client.h>

#include <poll.h>

namespace
{

bool socketReadable(wl_display *display)
{
    pollfd descriptor { wl_display_get_fd(display), POLLIN, 0 };
    return poll(&descriptor, 1, 0) > 0;
}

} // namespace

std::unique_ptr<QVWaylandConnection> QVWaylandConnection::open(const QString &socketName, QString *error)
{
    const QByteArray name = QFile::encodeName(socketName);
    const QString shownName = socketName.isEmpty() ? qEnvironmentVariable("WAYLAND_DISPLAY") : socketName;
    // libwayland would say this on its own, in words of its own, besides Corvane's message.
    const QString effectiveName = shownName.isEmpty() ? QStringLiteral("wayland-0") : shownName;
    if (!effectiveName.startsWith(u'/') && qEnvironmentVariable("XDG_RUNTIME_DIR").isEmpty()) {
        if (error)
            *error = QStringLiteral("cannot connect to the Wayland compositor \"%1\": $XDG_RUNTIME_DIR is not set")
                         .arg(effectiveName);
        return nullptr;
    }
    wl_display *display = wl_display_connect(name.isEmpty() ? nullptr : name.constData());
    if (!display) {
        if (error)
            *error = QStringLiteral("cannot connect to the Wayland compositor \"%1\"").arg(shownName);
        return nullptr;
    }
    return std::unique_ptr<QVWaylandConnection>(new QVWaylandConnection(display));
}

QVWaylandConnection::QVWaylandConnection(wl_display *display)
    : m_display(display)
{
}

QVWaylandConnection::~QVWaylandConnection()
{
    m_notifier.reset();
    if (m_registry)
        wl_registry_destroy(m_registry);
    wl_display_disconnect(m_display);
}

void QVWaylandConnection::setGlobalListeners(
    std::function<void(const Global &)> added, std::function<void(quint32)> removed)
{
    m_added = std::move(added);
    m_removed = std::move(removed);
    if (m_registry)
        return;
    static const wl_registry_listener listener = { .global = globalAdded, .global_remove = globalRemoved };
    m_registry = wl_display_get_registry(m_display);
    wl_registry_add_listener(m_registry, &listener, this);
}

void QVWaylandConnection::globalAdded(void *data, wl_registry *, uint32_t name, const char *interface, uint32_t version)
{
    auto *connection = static_cast<QVWaylandConnection *>(data);
    if (connection->m_added)
        connection->m_added({ name, QByteArray(interface), version });
}

void QVWaylandConnection::globalRemoved(void *data, wl_registry *, uint32_t name)
{
    auto *connection = static_cast<QVWaylandConnection *>(data);
    if (connection->m_removed)
        connection->m_removed(name);
}

void *QVWaylandConnection::bind(const Global &global, const wl_interface *interface, quint32 wantedVersion)
{
    return wl_registry_bind(m_registry, global.name, interface, qMin(global.version, wantedVersion));
}

void QVWaylandConnection::startWatching()
{
    if (m_notifier)
        return;
    m_notifier = std::make_unique<QSocketNotifier>(wl_display_get_fd(m_display), QSocketNotifier::Read);
    connect(m_notifier.get(), &QSocketNotifier::activated, this, &QVWaylandConnection::processEvents);
    // A round trip may leave events queued that the socket will not announce again,
    // and requests wait in the buffer until flushed: both before the loop sleeps.
    if (QAbstractEventDispatcher *dispatcher = QAbstractEventDispatcher::instance())
        connect(dispatcher, &QAbstractEventDispatcher::aboutToBlock, this, &QVWaylandConnection::processEvents);
}

bool QVWaylandConnection::roundtrip()
{
    if (!isConnected())
        return false;
    // Not from inside a listener: the events it handles would interleave with that one.
    if (!m_dispatching) {
        m_dispatching = true;
        wl_display_roundtrip(m_display);
        m_dispatching = false;
    }
    checkConnection();
    return isConnected();
}

void QVWaylandConnection::processEvents()
{
    if (m_dispatching || !isConnected())
        return;
    m_dispatching = true;
    while (wl_display_prepare_read(m_display) != 0)
        wl_display_dispatch_pending(m_display);
    wl_display_flush(m_display);
    if (socketReadable(m_display))
        wl_display_read_events(m_display);
    else
        wl_display_cancel_read(m_display);
    wl_display_dispatch_pending(m_display);
    m_dispatching = false;
    checkConnection();
}

void QVWaylandConnection::flush()
{
    if (isConnected())
        wl_display_flush(m_display);
}

bool QVWaylandConnection::isConnected() const
{
    return wl_display_get_error(m_display) == 0;
}

void QVWaylandConnection::checkConnection()
{
    if (isConnected() || m_lossReported)
        return;
    m_lossReported = true;
    if (m_notifier)
        m_notifier->setEnabled(false);
    QVLog(QStringLiteral("the connection to the Wayland compositor is lost (error %1)")
              .arg(wl_display_get_error(m_display)));
}
