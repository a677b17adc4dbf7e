#include "QVStaticBorderGradientButton.h"

#include "QVPainterExtensions.h"

#include <QPainter>

QVStaticBorderGradientButton::QVStaticBorderGradientButton(QWidget *parent)
    : QPushButton(parent)
{
    // The outline is the button's only frame; the style draws its bezel only while pressed.
    setFlat(true);
}

void QVStaticBorderGradientButton::paintEvent(QPaintEvent *event)
{
    QPushButton::paintEvent(event);
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    // The outline keeps a row free above and below it.
    QVFrameRectInside(painter, QRectF(rect()).adjusted(0, 1, 0, -1), QColor::fromRgbF(0.6f, 0.6f, 0.6f));
}
