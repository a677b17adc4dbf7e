#pragma once

#include <QString>

// Writes one line to the system log (ident "corvane") and to standard error.
void QVLog(const QString &message);
// The same, only while the "QVDebugLog" setting is on.
void QVDebugLog(const QString &message);
// Whether "QVDebugLog" is on: spares the hot path composing lines nobody reads.
bool QVDebugLogEnabled();
