#include "QVDesktopEntry.h"

#include <QFile>

namespace
{

const QString groupHeader = QStringLiteral("[Desktop Entry]");

// Outside quotes these would mean something to a shell-like reader; an argument
// holding any of them is written in double quotes.
bool needsQuotes(const QString &argument)
{
    static const QString reserved = QStringLiteral(" \t\n\"'\\><~|&;$*?#()`");
    if (argument.isEmpty())
        return true;
    for (const QChar character : argument)
        if (reserved.contains(character))
            return true;
    return false;
}

// %f, %U, %i and the others are filled in by a launcher; a login start passes none.
bool isFieldCode(const QString &argument)
{
    return argument.size() == 2 && argument[0] == u'%' && argument[1] != u'%';
}

} // namespace

bool QVDesktopEntry::load(const QString &path)
{
    m_values.clear();
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        return false;
    parse(file.readAll());
    return true;
}

void QVDesktopEntry::parse(const QByteArray &contents)
{
    bool inGroup = false;
    for (const QByteArray &rawLine : contents.split('\n')) {
        const QString line = QString::fromUtf8(rawLine).trimmed();
        if (line.isEmpty() || line.startsWith(u'#'))
            continue;
        if (line.startsWith(u'[')) {
            inGroup = line == groupHeader;
            continue;
        }
        const qsizetype equals = line.indexOf(u'=');
        if (!inGroup || equals <= 0)
            continue;
        const QString key = line.left(equals).trimmed();
        // The first occurrence of a key counts, as in the readers of the desktops.
        if (!m_values.contains(key))
            m_values.insert(key, unescapeValue(line.mid(equals + 1).trimmed()));
    }
}

bool QVDesktopEntry::booleanValue(const QString &key, bool fallback) const
{
    const QString text = value(key).trimmed();
    if (text == QLatin1String("true") || text == QLatin1String("1"))
        return true;
    if (text == QLatin1String("false") || text == QLatin1String("0"))
        return false;
    return fallback;
}

QString QVDesktopEntry::unescapeValue(const QString &text)
{
    QString value;
    value.reserve(text.size());
    for (qsizetype index = 0; index < text.size(); ++index) {
        const QChar character = text[index];
        if (character != u'\\' || index + 1 == text.size()) {
            value += character;
            continue;
        }
        const QChar next = text[++index];
        switch (next.unicode()) {
        case 's': value += u' '; break;
        case 'n': value += u'\n'; break;
        case 't': value += u'\t'; break;
        case 'r': value += u'\r'; break;
        case '\\': value += u'\\'; break;
        // Not a string escape: left for the Exec rules (\" and \$ inside quotes).
        default:
            value += u'\\';
            value += next;
            break;
        }
    }
    return value;
}

QString QVDesktopEntry::escapeValue(const QString &value)
{
    QString text;
    text.reserve(value.size());
    for (const QChar character : value) {
        switch (character.unicode()) {
        case '\\': text += QLatin1String("\\\\"); break;
        case '\n': text += QLatin1String("\\n"); break;
        case '\t': text += QLatin1String("\\t"); break;
        case '\r': text += QLatin1String("\\r"); break;
        default: text += character; break;
        }
    }
    // Leading blanks would be trimmed away by a reader.
    if (text.startsWith(u' '))
        text.replace(0, 1, QStringLiteral("\\s"));
    return text;
}

QStringList QVDesktopEntry::splitExec(const QString &exec)
{
    QStringList arguments;
    QString current;
    bool inArgument = false;
    bool quoted = false;
    for (qsizetype index = 0; index < exec.size(); ++index) {
        const QChar character = exec[index];
        if (quoted) {
            if (character == u'"') {
                quoted = false;
            } else if (character == u'\\' && index + 1 < exec.size()
                && QStringLiteral("\"`$\\").contains(exec[index + 1])) {
                current += exec[++index];
            } else {
                current += character;
            }
        } else if (character == u' ' || character == u'\t' || character == u'\n') {
            if (inArgument)
                arguments.append(current);
            current.clear();
            inArgument = false;
        } else {
            inArgument = true;
            if (character == u'"')
                quoted = true;
            else
                current += character;
        }
    }
    if (inArgument)
        arguments.append(current);

    QStringList expanded;
    for (QString &argument : arguments) {
        if (isFieldCode(argument))
            continue;
        expanded.append(argument.replace(QLatin1String("%%"), QLatin1String("%")));
    }
    return expanded;
}

QString QVDesktopEntry::execLineText(const QStringList &arguments)
{
    QStringList parts;
    for (QString argument : arguments) {
        argument.replace(u'%', QLatin1String("%%"));
        if (needsQuotes(argument)) {
            QString quoted;
            for (const QChar character : argument) {
                if (QStringLiteral("\"`$\\").contains(character))
                    quoted += u'\\';
                quoted += character;
            }
            argument = u'"' + quoted + u'"';
        }
        parts.append(argument);
    }
    // The quoting rules apply after the string escapes are undone, so backslashes double again.
    return escapeValue(parts.join(u' '));
}
