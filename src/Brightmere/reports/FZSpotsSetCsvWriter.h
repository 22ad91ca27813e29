#pragma once

#include <Brightmere/SDKUIExport.h>

#include "FZReportResult.h"
#include <Brightmere/model/FZHistoricalResultSpotsSet.h>

#include <QByteArray>
#include <QString>

/// One saved set as a spreadsheet: a row per spot in the set's current order
/// (label, speed in Mbps with two decimals, averaged, averaging seconds, SSID,
/// BSSID, ISO 8601 time in UTC), under a localised header row.
class BRIGHTMERE_SDKUI_EXPORT FZSpotsSetCsvWriter
{
public:
    /// An absent set gives the header row alone (logged).
    static QByteArray csvForSet(const FZHistoricalResultSpotsSet::Ptr &set);
    /// Writes csvForSet() to path, all or nothing.
    static FZReportResult writeSet(const FZHistoricalResultSpotsSet::Ptr &set, const QString &path);
};
