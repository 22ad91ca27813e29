// The live speed chart: its window and speed axis, the recording lines, the
// data it hands the series, the hosting view and the themes.
#include "LogCapture.h"
#include "TestEnvironment.h"
#include <Brightmere/chart/_CPTBMClearTheme.h>
#include <Brightmere/chart/ChartThemeRegistry.h>
#include <Brightmere/chart/RealTimePlot.h>
#include <Brightmere/chart/ScatterPlot.h>
#include <Brightmere/chart/XYGraph.h>
#include <Brightmere/model/BMSDKUISettings.h>
#include <Brightmere/ui/BrightmereColor.h>

#include <QChartView>
#include <QSet>
#include <QTest>
#include <QValueAxis>

#include <algorithm>
#include <limits>

namespace {

const QColor kRecordingColor = Brightmere::Color::colorWithHexString(QStringLiteral("70BE7B"));

QString lineName(int number)
{
    return QString::fromLatin1(kPlotIdentifier) + QString::number(number);
}

// Counts how often it was applied, so a test sees which theme was used.
class CountingTheme : public ChartTheme
{
public:
    mutable int applied = 0;

protected:
    void applyThemeToBackground(XYGraph *) const override { ++applied; }
};

} // namespace

class tst_Chart : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init()
    {
        m_env = std::make_unique<TestEnvironment>();
        m_panel = std::make_unique<QWidget>();
        m_panel->resize(375, 240);
        build();
    }

    void build()
    {
        m_plot = std::make_unique<RealTimePlot>();
        m_plot->setRecordingColor(kRecordingColor);
        m_plot->renderInView(m_panel.get(), ChartThemeRegistry::themeNamed(QString::fromLatin1(kCPTBMClearTheme)),
                             false);
    }

    void cleanup()
    {
        BMSDKUISettings::sharedInstance().setHighContrast(false);
        m_plot.reset();
        m_panel.reset();
        m_env.reset();
    }

    void xWindowScrollsFromTheNinthSample()
    {
        // Samples so far, where the window starts.
        for (const auto &[samples, from] : {std::pair{0, 0.0}, {9, 0.0}, {10, 1.0}, {30, 21.0}}) {
            while (m_plot->currentSpeedIndex() < quint64(samples))
                m_plot->addSpeedToGraph(10.0 + double(m_plot->currentSpeedIndex()));
            QCOMPARE(m_plot->graph()->xAxis()->min(), from);
            QCOMPARE(m_plot->graph()->xAxis()->max(), from + 8);
            QCOMPARE(m_plot->firstPlot()->visiblePoints().isEmpty(), samples == 0);
        }
    }

    void speedAxisOnlyGrows_data()
    {
        QTest::addColumn<QList<double>>("speeds");
        QTest::addColumn<int>("gMax"); // 0: the axis keeps 0 to 5
        QTest::addColumn<bool>("refused"); // a bad sample is logged
        QTest::newRow("no sample") << QList<double>{} << 0 << false;
        QTest::newRow("0.0 gives 15") << QList<double>{0.0} << 15 << false;
        QTest::newRow("23.4, then 31, then 8") << QList<double>{23.4, 31.0, 8.0} << 45 << false;
        QTest::newRow("30.0 on a multiple of ten gives 45") << QList<double>{30.0} << 45 << false;
        QTest::newRow("not a number is refused")
            << QList<double>{std::numeric_limits<double>::quiet_NaN(), 12.0} << 25 << true;
        QTest::newRow("negative is refused") << QList<double>{-3.0} << 0 << true;
        QTest::newRow("beyond 32 bits is capped") << QList<double>{1e12} << std::numeric_limits<qint32>::max() << true;
    }

    void speedAxisOnlyGrows()
    {
        QFETCH(int, gMax);
        LogCapture log;
        for (double speed : fetched<QList<double>>("speeds"))
            m_plot->addSpeedToGraph(speed);
        QCOMPARE(m_plot->gMax(), gMax);
        QCOMPARE(m_plot->graph()->yAxis()->max(), gMax == 0 ? 5.0 : double(gMax));
        int errors = 0;
        for (const LogCapture::Line &line : log.lines())
            errors += line.level == 3 ? 1 : 0;
        QCOMPARE(errors, fetched<bool>("refused") ? 1 : 0);
    }

    void eachRecordingChangeStartsALineAtTheLastSample_data()
    {
        // A number is a sample, "r" starts a recording, "s" stops it. Per
        // line: its numbers, and where its points are drawn.
        QTest::addColumn<QStringList>("script");
        QTest::addColumn<QList<QList<double>>>("numbers");
        QTest::addColumn<QList<QList<QPointF>>>("drawn");
        QTest::addColumn<QList<bool>>("recording");
        using Points = QList<QPointF>;
        QTest::newRow("before any sample the recording starts empty")
            << QStringList{"r", "5", "s", "7"} << QList<QList<double>>{{}, {5}, {5, 7}}
            << QList<Points>{{}, Points{{0, 5}}, Points{{0, 5}, {1, 7}}} << QList<bool>{false, true, false};
        // The grey line keeps its place although later samples move its
        // data-source x.
        QTest::newRow("older lines stay where they were drawn")
            << QStringList{"10", "11", "r", "30", "31", "s", "12"}
            << QList<QList<double>>{{10, 11}, {11, 30, 31}, {31, 12}}
            << QList<Points>{Points{{0, 10}, {1, 11}}, Points{{1, 11}, {2, 30}, {3, 31}}, Points{{3, 31}, {4, 12}}}
            << QList<bool>{false, true, false};
        QTest::newRow("start and stop with no sample between")
            << QStringList{"4", "r", "s", "6"} << QList<QList<double>>{{4}, {4}, {4, 6}}
            << QList<Points>{Points{{0, 4}}, {}, Points{{0, 4}, {1, 6}}} << QList<bool>{false, true, false};
        // Built under high contrast ("hc"), the faint design lines stand out
        // from the panel, and keep doing so when it is switched off ("lo").
        QTest::newRow("high contrast, as when the chart was built")
            << QStringList{"hc", "4", "r", "lo", "s", "6"} << QList<QList<double>>{{4}, {4}, {4, 6}}
            << QList<Points>{Points{{0, 4}}, {}, Points{{0, 4}, {1, 6}}} << QList<bool>{false, true, false};
    }

    void eachRecordingChangeStartsALineAtTheLastSample()
    {
        QFETCH(QList<QList<double>>, numbers);
        QFETCH(QList<QList<QPointF>>, drawn);
        QFETCH(QList<bool>, recording);
        run(fetched<QStringList>("script"));
        const QList<ScatterPlot *> lines = m_plot->allPlots().value();
        QCOMPARE(lines.size(), numbers.size());
        for (int i = 0; i < lines.size(); ++i) {
            QCOMPARE(lines.at(i)->identifier(), lineName(i));
            QCOMPARE(m_plot->plotsData().value(lineName(i)), numbers.at(i));
            // A line that started empty was drawn once its first sample came;
            // one that started at the last sample draws it after the next.
            if (i + 1 == lines.size() || lines.at(i)->cachedDataCount() == numbers.at(i).size())
                QCOMPARE(lines.at(i)->cachedPoints(), drawn.at(i));
            const QColor design = recording.at(i) ? kRecordingColor : Brightmere::Color::colorWithR(153, 153, 153);
            const QColor color = lines.at(i)->dataLineStyle().color();
            QVERIFY2(fetched<QStringList>("script").contains("hc") ? Brightmere::Color::contrastRatio(color, Qt::white) >= 3
                             && qAbs(color.toHsl().hslHue() - design.toHsl().hslHue()) <= 2 : color == design,
                     qPrintable(color.name()));
        }
        QCOMPARE(m_plot->isRecording(), recording.last());
    }

    void beforeRenderingOnlyTheSpeedAxisFollows()
    {
        RealTimePlot fresh;
        QVERIFY(!fresh.allPlots().has_value());
        fresh.addSpeedToGraph(12.0);
        QCOMPARE(fresh.currentSpeedIndex(), quint64(0));
        QCOMPARE(fresh.gMax(), 25);
    }

    void longRunsKeepEveryNumberButFeedOnlyTheWindow()
    {
        for (int i = 0; i < 500; ++i) {
            if (i == 200)
                m_plot->startRecording();
            m_plot->addSpeedToGraph(i % 40);
        }
        const QList<ScatterPlot *> lines = m_plot->allPlots().value();
        QCOMPARE(m_plot->plotsData().value(lineName(0)).size(), 200);
        QCOMPARE(m_plot->plotsData().value(lineName(1)).size(), 301);
        // Scrolled away entirely: nothing fed, and its fill and line series
        // leave the chart. In view: the window and the point just left of it.
        QVERIFY(lines.at(0)->visiblePoints().isEmpty());
        QCOMPARE(m_plot->graph()->series().size(), 2);
        const QList<QPointF> fed = lines.at(1)->visiblePoints();
        QCOMPARE(fed.size(), 10);
        QCOMPARE(fed.first(), QPointF(490, 490 % 40));
        QCOMPARE(fed.last(), QPointF(499, 499 % 40));
    }

    void onlyLinesInTheWindowAreInTheChart_data()
    {
        QTest::addColumn<double>("movedBackTo");
        QTest::addColumn<bool>("thenASample");
        QTest::newRow("live") << -1.0 << false;
        QTest::newRow("back mid-run, between samples") << 101.5 << false;
        QTest::newRow("back, then a sample scrolls on") << 40.0 << true;
    }

    void onlyLinesInTheWindowAreInTheChart()
    {
        QFETCH(double, movedBackTo);
        // 120 recordings, a line begun every second sample.
        for (int i = 0; i < 480; ++i) {
            if (i % 2 == 1)
                m_plot->isRecording() ? m_plot->stopRecording() : m_plot->startRecording();
            m_plot->addSpeedToGraph(i % 50);
        }
        XYGraph *graph = m_plot->graph();
        if (movedBackTo >= 0.0)
            graph->setXRange({movedBackTo, 8.0});
        if (fetched<bool>("thenASample"))
            m_plot->addSpeedToGraph(7.0);
        const double from = graph->xAxis()->min();
        const double to = graph->xAxis()->max();
        QSet<QAbstractSeries *> inView;
        const QList<ScatterPlot *> lines = m_plot->allPlots().value();
        for (ScatterPlot *line : lines) {
            const QList<QPointF> points = line->cachedPoints();
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

    void theNewestPointIsDrawnAtTheRightEdge()
    {
        m_panel->show();
        run({"12.5", "18.2", "16.9", "22.4", "27.8", "r", "31.2", "33.6", "29.4", "s", "24.1", "19.7", "21.3", "17.6"});
        const QImage image = m_panel->grab().toImage();
        // A white symbol ringed in blue-grey, inside the chart near its right edge.
        const QPoint newest = m_plot->graph()->mapToPosition(QPointF(11, 17.6)).toPoint();
        QVERIFY2(newest.x() > 300 && newest.x() < 375, qPrintable(QString::number(newest.x())));
        QCOMPARE(image.pixelColor(newest), QColor(Qt::white));
        const QColor ring = image.pixelColor(newest + QPoint(-3, 0));
        QVERIFY2(ring.blue() > ring.red() + 20, qPrintable(ring.name()));
    }

    void renderingAgainLeavesOneHostingView()
    {
        const QPointer<QChartView> firstView = m_plot->defaultLayerHostingView();
        const QPointer<XYGraph> firstGraph = m_plot->graph();
        m_plot->renderInView(m_panel.get(), nullptr, true);
        QVERIFY(!firstView && !firstGraph);
        QCOMPARE(m_panel->findChildren<QChartView *>().size(), 1);
        QCOMPARE(m_plot->graphs().size(), 1);
        QCOMPARE(m_plot->defaultLayerHostingView()->chart(), m_plot->graph());
        QCOMPARE(m_plot->defaultLayerHostingView()->geometry(), m_panel->rect());
        m_plot->killGraph();
        QVERIFY(m_panel->findChildren<QChartView *>().isEmpty());
        QVERIFY(m_plot->graphs().isEmpty() && !m_plot->graph());
    }

    void hostingViewFollowsItsWidgetAndOutlivesIt()
    {
        RealTimePlot plot;
        {
            QWidget host;
            host.resize(200, 100);
            host.show();
            plot.renderInView(&host, nullptr, false);
            host.resize(320, 180);
            QCOMPARE(plot.image().size(), QSize(320, 180)); // the view followed, or the image would not
        }
        // The widget took the view and graph with it; the item carries on.
        QCOMPARE(plot.defaultLayerHostingView(), nullptr);
        plot.addSpeedToGraph(4.0);
        plot.killGraph();
        plot.renderInView(nullptr, nullptr, false);
        QVERIFY(plot.graphs().isEmpty());
        // Drawn offscreen at the chart's size, in the dark default without a theme.
        const QImage offscreen = plot.image();
        QCOMPARE(offscreen.size(), QSize(375, 240));
        QVERIFY(offscreen.pixelColor(2, 2).lightness() < 100);
        QVERIFY(plot.graphs().isEmpty());
    }

    void aThemeIsChosenByPlaceholderAndName()
    {
        // Absent: the default; the null placeholder: nothing; a theme: itself.
        auto theme = std::make_shared<CountingTheme>();
        auto fallback = std::make_shared<CountingTheme>();
        PlotItem plotItem;
        XYGraph graph;
        plotItem.applyTheme(nullptr, &graph, fallback);
        plotItem.applyTheme(ChartTheme::nullPlaceholder(), &graph, fallback);
        plotItem.applyTheme(theme, &graph, fallback);
        QCOMPARE(theme->applied, 1);
        QCOMPARE(fallback->applied, 1);
        // Names are exact; the two that exist are drawn with below.
        for (const QString name : {"bm clear", "Plain White", ""})
            QVERIFY(!ChartThemeRegistry::themeNamed(name));
    }

    void chartShowsThePanelThroughTheTheme()
    {
        // BM Clear is transparent; Dark Gradients covers the panel.
        for (const auto &[theme, panelShows] : {std::pair{"BM Clear", true}, {"Dark Gradients", false}}) {
            const QColor panelColor = Brightmere::Color::named(QStringLiteral("fz_compare_set"));
            QWidget panel;
            panel.resize(375, 240);
            panel.setAutoFillBackground(true);
            QPalette palette = panel.palette();
            palette.setColor(QPalette::Window, panelColor);
            panel.setPalette(palette);
            panel.show();
            RealTimePlot plot;
            plot.renderInView(&panel, ChartThemeRegistry::themeNamed(QString::fromLatin1(theme)), false);
            const QImage image = panel.grab().toImage();
            // A corner outside the plot area, and a point inside it above the trace.
            for (const QPoint &point : {QPoint(3, 3), QPoint(200, 60)})
                QVERIFY2((image.pixelColor(point) == panelColor) == panelShows, theme);
        }
    }

private:
    void run(const QStringList &script)
    {
        for (const QString &step : script) {
            if (step == QLatin1String("hc")) {
                BMSDKUISettings::sharedInstance().setHighContrast(true);
                build();
            } else if (step == QLatin1String("lo")) {
                BMSDKUISettings::sharedInstance().setHighContrast(false);
            } else if (step == QLatin1String("r"))
                m_plot->startRecording();
            else if (step == QLatin1String("s"))
                m_plot->stopRecording();
            else
                m_plot->addSpeedToGraph(step.toDouble());
        }
    }

    std::unique_ptr<TestEnvironment> m_env;
    std::unique_ptr<QWidget> m_panel;
    std::unique_ptr<RealTimePlot> m_plot;
};

QTEST_MAIN(tst_Chart)
#include "tst_Chart.moc"
