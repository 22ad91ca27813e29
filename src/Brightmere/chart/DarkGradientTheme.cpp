#include "DarkGradientTheme.h"

#include "XYGraph.h"
#include <Brightmere/ui/BrightmereColor.h>

#include <QLinearGradient>

namespace {

QColor grey(uint level)
{
    return Brightmere::Color::colorWithR(level, level, level);
}

// Top to bottom, so the brush follows the item whatever its size.
QBrush verticalGradient(uint top, uint bottom)
{
    QLinearGradient gradient(0.0, 0.0, 0.0, 1.0);
    gradient.setCoordinateMode(QGradient::ObjectMode);
    gradient.setColorAt(0.0, grey(top));
    gradient.setColorAt(1.0, grey(bottom));
    return gradient;
}

} // namespace

QString DarkGradientTheme::name() const
{
    return QString::fromLatin1(kCPTDarkGradientTheme);
}

void DarkGradientTheme::applyThemeToBackground(XYGraph *graph) const
{
    graph->setBackgroundBrush(verticalGradient(64, 26));
    graph->setBackgroundPen(Qt::NoPen);
    graph->setBackgroundRoundness(0.0);
}

void DarkGradientTheme::applyThemeToPlotArea(XYGraph *graph) const
{
    graph->setPlotAreaFill(verticalGradient(26, 64));
    graph->setPlotAreaBorderLineStyle(QPen(grey(102), 1.0));
}

void DarkGradientTheme::applyThemeToAxisSet(XYGraph *graph) const
{
    applyAxisStyle(graph, {QPen(grey(255), 1.0), QPen(grey(255), 1.0), grey(230), textFont(14)});
}
