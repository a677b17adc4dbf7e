#include "QVCustomControlRowOrder.h"

#include <algorithm>
#include <numeric>

namespace
{

// How close to an end of the list a row counts as lying at that end.
constexpr qreal endMargin = 4.9;
// Centres closer than this count as level.
constexpr qreal levelTolerance = 0.1;

const QRectF &sortFrame(const QVCustomControlRowPlace &place)
{
    return place.moveSortFrame.isEmpty() ? place.frame : place.moveSortFrame;
}

// -1 when a's centre is higher, 1 when b's is, 0 when level.
int compareCentres(const QRectF &a, const QRectF &b)
{
    const qreal difference = b.center().y() - a.center().y();
    if (difference > levelTolerance)
        return -1;
    if (difference < -levelTolerance)
        return 1;
    return 0;
}

} // namespace

bool QVSortByConfigurationViewYCoordinate(
    const QVCustomControlRowPlace &a, const QVCustomControlRowPlace &b, const QRectF &listBounds)
{
    const QRectF &frameA = sortFrame(a);
    const QRectF &frameB = sortFrame(b);
    const bool aAtTop = listBounds.y() + endMargin > frameA.y();
    const bool bAtTop = listBounds.y() + endMargin > frameB.y();
    if (aAtTop != bAtTop)
        return aAtTop;
    const qreal bottomLine = listBounds.y() + listBounds.height() - endMargin;
    const bool aAtBottom = frameA.y() + frameA.height() > bottomLine;
    const bool bAtBottom = frameB.y() + frameB.height() > bottomLine;
    if (aAtBottom != bAtBottom)
        return bAtBottom;
    if (const int order = compareCentres(frameA, frameB))
        return order < 0;
    if (const int order = compareCentres(a.frame, b.frame))
        return order < 0;
    return a.identity < b.identity;
}

QList<int> QVSortedRowIndexes(const QList<QVCustomControlRowPlace> &places, const QRectF &listBounds)
{
    QList<int> indexes(places.size());
    std::iota(indexes.begin(), indexes.end(), 0);
    std::stable_sort(indexes.begin(), indexes.end(),
        [&](int a, int b) { return QVSortByConfigurationViewYCoordinate(places[a], places[b], listBounds); });
    return indexes;
}
