#pragma once

#include "QVEvent.h"

class QVScreenOverlayPanel;

// Interprets the keys pressed while the screen-section overlay is up.
class QVScreenOverlayPanelDelegate
{
public:
    virtual ~QVScreenOverlayPanelDelegate() = default;

    // True when the key was handled.
    virtual bool handleKeyDownEvent(const QVEvent &event, QVScreenOverlayPanel &panel) = 0;
    virtual bool screenOverlayPanelShouldAutoDeactivate(QVScreenOverlayPanel &panel) = 0;
};
