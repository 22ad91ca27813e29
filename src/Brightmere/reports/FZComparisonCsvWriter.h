#pragma once

#include <Brightmere/SDKUIExport.h>

#include "FZReportResult.h"
#include <Brightmere/model/FZResultSpotsSetsComparison.h>

#include <QByteArray>
#include <QString>

/// A comparison as a spreadsheet: a row per label (see FZComparisonReportRows)
/// with the speed in each set, the change in Mbps and in percent. A side that
/// lacks the label leaves its speed and both changes empty; a first speed of
/// 0 leaves the percent empty.
class BRIGHTMERE_SDKUI_EXPORT FZComparisonCsvWriter
{
public:
    /// The CSV text of a comparison; with hideIdentical, labels whose speeds are equal are left out.
    static QByteArray csvForComparison(const FZResultSpotsSetsComparison &comparison, bool hideIdentical);
    /// Writes csvForComparison() to path, all or nothing.
    static FZReportResult writeComparison(const FZResultSpotsSetsComparison &comparison, bool hideIdentical,
                                          const QString &path);
};
