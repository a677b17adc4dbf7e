#pragma once

#include <QString>

#include "QVEvent.h"

// Key codes are X key codes of the evdev keyboard (Linux input code + 8).
namespace QVKeyCode {
constexpr quint16 Escape = 9;
constexpr quint16 Delete = 22; // backspace
constexpr quint16 Tab = 23;
constexpr quint16 Return = 36;
constexpr quint16 Space = 65;
constexpr quint16 KeypadEnter = 104;
constexpr quint16 Home = 110;
constexpr quint16 UpArrow = 111;
constexpr quint16 PageUp = 112;
constexpr quint16 LeftArrow = 113;
constexpr quint16 RightArrow = 114;
constexpr quint16 End = 115;
constexpr quint16 DownArrow = 116;
constexpr quint16 PageDown = 117;
constexpr quint16 ForwardDelete = 119;
constexpr quint16 Help = 146;
} // namespace QVKeyCode

// The name of a key that has no character of its own, or a null string.
// With alternate, the text a menu shortcut uses where one exists.
QString QVStringForKeyCode(quint16 keyCode, bool alternate);
// Letters of the set a-z, ä ö ü (either case) upper-cased; everything else lower-cased.
QString QVUppercaseCharacter(const QString &string);

QString QVControlKeyLabelString();
QString QVAlternateKeyLabelString();
QString QVShiftKeyLabelString();
QString QVCommandKeyLabelString();

// "^⌥⇧⌘" as far as the flags hold them, with side marks under exact matching.
QString QVReadableKeyStringPrefixWithModifierFlags(quint64 flags);
QString QVReadableKeyStringPrefixWithModifierFlags(quint64 flags, bool exactMatching);
// The readable text of a key event, e.g. "^⌥←".
QString QVReadableKeyString(const QVEvent &event);
// The key's own text from a readable string: modifier symbols trimmed from both ends.
QString QVStringByTrimmingModifierPrefix(const QString &string);
