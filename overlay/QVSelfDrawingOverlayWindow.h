#pragma once

#include "QVAlphaValueAnimationWindow.h"
#include "QVGeometry.h"

#include <QImage>

class QPainter;
class QScreen;
class QVPlatform;

// A borderless window that floats above every other window, lets the mouse
// through and draws its whole content through drawOverlayInBounds. Its frame is
// in window coordinates and device pixels, like the display frames. With a
// compositing manager it is translucent; without one it is shaped to what it
// draws, so the desktop stays visible around it.
class QVSelfDrawingOverlayWindow : public QVAlphaValueAnimationWindow
{
    Q_OBJECT

public:
    // flipContent: the drawing sees y growing downwards from the top left.
    QVSelfDrawingOverlayWindow(QVPlatform &platform, const QVRect &frame, bool flipContent = false);

    QVRect frame() const { return m_frame; }
    void setFrame(const QVRect &frame);

    // Overlays fade in ten steps.
    double alphaValueAnimationQuantum() const override { return 0.1; }
    bool canBecomeKeyWindow() const override { return false; }

protected:
    // The picture, drawn in bounds that share the frame's coordinates (flipped:
    // the window's own, from its top left). By default a light one-point border
    // around a faint dark veil.
    virtual void drawOverlayInBounds(QPainter &painter, const QVRect &bounds);
    QVPlatform &platform() const { return m_platform; }
    // The picture changed: shape the window anew and repaint it.
    void redisplay();

    void paintEvent(QPaintEvent *event) override;
    void showEvent(QShowEvent *event) override;
    void hideEvent(QHideEvent *event) override;

private:
    // Where Qt must place a window to cover the rectangle given in device pixels.
    static QRect logicalGeometry(const QRect &native, QScreen **screen);
    QVRect drawingBounds() const;
    void paintContent(QPainter &painter);
    void updateShape();

    QVPlatform &m_platform;
    QVRect m_frame;
    bool m_flipContent;
    // Without a compositor: the picture as shown, opaque, drawn when the shape is made.
    QImage m_shapedPicture;
};
