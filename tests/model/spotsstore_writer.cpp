// Saves spots sets in a loop into the defaults file named on the command
// line, after a first store of <seed> sets, and prints "saved <number of
// sets>" once each save is on disk. The crash-safety test kills it mid-loop.
#include "model/FZHistoricalResultSpotsSet.h"
#include "platform/foundation/UserDefaults.h"

#include <QCoreApplication>
#include <QTextStream>

namespace {

FZHistoricalResultSpotsSet::Ptr makeRun(int number)
{
    WifiTestResult::List spots;
    for (int i = 0; i < 30; ++i) {
        auto spot = WifiTestResult::create(10.0 + (number * 7 + i) % 90, 700000000.0 + number * 100 + i);
        spot->setLabel(QStringLiteral("Room %1").arg((number + i) % 40));
        spot->setSsid(QStringLiteral("HomeNet"));
        spot->setBssid(QStringLiteral("a4:2b:b0:5c:17:e2"));
        spots.append(spot);
    }
    return FZHistoricalResultSpotsSet::create(QStringLiteral("Run %1").arg(number), QStringLiteral("HomeNet"),
                                              QDateTime::fromSecsSinceEpoch(1700000000 + number, Qt::UTC), spots);
}

} // namespace

int main(int argc, char *argv[])
{
    QCoreApplication app(argc, argv);
    const QStringList arguments = app.arguments();
    if (arguments.size() < 3) {
        QTextStream(stderr) << "usage: spotsstore_writer <defaults file> <seed sets>\n";
        return 2;
    }
    Brightmere::UserDefaults::setStandardFilePath(arguments.at(1));
    const int seed = arguments.at(2).toInt();

    FZHistoricalResultSpotsSet::Dictionary store;
    for (int number = 0; number < seed; ++number)
        store.insert(QStringLiteral("Run %1").arg(number), makeRun(number));
    if (!FZHistoricalResultSpotsSet::saveAllSpotsSetDicitionary(store))
        return 1;
    QTextStream out(stdout);
    out << "saved " << seed << Qt::endl;
    // Bounded, so a writer whose test went away does not run on.
    for (int number = seed; number < seed + 10000; ++number) {
        if (!FZHistoricalResultSpotsSet::saveSpotSet(makeRun(number)))
            return 1;
        out << "saved " << number + 1 << Qt::endl;
    }
    return 0;
}
