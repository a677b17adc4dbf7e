#pragma once

#include "QVGeometry.h"

#include <QString>

#include <memory>

// A window-system event in the form the dispatch and the action engine read.
// Events are shared by reference: repetition tells events apart by identity.
struct QVEvent final {
    enum Type : int {
        LeftMouseDown = 1,
        KeyDown = 10,
        SystemDefined = 14,
        ScrollWheel = 22,
    };
    enum Subtype : int {
        HotKeyPressed = 6,
        HotKeyReleased = 9,
    };

    int type = 0;
    int subtype = 0;
    quint64 data1 = 0; // hot key events: the registration's handle
    quint16 keyCode = 0;
    quint64 modifierFlags = 0;
    QString charactersIgnoringModifiers;
    bool isModifierKey = false; // key down of a modifier key (Shift, Control, Caps Lock ...) on its own
    QVPoint location; // window coordinates
    // Hot key events asked for from outside (the command line, D-Bus) name the
    // control they trigger by its identifier instead of carrying a key.
    QString performedControl;
};

using QVEventRef = std::shared_ptr<const QVEvent>;
