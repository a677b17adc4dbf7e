#pragma once

#include "QVDisplay.h"

// Conversions between window coordinates (y up, origin at the primary display's
// lower left) and global coordinates (y down, origin at its upper left), and the
// choice of a display by location or direction. Displays are compared by identity:
// pass and receive pointers into the same list.

QVPoint QVGlobalCGPointFromNSPoint(const QVPoint &point, const QVDisplayList &displays);
QVPoint QVGlobalNSPointFromCGPoint(const QVPoint &point, const QVDisplayList &displays);
QVRect QVGlobalCGRectFromNSRect(const QVRect &rect, const QVDisplayList &displays);
QVRect QVGlobalNSRectFromCGRect(const QVRect &rect, const QVDisplayList &displays);

const QVDisplay *menuBarScreen(const QVDisplayList &displays);
// The display under the location, or its neighbour in the direction given.
const QVDisplay *screenAtPosition(qint64 position, const QVPoint &location, const QVDisplayList &displays);
// The nearest display beyond the screen's edge; with loop, else the farthest on the other side.
const QVDisplay *screenAtRelativePosition(
    const QVDisplay *screen, qint64 position, bool loop, const QVDisplayList &displays);

// Whether a point lies on a rectangle: left and top edges in, right and bottom out,
// so every pixel of a display belongs to it.
bool QVMouseInRect(const QVPoint &point, const QVRect &rect);
bool QVIntersectsRect(const QVRect &a, const QVRect &b);

QVRect QVInsetVisibleScreenRect(const QVDisplay *display, QVRect rect, double inset, const QVDisplayList &displays);
QVRect QVCenteredRect(bool exact, const QVRect &inner, const QVRect &outer);
QVPoint QVPointConfinedToRect(const QVRect &rect, const QVPoint &point);
// The same, kept on the display's own pixels: its right edge (maxX) and bottom edge (y)
// are where a neighbour's first column and row begin, so they become its last ones.
QVPoint QVPointConfinedToDisplayPixels(const QVRect &frame, const QVPoint &point);
bool QVIntersectsRectOnAxis(bool horizontal, const QVRect &a, QVRect b);
// Truncation toward zero, kept under its old name on purpose.
double QVFloorCGFloat(double value);
qint64 QVIntegerInRange(qint64 value, qint64 low, qint64 high);
bool QVIntegerIsInRange(qint64 value, qint64 a, qint64 b);

bool QVCorvanePositionIncludesTop(qint64 position);
bool QVCorvanePositionIncludesRight(qint64 position);
bool QVCorvanePositionIncludesBottom(qint64 position);
bool QVCorvanePositionIncludesLeft(qint64 position);
bool QVCorvanePositionIncludesXCenter(qint64 position);
bool QVCorvanePositionIncludesYCenter(qint64 position);
