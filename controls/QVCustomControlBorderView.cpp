#include "QVCustomControlBorderView.h"

#include "QVPainterExtensions.h"

#include <QPainter>
#include <QPainterPath>

namespace
{

QColor outlineColor()
{
    return QColor::fromRgbF(0, 0, 0, 0.2f);
}

QColor fillColor()
{
    return QColor::fromRgbF(0.98f, 0.98f, 0.98f, 0.8f);
}

QPen outlinePen()
{
    QPen pen(outlineColor());
    pen.setWidthF(1);
    return pen;
}

} // namespace

QVCustomControlBorderView::QVCustomControlBorderView(QWidget *parent)
    : QWidget(parent)
{
}

void QVCustomControlBorderView::drawBorderViewInBounds(QPainter &painter, const QRectF &bounds, qreal cornerRadius)
{
    painter.save();
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setCompositionMode(QPainter::CompositionMode_SourceOver);
    if (cornerRadius >= 1) {
        QPainterPath path;
        path.addRoundedRect(bounds.adjusted(0.5, 0.5, -0.5, -0.5), cornerRadius, cornerRadius);
        painter.fillPath(path, fillColor());
        painter.strokePath(path, outlinePen());
    } else {
        QVFrameRectInside(painter, bounds, outlineColor());
        painter.fillRect(bounds.adjusted(1, 1, -1, -1), fillColor());
    }
    painter.restore();
}

void QVCustomControlBorderView::paintEvent(QPaintEvent *)
{
    QPainter painter(this);
    drawBorderViewInBounds(painter, rect(), cornerRadius());
}
