#pragma once

#include <QImage>
#include <QList>
#include <QPoint>
#include <QRect>
#include <QString>
#include <QStringList>

#include <optional>

#include <xcb/xcb.h>

// Evdev key codes the tests press.
namespace QVTestKey
{
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
    // The first key code that types the key symbol (XK_Control_R ...), or 0: the
    // key codes of modifiers differ between the evdev and the xfree86 key maps.
    xcb_keycode_t keyCodeForSymbol(xcb_keysym_t symbol);
    // Presses and releases the key without waiting for the server in between.
    void tapQuickly(xcb_keycode_t key);

    QPoint pointer();
    void movePointer(const QPoint &root);
    // Presses and releases a pointer button through XTest.
    void click(int button);
    // Key codes the server has down now.
    QList<xcb_keycode_t> keysDown();
    // Lock state of the core keyboard (XCB_MOD_MASK_LOCK, the NumLock mask ...).
    quint16 modifierState();

    // An override-redirect window over the given root rectangle that records buttons.
    void openRecordingWindow(const QRect &root);
    // Waits with a deadline for the next button event at the recording window.
    std::optional<ButtonEvent> nextButtonEvent(int timeoutMilliseconds);

    // A window of some client mapped exactly over the root rectangle, or XCB_NONE.
    xcb_window_t viewableWindowAt(const QRect &root);
    bool hasViewableWindowAt(const QRect &root) { return viewableWindowAt(root) != XCB_NONE; }
    // Whether the window's bounding region is shaped (narrower than its rectangle).
    bool isShaped(xcb_window_t window);
    // Covers the whole screen with a window of one flat colour, a stand-in for the
    // desktop and the user's windows that makes what lies above them easy to tell.
    void paintDesktop(QRgb color);
    // Whether a compositing manager owns the screen's _NET_WM_CM selection.
    bool compositingManagerRunning();
    // The pixels on screen in the root rectangle, as a compositing manager shows them.
    QImage screenshot(const QRect &root);
    // The window that has the input focus (or PointerRoot, None).
    xcb_window_t inputFocus();
    // Takes the keyboard as another program would; false while someone else has it.
    bool grabKeyboard();
    void ungrabKeyboard();
    // Grabs a key combination the way another program would; false when refused.
    bool grabKey(xcb_keycode_t key, quint16 modifiers);
    // Whether a key press of that combination reached this client.
    bool receivedKeyPress(xcb_keycode_t key, int timeoutMilliseconds);

    // Top-level windows of other clients, as a window manager or a task bar sees them.
    struct TopLevel {
        xcb_window_t window = XCB_NONE;
        QString title;
        quint32 pid = 0;
        QStringList states; // _NET_WM_STATE atom names
        QRect geometry; // root coordinates
        bool viewable = false;
    };
    QList<TopLevel> topLevelWindows();
    // The first viewable top-level window with the title, if any.
    std::optional<TopLevel> viewableTopLevel(const QString &title);
    // Asks the window to close, as a window manager's close button does.
    void closeWindow(xcb_window_t window);

private:
    void sync();
    xcb_atom_t atom(const char *name);
    QString atomName(xcb_atom_t atom);

    xcb_connection_t *m_connection = nullptr;
    xcb_screen_t *m_screen = nullptr;
    xcb_window_t m_window = XCB_NONE;
    xcb_window_t m_desktop = XCB_NONE;
};
