#pragma once

#include "FZReportResult.h"
#include <Brightmere/model/FZResultSpotsSetsComparison.h>

#include <QByteArray>
#include <QString>

/// A comparison as a spreadsheet: a row per label (see FZComparisonReportRows)
/// with the speed in each set, the change in Mbps and in percent. A side that
/// lacks the label leaves its speed and both changes empty; a first speed of
/// 0 leaves the percent empty.
class FZComparisonCsvWriter
{
public:
    static QByteArray csvForComparison(const FZResultSpotsSetsComparison &comparison, bool hideIdentical);
    static FZReportResult writeComparison(const FZResultSpotsSetsComparison &comparison, bool hideIdentical,
                                          const QString &path);
};
