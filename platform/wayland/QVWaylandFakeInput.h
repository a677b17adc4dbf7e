#pragma once

#include "QVWaylandPointerDevice.h"

struct org_kde_kwin_fake_input;

// KWin's fake input (version 3 and later: absolute motion). KWin offers it only to a
// program whose desktop entry names its absolute path and the interface.
class QVWaylandFakeInput final : public QVWaylandPointerDevice
{
public:
    // Takes the bound global over and authenticates at once.
    explicit QVWaylandFakeInput(org_kde_kwin_fake_input *fakeInput);
    ~QVWaylandFakeInput() override;
    QVWaylandFakeInput(const QVWaylandFakeInput &) = delete;
    QVWaylandFakeInput &operator=(const QVWaylandFakeInput &) = delete;

    // The oldest version with pointer_motion_absolute.
    static constexpr quint32 minimumVersion = 3;

    void moveTo(const QPoint &layoutPixel, const QRect &bounds) override;
    void button(bool down, bool rightButton) override;

private:
    org_kde_kwin_fake_input *m_fakeInput;
};
