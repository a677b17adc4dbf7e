#pragma once

#include "QVDisplayService.h"
#include "QVEvent.h"
#include "QVHotKeyService.h"
#include "QVKeyboardService.h"
#include "QVPointerEventService.h"
#include "QVWindowService.h"

#include <functional>

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
};
