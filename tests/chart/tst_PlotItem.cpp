#include "LogCapture.h"
#include "TestEnvironment.h"
#include "chart/ChartTheme.h"
#include "chart/PlotItem.h"
#include "chart/RealTimePlot.h"
#include "chart/XYGraph.h"

#include <QChartView>
#include <QTest>
#include <QWidget>

#include <algorithm>

namespace {

// Counts how often it was applied, so a test sees which theme was used.
class CountingTheme : public ChartTheme
{
public:
    mutable int applied = 0;

protected:
    void applyThemeToBackground(XYGraph *) const override { ++applied; }
};

std::unique_ptr<PlotItem> item(const QString &section, const QString &title)
{
    auto plotItem = std::make_unique<PlotItem>();
    plotItem->setSection(section);
    plotItem->setTitle(title);
    return plotItem;
}

} // namespace

class tst_PlotItem : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init() { m_env = std::make_unique<TestEnvironment>(); }
    void cleanup() { m_env.reset(); }
    void renderingAgainLeavesOneHostingView();
    void hostingViewFollowsItsWidgetAndOutlivesIt();
    void applyThemeChoosesByKind_data();
    void applyThemeChoosesByKind();
    void titleCompareOrdersBySectionThenTitle_data();
    void titleCompareOrdersBySectionThenTitle();
    void titleAndPaddingDefaults_data();
    void titleAndPaddingDefaults();
    void baseItemOnlyAsksToBeOverridden();
    void imageShowsTheItem();

private:
    std::unique_ptr<TestEnvironment> m_env;
};

void tst_PlotItem::renderingAgainLeavesOneHostingView()
{
    QWidget host;
    host.resize(375, 240);
    RealTimePlot plot;
    plot.renderInView(&host, nullptr, false);
    const QPointer<QChartView> firstView = plot.defaultLayerHostingView();
    const QPointer<XYGraph> firstGraph = plot.graph();
    plot.renderInView(&host, nullptr, true);

    QVERIFY(!firstView);
    QVERIFY(!firstGraph);
    QCOMPARE(host.findChildren<QChartView *>().size(), 1);
    QCOMPARE(plot.graphs().size(), 1);
    QCOMPARE(plot.defaultLayerHostingView()->chart(), plot.graph());
    QCOMPARE(plot.defaultLayerHostingView()->geometry(), host.rect());

    plot.killGraph();
    QVERIFY(host.findChildren<QChartView *>().isEmpty());
    QVERIFY(plot.graphs().isEmpty());
    QCOMPARE(plot.graph(), nullptr);
}

void tst_PlotItem::hostingViewFollowsItsWidgetAndOutlivesIt()
{
    RealTimePlot plot;
    {
        QWidget host;
        host.resize(200, 100);
        host.show();
        plot.renderInView(&host, nullptr, false);
        host.resize(320, 180);
        QCOMPARE(plot.defaultLayerHostingView()->size(), QSize(320, 180));
    }
    // The widget took the view and graph with it; the item carries on.
    QCOMPARE(plot.defaultLayerHostingView(), nullptr);
    plot.addSpeedToGraph(4.0);
    plot.killGraph();
    LogCapture log;
    plot.renderInView(nullptr, nullptr, false);
    QVERIFY(log.contains(QStringLiteral("no view to render in")));
    QVERIFY(plot.graphs().isEmpty());
}

void tst_PlotItem::applyThemeChoosesByKind_data()
{
    QTest::addColumn<QString>("given"); // "absent", "placeholder" or "theme"
    QTest::addColumn<int>("themeApplied");
    QTest::addColumn<int>("defaultApplied");
    QTest::newRow("absent applies the default") << "absent" << 0 << 1;
    QTest::newRow("the null placeholder applies nothing") << "placeholder" << 0 << 0;
    QTest::newRow("a theme applies itself") << "theme" << 1 << 0;
}

void tst_PlotItem::applyThemeChoosesByKind()
{
    QFETCH(QString, given);
    QFETCH(int, themeApplied);
    QFETCH(int, defaultApplied);
    auto theme = std::make_shared<CountingTheme>();
    auto fallback = std::make_shared<CountingTheme>();
    const ChartTheme::Ptr chosen = given == QLatin1String("absent")        ? nullptr
                                   : given == QLatin1String("placeholder") ? ChartTheme::nullPlaceholder()
                                                                           : theme;
    PlotItem plotItem;
    XYGraph graph;
    plotItem.applyTheme(chosen, &graph, fallback);
    QCOMPARE(theme->applied, themeApplied);
    QCOMPARE(fallback->applied, defaultApplied);
}

void tst_PlotItem::titleCompareOrdersBySectionThenTitle_data()
{
    QTest::addColumn<QStringList>("items"); // "section/title"
    QTest::addColumn<QStringList>("sorted");
    QTest::newRow("sections first")
        << QStringList{"Line Plots/A", "Bar Plots/Z", "Demos/M"} << QStringList{"Bar Plots/Z", "Demos/M", "Line Plots/A"};
    QTest::newRow("then titles")
        << QStringList{"Line Plots/Speed", "Line Plots/Latency"} << QStringList{"Line Plots/Latency", "Line Plots/Speed"};
    QTest::newRow("case does not count")
        << QStringList{"line plots/b", "Line Plots/A", "BAR PLOTS/c"}
        << QStringList{"BAR PLOTS/c", "Line Plots/A", "line plots/b"};
}

void tst_PlotItem::titleCompareOrdersBySectionThenTitle()
{
    QFETCH(QStringList, items);
    QFETCH(QStringList, sorted);
    std::vector<std::unique_ptr<PlotItem>> plotItems;
    for (const QString &text : items)
        plotItems.push_back(item(text.section(QLatin1Char('/'), 0, 0), text.section(QLatin1Char('/'), 1)));
    std::sort(plotItems.begin(), plotItems.end(),
              [](const auto &a, const auto &b) { return a->titleCompare(*b) < 0; });
    QStringList order;
    for (const auto &plotItem : plotItems)
        order.append(plotItem->section() + QLatin1Char('/') + plotItem->title());
    QCOMPARE(order, sorted);
    QVERIFY(item("Demos", "a")->titleCompare(*item("DEMOS", "A")) == 0);
}

void tst_PlotItem::titleAndPaddingDefaults_data()
{
    QTest::addColumn<QSizeF>("bounds");
    QTest::addColumn<int>("fontPixels");
    QTest::addColumn<double>("displacement");
    QTest::addColumn<QMarginsF>("padding");
    QTest::newRow("phone chart") << QSizeF(375, 240) << 12 << 13.0 << QMarginsF(12, 24, 12, 12);
    QTest::newRow("wide and short") << QSizeF(600, 100) << 5 << 6.0 << QMarginsF(5, 10, 5, 5);
    // Too low for a displaced title: the top gets no extra room.
    QTest::newRow("a strip") << QSizeF(300, 8) << 1 << 0.0 << QMarginsF(0, 0, 0, 0);
}

void tst_PlotItem::titleAndPaddingDefaults()
{
    QFETCH(QSizeF, bounds);
    QFETCH(int, fontPixels);
    QFETCH(double, displacement);
    QFETCH(QMarginsF, padding);
    auto plotItem = item(QString::fromLatin1(kLinePlots), QStringLiteral("Speed"));
    XYGraph graph;
    plotItem->setTitleDefaultsForGraph(&graph, QRectF(QPointF(), bounds));
    plotItem->setPaddingDefaultsForGraph(&graph, QRectF(QPointF(), bounds));
    QCOMPARE(graph.title(), QStringLiteral("Speed"));
    QVERIFY(graph.titleFont().bold());
    QCOMPARE(graph.titleFont().pixelSize(), fontPixels);
    QCOMPARE(graph.titleDisplacement(), QPointF(0, displacement));
    QCOMPARE(graph.padding(), padding);
}

void tst_PlotItem::baseItemOnlyAsksToBeOverridden()
{
    LogCapture log;
    QWidget host;
    PlotItem plotItem;
    plotItem.renderInView(&host, nullptr, false);
    QVERIFY(log.contains(QStringLiteral("PlotItem:renderInLayer: Override me")));
    QVERIFY(plotItem.graphs().isEmpty());
    QCOMPARE(host.findChildren<QChartView *>().size(), 1);
}

void tst_PlotItem::imageShowsTheItem()
{
    RealTimePlot plot;
    const QImage offscreen = plot.image();
    QCOMPARE(offscreen.size(), QSize(375, 240));
    QCOMPARE(plot.cachedImage(), offscreen);
    QVERIFY(plot.graphs().isEmpty());
    // Without a theme the dark default fills the whole picture.
    QVERIFY(offscreen.pixelColor(2, 2).lightness() < 100);

    QWidget host;
    host.resize(200, 120);
    plot.renderInView(&host, nullptr, false);
    QCOMPARE(plot.image().size(), QSize(200, 120));
}

QTEST_MAIN(tst_PlotItem)
#include "tst_PlotItem.moc"
