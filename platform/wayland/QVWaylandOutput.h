#pragma once

#include <QRect>
#include <QSize>
#include <QString>

// One output as the compositor describes it. The layout is in logical units (y
// down), the units every client and the virtual pointer use on every output;
// an output of scale 2 shows each logical unit with two of its pixels.
struct QVWaylandOutput final {
    QString name;
    QRect logical; // where the output lies in the layout
    QSize pixelSize; // its current mode, in its own pixels, before the transform
    int scale = 1;
    int transform = 0; // wl_output.transform: 1 is turned by 90 degrees ...

    friend bool operator==(const QVWaylandOutput &, const QVWaylandOutput &) = default;
};
