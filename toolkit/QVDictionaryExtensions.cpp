#include "QVDictionaryExtensions.h"

#include <cmath>
#include <limits>

namespace {

// Reads a leading integer the way a hand-edited "12px" or " -3" is meant.
qint64 leadingInteger(const QString &text)
{
    const QString trimmed = text.trimmed();
    qsizetype end = 0;
    if (end < trimmed.size() && (trimmed[end] == u'-' || trimmed[end] == u'+'))
        ++end;
    while (end < trimmed.size() && trimmed[end].isDigit())
        ++end;
    bool ok = false;
    const qint64 value = trimmed.left(end).toLongLong(&ok);
    return ok ? value : 0;
}

bool leadingTruth(const QString &text)
{
    const QString trimmed = text.trimmed();
    if (trimmed.isEmpty())
        return false;
    const QChar first = trimmed[0].toLower();
    if (first == u'y' || first == u't')
        return true;
    return leadingInteger(trimmed) != 0;
}

qint64 truncatedDouble(double value)
{
    if (std::isnan(value))
        return 0;
    if (value >= 9.2e18)
        return std::numeric_limits<qint64>::max();
    if (value <= -9.2e18)
        return std::numeric_limits<qint64>::min();
    return static_cast<qint64>(value);
}

} // namespace

qint64 QVIntegerValue(const QJsonValue &value)
{
    switch (value.type()) {
    case QJsonValue::Double:
        return truncatedDouble(value.toDouble());
    case QJsonValue::Bool:
        return value.toBool() ? 1 : 0;
    case QJsonValue::String:
        return leadingInteger(value.toString());
    default:
        return 0;
    }
}

bool QVBoolValue(const QJsonValue &value)
{
    switch (value.type()) {
    case QJsonValue::Double:
        return value.toDouble() != 0.0;
    case QJsonValue::Bool:
        return value.toBool();
    case QJsonValue::String:
        return leadingTruth(value.toString());
    default:
        return false;
    }
}

qint64 QVIntegerForKey(const QJsonObject &dictionary, const QString &key)
{
    return QVIntegerValue(dictionary.value(key));
}

bool QVBoolForKey(const QJsonObject &dictionary, const QString &key)
{
    return QVBoolValue(dictionary.value(key));
}

QString QVStringForKey(const QJsonObject &dictionary, const QString &key)
{
    const QJsonValue value = dictionary.value(key);
    if (value.isDouble()) // a hand-written number is kept as its text, not lost
        return QString::number(value.toDouble(), 'g', 17);
    return value.isString() ? value.toString() : QString();
}

void QVTryToSetObject(QJsonObject &dictionary, const QString &string, const QString &key)
{
    if (!string.isNull())
        dictionary.insert(key, string);
}
