#include "QVScreenGeometry.h"

#include "QVActionCodes.h"

#include <algorithm>
#include <cmath>

namespace
{

double primaryHeight(const QVDisplayList &displays)
{
    return displays.isEmpty() ? 0.0 : displays.first().frame.height;
}

bool isOneOf(qint64 position, std::initializer_list<qint64> codes)
{
    return std::find(codes.begin(), codes.end(), position) != codes.end();
}

struct Distances {
    double forward; // how far the candidate reaches beyond the screen in the direction
    double back; // how far it lies the other way
    bool overlaps;
};

Distances distancesTo(const QVRect &s, const QVRect &d, qint64 position)
{
    const bool sideways = position == QVPosition::Left || position == QVPosition::Right;
    // Sideways neighbours must share rows with the screen, vertical ones columns.
    const bool overlaps = sideways ? QVIntersectsRectOnAxis(false, d, s) : QVIntersectsRectOnAxis(true, d, s);
    switch (position) {
    case QVPosition::Right: return { d.maxX() - s.maxX(), s.x - d.x, overlaps };
    case QVPosition::Left: return { s.x - d.x, d.maxX() - s.maxX(), overlaps };
    case QVPosition::Top: return { d.maxY() - s.maxY(), s.y - d.y, overlaps };
    default: // bottom
        return { s.y - d.y, d.maxY() - s.maxY(), overlaps };
    }
}

} // namespace

QVPoint QVGlobalCGPointFromNSPoint(const QVPoint &point, const QVDisplayList &displays)
{
    return { point.x, primaryHeight(displays) - point.y };
}

QVPoint QVGlobalNSPointFromCGPoint(const QVPoint &point, const QVDisplayList &displays)
{
    return QVGlobalCGPointFromNSPoint(point, displays);
}

QVRect QVGlobalCGRectFromNSRect(const QVRect &rect, const QVDisplayList &displays)
{
    return { rect.x, primaryHeight(displays) - rect.y - rect.height, rect.width, rect.height };
}

QVRect QVGlobalNSRectFromCGRect(const QVRect &rect, const QVDisplayList &displays)
{
    return QVGlobalCGRectFromNSRect(rect, displays);
}

const QVDisplay *menuBarScreen(const QVDisplayList &displays)
{
    return displays.isEmpty() ? nullptr : &displays.first();
}

bool QVMouseInRect(const QVPoint &point, const QVRect &rect)
{
    return point.x >= rect.x && point.x < rect.maxX() && point.y > rect.y && point.y <= rect.maxY();
}

bool QVIntersectsRect(const QVRect &a, const QVRect &b)
{
    if (a.isEmpty() || b.isEmpty())
        return false;
    return a.x < b.maxX() && b.x < a.maxX() && a.y < b.maxY() && b.y < a.maxY();
}

const QVDisplay *screenAtPosition(qint64 position, const QVPoint &location, const QVDisplayList &displays)
{
    for (const QVDisplay &display : displays)
        if (QVMouseInRect(location, display.frame))
            return screenAtRelativePosition(&display, position, false, displays);
    return nullptr;
}

const QVDisplay *screenAtRelativePosition(
    const QVDisplay *screen, qint64 position, bool loop, const QVDisplayList &displays)
{
    if (position == QVPosition::None)
        return screen;
    if (displays.size() < 2 || !screen)
        return nullptr;
    const QVDisplay *nearest = nullptr;
    const QVDisplay *farthestOpposite = nullptr;
    double nearestDistance = -1.0;
    double loopDistance = -1.0;
    for (const QVDisplay &candidate : displays) {
        if (&candidate == screen)
            continue;
        if (!isOneOf(position, { QVPosition::Top, QVPosition::Right, QVPosition::Bottom, QVPosition::Left }))
            return nullptr;
        const Distances distances = distancesTo(screen->frame, candidate.frame, position);
        if (!distances.overlaps)
            continue;
        if (distances.forward > 0.1) {
            if (!(nearestDistance >= 0.0 && nearestDistance <= distances.forward)) {
                nearest = &candidate;
                nearestDistance = distances.forward;
            }
        } else if (loop && distances.back > 0.1 && distances.back > loopDistance) {
            farthestOpposite = &candidate;
            loopDistance = distances.back;
        }
    }
    return nearest ? nearest : farthestOpposite;
}

QVRect QVInsetVisibleScreenRect(const QVDisplay *display, QVRect r, double inset, const QVDisplayList &displays)
{
    if (!display)
        display = screenAtPosition(QVPosition::None, r.center(), displays);
    if (display) {
        const QVRect &f = display->frame;
        // The top edge is never widened: a panel along it stays excluded.
        if (const double gap = r.x - f.x; gap > 0.1 && inset > gap) {
            r.x -= gap;
            r.width += gap;
        }
        if (const double gap = f.maxX() - r.maxX(); gap > 0.1 && inset > gap)
            r.width += gap;
        if (const double gap = r.y - f.y; gap > 0.1 && inset > gap) {
            r.y -= gap;
            r.height += gap;
        }
    }
    return { r.x + inset, r.y + inset, r.width - 2.0 * inset, r.height - 2.0 * inset };
}

QVRect QVCenteredRect(bool exact, const QVRect &inner, const QVRect &outer)
{
    const double dy = outer.height - inner.height;
    // Above the middle unless asked otherwise: y grows upwards.
    const double factor = (exact || dy < 4.0) ? 0.5 : 0.75;
    double y = std::trunc(factor * dy) + outer.y;
    if (const double overhang = outer.y + outer.height - y - inner.height; overhang < 0.0)
        y += overhang;
    const double x = outer.x + std::trunc((outer.width - inner.width) * 0.5);
    return { x, y, inner.width, inner.height };
}

QVPoint QVPointConfinedToRect(const QVRect &rect, const QVPoint &point)
{
    return { point.x < rect.x ? rect.x : std::min(rect.maxX(), point.x),
        point.y < rect.y ? rect.y : std::min(rect.maxY(), point.y) };
}

QVPoint QVPointConfinedToDisplayPixels(const QVRect &frame, const QVPoint &point)
{
    QVPoint confined = QVPointConfinedToRect(frame, point);
    if (frame.width >= 1.0 && confined.x > frame.maxX() - 1.0)
        confined.x = frame.maxX() - 1.0;
    // y grows upwards: the last row is the one just above the bottom edge.
    if (frame.height >= 1.0 && confined.y < frame.y + 1.0)
        confined.y = frame.y + 1.0;
    return confined;
}

bool QVIntersectsRectOnAxis(bool horizontal, const QVRect &a, QVRect b)
{
    if (horizontal) {
        b.y = a.y;
        b.height = a.height;
    } else {
        b.x = a.x;
        b.width = a.width;
    }
    return QVIntersectsRect(a, b);
}

double QVFloorCGFloat(double value)
{
    return static_cast<double>(static_cast<qint64>(value));
}

qint64 QVIntegerInRange(qint64 value, qint64 low, qint64 high)
{
    if (value < low)
        return low;
    return value < high ? value : high;
}

bool QVIntegerIsInRange(qint64 value, qint64 a, qint64 b)
{
    return std::min(a, b) <= value && value <= std::max(a, b);
}

bool QVCorvanePositionIncludesTop(qint64 position)
{
    return isOneOf(position, { QVPosition::Top, QVPosition::TopRight, QVPosition::TopLeft });
}

bool QVCorvanePositionIncludesRight(qint64 position)
{
    return isOneOf(position, { QVPosition::TopRight, QVPosition::Right, QVPosition::BottomRight });
}

bool QVCorvanePositionIncludesBottom(qint64 position)
{
    return isOneOf(position, { QVPosition::BottomRight, QVPosition::Bottom, QVPosition::BottomLeft });
}

bool QVCorvanePositionIncludesLeft(qint64 position)
{
    return isOneOf(position, { QVPosition::BottomLeft, QVPosition::Left, QVPosition::TopLeft });
}

bool QVCorvanePositionIncludesXCenter(qint64 position)
{
    return isOneOf(position, { QVPosition::Center, QVPosition::Top, QVPosition::Bottom });
}

bool QVCorvanePositionIncludesYCenter(qint64 position)
{
    return isOneOf(position, { QVPosition::Center, QVPosition::Right, QVPosition::Left });
}
