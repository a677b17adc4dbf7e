#pragma once

#include <QtGlobal>

// Points and rectangles in window coordinates (y grows upwards) or global
// coordinates (y grows downwards); which one is told by the function using them.
struct QVPoint final
{
    double x = 0.0;
    double y = 0.0;

    friend bool operator==(const QVPoint &, const QVPoint &) = default;
};

struct QVRect final
{
    double x = 0.0;
    double y = 0.0;
    double width = 0.0;
    double height = 0.0;

    double maxX() const { return x + width; }
    double maxY() const { return y + height; }
    QVPoint center() const { return {x + 0.5 * width, y + 0.5 * height}; }
    bool isEmpty() const { return width <= 0.0 || height <= 0.0; }

    friend bool operator==(const QVRect &, const QVRect &) = default;
};
