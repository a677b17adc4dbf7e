#pragma once

#include <QPointF>

#include <functional>

class QVWaylandKeyboard;
struct wl_pointer;
struct wl_seat;
struct wl_surface;

// The seat's input devices as Corvane's own surfaces see them: the keyboard (handed
// to QVWaylandKeyboard) and the pointer, whose position on a surface of Corvane's
// is the one real position Wayland tells a client.
class QVWaylandSeat final
{
public:
    struct PointerListener {
        // Entered or moved, in the surface's coordinates.
        std::function<void(wl_surface *surface, const QPointF &position)> moved;
        std::function<void(wl_surface *surface, bool pressed)> button;
    };

    explicit QVWaylandSeat(QVWaylandKeyboard &keyboard);
    ~QVWaylandSeat();
    QVWaylandSeat(const QVWaylandSeat &) = delete;
    QVWaylandSeat &operator=(const QVWaylandSeat &) = delete;

    void setSeat(wl_seat *seat);
    wl_seat *seat() const { return m_seat; }
    void setPointerListener(PointerListener listener) { m_listener = std::move(listener); }

    // Listener state.
    void setCapabilities(quint32 capabilities);
    void pointerEntered(wl_surface *surface, const QPointF &position);
    void pointerMoved(const QPointF &position);
    void pointerLeft() { m_pointerSurface = nullptr; }
    void buttonChanged(bool pressed);

private:
    QVWaylandKeyboard &m_keyboard;
    wl_seat *m_seat = nullptr;
    wl_pointer *m_pointer = nullptr;
    wl_surface *m_pointerSurface = nullptr;
    PointerListener m_listener;
};
