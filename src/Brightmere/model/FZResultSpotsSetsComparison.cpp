#include "FZResultSpotsSetsComparison.h"

#include "BMNumericStringComparison.h"
#include <Brightmere/core/BMLogger.h>

#include <QHash>

#include <algorithm>

namespace {

const QString kModule = QStringLiteral("FZResultSpotsSetsComparison");

// Label -> the first spot of the set with that label, and the labels in the
// order they first appear.
struct SpotsByLabel
{
    QHash<QString, WifiTestResult::Ptr> spots;
    WifiTestResult::List firstOfEachLabel;
};

SpotsByLabel spotsByLabel(const FZHistoricalResultSpotsSet::Ptr &set)
{
    SpotsByLabel result;
    if (!set)
        return result;
    result.spots.reserve(set->spotsCount());
    for (const WifiTestResult::Ptr &spot : set->mutableSpots()) {
        if (!spot || result.spots.contains(spot->label()))
            continue;
        result.spots.insert(spot->label(), spot);
        result.firstOfEachLabel.append(spot);
    }
    return result;
}

// An absent text equals nothing, not even another absent text.
bool sameText(const QString &a, const QString &b)
{
    return !a.isNull() && !b.isNull() && a == b;
}

bool isSameMeasurement(const WifiTestResult &a, const WifiTestResult &b)
{
    return sameText(a.label(), b.label()) && sameText(a.ssid(), b.ssid()) && sameText(a.bssid(), b.bssid())
        && a.timeAfterTest() == b.timeAfterTest();
}

} // namespace

FZResultSpotsSetsComparison::FZResultSpotsSetsComparison(const FZHistoricalResultSpotsSet::Ptr &firstSet,
                                                         const FZHistoricalResultSpotsSet::Ptr &secondeSet)
    : m_firstSet(firstSet)
    , m_secondSet(secondeSet)
{
    if (!firstSet || !secondeSet)
        BMLogger::sharedInstance().logFromModule(kModule, 3, "a comparison needs two sets; the absent one counts as empty");
    setComparableData();
}

std::shared_ptr<FZResultSpotsSetsComparison> FZResultSpotsSetsComparison::comparisonWithFirstSet(
    const FZHistoricalResultSpotsSet::Ptr &firstSet, const FZHistoricalResultSpotsSet::Ptr &secondSet)
{
    return std::make_shared<FZResultSpotsSetsComparison>(firstSet, secondSet);
}

QString FZResultSpotsSetsComparison::ssid() const
{
    return m_firstSet ? m_firstSet->ssid() : QString();
}

QString FZResultSpotsSetsComparison::nameForSetIndex(qsizetype index) const
{
    const FZHistoricalResultSpotsSet::Ptr &set = index == 1 ? m_firstSet : m_secondSet;
    return set ? set->name() : QString();
}

bool FZResultSpotsSetsComparison::checkIndex(qsizetype index, const char *what) const
{
    if (index >= 0 && index < count())
        return true;
    BMLogger::sharedInstance().logFromModule(kModule, 3, "%s of row %@ asked, but there are %@ rows", what, index,
                                             count());
    return false;
}

QString FZResultSpotsSetsComparison::spotNameAtIndex(qsizetype index) const
{
    return checkIndex(index, "the spot name") ? m_firstSetComparableSpots.at(index)->label() : QString();
}

WifiTestResult::Ptr FZResultSpotsSetsComparison::firstComparableSpotAtIndex(qsizetype index) const
{
    return checkIndex(index, "the first spot") ? m_firstSetComparableSpots.at(index) : nullptr;
}

WifiTestResult::Ptr FZResultSpotsSetsComparison::secondComparableSpotAtIndex(qsizetype index) const
{
    return checkIndex(index, "the second spot") ? m_secondSetComparableSpots.at(index) : nullptr;
}

void FZResultSpotsSetsComparison::toggleSortByName()
{
    m_sortedByNameAscending = !m_sortedByNameAscending;
    setComparableData();
}

void FZResultSpotsSetsComparison::toggleExcludeIdenticalMatches()
{
    m_excludeIdenticalMatches = !m_excludeIdenticalMatches;
    setComparableData();
}

void FZResultSpotsSetsComparison::setComparableData()
{
    m_firstSetComparableSpots.clear();
    m_secondSetComparableSpots.clear();

    const SpotsByLabel first = spotsByLabel(m_firstSet);
    const SpotsByLabel second = spotsByLabel(m_secondSet);

    // Latest measurement first; only the label sort below decides the rows,
    // this order only settles labels whose numbers compare equal ("07", "7").
    WifiTestResult::List candidates = first.firstOfEachLabel;
    std::stable_sort(candidates.begin(), candidates.end(),
                     [](const WifiTestResult::Ptr &a, const WifiTestResult::Ptr &b) {
                         return a->timeAfterTest() > b->timeAfterTest();
                     });

    WifiTestResult::List firstSpots;
    WifiTestResult::List secondSpots;
    for (const WifiTestResult::Ptr &spot : candidates) {
        const WifiTestResult::Ptr match = second.spots.value(spot->label());
        if (!match)
            continue;
        if (m_excludeIdenticalMatches && isSameMeasurement(*spot, *match))
            continue;
        firstSpots.append(spot);
        secondSpots.append(match);
    }

    const bool ascending = m_sortedByNameAscending;
    const auto byLabel = [ascending](const WifiTestResult::Ptr &a, const WifiTestResult::Ptr &b) {
        return ascending ? BMNumericStringComparison::lessThan(a->label(), b->label())
                         : BMNumericStringComparison::lessThan(b->label(), a->label());
    };
    std::stable_sort(firstSpots.begin(), firstSpots.end(), byLabel);
    std::stable_sort(secondSpots.begin(), secondSpots.end(), byLabel);
    m_firstSetComparableSpots = firstSpots;
    m_secondSetComparableSpots = secondSpots;
}
