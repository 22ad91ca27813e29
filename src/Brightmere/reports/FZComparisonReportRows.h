#pragma once

#include <Brightmere/model/FZResultSpotsSetsComparison.h>

#include <QList>
#include <QString>

#include <optional>

// The rows a comparison report shows: every label of either set (its first
// spot in each), in the comparison's label order, with the change from the
// first set to the second. With hideIdentical, labels the compare screen
// hides as the very same measurement in both sets are left out.
class FZComparisonReportRows
{
public:
    struct Row
    {
        QString label;
        WifiTestResult::Ptr first;   // null where the first set lacks the label
        WifiTestResult::Ptr second;  // null where the second set lacks it
        std::optional<double> changeMbps;     // second - first, when both exist
        std::optional<double> changePercent;  // also absent when the first speed is 0
    };

    FZComparisonReportRows(const FZResultSpotsSetsComparison &comparison, bool hideIdentical);

    const QList<Row> &rows() const { return m_rows; }
    // Rows with a spot in both sets.
    int pairedCount() const { return m_pairedCount; }
    // Paired rows where the second set is faster.
    int fasterCount() const { return m_fasterCount; }
    std::optional<double> medianChangePercent() const { return m_medianChangePercent; }
    // One localised sentence: "Faster at 5 of 7 spots, median change +12 %".
    QString verdict() const;

    static std::optional<double> changePercent(double first, double second);
    // "+12" or "-5": a whole percent with its sign, "0" for no change.
    static QString signedWholePercent(double percent);

private:
    QList<Row> m_rows;
    int m_pairedCount = 0;
    int m_fasterCount = 0;
    std::optional<double> m_medianChangePercent;
};
