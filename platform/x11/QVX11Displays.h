#pragma once

#include "QVDisplay.h"

#include <QPoint>

#include <optional>

#include <xcb/randr.h>
#include <xcb/xcb.h>

class QVX11Connection;

// The RandR monitors in window coordinates, primary first, and the pointer.
// The list is kept as read until the server says it changed: RandR notifies
// output and CRTC changes, and monitors set with RandR 1.5 (xrandr --setmonitor)
// announce themselves only by a ConfigureNotify of the root window. Events
// arrive in order, so a hot key never sees a list older than its own press.
class QVX11Displays final
{
public:
    explicit QVX11Displays(QVX11Connection &connection);

    // False without RandR 1.5; the whole screen then counts as one monitor.
    bool initialize();
    // The current monitors, and the pointer too when asked: no round trip when
    // the list is known and the pointer is given by the event being handled.
    const QVDisplayList &current(QVPoint *pointer = nullptr);

    // Whether the event is a change of the monitors (and forgets the list if so).
    bool handleEvent(const xcb_generic_event_t *event);
    // Where the pointer was when the event being handled happened, if nothing
    // Corvane posted since has moved it; cleared with an empty optional.
    void setPointerHint(std::optional<QPoint> root) { m_pointerHint = root; }

    QVPoint windowPointFromRoot(int column, int row) const;
    // Where the primary monitor's top left sits on the root window.
    QVPoint primaryOrigin() const { return { double(m_primaryX), double(m_primaryY) }; }
    // The root pixel of a global point (y down from the primary's top left), kept
    // on a monitor: a point on a right or bottom edge with no neighbour there
    // stays on the monitor's last column or row, never in the space beside it.
    void rootPixelFromGlobal(const QVPoint &global, int *column, int *row) const;

private:
    struct RootRect {
        int x, y, width, height;
    };
    void readMonitors(std::optional<xcb_randr_get_monitors_cookie_t> cookie);
    void apply(QList<RootRect> monitors);
    void constrainToMonitors(int *column, int *row) const;

    QVX11Connection &m_connection;
    bool m_haveRandr = false;
    quint8 m_randrFirstEvent = 0;
    bool m_stale = true;
    std::optional<QPoint> m_pointerHint;
    QVDisplayList m_displays;
    QList<RootRect> m_monitors;
    int m_primaryX = 0; // the primary monitor's root origin
    int m_primaryY = 0;
};
