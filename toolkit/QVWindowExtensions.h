#pragma once

#include <QRect>

class QPropertyAnimation;
class QWidget;

// Fitting a window's height to the page it shows. Heights follow Qt's y-down
// coordinates: a positive difference means the window must grow.

// How much taller `comparedTo` (null: the view itself) must become so that the
// lowest visible child of `view` ends `bottomMargin` pixels above its bottom edge.
// Empty labels do not count. A view managed by a layout is measured with its
// children where the layout puts them at the view's preferred height for its width.
int heightDifferenceNecessaryToFitSubviews(const QWidget &view, int bottomMargin, const QWidget *comparedTo);

// The window's frame with the height changed by that difference, the top edge kept.
QRect frameByAdjustingHeightToFitSubviewsOfView(const QWidget &window, const QWidget &view, int bottomMargin);

// Applies that frame unless it differs by less than a pixel. Animated only when
// asked and the window is shown; a new call stops an animation still running.
// Returns the animation started, or null when the frame was set at once or kept.
QPropertyAnimation *adjustHeightToFitSubviewsOfView(QWidget &window, QWidget &view, int bottomMargin, bool animate);
