#include "FZSpotsSetCsvWriter.h"

#include "FZCsvFormat.h"
#include "FZReportFile.h"
#include <Brightmere/core/BMLogger.h>
#include <Brightmere/i18n/BMI18NManager.h>

namespace {

const QString kModule = QStringLiteral("FZSpotsSetCsvWriter");

QStringList header()
{
    return {BMI18NManager::stringForCode(QStringLiteral("fairzones_report_column_spot")),
            BMI18NManager::stringForCode(QStringLiteral("fairzones_report_column_speed")),
            BMI18NManager::stringForCode(QStringLiteral("fairzones_report_column_averaged")),
            BMI18NManager::stringForCode(QStringLiteral("fairzones_report_column_duration")),
            BMI18NManager::stringForCode(QStringLiteral("fairzones_report_column_ssid")),
            BMI18NManager::stringForCode(QStringLiteral("fairzones_report_column_bssid")),
            BMI18NManager::stringForCode(QStringLiteral("fairzones_report_column_time"))};
}

} // namespace

QByteArray FZSpotsSetCsvWriter::csvForSet(const FZHistoricalResultSpotsSet::Ptr &set)
{
    QList<QStringList> rows;
    if (!set) {
        BMLogger::sharedInstance().log(kModule, 3, QStringLiteral("no set to export: the CSV holds its header only"));
        return FZCsvFormat::document(header(), rows);
    }
    const WifiTestResult::List spots = set->sortedSpots();
    rows.reserve(spots.size());
    for (const WifiTestResult::Ptr &spot : spots) {
        if (!spot)
            continue;
        // Booleans as a spreadsheet reads them, not as words of one language.
        rows.append({FZCsvFormat::text(spot->label()), FZCsvFormat::decimal(spot->speedInMbps(), 2),
                     spot->isAverage() ? QStringLiteral("true") : QStringLiteral("false"),
                     FZCsvFormat::decimal(spot->duration(), 2), FZCsvFormat::text(spot->ssid()),
                     FZCsvFormat::text(spot->bssid()),
                     FZCsvFormat::isoTime(spot->timeAfterTest())});
    }
    return FZCsvFormat::document(header(), rows);
}

FZReportResult FZSpotsSetCsvWriter::writeSet(const FZHistoricalResultSpotsSet::Ptr &set, const QString &path)
{
    if (!set) {
        BMLogger::sharedInstance().log(kModule, 3, QStringLiteral("no set to export to %1").arg(path));
        return FZReportResult::failure(FZReportResult::Error::InvalidInput, QStringLiteral("no set to export"));
    }
    return FZReportFile::writeBytes(path, csvForSet(set), kModule);
}
