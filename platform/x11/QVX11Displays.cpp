#include "QVX11Displays.h"

#include "QVX11Connection.h"
#include "QVXcbReply.h"

#include <xcb/randr.h>

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
    if (m_haveRandr) {
        m_randrFirstEvent = randr->first_event;
        xcb_randr_select_input(c, m_connection.root(),
                               XCB_RANDR_NOTIFY_MASK_SCREEN_CHANGE | XCB_RANDR_NOTIFY_MASK_CRTC_CHANGE
                                   | XCB_RANDR_NOTIFY_MASK_OUTPUT_CHANGE | XCB_RANDR_NOTIFY_MASK_RESOURCE_CHANGE);
    }
    return m_haveRandr;
}

bool QVX11Displays::handleEvent(const xcb_generic_event_t *event)
{
    if (!m_haveRandr)
        return false;
    const int type = (event->response_type & 0x7f) - m_randrFirstEvent;
    if (type != XCB_RANDR_SCREEN_CHANGE_NOTIFY && type != XCB_RANDR_NOTIFY)
        return false;
    m_stale = true;
    return true;
}

const QVDisplayList &QVX11Displays::displays()
{
    if (m_stale)
        read();
    return m_displays;
}

QVPoint QVX11Displays::windowPointFromRoot(int column, int row)
{
    const QVDisplayList &list = displays();
    const double height = list.isEmpty() ? 0.0 : list.first().frame.height;
    return {double(column - m_primaryX), height - double(row - m_primaryY)};
}

void QVX11Displays::rootPixelFromGlobal(const QVPoint &global, int *column, int *row)
{
    displays();
    *column = int(std::floor(global.x)) + m_primaryX;
    *row = int(std::floor(global.y)) + m_primaryY;
}

void QVX11Displays::read()
{
    m_stale = false;
    QList<RootRect> monitors = readMonitors();
    if (monitors.isEmpty()) {
        const xcb_screen_t *screen = m_connection.screen();
        monitors.append({0, 0, screen->width_in_pixels, screen->height_in_pixels});
    }
    const RootRect &primary = monitors.first();
    m_primaryX = primary.x;
    m_primaryY = primary.y;
    m_displays.clear();
    for (const RootRect &monitor : monitors) {
        // Window coordinates: y up from the primary's bottom edge.
        const QVRect frame{double(monitor.x - m_primaryX),
                           double(primary.height - (monitor.y - m_primaryY) - monitor.height),
                           double(monitor.width), double(monitor.height)};
        m_displays.append({frame, frame, QString()});
    }
}

QList<QVX11Displays::RootRect> QVX11Displays::readMonitors() const
{
    QList<RootRect> monitors;
    if (!m_haveRandr)
        return monitors;
    xcb_connection_t *c = m_connection.get();
    QVXcbReply<xcb_randr_get_monitors_reply_t> reply(
        xcb_randr_get_monitors_reply(c, xcb_randr_get_monitors(c, m_connection.root(), 1), nullptr));
    if (!reply)
        return monitors;
    for (auto it = xcb_randr_get_monitors_monitors_iterator(reply.get()); it.rem; xcb_randr_monitor_info_next(&it)) {
        const xcb_randr_monitor_info_t *info = it.data;
        if (info->width == 0 || info->height == 0)
            continue;
        const RootRect rect{info->x, info->y, info->width, info->height};
        if (info->primary)
            monitors.prepend(rect);
        else
            monitors.append(rect);
    }
    return monitors;
}
