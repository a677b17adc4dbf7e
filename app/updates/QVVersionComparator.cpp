#include "QVVersionComparator.h"

#include <QList>
#include <QStringView>

namespace
{

enum class Kind { Number, Letters, Separator };

struct Part {
    Kind kind;
    QStringView text;
};

Kind kindOf(QChar character)
{
    if (character.isDigit())
        return Kind::Number;
    if (character.isLetter())
        return Kind::Letters;
    return Kind::Separator;
}

QList<Part> splitIntoParts(QStringView version)
{
    QList<Part> parts;
    qsizetype start = 0;
    for (qsizetype i = 1; i <= version.size(); ++i) {
        const Kind kind = kindOf(version.at(start));
        // Every separator character is a part of its own: "1..2" has two.
        if (i == version.size() || kind == Kind::Separator || kindOf(version.at(i)) != kind) {
            parts.append({ kind, version.mid(start, i - start) });
            start = i;
        }
    }
    return parts;
}

QStringView withoutLeadingZeros(QStringView digits)
{
    while (digits.size() > 1 && digits.front() == u'0')
        digits = digits.mid(1);
    return digits;
}

// By value, for numbers of any length.
int compareNumbers(QStringView a, QStringView b)
{
    a = withoutLeadingZeros(a);
    b = withoutLeadingZeros(b);
    if (a.size() != b.size())
        return a.size() < b.size() ? -1 : 1;
    return a.compare(b);
}

bool isZero(const Part &part)
{
    return part.kind == Kind::Number && withoutLeadingZeros(part.text) == u"0";
}

// What the parts left over after the common length mean for the longer version:
// older when its first telling part is letters (a pre-release), newer when it is
// a non-zero number, the same when only zeros and separators remain.
int compareRemainder(const QList<Part> &longer, qsizetype from)
{
    for (qsizetype i = from; i < longer.size(); ++i) {
        const Part &part = longer.at(i);
        if (part.kind == Kind::Letters)
            return -1;
        if (part.kind == Kind::Number && !isZero(part))
            return 1;
    }
    return 0;
}

int sign(int value)
{
    return (value > 0) - (value < 0);
}

} // namespace

int QVVersionComparator::compareVersions(const QString &a, const QString &b)
{
    const QList<Part> partsA = splitIntoParts(QStringView(a).trimmed());
    const QList<Part> partsB = splitIntoParts(QStringView(b).trimmed());
    const qsizetype common = qMin(partsA.size(), partsB.size());
    for (qsizetype i = 0; i < common; ++i) {
        const Part &partA = partsA.at(i);
        const Part &partB = partsB.at(i);
        if (partA.kind == partB.kind) {
            if (partA.kind == Kind::Number) {
                if (const int order = compareNumbers(partA.text, partB.text))
                    return order;
            } else if (partA.kind == Kind::Letters) {
                if (const int order = partA.text.compare(partB.text, Qt::CaseInsensitive))
                    return sign(order);
            }
            continue;
        }
        // Letters where the other goes on with a number or a separator: a pre-release.
        if (partA.kind == Kind::Letters)
            return -1;
        if (partB.kind == Kind::Letters)
            return 1;
        // A number against a separator: the side with the number has one more component.
        return compareRemainder(partA.kind == Kind::Number ? partsA : partsB, i)
            * (partA.kind == Kind::Number ? 1 : -1);
    }
    if (partsA.size() > common)
        return compareRemainder(partsA, common);
    if (partsB.size() > common)
        return -compareRemainder(partsB, common);
    return 0;
}
