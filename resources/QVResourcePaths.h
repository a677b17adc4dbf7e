#pragma once

#include <QString>

// Where the compiled-in pictures are: QVImageResourcePath("QVArrow") is ":/images/QVArrow.svg",
// QVIconResourcePath("corvane-tray") is ":/icons/corvane-tray.svg".
QString QVImageResourcePath(const QString &imageName);
QString QVIconResourcePath(const QString &iconName);
