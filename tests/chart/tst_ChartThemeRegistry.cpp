#include "LogCapture.h"
#include "TestEnvironment.h"
#include "chart/ChartThemeRegistry.h"
#include "chart/DarkGradientTheme.h"
#include "chart/RealTimePlot.h"
#include "chart/XYGraph.h"
#include "chart/_CPTBMClearTheme.h"
#include "ui/BrightmereColor.h"

#include <QTest>
#include <QValueAxis>
#include <QWidget>

class tst_ChartThemeRegistry : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init() { m_env = std::make_unique<TestEnvironment>(); }
    void cleanup() { m_env.reset(); }
    void themeNamed_data();
    void themeNamed();
    void bmClearStylesTheGraph();
    void chartShowsThePanelThroughTheTheme_data();
    void chartShowsThePanelThroughTheTheme();

private:
    std::unique_ptr<TestEnvironment> m_env;
};

void tst_ChartThemeRegistry::themeNamed_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<bool>("found");
    QTest::newRow("BM Clear") << "BM Clear" << true;
    QTest::newRow("the default") << "Dark Gradients" << true;
    QTest::newRow("names are case-sensitive") << "bm clear" << false;
    QTest::newRow("unknown") << "Plain White" << false;
    QTest::newRow("empty") << "" << false;
}

void tst_ChartThemeRegistry::themeNamed()
{
    QFETCH(QString, name);
    QFETCH(bool, found);
    LogCapture log;
    const ChartTheme::Ptr theme = ChartThemeRegistry::themeNamed(name);
    QCOMPARE(bool(theme), found);
    if (found)
        QCOMPARE(theme->name(), name);
    else
        QVERIFY(log.contains(QStringLiteral("no theme named '%1'").arg(name)));
    QVERIFY(ChartThemeRegistry::themeNames().contains(QStringLiteral("BM Clear")));
}

void tst_ChartThemeRegistry::bmClearStylesTheGraph()
{
    XYGraph graph;
    ChartThemeRegistry::themeNamed(QString::fromLatin1(kCPTBMClearTheme))->applyThemeToGraph(&graph);
    QCOMPARE(graph.backgroundBrush().color().alpha(), 0);
    QCOMPARE(graph.plotAreaFill().color().alpha(), 0);
    QCOMPARE(graph.plotAreaBorderLineStyle().color().alpha(), 0);
    QCOMPARE(_CPTBMClearTheme::bmBlueGrayColor(), QColor(228, 238, 241));
    for (QValueAxis *axis : {graph.xAxis(), graph.yAxis()}) {
        QCOMPARE(axis->linePen().color(), QColor(228, 238, 241));
        QCOMPARE(axis->linePen().widthF(), 1.0);
        QCOMPARE(axis->linePen().capStyle(), Qt::FlatCap);
        QCOMPARE(axis->labelsBrush().color(), Brightmere::Color::named(QStringLiteral("medium_gray")));
        QCOMPARE(axis->titleBrush().color(), axis->labelsBrush().color());
        QCOMPARE(axis->labelsFont().pixelSize(), 14);
        QCOMPARE(axis->tickType(), QValueAxis::TicksDynamic);
        QCOMPARE(axis->tickInterval(), 0.5);
        QCOMPARE(axis->minorTickCount(), 4);
    }
}

void tst_ChartThemeRegistry::chartShowsThePanelThroughTheTheme_data()
{
    QTest::addColumn<QString>("theme");
    QTest::addColumn<bool>("panelShows");
    QTest::newRow("BM Clear is transparent") << "BM Clear" << true;
    QTest::newRow("Dark Gradients covers it") << "Dark Gradients" << false;
}

void tst_ChartThemeRegistry::chartShowsThePanelThroughTheTheme()
{
    QFETCH(QString, theme);
    QFETCH(bool, panelShows);
    const QColor panelColor = Brightmere::Color::named(QStringLiteral("fz_compare_set"));
    QWidget panel;
    panel.resize(375, 240);
    panel.setAutoFillBackground(true);
    QPalette palette = panel.palette();
    palette.setColor(QPalette::Window, panelColor);
    panel.setPalette(palette);
    panel.show();
    RealTimePlot plot;
    plot.renderInView(&panel, ChartThemeRegistry::themeNamed(theme), false);
    const QImage image = panel.grab().toImage();
    // A corner outside the plot area, and a point inside it above the trace.
    for (const QPoint &point : {QPoint(3, 3), QPoint(200, 60)})
        QCOMPARE(image.pixelColor(point) == panelColor, panelShows);
}

QTEST_MAIN(tst_ChartThemeRegistry)
#include "tst_ChartThemeRegistry.moc"
