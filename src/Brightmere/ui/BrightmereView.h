#pragma once

#include <Brightmere/SDKUIExport.h>
#include <Brightmere/ui/BrightmereFont.h>

#include <QString>
#include <QWidget>

#include <functional>

// Helpers every screen uses on its widgets: the kit's typeface on a widget,
// widgets made from a registered form, and dropping the keyboard focus
// anywhere in a tree. The typeface and text sizes themselves, which need no
// widget, are in BrightmereFont.h.
namespace Brightmere::View {

/// Gives the widget kitFont of its font. Every widget has a font, so none is
/// skipped; a null widget is logged.
BRIGHTMERE_SDKUI_EXPORT void setupFont(QWidget *view);

/// The form registry: the Qt counterpart of an interface file named as the
/// class. A factory makes the widget, with the parent given to loadFromNib.
using NibFactory = std::function<QWidget *(QWidget *parent)>;

/// Registering a class name again replaces its factory (logged).
BRIGHTMERE_SDKUI_EXPORT void registerNib(const QString &className, NibFactory factory);
BRIGHTMERE_SDKUI_EXPORT void unregisterNib(const QString &className);
BRIGHTMERE_SDKUI_EXPORT bool hasNib(const QString &className);

template<typename T>
void registerNib()
{
    registerNib(QString::fromLatin1(T::staticMetaObject.className()),
                [](QWidget *parent) -> QWidget * { return new T(parent); });
}

/// A new widget from the factory registered under the class name, or null
/// (logged) when none is registered or it made nothing. Without a parent the
/// caller owns the widget.
BRIGHTMERE_SDKUI_EXPORT QWidget *loadFromNib(const QString &className, QWidget *parent = nullptr);

namespace Detail {
/// Deletes a widget that is not of the expected class, with a log line.
BRIGHTMERE_SDKUI_EXPORT void discardMistypedNib(QWidget *widget, const char *expectedClassName);
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
BRIGHTMERE_SDKUI_EXPORT bool findAndResignFirstResponder(QWidget *view);

/// Fills the widget's background with the colour, as a view's background
/// colour does (Qt leaves widgets unfilled unless told).
BRIGHTMERE_SDKUI_EXPORT void setBackgroundColor(QWidget *view, const QColor &color);

/// Runs apply (now too, unless applyNow is false) whenever the high-contrast
/// setting changes, for as long as the widget lives: a widget that paints a
/// design-fixed colour re-reads it there, so a screen already shown follows.
BRIGHTMERE_SDKUI_EXPORT void followContrast(QWidget *widget, const std::function<void()> &apply, bool applyNow = true);

/// A user's or translator's text as a button's text: every "&" doubled, so it
/// shows as written and makes no keyboard shortcut ("Save & close").
BRIGHTMERE_SDKUI_EXPORT QString literalButtonText(const QString &text);

} // namespace Brightmere::View
