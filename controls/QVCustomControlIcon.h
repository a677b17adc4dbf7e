#pragma once

#include <QIcon>
#include <QRectF>

class QPainter;
class QVCustomControlRepresentation;

// Draws the small picture that stands for a control beside its menu item: a heading's first
// letters, a rule for a separator, or a frame around a symbol of the action. A selected icon's
// frame is half transparent.
void drawIconInRect(const QVCustomControlRepresentation &control, QPainter &painter, const QRectF &rect, bool selected);

// The control's icon for menus: 24 by 16 with the picture at 22 by 16, sharp on displays of
// device pixel ratio 1 and 2.
QIcon iconForControl(const QVCustomControlRepresentation &control);
