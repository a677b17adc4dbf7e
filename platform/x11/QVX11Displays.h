#pragma once

#include "QVDisplay.h"

#include <xcb/xcb.h>

class QVX11Connection;

// The RandR monitors in window coordinates, primary first. They are read
// afresh for every action: monitors made with RandR 1.5 change without any
// notification, and the read travels with the pointer query in one round trip.
class QVX11Displays final
{
public:
    explicit QVX11Displays(QVX11Connection &connection);

    bool initialize();
    // Reads the monitors again, and the pointer too when asked, in one round trip.
    const QVDisplayList &refresh(QVPoint *pointer = nullptr);
    // As last read.
    const QVDisplayList &displays() const { return m_displays; }

    QVPoint windowPointFromRoot(int column, int row) const;
    // Where the primary monitor's top left sits on the root window.
    QVPoint primaryOrigin() const { return {double(m_primaryX), double(m_primaryY)}; }
    // The root pixel of a global point (y down from the primary's top left), kept
    // on a monitor: a point on a right or bottom edge with no neighbour there
    // stays on the monitor's last column or row, never in the space beside it.
    void rootPixelFromGlobal(const QVPoint &global, int *column, int *row) const;

private:
    struct RootRect {
        int x, y, width, height;
    };
    void apply(QList<RootRect> monitors);
    void constrainToMonitors(int *column, int *row) const;

    QVX11Connection &m_connection;
    bool m_haveRandr = false;
    QVDisplayList m_displays;
    QList<RootRect> m_monitors;
    int m_primaryX = 0; // the primary monitor's root origin
    int m_primaryY = 0;
};
