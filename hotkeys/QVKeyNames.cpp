#include "QVKeyNames.h"

#include "QVHotKey.h"
#include "QVModifierFlags.h"

#include <array>

namespace {

struct KeyName {
    quint16 keyCode;
    const char16_t *name;
    const char16_t *alternate; // nullptr: none
};

constexpr std::array<KeyName, 18> specialKeys{{
    {67, u"F1", nullptr},   {68, u"F2", nullptr},   {69, u"F3", nullptr},   {70, u"F4", nullptr},
    {71, u"F5", nullptr},   {72, u"F6", nullptr},   {73, u"F7", nullptr},   {74, u"F8", nullptr},
    {75, u"F9", nullptr},   {76, u"F10", nullptr},  {95, u"F11", nullptr},  {96, u"F12", nullptr},
    {191, u"F13", nullptr}, {192, u"F14", nullptr}, {193, u"F15", nullptr},
    {QVKeyCode::Space, u"Space", u" "},
    {QVKeyCode::Escape, u"Escape", nullptr},
    {QVKeyCode::Help, u"Help", nullptr},
}};

constexpr std::array<KeyName, 13> symbolKeys{{
    {QVKeyCode::Tab, u"\u21E5", u"\t"},
    {QVKeyCode::Delete, u"\u232B", nullptr},
    {QVKeyCode::Return, u"\u21B5", u"\n"},
    {QVKeyCode::KeypadEnter, u"\u2305", nullptr},
    {QVKeyCode::ForwardDelete, u"\u2326", nullptr},
    {QVKeyCode::LeftArrow, u"\u2190", nullptr},
    {QVKeyCode::RightArrow, u"\u2192", nullptr},
    {QVKeyCode::DownArrow, u"\u2193", nullptr},
    {QVKeyCode::UpArrow, u"\u2191", nullptr},
    {QVKeyCode::Home, u"\u2196", nullptr},
    {QVKeyCode::End, u"\u2198", nullptr},
    {QVKeyCode::PageUp, u"\u21DE", nullptr},
    {QVKeyCode::PageDown, u"\u21DF", nullptr},
}};

template<std::size_t N>
const KeyName *find(const std::array<KeyName, N> &table, quint16 keyCode)
{
    for (const KeyName &row : table)
        if (row.keyCode == keyCode)
            return &row;
    return nullptr;
}

QString nameOf(const KeyName &row, bool alternate)
{
    return QString::fromUtf16(alternate && row.alternate ? row.alternate : row.name);
}

const QString leftMark = QStringLiteral("\u24C1");
const QString rightMark = QStringLiteral("\u24C7");

void appendModifier(QString &prefix, bool exact, quint64 flags, quint64 left, quint64 right,
                    const QString &label)
{
    if (exact && (flags & left))
        prefix += leftMark;
    if (exact && (flags & right))
        prefix += rightMark;
    prefix += label;
}

} // namespace

QString QVStringForKeyCode(quint16 keyCode, bool alternate)
{
    if (const KeyName *row = find(specialKeys, keyCode))
        return nameOf(*row, alternate);
    if (const KeyName *row = find(symbolKeys, keyCode))
        return nameOf(*row, alternate);
    return {};
}

QString QVUppercaseCharacter(const QString &string)
{
    static const QString letters = QStringLiteral("abcdefghijklmnopqrstuvwxyz\u00E4\u00F6\u00FC"
                                                  "ABCDEFGHIJKLMNOPQRSTUVWXYZ\u00C4\u00D6\u00DC");
    return letters.contains(string) ? string.toUpper() : string.toLower();
}

QString QVControlKeyLabelString() { return QStringLiteral("^"); }
QString QVAlternateKeyLabelString() { return QStringLiteral("\u2325"); }
QString QVShiftKeyLabelString() { return QStringLiteral("\u21E7"); }
QString QVCommandKeyLabelString() { return QStringLiteral("\u2318"); }

QString QVReadableKeyStringPrefixWithModifierFlags(quint64 flags)
{
    return QVReadableKeyStringPrefixWithModifierFlags(flags, QVHotKey::requireExactModifierKeyMatches());
}

QString QVReadableKeyStringPrefixWithModifierFlags(quint64 flags, bool exact)
{
    using namespace QVModifierFlag;
    QString prefix;
    if (flags & Control)
        appendModifier(prefix, exact, flags, LeftControl, RightControl, QVControlKeyLabelString());
    if (flags & Option)
        appendModifier(prefix, exact, flags, LeftOption, RightOption, QVAlternateKeyLabelString());
    if (flags & Shift)
        appendModifier(prefix, exact, flags, LeftShift, RightShift, QVShiftKeyLabelString());
    if (flags & Command)
        appendModifier(prefix, exact, flags, LeftCommand, RightCommand, QVCommandKeyLabelString());
    return prefix;
}

QString QVReadableKeyString(const QVEvent &event)
{
    QString name = QVStringForKeyCode(event.keyCode, false);
    if (name.isNull())
        name = QVUppercaseCharacter(event.charactersIgnoringModifiers);
    return QVReadableKeyStringPrefixWithModifierFlags(event.modifierFlags) + name;
}

QString QVStringByTrimmingModifierPrefix(const QString &string)
{
    static const QString trimmed = QVShiftKeyLabelString() + QVControlKeyLabelString()
        + QVAlternateKeyLabelString() + QVCommandKeyLabelString() + leftMark + rightMark;
    qsizetype begin = 0;
    qsizetype end = string.size();
    while (begin < end && trimmed.contains(string[begin]))
        ++begin;
    while (end > begin && trimmed.contains(string[end - 1]))
        --end;
    return string.mid(begin, end - begin);
}
