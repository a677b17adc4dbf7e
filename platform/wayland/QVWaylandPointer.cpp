#include "QVWaylandPointer.h"

#include "QVWaylandConnection.h"
#include "QVWaylandOutputs.h"
#include "wlr-virtual-pointer-unstable-v1-client-protocol.h"

#include <QDeadlineTimer>

#include <wayland-client.h>

namespace
{

constexpr quint32 leftButton = 0x110; // BTN_LEFT of linux/input-event-codes.h
constexpr quint32 rightButton = 0x111;

// Milliseconds of the monotonic clock, as input devices stamp their events.
quint32 timestamp()
{
    return quint32(QDeadlineTimer::current().deadline());
}

} // namespace

QVWaylandPointer::QVWaylandPointer(QVWaylandConnection &connection, const QVWaylandOutputs &outputs)
    : m_connection(connection)
    , m_outputs(outputs)
{
}

QVWaylandPointer::~QVWaylandPointer()
{
    if (m_pointer)
        zwlr_virtual_pointer_v1_destroy(m_pointer);
}

void QVWaylandPointer::create(zwlr_virtual_pointer_manager_v1 *manager, wl_seat *seat)
{
    if (!m_pointer && manager)
        m_pointer = zwlr_virtual_pointer_manager_v1_create_virtual_pointer(manager, seat);
}

bool QVWaylandPointer::moveTo(const QPoint &layoutPixel)
{
    const QRect bounds = m_outputs.layoutBounds();
    if (!m_pointer || bounds.isEmpty() || !m_connection.isConnected())
        return false;
    // The compositor scales x / x_extent onto the layout's bounding box. Half-pixel
    // units aim at the pixel's centre: a pixel's edge would land a rounding error
    // short of it, on the neighbouring output when the edge is a border.
    const QPoint offset = layoutPixel - bounds.topLeft();
    zwlr_virtual_pointer_v1_motion_absolute(m_pointer, timestamp(), quint32(2 * offset.x() + 1),
        quint32(2 * offset.y() + 1), quint32(2 * bounds.width()), quint32(2 * bounds.height()));
    zwlr_virtual_pointer_v1_frame(m_pointer);
    m_connection.flush();
    m_location = layoutPixel;
    return true;
}

bool QVWaylandPointer::button(bool down, bool right)
{
    if (!m_pointer || !m_connection.isConnected())
        return false;
    zwlr_virtual_pointer_v1_button(m_pointer, timestamp(), right ? rightButton : leftButton,
        down ? WL_POINTER_BUTTON_STATE_PRESSED : WL_POINTER_BUTTON_STATE_RELEASED);
    zwlr_virtual_pointer_v1_frame(m_pointer);
    m_connection.flush();
    return true;
}

void QVWaylandPointer::outputsChanged()
{
    if (m_location)
        m_location = m_outputs.nearestPixelOnOutputs(*m_location);
}
