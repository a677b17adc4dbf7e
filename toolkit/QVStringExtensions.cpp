#include "QVStringExtensions.h"

#include <QRegularExpression>
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

QString QVShellQuoted(const QString &string)
{
    static const QRegularExpression plain(QStringLiteral("^[A-Za-z0-9_./:=@%+,-]+$"));
    if (plain.match(string).hasMatch())
        return string;
    QString quoted = string;
    quoted.replace(u'\'', QStringLiteral("'\\''"));
    return u'\'' + quoted + u'\'';
}
