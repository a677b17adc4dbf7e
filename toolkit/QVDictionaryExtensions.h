#pragma once

#include <QJsonObject>
#include <QJsonValue>
#include <QString>

// Readings of stored values that never fail: a value of the wrong type reads
// the way a number or string would be read, else as 0 or false.
qint64 QVIntegerValue(const QJsonValue &value);
bool QVBoolValue(const QJsonValue &value);

qint64 QVIntegerForKey(const QJsonObject &dictionary, const QString &key);
bool QVBoolForKey(const QJsonObject &dictionary, const QString &key);
// The value as a string (a number as its text), or a null string.
QString QVStringForKey(const QJsonObject &dictionary, const QString &key);

// Sets the value only when it is a non-null string.
void QVTryToSetObject(QJsonObject &dictionary, const QString &string, const QString &key);
