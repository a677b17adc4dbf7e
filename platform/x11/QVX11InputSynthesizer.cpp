#include "QVX11InputSynthesizer.h"

#include "QVX11Connection.h"
#include "QVX11Displays.h"
#include "QVX11Keyboard.h"
#include "QVXcbReply.h"

#include <xcb/xtest.h>

#include <algorithm>
#include <limits>

namespace
{
constexpr uint8_t leftButton = 1;
constexpr uint8_t rightButton = 3;

int16_t clampedCoordinate(int value)
{
    return int16_t(
        std::clamp(value, int(std::numeric_limits<int16_t>::min()), int(std::numeric_limits<int16_t>::max())));
}
} // namespace

QVX11InputSynthesizer::QVX11InputSynthesizer(
    QVX11Connection &connection, QVX11Displays &displays, QVX11Keyboard &keyboard)
    : m_connection(connection)
    , m_displays(displays)
    , m_keyboard(keyboard)
{
}

bool QVX11InputSynthesizer::initialize()
{
    xcb_connection_t *c = m_connection.get();
    QVXcbReply<xcb_test_get_version_reply_t> version(
        xcb_test_get_version_reply(c, xcb_test_get_version(c, 2, 2), nullptr));
    return version != nullptr;
}

void QVX11InputSynthesizer::fakeInput(uint8_t type, uint8_t detail, int16_t x, int16_t y)
{
    xcb_test_fake_input(m_connection.get(), type, detail, XCB_CURRENT_TIME, m_connection.root(), x, y, 0);
}

bool QVX11InputSynthesizer::postMouseMoved(const QVPoint &globalPoint)
{
    int column = 0;
    int row = 0;
    m_displays.rootPixelFromGlobal(globalPoint, &column, &row);
    m_lastMotionSequence = xcb_test_fake_input(m_connection.get(), XCB_MOTION_NOTIFY, 0, XCB_CURRENT_TIME,
        m_connection.root(), clampedCoordinate(column), clampedCoordinate(row), 0)
                               .sequence;
    m_displays.setPointerHint(std::nullopt); // the event being handled no longer tells where it is
    m_connection.flush();
    return true;
}

bool QVX11InputSynthesizer::motionProcessedBefore(uint32_t sequence) const
{
    // Sequence numbers wrap: compare by difference.
    return !m_lastMotionSequence || int32_t(sequence - *m_lastMotionSequence) >= 0;
}

bool QVX11InputSynthesizer::postMouseButton(bool down, bool right, bool usePrivateSource)
{
    if (down && usePrivateSource)
        releaseHeldModifiers();
    fakeInput(down ? XCB_BUTTON_PRESS : XCB_BUTTON_RELEASE, right ? rightButton : leftButton);
    if (!down)
        restoreHeldModifiers();
    m_connection.flush();
    return true;
}

void QVX11InputSynthesizer::releaseHeldModifiers()
{
    restoreHeldModifiers(); // a click left half-done must not leave keys up for good
    m_releasedModifiers = m_keyboard.heldModifierKeys();
    for (const xcb_keycode_t keyCode : std::as_const(m_releasedModifiers)) {
        m_keyboard.expectReleaseEcho(keyCode);
        fakeInput(XCB_KEY_RELEASE, keyCode);
    }
}

void QVX11InputSynthesizer::restoreHeldModifiers()
{
    const QSet<xcb_keycode_t> held = m_keyboard.heldModifierKeys();
    for (const xcb_keycode_t keyCode : std::as_const(m_releasedModifiers)) {
        if (!held.contains(keyCode))
            continue;
        m_keyboard.expectPressEcho(keyCode);
        fakeInput(XCB_KEY_PRESS, keyCode);
        m_pressedAgain.insert(keyCode);
    }
    m_releasedModifiers.clear();
}

void QVX11InputSynthesizer::modifierPressed(xcb_keycode_t keyCode)
{
    // Down again by the user's own hand: pressing it once more would leave it
    // down after the user lets go on another device.
    m_releasedModifiers.remove(keyCode);
}

void QVX11InputSynthesizer::modifierReleased(xcb_keycode_t keyCode, bool sameDevice)
{
    m_releasedModifiers.remove(keyCode);
    // On the same device the user's release was Corvane's too; a second one would
    // let go of the key the user has since pressed again.
    if (!m_pressedAgain.remove(keyCode) || sameDevice)
        return;
    // Our press lives on the XTest device and the user let go on another keyboard:
    // without this release the key would stay down.
    m_keyboard.expectReleaseEcho(keyCode);
    fakeInput(XCB_KEY_RELEASE, keyCode);
    m_connection.flush();
}
