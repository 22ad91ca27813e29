#pragma once

#include <QColor>

// Colour arithmetic the platform's controls and the kit's screens share. Part
// of Brightmere::Color, beside the kit's named colours, which are the kit's
// own and stay above the platform layer.
namespace Brightmere::Color {

// Readability, measured as the web content accessibility guidelines do:
// relative luminance of the sRGB components, and the ratio
// (lighter + 0.05) / (darker + 0.05), from 1 (none) to 21 (black on white).
// A translucent colour is measured as it shows over an opaque background.
inline constexpr double kTextContrast = 4.5;
// Large text (18 pt, or 14 pt bold) and the parts of a control that are not
// text, such as a switch's track or the page dots.
inline constexpr double kLargeContrast = 3.0;

double relativeLuminance(const QColor &color);
double contrastRatio(const QColor &color, const QColor &background);

// The nearest colour of the same hue and saturation that reaches the ratio
// on the background: only the lightness moves, as little as it must, in
// whichever direction gets there sooner. Opaque. The colour itself (over the
// background) when it already reaches the ratio; black or white, whichever
// reads better, when no lightness of its hue does.
QColor withContrast(const QColor &color, const QColor &background, double ratio);

} // namespace Brightmere::Color
