#pragma once

#include "QVGeometry.h"

#include <QList>
#include <QString>

// One monitor, in window coordinates and device pixels.
struct QVDisplay final
{
    QVRect frame;
    QVRect visibleFrame;
    QString name;

    friend bool operator==(const QVDisplay &, const QVDisplay &) = default;
};

// Ordered, primary display first.
using QVDisplayList = QList<QVDisplay>;
