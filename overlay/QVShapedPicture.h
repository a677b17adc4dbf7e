#pragma once

#include <QImage>
#include <QRegion>

#include <functional>

class QPainter;

// What an overlay window shows when no compositing manager runs: the window is
// shaped to the pixels drawn, and those show at their own colour, fully opaque,
// since nothing blends them with what lies beneath. Everything is in device
// pixels, and a redraw costs in proportion to the area it may touch rather than
// to the size of the display.
class QVShapedPicture final
{
public:
    // Draws the whole picture into a painter in device pixels; clipping keeps it cheap.
    using Drawing = std::function<void(QPainter &)>;

    // Redraws the area (device pixels) of a picture of the given size; the rest
    // keeps what it had. Returns the pixels drawn in the area, the window's shape
    // there; the faint edges of smoothed curves are left out.
    QRegion redraw(const QSize &size, const QRegion &area, const Drawing &drawing);
    const QImage &image() const { return m_image; }
    void clear() { m_image = QImage(); }

private:
    static QRegion drawnPixels(const QImage &image, const QRegion &area);
    void makeOpaque(const QRegion &region);

    QImage m_image;
};
