#pragma once

#include "QVGeometry.h"

#include <QColor>
#include <QPainterPath>

class QLinearGradient;
class QPainter;

// Rounded rectangles with a radius of their own at each corner, in window
// coordinates (y grows upwards). A radius below 1 gives a square corner.
QPainterPath QVBezel(const QVRect &rect, double topLeft, double topRight, double bottomLeft, double bottomRight);

// Fills the path with the gradient (top to bottom) or else the fill colour, then
// strokes it; a null colour or gradient is left out.
void QVDrawBevel(QPainter &painter, const QColor &stroke, const QLinearGradient *gradient, const QColor &fill,
    const QVRect &rect, double topLeft, double topRight, double bottomLeft, double bottomRight, double lineWidth);
void QVDrawIdenticalRadiiBevel(QPainter &painter, const QColor &stroke, const QLinearGradient *gradient,
    const QColor &fill, const QVRect &rect, double radius, double lineWidth);

// A one-point frame just inside the rectangle; no point is painted twice.
void QVDrawBorderFrameInRect(QPainter &painter, const QColor &color, const QVRect &rect);
