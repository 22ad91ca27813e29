// Figures of the spots-set store for 100, 1000 and 5000 stored sets of 30
// spots each: listing (again, and first in a session), saving, looking one
// up, the stored size, and at 1000 sets the listing against the same listing
// marked pair by pair, in the same run. One JSON line per figure; times are
// medians in milliseconds.
#include "model/FZHistoricalResultSpotsSet.h"
#include "platform/foundation/UserDefaults.h"

#include <QCoreApplication>
#include <QElapsedTimer>
#include <QFile>
#include <QFileInfo>
#include <QRandomGenerator>
#include <QSet>
#include <QTemporaryDir>
#include <QTextStream>

#include <algorithm>

using Set = FZHistoricalResultSpotsSet;

namespace {

QStringList roomNames()
{
    QStringList rooms{"Living Room", "Kitchen", "Dining Room", "Garage", "Hall", "Attic", "Office", "Cellar",
                      "Laundry", "Porch", "Garden", "Study", "Nursery", "Pantry", "Landing", "Loft"};
    for (int n = 1; rooms.size() < 40; ++n) {
        rooms.append(QStringLiteral("Bedroom %1").arg(n));
        rooms.append(QStringLiteral("Bathroom %1").arg(n));
    }
    return rooms;
}

Set::Ptr makeRun(int number, QRandomGenerator &random, const QStringList &rooms)
{
    WifiTestResult::List spots;
    for (int i = 0; i < 30; ++i) {
        auto spot = WifiTestResult::create(5.0 + random.bounded(295.0), 700000000.0 + number * 100 + i);
        spot->setLabel(rooms.at(random.bounded(int(rooms.size()))));
        spot->setSsid(QStringLiteral("HomeNet"));
        spot->setBssid(QStringLiteral("a4:2b:b0:5c:17:e2"));
        spot->setDuration(random.bounded(10.0));
        spot->setAverage(true);
        spots.append(spot);
    }
    return Set::create(QStringLiteral("Run %1").arg(number), QStringLiteral("HomeNet"),
                       QDateTime::fromSecsSinceEpoch(1700000000 + number * 3600, Qt::UTC), spots);
}

// The same listing, marked by its definition: every set against every other.
Set::List pairwiseListing()
{
    Set::List sets = Set::allSpotsSetsDictionary().values();
    std::stable_sort(sets.begin(), sets.end(), [](const Set::Ptr &a, const Set::Ptr &b) { return b->date() < a->date(); });
    QSet<Set> marked;
    for (const Set::Ptr &target : sets) {
        QSet<QString> labels;
        for (const auto &spot : target->mutableSpots())
            labels.insert(spot->label());
        for (const Set::Ptr &candidate : sets) {
            if (*candidate == *target)
                continue;
            const auto &spots = candidate->mutableSpots();
            if (std::any_of(spots.cbegin(), spots.cend(), [&labels](const auto &spot) { return labels.contains(spot->label()); }))
                marked.insert(*candidate);
        }
    }
    for (const Set::Ptr &set : sets)
        set->setComparable(marked.contains(*set));
    return sets;
}

// Median milliseconds of `runs` calls.
template<typename F>
double medianMs(int runs, F &&work)
{
    QList<double> times;
    for (int i = 0; i < runs; ++i) {
        QElapsedTimer timer;
        timer.start();
        work(i);
        times.append(double(timer.nsecsElapsed()) / 1e6);
    }
    std::sort(times.begin(), times.end());
    return times.at(times.size() / 2);
}

void print(const QString &json)
{
    QTextStream(stdout) << json << '\n';
}

QString ms(double value)
{
    return QString::number(value, 'f', 3);
}

} // namespace

int main(int argc, char *argv[])
{
    QCoreApplication app(argc, argv);
    const QStringList rooms = roomNames();

    for (int count : {100, 1000, 5000}) {
        QTemporaryDir dir;
        const QString file = dir.filePath(QStringLiteral("defaults.ini"));
        Brightmere::UserDefaults::setStandardFilePath(file);
        QRandomGenerator random{quint32(count)};
        Set::Dictionary store;
        for (int number = 0; number < count; ++number)
            store.insert(QStringLiteral("Run %1").arg(number), makeRun(number, random, rooms));
        Set::saveAllSpotsSetDicitionary(store);
        const int runs = count >= 5000 ? 3 : 7;

        qsizetype listed = 0;
        const double listing = medianMs(runs, [&](int) { listed = Set::allSpotsSets().size(); });
        // The first listing of a session: every set is decoded (a fresh copy
        // of the file opens a fresh store). QSettings parses the file at the
        // first access to it; that is timed on its own.
        int copies = 0;
        QList<double> parses;
        const auto firstRead = [&](const auto &list) {
            QList<double> times;
            for (int i = 0; i < runs; ++i) {
                const QString copy = dir.filePath(QStringLiteral("copy%1.ini").arg(++copies));
                QFile::copy(file, copy);
                Brightmere::UserDefaults::setStandardFilePath(copy);
                parses.append(medianMs(1, [](int) {
                    (void)Brightmere::UserDefaults::standard().contains(QString::fromLatin1(Set::kLastDataVersionKey));
                }));
                times.append(medianMs(1, [&](int) { list(); }));
            }
            std::sort(times.begin(), times.end());
            Brightmere::UserDefaults::setStandardFilePath(file);
            return times.at(times.size() / 2);
        };
        const double coldListing = firstRead([] { (void)Set::allSpotsSets(); });
        const double saving = medianMs(runs, [&](int i) { Set::saveSpotSet(makeRun(i * 7 % count, random, rooms)); });
        (void)Set::allSpotsSets();
        const double lookup = medianMs(runs, [&](int i) { (void)Set::spotsSetWithName(QStringLiteral("Run %1").arg(i * 13 % count)); });
        const double coldLookup = firstRead([count] { (void)Set::spotsSetWithName(QStringLiteral("Run %1").arg(count / 2)); });
        const qsizetype blob = Brightmere::UserDefaults::standard().dataForKey(QString::fromLatin1(Set::kSetsDictionaryKey)).size();

        const QString head = QStringLiteral(R"({"bench":"%1","sets":%2,"spots_per_set":30,)");
        print(head.arg("allSpotsSets").arg(count) + QStringLiteral(R"("runs":%1,"ms_per_op":%2,"listed":%3})").arg(runs).arg(ms(listing)).arg(listed));
        print(head.arg("allSpotsSets_first_read").arg(count) + QStringLiteral(R"("runs":%1,"ms_per_op":%2})").arg(runs).arg(ms(coldListing)));
        std::sort(parses.begin(), parses.end());
        print(head.arg("defaults_file_parse").arg(count) + QStringLiteral(R"("runs":%1,"ms_per_op":%2})").arg(runs).arg(ms(parses.at(parses.size() / 2))));
        print(head.arg("saveSpotSet").arg(count) + QStringLiteral(R"("runs":%1,"ms_per_op":%2})").arg(runs).arg(ms(saving)));
        print(head.arg("spotsSetWithName").arg(count) + QStringLiteral(R"("runs":%1,"ms_per_op":%2})").arg(runs).arg(ms(lookup)));
        print(head.arg("spotsSetWithName_first_read").arg(count) + QStringLiteral(R"("runs":%1,"ms_per_op":%2})").arg(runs).arg(ms(coldLookup)));
        print(head.arg("stored_blob").arg(count)
              + QStringLiteral(R"("blob_bytes":%1,"defaults_file_bytes":%2})").arg(blob).arg(QFileInfo(file).size()));

        if (count == 1000) {
            bool same = true;
            const Set::List indexed = Set::allSpotsSets();
            const double warm = medianMs(runs, [&](int) { (void)Set::allSpotsSets(); });
            QList<bool> flags;
            for (const Set::Ptr &set : indexed)
                flags.append(set->isComparable());
            const auto pairwiseChecked = [&] {
                const Set::List sets = pairwiseListing();
                for (qsizetype i = 0; i < sets.size(); ++i)
                    same = same && sets.at(i)->isComparable() == flags.at(i) && sets.at(i)->name() == indexed.at(i)->name();
            };
            const double pairwise = medianMs(3, [&](int) { pairwiseChecked(); });
            const double coldPairwise = firstRead(pairwiseChecked);
            const auto verdict = [](bool met) { return met ? QStringLiteral("true") : QStringLiteral("false"); };
            print(QStringLiteral(R"({"bench":"allSpotsSets_vs_pairwise","sets":1000,"spots_per_set":30,"label_index_ms":%1,"pairwise_ms":%2,"speedup":%3,"first_read_label_index_ms":%4,"first_read_pairwise_ms":%5,"first_read_speedup":%6,"same_marks":%7,"target_under_100ms":%8,"target_20x":%9})")
                      .arg(ms(warm), ms(pairwise), QString::number(pairwise / warm, 'f', 1), ms(coldListing), ms(coldPairwise),
                           QString::number(coldPairwise / coldListing, 'f', 1), verdict(same),
                           verdict(warm < 100.0 && coldListing < 100.0), verdict(pairwise / warm >= 20.0)));
        }
    }
    return 0;
}
