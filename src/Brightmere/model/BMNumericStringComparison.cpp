#include "BMNumericStringComparison.h"

namespace {

bool isAsciiDigit(QChar c)
{
    return c.unicode() >= u'0' && c.unicode() <= u'9';
}

// The end of the digit run that starts at from.
qsizetype digitRunEnd(QStringView text, qsizetype from)
{
    while (from < text.size() && isAsciiDigit(text[from]))
        ++from;
    return from;
}

qsizetype skipZeros(QStringView text, qsizetype from, qsizetype end)
{
    while (from < end && text[from] == u'0')
        ++from;
    return from;
}

} // namespace

int BMNumericStringComparison::compare(QStringView a, QStringView b)
{
    qsizetype i = 0;
    qsizetype j = 0;
    while (i < a.size() && j < b.size()) {
        if (isAsciiDigit(a[i]) && isAsciiDigit(b[j])) {
            const qsizetype endA = digitRunEnd(a, i);
            const qsizetype endB = digitRunEnd(b, j);
            const qsizetype startA = skipZeros(a, i, endA);
            const qsizetype startB = skipZeros(b, j, endB);
            // Without leading zeros, the longer run is the larger number.
            const qsizetype lengthA = endA - startA;
            const qsizetype lengthB = endB - startB;
            if (lengthA != lengthB)
                return lengthA < lengthB ? -1 : 1;
            for (qsizetype k = 0; k < lengthA; ++k) {
                if (a[startA + k] != b[startB + k])
                    return a[startA + k] < b[startB + k] ? -1 : 1;
            }
            i = endA;
            j = endB;
            continue;
        }
        if (a[i] != b[j])
            return a[i].unicode() < b[j].unicode() ? -1 : 1;
        ++i;
        ++j;
    }
    const bool aEnded = i == a.size();
    const bool bEnded = j == b.size();
    if (aEnded && bEnded)
        return 0;
    return aEnded ? -1 : 1;
}
