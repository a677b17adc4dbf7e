#include "QVSelfDrawingOverlayWindow.h"

#include "QVBezel.h"
#include "QVPlatform.h"
#include "QVScreenGeometry.h"

#include <QBitmap>
#include <QImage>
#include <QPainter>

#include <cmath>

QVSelfDrawingOverlayWindow::QVSelfDrawingOverlayWindow(QVPlatform &platform, const QVRect &frame, bool flipContent)
    : QVAlphaValueAnimationWindow(nullptr, Qt::FramelessWindowHint | Qt::WindowStaysOnTopHint
                                               | Qt::X11BypassWindowManagerHint | Qt::WindowDoesNotAcceptFocus
                                               | Qt::NoDropShadowWindowHint),
      m_platform(platform),
      m_flipContent(flipContent)
{
    setAttribute(Qt::WA_TranslucentBackground);
    setAttribute(Qt::WA_ShowWithoutActivating);
    setIgnoresMouseEvents(true);
    setFrame(frame);
}

void QVSelfDrawingOverlayWindow::setFrame(const QVRect &frame)
{
    m_frame = frame;
    // Window coordinates to the window system's: flip against the primary display,
    // then from device to Qt's logical pixels.
    const QVDisplayList displays = m_platform.displays();
    const QVRect global = QVGlobalCGRectFromNSRect(frame, displays);
    const QVPoint origin = m_platform.windowSystemPointFromGlobal({global.x, global.y});
    const double ratio = devicePixelRatioF();
    setGeometry(QRect(int(std::lround(origin.x / ratio)), int(std::lround(origin.y / ratio)),
                      int(std::lround(frame.width / ratio)), int(std::lround(frame.height / ratio))));
    redisplay();
}

void QVSelfDrawingOverlayWindow::redisplay()
{
    if (isVisible())
        updateShape();
    update();
}

QVRect QVSelfDrawingOverlayWindow::drawingBounds() const
{
    return m_flipContent ? QVRect{0.0, 0.0, m_frame.width, m_frame.height} : m_frame;
}

void QVSelfDrawingOverlayWindow::drawOverlayInBounds(QPainter &painter, const QVRect &bounds)
{
    QVDrawBorderFrameInRect(painter, QColor::fromRgbF(0.7f, 0.7f, 0.7f, 0.95f), bounds);
    painter.fillRect(QRectF(bounds.x + 1.0, bounds.y + 1.0, bounds.width - 2.0, bounds.height - 2.0),
                     QColor::fromRgbF(0.0f, 0.0f, 0.0f, 0.13f));
}

void QVSelfDrawingOverlayWindow::paintContent(QPainter &painter)
{
    // Draw in device pixels, in the frame's own coordinates.
    const double ratio = devicePixelRatioF();
    painter.scale(1.0 / ratio, 1.0 / ratio);
    if (m_flipContent) {
        painter.translate(0.0, 0.0);
    } else {
        painter.translate(-m_frame.x, m_frame.maxY());
        painter.scale(1.0, -1.0);
    }
    drawOverlayInBounds(painter, drawingBounds());
}

void QVSelfDrawingOverlayWindow::paintEvent(QPaintEvent *)
{
    QPainter painter(this);
    painter.setCompositionMode(QPainter::CompositionMode_Source);
    painter.fillRect(rect(), Qt::transparent);
    painter.setCompositionMode(QPainter::CompositionMode_SourceOver);
    paintContent(painter);
}

void QVSelfDrawingOverlayWindow::showEvent(QShowEvent *event)
{
    QVAlphaValueAnimationWindow::showEvent(event);
    updateShape();
}

void QVSelfDrawingOverlayWindow::updateShape()
{
    if (m_platform.isCompositingManagerRunning()) {
        clearMask();
        return;
    }
    // No compositor: the window shows only the pixels it draws.
    QImage picture(size() * devicePixelRatioF(), QImage::Format_ARGB32_Premultiplied);
    picture.setDevicePixelRatio(devicePixelRatioF());
    picture.fill(Qt::transparent);
    QPainter painter(&picture);
    paintContent(painter);
    painter.end();
    QBitmap shape = QBitmap::fromImage(picture.createAlphaMask());
    shape.setDevicePixelRatio(devicePixelRatioF());
    setMask(shape);
}
