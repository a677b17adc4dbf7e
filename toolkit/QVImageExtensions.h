#pragma once

#include <QColor>
#include <QImage>
#include <QRectF>
#include <QSize>

class QPainter;

// A new image of the same size whose pixels are the colour wherever the image has ink, with the
// image's coverage multiplied into the colour's alpha: a black symbol tinted with half-transparent
// black comes out half-transparent black, and transparent pixels stay transparent.
QImage tintedImageWithColor(const QImage &image, const QColor &color);

// Draws the image scaled into rect, tinted with tint unless it is invalid, at the opacity fraction,
// mirrored top to bottom when flip is set, then turned counter-clockwise about rect's centre.
void drawInRect(QPainter &painter, const QImage &image, const QRectF &rect, const QColor &tint, qreal fraction,
    bool flip, qreal rotateDegreesCounterClockwise);

// An SVG file or resource rendered at size (the document's own size when invalid) for a display of
// the given device pixel ratio; a null image when it cannot be read.
QImage imageFromSvg(const QString &path, qreal devicePixelRatio, const QSize &size = QSize());
