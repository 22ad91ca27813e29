#include "FZComparisonReportRows.h"

#include <Brightmere/i18n/BMI18NManager.h>
#include <Brightmere/model/BMNumericStringComparison.h>
#include <Brightmere/platform/foundation/StringFormat.h>

#include <QHash>
#include <QSet>

#include <algorithm>
#include <cmath>

namespace {

QHash<QString, WifiTestResult::Ptr> firstSpotOfEachLabel(const FZHistoricalResultSpotsSet::Ptr &set, QStringList *order)
{
    QHash<QString, WifiTestResult::Ptr> spots;
    if (!set)
        return spots;
    for (const WifiTestResult::Ptr &spot : set->mutableSpots()) {
        if (!spot || spots.contains(spot->label()))
            continue;
        spots.insert(spot->label(), spot);
        if (!order->contains(spot->label()))
            order->append(spot->label());
    }
    return spots;
}

} // namespace

FZComparisonReportRows::FZComparisonReportRows(const FZResultSpotsSetsComparison &comparison, bool hideIdentical)
{
    QStringList labels;
    const auto first = firstSpotOfEachLabel(comparison.firstSet(), &labels);
    const auto second = firstSpotOfEachLabel(comparison.secondSet(), &labels);

    // The compare screen's own rule decides what is identical: a fresh
    // comparison hides such pairs, so a label of both sets missing from it is one.
    QSet<QString> shownPairs;
    if (hideIdentical) {
        const FZResultSpotsSetsComparison probe(comparison.firstSet(), comparison.secondSet());
        for (const WifiTestResult::Ptr &spot : probe.firstSetComparableSpots())
            shownPairs.insert(spot->label());
    }

    const bool ascending = comparison.isSortedByNameAscending();
    std::stable_sort(labels.begin(), labels.end(), [ascending](const QString &a, const QString &b) {
        const int order = BMNumericStringComparison::compare(a, b);
        return ascending ? order < 0 : order > 0;
    });

    QList<double> percents;
    for (const QString &label : std::as_const(labels)) {
        Row row;
        row.label = label;
        row.first = first.value(label);
        row.second = second.value(label);
        if (row.first && row.second) {
            if (hideIdentical && !shownPairs.contains(label))
                continue;
            const double a = row.first->speedInMbps();
            const double b = row.second->speedInMbps();
            if (std::isfinite(a) && std::isfinite(b)) {
                row.changeMbps = b - a;
                row.changePercent = changePercent(a, b);
                ++m_pairedCount;
                if (b > a)
                    ++m_fasterCount;
                if (row.changePercent)
                    percents.append(*row.changePercent);
            }
        }
        m_rows.append(row);
    }
    if (!percents.isEmpty()) {
        std::sort(percents.begin(), percents.end());
        const qsizetype mid = percents.size() / 2;
        m_medianChangePercent = percents.size() % 2 ? percents.at(mid) : (percents.at(mid - 1) + percents.at(mid)) / 2.0;
    }
}

std::optional<double> FZComparisonReportRows::changePercent(double first, double second)
{
    if (first == 0.0 || !std::isfinite(first) || !std::isfinite(second))
        return std::nullopt;
    return (second - first) / first * 100.0;
}

QString FZComparisonReportRows::signedWholePercent(double percent)
{
    const long long whole = std::llround(percent);
    if (whole == 0)
        return QStringLiteral("0");
    return (whole > 0 ? QStringLiteral("+") : QStringLiteral("-")) + QString::number(std::llabs(whole));
}

QString FZComparisonReportRows::verdict() const
{
    using Brightmere::StringFormat;
    if (m_pairedCount == 0)
        return BMI18NManager::stringForCode(QStringLiteral("fairzones_report_verdict_no_pairs"));
    if (!m_medianChangePercent)
        return StringFormat::print(BMI18NManager::stringForCode(QStringLiteral("fairzones_report_verdict_faster")),
                                   m_fasterCount, m_pairedCount);
    return StringFormat::print(BMI18NManager::stringForCode(QStringLiteral("fairzones_report_verdict_faster_median")),
                               m_fasterCount, m_pairedCount, signedWholePercent(*m_medianChangePercent));
}
