#include "QVX11Displays.h"

#include "QVX11Connection.h"
#include "QVXcbReply.h"

#include <xcb/randr.h>

#include <algorithm>
#include <cmath>

QVX11Displays::QVX11Displays(QVX11Connection &connection) : m_connection(connection) {}

bool QVX11Displays::initialize()
{
    xcb_connection_t *c = m_connection.get();
    const xcb_query_extension_reply_t *randr = xcb_get_extension_data(c, &xcb_randr_id);
    QVXcbReply<xcb_randr_query_version_reply_t> version(
        xcb_randr_query_version_reply(c, xcb_randr_query_version(c, 1, 5), nullptr));
    m_haveRandr = randr && randr->present && version
        && (version->major_version > 1 || version->minor_version >= 5);
    refresh();
    return m_haveRandr;
}

const QVDisplayList &QVX11Displays::refresh(QVPoint *pointer)
{
    xcb_connection_t *c = m_connection.get();
    xcb_randr_get_monitors_cookie_t monitorsCookie{};
    if (m_haveRandr)
        monitorsCookie = xcb_randr_get_monitors(c, m_connection.root(), 1);
    xcb_query_pointer_cookie_t pointerCookie{};
    if (pointer)
        pointerCookie = xcb_query_pointer(c, m_connection.root());

    QList<RootRect> monitors;
    if (m_haveRandr) {
        QVXcbReply<xcb_randr_get_monitors_reply_t> reply(xcb_randr_get_monitors_reply(c, monitorsCookie, nullptr));
        for (auto it = reply ? xcb_randr_get_monitors_monitors_iterator(reply.get())
                             : xcb_randr_monitor_info_iterator_t{};
             it.rem; xcb_randr_monitor_info_next(&it)) {
            const xcb_randr_monitor_info_t *info = it.data;
            if (info->width == 0 || info->height == 0)
                continue;
            const RootRect rect{info->x, info->y, info->width, info->height};
            if (info->primary)
                monitors.prepend(rect);
            else
                monitors.append(rect);
        }
    }
    apply(std::move(monitors));
    if (pointer) {
        QVXcbReply<xcb_query_pointer_reply_t> reply(xcb_query_pointer_reply(c, pointerCookie, nullptr));
        *pointer = reply ? windowPointFromRoot(reply->root_x, reply->root_y) : QVPoint{};
    }
    return m_displays;
}

QVPoint QVX11Displays::windowPointFromRoot(int column, int row) const
{
    const double height = m_displays.isEmpty() ? 0.0 : m_displays.first().frame.height;
    return {double(column - m_primaryX), height - double(row - m_primaryY)};
}

void QVX11Displays::rootPixelFromGlobal(const QVPoint &global, int *column, int *row) const
{
    *column = int(std::floor(global.x)) + m_primaryX;
    *row = int(std::floor(global.y)) + m_primaryY;
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
        monitors.append({0, 0, screen->width_in_pixels, screen->height_in_pixels});
    }
    const RootRect primary = monitors.first();
    m_primaryX = primary.x;
    m_primaryY = primary.y;
    m_monitors = std::move(monitors);
    m_displays.clear();
    for (const RootRect &monitor : std::as_const(m_monitors)) {
        // Window coordinates: y up from the primary's bottom edge.
        const QVRect frame{double(monitor.x - m_primaryX),
                           double(primary.height - (monitor.y - m_primaryY) - monitor.height),
                           double(monitor.width), double(monitor.height)};
        m_displays.append({frame, frame, QString()});
    }
}
