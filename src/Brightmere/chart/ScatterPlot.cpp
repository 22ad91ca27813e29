#include "ScatterPlot.h"

#include "PlotDataSource.h"
#include <Brightmere/core/BMLogger.h>

#include <QAreaSeries>
#include <QChart>
#include <QLineSeries>

#include <algorithm>
#include <cmath>
#include <limits>

namespace {

const QString kModule = QStringLiteral("ScatterPlot");

double numberOrNaN(const QVariant &value)
{
    bool ok = false;
    const double number = value.toDouble(&ok);
    return value.isValid() && ok ? number : std::numeric_limits<double>::quiet_NaN();
}

bool isDrawable(const QPointF &point)
{
    return std::isfinite(point.x()) && std::isfinite(point.y());
}

} // namespace

ScatterPlot::ScatterPlot(const QString &identifier, QObject *parent)
    : QObject(parent)
    , m_identifier(identifier)
    , m_line(new QLineSeries(this))
    , m_base(new QLineSeries(this))
    , m_area(new QAreaSeries(m_line, m_base))
{
    m_area->setParent(this);
    m_line->setName(identifier);
    m_area->setName(identifier);
    m_area->setPen(Qt::NoPen);
    m_area->setBrush(m_areaFill);
    m_line->setPointsVisible(false);
}

ScatterPlot::~ScatterPlot()
{
    // Out of a chart that lives on, so the series go with this plot.
    showSeries(false);
}

void ScatterPlot::setDataSource(PlotDataSource *dataSource)
{
    m_dataSource = dataSource;
}

void ScatterPlot::setDataLineStyle(const QPen &style)
{
    m_dataLineStyle = style;
    if (m_line)
        m_line->setPen(style);
}

void ScatterPlot::setAreaFill(const QBrush &fill)
{
    m_areaFill = fill;
    if (m_area)
        m_area->setBrush(fill);
}

void ScatterPlot::setAreaBaseValue(double value)
{
    if (!std::isfinite(value)) {
        BMLogger::sharedInstance().logFromModule(kModule, 3, "%@: area base value %@ is not a number; 0 is used",
                                                 m_identifier, value);
        value = 0.0;
    }
    m_areaBaseValue = value;
    m_fedSlice = {-1, -1};
    feedVisiblePoints();
}

QList<QPointF> ScatterPlot::visiblePoints() const
{
    return m_line ? m_line->points() : QList<QPointF>();
}

QPointF ScatterPlot::loadRecord(qsizetype index) const
{
    return QPointF(numberOrNaN(m_dataSource->drawingXForPlot(this, index)),
                   numberOrNaN(m_dataSource->numberForPlot(this, PlotDataSource::FieldY, index)));
}

void ScatterPlot::updateSymbol(qsizetype lastIndex)
{
    if (!m_dataSource || lastIndex < 0)
        return;
    const std::optional<PlotSymbol> symbol = m_dataSource->symbolForScatterPlot(this, lastIndex);
    if (symbol == m_symbol || !m_line)
        return;
    m_symbol = symbol;
    // One image for every point: Qt draws it without a path per point.
    const QImage marker = symbol ? symbol->markerImage() : QImage();
    m_line->setLightMarker(marker);
    m_line->setMarkerSize(symbol ? std::max(symbol->drawnSize().width(), symbol->drawnSize().height()) : 0.0);
    m_line->setPointsVisible(!marker.isNull());
}

void ScatterPlot::reloadData()
{
    m_cache.clear();
    if (m_dataSource) {
        const qsizetype count = std::max<qsizetype>(0, m_dataSource->numberOfRecordsForPlot(this));
        m_cache.reserve(count);
        for (qsizetype i = 0; i < count; ++i)
            m_cache.append(loadRecord(i));
        updateSymbol(count - 1);
    }
    cacheChanged(0, m_cache.size());
}

void ScatterPlot::insertDataAtIndex(qsizetype index, qsizetype numberOfRecords)
{
    if (!m_dataSource)
        return;
    if (index < 0 || numberOfRecords < 0) {
        BMLogger::sharedInstance().logFromModule(kModule, 3, "%@: cannot insert %ld records at %ld; reloading",
                                                 m_identifier, qlonglong(numberOfRecords), qlonglong(index));
        reloadData();
        return;
    }
    if (index > m_cache.size() || index + numberOfRecords > m_dataSource->numberOfRecordsForPlot(this)) {
        reloadData();
        return;
    }
    QList<QPointF> loaded;
    loaded.reserve(numberOfRecords);
    for (qsizetype i = 0; i < numberOfRecords; ++i)
        loaded.append(loadRecord(index + i));
    m_cache.insert(index, numberOfRecords, QPointF());
    std::copy(loaded.cbegin(), loaded.cend(), m_cache.begin() + index);
    updateSymbol(index + numberOfRecords - 1);
    cacheChanged(index, index + numberOfRecords);
}

void ScatterPlot::deleteDataInIndexRange(qsizetype location, qsizetype length)
{
    const qsizetype first = std::clamp<qsizetype>(location, 0, m_cache.size());
    const qsizetype last = std::clamp<qsizetype>(location + std::max<qsizetype>(length, 0), first, m_cache.size());
    if (first != location || last - first != length)
        BMLogger::sharedInstance().logFromModule(kModule, 2, "%@: deleting %ld records at %ld of %ld; clipped",
                                                 m_identifier, qlonglong(length), qlonglong(location),
                                                 qlonglong(m_cache.size()));
    m_cache.remove(first, last - first);
    // Dropping records keeps an ascending cache ascending.
    cacheChanged(m_ascending ? first : 0, m_ascending ? first : m_cache.size());
}

bool ScatterPlot::isAscending(qsizetype first, qsizetype last) const
{
    first = std::max<qsizetype>(first, 0);
    last = std::min(last, m_cache.size());
    for (qsizetype i = first; i < last; ++i) {
        if (!std::isfinite(m_cache.at(i).x()) || (i > 0 && m_cache.at(i).x() < m_cache.at(i - 1).x()))
            return false;
    }
    return true;
}

void ScatterPlot::cacheChanged(qsizetype first, qsizetype last)
{
    // Appending to an ascending cache looks only at the new records and
    // their neighbours, so a long plot costs no more per record.
    m_ascending = first == 0 && last == m_cache.size() ? isAscending(0, last)
                                                      : m_ascending && isAscending(first, last + 1);
    m_fedSlice = {-1, -1};
    Q_EMIT cachedPointsChanged();
    feedVisiblePoints();
}

bool ScatterPlot::isBehind(double minimum) const
{
    return m_cache.isEmpty() || (m_ascending && m_cache.last().x() < minimum);
}

void ScatterPlot::attachToChart(QChart *chart, QAbstractAxis *xAxis, QAbstractAxis *yAxis)
{
    if (!chart || !m_line || !m_area) {
        BMLogger::sharedInstance().logFromModule(kModule, 3, "%@: no chart to attach to", m_identifier);
        return;
    }
    showSeries(false);
    m_chart = chart;
    m_xAxis = xAxis;
    m_yAxis = yAxis;
    m_fedSlice = {-1, -1};
    feedVisiblePoints();
}

void ScatterPlot::showSeries(bool shown)
{
    if (shown == m_seriesShown || !m_chart || !m_line || !m_area)
        return;
    m_seriesShown = shown;
    const QList<QAbstractSeries *> series{m_area.data(), m_line.data()};
    if (!shown) {
        for (QAbstractSeries *s : series) {
            m_chart->removeSeries(s);
            s->setParent(this);
        }
        return;
    }
    // The fill first, so the line and its symbols are drawn over it.
    for (QAbstractSeries *s : series) {
        m_chart->addSeries(s);
        if (m_xAxis)
            s->attachAxis(m_xAxis);
        if (m_yAxis)
            s->attachAxis(m_yAxis);
    }
}

void ScatterPlot::setVisibleXRange(double minimum, double maximum)
{
    if (minimum == m_visibleMinimum && maximum == m_visibleMaximum)
        return;
    // A plot already wholly left of the range stays empty as the range moves
    // on: with hundreds of lines scrolled away, each sample costs no search.
    const bool staysLeft = m_ascending && !m_seriesShown && !m_cache.isEmpty() && m_cache.last().x() < minimum
        && m_cache.last().x() < m_visibleMinimum;
    m_visibleMinimum = minimum;
    m_visibleMaximum = maximum;
    if (!staysLeft)
        feedVisiblePoints();
}

std::pair<qsizetype, qsizetype> ScatterPlot::visibleSlice() const
{
    if (!m_ascending)
        return {0, m_cache.size()};
    const auto byX = [](const QPointF &point, double x) { return point.x() < x; };
    const auto first = std::lower_bound(m_cache.cbegin(), m_cache.cend(), m_visibleMinimum, byX);
    const auto afterLast = std::upper_bound(first, m_cache.cend(), m_visibleMaximum,
                                            [](double x, const QPointF &point) { return x < point.x(); });
    qsizetype begin = first - m_cache.cbegin();
    qsizetype end = afterLast - m_cache.cbegin();
    // The neighbours outside the range carry the line to the plot's edges.
    if (begin > 0)
        --begin;
    if (end < m_cache.size())
        ++end;
    // A plot wholly outside the range shows nothing, not its end point.
    if (end - begin == 1 && (m_cache.at(begin).x() < m_visibleMinimum || m_cache.at(begin).x() > m_visibleMaximum))
        end = begin;
    return {begin, end};
}

void ScatterPlot::feedVisiblePoints()
{
    if (!m_line || !m_base)
        return;
    const std::pair<qsizetype, qsizetype> slice = visibleSlice();
    if (slice == m_fedSlice)
        return;
    m_fedSlice = slice;
    QList<QPointF> points;
    points.reserve(slice.second - slice.first);
    for (qsizetype i = slice.first; i < slice.second; ++i) {
        const QPointF &point = m_cache.at(i);
        if (isDrawable(point) && (m_ascending || (point.x() >= m_visibleMinimum && point.x() <= m_visibleMaximum)))
            points.append(point);
    }
    // Replacing in one call redraws once, where appending point by point
    // would redraw for every point.
    if (points.isEmpty()) {
        showSeries(false);
        m_line->clear();
        m_base->clear();
        return;
    }
    m_line->replace(points);
    m_base->replace({QPointF(points.first().x(), m_areaBaseValue), QPointF(points.last().x(), m_areaBaseValue)});
    showSeries(true);
}
