#include "QVImageExtensions.h"

#include <QPainter>
#include <QSvgRenderer>

QImage tintedImageWithColor(const QImage &image, const QColor &color)
{
    QImage tinted = image.convertToFormat(QImage::Format_ARGB32_Premultiplied);
    QPainter painter(&tinted);
    painter.setCompositionMode(QPainter::CompositionMode_SourceIn);
    painter.fillRect(QRect(QPoint(0, 0), tinted.size()), color);
    return tinted;
}

void drawInRect(QPainter &painter, const QImage &image, const QRectF &rect, const QColor &tint, qreal fraction,
    bool flip, qreal rotateDegreesCounterClockwise)
{
    if (image.isNull() || rect.isEmpty())
        return;
    painter.save();
    painter.setRenderHint(QPainter::SmoothPixmapTransform);
    painter.setOpacity(painter.opacity() * fraction);
    painter.translate(rect.center());
    // Qt's y axis points down, so a positive angle turns clockwise on screen. The flip applies
    // to the image itself, before the turn.
    painter.rotate(-rotateDegreesCounterClockwise);
    if (flip)
        painter.scale(1, -1);
    const QRectF target(-rect.width() / 2, -rect.height() / 2, rect.width(), rect.height());
    painter.drawImage(target, tint.isValid() ? tintedImageWithColor(image, tint) : image);
    painter.restore();
}

QImage imageFromSvg(const QString &path, qreal devicePixelRatio, const QSize &size)
{
    QSvgRenderer renderer(path);
    if (!renderer.isValid())
        return {};
    const QSize logicalSize = size.isValid() ? size : renderer.defaultSize();
    QImage image(logicalSize * devicePixelRatio, QImage::Format_ARGB32_Premultiplied);
    image.fill(Qt::transparent);
    QPainter painter(&image);
    renderer.render(&painter);
    painter.end();
    image.setDevicePixelRatio(devicePixelRatio);
    return image;
}
