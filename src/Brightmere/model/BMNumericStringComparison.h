#pragma once

#include <QStringView>

// The order of spot labels wherever the kit sorts them: runs of ASCII digits
// compare by their value, so "Spot 2" comes before "Spot 10"; every other
// character compares by its UTF-16 code unit, case sensitive, one at a time,
// and a string that runs out first comes first. Digit runs of any length
// compare correctly (no conversion to an integer type), and runs that differ
// only in leading zeros ("07" and "7") have the same value and compare equal.
class BMNumericStringComparison
{
public:
    // Negative when a comes before b, positive when after, 0 when the same.
    static int compare(QStringView a, QStringView b);
    static bool lessThan(QStringView a, QStringView b) { return compare(a, b) < 0; }
};
