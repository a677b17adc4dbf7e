#include "QVX11Displays.h"

#include "QVX11Connection.h"
#include "QVXcbReply.h"

#include <xcb/randr.h>

#include <algorithm>
#include <cmath>

namespace
{

// A coordinate of any size, infinite ones included, lands far outside every monitor
// without overflowing; constrainToMonitors then brings it onto the nearest one.
int saturatedPixel(double coordinate, int origin)
{
    constexpr double farAway = 1 << 24;
    if (std::isnan(coordinate))
        return origin;
    return int(std::floor(std::clamp(coordinate, -farAway, farAway))) + origin;
}

} // namespace

QVX11Displays::QVX11Displays(QVX11Connection &connection)
    : m_connection(connection)
{
}

bool QVX11Displays::initialize()
{
    xcb_connection_t *c = m_connection.get();
    const xcb_query_extension_reply_t *randr = xcb_get_extension_data(c, &xcb_randr_id);
    QVXcbReply<xcb_randr_query_version_reply_t> version(
        xcb_randr_query_version_reply(c, xcb_randr_query_version(c, 1, 5), nullptr));
    m_haveRandr = randr && randr->present && version && (version->major_version > 1 || version->minor_version >= 5);
    if (m_haveRandr) {
        m_randrFirstEvent = randr->first_event;
        xcb_randr_select_input(c, m_connection.root(),
            XCB_RANDR_NOTIFY_MASK_SCREEN_CHANGE | XCB_RANDR_NOTIFY_MASK_CRTC_CHANGE
                | XCB_RANDR_NOTIFY_MASK_OUTPUT_CHANGE);
    }
    // The root's own configuration only: no events for other windows.
    const uint32_t rootEvents = XCB_EVENT_MASK_STRUCTURE_NOTIFY;
    xcb_change_window_attributes(c, m_connection.root(), XCB_CW_EVENT_MASK, &rootEvents);
    current();
    return m_haveRandr;
}

bool QVX11Displays::handleEvent(const xcb_generic_event_t *event)
{
    const uint8_t type = event->response_type & 0x7f;
    const bool changed = type == XCB_CONFIGURE_NOTIFY
        || (m_haveRandr
            && (type == m_randrFirstEvent + XCB_RANDR_SCREEN_CHANGE_NOTIFY
                || type == m_randrFirstEvent + XCB_RANDR_NOTIFY));
    if (changed)
        m_stale = true;
    return changed;
}

const QVDisplayList &QVX11Displays::current(QVPoint *pointer)
{
    xcb_connection_t *c = m_connection.get();
    // Both requests go out before either reply is awaited: one round trip at most.
    std::optional<xcb_randr_get_monitors_cookie_t> monitorsCookie;
    if (m_stale && m_haveRandr)
        monitorsCookie = xcb_randr_get_monitors(c, m_connection.root(), 1);
    std::optional<xcb_query_pointer_cookie_t> pointerCookie;
    if (pointer && !m_pointerHint)
        pointerCookie = xcb_query_pointer(c, m_connection.root());

    if (m_stale)
        readMonitors(monitorsCookie);
    if (pointer && m_pointerHint) {
        *pointer = windowPointFromRoot(m_pointerHint->x(), m_pointerHint->y());
    } else if (pointer) {
        QVXcbReply<xcb_query_pointer_reply_t> reply(xcb_query_pointer_reply(c, *pointerCookie, nullptr));
        *pointer = reply ? windowPointFromRoot(reply->root_x, reply->root_y) : QVPoint {};
    }
    return m_displays;
}

void QVX11Displays::readMonitors(std::optional<xcb_randr_get_monitors_cookie_t> cookie)
{
    QList<RootRect> monitors;
    m_stale = false;
    if (cookie) {
        bool havePrimary = false;
        QVXcbReply<xcb_randr_get_monitors_reply_t> reply(
            xcb_randr_get_monitors_reply(m_connection.get(), *cookie, nullptr));
        for (auto it
             = reply ? xcb_randr_get_monitors_monitors_iterator(reply.get()) : xcb_randr_monitor_info_iterator_t {};
             it.rem; xcb_randr_monitor_info_next(&it)) {
            const xcb_randr_monitor_info_t *info = it.data;
            if (info->width == 0 || info->height == 0)
                continue;
            const RootRect rect { info->x, info->y, info->width, info->height };
            // The server may flag a second monitor primary (the automatic one of the
            // primary output beside a monitor set by hand); the first flagged one wins.
            if (info->primary && !havePrimary)
                monitors.prepend(rect);
            else
                monitors.append(rect);
            havePrimary = havePrimary || info->primary;
        }
        m_stale = !reply; // read again next time rather than trust a failed read
    }
    apply(std::move(monitors));
}

QVPoint QVX11Displays::windowPointFromRoot(int column, int row) const
{
    const double height = m_displays.isEmpty() ? 0.0 : m_displays.first().frame.height;
    return { double(column - m_primaryX), height - double(row - m_primaryY) };
}

void QVX11Displays::rootPixelFromGlobal(const QVPoint &global, int *column, int *row) const
{
    *column = saturatedPixel(global.x, m_primaryX);
    *row = saturatedPixel(global.y, m_primaryY);
    constrainToMonitors(column, row);
}

void QVX11Displays::constrainToMonitors(int *column, int *row) const
{
    qint64 bestDistance = -1;
    int bestColumn = *column;
    int bestRow = *row;
    for (const RootRect &monitor : m_monitors) {
        const int x = std::clamp(*column, monitor.x, monitor.x + monitor.width - 1);
        const int y = std::clamp(*row, monitor.y, monitor.y + monitor.height - 1);
        const qint64 distance = qint64(x - *column) * (x - *column) + qint64(y - *row) * (y - *row);
        if (distance == 0)
            return;
        if (bestDistance < 0 || distance < bestDistance) {
            bestDistance = distance;
            bestColumn = x;
            bestRow = y;
        }
    }
    *column = bestColumn;
    *row = bestRow;
}

void QVX11Displays::apply(QList<RootRect> monitors)
{
    if (monitors.isEmpty()) {
        const xcb_screen_t *screen = m_connection.screen();
        monitors.append({ 0, 0, screen->width_in_pixels, screen->height_in_pixels });
    }
    const RootRect primary = monitors.first();
    m_primaryX = primary.x;
    m_primaryY = primary.y;
    m_monitors = std::move(monitors);
    m_displays.clear();
    for (const RootRect &monitor : std::as_const(m_monitors)) {
        // Window coordinates: y up from the primary's bottom edge.
        const QVRect frame { double(monitor.x - m_primaryX),
            double(primary.height - (monitor.y - m_primaryY) - monitor.height), double(monitor.width),
            double(monitor.height) };
        m_displays.append({ frame, frame, QString() });
    }
}
