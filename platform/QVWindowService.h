#pragma once

#include <QtGlobal>

// What the application's own windows need from the window manager beyond what Qt offers.
class QVWindowService
{
public:
    virtual ~QVWindowService() = default;

    // Whether the top-level window shows in task bars and pagers. Call it before the
    // window maps (every time: a window manager forgets the state of a withdrawn
    // window) and again while it is mapped when the choice changes.
    virtual void setWindowListedInTaskbar(quintptr window, bool listed) = 0;
    // Raises and focuses the window on the user's behalf, as a pager does, so that
    // a second launch brings it forward over the application the user is in.
    virtual void activateWindow(quintptr window) = 0;
};
