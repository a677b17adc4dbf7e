#pragma once

#include <QSize>

#include <functional>

class QImage;
class QRegion;

// A surface above every window, covering one display, that shows a picture the
// caller draws: the overlay where Qt's windows cannot float above the others
// (on Wayland, Qt's windows are ordinary toplevels the compositor places).
class QVOverlaySurface
{
public:
    virtual ~QVOverlaySurface() = default;

    // The size of the picture to draw, in device pixels (the display's size in
    // window coordinates times the display's scale).
    virtual QSize pixelSize() const = 0;
    // The display's scale: pixels of the picture per unit of window coordinates.
    virtual int scale() const = 0;
    // Shows this picture (premultiplied ARGB, pixelSize()) from now on; damage is
    // what changed since the last one, in its pixels, all of it when empty.
    virtual void setPicture(const QImage &picture, const QRegion &damage) = 0;
    virtual void setVisible(bool visible) = 0;
    virtual bool isVisible() const = 0;
    // Told when the window system hides it for good while shown (its display went):
    // whoever showed it must not count on it, nor on the keyboard it had.
    virtual void setClosedListener(std::function<void()> listener) = 0;
};
