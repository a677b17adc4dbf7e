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
    // Whether that location is Corvane's own estimate rather than the window
    // system's word (Wayland tells no client where the pointer is).
    virtual bool isMouseLocationApproximate() const { return false; }

    struct Snapshot {
        QVDisplayList displays;
        QVPoint mouseLocation;
    };
    // A global point in the window system's own absolute coordinates (where the
    // primary display need not sit at the origin).
    virtual QVPoint windowSystemPointFromGlobal(const QVPoint &global) const { return global; }

    // Both at once, as one consistent reading.
    virtual Snapshot displaysAndMouseLocation() const { return { displays(), mouseLocation() }; }
};
