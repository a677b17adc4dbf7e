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

    struct Snapshot {
        QVDisplayList displays;
        QVPoint mouseLocation;
    };
    // Both at once, as one consistent reading.
    virtual Snapshot displaysAndMouseLocation() const { return {displays(), mouseLocation()}; }
};
