// Figures of the spots-set store for 100, 1000 and 5000 stored sets of 30
// spots each, each beside the store as it was before large values had files
// of their own (kept below as a small copy: every set inline in the INI,
// decoded and archived whole on each save): saving a set, toggling a
// preference, the first listing of a session with the file's parse, and the
// sizes of the files. This way is measured at every size before the earlier
// one writes anything. Also the listing (warm), looking a set up, the
// listing's comparable marking against the pair-by-pair definition at 1000
// sets, and restoring backups of many sets of one title. One JSON line per
// figure; times are medians in milliseconds.
#include <Brightmere/model/BMSDKUISettings.h>
#include <Brightmere/model/FZHistoricalResultSpotsSet.h>
#include <Brightmere/platform/foundation/Archive.h>
#include <Brightmere/platform/foundation/UserDefaults.h>
#include <Brightmere/reports/FZSpotsSetsBackup.h>

#include <QCoreApplication>
#include <QDir>
#include <QElapsedTimer>
#include <QFile>
#include <QFileInfo>
#include <QLoggingCategory>
#include <QProcess>
#include <QRandomGenerator>
#include <QSet>
#include <QSettings>
#include <QTemporaryDir>
#include <QTextStream>

#include <algorithm>

#include <unistd.h>

using Brightmere::UserDefaults;
using Set = FZHistoricalResultSpotsSet;

namespace {

const QString kSetsKey = QString::fromLatin1(Set::kSetsDictionaryKey);
const QString kVersionKey = QString::fromLatin1(Set::kLastDataVersionKey);
const QString kToggleKey = QString::fromLatin1(BMSDKUISettings::kAlwaysDeleteSpotKey);

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

Set::Ptr makeRun(int number, QRandomGenerator &random, const QStringList &rooms, int spotCount = 30)
{
    WifiTestResult::List spots;
    for (int i = 0; i < spotCount; ++i) {
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

// The store before large values had files of their own, in a few lines:
// the sets inline in the INI file through QSettings, each save decoding the
// whole store (its cache was not refreshed by the write) and archiving every
// set again, each preference written with the whole file.
class EarlierStore
{
public:
    explicit EarlierStore(const QString &path)
        : m_path(path)
    {
    }

    static QByteArray archive(const Set::Dictionary &sets)
    {
        return Brightmere::Archive::write([&sets](QDataStream &stream) {
            stream << quint32(sets.size());
            for (auto it = sets.cbegin(); it != sets.cend(); ++it) {
                stream << it.key();
                it.value()->encode(stream);
            }
        });
    }
    void saveAll(const Set::Dictionary &sets)
    {
        QSettings settings(m_path, QSettings::IniFormat);
        settings.setValue(kSetsKey, archive(sets));
        settings.setValue(kVersionKey, Set::currentDataVersion());
        settings.sync();
    }
    void saveSpotSet(const Set::Ptr &set)
    {
        QSettings settings(m_path, QSettings::IniFormat);
        Set::Dictionary sets = *Set::unarchiveDictionary(settings.value(kSetsKey).toByteArray());
        sets.insert(set->name(), set);
        settings.setValue(kSetsKey, archive(sets));
        settings.setValue(kVersionKey, Set::currentDataVersion());
        settings.sync();
    }
    void toggle(bool value)
    {
        QSettings settings(m_path, QSettings::IniFormat);
        settings.setValue(kToggleKey, value);
        settings.sync();
    }
    // A session's first listing: the file parsed, every set decoded, newest first.
    static qsizetype firstListing(const QString &copy)
    {
        QSettings settings(copy, QSettings::IniFormat);
        Set::List sets = Set::unarchiveDictionary(settings.value(kSetsKey).toByteArray())->values();
        std::stable_sort(sets.begin(), sets.end(), [](const Set::Ptr &a, const Set::Ptr &b) { return b->date() < a->date(); });
        return sets.size();
    }
    QString path() const { return m_path; }

private:
    QString m_path;
};

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

// The earlier restore's naming of a backup's sets, in memory: each set walks
// "Title", "Title (2)"... from the start, comparing content at each step.
int earlierNaming(Set::Dictionary store, const Set::List &sets)
{
    int added = 0;
    for (const Set::Ptr &set : sets) {
        const QString title = set->name();
        QString candidate = title;
        bool stored = false;
        int n = 1;
        while (store.contains(candidate)) {
            if (FZSpotsSetsBackup::hasSameContent(*store.value(candidate), *set)) {
                stored = true;
                break;
            }
            candidate = QStringLiteral("%1 (%2)").arg(title).arg(++n);
        }
        if (!stored) {
            store.insert(candidate, set);
            ++added;
        }
    }
    return added;
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

QString ratio(double before, double after)
{
    return QString::number(before / after, 'f', 1);
}

QString verdict(bool met)
{
    return met ? QStringLiteral("true") : QStringLiteral("false");
}

// A session's first listing, run in a child process of this program.
const QString kFirstListing = QStringLiteral("--first-listing");
const QString kEarlierFirstListing = QStringLiteral("--earlier-first-listing");

double inNewSession(const QString &what, const QString &file)
{
    QProcess child;
    child.start(QCoreApplication::applicationFilePath(), {what, file});
    if (!child.waitForFinished(120000) || child.exitCode() != 0)
        return qQNaN();
    return child.readAllStandardOutput().trimmed().toDouble();
}

int firstListingOfSession(const QString &what, const QString &file)
{
    QElapsedTimer timer;
    timer.start();
    qsizetype listed = 0;
    if (what == kFirstListing) {
        UserDefaults::setStandardFilePath(file);
        listed = Set::allSpotsSets().size();
    } else {
        listed = EarlierStore::firstListing(file);
    }
    QTextStream(stdout) << ms(double(timer.nsecsElapsed()) / 1e6) << '\n';
    return listed > 0 ? 0 : 1;
}

qint64 folderBytes(const QString &folder)
{
    qint64 bytes = 0;
    for (const QFileInfo &info : QDir(folder).entryInfoList(QDir::Files | QDir::Hidden))
        bytes += info.size();
    return bytes;
}

} // namespace

// What one way of storing measured at one size.
struct Figures
{
    double saving = 0;
    double toggling = 0;
    double firstListing = 0;
    qint64 defaultsBytes = 0;
    qint64 valueBytes = 0;
};

// The first listing of a session for `runs` fresh copies of a store.
template<typename Copy>
double firstListings(int runs, const QString &what, Copy &&copy)
{
    QList<double> times;
    for (int i = 0; i < runs; ++i)
        times.append(inNewSession(what, copy(i)));
    std::sort(times.begin(), times.end());
    return times.at(runs / 2);
}

int main(int argc, char *argv[])
{
    QCoreApplication app(argc, argv);
    QLoggingCategory::setFilterRules(QStringLiteral("brightmere.*=false"));
    if (argc == 3)
        return firstListingOfSession(QString::fromLocal8Bit(argv[1]), QString::fromLocal8Bit(argv[2]));
    const QStringList rooms = roomNames();
    const QList<int> counts{100, 1000, 5000};
    const auto runsFor = [](int count) { return count >= 5000 ? 3 : 7; };

    // The same sets and the same changed ones for both ways.
    QMap<int, Set::Dictionary> stores;
    QMap<int, Set::List> changes;
    for (int count : counts) {
        QRandomGenerator random{quint32(count)};
        for (int number = 0; number < count; ++number)
            stores[count].insert(QStringLiteral("Run %1").arg(number), makeRun(number, random, rooms));
        for (int i = 0; i < 7; ++i)
            changes[count].append(makeRun(i * 7 % count, random, rooms));
    }

    // This way first, at every size: the earlier way writes hundreds of
    // megabytes, after which a virtual disk may flush slowly for a while.
    QMap<int, Figures> figures;
    QStringList lines;
    const QString head = QStringLiteral(R"({"bench":"%1","sets":%2,"spots_per_set":30,)");
    for (int count : counts) {
        QTemporaryDir dir;
        const QString file = dir.filePath(QStringLiteral("defaults.ini"));
        UserDefaults::setStandardFilePath(file);
        Set::saveAllSpotsSetDicitionary(stores[count]);
        const int runs = runsFor(count);
        Figures &f = figures[count];
        ::sync();
        f.saving = medianMs(7, [&](int i) { Set::saveSpotSet(changes[count].at(i)); });
        BMSDKUISettings &settings = BMSDKUISettings::sharedInstance();
        f.toggling = medianMs(runs * 3, [&](int i) { settings.setAlwaysDeleteRecording(i % 2 == 0); });
        // In a process of its own (this one holds the sets decoded): the
        // parse of the INI, the read of the value file and every set decoded.
        f.firstListing = firstListings(runs, kFirstListing, [&](int i) {
            const QString copy = dir.filePath(QStringLiteral("copy%1.ini").arg(i));
            UserDefaults::copyFile(file, copy);
            return copy;
        });
        f.defaultsBytes = QFileInfo(file).size();
        f.valueBytes = folderBytes(UserDefaults::valuesFolderPath(file));

        qsizetype listed = 0;
        const double listing = medianMs(runs, [&](int) { listed = Set::allSpotsSets().size(); });
        const double lookup = medianMs(runs, [&](int i) { (void)Set::spotsSetWithName(QStringLiteral("Run %1").arg(i * 13 % count)); });
        lines.append(head.arg("allSpotsSets").arg(count) + QStringLiteral(R"("runs":%1,"ms_per_op":%2,"listed":%3})").arg(runs).arg(ms(listing)).arg(listed));
        lines.append(head.arg("spotsSetWithName").arg(count) + QStringLiteral(R"("runs":%1,"ms_per_op":%2})").arg(runs).arg(ms(lookup)));
        if (count == 1000) {
            bool same = true;
            const Set::List indexed = Set::allSpotsSets();
            QList<bool> flags;
            for (const Set::Ptr &set : indexed)
                flags.append(set->isComparable());
            const double pairwise = medianMs(3, [&](int) {
                const Set::List sets = pairwiseListing();
                for (qsizetype i = 0; i < sets.size(); ++i)
                    same = same && sets.at(i)->isComparable() == flags.at(i) && sets.at(i)->name() == indexed.at(i)->name();
            });
            lines.append(QStringLiteral(R"({"bench":"allSpotsSets_vs_pairwise","sets":1000,"spots_per_set":30,"label_index_ms":%1,"pairwise_ms":%2,"speedup":%3,"same_marks":%4})")
                             .arg(ms(listing), ms(pairwise), ratio(pairwise, listing), verdict(same)));
        }
    }

    // Restoring a backup of many sets of one title (two spots each, each set
    // different) into an empty store; the earlier naming beside it where it
    // still ends in reasonable time.
    for (int count : {2000, 20000}) {
        QTemporaryDir dir;
        UserDefaults::setStandardFilePath(dir.filePath(QStringLiteral("defaults.ini")));
        QRandomGenerator random{quint32(count)};
        Set::List sets;
        Set::Dictionary keyed;
        for (int i = 0; i < count; ++i) {
            Set::Ptr set = makeRun(i, random, {QStringLiteral("Kitchen"), QStringLiteral("Hall")}, 2);
            set->setName(QStringLiteral("Home"));
            sets.append(set);
            keyed.insert(QString::number(i), set);
        }
        // A backup with every set under the one title.
        const QByteArray json = FZSpotsSetsBackup::backupJson(keyed).replace(QByteArrayLiteral("\"title\": \""),
                                                                            QByteArrayLiteral("\"title\": \"Home\", \"x\": \""));
        qsizetype added = 0;
        const double restore = medianMs(3, [&](int) {
            Set::deleteAllSpotsSets();
            added = FZSpotsSetsBackup::restoreBackupJson(json).addedTitles().size();
        });
        QString line = QStringLiteral(R"({"bench":"restore_one_title","sets":%1,"spots_per_set":2,"runs":3,"ms_per_op":%2,"added":%3)")
                           .arg(count)
                           .arg(ms(restore))
                           .arg(added);
        if (count <= 2000) {
            const double naming = medianMs(1, [&](int) { (void)earlierNaming({}, sets); });
            line += QStringLiteral(R"(,"earlier_naming_alone_ms":%1,"ratio":%2)").arg(ms(naming), ratio(naming, restore));
        } else {
            line += QStringLiteral(R"(,"target_under_2s":%1)").arg(verdict(restore < 2000.0));
        }
        lines.append(line + u'}');
    }

    // Then the earlier way, and each figure beside the other.
    for (int count : counts) {
        QTemporaryDir dir;
        EarlierStore earlier(dir.filePath(QStringLiteral("earlier.ini")));
        earlier.saveAll(stores[count]);
        const int runs = runsFor(count);
        Figures e;
        ::sync();
        e.saving = medianMs(runs, [&](int i) { earlier.saveSpotSet(changes[count].at(i)); });
        e.toggling = medianMs(runs * 3, [&](int i) { earlier.toggle(i % 2 == 0); });
        e.firstListing = firstListings(runs, kEarlierFirstListing, [&](int i) {
            const QString copy = dir.filePath(QStringLiteral("copy%1.ini").arg(i));
            QFile::copy(earlier.path(), copy);
            return copy;
        });
        e.defaultsBytes = QFileInfo(earlier.path()).size();
        e.valueBytes = EarlierStore::archive(stores[count]).size();

        const Figures &f = figures[count];
        const QString compared = QStringLiteral(R"("runs":%1,"ms_per_op":%2,"earlier_ms_per_op":%3,"ratio":%4)");
        print(head.arg("saveSpotSet").arg(count) + compared.arg(7).arg(ms(f.saving), ms(e.saving), ratio(e.saving, f.saving))
              + (count == 1000 ? QStringLiteral(R"(,"target_20ms":%1})").arg(verdict(f.saving <= 20.0))
                 : count == 5000 ? QStringLiteral(R"(,"target_under_80ms":%1})").arg(verdict(f.saving < 80.0))
                                 : QStringLiteral("}")));
        print(head.arg("toggle_preference").arg(count)
              + compared.arg(runs * 3).arg(ms(f.toggling), ms(e.toggling), ratio(e.toggling, f.toggling))
              + QStringLiteral(R"(,"target_5ms":%1})").arg(verdict(f.toggling <= 5.0)));
        print(head.arg("allSpotsSets_first_of_session").arg(count)
              + compared.arg(runs).arg(ms(f.firstListing), ms(e.firstListing), ratio(e.firstListing, f.firstListing))
              + (count == 1000 ? QStringLiteral(R"(,"target_under_100ms":%1})").arg(verdict(f.firstListing < 100.0))
                               : QStringLiteral("}")));
        print(head.arg("stored_files").arg(count)
              + QStringLiteral(R"("defaults_file_bytes":%1,"value_files_bytes":%2,"earlier_defaults_file_bytes":%3,"earlier_blob_bytes":%4})")
                    .arg(f.defaultsBytes)
                    .arg(f.valueBytes)
                    .arg(e.defaultsBytes)
                    .arg(e.valueBytes));
    }
    for (const QString &line : std::as_const(lines))
        print(line);
    return 0;
}
