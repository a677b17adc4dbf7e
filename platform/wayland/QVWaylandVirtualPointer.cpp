#include "QVWaylandVirtualPointer.h"

#include "wlr-virtual-pointer-unstable-v1-client-protocol.h"

#include <QDeadlineTimer>

#include <wayland-client.h>

namespace
{

// Milliseconds of the monotonic clock, as input devices stamp their events.
quint32 timestamp()
{
    return quint32(QDeadlineTimer::current().deadline());
}

} // namespace

QVWaylandVirtualPointer::QVWaylandVirtualPointer(zwlr_virtual_pointer_manager_v1 *manager, wl_seat *seat)
    : m_pointer(zwlr_virtual_pointer_manager_v1_create_virtual_pointer(manager, seat))
{
}

QVWaylandVirtualPointer::~QVWaylandVirtualPointer()
{
    zwlr_virtual_pointer_v1_destroy(m_pointer);
}

void QVWaylandVirtualPointer::moveTo(const QPoint &layoutPixel, const QRect &bounds)
{
    // The compositor scales x / x_extent onto the layout's bounding box. Half-pixel
    // units aim at the pixel's centre: a pixel's edge would land a rounding error
    // short of it, on the neighbouring output when the edge is a border.
    const QPoint offset = layoutPixel - bounds.topLeft();
    zwlr_virtual_pointer_v1_motion_absolute(m_pointer, timestamp(), quint32(2 * offset.x() + 1),
        quint32(2 * offset.y() + 1), quint32(2 * bounds.width()), quint32(2 * bounds.height()));
    zwlr_virtual_pointer_v1_frame(m_pointer);
}

void QVWaylandVirtualPointer::button(bool down, bool right)
{
    zwlr_virtual_pointer_v1_button(m_pointer, timestamp(), right ? rightButton : leftButton,
        down ? WL_POINTER_BUTTON_STATE_PRESSED : WL_POINTER_BUTTON_STATE_RELEASED);
    zwlr_virtual_pointer_v1_frame(m_pointer);
}
