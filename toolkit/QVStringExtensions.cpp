#include "QVStringExtensions.h"

#include <QUuid>

QString QVNewUUIDString()
{
    return QUuid::createUuid().toString(QUuid::WithoutBraces).toUpper();
}

QString QVStringWithInteger(const QString &format, qint64 value)
{
    QString result = format;
    return result.replace(QStringLiteral("%ld"), QString::number(value));
}
