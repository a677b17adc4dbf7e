#pragma once

#include "QVGeometry.h"

#include <QImage>
#include <QList>
#include <QRegion>
#include <QString>

#include <functional>
#include <memory>
#include <optional>

class QPainter;
class QVOverlaySurface;
class QVPlatform;
struct QVDisplay;

// Shows an overlay's picture on the platform's overlay surface of the display the
// overlay covers, where the platform offers such surfaces (Wayland, whose
// compositors place Qt's windows as they see fit). It keeps the picture at full
// alpha and fades copies of it, so that a fade step draws nothing anew.
class QVOverlaySurfacePresenter final
{
public:
    // Draws the picture; the scale takes the overlay's units to the picture's pixels.
    using Painter = std::function<void(QPainter &painter, double scale)>;

    // closed: the window system took the surface away while shown (its display went).
    QVOverlaySurfacePresenter(QVPlatform &platform, bool takesKeyboard, Painter painter, std::function<void()> closed);
    ~QVOverlaySurfacePresenter();
    QVOverlaySurfacePresenter(const QVOverlaySurfacePresenter &) = delete;
    QVOverlaySurfacePresenter &operator=(const QVOverlaySurfacePresenter &) = delete;

    // Moves onto the surface of the display the frame covers; one shown moves shown.
    void follow(const QVRect &frame, double alpha);
    // Whether there is a surface to show the picture on: else the overlay is a window.
    bool hasSurface() const { return m_surface != nullptr; }
    bool isVisible() const;
    int scale() const;
    QSize pixelSize() const;

    void show(double alpha);
    void hide();
    // The picture changed: drawn anew, shown at once when visible. damage: what
    // changed, in the picture's pixels.
    void redraw(double alpha, const QRegion &damage);
    // The same picture at another alpha.
    void fade(double alpha, const QRegion &damage);
    // Drops the picture while hidden: an idle Corvane keeps no display's worth of pixels.
    void releasePicture();

    static const QVDisplay *displayCoveredBy(const QVRect &frame, const QList<QVDisplay> &displays);

private:
    void present(double alpha, const QRegion &damage);

    QVPlatform &m_platform;
    bool m_takesKeyboard;
    Painter m_painter;
    std::function<void()> m_closed;
    std::unique_ptr<QVOverlaySurface> m_surface;
    QString m_display;
    std::optional<bool> m_offered; // whether the platform offers surfaces at all, once asked
    QImage m_picture; // at full alpha, in the surface's pixels
    bool m_pictureValid = false;
};
