#pragma once

#include <QBrush>
#include <QImage>
#include <QPen>
#include <QSizeF>

// How a data point is marked: a shape of a size, filled and outlined. A plot
// draws it as a small image centred on the point.
class PlotSymbol
{
public:
    // The values are those the data sources use to name a shape.
    enum class Type { None = 0, Rectangle = 1, Ellipse = 2 };

    Type type = Type::None;
    QSizeF size;
    QBrush fill;
    QPen lineStyle = QPen(Qt::NoPen);

    // Width and height of what is drawn: the size plus the outline, which
    // straddles the shape's edge.
    QSizeF drawnSize() const;
    // The symbol drawn at `scale` times its size, so that it stays crisp when
    // the chart is drawn on a dense screen; a null image for no shape.
    QImage markerImage(qreal scale = 4.0) const;

    bool operator==(const PlotSymbol &other) const;
};
