#include "QVImageExtensions.h"

#include <QPainter>
#include <QSvgRenderer>

namespace
{

// The colour laid over the image where it has ink, in the given way.
QImage imageWithColor(const QImage &image, const QColor &color, QPainter::CompositionMode mode)
{
    QImage colored = image.convertToFormat(QImage::Format_ARGB32_Premultiplied);
    QPainter painter(&colored);
    painter.setCompositionMode(mode);
    painter.fillRect(QRect(QPoint(0, 0), colored.size()), color);
    return colored;
}

QImage tintedImageWithColor(const QImage &image, const QColor &color)
{
    return imageWithColor(image, color, QPainter::CompositionMode_SourceIn);
}

} // namespace

QImage transparentImage(const QSize &size, qreal devicePixelRatio)
{
    QImage image(size * devicePixelRatio, QImage::Format_ARGB32_Premultiplied);
    image.setDevicePixelRatio(devicePixelRatio);
    image.fill(Qt::transparent);
    return image;
}

void drawInRect(
    QPainter &painter, const QImage &image, const QRectF &rect, const QColor &tint, qreal rotateDegreesCounterClockwise)
{
    if (image.isNull() || rect.isEmpty())
        return;
    painter.save();
    painter.setRenderHint(QPainter::SmoothPixmapTransform);
    painter.translate(rect.center());
    // Qt's y axis points down, so a positive angle turns clockwise on screen.
    painter.rotate(-rotateDegreesCounterClockwise);
    const QRectF target(-rect.width() / 2, -rect.height() / 2, rect.width(), rect.height());
    painter.drawImage(target, tint.isValid() ? tintedImageWithColor(image, tint) : image);
    painter.restore();
}

QImage imageFromSvg(const QString &path, qreal devicePixelRatio)
{
    QSvgRenderer renderer(path);
    if (!renderer.isValid())
        return {};
    QImage image = transparentImage(renderer.defaultSize(), devicePixelRatio);
    QPainter painter(&image);
    renderer.render(&painter, QRectF(QPointF(0, 0), renderer.defaultSize()));
    return image;
}

QImage darkenedImageWithColor(const QImage &image, const QColor &color)
{
    return imageWithColor(image, color, QPainter::CompositionMode_SourceAtop);
}
