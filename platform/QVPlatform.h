#pragma once

#include "QVDisplayService.h"
#include "QVEvent.h"
#include "QVHotKeyService.h"
#include "QVKeyboardService.h"
#include "QVOverlaySurface.h"
#include "QVPointerEventService.h"
#include "QVWindowService.h"

#include <functional>
#include <memory>

// Everything Corvane asks of the window system. The composition root picks one
// implementation; the logic above it sees only these interfaces.
class QVPlatform : public QVDisplayService,
                   public QVPointerEventService,
                   public QVHotKeyService,
                   public QVKeyboardService,
                   public QVWindowService
{
public:
    using EventHandler = std::function<void(const QVEventRef &)>;

    // Receives hot key events (and key presses while the keyboard is taken).
    virtual void setEventHandler(EventHandler handler) = 0;
    // Sounds the system beep.
    virtual void beep() = 0;
    // Whether translucent windows are composited (else they must be shaped).
    virtual bool isCompositingManagerRunning() const = 0;
    // An overlay surface on the display, or nothing where a frameless Qt window on
    // top serves (X11). One that takes the keyboard has it while it is visible, and
    // then takeKeyboard() succeeds; its keys arrive as key-down events.
    virtual std::unique_ptr<QVOverlaySurface> createOverlaySurface(const QVDisplay &display, bool takesKeyboard)
    {
        Q_UNUSED(display);
        Q_UNUSED(takesKeyboard);
        return nullptr;
    }
};
