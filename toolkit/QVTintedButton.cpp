#include "QVTintedButton.h"

#include <QPainter>
#include <QPainterPath>
#include <QStyleOptionButton>

QVTintedButton::QVTintedButton(QWidget *parent)
    : QPushButton(parent)
{
}

QVTintedButton::QVTintedButton(const QString &text, QWidget *parent)
    : QPushButton(text, parent)
{
}

void QVTintedButton::setTintColor(const std::optional<QColor> &color)
{
    m_tintColor = color;
    update();
}

void QVTintedButton::setTintGradient(const std::optional<QGradientStops> &gradient)
{
    m_tintGradient = gradient;
    update();
}

void QVTintedButton::tintButton(QPainter &painter, const std::optional<QColor> &color,
    const std::optional<QGradientStops> &gradient, const QRectF &rect)
{
    if (!color && !gradient)
        return;
    painter.save();
    painter.setRenderHint(QPainter::Antialiasing);
    QPainterPath capsule;
    capsule.addRoundedRect(rect, rect.height() / 2, rect.height() / 2);
    if (color) {
        // Multiplying never brightens a channel: the bezel's shading shows through, only darker.
        painter.setCompositionMode(QPainter::CompositionMode_Multiply);
        painter.fillPath(capsule, *color);
    }
    if (gradient) {
        painter.setCompositionMode(QPainter::CompositionMode_SourceOver);
        QLinearGradient upwards(rect.left(), rect.bottom(), rect.left(), rect.top());
        upwards.setStops(*gradient);
        painter.fillPath(capsule, upwards);
    }
    painter.restore();
}

void QVTintedButton::paintEvent(QPaintEvent *event)
{
    QPushButton::paintEvent(event);
    const std::optional<QColor> color = tintColor();
    if (!color && !m_tintGradient)
        return;
    QPainter painter(this);
    tintButton(painter, color, m_tintGradient, bezelRect());
}

QRectF QVTintedButton::bezelRect() const
{
    // Stands in for shrinking the bounds by the control size: the style says where it draws
    // the bevel (the bounds less any default-button frame), whatever the font and size.
    QStyleOptionButton option;
    initStyleOption(&option);
    return style()->subElementRect(QStyle::SE_PushButtonBevel, &option, this);
}
