#pragma once

#include "QVKeyboardService.h"

#include <QHash>
#include <QSet>
#include <QString>

#include <optional>

#include <xcb/xcb.h>
#include <xcb/xcb_keysyms.h>

class QVX11Connection;

// The keyboard as Corvane needs it: which keys are modifiers and on which side,
// which modifier keys are held right now (told by XInput 2 raw key events, and by
// core key events while Corvane grabs the keyboard), the NumLock mask and the
// repeat timing.
class QVX11Keyboard final
{
public:
    explicit QVX11Keyboard(QVX11Connection &connection);
    ~QVX11Keyboard();
    QVX11Keyboard(const QVX11Keyboard &) = delete;
    QVX11Keyboard &operator=(const QVX11Keyboard &) = delete;

    // False when the server lacks XKB or XInput 2.2; error says which.
    bool initialize(QString *error);
    // Reads key symbols and modifier map again after a mapping change.
    void refreshMapping();

    quint8 xkbFirstEvent() const { return m_xkbFirstEvent; }
    bool detectableAutoRepeat() const { return m_detectableAutoRepeat; }

    quint16 numLockMask() const { return m_numLockMask; }
    // Stored modifier flags for an X state, with the side of each held modifier.
    quint64 modifierFlagsForState(quint16 state) const;
    // What the key types without modifiers, e.g. "a" or ",".
    QString charactersIgnoringModifiers(xcb_keycode_t keyCode) const;
    bool isKnownKeyCode(xcb_keycode_t keyCode) const;
    // Whether the key is bound to a modifier (Shift, Control, Caps Lock, NumLock, AltGr ...).
    bool isModifierKey(xcb_keycode_t keyCode) const { return m_modifierKeys.contains(keyCode); }

    // Read once, then kept until the controls change (XKB ControlsNotify) or
    // another keyboard, with controls of its own, stands behind the core one.
    QVKeyboardService::RepeatThresholds repeatThresholds() const;
    void forgetRepeatThresholds() { m_repeatThresholds.reset(); }

    enum class KeyKind {
        NotRaw, // some other event
        Other, // a key event of no interest
        KeyReleased, // another key was let go
        ModifierPressed, // the user pressed a modifier key
        ModifierReleased, // the user let go of a modifier key
        ButtonPressed, // a mouse button went down anywhere (only while watched)
    };
    struct KeyChange {
        KeyKind kind = KeyKind::NotRaw;
        xcb_keycode_t keyCode = 0;
        // From an XTest keyboard, the device Corvane's own key events come from
        // (core events do not say, and count as such).
        bool fromXTest = true;
    };
    // Follows XInput 2 raw key events to know which modifier keys are held.
    KeyChange handleRawKeyEvent(const xcb_generic_event_t *event);
    // Follows a key event of any source. The server gives the raw events of the
    // master keyboard to every client but the one grabbing it: while a grab of
    // Corvane's is active (a hot key held, the overlay up), its core key events
    // are what tells which modifier keys are held, each event reaching Corvane
    // one way only.
    KeyChange trackKey(xcb_keycode_t keyCode, bool press, bool fromXTest = true);
    // Also reports button presses, to notice a click elsewhere while the keyboard is taken.
    void setWatchesButtons(bool watches);
    // Modifier keys held now, by any device.
    QSet<xcb_keycode_t> heldModifierKeys() const { return m_heldModifiers; }

    // A release or press that Corvane itself sends: its echo, which may arrive
    // much later, must not count as the user's. Every release has one, and so
    // does a press of a key that is up (the only keys Corvane presses).
    void expectReleaseEcho(xcb_keycode_t keyCode) { ++m_expectedReleaseEchoes[keyCode]; }
    void expectPressEcho(xcb_keycode_t keyCode) { ++m_expectedPressEchoes[keyCode]; }

private:
    void readModifierSides();
    // Also notes which keys the modifier map binds.
    void readNumLockMask();
    void seedHeldModifiers();
    void selectRawEvents(bool buttons);
    void findXTestKeyboards();

    QVX11Connection &m_connection;
    xcb_key_symbols_t *m_symbols = nullptr;
    xcb_keycode_t m_minKeyCode = 8;
    xcb_keycode_t m_maxKeyCode = 255;
    quint8 m_xkbFirstEvent = 0;
    quint8 m_xinputOpcode = 0;
    bool m_detectableAutoRepeat = false;
    quint16 m_numLockMask = 0;
    QHash<xcb_keycode_t, quint64> m_modifierSides; // key code -> side flag
    QSet<xcb_keycode_t> m_heldModifiers;
    QSet<xcb_keycode_t> m_modifierKeys; // every key of the modifier map
    QHash<xcb_keycode_t, int> m_expectedReleaseEchoes;
    QHash<xcb_keycode_t, int> m_expectedPressEchoes;
    QSet<quint16> m_xtestKeyboards; // device ids
    mutable std::optional<QVKeyboardService::RepeatThresholds> m_repeatThresholds;
};
