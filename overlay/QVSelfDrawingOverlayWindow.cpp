#include "QVSelfDrawingOverlayWindow.h"

#include "QVBezel.h"
#include "QVPlatform.h"
#include "QVScreenGeometry.h"
#include "QVWindowShape.h"

#include <QBitmap>
#include <QGuiApplication>
#include <QImage>
#include <QPainter>
#include <QScreen>

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
    // Window coordinates to the window system's: flip against the primary display.
    const QVDisplayList displays = m_platform.displays();
    const QVRect global = QVGlobalCGRectFromNSRect(frame, displays);
    const QVPoint origin = m_platform.windowSystemPointFromGlobal({global.x, global.y});
    const QRect native(int(std::lround(origin.x)), int(std::lround(origin.y)), int(std::lround(frame.width)),
                       int(std::lround(frame.height)));
    QScreen *screen = nullptr;
    const QRect logical = logicalGeometry(native, &screen);
    if (screen)
        setScreen(screen);
    setGeometry(logical);
    redisplay();
}

QRect QVSelfDrawingOverlayWindow::logicalGeometry(const QRect &native, QScreen **screenOut)
{
    // Qt keeps each screen's top left where it is natively and scales the rest of
    // the screen about that point.
    for (QScreen *screen : QGuiApplication::screens()) {
        const double ratio = screen->devicePixelRatio();
        const QPoint origin = screen->geometry().topLeft();
        const QRect nativeArea(origin, (QSizeF(screen->geometry().size()) * ratio).toSize());
        if (!nativeArea.contains(native.topLeft()))
            continue;
        *screenOut = screen;
        return {origin + (native.topLeft() - origin) / ratio, (QSizeF(native.size()) / ratio).toSize()};
    }
    const QScreen *primary = QGuiApplication::primaryScreen();
    const double ratio = primary ? primary->devicePixelRatio() : 1.0;
    *screenOut = nullptr;
    return {native.topLeft() / ratio, (QSizeF(native.size()) / ratio).toSize()};
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
    if (!m_shapedPicture.isNull()) {
        painter.drawImage(QPointF(0.0, 0.0), m_shapedPicture);
        return;
    }
    painter.fillRect(rect(), Qt::transparent);
    painter.setCompositionMode(QPainter::CompositionMode_SourceOver);
    paintContent(painter);
}

void QVSelfDrawingOverlayWindow::showEvent(QShowEvent *event)
{
    QVAlphaValueAnimationWindow::showEvent(event);
    updateShape();
}

void QVSelfDrawingOverlayWindow::hideEvent(QHideEvent *event)
{
    QVAlphaValueAnimationWindow::hideEvent(event);
    m_shapedPicture = QImage(); // a whole display's worth of pixels
}

void QVSelfDrawingOverlayWindow::updateShape()
{
    if (m_platform.isCompositingManagerRunning()) {
        m_shapedPicture = QImage();
        QVSetWindowShape(*this, nullptr);
        return;
    }
    // No compositor: the window shows only the pixels it draws, the faint ones
    // (the far edges of smoothed curves) left out.
    const double ratio = devicePixelRatioF();
    QImage picture(size() * ratio, QImage::Format_ARGB32_Premultiplied);
    picture.setDevicePixelRatio(ratio);
    picture.fill(Qt::transparent);
    QPainter painter(&picture);
    paintContent(painter);
    painter.end();
    const QRegion drawn(QBitmap::fromImage(picture.createAlphaMask(Qt::ThresholdAlphaDither)));
    // Nothing blends such a window with what lies beneath it: each pixel shows at
    // its own colour, fully opaque, rather than darkened by its transparency.
    m_shapedPicture = picture.convertToFormat(QImage::Format_ARGB32);
    m_shapedPicture.reinterpretAsFormat(QImage::Format_RGB32);
    QVSetWindowShape(*this, &drawn);
}
