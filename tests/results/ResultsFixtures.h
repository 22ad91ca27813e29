#pragma once

// Shared by the saved-results screen tests: realistic sets, a root screen
// that takes a set back as the test screen does, and the PNG folder.

#include "model/BMWifiScanVCEditSpotsSetSetter.h"
#include "model/FZHistoricalResultSpotsSet.h"
#include "platform/foundation/Clock.h"
#include "platform/views/ViewController.h"

#include <QCoreApplication>
#include <QDateTime>
#include <QDir>

namespace ResultsFixtures {

// Seconds since 1 January 2001 of a UTC date and time, as the tester stamps spots.
inline double stamp(const QString &isoUtc)
{
    const QDateTime date = QDateTime::fromString(isoUtc, Qt::ISODate);
    return double(date.toSecsSinceEpoch()) - Brightmere::Clock::kReferenceDateUnixSeconds;
}

inline WifiTestResult::Ptr spot(const QString &label, double speed, const QString &ssid, const QString &bssid,
                                const QString &isoUtc)
{
    auto result = WifiTestResult::create(speed, stamp(isoUtc));
    result->setLabel(label);
    result->setSsid(ssid);
    result->setBssid(bssid);
    return result;
}

// Six rooms, measured one minute apart from 09:30 on 14 March 2025.
inline FZHistoricalResultSpotsSet::Ptr groundFloor()
{
    const QString ssid = QStringLiteral("HomeNet");
    const QString ap = QStringLiteral("a4:2b:b0:11:22:33");
    return FZHistoricalResultSpotsSet::create(
        QStringLiteral("Ground floor"), ssid, QDateTime(QDate(2025, 3, 14), QTime(9, 40), Qt::UTC),
        {spot("Kitchen", 48.256, ssid, ap, "2025-03-14T09:30:00Z"),
         spot("Living Room", 92.4, ssid, ap, "2025-03-14T09:31:00Z"),
         spot("Hall", 61.005, ssid, ap, "2025-03-14T09:32:00Z"),
         spot("Bedroom 2", 23.999, ssid, ap, "2025-03-14T09:33:00Z"),
         spot("Bedroom 10", 17.5, ssid, ap, "2025-03-14T09:34:00Z"),
         spot("Office", 75.126, ssid, ap, "2025-03-14T09:35:00Z")});
}

// The same house after moving the router: five rooms measured anew, the
// hall taken over unchanged from the first run.
inline FZHistoricalResultSpotsSet::Ptr afterMovingRouter()
{
    const QString ssid = QStringLiteral("HomeNet");
    const QString ap = QStringLiteral("a4:2b:b0:44:55:66");
    const FZHistoricalResultSpotsSet::Ptr first = groundFloor();
    WifiTestResult::Ptr hall = first->mutableSpots().at(2);
    return FZHistoricalResultSpotsSet::create(
        QStringLiteral("After moving router"), ssid, QDateTime(QDate(2025, 3, 15), QTime(18, 10), Qt::UTC),
        {spot("Kitchen", 71.5, ssid, ap, "2025-03-15T18:00:00Z"),
         spot("Living Room", 88.75, ssid, ap, "2025-03-15T18:01:00Z"), hall,
         spot("Bedroom 2", 55.0, ssid, ap, "2025-03-15T18:03:00Z"),
         spot("Bedroom 10", 44.444, "", ap, "2025-03-15T18:04:00Z"),
         spot("Office", 80.0, ssid, ap, "2025-03-15T18:05:00Z")});
}

// The bottom of the stack, taking a set back as the test screen does.
class RootScreen : public Brightmere::ViewController, public BMWifiScanVCEditSpotsSetSetter
{
public:
    void setSpotsSetToEdit(const FZHistoricalResultSpotsSet::Ptr &spotsSet) override { received << spotsSet; }
    QList<FZHistoricalResultSpotsSet::Ptr> received;
};

} // namespace ResultsFixtures
