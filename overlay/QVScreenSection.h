#pragma once

#include "QVGeometry.h"

#include <QList>

// The arithmetic of narrowing a display down: each step keeps one half of the
// current section. Rectangles are in window coordinates (y grows upwards).
namespace QVScreenSection
{

// The section after each step, the bounds themselves first. A step that is not a
// side (3, 5, 7, 9) ends the list early and sets valid to false.
QList<QVRect> sectionsForSteps(const QVRect &bounds, const QList<qint64> &steps, bool *valid = nullptr);
// Where the pointer goes for a section: its centre, floored to a whole point.
QVPoint focusPoint(const QVRect &section);
// The two bars of a cross hair that splits the section in halves; emphasis
// thickens each bar by that much on both sides.
QVRect verticalBar(const QVRect &section, double emphasis);
QVRect horizontalBar(const QVRect &section, double emphasis);
// The 32 x 32 square around the section's centre that the ring is drawn in.
QVRect ringRect(const QVRect &section);

} // namespace QVScreenSection
