#pragma once

#include <Brightmere/SDKUIExport.h>

#include "FZHistoricalResultSpotsSet.h"

#include <memory>

/// The spots of two saved sets paired by label, row by row, for the compare
/// screen: only labels present in both sets, the first spot of a label when a
/// set holds it more than once, optionally without pairs that are the very
/// same measurement, ordered by label (numerically). Both lists always have
/// the same length and equal labels at every row.
class BRIGHTMERE_SDKUI_EXPORT FZResultSpotsSetsComparison
{
public:
    /// The comparison of firstSet with secondeSet, labels descending, identical pairs left out; an absent set counts as empty (logged).
    FZResultSpotsSetsComparison(const FZHistoricalResultSpotsSet::Ptr &firstSet,
                                const FZHistoricalResultSpotsSet::Ptr &secondeSet);
    /// A shared comparison; see the constructor.
    static std::shared_ptr<FZResultSpotsSetsComparison> comparisonWithFirstSet(
        const FZHistoricalResultSpotsSet::Ptr &firstSet, const FZHistoricalResultSpotsSet::Ptr &secondSet);

    /// Row order: true labels ascending, false (the start) descending.
    bool isSortedByNameAscending() const { return m_sortedByNameAscending; }
    /// Whether pairs that are the same measurement are left out.
    bool excludeIdenticalMatches() const { return m_excludeIdenticalMatches; }
    /// The first set compared.
    FZHistoricalResultSpotsSet::Ptr firstSet() const { return m_firstSet; }
    /// The second set compared.
    FZHistoricalResultSpotsSet::Ptr secondSet() const { return m_secondSet; }
    /// The first set's spot of each row.
    const WifiTestResult::List &firstSetComparableSpots() const { return m_firstSetComparableSpots; }
    /// The second set's spot of each row.
    const WifiTestResult::List &secondSetComparableSpots() const { return m_secondSetComparableSpots; }

    /// The SSID of the first set.
    QString ssid() const;
    /// 1 names the first set, any other index the second.
    QString nameForSetIndex(qsizetype index) const;
    /// How many rows.
    qsizetype count() const { return m_firstSetComparableSpots.size(); }
    /// Out of range: an empty text or nullptr, and a log line.
    QString spotNameAtIndex(qsizetype index) const;
    /// The first set's spot of a row; see spotNameAtIndex() out of range.
    WifiTestResult::Ptr firstComparableSpotAtIndex(qsizetype index) const;
    /// The second set's spot of a row; see spotNameAtIndex() out of range.
    WifiTestResult::Ptr secondComparableSpotAtIndex(qsizetype index) const;

    /// Reverses the row order.
    void toggleSortByName();
    /// Leaves identical pairs out or brings them back.
    void toggleExcludeIdenticalMatches();
    /// Rebuilds both lists from the two sets and the two switches.
    void setComparableData();

private:
    bool checkIndex(qsizetype index, const char *what) const;

    bool m_sortedByNameAscending = false;
    bool m_excludeIdenticalMatches = true;
    FZHistoricalResultSpotsSet::Ptr m_firstSet;
    FZHistoricalResultSpotsSet::Ptr m_secondSet;
    WifiTestResult::List m_firstSetComparableSpots;
    WifiTestResult::List m_secondSetComparableSpots;
};
