#include "RealTimePlot.h"

#include "ChartThemeRegistry.h"
#include "DarkGradientTheme.h"
#include "ScatterPlot.h"
#include "XYGraph.h"
#include <Brightmere/core/BMLogger.h>
#include <Brightmere/i18n/BMI18NManager.h>
#include <Brightmere/model/BMSDKUISettings.h>
#include <Brightmere/platform/foundation/StringFormat.h>
#include <Brightmere/ui/BrightmereColor.h>
#include <Brightmere/ui/BrightmereView.h>

#include <QChartView>
#include <QValueAxis>

#include <cmath>
#include <limits>

namespace {

const QString kModule = QStringLiteral("RealTimePlot");
constexpr double kWindowLength = double(kMaxDataPoints - 1);

[[maybe_unused]] const bool registered = [] {
    PlotItem::registerPlotItem(&RealTimePlot::staticMetaObject);
    return true;
}();

QColor defaultLineColor()
{
    return Brightmere::Color::colorWithR(153, 153, 153);
}

QColor areaFillColor()
{
    QColor color = Brightmere::Color::named(QStringLiteral("disable_gray"));
    color.setAlphaF(0.5f);
    return color;
}

QColor clearColor()
{
    return Brightmere::Color::colorWithR(0, 0, 0, 0.0f);
}

// The plain integers of the axes' labels.
constexpr char kIntegerLabels[] = "%d";

// The plot area's paddings in the graph; left and bottom grow when the
// labels need more room.
constexpr qreal kPaddingLeft = 40.0;
constexpr qreal kPaddingTop = 15.0;
constexpr qreal kPaddingRight = 20.0;
constexpr qreal kPaddingBottom = 30.0;
// Between an axis and its labels, and around its title: Qt Charts leaves a
// few points there and measures its text a little wider than the font does.
constexpr qreal kAxisAir = 14.0;

} // namespace

RealTimePlot::RealTimePlot(QObject *parent)
    : PlotItem(parent)
{
    setSection(QString::fromLatin1(kLinePlots));
}

RealTimePlot::~RealTimePlot()
{
    // The lines ask this object for numbers until they are gone.
    killGraph();
}

void RealTimePlot::renderInLayer(QChartView *layerHostingView, const ChartTheme::Ptr &theme, bool animated)
{
    if (!layerHostingView) {
        BMLogger::sharedInstance().logFromModule(kModule, 3, "no hosting view to render in");
        return;
    }
    const QRectF bounds = layerHostingView->rect();
    auto *newGraph = new XYGraph(bounds);
    m_graph = newGraph;
    // Lines drawn later in this chart keep the setting it was built with, as
    // its axis labels do.
    m_linesHighContrast = BMSDKUISettings::sharedInstance().highContrast();
    addGraph(newGraph, layerHostingView);

    applyTheme(theme, newGraph, theme ? nullptr : ChartThemeRegistry::themeNamed(QString::fromLatin1(kCPTDarkGradientTheme)));
    setTitleDefaultsForGraph(newGraph, bounds);
    setPaddingDefaultsForGraph(newGraph, bounds);
    newGraph->setPlotAreaFramePadding(QMarginsF(kPaddingLeft, kPaddingTop, kPaddingRight, kPaddingBottom));

    // Clear grid lines: the trace stands alone on the panel.
    QValueAxis *xAxis = newGraph->xAxis();
    QValueAxis *yAxis = newGraph->yAxis();
    for (QValueAxis *axis : {xAxis, yAxis}) {
        axis->setGridLinePen(QPen(clearColor()));
        axis->setMinorGridLinePen(QPen(clearColor(), 0.5));
        axis->setGridLineVisible(false);
        axis->setMinorGridLineVisible(false);
        axis->setTickType(QValueAxis::TicksFixed);
        axis->setLabelFormat(QString::fromLatin1(kIntegerLabels));
    }
    // Equal divisions: labels every second sample on x; five steps on y,
    // whole numbers since the top is always a multiple of five.
    xAxis->setTickCount(5);
    xAxis->setMinorTickCount(8);
    // Six blanks after the text move the title left of the axis' centre.
    // Axis titles are rich text, which drops trailing spaces: the blanks are
    // no-break spaces.
    xAxis->setTitleText(Brightmere::StringFormat::print(QStringLiteral("%@") + QString(6, QChar::Nbsp),
                                                        BMI18NManager::stringForCode(QStringLiteral("bmSec"))));
    // Larger labels do not fit six to the chart's height: the same five
    // steps as minor ticks, the top and the bottom labelled.
    const bool largeText = Brightmere::View::textScale() > 1.0;
    yAxis->setTickCount(largeText ? 2 : 6);
    yAxis->setMinorTickCount(largeText ? 4 : 5);
    yAxis->setTitleText(BMI18NManager::stringForCode(QStringLiteral("Mbps")));

    addDefaultPlot();
    newGraph->setXRange({0.0, kWindowLength});
    newGraph->setYRange({0.0, 5.0});
    fitAxisRoom();
}

void RealTimePlot::setCoveredMargins(const QMarginsF &margins)
{
    m_coveredMargins = margins;
    fitAxisRoom();
}

void RealTimePlot::fitAxisRoom()
{
    XYGraph *currentGraph = graph();
    if (!currentGraph)
        return;
    // Left of the plot area: the widest speed label (the axis' top is the
    // longest number) and the rotated title; under it: a line of labels and
    // the title. Each beside its axis with a few points of air.
    const QFontMetricsF yLabels(currentGraph->yAxis()->labelsFont());
    const QFontMetricsF yTitle(currentGraph->yAxis()->titleFont());
    const QFontMetricsF xLabels(currentGraph->xAxis()->labelsFont());
    const QFontMetricsF xTitle(currentGraph->xAxis()->titleFont());
    const QMarginsF padding = currentGraph->padding();
    const qreal yRoom = yLabels.horizontalAdvance(QString::number(qMax(5, m_gMax))) + yTitle.height() + kAxisAir;
    const qreal xRoom = xLabels.height() + xTitle.height() + kAxisAir;
    const qreal left = std::max(kPaddingLeft, m_coveredMargins.left() + yRoom - padding.left());
    const qreal bottom = std::max(kPaddingBottom, m_coveredMargins.bottom() + xRoom - padding.bottom());
    // The last time label is centred on the plot's right edge: larger text
    // needs the half of a two-digit label that the design's size does not.
    QFont designLabels = currentGraph->xAxis()->labelsFont();
    designLabels.setPixelSize(
        std::max(1, qRound(designLabels.pixelSize() / std::max<qreal>(1.0, Brightmere::View::textScale()))));
    const QString twoDigits = QStringLiteral("00");
    const qreal right = kPaddingRight
        + std::max<qreal>(0.0, (xLabels.horizontalAdvance(twoDigits) - QFontMetricsF(designLabels).horizontalAdvance(twoDigits)) / 2.0);
    currentGraph->setPlotAreaFramePadding(QMarginsF(left, kPaddingTop, right, bottom));
}

void RealTimePlot::addSpeedToGraph(double speed)
{
    if (!std::isfinite(speed) || speed < 0.0) {
        BMLogger::sharedInstance().logFromModule(kModule, 3, "speed %@ is not a measured speed; not plotted", speed);
        return;
    }
    XYGraph *currentGraph = graph();
    ScatterPlot *first = firstPlot();
    ScatterPlot *last = lastPlot();
    if (first && last && currentGraph) {
        if (m_allPlotsDataCount >= kMaxDataPoints) {
            --m_allPlotsDataCount;
            first->deleteDataInIndexRange(0, 1);
        }
        const quint64 location = m_currentSpeedIndex >= kMaxDataPoints ? m_currentSpeedIndex - (kMaxDataPoints - 1) : 0;
        currentGraph->setXRange({double(location), kWindowLength});
        ++m_currentSpeedIndex;
        QList<double> &numbers = plotDataForPlot(last);
        numbers.append(speed);
        const qsizetype index = numbers.size() - 1;
        if (last->cachedDataCount() + 1 <= numbers.size())
            last->insertDataAtIndex(index, 1);
        else
            last->setDataNeedsReloading();
    }
    growSpeedRange(speed);
}

void RealTimePlot::growSpeedRange(double speed)
{
    constexpr double highestTop = double(std::numeric_limits<qint32>::max() - 5);
    double top = (std::trunc(speed / 10.0) + 1.0) * 10.0;
    if (top > highestTop) {
        BMLogger::sharedInstance().logFromModule(kModule, 3, "speed %@ is beyond the speed axis; its top is used",
                                                 speed);
        top = highestTop;
    }
    if (m_gMax >= qint32(top))
        return;
    const bool longerLabels = QString::number(qint32(top) + 5).size() > QString::number(m_gMax).size();
    m_gMax = qint32(top) + 5;
    if (XYGraph *currentGraph = graph())
        currentGraph->setYRange({0.0, double(m_gMax)});
    // A digit more on the speed labels ("95" to "105") needs more room.
    if (longerLabels)
        fitAxisRoom();
}

void RealTimePlot::startRecording()
{
    QColor color = m_recordingColor;
    if (!color.isValid()) {
        BMLogger::sharedInstance().logFromModule(kModule, 3, "no recording colour set; the recording is drawn grey");
        color = defaultLineColor();
    }
    addPlotWithColor(color);
    m_isRecording = true;
    BMLogger::sharedInstance().logFromModule(kModule, 2, "Start recording...");
}

void RealTimePlot::stopRecording()
{
    addDefaultPlot();
    m_isRecording = false;
    BMLogger::sharedInstance().logFromModule(kModule, 2, "Stop recording...");
}

void RealTimePlot::addDefaultPlot()
{
    addPlotWithColor(defaultLineColor());
}

void RealTimePlot::addPlotWithColor(const QColor &color)
{
    addPlotWithInitialSpeed(lastSpeedAdded(), color);
}

void RealTimePlot::addPlotWithInitialSpeed(double initialSpeed, const QColor &color)
{
    const QString identifier = QString::fromLatin1(kPlotIdentifier) + QString::number(m_currentPlotIndex);
    // Not the first line: it begins at the last point of the line before,
    // unless there is none yet (-1.0).
    const bool startsAtLastSample = m_currentPlotIndex != 0 && initialSpeed >= 0.0;
    m_firstArrival.insert(identifier, startsAtLastSample && m_currentSpeedIndex > 0 ? m_currentSpeedIndex - 1
                                                                                   : m_currentSpeedIndex);

    auto *plot = new ScatterPlot(identifier, this);
    plot->setCachePrecision(ScatterPlot::CachePrecision::Double);
    QPen lineStyle = plot->dataLineStyle();
    lineStyle.setWidthF(2.0);
    // The design's greys and greens are faint on the panel; under high
    // contrast a line stands out from it as a control's parts must (3:1).
    lineStyle.setColor(m_linesHighContrast ? Brightmere::Color::withContrast(
                                                 color, Brightmere::Color::named(QStringLiteral("fz_chart_back")),
                                                 Brightmere::Color::kLargeContrast)
                                           : color);
    plot->setDataLineStyle(lineStyle);
    plot->setDataSource(this);
    plot->setAreaFill(areaFillColor());
    plot->setAreaBaseValue(0.0);
    if (XYGraph *currentGraph = graph()) {
        currentGraph->addPlot(plot);
    } else {
        BMLogger::sharedInstance().logFromModule(kModule, 3, "no graph yet; %@ is kept as numbers only", identifier);
        delete plot;
        plot = nullptr;
    }

    if (startsAtLastSample)
        m_plotsData[identifier].append(initialSpeed);
    ++m_currentPlotIndex;
    BMLogger::sharedInstance().logFromModule(kModule, 1, "Added plot %lu", m_currentPlotIndex);
}

double RealTimePlot::lastSpeedAdded() const
{
    const QList<double> *numbers = numbersOf(lastPlot());
    return numbers && !numbers->isEmpty() ? numbers->last() : -1.0;
}

ScatterPlot *RealTimePlot::firstPlot() const
{
    const std::optional<QList<ScatterPlot *>> plots = allPlots();
    return plots ? plots->first() : nullptr;
}

ScatterPlot *RealTimePlot::lastPlot() const
{
    const std::optional<QList<ScatterPlot *>> plots = allPlots();
    return plots ? plots->last() : nullptr;
}

std::optional<QList<ScatterPlot *>> RealTimePlot::allPlots() const
{
    XYGraph *currentGraph = graph();
    if (!currentGraph || currentGraph->allPlots().isEmpty())
        return std::nullopt;
    return currentGraph->allPlots();
}

XYGraph *RealTimePlot::graph() const
{
    const QList<XYGraph *> all = graphs();
    return all.isEmpty() ? nullptr : all.first();
}

QList<double> &RealTimePlot::plotDataForPlot(const ScatterPlot *plot)
{
    if (!plot) {
        BMLogger::sharedInstance().logFromModule(kModule, 3, "numbers asked for no line");
        static QList<double> scratch;
        scratch.clear();
        return scratch;
    }
    return m_plotsData[plot->identifier()];
}

const QList<double> *RealTimePlot::numbersOf(const ScatterPlot *plot) const
{
    if (!plot)
        return nullptr;
    static const QList<double> none;
    const auto found = m_plotsData.constFind(plot->identifier());
    return found == m_plotsData.constEnd() ? &none : &found.value();
}

qsizetype RealTimePlot::numberOfRecordsForPlot(const ScatterPlot *plot) const
{
    const QList<double> *numbers = numbersOf(plot);
    return numbers ? numbers->size() : 0;
}

QVariant RealTimePlot::numberForPlot(const ScatterPlot *plot, int field, qsizetype recordIndex) const
{
    const QList<double> *numbers = numbersOf(plot);
    if (!numbers || recordIndex < 0) {
        BMLogger::sharedInstance().logFromModule(kModule, 3, "no number for record %ld of %@", qlonglong(recordIndex),
                                                 plot ? plot->identifier() : QStringLiteral("no line"));
        return QVariant();
    }
    switch (field) {
    case FieldX:
        return QVariant(qulonglong(quint64(recordIndex) + m_currentSpeedIndex - quint64(numbers->size())));
    case FieldY:
        if (recordIndex >= numbers->size()) {
            BMLogger::sharedInstance().logFromModule(kModule, 3, "record %ld of %@ is beyond its %ld numbers",
                                                     qlonglong(recordIndex), plot->identifier(),
                                                     qlonglong(numbers->size()));
            return QVariant();
        }
        return QVariant(numbers->at(recordIndex));
    default:
        return QVariant();
    }
}

QVariant RealTimePlot::drawingXForPlot(const ScatterPlot *plot, qsizetype recordIndex) const
{
    const auto found = plot ? m_firstArrival.constFind(plot->identifier()) : m_firstArrival.constEnd();
    if (found == m_firstArrival.constEnd() || recordIndex < 0)
        return numberForPlot(plot, FieldX, recordIndex);
    return QVariant(double(found.value() + quint64(recordIndex)));
}

std::optional<PlotSymbol> RealTimePlot::symbolForScatterPlot(ScatterPlot *plot, qsizetype recordIndex)
{
    PlotSymbol symbol;
    symbol.type = PlotSymbol::Type::Ellipse;
    symbol.size = QSizeF(6.0, 6.0);
    symbol.fill = Brightmere::Color::colorWithR(255, 255, 255);
    symbol.lineStyle = QPen(Brightmere::Color::colorWithR(147, 193, 205), 2.0);
    m_symbol = symbol;
    return symbol;
}
