#pragma once

#include <QFont>
#include <QString>
#include <QWidget>

#include <functional>

// Helpers every screen uses on its widgets: the kit's typeface, widgets made
// from a registered form, and dropping the keyboard focus anywhere in a tree.
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
QString fontFamilyForWeight(int weight);

/// The font with the kit's face for its weight, and the face's own weight, so
/// that where the face is missing the substitute still renders the right
/// weight. Size (in points or pixels) and everything else are kept. Mapping is
/// by weight, so a mapped font maps to itself: setupFont twice is setupFont
/// once. The first call registers substitutes for the four faces, after any
/// the host registered: DejaVu Sans, then the system's "Sans Serif".
QFont kitFont(const QFont &font);

/// Sizes in the design are in points; a point is one device-independent
/// pixel at the default text size. Every size in points is turned into pixels
/// here and nowhere else.
int pixelsForPoints(qreal points);

/// No text of the kit is smaller than this many pixels at scale 1.
inline constexpr int kMinimumTextPixels = 10;

/// How much larger than designed the kit's text is drawn: the application's
/// font against the platform's default (a user who asked for larger text
/// gets it), times the host's own factor. 1 at the default size. Fonts are
/// made when a screen is built, so a change shows on screens built after it.
/// The fonts' ratio is kept between calls and read again after the
/// application's font changes (QEvent::ApplicationFontChange).
qreal textScale();

/// The host's factor on top of the application's font, 1 by default. A
/// factor that is not a number between kMinimumTextScaleFactor and
/// kMaximumTextScaleFactor is logged and clamped into that range.
inline constexpr qreal kMinimumTextScaleFactor = 0.5;
inline constexpr qreal kMaximumTextScaleFactor = 4.0;
void setTextScaleFactor(qreal factor);
qreal textScaleFactor();

/// A length in points that holds text (a row's height, a button's side):
/// the design's size at the default text size, growing with the text, never
/// below the design.
int pixelsForTextPoints(qreal points);

/// The kit's face at a size in points scaled by textScale() (never under
/// kMinimumTextPixels) and a weight: the one way screens make a font.
QFont fontOfSize(qreal points, QFont::Weight weight = QFont::Normal);

/// Gives the widget kitFont of its font. Every widget has a font, so none is
/// skipped; a null widget is logged.
void setupFont(QWidget *view);

/// The form registry: the Qt counterpart of an interface file named as the
/// class. A factory makes the widget, with the parent given to loadFromNib.
using NibFactory = std::function<QWidget *(QWidget *parent)>;

/// Registering a class name again replaces its factory (logged).
void registerNib(const QString &className, NibFactory factory);
void unregisterNib(const QString &className);
bool hasNib(const QString &className);

template<typename T>
void registerNib()
{
    registerNib(QString::fromLatin1(T::staticMetaObject.className()),
                [](QWidget *parent) -> QWidget * { return new T(parent); });
}

/// A new widget from the factory registered under the class name, or null
/// (logged) when none is registered or it made nothing. Without a parent the
/// caller owns the widget.
QWidget *loadFromNib(const QString &className, QWidget *parent = nullptr);

namespace Detail {
/// Deletes a widget that is not of the expected class, with a log line.
void discardMistypedNib(QWidget *widget, const char *expectedClassName);
} // namespace Detail

/// The form registered under T's class name ("Brightmere::Foo" for a class in
/// a namespace), as T; null (logged) when it is missing or not a T.
template<typename T>
T *loadFromNib(QWidget *parent = nullptr)
{
    const char *className = T::staticMetaObject.className();
    QWidget *widget = loadFromNib(QString::fromLatin1(className), parent);
    T *typed = qobject_cast<T *>(widget);
    if (widget && !typed)
        Detail::discardMistypedNib(widget, className);
    return typed;
}

/// Drops the keyboard focus held in the widget's tree. A widget holds it when
/// it is its window's focus widget: the one with focus, or the one that gets
/// it back when its inactive window is activated. The widget itself is asked
/// first, then its child widgets in child order, depth first (child windows
/// included, each with its own focus widget); the first that holds the focus
/// clears it and the search stops. True when one did; false, with nothing
/// changed, when none in the tree holds the focus.
bool findAndResignFirstResponder(QWidget *view);

/// Fills the widget's background with the colour, as a view's background
/// colour does (Qt leaves widgets unfilled unless told).
void setBackgroundColor(QWidget *view, const QColor &color);

/// Runs apply (now too, unless applyNow is false) whenever the high-contrast
/// setting changes, for as long as the widget lives: a widget that paints a
/// design-fixed colour re-reads it there, so a screen already shown follows.
void followContrast(QWidget *widget, const std::function<void()> &apply, bool applyNow = true);

/// A user's or translator's text as a button's text: every "&" doubled, so it
/// shows as written and makes no keyboard shortcut ("Save & close").
QString literalButtonText(const QString &text);

} // namespace Brightmere::View
