#pragma once

#include <QString>

// A new UUID in its standard text form: 36 upper-case characters.
QString QVNewUUIDString();
// Fills the "%ld" of a translated format with a number.
QString QVStringWithInteger(const QString &format, qint64 value);

// The string as one word of a POSIX shell command: unchanged when it needs no quoting.
QString QVShellQuoted(const QString &string);
