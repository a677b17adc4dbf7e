#include "QVResourcePaths.h"

QString QVImageResourcePath(const QString &imageName)
{
    return QStringLiteral(":/images/%1.svg").arg(imageName);
}

QString QVIconResourcePath(const QString &iconName)
{
    return QStringLiteral(":/icons/%1.svg").arg(iconName);
}
