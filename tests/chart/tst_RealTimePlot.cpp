#include "LogCapture.h"
#include "TestEnvironment.h"
#include "chart/RealTimePlot.h"
#include "chart/ScatterPlot.h"
#include "chart/XYGraph.h"
#include "chart/_CPTBMClearTheme.h"
#include "chart/ChartThemeRegistry.h"
#include "ui/BrightmereColor.h"

#include <QCoreApplication>
#include <QTest>
#include <QValueAxis>
#include <QWidget>

#include <cmath>
#include <limits>

namespace {

const QColor kRecordingColor = Brightmere::Color::colorWithHexString(QStringLiteral("70BE7B"));

// A script: a number is a sample, "r" starts a recording, "s" stops it.
using Script = QStringList;

QString lineName(int number)
{
    return QString::fromLatin1(kPlotIdentifier) + QString::number(number);
}

} // namespace

class tst_RealTimePlot : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();
    void xWindowScrollsFromTheNinthSample_data();
    void xWindowScrollsFromTheNinthSample();
    void speedAxisOnlyGrows_data();
    void speedAxisOnlyGrows();
    void eachRecordingChangeStartsALineAtTheLastSample_data();
    void eachRecordingChangeStartsALineAtTheLastSample();
    void dataSourceAnswers_data();
    void dataSourceAnswers();
    void beforeRenderingThereIsNoLine();
    void longRunsKeepEveryNumberButFeedOnlyTheWindow();
    void onlyLinesInTheWindowAreInTheChart_data();
    void onlyLinesInTheWindowAreInTheChart();
    void scriptedRunLooksFinished();

private:
    void run(const Script &script);

    std::unique_ptr<TestEnvironment> m_env;
    std::unique_ptr<QWidget> m_panel;
    std::unique_ptr<RealTimePlot> m_plot;
};

void tst_RealTimePlot::init()
{
    m_env = std::make_unique<TestEnvironment>();
    m_panel = std::make_unique<QWidget>();
    m_panel->resize(375, 240);
    m_plot = std::make_unique<RealTimePlot>();
    m_plot->setRecordingColor(kRecordingColor);
    m_plot->renderInView(m_panel.get(), ChartThemeRegistry::themeNamed(QString::fromLatin1(kCPTBMClearTheme)), false);
}

void tst_RealTimePlot::cleanup()
{
    m_plot.reset();
    m_panel.reset();
    m_env.reset();
}

void tst_RealTimePlot::run(const Script &script)
{
    for (const QString &step : script) {
        if (step == QLatin1String("r"))
            m_plot->startRecording();
        else if (step == QLatin1String("s"))
            m_plot->stopRecording();
        else
            m_plot->addSpeedToGraph(step.toDouble());
    }
}

void tst_RealTimePlot::xWindowScrollsFromTheNinthSample_data()
{
    QTest::addColumn<int>("samples");
    QTest::addColumn<double>("from");
    QTest::addColumn<double>("to");
    QTest::newRow("none") << 0 << 0.0 << 8.0;
    QTest::newRow("one") << 1 << 0.0 << 8.0;
    QTest::newRow("nine fill the window") << 9 << 0.0 << 8.0;
    QTest::newRow("the tenth scrolls by one") << 10 << 1.0 << 9.0;
    QTest::newRow("eleven") << 11 << 2.0 << 10.0;
    QTest::newRow("thirty") << 30 << 21.0 << 29.0;
}

void tst_RealTimePlot::xWindowScrollsFromTheNinthSample()
{
    QFETCH(int, samples);
    QFETCH(double, from);
    QFETCH(double, to);
    for (int i = 0; i < samples; ++i)
        m_plot->addSpeedToGraph(10.0 + i);
    QCOMPARE(m_plot->currentSpeedIndex(), quint64(samples));
    QCOMPARE(m_plot->graph()->xAxis()->min(), from);
    QCOMPARE(m_plot->graph()->xAxis()->max(), to);
    // The newest sample sits at the right edge once the window is full.
    const QList<QPointF> drawn = m_plot->firstPlot()->visiblePoints();
    QCOMPARE(drawn.isEmpty(), samples == 0);
    if (samples > 0)
        QCOMPARE(drawn.last(), QPointF(samples - 1, 10.0 + samples - 1));
}

void tst_RealTimePlot::speedAxisOnlyGrows_data()
{
    QTest::addColumn<QList<double>>("speeds");
    QTest::addColumn<int>("gMax");
    QTest::addColumn<int>("logLines"); // bad samples are logged
    const double nan = std::numeric_limits<double>::quiet_NaN();
    QTest::newRow("no sample keeps 0 to 5") << QList<double>{} << 0 << 0;
    QTest::newRow("0.0 gives 15") << QList<double>{0.0} << 15 << 0;
    QTest::newRow("23.4 gives 35") << QList<double>{23.4} << 35 << 0;
    QTest::newRow("then 31 gives 45") << QList<double>{23.4, 31.0} << 45 << 0;
    QTest::newRow("then 8 changes nothing") << QList<double>{23.4, 31.0, 8.0} << 45 << 0;
    QTest::newRow("30.0 on a multiple of ten gives 45") << QList<double>{30.0} << 45 << 0;
    QTest::newRow("9.99 stays under 20") << QList<double>{9.99} << 15 << 0;
    QTest::newRow("not a number is refused") << QList<double>{nan, 12.0} << 25 << 1;
    QTest::newRow("negative is refused") << QList<double>{-3.0} << 0 << 1;
    QTest::newRow("beyond 32 bits is capped")
        << QList<double>{1e12} << std::numeric_limits<qint32>::max() << 1;
}

void tst_RealTimePlot::speedAxisOnlyGrows()
{
    QFETCH(QList<double>, speeds);
    QFETCH(int, gMax);
    QFETCH(int, logLines);
    LogCapture log;
    for (double speed : speeds)
        m_plot->addSpeedToGraph(speed);
    QCOMPARE(m_plot->gMax(), gMax);
    QCOMPARE(m_plot->graph()->yAxis()->min(), 0.0);
    QCOMPARE(m_plot->graph()->yAxis()->max(), gMax == 0 ? 5.0 : double(gMax));
    int errors = 0;
    for (const LogCapture::Line &line : log.lines())
        errors += line.level == 3 ? 1 : 0;
    QCOMPARE(errors, logLines);
}

void tst_RealTimePlot::eachRecordingChangeStartsALineAtTheLastSample_data()
{
    QTest::addColumn<Script>("script");
    // Per line: its numbers, and where its points are drawn.
    QTest::addColumn<QList<QList<double>>>("numbers");
    QTest::addColumn<QList<QList<QPointF>>>("drawn");
    QTest::addColumn<QList<bool>>("recording");

    QTest::newRow("recording after the first sample")
        << Script{"12", "r", "20"} << QList<QList<double>>{{12}, {12, 20}}
        << QList<QList<QPointF>>{QList<QPointF>{{0, 12}}, QList<QPointF>{{0, 12}, {1, 20}}} << QList<bool>{false, true};
    QTest::newRow("before any sample the recording starts empty")
        << Script{"r", "5", "s", "7"} << QList<QList<double>>{{}, {5}, {5, 7}}
        << QList<QList<QPointF>>{{}, QList<QPointF>{{0, 5}}, QList<QPointF>{{0, 5}, {1, 7}}} << QList<bool>{false, true, false};
    // The grey line keeps its place although later samples move its
    // data-source x.
    QTest::newRow("older lines stay where they were drawn")
        << Script{"10", "11", "r", "30", "31", "s", "12"} << QList<QList<double>>{{10, 11}, {11, 30, 31}, {31, 12}}
        << QList<QList<QPointF>>{QList<QPointF>{{0, 10}, {1, 11}}, QList<QPointF>{{1, 11}, {2, 30}, {3, 31}},
                                 QList<QPointF>{{3, 31}, {4, 12}}}
        << QList<bool>{false, true, false};
    QTest::newRow("start and stop with no sample between")
        << Script{"4", "r", "s", "6"} << QList<QList<double>>{{4}, {4}, {4, 6}}
        << QList<QList<QPointF>>{QList<QPointF>{{0, 4}}, {}, QList<QPointF>{{0, 4}, {1, 6}}}
        << QList<bool>{false, true, false};
}

void tst_RealTimePlot::eachRecordingChangeStartsALineAtTheLastSample()
{
    QFETCH(Script, script);
    QFETCH(QList<QList<double>>, numbers);
    QFETCH(QList<QList<QPointF>>, drawn);
    QFETCH(QList<bool>, recording);
    LogCapture log;
    run(script);

    const QList<ScatterPlot *> lines = m_plot->allPlots().value();
    QCOMPARE(lines.size(), numbers.size());
    QCOMPARE(m_plot->currentPlotIndex(), quint64(numbers.size()));
    for (int i = 0; i < lines.size(); ++i) {
        QCOMPARE(lines.at(i)->identifier(), lineName(i));
        QCOMPARE(m_plot->plotsData().value(lineName(i)), numbers.at(i));
        // A line that started empty was drawn once its first sample came;
        // one that started at the last sample draws it after the next.
        if (i + 1 == lines.size() || lines.at(i)->cachedDataCount() == numbers.at(i).size())
            QCOMPARE(lines.at(i)->cachedPoints(), drawn.at(i));
        QCOMPARE(lines.at(i)->dataLineStyle().color(),
                 recording.at(i) ? kRecordingColor : Brightmere::Color::colorWithR(153, 153, 153));
        QCOMPARE(lines.at(i)->dataLineStyle().widthF(), 2.0);
    }
    QCOMPARE(m_plot->isRecording(), recording.last());
    QVERIFY(log.contains(QStringLiteral("Added plot %1").arg(numbers.size())));
}

void tst_RealTimePlot::dataSourceAnswers_data()
{
    QTest::addColumn<int>("line");
    QTest::addColumn<int>("field");
    QTest::addColumn<int>("record");
    QTest::addColumn<QVariant>("answer");
    // Script: 10, 11, start, 30, 31: line 0 {10, 11}, line 1 {11, 30, 31};
    // currentSpeedIndex 4.
    QTest::newRow("x of the newest sample") << 1 << 0 << 2 << QVariant(qulonglong(3));
    QTest::newRow("x of the joining point") << 1 << 0 << 0 << QVariant(qulonglong(1));
    QTest::newRow("x of an older line follows the formula") << 0 << 0 << 0 << QVariant(qulonglong(2));
    QTest::newRow("y") << 1 << 1 << 1 << QVariant(30.0);
    QTest::newRow("y beyond the line is absent") << 0 << 1 << 2 << QVariant();
    QTest::newRow("another field is absent") << 1 << 2 << 0 << QVariant();
    QTest::newRow("a negative field is absent") << 1 << -1 << 0 << QVariant();
}

void tst_RealTimePlot::dataSourceAnswers()
{
    QFETCH(int, line);
    QFETCH(int, field);
    QFETCH(int, record);
    QFETCH(QVariant, answer);
    run(Script{"10", "11", "r", "30", "31"});
    ScatterPlot *plot = m_plot->allPlots()->at(line);
    QCOMPARE(m_plot->numberOfRecordsForPlot(plot), line == 0 ? 2 : 3);
    QCOMPARE(m_plot->numberForPlot(plot, field, record), answer);

    const std::optional<PlotSymbol> symbol = m_plot->symbolForScatterPlot(plot, record);
    QVERIFY(symbol);
    QCOMPARE(symbol->type, PlotSymbol::Type::Ellipse);
    QCOMPARE(symbol->size, QSizeF(6.0, 6.0));
    QCOMPARE(symbol->fill.color(), QColor(Qt::white));
    QCOMPARE(symbol->lineStyle.widthF(), 2.0);
    QCOMPARE(symbol->lineStyle.color(), QColor(147, 193, 205));
    QCOMPARE(m_plot->symbol(), *symbol);
}

void tst_RealTimePlot::beforeRenderingThereIsNoLine()
{
    RealTimePlot fresh;
    QCOMPARE(fresh.section(), QStringLiteral("Line Plots"));
    QCOMPARE(fresh.lastSpeedAdded(), -1.0);
    QVERIFY(!fresh.allPlots().has_value());
    QCOMPARE(fresh.firstPlot(), nullptr);
    QCOMPARE(fresh.lastPlot(), nullptr);
    QCOMPARE(fresh.numberOfRecordsForPlot(nullptr), 0);
    fresh.addSpeedToGraph(12.0); // only the speed axis follows
    QCOMPARE(fresh.currentSpeedIndex(), quint64(0));
    QCOMPARE(fresh.gMax(), 25);

    // Rendered: one grey line, empty.
    QCOMPARE(m_plot->allPlots()->size(), 1);
    QCOMPARE(m_plot->lastSpeedAdded(), -1.0);
    QCOMPARE(m_plot->firstPlot()->cachedDataCount(), 0);
    QCOMPARE(m_plot->graph()->xAxis()->titleText(), QStringLiteral("sec") + QString(6, QChar::Nbsp));
    QCOMPARE(m_plot->graph()->yAxis()->titleText(), QStringLiteral("Mbps"));
}

void tst_RealTimePlot::longRunsKeepEveryNumberButFeedOnlyTheWindow()
{
    for (int i = 0; i < 500; ++i) {
        if (i == 200)
            m_plot->startRecording();
        m_plot->addSpeedToGraph(i % 40);
    }
    const QList<ScatterPlot *> lines = m_plot->allPlots().value();
    QCOMPARE(m_plot->plotsData().value(lineName(0)).size(), 200);
    QCOMPARE(m_plot->plotsData().value(lineName(1)).size(), 301);
    QCOMPARE(lines.at(1)->cachedDataCount(), 301);
    // Scrolled away entirely: nothing fed. In view: the window and the
    // point just left of it.
    QVERIFY(lines.at(0)->visiblePoints().isEmpty());
    // A line out of view leaves the chart: its fill and line series go.
    QCOMPARE(m_plot->graph()->series().size(), 2);
    const QList<QPointF> fed = lines.at(1)->visiblePoints();
    QCOMPARE(fed.size(), 10);
    QCOMPARE(fed.first(), QPointF(490, 490 % 40));
    QCOMPARE(fed.last(), QPointF(499, 499 % 40));
}

void tst_RealTimePlot::onlyLinesInTheWindowAreInTheChart_data()
{
    QTest::addColumn<double>("movedBackTo");
    QTest::addColumn<bool>("thenASample");
    QTest::newRow("live") << -1.0 << false;
    QTest::newRow("back to the start") << 0.0 << false;
    QTest::newRow("back mid-run, between samples") << 101.5 << false;
    QTest::newRow("back, then a sample scrolls on") << 40.0 << true;
}

void tst_RealTimePlot::onlyLinesInTheWindowAreInTheChart()
{
    QFETCH(double, movedBackTo);
    QFETCH(bool, thenASample);
    // 120 recordings, a line begun every second sample.
    for (int i = 0; i < 480; ++i) {
        if (i % 2 == 1)
            m_plot->isRecording() ? m_plot->stopRecording() : m_plot->startRecording();
        m_plot->addSpeedToGraph(i % 50);
    }
    XYGraph *graph = m_plot->graph();
    if (movedBackTo >= 0.0)
        graph->setXRange({movedBackTo, 8.0});
    if (thenASample)
        m_plot->addSpeedToGraph(7.0);
    const double from = graph->xAxis()->min();
    const double to = graph->xAxis()->max();
    QSet<QAbstractSeries *> inView;
    for (ScatterPlot *line : m_plot->allPlots().value()) {
        const QList<QPointF> &points = line->cachedPoints();
        if (std::any_of(points.cbegin(), points.cend(), [&](const QPointF &p) { return p.x() >= from && p.x() <= to; }))
            inView << line->lineSeries() << line->areaSeries();
        // Out of the chart or not, the source still answers every number.
        const QList<double> numbers = m_plot->plotsData().value(line->identifier());
        QCOMPARE(m_plot->numberOfRecordsForPlot(line), numbers.size());
        QCOMPARE(m_plot->numberForPlot(line, PlotDataSource::FieldY, numbers.size() - 1), QVariant(numbers.last()));
    }
    QVERIFY(inView.size() >= 2 && inView.size() <= 12);
    const QList<QAbstractSeries *> charted = graph->series();
    QCOMPARE(QSet<QAbstractSeries *>(charted.cbegin(), charted.cend()), inView);
}

void tst_RealTimePlot::scriptedRunLooksFinished()
{
    m_panel->setAutoFillBackground(true);
    QPalette palette = m_panel->palette();
    palette.setColor(QPalette::Window, Brightmere::Color::named(QStringLiteral("fz_chart_back")));
    m_panel->setPalette(palette);
    m_panel->show();
    run(Script{"12.5", "18.2", "16.9", "22.4", "27.8", "r", "31.2", "33.6", "29.4", "s", "24.1", "19.7", "21.3", "17.6"});
    const QImage image = m_panel->grab().toImage();
    const QString path = QCoreApplication::applicationDirPath() + QStringLiteral("/realtimeplot.png");
    QVERIFY(image.save(path));
    // The newest point is drawn at the right edge inside the fill: a white
    // symbol ringed in blue-grey.
    const QPoint newest = (m_plot->graph()->mapToPosition(QPointF(11, 17.6))).toPoint();
    QCOMPARE(newest.x(), 343);
    QCOMPARE(image.pixelColor(newest), QColor(Qt::white));
    const QColor ring = image.pixelColor(newest + QPoint(-3, 0));
    QVERIFY2(ring.blue() > ring.red() + 20, qPrintable(ring.name()));
    QCOMPARE(image.pixelColor(newest + QPoint(-6, 12)).name(), QStringLiteral("#e5e5e5"));
}

QTEST_MAIN(tst_RealTimePlot)
#include "tst_RealTimePlot.moc"
