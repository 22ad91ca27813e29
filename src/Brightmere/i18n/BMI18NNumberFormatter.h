#pragma once

#include <QString>

// Numbers for display, as the localisation manager formats them: the
// shortest decimal text that reads back as the same double, cut toward zero
// to the largest number of fraction digits, trailing zeros dropped down to
// the smallest number, padded with zeros up to it; at least one integer digit
// and no grouping. Cutting the decimal text rather than the double keeps
// 4.35 with two digits "4.35" (the double lies just below it).
//
// Only the decimal separator comes from the locale. A result that reads as
// zero carries no minus sign ("0.0", not "-0.0").
class BMI18NNumberFormatter
{
public:
    // The largest fraction digit count honoured; enough for every double.
    static constexpr int kMaximumFractionDigits = 340;

    // Digit counts below 0 count as 0 and above kMaximumFractionDigits as
    // that; a smallest count above the largest raises the largest to it.
    // NaN and the infinities give "NaN", "∞" and "-∞".
    static QString format(double number, int maxFractionDigits, int minFractionDigits,
                          const QString &decimalPoint = QStringLiteral("."));

    // The decimal separator of the locale with that identifier ("es" -> ","),
    // "." for an identifier Qt does not know.
    static QString decimalPointForLocale(const QString &identifier);
};
