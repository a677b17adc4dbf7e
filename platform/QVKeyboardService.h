#pragma once

#include "QVModifierFlagBits.h"

#include <QString>

// Keyboard settings and ownership that the pointer tools need.
class QVKeyboardService
{
public:
    struct RepeatThresholds {
        double initialTicks = 0.0; // delay before the first repeat, 1/60 s
        double repeatTicks = 0.0; // interval between repeats, 1/60 s
    };

    virtual ~QVKeyboardService() = default;

    // The user's key repeat delay and interval.
    virtual RepeatThresholds keyRepeatThresholds() const = 0;
    // Routes every key press to the application until released; false if another
    // client keeps the keyboard.
    virtual bool takeKeyboard() = 0;
    virtual void releaseKeyboard() = 0;

    // The stored flags for the native modifier state of a key event that reached
    // the application's windows (QKeyEvent::nativeModifiers(), the X state on X11),
    // with the sides of the modifier keys held where the platform knows them.
    virtual quint64 modifierFlagsForNativeModifiers(quint32 nativeModifiers) const
    {
        return QVModifierFlagsForXState(nativeModifiers);
    }
    // What the key types without modifiers ("a", ","); a null string when unknown.
    virtual QString charactersIgnoringModifiers(quint16 keyCode) const
    {
        Q_UNUSED(keyCode);
        return {};
    }
};
