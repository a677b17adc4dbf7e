#pragma once

#include "QVDisplay.h"

class QVPointerEventService;

// Moves the pointer to a point in window coordinates.
bool QVPostMouseMovedEvent(QVPointerEventService &service, bool usePrivateSource, const QVPoint &point,
                           const QVDisplayList &displays);
// Presses or releases the left or right button where the pointer is.
bool QVPostMouseButtonEvent(QVPointerEventService &service, bool down, bool rightButton, bool usePrivateSource);
