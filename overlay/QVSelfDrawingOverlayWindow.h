#pragma once

#include "QVAlphaValueAnimationWindow.h"
#include "QVGeometry.h"
#include "QVOverlaySurfacePresenter.h"
#include "QVShapedPicture.h"

#include <QList>
#include <QRegion>
#include <QTimer>

class QPainter;
class QScreen;
class QVPlatform;

// A borderless window that floats above every other window, lets the mouse
// through and draws its whole content through drawOverlayInBounds. Its frame is
// in window coordinates, like the display frames. With a compositing manager it
// is translucent; without one it is shaped to what it draws, so the desktop stays
// visible around it. Where the platform offers overlay surfaces (Wayland, whose
// compositors place Qt's windows as they see fit), the picture goes there instead
// and the widget itself never shows.
class QVSelfDrawingOverlayWindow : public QVAlphaValueAnimationWindow
{
    Q_OBJECT

public:
    enum class Keyboard { Left, TakenWhileShown };

    // flipContent: the drawing sees y growing downwards from the top left.
    QVSelfDrawingOverlayWindow(
        QVPlatform &platform, const QVRect &frame, bool flipContent = false, Keyboard keyboard = Keyboard::Left);
    ~QVSelfDrawingOverlayWindow() override;

    QVRect frame() const { return m_frame; }
    void setFrame(const QVRect &frame);

    // Overlays fade in ten steps.
    double alphaValueAnimationQuantum() const override { return 0.1; }
    bool canBecomeKeyWindow() const override { return false; }

    void setAlphaValue(double alphaValue) override;
    bool isWindowVisible() const override;
    void orderFront() override;
    void closeWindow() override;

protected:
    // The picture, drawn in bounds that share the frame's coordinates (flipped:
    // the window's own, from its top left). By default a light one-point border
    // around a faint dark veil.
    virtual void drawOverlayInBounds(QPainter &painter, const QVRect &bounds);
    // Where drawOverlayInBounds may put pixels, in the same coordinates; nothing
    // said means anywhere. A change then repaints only the areas before and after.
    virtual QList<QVRect> drawingAreaInBounds(const QVRect &bounds) const;
    QVPlatform &platform() const { return m_platform; }
    // The picture changed: shape the window anew and repaint it.
    void redisplay();
    // The window system took the overlay surface away while shown (its display went).
    virtual void surfaceClosed() { }

    void paintEvent(QPaintEvent *event) override;
    void showEvent(QShowEvent *event) override;
    void hideEvent(QHideEvent *event) override;

private:
    // Where Qt must place a window to cover the rectangle given in device pixels.
    static QRect logicalGeometry(const QRect &native, QScreen **screen);
    QVRect drawingBounds() const;
    // The drawing area in the window's device pixels.
    QRegion deviceArea() const;
    QRect deviceRect(const QVRect &rect) const;
    QRegion logicalRegion(const QRegion &device) const;
    // Draws the picture; scale takes device pixels to the painter's.
    void paintContent(QPainter &painter, double scale);
    void updateShape(const QRegion &area);
    void releaseWhileHidden();

    QVPlatform &m_platform;
    QVRect m_frame;
    bool m_flipContent;
    QRegion m_area; // what the picture on screen may cover, device pixels
    bool m_shaped = false;
    QVShapedPicture m_shapedPicture;
    QTimer m_releaseTimer;
    QVOverlaySurfacePresenter m_presenter; // where the picture goes instead of the window
};
