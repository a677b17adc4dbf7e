#include "QVWaylandSeat.h"

#include "QVWaylandKeyboard.h"

#include <wayland-client.h>

namespace
{

QVWaylandSeat *seatOf(void *data)
{
    return static_cast<QVWaylandSeat *>(data);
}

QPointF position(wl_fixed_t x, wl_fixed_t y)
{
    return { wl_fixed_to_double(x), wl_fixed_to_double(y) };
}

void pointerEntered(void *data, wl_pointer *, uint32_t, wl_surface *surface, wl_fixed_t x, wl_fixed_t y)
{
    seatOf(data)->pointerEntered(surface, position(x, y));
}

void pointerLeft(void *data, wl_pointer *, uint32_t, wl_surface *)
{
    seatOf(data)->pointerLeft();
}

void pointerMoved(void *data, wl_pointer *, uint32_t, wl_fixed_t x, wl_fixed_t y)
{
    seatOf(data)->pointerMoved(position(x, y));
}

void pointerButton(void *data, wl_pointer *, uint32_t, uint32_t, uint32_t, uint32_t state)
{
    seatOf(data)->buttonChanged(state == WL_POINTER_BUTTON_STATE_PRESSED);
}

void pointerAxis(void *, wl_pointer *, uint32_t, uint32_t, wl_fixed_t) { }
void pointerFrame(void *, wl_pointer *) { }
void pointerAxisSource(void *, wl_pointer *, uint32_t) { }
void pointerAxisStop(void *, wl_pointer *, uint32_t, uint32_t) { }
void pointerAxisDiscrete(void *, wl_pointer *, uint32_t, int32_t) { }

const wl_pointer_listener pointerListener = { .enter = pointerEntered,
    .leave = pointerLeft,
    .motion = pointerMoved,
    .button = pointerButton,
    .axis = pointerAxis,
    .frame = pointerFrame,
    .axis_source = pointerAxisSource,
    .axis_stop = pointerAxisStop,
    .axis_discrete = pointerAxisDiscrete,
    .axis_value120 = nullptr };

void seatCapabilities(void *data, wl_seat *, uint32_t capabilities)
{
    seatOf(data)->setCapabilities(capabilities);
}

void seatName(void *, wl_seat *, const char *) { }

const wl_seat_listener seatListener = { .capabilities = seatCapabilities, .name = seatName };

} // namespace

QVWaylandSeat::QVWaylandSeat(QVWaylandKeyboard &keyboard)
    : m_keyboard(keyboard)
{
}

QVWaylandSeat::~QVWaylandSeat()
{
    setCapabilities(0);
}

void QVWaylandSeat::setSeat(wl_seat *seat)
{
    m_seat = seat;
    m_keyboard.setSeat(seat);
    wl_seat_add_listener(seat, &seatListener, this);
}

void QVWaylandSeat::setCapabilities(quint32 capabilities)
{
    m_keyboard.setCapabilities(capabilities);
    const bool hasPointer = capabilities & WL_SEAT_CAPABILITY_POINTER;
    if (hasPointer && !m_pointer) {
        m_pointer = wl_seat_get_pointer(m_seat);
        wl_pointer_add_listener(m_pointer, &pointerListener, this);
    } else if (!hasPointer && m_pointer) {
        if (wl_pointer_get_version(m_pointer) >= WL_POINTER_RELEASE_SINCE_VERSION)
            wl_pointer_release(m_pointer);
        else
            wl_pointer_destroy(m_pointer);
        m_pointer = nullptr;
        m_pointerSurface = nullptr;
    }
}

void QVWaylandSeat::pointerEntered(wl_surface *surface, const QPointF &position)
{
    m_pointerSurface = surface;
    if (m_listener.moved)
        m_listener.moved(surface, position);
}

void QVWaylandSeat::pointerMoved(const QPointF &position)
{
    if (m_pointerSurface && m_listener.moved)
        m_listener.moved(m_pointerSurface, position);
}

void QVWaylandSeat::buttonChanged(bool pressed)
{
    if (m_pointerSurface && m_listener.button)
        m_listener.button(m_pointerSurface, pressed);
}
