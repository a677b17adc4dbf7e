#include "QVSelfDrawingOverlayWindow.h"

#include "QVBezel.h"
#include "QVNativeWindowSystem.h"
#include "QVPlatform.h"
#include "QVScreenGeometry.h"

#include <QGuiApplication>
#include <QPaintEvent>
#include <QPainter>
#include <QScreen>

#include <cmath>

#include <malloc.h>

namespace
{
constexpr int releaseDelayMilliseconds = 5000;
}

QVSelfDrawingOverlayWindow::QVSelfDrawingOverlayWindow(
    QVPlatform &platform, const QVRect &frame, bool flipContent, Keyboard keyboard)
    : QVAlphaValueAnimationWindow(nullptr,
        Qt::FramelessWindowHint | Qt::WindowStaysOnTopHint | Qt::X11BypassWindowManagerHint
            | Qt::WindowDoesNotAcceptFocus | Qt::NoDropShadowWindowHint)
    , m_platform(platform)
    , m_flipContent(flipContent)
    , m_presenter(
          platform, keyboard == Keyboard::TakenWhileShown,
          [this](QPainter &painter, double scale) { paintContent(painter, scale); }, [this] { surfaceClosed(); })
{
    setAttribute(Qt::WA_TranslucentBackground);
    setAttribute(Qt::WA_ShowWithoutActivating);
    setIgnoresMouseEvents(true);
    // Opened again soon, an overlay keeps its native window; left alone, it lets go.
    m_releaseTimer.setSingleShot(true);
    m_releaseTimer.setInterval(releaseDelayMilliseconds);
    connect(&m_releaseTimer, &QTimer::timeout, this, &QVSelfDrawingOverlayWindow::releaseWhileHidden);
    setFrame(frame);
}

QVSelfDrawingOverlayWindow::~QVSelfDrawingOverlayWindow() = default;

void QVSelfDrawingOverlayWindow::setFrame(const QVRect &frame)
{
    m_frame = frame;
    // Window coordinates to the window system's: flip against the primary display.
    const QVDisplayList displays = m_platform.displays();
    const QVRect global = QVGlobalCGRectFromNSRect(frame, displays);
    const QVPoint origin = m_platform.windowSystemPointFromGlobal({ global.x, global.y });
    const QRect native(int(std::lround(origin.x)), int(std::lround(origin.y)), int(std::lround(frame.width)),
        int(std::lround(frame.height)));
    QScreen *screen = nullptr;
    const QRect logical = logicalGeometry(native, &screen);
    if (screen)
        setScreen(screen);
    setGeometry(logical);
    m_presenter.follow(m_frame, alphaValue());
    redisplay();
}

void QVSelfDrawingOverlayWindow::setAlphaValue(double alphaValue)
{
    QVAlphaValueAnimationWindow::setAlphaValue(alphaValue);
    m_presenter.fade(alphaValue, m_area);
}

bool QVSelfDrawingOverlayWindow::isWindowVisible() const
{
    return m_presenter.hasSurface() ? m_presenter.isVisible() : QVAlphaValueAnimationWindow::isWindowVisible();
}

void QVSelfDrawingOverlayWindow::orderFront()
{
    if (!m_presenter.hasSurface()) {
        QVAlphaValueAnimationWindow::orderFront();
        return;
    }
    m_releaseTimer.stop();
    m_area = deviceArea();
    m_presenter.show(alphaValue());
}

void QVSelfDrawingOverlayWindow::closeWindow()
{
    if (!m_presenter.hasSurface()) {
        QVAlphaValueAnimationWindow::closeWindow();
        return;
    }
    m_presenter.hide();
    m_releaseTimer.start();
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
        return { origin + (native.topLeft() - origin) / ratio, (QSizeF(native.size()) / ratio).toSize() };
    }
    const QScreen *primary = QGuiApplication::primaryScreen();
    const double ratio = primary ? primary->devicePixelRatio() : 1.0;
    *screenOut = nullptr;
    return { native.topLeft() / ratio, (QSizeF(native.size()) / ratio).toSize() };
}

void QVSelfDrawingOverlayWindow::redisplay()
{
    if (m_presenter.hasSurface()) {
        const QRegion area = m_presenter.isVisible() ? deviceArea() : QRegion();
        m_presenter.redraw(alphaValue(), m_area + area);
        m_area = area;
        return;
    }
    if (!isVisible()) {
        update(); // the area and the shape are made when it shows
        return;
    }
    const QRegion area = deviceArea();
    updateShape(area);
    update(logicalRegion(m_area + area));
    m_area = area;
}

QVRect QVSelfDrawingOverlayWindow::drawingBounds() const
{
    return m_flipContent ? QVRect { 0.0, 0.0, m_frame.width, m_frame.height } : m_frame;
}

void QVSelfDrawingOverlayWindow::drawOverlayInBounds(QPainter &painter, const QVRect &bounds)
{
    QVDrawBorderFrameInRect(painter, QColor::fromRgbF(0.7f, 0.7f, 0.7f, 0.95f), bounds);
    painter.fillRect(QRectF(bounds.x + 1.0, bounds.y + 1.0, bounds.width - 2.0, bounds.height - 2.0),
        QColor::fromRgbF(0.0f, 0.0f, 0.0f, 0.13f));
}

QList<QVRect> QVSelfDrawingOverlayWindow::drawingAreaInBounds(const QVRect &) const
{
    return {};
}

QRegion QVSelfDrawingOverlayWindow::deviceArea() const
{
    const QRect whole(QPoint(0, 0), m_presenter.hasSurface() ? m_presenter.pixelSize() : size() * devicePixelRatioF());
    const QList<QVRect> area = drawingAreaInBounds(drawingBounds());
    if (area.isEmpty())
        return whole;
    QRegion region;
    for (const QVRect &rect : area)
        region += deviceRect(rect);
    return region & whole;
}

QRect QVSelfDrawingOverlayWindow::deviceRect(const QVRect &rect) const
{
    // Whole pixels covering the rectangle, counted from the window's top left. An
    // overlay surface's picture has the display's scale; X11 frames are in pixels.
    const double scale = m_presenter.scale();
    const double left = (m_flipContent ? rect.x : rect.x - m_frame.x) * scale;
    const double top = (m_flipContent ? rect.y : m_frame.maxY() - rect.maxY()) * scale;
    const int x = int(std::floor(left));
    const int y = int(std::floor(top));
    return { x, y, int(std::ceil(left + rect.width * scale)) - x, int(std::ceil(top + rect.height * scale)) - y };
}

QRegion QVSelfDrawingOverlayWindow::logicalRegion(const QRegion &device) const
{
    const double ratio = devicePixelRatioF();
    QRegion logical;
    for (const QRect &rect : device) {
        const int x = int(std::floor(rect.left() / ratio));
        const int y = int(std::floor(rect.top() / ratio));
        logical += QRect(
            x, y, int(std::ceil((rect.right() + 1) / ratio)) - x, int(std::ceil((rect.bottom() + 1) / ratio)) - y);
    }
    return logical;
}

void QVSelfDrawingOverlayWindow::paintContent(QPainter &painter, double scale)
{
    // Draw in device pixels, in the frame's own coordinates.
    painter.scale(scale, scale);
    if (!m_flipContent) {
        painter.translate(-m_frame.x, m_frame.maxY());
        painter.scale(1.0, -1.0);
    }
    drawOverlayInBounds(painter, drawingBounds());
}

void QVSelfDrawingOverlayWindow::paintEvent(QPaintEvent *event)
{
    QPainter painter(this);
    painter.setCompositionMode(QPainter::CompositionMode_Source);
    const double ratio = devicePixelRatioF();
    if (m_shaped) {
        const QImage &picture = m_shapedPicture.image();
        painter.scale(1.0 / ratio, 1.0 / ratio);
        for (const QRect &rect : event->region()) {
            const QRect device = QRect(rect.topLeft() * ratio, rect.size() * ratio) & picture.rect();
            painter.drawImage(device.topLeft(), picture, device);
        }
        return;
    }
    painter.fillRect(rect(), Qt::transparent);
    painter.setCompositionMode(QPainter::CompositionMode_SourceOver);
    paintContent(painter, 1.0 / ratio);
}

void QVSelfDrawingOverlayWindow::showEvent(QShowEvent *event)
{
    m_releaseTimer.stop();
    QVAlphaValueAnimationWindow::showEvent(event);
    // Asked once a showing: a compositing manager rarely comes or goes meanwhile.
    m_shaped = !m_platform.isCompositingManagerRunning();
    if (!m_shaped) {
        m_shapedPicture.clear();
        QVSetWindowShape(*this, nullptr);
    }
    m_area = deviceArea();
    updateShape(m_area);
}

void QVSelfDrawingOverlayWindow::hideEvent(QHideEvent *event)
{
    QVAlphaValueAnimationWindow::hideEvent(event);
    m_releaseTimer.start();
}

void QVSelfDrawingOverlayWindow::releaseWhileHidden()
{
    if (isWindowVisible())
        return;
    m_presenter.releasePicture();
    // An overlay holds a display's worth of pixels twice over (its picture and
    // Qt's backing store, shared with the X server); an idle Corvane keeps neither.
    // Showing it again makes a new native window, which takes a few milliseconds.
    m_shapedPicture.clear();
    destroy();
    malloc_trim(0);
}

void QVSelfDrawingOverlayWindow::updateShape(const QRegion &area)
{
    if (!m_shaped)
        return;
    // No compositor: the window shows only the pixels it draws.
    const QRegion drawn = m_shapedPicture.redraw(
        size() * devicePixelRatioF(), area, [this](QPainter &painter) { paintContent(painter, 1.0); });
    QVSetWindowShape(*this, &drawn);
}
