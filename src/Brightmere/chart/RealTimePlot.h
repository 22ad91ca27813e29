#pragma once

#include "PlotDataSource.h"
#include "PlotItem.h"
#include "PlotSymbol.h"

#include <QColor>
#include <QHash>
#include <QList>
#include <QPointer>
#include <QString>

#include <optional>

class ScatterPlot;

// The sample count at which the x window starts to scroll; the window is
// one shorter.
inline constexpr qulonglong kMaxDataPoints = 9;
// Exported with the chart for hosts; the chart does not read it.
inline constexpr double kFrameRate = 5.0;
// Every line's identifier starts with this, followed by its number.
inline constexpr char kPlotIdentifier[] = "Data Source Plot";

// The live speed chart of the test screen: one point per speed sample, the
// last eight samples in view, and a speed axis that only ever grows to fit
// the fastest sample. Each start and stop of a recording begins a new line
// (grey outside a recording, the recording colour inside) at the last point
// of the line before, so the trace is unbroken and coloured by state.
//
// Every line keeps all its numbers in plotsData for the life of the object;
// the chart draws only what is in view, so a long test draws as fast as a
// short one. Each point is drawn at the x where it arrived; the data-source
// answer for x keeps its own formula.
//
// The owner sets the recording colour, renders once into a widget with the
// "BM Clear" theme, then calls addSpeedToGraph per sample and
// startRecording / stopRecording. Bad samples (not a number, negative) are
// logged and ignored.
class RealTimePlot : public PlotItem, public PlotDataSource
{
    Q_OBJECT

public:
    explicit RealTimePlot(QObject *parent = nullptr);
    ~RealTimePlot() override;

    void renderInLayer(QChartView *layerHostingView, const ChartTheme::Ptr &theme, bool animated) override;

    void addSpeedToGraph(double speed);
    void startRecording();
    void stopRecording();
    void addDefaultPlot();
    void addPlotWithColor(const QColor &color);
    void addPlotWithInitialSpeed(double initialSpeed, const QColor &color);
    // Does nothing: data arrives by addSpeedToGraph.
    void addData() {}

    // The last number of the last line; -1.0 without a line or a number.
    double lastSpeedAdded() const;
    ScatterPlot *firstPlot() const;
    ScatterPlot *lastPlot() const;
    // The graph's lines; absent (not empty) when it has none.
    std::optional<QList<ScatterPlot *>> allPlots() const;
    // The first of the item's graphs.
    XYGraph *graph() const;

    // The numbers of a line, created empty on first request. The reference
    // holds until the next line is made.
    QList<double> &plotDataForPlot(const ScatterPlot *plot);
    const QHash<QString, QList<double>> &plotsData() const { return m_plotsData; }

    quint64 currentSpeedIndex() const { return m_currentSpeedIndex; }
    quint64 currentPlotIndex() const { return m_currentPlotIndex; }
    quint64 allPlotsDataCount() const { return m_allPlotsDataCount; }
    qint32 gMax() const { return m_gMax; }
    // The symbol last handed to a line.
    PlotSymbol symbol() const { return m_symbol; }

    bool isRecording() const { return m_isRecording; }
    QColor recordingColor() const { return m_recordingColor; }
    void setRecordingColor(const QColor &color) { m_recordingColor = color; }

    // How much of each side of the hosting view its owner covers (the test
    // screen's panel runs over the chart's edges). The axes' labels and
    // titles are kept out of the covered parts: the plot area's paddings
    // grow past their defaults when the labels need the room. Set before
    // rendering.
    QMarginsF coveredMargins() const { return m_coveredMargins; }
    void setCoveredMargins(const QMarginsF &margins);

    // The numbers the lines ask for. Field 0 (x): recordIndex +
    // currentSpeedIndex - the line's length, unsigned; field 1 (y): the
    // line's number at recordIndex; anything else: absent.
    qsizetype numberOfRecordsForPlot(const ScatterPlot *plot) const override;
    QVariant numberForPlot(const ScatterPlot *plot, int field, qsizetype recordIndex) const override;
    QVariant drawingXForPlot(const ScatterPlot *plot, qsizetype recordIndex) const override;
    std::optional<PlotSymbol> symbolForScatterPlot(ScatterPlot *plot, qsizetype recordIndex) override;

private:
    const QList<double> *numbersOf(const ScatterPlot *plot) const;
    void growSpeedRange(double speed);
    // Gives the axes' labels and titles the room they need, from the
    // current top of the speed axis.
    void fitAxisRoom();

    QHash<QString, QList<double>> m_plotsData;
    // The x at which each line's first number arrived.
    QHash<QString, quint64> m_firstArrival;
    // The graph made by the last render.
    QPointer<XYGraph> m_graph;
    quint64 m_currentSpeedIndex = 0;
    quint64 m_currentPlotIndex = 0;
    // Never increased, so the trimming it guards never runs: every line
    // keeps all its numbers, and the x window limits what is seen.
    quint64 m_allPlotsDataCount = 0;
    qint32 m_gMax = 0;
    PlotSymbol m_symbol;
    bool m_isRecording = false;
    bool m_linesHighContrast = false;
    QColor m_recordingColor;
    QMarginsF m_coveredMargins;
};
