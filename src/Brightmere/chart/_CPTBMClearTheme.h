#pragma once

#include "ChartTheme.h"

#include <QColor>

// The name the test screen asks the theme registry for.
inline constexpr char kCPTBMClearTheme[] = "BM Clear";

// The kit's chart look: no background and no plot-area fill, so the chart
// sits on the screen's own panel; light blue-grey axis lines; grey labels and
// titles in the kit's face. Axes get a fixed-interval labelling that a chart
// may replace with its own.
class _CPTBMClearTheme : public ChartTheme
{
public:
    QString name() const override;

    // The axis lines' colour: 228, 238, 241.
    static QColor bmBlueGrayColor();

protected:
    void applyThemeToBackground(XYGraph *graph) const override;
    void applyThemeToPlotArea(XYGraph *graph) const override;
    void applyThemeToAxisSet(XYGraph *graph) const override;
};
