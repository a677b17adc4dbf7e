#pragma once

#include <QList>
#include <QRectF>

// Where a row of the editor's list stands, for putting rows in their order on
// screen while one is being dragged.
struct QVCustomControlRowPlace {
    QRectF frame; // in the list, y growing downwards
    QRectF moveSortFrame; // where the row is being dragged to; empty when it is not
    quintptr identity = 0; // breaks ties, so that the order is total within one drag
};

// Whether a comes before b in a list of the given bounds. A row touching the top
// comes first and one touching the bottom last, however it is dragged; otherwise
// vertical centres decide, those of the dragged places first.
bool QVSortByConfigurationViewYCoordinate(
    const QVCustomControlRowPlace &a, const QVCustomControlRowPlace &b, const QRectF &listBounds);

// The indexes of places in their order on screen.
QList<int> QVSortedRowIndexes(const QList<QVCustomControlRowPlace> &places, const QRectF &listBounds);
