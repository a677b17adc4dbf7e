#pragma once

#include "QVGeometry.h"

// The full-screen overlay that narrows the pointer down to a screen section.
class QVScreenSectionPresenter
{
public:
    virtual ~QVScreenSectionPresenter() = default;

    // Whether the overlay is up and has the keyboard.
    virtual bool isOverlayActive() const = 0;
    // Moves the pointer to the chosen section and closes the overlay.
    virtual void performOverlayPanelAction() = 0;
    // Opens the overlay over the display with this frame (window coordinates).
    virtual void activateOverlayWithFrame(const QVRect &displayFrame) = 0;
};
