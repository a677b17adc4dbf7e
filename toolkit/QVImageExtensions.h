#pragma once

#include <QColor>
#include <QImage>
#include <QRectF>
#include <QSize>

class QPainter;

// A transparent image of that size in points for a display of the given device pixel ratio.
QImage transparentImage(const QSize &size, qreal devicePixelRatio);

// Draws the image scaled into rect, turned counter-clockwise about rect's centre. A valid tint
// replaces the colour wherever the image has ink and its alpha is multiplied by the ink's
// coverage: a black symbol tinted with half-transparent black comes out half-transparent black.
void drawInRect(QPainter &painter, const QImage &image, const QRectF &rect, const QColor &tint,
    qreal rotateDegreesCounterClockwise);

// An SVG file or resource rendered at its own size for a display of the given device pixel
// ratio; a null image when it cannot be read.
QImage imageFromSvg(const QString &path, qreal devicePixelRatio);

// The image with the colour laid over it where it has ink (source-atop): a translucent black
// darkens the image without spreading beyond its shape.
QImage darkenedImageWithColor(const QImage &image, const QColor &color);
