#pragma once

#include "QVDisplay.h"

// Where the monitors are and where the pointer is.
class QVDisplayService
{
public:
    virtual ~QVDisplayService() = default;

    // The current monitors, primary first, in window coordinates.
    virtual QVDisplayList displays() const = 0;
    // The pointer location in window coordinates.
    virtual QVPoint mouseLocation() const = 0;
};
