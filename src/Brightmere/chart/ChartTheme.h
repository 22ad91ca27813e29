#pragma once

#include <QColor>
#include <QFont>
#include <QPen>
#include <QString>

#include <memory>

class XYGraph;

// A named look for an XY graph: its background, its plot area and its axes.
// This base changes nothing; the null placeholder is one of it, and
// PlotItem::applyTheme takes it to mean "leave the graph as it is".
class ChartTheme
{
public:
    using Ptr = std::shared_ptr<const ChartTheme>;

    virtual ~ChartTheme();

    virtual QString name() const { return QString(); }

    // The background, then the plot area, then the axes. A null graph is
    // logged.
    void applyThemeToGraph(XYGraph *graph) const;

    // The one "no theme on purpose" object.
    static Ptr nullPlaceholder();

protected:
    virtual void applyThemeToBackground(XYGraph *graph) const {}
    virtual void applyThemeToPlotArea(XYGraph *graph) const {}
    virtual void applyThemeToAxisSet(XYGraph *graph) const {}

    // What a theme gives both axes; labels fall at a fixed interval of 0.5
    // from 0, four minor ticks between them.
    struct AxisStyle
    {
        QPen majorLineStyle;
        QPen minorLineStyle;
        QColor textColor;
        QFont textFont;
    };
    static void applyAxisStyle(XYGraph *graph, const AxisStyle &style);
    // The kit's face at a pixel size (at the default text size; it grows
    // with the user's text, see View::textScale), for labels and titles.
    static QFont textFont(int pixelSize);
};
