#include "BMI18NNumberFormatter.h"

#include <QLocale>

#include <algorithm>
#include <charconv>
#include <cmath>

QString BMI18NNumberFormatter::format(double number, int maxFractionDigits, int minFractionDigits,
                                      const QString &decimalPoint)
{
    if (std::isnan(number))
        return QStringLiteral("NaN");
    if (std::isinf(number))
        return number < 0 ? QStringLiteral("-\u221E") : QStringLiteral("\u221E");

    const int minimum = std::clamp(minFractionDigits, 0, kMaximumFractionDigits);
    const int maximum = std::max(std::clamp(maxFractionDigits, 0, kMaximumFractionDigits), minimum);

    // The shortest fixed text of a double has at most 309 integer digits or
    // about 330 fraction digits.
    char buffer[400];
    const auto [end, error] = std::to_chars(buffer, buffer + sizeof buffer, std::fabs(number),
                                            std::chars_format::fixed);
    if (error != std::errc())
        return QString::number(number, 'g', QLocale::FloatingPointShortest);

    const std::string_view text(buffer, std::size_t(end - buffer));
    const std::size_t point = text.find('.');
    std::string_view integerPart = text.substr(0, point);
    std::string_view fractionPart = point == std::string_view::npos ? std::string_view() : text.substr(point + 1);

    fractionPart = fractionPart.substr(0, std::size_t(maximum));
    while (int(fractionPart.size()) > minimum && fractionPart.back() == '0')
        fractionPart.remove_suffix(1);

    const auto isNonZero = [](char c) { return c != '0'; };
    const bool zero = std::none_of(integerPart.begin(), integerPart.end(), isNonZero)
        && std::none_of(fractionPart.begin(), fractionPart.end(), isNonZero);

    QString result;
    result.reserve(int(integerPart.size() + 2 + std::size_t(std::max<int>(minimum, int(fractionPart.size())))));
    if (std::signbit(number) && !zero)
        result += u'-';
    result += QLatin1String(integerPart.data(), qsizetype(integerPart.size()));
    if (minimum > 0 || !fractionPart.empty()) {
        result += decimalPoint;
        result += QLatin1String(fractionPart.data(), qsizetype(fractionPart.size()));
        for (int i = int(fractionPart.size()); i < minimum; ++i)
            result += u'0';
    }
    return result;
}

QString BMI18NNumberFormatter::decimalPointForLocale(const QString &identifier)
{
    const QLocale locale(identifier);
    const QString separator = locale.decimalPoint();
    return separator.isEmpty() ? QStringLiteral(".") : separator;
}
