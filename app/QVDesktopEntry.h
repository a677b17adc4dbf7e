#pragma once

#include <QHash>
#include <QString>
#include <QStringList>

// The [Desktop Entry] group of a .desktop file, read only: keys with their values
// unescaped, and the Exec line split into arguments the way a launcher splits it.
class QVDesktopEntry final
{
public:
    // False when the file cannot be read; a file without the group reads as empty.
    bool load(const QString &path);

    // A string value, unescaped; empty when the key is missing.
    QString stringValue(const QString &key) const { return value(key); }
    // "true" and "1" are true, "false" and "0" false; anything else the fallback.
    bool booleanValue(const QString &key, bool fallback) const;
    // The program and its arguments, field codes such as %f dropped.
    QStringList execArguments() const { return splitExec(value(QStringLiteral("Exec"))); }

    // The text after "Exec=" that makes a launcher run exactly these arguments.
    static QString execLineText(const QStringList &arguments);
    // A plain string value as it is written after "Key=".
    static QString escapeValue(const QString &value);

private:
    QString value(const QString &key) const { return m_values.value(key); }
    void parse(const QByteArray &contents);
    // Splits an Exec value (string escapes already undone) into arguments.
    static QStringList splitExec(const QString &exec);
    static QString unescapeValue(const QString &text);

    QHash<QString, QString> m_values;
};
