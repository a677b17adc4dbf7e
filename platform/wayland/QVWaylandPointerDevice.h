#pragma once

#include <QPoint>
#include <QRect>

// What moves the pointer and presses its buttons for Corvane: a wlroots virtual
// pointer or KWin's fake input. Where the pointer is believed to be is not its
// business (QVWaylandPointer keeps that).
class QVWaylandPointerDevice
{
public:
    static constexpr quint32 leftButton = 0x110; // BTN_LEFT of linux/input-event-codes.h
    static constexpr quint32 rightButton = 0x111;

    virtual ~QVWaylandPointerDevice() = default;
    // Puts the pointer on a pixel of the layout (logical units, y down), whose bounding box is bounds.
    virtual void moveTo(const QPoint &layoutPixel, const QRect &bounds) = 0;
    // BTN_LEFT or BTN_RIGHT pressed or released where the pointer is.
    virtual void button(bool down, bool rightButton) = 0;
};
