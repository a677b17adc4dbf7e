#pragma once

#include "QVDisplay.h"

#include <xcb/xcb.h>

class QVX11Connection;

// The RandR monitors in window coordinates, primary first. The list is read
// once and again after every RandR change notification.
class QVX11Displays final
{
public:
    explicit QVX11Displays(QVX11Connection &connection);

    bool initialize();
    // Handles a RandR notification; false for any other event.
    bool handleEvent(const xcb_generic_event_t *event);

    const QVDisplayList &displays();
    QVPoint windowPointFromRoot(int column, int row);
    // The root pixel of a global point (y down from the primary's top left).
    void rootPixelFromGlobal(const QVPoint &global, int *column, int *row);

private:
    void read();
    struct RootRect {
        int x, y, width, height;
    };
    QList<RootRect> readMonitors() const;

    QVX11Connection &m_connection;
    quint8 m_randrFirstEvent = 0;
    bool m_haveRandr = false;
    bool m_stale = true;
    QVDisplayList m_displays;
    int m_primaryX = 0; // the primary monitor's root origin
    int m_primaryY = 0;
};
