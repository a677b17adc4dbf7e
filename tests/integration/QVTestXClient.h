#pragma once

#include <QList>
#include <QPoint>
#include <QRect>
#include <QString>

#include <optional>

#include <xcb/xcb.h>

// Evdev key codes the tests press.
namespace QVTestKey {
constexpr xcb_keycode_t ControlL = 37;
constexpr xcb_keycode_t ControlR = 105;
constexpr xcb_keycode_t AltL = 64;
constexpr xcb_keycode_t ShiftL = 50;
constexpr xcb_keycode_t CapsLock = 66;
constexpr xcb_keycode_t NumLock = 77;
constexpr xcb_keycode_t Left = 113;
constexpr xcb_keycode_t Right = 114;
constexpr xcb_keycode_t Up = 111;
constexpr xcb_keycode_t Down = 116;
} // namespace QVTestKey

// The test's own X client: presses keys through XTest, reads and sets the
// pointer, and records the button events that reach a window of its own.
class QVTestXClient final
{
public:
    struct ButtonEvent {
        bool press = false;
        int button = 0;
        quint16 state = 0;
    };

    explicit QVTestXClient(const QString &displayName);
    ~QVTestXClient();
    QVTestXClient(const QVTestXClient &) = delete;
    QVTestXClient &operator=(const QVTestXClient &) = delete;

    bool isConnected() const { return m_connection && !xcb_connection_has_error(m_connection); }

    void keyDown(xcb_keycode_t key);
    void keyUp(xcb_keycode_t key);
    // Presses the modifiers, taps the key, releases the modifiers.
    void tap(xcb_keycode_t key, const QList<xcb_keycode_t> &modifiers = {});

    QPoint pointer();
    void movePointer(const QPoint &root);
    // Key codes the server has down now.
    QList<xcb_keycode_t> keysDown();
    // Lock state of the core keyboard (XCB_MOD_MASK_LOCK, the NumLock mask ...).
    quint16 modifierState();

    // An override-redirect window over the given root rectangle that records buttons.
    void openRecordingWindow(const QRect &root);
    // Waits with a deadline for the next button event at the recording window.
    std::optional<ButtonEvent> nextButtonEvent(int timeoutMilliseconds);

    // Whether a window of some client is mapped exactly over the root rectangle.
    bool hasViewableWindowAt(const QRect &root);
    // Takes the keyboard as another program would; false while someone else has it.
    bool grabKeyboard();
    void ungrabKeyboard();
    // Grabs a key combination the way another program would; false when refused.
    bool grabKey(xcb_keycode_t key, quint16 modifiers);
    // Whether a key press of that combination reached this client.
    bool receivedKeyPress(xcb_keycode_t key, int timeoutMilliseconds);

private:
    void sync();

    xcb_connection_t *m_connection = nullptr;
    xcb_screen_t *m_screen = nullptr;
    xcb_window_t m_window = XCB_NONE;
};
