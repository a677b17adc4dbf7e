#pragma once

#include "QVGeometry.h"

#include <QSet>

#include <optional>

#include <xcb/xcb.h>

class QVX11Connection;
class QVX11Displays;
class QVX11Keyboard;

// Pointer motion and buttons through XTest. A button from the private source
// must not carry the modifiers that the user holds for the hot key: they are
// released before the press, and after the release those the user still holds
// then are pressed again. One the user lets go of meanwhile is never pressed
// again; one the user presses meanwhile is down by the user's hand and left so.
// A key pressed again is released again as soon as the user lets go of it, so
// that none is left down whichever device held it.
class QVX11InputSynthesizer final
{
public:
    QVX11InputSynthesizer(QVX11Connection &connection, QVX11Displays &displays, QVX11Keyboard &keyboard);

    bool initialize();
    bool postMouseMoved(const QVPoint &globalPoint);
    bool postMouseButton(bool down, bool rightButton, bool usePrivateSource);
    // The user pressed or let go of a modifier key.
    void modifierPressed(xcb_keycode_t keyCode);
    // sameDevice: the release came from the XTest keyboard that Corvane presses keys
    // on, and so let go of Corvane's press as well.
    void modifierReleased(xcb_keycode_t keyCode, bool sameDevice);
    // Whether an event the server sent after handling request `sequence` already
    // saw the effect of every motion posted so far.
    bool motionProcessedBefore(uint32_t sequence) const;

private:
    void fakeInput(uint8_t type, uint8_t detail, int16_t x = 0, int16_t y = 0);
    void releaseHeldModifiers();
    void restoreHeldModifiers();

    QVX11Connection &m_connection;
    QVX11Displays &m_displays;
    QVX11Keyboard &m_keyboard;
    QSet<xcb_keycode_t> m_releasedModifiers; // by us for a click, to press again after it
    QSet<xcb_keycode_t> m_pressedAgain; // by us, after a click
    std::optional<uint32_t> m_lastMotionSequence;
};
