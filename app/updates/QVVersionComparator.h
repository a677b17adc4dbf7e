#pragma once

#include <QString>

// Orders version strings as appcast clients do: a version is a run of numbers,
// letters and separators; numbers compare by value ("1.10" > "1.9"), trailing
// zero components do not count ("1.0" == "1.0.0"), and letters after a number
// mark a pre-release that ranks below the release ("2.0b1" < "2.0").
class QVVersionComparator final
{
public:
    // Negative when a is older than b, zero when both name the same version,
    // positive when a is newer.
    static int compareVersions(const QString &a, const QString &b);
};
