#include "QVOverlaySurfacePresenter.h"

#include "QVActionCodes.h"
#include "QVPlatform.h"
#include "QVScreenGeometry.h"

#include <QPainter>

QVOverlaySurfacePresenter::QVOverlaySurfacePresenter(
    QVPlatform &platform, bool takesKeyboard, Painter painter, std::function<void()> closed)
    : m_platform(platform)
    , m_takesKeyboard(takesKeyboard)
    , m_painter(std::move(painter))
    , m_closed(std::move(closed))
{
}

QVOverlaySurfacePresenter::~QVOverlaySurfacePresenter() = default;

void QVOverlaySurfacePresenter::follow(const QVRect &frame, double alpha)
{
    // A platform that offered no surface at first never will (X11 has no need).
    if (!m_offered.value_or(true))
        return;
    const QVDisplayList displays = m_platform.displays();
    const QVDisplay *display = displayCoveredBy(frame, displays);
    // Without a display under the frame (one unplugged just now), the surface stays.
    if (!display || (m_surface && display->name == m_display))
        return;
    const bool wasShown = isVisible();
    m_surface.reset(); // hidden first: two overlays never fight for the keyboard
    m_pictureValid = false;
    m_surface = m_platform.createOverlaySurface(*display, m_takesKeyboard);
    if (!m_offered)
        m_offered = m_surface != nullptr;
    m_display = m_surface ? display->name : QString();
    if (!m_surface)
        return;
    m_surface->setClosedListener([this] {
        // A display of the same name that comes back needs a surface of its own.
        m_display.clear();
        if (m_closed)
            m_closed();
    });
    if (wasShown)
        show(alpha);
}

const QVDisplay *QVOverlaySurfacePresenter::displayCoveredBy(const QVRect &frame, const QList<QVDisplay> &displays)
{
    for (const QVDisplay &display : displays) {
        if (display.frame == frame)
            return &display;
    }
    return screenAtPosition(QVPosition::None, frame.center(), displays);
}

bool QVOverlaySurfacePresenter::isVisible() const
{
    return m_surface && m_surface->isVisible();
}

int QVOverlaySurfacePresenter::scale() const
{
    return m_surface ? m_surface->scale() : 1;
}

QSize QVOverlaySurfacePresenter::pixelSize() const
{
    return m_surface ? m_surface->pixelSize() : QSize();
}

void QVOverlaySurfacePresenter::show(double alpha)
{
    if (!m_surface)
        return;
    present(alpha, QRegion());
    m_surface->setVisible(true);
}

void QVOverlaySurfacePresenter::hide()
{
    if (m_surface)
        m_surface->setVisible(false);
}

void QVOverlaySurfacePresenter::redraw(double alpha, const QRegion &damage)
{
    m_pictureValid = false;
    if (isVisible())
        present(alpha, damage);
}

void QVOverlaySurfacePresenter::fade(double alpha, const QRegion &damage)
{
    if (isVisible())
        present(alpha, damage);
}

void QVOverlaySurfacePresenter::releasePicture()
{
    if (isVisible())
        return;
    m_picture = QImage();
    m_pictureValid = false;
}

void QVOverlaySurfacePresenter::present(double alpha, const QRegion &damage)
{
    const QSize size = m_surface->pixelSize();
    if (!m_pictureValid || m_picture.size() != size) {
        m_picture = QImage(size, QImage::Format_ARGB32_Premultiplied);
        m_picture.fill(Qt::transparent);
        QPainter painter(&m_picture);
        m_painter(painter, m_surface->scale());
        m_pictureValid = true;
    }
    if (alpha >= 1.0) {
        m_surface->setPicture(m_picture, damage);
        return;
    }
    // The whole picture fades as one, as a window's opacity does: overlapping strokes do not add up.
    QImage faded(size, QImage::Format_ARGB32_Premultiplied);
    faded.fill(Qt::transparent);
    QPainter painter(&faded);
    painter.setOpacity(alpha);
    painter.drawImage(0, 0, m_picture);
    painter.end();
    m_surface->setPicture(faded, damage);
}
