#pragma once

#include <QtGlobal>

// What a custom control does. The values are stored, so they never change.
namespace QVAction {
constexpr qint64 Heading = -101;
constexpr qint64 None = 0;
constexpr qint64 MoveToCenter = 21;
constexpr qint64 Move = 31;
constexpr qint64 MoveToEdgeOrCorner = 33;
constexpr qint64 MoveToOtherDisplay = 41;
constexpr qint64 MoveToScreenSection = 51;
constexpr qint64 Click = 101;
constexpr qint64 RightClick = 102;
} // namespace QVAction

// Places of the 3x3 grid used for directions, edges, corners and neighbours.
namespace QVPosition {
constexpr qint64 None = 0;
constexpr qint64 Center = 1;
constexpr qint64 Top = 3;
constexpr qint64 TopRight = 4;
constexpr qint64 Right = 5;
constexpr qint64 BottomRight = 6;
constexpr qint64 Bottom = 7;
constexpr qint64 BottomLeft = 8;
constexpr qint64 Left = 9;
constexpr qint64 TopLeft = 10;
} // namespace QVPosition
