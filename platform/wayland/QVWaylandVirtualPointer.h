#pragma once

#include "QVWaylandPointerDevice.h"

struct wl_seat;
struct zwlr_virtual_pointer_manager_v1;
struct zwlr_virtual_pointer_v1;

// A virtual pointer device of wlroots' protocol (sway, Hyprland, river, labwc, Wayfire).
class QVWaylandVirtualPointer final : public QVWaylandPointerDevice
{
public:
    QVWaylandVirtualPointer(zwlr_virtual_pointer_manager_v1 *manager, wl_seat *seat);
    ~QVWaylandVirtualPointer() override;
    QVWaylandVirtualPointer(const QVWaylandVirtualPointer &) = delete;
    QVWaylandVirtualPointer &operator=(const QVWaylandVirtualPointer &) = delete;

    void moveTo(const QPoint &layoutPixel, const QRect &bounds) override;
    void button(bool down, bool rightButton) override;

private:
    zwlr_virtual_pointer_v1 *m_pointer;
};
