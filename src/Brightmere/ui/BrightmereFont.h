#pragma once

#include <Brightmere/SDKUIExport.h>

#include <QFont>
#include <QString>

// The kit's typeface and text sizes: Qt Gui only, so whatever draws text
// without a widget (a PDF report) uses them too. Part of Brightmere::View,
// as every screen makes its fonts there.
namespace Brightmere::View {

/// The kit's four faces. Where the host installs no face of these names, Qt
/// substitutes an installed sans face (see kitFont).
inline constexpr char kFontSemibold[] = "ProximaNova-Semibold";
inline constexpr char kFontBold[] = "ProximaNova-Bold";
inline constexpr char kFontLight[] = "ProximaNova-Light";
inline constexpr char kFontRegular[] = "ProximaNova-Regular";

/// The face for a font weight (Qt keeps the weight apart from the family
/// name): semibold weights (600-699) take the semibold face, bold and heavier
/// the bold one, light and lighter (300 and below) the light one, the rest
/// the regular one.
BRIGHTMERE_SDKUI_EXPORT QString fontFamilyForWeight(int weight);

/// The font with the kit's face for its weight, and the face's own weight, so
/// that where the face is missing the substitute still renders the right
/// weight. Size (in points or pixels) and everything else are kept. Mapping is
/// by weight, so a mapped font maps to itself: setupFont twice is setupFont
/// once. The first call registers substitutes for the four faces, after any
/// the host registered: DejaVu Sans, then the system's "Sans Serif".
BRIGHTMERE_SDKUI_EXPORT QFont kitFont(const QFont &font);

/// Sizes in the design are in points; a point is one device-independent
/// pixel at the default text size. Every size in points is turned into pixels
/// here and nowhere else.
BRIGHTMERE_SDKUI_EXPORT int pixelsForPoints(qreal points);

/// No text of the kit is smaller than this many pixels at scale 1.
inline constexpr int kMinimumTextPixels = 10;

/// How much larger than designed the kit's text is drawn: the application's
/// font against the platform's default (a user who asked for larger text
/// gets it), times the host's own factor. 1 at the default size. Fonts are
/// made when a screen is built, so a change shows on screens built after it.
/// The fonts' ratio is kept between calls and read again after the
/// application's font changes (QEvent::ApplicationFontChange).
BRIGHTMERE_SDKUI_EXPORT qreal textScale();

/// The host's factor on top of the application's font, 1 by default. A
/// factor that is not a number between kMinimumTextScaleFactor and
/// kMaximumTextScaleFactor is logged and clamped into that range.
inline constexpr qreal kMinimumTextScaleFactor = 0.5;
inline constexpr qreal kMaximumTextScaleFactor = 4.0;
BRIGHTMERE_SDKUI_EXPORT void setTextScaleFactor(qreal factor);
BRIGHTMERE_SDKUI_EXPORT qreal textScaleFactor();

/// A length in points that holds text (a row's height, a button's side):
/// the design's size at the default text size, growing with the text, never
/// below the design.
BRIGHTMERE_SDKUI_EXPORT int pixelsForTextPoints(qreal points);

/// The kit's face at a size in points scaled by textScale() (never under
/// kMinimumTextPixels) and a weight: the one way screens make a font.
BRIGHTMERE_SDKUI_EXPORT QFont fontOfSize(qreal points, QFont::Weight weight = QFont::Normal);

} // namespace Brightmere::View
