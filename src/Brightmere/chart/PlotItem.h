#pragma once

#include "ChartTheme.h"

#include <QChartView>
#include <QImage>
#include <QList>
#include <QObject>
#include <QPointer>
#include <QRectF>
#include <QString>

#include <compare>

class QWidget;
class XYGraph;

// The groups a plot item belongs to.
inline constexpr char kDemoPlots[] = "Demos";
inline constexpr char kPieCharts[] = "Pie Charts";
inline constexpr char kLinePlots[] = "Line Plots";
inline constexpr char kBarPlots[] = "Bar Plots";
inline constexpr char kFinancialPlots[] = "Financial Plots";

// The base of the kit's charts. An item owns the graphs it makes and the
// hosting view (a QChartView) in which it shows them inside a widget the
// owner gives; it can rebuild itself there with a theme, and it gives a graph
// its default title and padding. Subclasses build their graphs in
// renderInLayer.
//
// Nothing is thrown: a null widget, graph or view is logged and skipped.
class PlotItem : public QObject
{
    Q_OBJECT

public:
    explicit PlotItem(QObject *parent = nullptr);
    // Takes the graphs and the hosting view down with the item.
    ~PlotItem() override;

    // Subclasses announce themselves here when the library loads; the kit
    // keeps no catalogue of them.
    static void registerPlotItem(const QMetaObject *plotItemClass);

    QChartView *defaultLayerHostingView() const { return m_defaultLayerHostingView; }
    QList<XYGraph *> graphs() const;
    QString section() const { return m_section; }
    void setSection(const QString &section) { m_section = section; }
    QString title() const { return m_title; }
    void setTitle(const QString &title) { m_title = title; }
    QImage cachedImage() const { return m_cachedImage; }

    // The item keeps the graph; given a hosting view, the view shows it.
    void addGraph(XYGraph *graph, QChartView *hostingView);
    void addGraph(XYGraph *graph);
    // Stops the graphs' animations, takes the hosting view out of its widget
    // and deletes it and every graph.
    void killGraph();

    // Subclasses fill their data here; the base has none.
    virtual void generateData() {}

    // By section, then by title, both without regard to case.
    std::weak_ordering titleCompare(const PlotItem &other) const;

    // Title: the item's title in bold grey at a twentieth of the height,
    // moved down by an eighteenth of it.
    void setTitleDefaultsForGraph(XYGraph *graph, const QRectF &bounds);
    // Padding: a twentieth of the bounds' smaller side on every edge, twice
    // that on top when the title is moved down.
    void setPaddingDefaultsForGraph(XYGraph *graph, const QRectF &bounds);

    // What the item shows: its hosting view as drawn now, or without one the
    // item rendered in the default theme at 375 x 240 and taken down again.
    // Kept in cachedImage; a later call makes a fresh one.
    QImage image();

    // An absent (null) theme applies the default; the null placeholder
    // (ChartTheme::nullPlaceholder()) applies nothing.
    void applyTheme(const ChartTheme::Ptr &theme, XYGraph *graph, const ChartTheme::Ptr &defaultTheme);

    // Kills what was shown, puts a new hosting view over the whole of the
    // widget (it follows the widget's size), then generateData and
    // renderInLayer with it.
    void renderInView(QWidget *view, const ChartTheme::Ptr &theme, bool animated);
    // Builds the item's graphs in the hosting view; subclasses must do it.
    virtual void renderInLayer(QChartView *layerHostingView, const ChartTheme::Ptr &theme, bool animated);

    // Every graph reloads its plots' data.
    void reloadData();

protected:
    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    QPointer<QChartView> m_defaultLayerHostingView;
    QList<QPointer<XYGraph>> m_graphs;
    QString m_section;
    QString m_title;
    QImage m_cachedImage;
    // The widget the hosting view fills.
    QPointer<QWidget> m_hostWidget;
};
