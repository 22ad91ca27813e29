#include "ColorContrast.h"

#include <Brightmere/core/BMLogger.h>

#include <algorithm>
#include <cmath>
#include <optional>

namespace Brightmere::Color {

namespace {

double linearComponent(double c)
{
    return c <= 0.03928 ? c / 12.92 : std::pow((c + 0.055) / 1.055, 2.4);
}

// The colour as it shows over an opaque background, in 8-bit components.
QColor over(const QColor &color, const QColor &background)
{
    const QColor c = color.toRgb();
    const QColor b = background.toRgb();
    const double a = c.alphaF();
    const auto mix = [a](int top, int bottom) { return int(std::lround(a * top + (1.0 - a) * bottom)); };
    return QColor(mix(c.red(), b.red()), mix(c.green(), b.green()), mix(c.blue(), b.blue()));
}

// Lightness moved from `from` towards `to` until the ratio is reached; the
// 8-bit colour found, or nothing when even `to` falls short. Luminance grows
// with lightness at a fixed hue and saturation, so halving the interval finds
// the nearest lightness.
std::optional<QColor> searchLightness(float hue, float saturation, float from, float to, const QColor &background,
                                      double ratio)
{
    const auto make = [&](float lightness) { return QColor::fromHslF(hue, saturation, lightness).toRgb(); };
    if (contrastRatio(make(to), background) < ratio)
        return std::nullopt;
    float near = from;
    float far = to;
    for (int i = 0; i < 24; ++i) {
        const float middle = (near + far) / 2;
        (contrastRatio(make(middle), background) >= ratio ? far : near) = middle;
    }
    return QColor(make(far).rgb());
}

} // namespace

double relativeLuminance(const QColor &color)
{
    const QColor c = color.toRgb();
    return 0.2126 * linearComponent(c.redF()) + 0.7152 * linearComponent(c.greenF())
        + 0.0722 * linearComponent(c.blueF());
}

double contrastRatio(const QColor &color, const QColor &background)
{
    if (!color.isValid() || !background.isValid())
        return 1.0;
    const double a = relativeLuminance(over(color, background));
    const double b = relativeLuminance(background);
    return (std::max(a, b) + 0.05) / (std::min(a, b) + 0.05);
}

QColor withContrast(const QColor &color, const QColor &background, double ratio)
{
    if (!color.isValid() || !background.isValid()) {
        BMLogger::sharedInstance().log(QStringLiteral("ColorContrast"), 3,
                                       QStringLiteral("no contrast can be found for an invalid colour"));
        return color;
    }
    const QColor shown = over(color, background);
    if (contrastRatio(shown, background) >= ratio)
        return shown;
    float hue = 0;
    float saturation = 0;
    float lightness = 0;
    shown.toHsl().getHslF(&hue, &saturation, &lightness);
    hue = std::max(hue, 0.0f); // greys have no hue
    const std::optional<QColor> darker = searchLightness(hue, saturation, lightness, 0.0f, background, ratio);
    const std::optional<QColor> lighter = searchLightness(hue, saturation, lightness, 1.0f, background, ratio);
    if (darker && lighter)
        return lightness - darker->lightnessF() <= lighter->lightnessF() - lightness ? *darker : *lighter;
    if (darker || lighter)
        return darker ? *darker : *lighter;
    const QColor black(0, 0, 0);
    const QColor white(255, 255, 255);
    return contrastRatio(black, background) >= contrastRatio(white, background) ? black : white;
}

} // namespace Brightmere::Color
