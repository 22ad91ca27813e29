#include "PlotSymbol.h"

#include <QPainter>

#include <cmath>

QSizeF PlotSymbol::drawnSize() const
{
    const qreal outline = lineStyle.style() == Qt::NoPen ? 0.0 : lineStyle.widthF();
    return size + QSizeF(outline, outline);
}

QImage PlotSymbol::markerImage(qreal scale) const
{
    const QSizeF drawn = drawnSize() * scale;
    if (type == Type::None || drawn.isEmpty())
        return QImage();
    QImage image(int(std::ceil(drawn.width())), int(std::ceil(drawn.height())), QImage::Format_ARGB32_Premultiplied);
    image.fill(Qt::transparent);
    QPainter painter(&image);
    painter.setRenderHint(QPainter::Antialiasing);
    QPen pen = lineStyle;
    pen.setWidthF(lineStyle.widthF() * scale);
    painter.setPen(pen);
    painter.setBrush(fill);
    const qreal inset = lineStyle.style() == Qt::NoPen ? 0.0 : pen.widthF() / 2.0;
    const QRectF shape = QRectF(QPointF(0, 0), drawn).adjusted(inset, inset, -inset, -inset);
    if (type == Type::Ellipse)
        painter.drawEllipse(shape);
    else
        painter.drawRect(shape);
    return image;
}

bool PlotSymbol::operator==(const PlotSymbol &other) const
{
    return type == other.type && size == other.size && fill == other.fill && lineStyle == other.lineStyle;
}
