#include "QVPainterExtensions.h"

#include <QPainter>
#include <QPainterPath>

void QVFrameRectInside(QPainter &painter, const QRectF &rect, const QColor &color)
{
    QPainterPath band; // odd-even filling leaves the inner rectangle out
    band.addRect(rect);
    band.addRect(rect.adjusted(1, 1, -1, -1));
    painter.fillPath(band, color);
}
