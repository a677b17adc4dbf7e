#include "QVScreenOverlayPanel.h"

#include "QVBezel.h"
#include "QVLog.h"
#include "QVPlatform.h"
#include "QVScreenOverlayPanelDelegate.h"
#include "QVScreenSection.h"

#include <QApplication>
#include <QPainter>
#include <QPalette>

namespace
{

QRectF toQRect(const QVRect &rect)
{
    return { rect.x, rect.y, rect.width, rect.height };
}

} // namespace

QVScreenOverlayPanel::QVScreenOverlayPanel(QVPlatform &platform, const QVRect &frame)
    : QVSelfDrawingOverlayWindow(platform, frame, false, Keyboard::TakenWhileShown)
{
    stepsChanged();
}

void QVScreenOverlayPanel::setActive(bool active)
{
    if (active == m_active) {
        if (active)
            redisplay();
        return;
    }
    if (active) {
        // The keyboard first: once the overlay is on screen, the next key is its own.
        if (!platform().takeKeyboard()) {
            QVLog(QStringLiteral("the screen section overlay cannot have the keyboard: another program holds it"));
            platform().beep();
            return;
        }
        m_active = true;
        stepsChanged();
        orderFrontAndFadeInToAlphaValue(1.0, false);
        return;
    }
    m_active = false;
    platform().releaseKeyboard();
    vanishAndClose();
    m_steps.clear();
}

void QVScreenOverlayPanel::addStep(qint64 position)
{
    m_steps.append(position);
    stepsChanged();
}

void QVScreenOverlayPanel::removeLastStep()
{
    if (m_steps.isEmpty())
        return;
    m_steps.removeLast();
    stepsChanged();
}

void QVScreenOverlayPanel::stepsChanged()
{
    // Known before the next key arrives, whenever the picture gets painted.
    bool valid = true;
    const QList<QVRect> sections = QVScreenSection::sectionsForSteps(frame(), m_steps, &valid);
    if (valid)
        m_focusPoint = QVScreenSection::focusPoint(sections.last());
    redisplay();
}

void QVScreenOverlayPanel::sendEvent(const QVEventRef &event)
{
    if (!m_active)
        return;
    if (event->type == QVEvent::KeyDown && m_delegate)
        m_delegate->handleKeyDownEvent(*event, *this);
    else if (event->type == QVEvent::LeftMouseDown)
        resignKeyWindow();
}

void QVScreenOverlayPanel::resignKeyWindow()
{
    setActive(false);
}

QColor QVScreenOverlayPanel::selectedControlColor()
{
    return QApplication::palette().color(QPalette::Active, QPalette::Highlight);
}

QColor QVScreenOverlayPanel::alternateSelectedControlColor()
{
    return selectedControlColor().darker(160);
}

void QVScreenOverlayPanel::drawOverlayInBounds(QPainter &painter, const QVRect &bounds)
{
    painter.save();
    // A pale halo first, so that the lines show on any background.
    drawOverlayInBounds(painter, bounds, 1.0, QColor::fromRgbF(1.0f, 1.0f, 1.0f, 0.5f), false);
    drawOverlayInBounds(painter, bounds, 0.0, selectedControlColor(), true);
    painter.restore();
}

QList<QVRect> QVScreenOverlayPanel::drawingAreaInBounds(const QVRect &bounds) const
{
    bool valid = true;
    const QList<QVRect> sections = QVScreenSection::sectionsForSteps(bounds, m_steps, &valid);
    if (!valid)
        return {};
    // Every level's cross hair, and the current section's with its halo and ring.
    QList<QVRect> area;
    for (const QVRect &section : sections) {
        const double emphasis = &section == &sections.last() ? 1.0 : 0.0;
        area << QVScreenSection::verticalBar(section, emphasis) << QVScreenSection::horizontalBar(section, emphasis);
    }
    const QVRect ring = QVScreenSection::ringRect(sections.last());
    const double strokeMargin = 2.0; // half the halo's stroke, and a pixel of smoothing
    area << QVRect { ring.x - strokeMargin, ring.y - strokeMargin, ring.width + 2.0 * strokeMargin,
        ring.height + 2.0 * strokeMargin };
    return area;
}

void QVScreenOverlayPanel::drawOverlayInBounds(
    QPainter &painter, const QVRect &bounds, double emphasis, const QColor &color, bool highlightLastSection)
{
    bool valid = true;
    const QList<QVRect> sections = QVScreenSection::sectionsForSteps(bounds, m_steps, &valid);
    if (highlightLastSection)
        for (const QVRect &section : sections)
            QVDrawCrossHairInRect(painter, color, section, emphasis);
    if (!valid) {
        QVLog(QStringLiteral("freak section direction"));
        return;
    }
    const QVRect &section = sections.last();
    const QColor ringColor = highlightLastSection ? alternateSelectedControlColor() : color;
    painter.setRenderHint(QPainter::Antialiasing, true);
    QVDrawIdenticalRadiiBevel(
        painter, ringColor, nullptr, QColor(), QVScreenSection::ringRect(section), 16.0, 2.0 * emphasis + 1.0);
    painter.setRenderHint(QPainter::Antialiasing, false);
    QVDrawCrossHairInRect(painter, ringColor, section, emphasis);
    if (highlightLastSection)
        m_focusPoint = QVScreenSection::focusPoint(section);
}

void QVDrawCrossHairInRect(QPainter &painter, const QColor &color, const QVRect &rect, double emphasis)
{
    painter.fillRect(toQRect(QVScreenSection::verticalBar(rect, emphasis)), color);
    painter.fillRect(toQRect(QVScreenSection::horizontalBar(rect, emphasis)), color);
}
