#pragma once

#include <QString>
#include <QtGlobal>

// The shortcut text of the XDG shortcuts format ("CTRL+ALT+Right") that a
// portal takes as a preferred trigger.
class QVXdgShortcutTrigger final
{
public:
    // From an X key code (evdev + 8) and Carbon modifier bits; empty when the
    // default keymap has no key name for the code.
    static QString fromKeyCode(quint16 keyCode, quint32 carbonModifiers);
    // The key's name in the default keymap, unshifted level.
    static QString keyName(quint16 keyCode);
};
