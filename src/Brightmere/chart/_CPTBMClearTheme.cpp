#include "_CPTBMClearTheme.h"

#include "XYGraph.h"
#include <Brightmere/ui/BrightmereColor.h>

namespace {

QColor clearColor()
{
    return Brightmere::Color::colorWithR(0, 0, 0, 0.0f);
}

QPen lineStyle(const QColor &color, qreal width)
{
    QPen pen(color, width);
    pen.setCapStyle(Qt::FlatCap);
    return pen;
}

} // namespace

QString _CPTBMClearTheme::name() const
{
    return QString::fromLatin1(kCPTBMClearTheme);
}

QColor _CPTBMClearTheme::bmBlueGrayColor()
{
    return Brightmere::Color::colorWithR(228, 238, 241);
}

void _CPTBMClearTheme::applyThemeToBackground(XYGraph *graph) const
{
    graph->setBackgroundBrush(clearColor());
    graph->setBackgroundPen(Qt::NoPen);
    graph->setBackgroundRoundness(0.0);
    graph->setDropShadowEnabled(false);
}

void _CPTBMClearTheme::applyThemeToPlotArea(XYGraph *graph) const
{
    graph->setPlotAreaFill(clearColor());
    graph->setPlotAreaBorderLineStyle(lineStyle(clearColor(), 1.0));
}

void _CPTBMClearTheme::applyThemeToAxisSet(XYGraph *graph) const
{
    applyAxisStyle(graph, {lineStyle(bmBlueGrayColor(), 1.0), lineStyle(bmBlueGrayColor(), 1.0),
                           Brightmere::Color::fixedColor(Brightmere::Color::named(QStringLiteral("medium_gray")),
                                                         Brightmere::Color::named(QStringLiteral("fz_chart_back"))),
                           textFont(14)});
}
