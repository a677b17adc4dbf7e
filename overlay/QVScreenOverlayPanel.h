#pragma once

#include "QVEvent.h"
#include "QVSelfDrawingOverlayWindow.h"

#include <QColor>
#include <QList>

class QVScreenOverlayPanelDelegate;

// The full-screen overlay that narrows a display down: each step keeps one half
// of the current section; the pointer goes to the centre of the last one. While
// active it has the keyboard, taken through the platform.
class QVScreenOverlayPanel final : public QVSelfDrawingOverlayWindow
{
    Q_OBJECT

public:
    QVScreenOverlayPanel(QVPlatform &platform, const QVRect &frame);

    void setDelegate(QVScreenOverlayPanelDelegate *delegate) { m_delegate = delegate; }

    bool active() const { return m_active; }
    void setActive(bool active);
    const QList<qint64> &steps() const { return m_steps; }
    void addStep(qint64 position);
    void removeLastStep();
    // The centre of the current section, in window coordinates.
    QVPoint focusPoint() const { return m_focusPoint; }
    void setFocusPoint(const QVPoint &point) { m_focusPoint = point; }

    // Keys while active go to the delegate; a click elsewhere closes the overlay.
    void sendEvent(const QVEventRef &event);
    // Losing the keyboard closes without moving the pointer.
    void resignKeyWindow();

    double alphaValueAnimationStepInterval() const override { return 0.015; }

    // The two colours of the lines: every level's, and the current section's.
    static QColor selectedControlColor();
    static QColor alternateSelectedControlColor();

    // The cross hairs and the ring: where the picture may have pixels.
    QList<QVRect> drawingAreaInBounds(const QVRect &bounds) const override;

protected:
    void drawOverlayInBounds(QPainter &painter, const QVRect &bounds) override;
    // Gone with its display: as losing the keyboard, it closes without moving the pointer.
    void surfaceClosed() override { resignKeyWindow(); }

private:
    void drawOverlayInBounds(
        QPainter &painter, const QVRect &bounds, double emphasis, const QColor &color, bool highlightLastSection);
    void stepsChanged();

    QVScreenOverlayPanelDelegate *m_delegate = nullptr;
    bool m_active = false;
    QList<qint64> m_steps;
    QVPoint m_focusPoint;
};

// Fills the two bars that split the rectangle in halves.
void QVDrawCrossHairInRect(QPainter &painter, const QColor &color, const QVRect &rect, double emphasis);
