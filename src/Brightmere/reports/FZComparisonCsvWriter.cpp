#include "FZComparisonCsvWriter.h"

#include "FZComparisonReportRows.h"
#include "FZCsvFormat.h"
#include "FZReportFile.h"
#include <Brightmere/i18n/BMI18NManager.h>
#include <Brightmere/platform/foundation/StringFormat.h>

namespace {

const QString kModule = QStringLiteral("FZComparisonCsvWriter");

QString speedOf(const WifiTestResult::Ptr &spot)
{
    return spot ? FZCsvFormat::decimal(spot->speedInMbps(), 2) : QString();
}

} // namespace

QByteArray FZComparisonCsvWriter::csvForComparison(const FZResultSpotsSetsComparison &comparison, bool hideIdentical)
{
    const FZComparisonReportRows report(comparison, hideIdentical);
    const QString setSpeed = BMI18NManager::stringForCode(QStringLiteral("fairzones_report_column_set_speed"));
    const QStringList header{BMI18NManager::stringForCode(QStringLiteral("fairzones_report_column_spot")),
                             Brightmere::StringFormat::print(setSpeed, comparison.nameForSetIndex(1)),
                             Brightmere::StringFormat::print(setSpeed, comparison.nameForSetIndex(2)),
                             BMI18NManager::stringForCode(QStringLiteral("fairzones_report_column_change_mbps")),
                             Brightmere::StringFormat::print(BMI18NManager::stringForCode(QStringLiteral("fairzones_report_column_change_percent")))};
    QList<QStringList> rows;
    rows.reserve(report.rows().size());
    for (const FZComparisonReportRows::Row &row : report.rows()) {
        rows.append({FZCsvFormat::text(row.label), speedOf(row.first), speedOf(row.second),
                     row.changeMbps ? FZCsvFormat::decimal(*row.changeMbps, 2) : QString(),
                     row.changePercent ? FZCsvFormat::decimal(*row.changePercent, 2) : QString()});
    }
    return FZCsvFormat::document(header, rows);
}

FZReportResult FZComparisonCsvWriter::writeComparison(const FZResultSpotsSetsComparison &comparison, bool hideIdentical,
                                                      const QString &path)
{
    return FZReportFile::writeBytes(path, csvForComparison(comparison, hideIdentical), kModule);
}
