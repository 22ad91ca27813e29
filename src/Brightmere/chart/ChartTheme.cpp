#include "ChartTheme.h"

#include "XYGraph.h"
#include <Brightmere/core/BMLogger.h>
#include <Brightmere/ui/BrightmereView.h>

#include <QValueAxis>

ChartTheme::~ChartTheme() = default;

void ChartTheme::applyThemeToGraph(XYGraph *graph) const
{
    if (!graph) {
        BMLogger::sharedInstance().logFromModule(QStringLiteral("ChartTheme"), 3, "theme '%@' given no graph",
                                                 name());
        return;
    }
    applyThemeToBackground(graph);
    applyThemeToPlotArea(graph);
    applyThemeToAxisSet(graph);
}

ChartTheme::Ptr ChartTheme::nullPlaceholder()
{
    static const Ptr placeholder = std::make_shared<const ChartTheme>();
    return placeholder;
}

void ChartTheme::applyAxisStyle(XYGraph *graph, const AxisStyle &style)
{
    for (QValueAxis *axis : {graph->xAxis(), graph->yAxis()}) {
        axis->setTickType(QValueAxis::TicksDynamic);
        axis->setTickAnchor(0.0);
        axis->setTickInterval(0.5);
        axis->setMinorTickCount(4);
        axis->setLinePen(style.majorLineStyle);
        axis->setMinorGridLinePen(style.minorLineStyle);
        axis->setLabelsBrush(style.textColor);
        axis->setLabelsFont(style.textFont);
        axis->setTitleBrush(style.textColor);
        axis->setTitleFont(style.textFont);
    }
}

QFont ChartTheme::textFont(int pixelSize)
{
    QFont font = Brightmere::View::kitFont(QFont());
    font.setPixelSize(qMax(1, qRound(pixelSize * Brightmere::View::textScale())));
    return font;
}
