#pragma once

#include "QVGeometry.h"

// Synthesized pointer input that the rest of the desktop takes for a mouse's.
class QVPointerEventService
{
public:
    virtual ~QVPointerEventService() = default;

    // Moves the pointer to a point in global coordinates (y down, origin at the
    // primary monitor's top left). False when the event could not be made.
    virtual bool postMouseMoved(const QVPoint &globalPoint) = 0;
    // Presses or releases a button where the pointer is. With a private source the
    // event carries none of the modifiers that the user holds on the keyboard.
    virtual bool postMouseButton(bool down, bool rightButton, bool usePrivateSource) = 0;
};
