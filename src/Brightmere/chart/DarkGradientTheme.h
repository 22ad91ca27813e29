#pragma once

#include "ChartTheme.h"

// The theme a chart falls back to when it is given none.
inline constexpr char kCPTDarkGradientTheme[] = "Dark Gradients";

// Dark grey gradients behind the graph and its plot area, white axis lines
// and light labels.
class DarkGradientTheme : public ChartTheme
{
public:
    QString name() const override;

protected:
    void applyThemeToBackground(XYGraph *graph) const override;
    void applyThemeToPlotArea(XYGraph *graph) const override;
    void applyThemeToAxisSet(XYGraph *graph) const override;
};
