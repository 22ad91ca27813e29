#pragma once

#include <QChart>
#include <QHash>
#include <QList>
#include <QMarginsF>
#include <QPointF>
#include <QSet>

class QGraphicsRectItem;
class QValueAxis;
class ScatterPlot;

// An XY graph on Qt Charts: an x axis at the bottom and a y axis at the
// left, the scatter plots shown on them, and two paddings that place the
// plot area: the graph's own padding inside its frame, and inside that the
// plot-area frame padding, where the axes' labels and titles sit. The plot
// area is laid out from these two alone, so it does not move when a label
// grows ("8" to "10").
class XYGraph : public QChart
{
    Q_OBJECT

public:
    // Where a plot range starts and how long it is.
    struct PlotRange
    {
        double location = 0.0;
        double length = 0.0;
        double end() const { return location + length; }
        bool operator==(const PlotRange &other) const = default;
    };

    explicit XYGraph(const QRectF &frame = QRectF(), QGraphicsItem *parent = nullptr);
    ~XYGraph() override;

    QValueAxis *xAxis() const { return m_xAxis; }
    QValueAxis *yAxis() const { return m_yAxis; }

    QMarginsF padding() const { return m_padding; }
    void setPadding(const QMarginsF &padding);
    QMarginsF plotAreaFramePadding() const { return m_plotAreaFramePadding; }
    void setPlotAreaFramePadding(const QMarginsF &padding);
    // Kept for the padding defaults: a title moved down needs room above.
    QPointF titleDisplacement() const { return m_titleDisplacement; }
    void setTitleDisplacement(const QPointF &displacement) { m_titleDisplacement = displacement; }

    // The plot-area frame: drawn exactly over the laid-out plot area (Qt's
    // own plot-area background is not, when the area is fixed), under the
    // grid and the plots. No fill and no border at first.
    QBrush plotAreaFill() const;
    void setPlotAreaFill(const QBrush &fill);
    QPen plotAreaBorderLineStyle() const;
    void setPlotAreaBorderLineStyle(const QPen &style);

    // The default plot space. A range with a length that is not a positive
    // number is logged and ignored.
    PlotRange xRange() const { return m_xRange; }
    void setXRange(const PlotRange &range);
    PlotRange yRange() const { return m_yRange; }
    void setYRange(const PlotRange &range);

    // The graph takes the plot (as its QObject child) and shows it.
    void addPlot(ScatterPlot *plot);
    QList<ScatterPlot *> allPlots() const;
    // The plots still given each new x range: those not behind it (see
    // ScatterPlot::isBehind), in the order they were added.
    QList<ScatterPlot *> plotsInReach() const { return m_plotsInReach; }
    void reloadData();

    // The plot area the paddings give for the graph's current size.
    QRectF laidOutPlotArea() const;

private:
    void updatePlotArea();
    // Gives the plots in reach the x range and leaves behind those it has
    // passed; a range that moved left first brings back those it reaches.
    void giveXRangeToPlots(bool movedLeft);
    void bringBack(ScatterPlot *plot);

    QGraphicsRectItem *m_plotAreaFrame = nullptr;
    QValueAxis *m_xAxis = nullptr;
    QValueAxis *m_yAxis = nullptr;
    QMarginsF m_padding;
    QMarginsF m_plotAreaFramePadding;
    QPointF m_titleDisplacement;
    PlotRange m_xRange{0.0, 1.0};
    PlotRange m_yRange{0.0, 1.0};
    QList<ScatterPlot *> m_plots;
    // A long test scrolls hundreds of plots out of the window for good: only
    // those in reach cost anything per new range. Those left behind hear
    // again only when their points change or the range moves back.
    QList<ScatterPlot *> m_plotsInReach;
    QSet<ScatterPlot *> m_plotsBehind;
    QHash<ScatterPlot *, qsizetype> m_addedAt;
};
