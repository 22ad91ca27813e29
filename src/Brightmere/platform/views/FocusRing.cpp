#include "FocusRing.h"

#include <QPainter>
#include <QPalette>
#include <QWidget>

namespace Brightmere::FocusRing {

QColor color(const QWidget *widget)
{
    return widget ? widget->palette().color(QPalette::Active, QPalette::Highlight) : QColor(Qt::blue);
}

void paint(QPainter &painter, const QRectF &outline, qreal radius, const QColor &color, qreal width)
{
    painter.save();
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(QPen(color, width));
    painter.setBrush(Qt::NoBrush);
    const QRectF ring = outline.adjusted(width / 2, width / 2, -width / 2, -width / 2);
    if (radius < 0)
        painter.drawEllipse(ring);
    else
        painter.drawRoundedRect(ring, radius, radius);
    painter.restore();
}

QString styleSheetRule(const QString &selector, const QColor &color)
{
    return QStringLiteral("%1 { border: %2px solid transparent; } %1:focus { border-color: %3; }")
        .arg(selector)
        .arg(int(kWidth))
        .arg(color.name());
}

} // namespace Brightmere::FocusRing
