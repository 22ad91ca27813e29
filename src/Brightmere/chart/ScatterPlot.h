#pragma once

#include "PlotSymbol.h"

#include <QAbstractAxis>
#include <QAreaSeries>
#include <QBrush>
#include <QChart>
#include <QLineSeries>
#include <QList>
#include <QObject>
#include <QPen>
#include <QPointF>
#include <QPointer>

#include <optional>

class PlotDataSource;

// One line of an XY graph: its points joined by a line, the area between the
// line and a base value filled, and each point marked with the symbol its
// data source gives. The numbers come from a data source and are cached
// here, all of them; the Qt series are fed only the points inside the
// graph's x range plus the one just outside each end (so the line runs to
// the edges), and a plot with nothing in range takes its series out of the
// chart until it has again. So drawing costs the same however long the plot
// grows and however many plots have scrolled away. Records whose x never
// decreases are found by bisection; otherwise every record is looked at.
class ScatterPlot : public QObject
{
    Q_OBJECT

public:
    enum class CachePrecision { Auto = 0, Double = 1, Decimal = 2 };

    explicit ScatterPlot(const QString &identifier, QObject *parent = nullptr);
    ~ScatterPlot() override;

    QString identifier() const { return m_identifier; }

    // Not owned; it must outlive the plot or be cleared first.
    PlotDataSource *dataSource() const { return m_dataSource; }
    void setDataSource(PlotDataSource *dataSource);

    QPen dataLineStyle() const { return m_dataLineStyle; }
    void setDataLineStyle(const QPen &style);
    QBrush areaFill() const { return m_areaFill; }
    void setAreaFill(const QBrush &fill);
    double areaBaseValue() const { return m_areaBaseValue; }
    void setAreaBaseValue(double value);
    CachePrecision cachePrecision() const { return m_cachePrecision; }
    void setCachePrecision(CachePrecision precision) { m_cachePrecision = precision; }

    // The records loaded so far, at the positions they are drawn at; a
    // number the source did not give is not-a-number and is not drawn.
    qsizetype cachedDataCount() const { return m_cache.size(); }
    const QList<QPointF> &cachedPoints() const { return m_cache; }
    // What the Qt line series holds now.
    QList<QPointF> visiblePoints() const;
    // The symbol drawn at every point: the one the source gave for the last
    // record loaded.
    std::optional<PlotSymbol> plotSymbol() const { return m_symbol; }

    // Reloads every record now.
    void reloadData();
    void setDataNeedsReloading() { reloadData(); }
    // Loads the records the source has added at index. An index beyond the
    // cache means records are missing before it: everything is reloaded.
    void insertDataAtIndex(qsizetype index, qsizetype numberOfRecords);
    // Drops cached records; the range is clipped to what is cached.
    void deleteDataInIndexRange(qsizetype location, qsizetype length);

    // For the graph: shows the series in the chart on its axes, and says
    // which x range is visible.
    void attachToChart(QChart *chart, QAbstractAxis *xAxis, QAbstractAxis *yAxis);
    void setVisibleXRange(double minimum, double maximum);
    // Whether no x range from minimum on can show a point of the plot: it
    // has none, or its x never decreases and the last is left of minimum.
    bool isBehind(double minimum) const;

    QLineSeries *lineSeries() const { return m_line; }
    QAreaSeries *areaSeries() const { return m_area; }

Q_SIGNALS:
    // The cached records changed; sent before the series are fed again, so
    // that a graph that stopped giving this plot its x range can give it now.
    void cachedPointsChanged();

private:
    QPointF loadRecord(qsizetype index) const;
    void updateSymbol(qsizetype lastIndex);
    bool isAscending(qsizetype first, qsizetype last) const;
    // Records [first, last) were added or the cache was rebuilt.
    void cacheChanged(qsizetype first, qsizetype last);
    void feedVisiblePoints();
    void showSeries(bool shown);
    std::pair<qsizetype, qsizetype> visibleSlice() const;

    QString m_identifier;
    PlotDataSource *m_dataSource = nullptr;
    QPen m_dataLineStyle;
    QBrush m_areaFill = Qt::NoBrush;
    double m_areaBaseValue = 0.0;
    CachePrecision m_cachePrecision = CachePrecision::Auto;
    std::optional<PlotSymbol> m_symbol;

    QList<QPointF> m_cache;
    // Whether every cached x is a number and none is below the one before,
    // so the visible points can be found by bisection.
    bool m_ascending = true;
    double m_visibleMinimum = 0.0;
    double m_visibleMaximum = -1.0;
    // The slice of m_cache in the series; both -1 when nothing was fed yet.
    std::pair<qsizetype, qsizetype> m_fedSlice{-1, -1};

    QPointer<QChart> m_chart;
    QPointer<QAbstractAxis> m_xAxis;
    QPointer<QAbstractAxis> m_yAxis;
    bool m_seriesShown = false;
    // Owned by the chart while shown, by this plot otherwise.
    QPointer<QLineSeries> m_line;
    QPointer<QLineSeries> m_base;
    QPointer<QAreaSeries> m_area;
};
