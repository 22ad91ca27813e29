#include "XYGraph.h"

#include "ScatterPlot.h"
#include "core/BMLogger.h"

#include <QGraphicsLayout>
#include <QGraphicsRectItem>
#include <QLegend>
#include <QValueAxis>

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
    m_xRange = range;
    m_xAxis->setRange(range.location, range.end());
    for (ScatterPlot *plot : std::as_const(m_plots))
        plot->setVisibleXRange(range.location, range.end());
}

void XYGraph::setYRange(const PlotRange &range)
{
    if (!isUsable(range)) {
        BMLogger::sharedInstance().logFromModule(kModule, 3, "y range at %@ of length %@ ignored", range.location,
                                                 range.length);
        return;
    }
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
    m_plots.append(plot);
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
