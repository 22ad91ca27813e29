#pragma once

#include "PlotSymbol.h"

#include <QVariant>

#include <optional>

class ScatterPlot;

// What a scatter plot asks of whoever holds its numbers. Answers are
// QVariants holding numbers; an invalid QVariant means there is none.
class PlotDataSource
{
public:
    enum Field { FieldX = 0, FieldY = 1 };

    virtual ~PlotDataSource() = default;

    virtual qsizetype numberOfRecordsForPlot(const ScatterPlot *plot) const = 0;
    virtual QVariant numberForPlot(const ScatterPlot *plot, int field, qsizetype recordIndex) const = 0;

    // The x at which a record is drawn. A source whose answer for FieldX
    // moves as data arrives gives here where the record first appeared, so
    // that what is already drawn stays put when a plot is reloaded.
    virtual QVariant drawingXForPlot(const ScatterPlot *plot, qsizetype recordIndex) const
    {
        return numberForPlot(plot, FieldX, recordIndex);
    }

    // The mark of a record; none by default.
    virtual std::optional<PlotSymbol> symbolForScatterPlot(ScatterPlot *plot, qsizetype recordIndex)
    {
        return std::nullopt;
    }
};
