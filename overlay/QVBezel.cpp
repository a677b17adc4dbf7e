#include "QVBezel.h"

#include <QLinearGradient>
#include <QPainter>

#include <cmath>

namespace
{

bool isRounded(double radius)
{
    return std::isnan(radius) || radius >= 1.0;
}

// A quarter arc around the centre, from one angle to the next, in y-up terms.
void quarterArc(QPainterPath &path, double centerX, double centerY, double radius, double fromDegrees)
{
    // Qt measures angles with y growing downwards; our y grows upwards.
    path.arcTo(QRectF(centerX - radius, centerY - radius, 2.0 * radius, 2.0 * radius), -fromDegrees, -90.0);
}

QRectF toQRect(const QVRect &rect)
{
    return { rect.x, rect.y, rect.width, rect.height };
}

} // namespace

QPainterPath QVBezel(const QVRect &r, double topLeft, double topRight, double bottomLeft, double bottomRight)
{
    QPainterPath path;
    // Counter-clockwise from the top right.
    if (isRounded(topRight)) {
        path.moveTo(r.maxX(), r.maxY() - topRight);
        quarterArc(path, r.maxX() - topRight, r.maxY() - topRight, topRight, 0.0);
    } else {
        path.moveTo(r.maxX(), r.maxY());
    }
    if (isRounded(topLeft))
        quarterArc(path, r.x + topLeft, r.maxY() - topLeft, topLeft, 90.0);
    else
        path.lineTo(r.x, r.maxY());
    if (isRounded(bottomLeft))
        quarterArc(path, r.x + bottomLeft, r.y + bottomLeft, bottomLeft, 180.0);
    else
        path.lineTo(r.x, r.y);
    if (isRounded(bottomRight))
        quarterArc(path, r.maxX() - bottomRight, r.y + bottomRight, bottomRight, 270.0);
    else
        path.lineTo(r.maxX(), r.y);
    path.closeSubpath();
    return path;
}

void QVDrawBevel(QPainter &painter, const QColor &stroke, const QLinearGradient *gradient, const QColor &fill,
    const QVRect &rect, double topLeft, double topRight, double bottomLeft, double bottomRight, double lineWidth)
{
    const QPainterPath path = QVBezel(rect, topLeft, topRight, bottomLeft, bottomRight);
    if (gradient) {
        // Top to bottom: in y-up terms the gradient starts at maxY.
        QLinearGradient vertical(*gradient);
        vertical.setStart(rect.x, rect.maxY());
        vertical.setFinalStop(rect.x, rect.y);
        painter.fillPath(path, vertical);
    } else if (fill.isValid()) {
        painter.fillPath(path, fill);
    }
    if (stroke.isValid()) {
        QPen pen(stroke);
        pen.setWidthF(lineWidth);
        painter.strokePath(path, pen);
    }
}

void QVDrawIdenticalRadiiBevel(QPainter &painter, const QColor &stroke, const QLinearGradient *gradient,
    const QColor &fill, const QVRect &rect, double radius, double lineWidth)
{
    QVDrawBevel(painter, stroke, gradient, fill, rect, radius, radius, radius, radius, lineWidth);
}

void QVDrawBorderFrameInRect(QPainter &painter, const QColor &color, const QVRect &r)
{
    painter.fillRect(toQRect({ r.x, r.y, r.width, 1.0 }), color);
    painter.fillRect(toQRect({ r.x, r.maxY() - 1.0, r.width, 1.0 }), color);
    // The sides leave the corners out: a translucent colour must not be painted twice.
    painter.fillRect(toQRect({ r.x, r.y + 1.0, 1.0, r.height - 2.0 }), color);
    painter.fillRect(toQRect({ r.maxX() - 1.0, r.y + 1.0, 1.0, r.height - 2.0 }), color);
}
