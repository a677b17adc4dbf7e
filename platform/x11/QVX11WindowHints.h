#pragma once

#include <xcb/xcb.h>

class QVX11Connection;

// Extended window manager hints for Corvane's own top-level windows, sent on
// Corvane's connection (X windows are the server's, whichever client made them).
class QVX11WindowHints final
{
public:
    explicit QVX11WindowHints(QVX11Connection &connection);

    void setSkipsTaskbar(xcb_window_t window, bool skips);
    void activate(xcb_window_t window);

private:
    enum Atom { WmState, SkipTaskbar, SkipPager, ActiveWindow, AtomCount };

    void internAtoms();
    bool isMapped(xcb_window_t window) const;
    void changeStateOfUnmapped(xcb_window_t window, bool skips);
    void sendToRoot(xcb_window_t window, xcb_atom_t type, const uint32_t (&data)[5]);

    QVX11Connection &m_connection;
    xcb_atom_t m_atoms[AtomCount] = {};
};
