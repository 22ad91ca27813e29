#include "BrightmereColor.h"

#include <Brightmere/core/BMLogger.h>
#include <Brightmere/model/BMSDKUISettings.h>
#include <Brightmere/platform/foundation/StringFormat.h>

#include <QRandomGenerator>

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdlib>
#include <optional>

namespace Brightmere::Color {

namespace {

const QString kModule = QStringLiteral("BrightmereColor");

struct NamedColor
{
    const char *key;
    const char *hex;
};

// Several keys share a value on purpose: each names a role, and roles may
// part ways later.
constexpr std::array<NamedColor, 22> kTable{{
    {"norva_red_1", "FF0000"},
    {"norva_action_bar_green", "23ACA3"},
    {"dark_blue", "066DA9"},
    {"disable_gray", "CCCCCC"},
    {"fixed_action_bar_green", "23ACA3"},
    {"fixed_dark_blue", "066DA9"},
    {"fixed_light_gray", "F0F0F0"},
    {"medium_blue", "3593DA"},
    {"medium_gray", "7F7F7F"},
    {"selected_button_blue", "0D72AE"},
    {"server_selection", "F0F0F0"},
    {"strong_medium_blue", "358DCF"},
    {"fz_average_back", "E4F3E6"},
    {"fz_chart_back", "FFFFFF"},
    {"fz_compare_set", "96C27B"},
    {"text_blue", "0C72AE"},
    {"unselected_button_blue", "2D8FC8"},
    {"wifi_health_average", "FFD24D"},
    {"wifi_health_good", "73FF73"},
    {"wifi_health_poor", "FF7373"},
    {"wifi_health_working", "2769C0"},
    {"fz_report_text", "333333"},
}};

// Components of a difference below this (in QColor's 16-bit units) come from
// rounding in the conversions between colour models, not from the colours.
constexpr int kEqualityTolerance = 16;

void logError(const QString &message)
{
    BMLogger::sharedInstance().log(kModule, 3, message);
}

// The hexadecimal number at the start of the text as the platform's scanner
// reads one, saturated at 32 bits; nothing when no digit starts it.
std::optional<quint32> scanHex(const QString &text, bool *saturated)
{
    qsizetype i = 0;
    while (i < text.size() && text.at(i).isSpace())
        ++i;
    // The prefix counts only with a digit after it; otherwise its "0" is
    // the number.
    if (i + 2 < text.size() && text.at(i) == u'0' && (text.at(i + 1) == u'x' || text.at(i + 1) == u'X')
        && Brightmere::StringFormat::hexDigitValue(text.at(i + 2)) >= 0)
        i += 2;
    if (i >= text.size() || Brightmere::StringFormat::hexDigitValue(text.at(i)) < 0)
        return std::nullopt;
    quint64 value = 0;
    *saturated = false;
    for (; i < text.size(); ++i) {
        const int digit = Brightmere::StringFormat::hexDigitValue(text.at(i));
        if (digit < 0)
            break;
        value = value * 16 + quint64(digit);
        if (value > 0xffffffffu) {
            value = 0xffffffffu;
            *saturated = true;
        }
    }
    return quint32(value);
}

uint clampComponent(uint value, const char *name)
{
    if (value <= 255)
        return value;
    BMLogger::sharedInstance().logFromModule(kModule, 3, "%s component %u is beyond 255; 255 is used", name,
                                             value);
    return 255;
}

// A 16-bit component times 255/65535, truncated: component / 257 in whole
// numbers, so every 8-bit value stays exact where a double might land just
// below it. A component just below a whole value by no more than the
// rounding of a model conversion counts as that value, so colours that
// isEqualToColor calls equal have the same text.
int truncatedByte(quint16 component)
{
    const int whole = component / 257;
    return component % 257 >= 257 - kEqualityTolerance ? whole + 1 : whole;
}

// 16-bit components, with 0-1 values of wider models clamped.
QRgba64 rgba64Of(const QColor &color)
{
    return color.spec() == QColor::Rgb ? color.rgba64() : color.toRgb().rgba64();
}

} // namespace

QColor named(const QString &key)
{
    for (const NamedColor &row : kTable) {
        if (key == QLatin1String(row.key))
            return colorFromHex(QLatin1String(row.hex));
    }
    BMLogger::sharedInstance().logFromModule(kModule, 3, "no colour named '%@'", key);
    return QColor();
}

QStringList namedColorKeys()
{
    QStringList keys;
    keys.reserve(qsizetype(kTable.size()));
    for (const NamedColor &row : kTable)
        keys.append(QLatin1String(row.key));
    return keys;
}

QColor colorFromHex(const QString &text)
{
    std::array<int, 3> components{0, 0, 0};
    int read = 0;
    while (read < 3 && 2 * read + 1 < text.size()) {
        const int high = Brightmere::StringFormat::hexDigitValue(text.at(2 * read));
        const int low = Brightmere::StringFormat::hexDigitValue(text.at(2 * read + 1));
        if (high < 0 || low < 0)
            break;
        components[std::size_t(read)] = high * 16 + low;
        ++read;
    }
    if (read < 3)
        BMLogger::sharedInstance().logFromModule(kModule, 3,
                                                 "'%@' is not six hexadecimal digits; %d components read, the "
                                                 "rest are 0",
                                                 text, read);
    else if (text.size() != 6)
        BMLogger::sharedInstance().logFromModule(kModule, 3, "'%@' is longer than six characters; the rest is "
                                                             "ignored",
                                                 text);
    return QColor(components[0], components[1], components[2]);
}

QColor colorWithHexString(const QString &text)
{
    bool saturated = false;
    const std::optional<quint32> value = scanHex(text, &saturated);
    if (!value) {
        BMLogger::sharedInstance().logFromModule(kModule, 3, "'%@' does not start with a hexadecimal number",
                                                 text);
        return QColor();
    }
    if (saturated)
        BMLogger::sharedInstance().logFromModule(kModule, 3, "'%@' is beyond 32 bits; read as ffffffff", text);
    return colorWithRGBHex(*value);
}

QColor colorWithRGBHex(quint32 hex)
{
    return QColor(int((hex >> 16) & 0xff), int((hex >> 8) & 0xff), int(hex & 0xff));
}

QColor colorWithR(uint red, uint green, uint blue)
{
    return QColor(int(clampComponent(red, "red")), int(clampComponent(green, "green")),
                  int(clampComponent(blue, "blue")));
}

QColor colorWithR(uint red, uint green, uint blue, float alpha)
{
    QColor color = colorWithR(red, green, blue);
    if (std::isnan(alpha)) {
        logError(QStringLiteral("alpha is not a number; 1 is used"));
        alpha = 1.0f;
    } else if (alpha < 0.0f || alpha > 1.0f) {
        BMLogger::sharedInstance().logFromModule(kModule, 3, "alpha %@ is outside 0-1; clamped", double(alpha));
        alpha = std::clamp(alpha, 0.0f, 1.0f);
    }
    color.setAlphaF(alpha);
    return color;
}

QString colorToString(const QColor &color)
{
    if (!color.isValid()) {
        logError(QStringLiteral("an invalid colour has no text"));
        return QString();
    }
    const QRgba64 c = rgba64Of(color);
    return QStringLiteral("%1%2%3")
        .arg(truncatedByte(c.red()), 2, 16, QLatin1Char('0'))
        .arg(truncatedByte(c.green()), 2, 16, QLatin1Char('0'))
        .arg(truncatedByte(c.blue()), 2, 16, QLatin1Char('0'));
}

QColor randomColor(QRandomGenerator *generator)
{
    QRandomGenerator *source = generator ? generator : QRandomGenerator::global();
    // Separate statements keep the order of the draws.
    const int red = int(source->generate() % 255);
    const int green = int(source->generate() % 255);
    const int blue = int(source->generate() % 255);
    return QColor(red, green, blue);
}

QColor system(int index)
{
    switch (index) {
    case 0:
        return QColor(0, 0, 0);
    case 1:
        return colorWithR(60, 60, 67, 0.6f);
    case 2:
        return QColor(255, 255, 255);
    case 3:
        return QColor(229, 229, 234);
    case 4:
        return QColor(242, 242, 247);
    case 5:
        return colorWithR(60, 60, 67, 0.3f);
    default:
        return QColor(0, 0, 0, 0);
    }
}

bool isEqualToColor(const QColor &color, const QColor &other)
{
    if (!color.isValid() || !other.isValid())
        return false;
    if (color.spec() == QColor::ExtendedRgb || other.spec() == QColor::ExtendedRgb) {
        // Components beyond 0-1 would be clamped in 16 bits: compare floats.
        const QColor a = color.toExtendedRgb();
        const QColor b = other.toExtendedRgb();
        const float tolerance = float(kEqualityTolerance) / 65535.0f;
        return std::abs(a.redF() - b.redF()) <= tolerance && std::abs(a.greenF() - b.greenF()) <= tolerance
            && std::abs(a.blueF() - b.blueF()) <= tolerance && std::abs(a.alphaF() - b.alphaF()) <= tolerance;
    }
    const QRgba64 a = rgba64Of(color);
    const QRgba64 b = rgba64Of(other);
    const auto close = [](int x, int y) { return std::abs(x - y) <= kEqualityTolerance; };
    return close(a.red(), b.red()) && close(a.green(), b.green()) && close(a.blue(), b.blue())
        && close(a.alpha(), b.alpha());
}

QColor fixedColor(const QColor &color, const QColor &background, double ratio)
{
    return BMSDKUISettings::sharedInstance().highContrast() ? withContrast(color, background, ratio) : color;
}

} // namespace Brightmere::Color
