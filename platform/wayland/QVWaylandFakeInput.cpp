#include "QVWaylandFakeInput.h"

#include "fake-input-client-protocol.h"

#include <wayland-client.h>

QVWaylandFakeInput::QVWaylandFakeInput(org_kde_kwin_fake_input *fakeInput)
    : m_fakeInput(fakeInput)
{
    // KWin ignores every request before this one.
    org_kde_kwin_fake_input_authenticate(m_fakeInput, "Corvane", "moves and clicks the pointer from the keyboard");
}

QVWaylandFakeInput::~QVWaylandFakeInput()
{
    // The interface has no destructor request: only the proxy goes.
    org_kde_kwin_fake_input_destroy(m_fakeInput);
}

void QVWaylandFakeInput::moveTo(const QPoint &layoutPixel, const QRect &bounds)
{
    // KWin takes global logical coordinates, the layout's own, with no scaling onto
    // the bounding box: the pixel's corner is exact. Not its centre: KWin rounds the
    // position it passes on, and half a pixel rounds onto the next one.
    Q_UNUSED(bounds);
    org_kde_kwin_fake_input_pointer_motion_absolute(
        m_fakeInput, wl_fixed_from_int(layoutPixel.x()), wl_fixed_from_int(layoutPixel.y()));
}

void QVWaylandFakeInput::button(bool down, bool right)
{
    org_kde_kwin_fake_input_button(m_fakeInput, right ? rightButton : leftButton,
        down ? WL_POINTER_BUTTON_STATE_PRESSED : WL_POINTER_BUTTON_STATE_RELEASED);
}
