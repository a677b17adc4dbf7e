#pragma once

#include "QVEvent.h"
#include "QVKeyboardService.h"

#include <QByteArray>
#include <QString>

#include <functional>
#include <memory>
#include <optional>

class QTimer;
class QVWaylandConnection;
struct wl_keyboard;
struct wl_seat;
struct xkb_context;
struct xkb_keymap;
struct zwp_virtual_keyboard_manager_v1;
struct zwp_virtual_keyboard_v1;

// The seat's keyboard as a client sees it (repeat settings, key map, the keys typed
// into Corvane's own surfaces), and a virtual keyboard of Corvane's that keeps the
// user's held modifiers off its clicks.
class QVWaylandKeyboard final
{
public:
    explicit QVWaylandKeyboard(QVWaylandConnection &connection);
    ~QVWaylandKeyboard();
    QVWaylandKeyboard(const QVWaylandKeyboard &) = delete;
    QVWaylandKeyboard &operator=(const QVWaylandKeyboard &) = delete;

    void setSeat(wl_seat *seat) { m_seat = seat; }
    // Receives a key-down event for every key typed into a surface of Corvane's,
    // repeated while held as the compositor's repeat settings say.
    void setKeyHandler(std::function<void(const QVEventRef &)> handler) { m_keyHandler = std::move(handler); }
    void setVirtualKeyboardManager(zwp_virtual_keyboard_manager_v1 *manager) { m_manager = manager; }

    // The compositor's repeat delay and rate, or its usual defaults without a keyboard.
    QVKeyboardService::RepeatThresholds repeatThresholds() const;
    QString charactersIgnoringModifiers(quint16 keyCode) const;

    // Makes Corvane's own keyboard, with the seat's key map. The compositor moves the
    // keyboard focus off and back on as it takes a new keyboard: better now than at a click.
    bool createVirtualKeyboard();
    // The compositor hands a pointer button the modifiers of the keyboard used last:
    // Corvane's own keyboard states none just before its click. False when it cannot.
    bool clearModifiers();
    // After the click: the state the seat's keyboard reported while a surface of
    // Corvane's had the keyboard; nothing otherwise (the next key the user types
    // brings the real state back).
    void restoreModifiers();

    // Listener state, set by the seat's keyboard.
    struct Modifiers {
        quint32 depressed = 0, latched = 0, locked = 0, group = 0;

        friend bool operator==(const Modifiers &, const Modifiers &) = default;
    };
    void setKeymap(QByteArray text);
    void setRepeat(int rate, int delay) { m_repeat = { rate, delay }; }
    void setModifiers(const Modifiers &modifiers) { m_modifiers = modifiers; }
    // The keyboard left Corvane's surfaces: what the compositor told goes stale.
    void focusLeft();
    void keyChanged(quint32 key, bool pressed);
    void setCapabilities(quint32 capabilities);

private:
    xkb_keymap *keymap() const;
    void sendModifiers(const Modifiers &modifiers);
    QVEventRef keyDownEvent(quint32 keyCode) const;
    void repeatKey();

    QVWaylandConnection &m_connection;
    wl_seat *m_seat = nullptr;
    wl_keyboard *m_keyboard = nullptr;
    zwp_virtual_keyboard_manager_v1 *m_manager = nullptr;
    zwp_virtual_keyboard_v1 *m_virtual = nullptr;
    xkb_context *m_xkb = nullptr;
    QByteArray m_keymapText; // the seat's, as the compositor sent it
    mutable xkb_keymap *m_keymap = nullptr;
    struct Repeat {
        int rate = 0; // keys per second; 0: no repeat
        int delay = 0; // milliseconds
    };
    std::optional<Repeat> m_repeat;
    std::optional<Modifiers> m_modifiers; // the seat's, while Corvane has the keyboard
    std::function<void(const QVEventRef &)> m_keyHandler;
    std::unique_ptr<QTimer> m_repeatTimer;
    quint32 m_repeatingKey = 0; // an X key code, 0 for none
    Modifiers m_sent; // the state of Corvane's own keyboard
};
