#pragma once

#include <QColor>
#include <QRectF>
#include <QString>

class QPainter;
class QWidget;

// The ring that shows which control the keyboard acts on. Controls that draw
// themselves paint it; controls styled with a style sheet take its rule.
// Its colour is the palette's highlight unless the caller gives one (on a
// dark bar, say).
namespace Brightmere::FocusRing {

inline constexpr qreal kWidth = 2.0;

QColor color(const QWidget *widget);

// Strokes the ring just inside the outline: a rounded rectangle, or an
// ellipse when radius is negative.
void paint(QPainter &painter, const QRectF &outline, qreal radius, const QColor &color, qreal width = kWidth);

// Style-sheet rules, to come after the control's own: a transparent border
// of the ring's width (so the control keeps its size) that takes the colour
// while the control has the focus.
QString styleSheetRule(const QString &selector, const QColor &color);

} // namespace Brightmere::FocusRing
