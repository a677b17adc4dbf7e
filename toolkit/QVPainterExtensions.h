#pragma once

#include <QColor>
#include <QRectF>

class QPainter;

// Fills the one-wide band just inside rect: what stroking rect inset by 0.5 with a line 1
// wide and mitred corners covers, without the antialiased corners falling short of full
// coverage.
void QVFrameRectInside(QPainter &painter, const QRectF &rect, const QColor &color);
