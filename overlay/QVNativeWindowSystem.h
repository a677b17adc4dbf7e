#pragma once

// The X server behind Qt's own windows, reached through Qt's connection to it.

class QRegion;
class QWidget;

// Shapes a top-level window to a region in device pixels, or gives it back its
// whole rectangle for null. On X11 the shape goes straight to the server: Qt's own
// masks are in logical pixels and lose one-pixel lines at scale factors above 1.
void QVSetWindowShape(QWidget &window, const QRegion *devicePixels);

// Sends what Qt has queued for the window system; Qt's xcb plugin holds some
// requests (a window's opacity, for one) until something else goes out.
void QVFlushWindowSystem();
