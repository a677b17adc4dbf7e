#pragma once

class QPropertyAnimation;
class QWidget;

// Fitting a window's height to the page it shows.

// Changes the window's height, its top edge kept, so that the lowest visible child of `view`
// ends `bottomMargin` pixels above the window's bottom edge. Empty labels do not count. A view
// managed by a layout is measured with its children where the layout puts them at the view's
// preferred height for its width. The frame is applied unless it is the window's own, animated
// only when asked and the window is shown; a new call stops an animation still running.
// Returns the animation started, or null when the frame was set at once or kept.
QPropertyAnimation *adjustHeightToFitSubviewsOfView(QWidget &window, QWidget &view, int bottomMargin, bool animate);
