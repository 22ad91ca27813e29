#include "XYGraph.h"

#include "ScatterPlot.h"
#include <Brightmere/core/BMLogger.h>

#include <QGraphicsLayout>
#include <QGraphicsRectItem>
#include <QLegend>
#include <QValueAxis>

#include <algorithm>
#include <cmath>

namespace {

const QString kModule = QStringLiteral("XYGraph");

bool isUsable(const XYGraph::PlotRange &range)
{
    return std::isfinite(range.location) && std::isfinite(range.length) && range.length > 0.0;
}

} // namespace

XYGraph::XYGraph(const QRectF &frame, QGraphicsItem *parent)
    : QChart(parent)
    , m_plotAreaFrame(new QGraphicsRectItem(this))
    , m_xAxis(new QValueAxis)
    , m_yAxis(new QValueAxis)
{
    legend()->hide();
    // Over the chart's background, under everything else.
    m_plotAreaFrame->setZValue(-0.5);
    m_plotAreaFrame->setBrush(Qt::NoBrush);
    m_plotAreaFrame->setPen(Qt::NoPen);
    // The paddings alone place the plot area: none of Qt's own margins.
    layout()->setContentsMargins(0, 0, 0, 0);
    setMargins(QMargins());
    setAnimationOptions(QChart::NoAnimation);
    addAxis(m_xAxis, Qt::AlignBottom);
    addAxis(m_yAxis, Qt::AlignLeft);
    m_xAxis->setRange(m_xRange.location, m_xRange.end());
    m_yAxis->setRange(m_yRange.location, m_yRange.end());
    connect(this, &QGraphicsWidget::geometryChanged, this, &XYGraph::updatePlotArea);
    if (!frame.isEmpty())
        setGeometry(frame);
}

XYGraph::~XYGraph() = default;

void XYGraph::setPadding(const QMarginsF &padding)
{
    m_padding = padding;
    updatePlotArea();
}

void XYGraph::setPlotAreaFramePadding(const QMarginsF &padding)
{
    m_plotAreaFramePadding = padding;
    updatePlotArea();
}

QRectF XYGraph::laidOutPlotArea() const
{
    return QRectF(QPointF(0, 0), size()).marginsRemoved(m_padding).marginsRemoved(m_plotAreaFramePadding);
}

void XYGraph::updatePlotArea()
{
    const QRectF area = laidOutPlotArea();
    // Too small to hold a plot area: Qt lays one out by itself.
    setPlotArea(area.isValid() ? area : QRectF());
    m_plotAreaFrame->setRect(plotArea());
    // A new plot area alone leaves the axes where the last layout put
    // them (a resized window showed the old labels): lay them out again.
    layout()->invalidate();
}

QBrush XYGraph::plotAreaFill() const
{
    return m_plotAreaFrame->brush();
}

void XYGraph::setPlotAreaFill(const QBrush &fill)
{
    m_plotAreaFrame->setBrush(fill);
}

QPen XYGraph::plotAreaBorderLineStyle() const
{
    return m_plotAreaFrame->pen();
}

void XYGraph::setPlotAreaBorderLineStyle(const QPen &style)
{
    m_plotAreaFrame->setPen(style);
}

void XYGraph::setXRange(const PlotRange &range)
{
    if (!isUsable(range)) {
        BMLogger::sharedInstance().logFromModule(kModule, 3, "x range at %@ of length %@ ignored", range.location,
                                                 range.length);
        return;
    }
    if (range == m_xRange)
        return;
    const bool movedLeft = range.location < m_xRange.location;
    m_xRange = range;
    m_xAxis->setRange(range.location, range.end());
    giveXRangeToPlots(movedLeft);
}

void XYGraph::giveXRangeToPlots(bool movedLeft)
{
    if (movedLeft && !m_plotsBehind.isEmpty()) {
        // Rare (the live chart only ever scrolls right), so a plain walk.
        m_plotsInReach.clear();
        for (ScatterPlot *plot : std::as_const(m_plots)) {
            if (!m_plotsBehind.contains(plot) || !plot->isBehind(m_xRange.location)) {
                m_plotsBehind.remove(plot);
                m_plotsInReach.append(plot);
            }
        }
    }
    qsizetype kept = 0;
    for (qsizetype i = 0; i < m_plotsInReach.size(); ++i) {
        ScatterPlot *plot = m_plotsInReach.at(i);
        plot->setVisibleXRange(m_xRange.location, m_xRange.end());
        if (plot->isBehind(m_xRange.location))
            m_plotsBehind.insert(plot);
        else
            m_plotsInReach[kept++] = plot;
    }
    m_plotsInReach.resize(kept);
}

void XYGraph::bringBack(ScatterPlot *plot)
{
    if (!m_plotsBehind.remove(plot))
        return;
    // In the order the plots were added, so that plots coming into view
    // together put their series into the chart in that order.
    const auto addedBefore = [this](ScatterPlot *a, ScatterPlot *b) { return m_addedAt.value(a) < m_addedAt.value(b); };
    m_plotsInReach.insert(std::upper_bound(m_plotsInReach.begin(), m_plotsInReach.end(), plot, addedBefore), plot);
    plot->setVisibleXRange(m_xRange.location, m_xRange.end());
}

void XYGraph::setYRange(const PlotRange &range)
{
    if (!isUsable(range)) {
        BMLogger::sharedInstance().logFromModule(kModule, 3, "y range at %@ of length %@ ignored", range.location,
                                                 range.length);
        return;
    }
    if (range == m_yRange)
        return;
    m_yRange = range;
    m_yAxis->setRange(range.location, range.end());
}

void XYGraph::addPlot(ScatterPlot *plot)
{
    if (!plot || m_plots.contains(plot)) {
        BMLogger::sharedInstance().logFromModule(kModule, 3, "a plot that is null or already shown is not added");
        return;
    }
    plot->setParent(this);
    m_addedAt.insert(plot, m_plots.size());
    m_plots.append(plot);
    m_plotsInReach.append(plot);
    connect(plot, &ScatterPlot::cachedPointsChanged, this, [this, plot] { bringBack(plot); });
    plot->attachToChart(this, m_xAxis, m_yAxis);
    plot->setVisibleXRange(m_xRange.location, m_xRange.end());
    plot->reloadData();
}

QList<ScatterPlot *> XYGraph::allPlots() const
{
    return m_plots;
}

void XYGraph::reloadData()
{
    for (ScatterPlot *plot : std::as_const(m_plots))
        plot->reloadData();
}
