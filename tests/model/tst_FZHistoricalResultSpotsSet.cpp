// The results model: the saved sets' store, the natural order of names, the
// comparison of two sets and the kit's settings. A recording's running
// figures are checked where the test screen shows them (tst_BMWifiScanVC).
#include <Brightmere/model/FZHistoricalResultSpotsSet.h>

#include "LogCapture.h"
#include "TestEnvironment.h"
#include <Brightmere/core/BMSDKBackend.h>
#include <Brightmere/model/BMNumericStringComparison.h>
#include <Brightmere/model/BMSDKUISettings.h>
#include <Brightmere/model/FZResultSpotsSetsComparison.h>
#include <Brightmere/platform/foundation/ManualClock.h>
#include <Brightmere/platform/foundation/UserDefaults.h>

#include <QSettings>
#include <QtTest>

#include <sys/wait.h>
#include <unistd.h>

using Brightmere::UserDefaults;
using Set = FZHistoricalResultSpotsSet;
using Comparison = FZResultSpotsSetsComparison;

namespace {

const QString kSetsKey = QString::fromLatin1(Set::kSetsDictionaryKey);
const QString kVersionKey = QString::fromLatin1(Set::kLastDataVersionKey);
constexpr double kNow = 760000000.0; // 2025-01-31T07:06:40 UTC
const QString kSavedSpotsKey = QString::fromLatin1(BMSDKUISettings::kSavedSpotsKey);
const QString kMergedKey = QString::fromLatin1(BMSDKUISettings::kPresetSpotsAlreadySavedKey);
const QStringList kPresets{"Living Room", "Kitchen", "Dining Room", "Bedroom 1", "Bedroom 2", "Bathroom 1", "Bathroom 2", "Garage"};

QDateTime day(int n)
{
    return QDateTime(QDate(2024, 3, 1), QTime(9, 30, 15, 250), Qt::UTC).addDays(n);
}

WifiTestResult::Ptr spot(const QString &label, double time)
{
    auto result = WifiTestResult::create(20.0 + time, time);
    result->setLabel(label);
    result->setSsid(QStringLiteral("HomeNet"));
    result->setBssid(QStringLiteral("a4:2b:b0:5c:17:e2"));
    return result;
}

Set::Ptr makeSet(const QString &name, const QStringList &labels, int dayOffset = 0, const QString &ssid = "HomeNet")
{
    WifiTestResult::List spots;
    for (const QString &label : labels)
        spots.append(spot(label, 1000.0 + spots.size()));
    return Set::create(name, ssid, day(dayOffset), spots);
}

QStringList namesOf(const Set::List &sets)
{
    QStringList names;
    for (const Set::Ptr &set : sets)
        names.append(set->name() + (set->isComparable() ? "*" : ""));
    return names;
}

// The store as a program started afresh reads it: from a copy of the files.
Set::Dictionary readAfresh(const QString &copy)
{
    const QString current = UserDefaults::standard().filePath();
    if (!UserDefaults::copyFile(current, copy))
        return {};
    UserDefaults::setStandardFilePath(copy);
    const Set::Dictionary sets = Set::allSpotsSetsDictionary();
    UserDefaults::setStandardFilePath(current);
    return sets;
}

QStringList backupKeys()
{
    return UserDefaults::standard().allKeys().filter(QRegularExpression(QStringLiteral("^kSetsDictionaryKey\\.backup\\.")));
}

// A set for the comparison, each spot as "label@timeAfterTest", with "@bssid" where it matters ("-": absent).
Set::Ptr pairSet(const QString &name, const QStringList &spots)
{
    WifiTestResult::List results;
    for (const QString &text : spots) {
        const QStringList parts = text.split(u'@');
        auto spot = WifiTestResult::create(1.0, parts.at(1).toDouble());
        spot->setLabel(parts.at(0));
        spot->setSsid(QStringLiteral("HomeNet"));
        const QString bssid = parts.value(2, QStringLiteral("a4:2b:b0:5c:17:e2"));
        spot->setBssid(bssid == u'-' ? QString() : bssid.isEmpty() ? QStringLiteral("") : bssid);
        results.append(spot);
    }
    return Set::create(name, QStringLiteral("Net of ") + name, QDateTime::currentDateTimeUtc(), results);
}

QStringList rows(const WifiTestResult::List &spots)
{
    QStringList texts;
    for (const auto &spot : spots)
        texts.append(spot->label() + u'@' + QString::number(spot->timeAfterTest()));
    return texts;
}


} // namespace

class tst_FZHistoricalResultSpotsSet : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init()
    {
        m_env = std::make_unique<TestEnvironment>();
        m_clock.setNow(kNow);
        BMSDKBackend::setClock(&m_clock);
    }
    void cleanup() { m_env.reset(); }

    void roundTripThroughNewDefaults_data()
    {
        QTest::addColumn<Set::Ptr>("set");
        auto full = makeSet(QStringLiteral("Home"), {"Kitchen", "Spot 2", "Kitchen"});
        full->setDate(QDateTime(QDate(2024, 7, 1), QTime(23, 59, 59, 999), QTimeZone(7200)));
        full->mutableSpots().first()->setCoordinate(BMLocationCoordinate2D{40.4168, -3.7038});
        full->mutableSpots().first()->setAverage(true);
        QTest::newRow("spots keep order and fields, a local date its instant") << full;
        QTest::newRow("no spots, non-ASCII title, absent SSID")
            << Set::create(QStringLiteral("Casa \u00d1and\u00fa \U0001F3E0"), QString(), day(3), {});
    }
    void roundTripThroughNewDefaults()
    {
        QFETCH(Set::Ptr, set);
        set->toggleSorting();
        set->setComparable(true);
        QVERIFY(Set::saveSpotSet(set));
        // Opened afresh: only what reached the disk counts.
        const Set::Ptr read = readAfresh(m_env->filePath(QStringLiteral("copy.ini"))).value(set->name());
        QVERIFY(read && read != set);
        QCOMPARE(read->name(), set->name());
        QCOMPARE(read->ssid().isNull(), set->ssid().isNull());
        QCOMPARE(read->ssid(), set->ssid());
        QCOMPARE(read->date().toMSecsSinceEpoch(), set->date().toMSecsSinceEpoch());
        QCOMPARE(read->isSortedAscending(), 0);
        QVERIFY(!read->isComparable());
        QCOMPARE(read->spotsCount(), set->spotsCount());
        for (qsizetype i = 0; i < set->spotsCount(); ++i)
            QVERIFY2(read->spots().at(i)->hasSameValues(*set->spots().at(i)), qPrintable(QString::number(i)));
    }

    void storeWrittenInlineMovesWithEverySet()
    {
        // Written by the kit before large values had files of their own.
        const QString fixture = QStringLiteral(BRIGHTMERE_MODEL_DATA_DIR "/defaults-with-inline-sets.ini");
        QSettings earlier(fixture, QSettings::IniFormat);
        const QByteArray inline_ = earlier.value(kSetsKey).toByteArray();
        const QString backupKey = QStringLiteral("kSetsDictionaryKey.backup.20250301T083000");
        const QByteArray backup = earlier.value(backupKey).toByteArray();
        const std::optional<Set::Dictionary> expected = Set::unarchiveDictionary(inline_);
        QVERIFY(expected && expected->size() == 6);

        const QString path = m_env->filePath(QStringLiteral("upgraded.ini"));
        QVERIFY(QFile::copy(fixture, path));
        UserDefaults::setStandardFilePath(path);
        QVERIFY(QFileInfo(path).size() < UserDefaults::kLargeValueBytes);
        QCOMPARE(QDir(UserDefaults::valuesFolderPath(path)).entryList(QDir::Files).size(), 2);
        QCOMPARE(UserDefaults::standard().dataForKey(kSetsKey), inline_);
        QCOMPARE(UserDefaults::standard().dataForKey(backupKey), backup);
        QVERIFY(UserDefaults::standard().boolForKey(QStringLiteral("kAlwaysDeleteSpotKey")));
        QCOMPARE(UserDefaults::standard().stringArrayForKey(QStringLiteral("kSavedSpotsKey")), (QStringList{"Kitchen", "Hall", "Garage"}));
        QCOMPARE(Set::archiveDictionary(Set::allSpotsSetsDictionary()), Set::archiveDictionary(*expected));

        // The first save writes this version's format, every set still intact.
        QVERIFY(Set::saveSpotSet(makeSet(QStringLiteral("After the upgrade"), {QStringLiteral("Hall")})));
        Set::Dictionary after = readAfresh(m_env->filePath(QStringLiteral("reader.ini")));
        QVERIFY(after.remove(QStringLiteral("After the upgrade")));
        QCOMPARE(Set::archiveDictionary(after), Set::archiveDictionary(*expected));
        QVERIFY(backupKeys().contains(backupKey));
    }

    void failedWriteIsNotASave_data()
    {
        // Tests run as root, for whom no permission fails: a regular file where
        // a folder must be, or a folder where the file must be, does.
        QTest::addColumn<QString>("store"); // in the test's folder
        QTest::addColumn<QString>("blocked"); // empty: the store's values folder
        QTest::addColumn<bool>("byFolder");
        QTest::newRow("the values folder is a file") << "defaults.ini" << "" << false;
        QTest::newRow("the store's folder is a file") << "box/defaults.ini" << "box" << false;
        QTest::newRow("the INI is a folder") << "defaults.ini" << "defaults.ini" << true;
    }
    void failedWriteIsNotASave()
    {
        QFETCH(bool, byFolder);
        const QString path = m_env->filePath(fetched<QString>("store"));
        QVERIFY(QDir().mkpath(QFileInfo(path).absolutePath()));
        UserDefaults::setStandardFilePath(path);
        QStringList labels; // enough for the store to need a file of its own
        for (int i = 0; i < 60; ++i)
            labels.append(QStringLiteral("Room %1").arg(i));
        QVERIFY(Set::saveSpotSet(makeSet(QStringLiteral("Home"), labels, 1)));
        QVERIFY(Set::saveSpotSet(makeSet(QStringLiteral("Office"), labels, 2)));
        const QString block = fetched<QString>("blocked").isEmpty() ? UserDefaults::valuesFolderPath(path)
                                                                    : m_env->filePath(fetched<QString>("blocked"));
        // Moved aside, not deleted: what the disk held comes back with it.
        QVERIFY(QDir().rename(block, block + ".away"));
        QVERIFY(byFolder ? QDir().mkpath(block) : QFile(block).open(QIODevice::WriteOnly));
        QVERIFY(!Set::saveSetWithName(QStringLiteral("Garage"), QStringLiteral("HomeNet"), day(3), {spot("Car", 1)}));
        QVERIFY(!Set::spotsSetWithName(QStringLiteral("Garage")));
        QVERIFY(!Set::deleteSpotsSet(makeSet(QStringLiteral("Home"), {})));
        QCOMPARE(namesOf(Set::allSpotsSets()), (QStringList{"Office*", "Home*"}));
        // The user's retry, once the disk takes writes again.
        QVERIFY(byFolder ? QDir(block).removeRecursively() : QFile::remove(block));
        QVERIFY(QDir().rename(block + ".away", block));
        QVERIFY(Set::saveSetWithName(QStringLiteral("Garage"), QStringLiteral("HomeNet"), day(3), {spot("Car", 1)}));
        QCOMPARE(readAfresh(m_env->filePath(QStringLiteral("copy.ini"))).keys(), (QStringList{"Garage", "Home", "Office"}));
    }

    void twoProcessesShareTheStore_data()
    {
        // What another copy of the app does to the store after this one read it.
        QTest::addColumn<QStringList>("otherSaves");
        QTest::addColumn<QStringList>("otherDeletes");
        QTest::addColumn<bool>("atTheSameTime");
        QTest::addColumn<QStringList>("expected");
        QStringList many;
        for (int i = 0; i < 12; ++i)
            many.append(QStringLiteral("Other %1").arg(i, 2, 10, QLatin1Char('0')));
        QTest::newRow("deletes one before this one saves") << QStringList{} << QStringList{"Kept"} << false << QStringList{"Ours 00"};
        QTest::newRow("saves many while this one saves many") << many << QStringList{} << true << QStringList{"Kept"} + many;
    }
    void twoProcessesShareTheStore()
    {
        QFETCH(QStringList, otherSaves);
        QFETCH(QStringList, otherDeletes);
        QFETCH(bool, atTheSameTime);
        QFETCH(QStringList, expected);
        QVERIFY(Set::saveSpotSet(makeSet(QStringLiteral("Kept"), {QStringLiteral("Hall")})));
        QCOMPARE(Set::allSpotsSets().size(), 1); // this copy has read the store
        const int ours = atTheSameTime ? int(otherSaves.size()) : 1;
        const pid_t other = ::fork();
        QVERIFY(other >= 0);
        if (other == 0) {
            bool ok = true;
            for (const QString &title : otherSaves)
                ok = Set::saveSpotSet(makeSet(title, {QStringLiteral("Hall")})) && ok;
            for (const QString &title : otherDeletes)
                ok = Set::deleteSpotsSet(makeSet(title, {})) && ok;
            ::_exit(ok ? 0 : 1);
        }
        int status = 0;
        if (!atTheSameTime)
            QCOMPARE(::waitpid(other, &status, 0), other);
        for (int i = 0; i < ours; ++i) {
            expected.append(QStringLiteral("Ours %1").arg(i, 2, 10, QLatin1Char('0')));
            QVERIFY(Set::saveSpotSet(makeSet(expected.last(), {})));
        }
        if (atTheSameTime)
            QCOMPARE(::waitpid(other, &status, 0), other);
        QVERIFY(WIFEXITED(status) && WEXITSTATUS(status) == 0);
        expected.removeDuplicates();
        expected.sort();
        QCOMPARE(readAfresh(m_env->filePath(QStringLiteral("copy.ini"))).keys(), expected);
    }

    void versionRecord_data()
    {
        QTest::addColumn<bool>("setsStored");
        QTest::addColumn<QString>("version"); // null: no version record
        QTest::addColumn<int>("expectedCount");
        QTest::newRow("empty database") << false << QString() << 0;
        QTest::newRow("sets without a version are set aside") << true << QString() << 0;
        QTest::newRow("version without sets") << false << QStringLiteral("0.9.3") << 0;
        QTest::newRow("any older version is read as it is") << true << QStringLiteral("0.1.7") << 2;
        QTest::newRow("an empty version text still counts") << true << QStringLiteral("") << 2;
    }
    void versionRecord()
    {
        QFETCH(bool, setsStored);
        QFETCH(QString, version);
        QFETCH(int, expectedCount);
        UserDefaults &defaults = UserDefaults::standard();
        const QByteArray blob = Set::archiveDictionary({{"A", makeSet("A", {"Hall"})}, {"B", makeSet("B", {})}});
        if (setsStored)
            defaults.setObject(blob, kSetsKey);
        if (!version.isNull())
            defaults.setObject(version, kVersionKey);
        QCOMPARE(Set::allSpotsSets().size(), expectedCount);
        const bool setAside = setsStored && version.isNull();
        QCOMPARE(backupKeys().size(), setAside ? 1 : 0);
        if (setAside)
            QCOMPARE(defaults.dataForKey(backupKeys().first()), blob);
        // Whatever was found, a readable store and a version record are there now.
        QVERIFY(Set::unarchiveDictionary(defaults.dataForKey(kSetsKey)).has_value());
        QCOMPARE(*Set::savedDataVersion(), expectedCount ? version : Set::currentDataVersion());
    }

    void unreadableStoreIsSetAside_data()
    {
        QTest::addColumn<QVariant>("stored");
        const QByteArray valid = Set::archiveDictionary({{"Home", makeSet("Home", {"Kitchen"})}});
        QByteArray future = valid;
        future[5] = char(0x7f);
        QStringList rooms;
        for (int i = 0; i < 200; ++i)
            rooms.append(QStringLiteral("Room %1").arg(i));
        const QByteArray large = Set::archiveDictionary({{"Home", makeSet("Home", rooms)}});
        QTest::newRow("truncated, in a file of its own") << QVariant(large.left(large.size() - 10));
        QTest::newRow("future format") << QVariant(future);
        QTest::newRow("a text, not data") << QVariant(QStringLiteral("Home"));
    }
    void unreadableStoreIsSetAside()
    {
        QFETCH(QVariant, stored);
        UserDefaults &defaults = UserDefaults::standard();
        defaults.setObject(stored, kSetsKey);
        defaults.setObject(QStringLiteral("1.0.0.1"), kVersionKey);
        LogCapture log;
        QVERIFY(Set::allSpotsSets().isEmpty());
        const QString expectedKey = QStringLiteral("kSetsDictionaryKey.backup.")
            + QDateTime(QDate(2001, 1, 1), QTime(0, 0), Qt::UTC).addSecs(qint64(kNow)).toString(QStringLiteral("yyyyMMddTHHmmss"));
        QCOMPARE(backupKeys(), QStringList{expectedKey});
        // The copy and the empty store reached the file together.
        UserDefaults reader(m_env->defaultsFilePath());
        QCOMPARE(reader.objectForKey(expectedKey), stored);
        QCOMPARE(Set::unarchiveDictionary(reader.dataForKey(kSetsKey))->size(), 0);
        // An error line names the copy.
        QCOMPARE(log.lines().last().level, 3);
        QVERIFY2(log.lines().last().message.contains(expectedKey), qPrintable(log.text()));
        // Another unreadable store in the same second never overwrites that copy.
        defaults.setObject(QByteArray("second"), kSetsKey);
        QVERIFY(Set::allSpotsSets().isEmpty());
        QCOMPARE(backupKeys().size(), 2);
        QCOMPARE(defaults.objectForKey(expectedKey), stored);
    }

    void replacementByTitleAndDeletion()
    {
        QVERIFY(Set::saveSetWithName(QStringLiteral("Home"), QStringLiteral("NetA"), day(0), {spot(QStringLiteral("Hall"), 1)}));
        QVERIFY(Set::saveSpotSet(makeSet(QStringLiteral("Office"), {QStringLiteral("Desk")}, 1)));
        QVERIFY(Set::saveSpotSet(makeSet(QStringLiteral("Home"), {QStringLiteral("Attic")}, 2, QStringLiteral("NetB"))));
        QCOMPARE(namesOf(Set::allSpotsSets()), (QStringList{"Home", "Office"}));
        // Sets are values: what a caller does to a loaded set stays with it.
        for (const Set::Ptr &loaded : {Set::spotsSetWithName(QStringLiteral("Home")), Set::allSpotsSets().first()}) {
            loaded->setSsid(QStringLiteral("Changed"));
            loaded->mutableSpots().first()->setLabel(QStringLiteral("Changed"));
            loaded->mutableSpots().append(spot(QStringLiteral("Extra"), 9));
        }
        const Set::Ptr again = Set::allSpotsSetsDictionary().value(QStringLiteral("Home"));
        QCOMPARE(again->ssid() + u' ' + again->spots().first()->label(), QStringLiteral("NetB Attic"));
        QCOMPARE(again->spotsCount(), 1);

        QVERIFY(Set::deleteSpotsSet(makeSet(QStringLiteral("Garage"), {})));
        QCOMPARE(Set::allSpotsSets().size(), 2);
        QVERIFY(Set::deleteSpotsSet(makeSet(QStringLiteral("Office"), {}, 0, QStringLiteral("other SSID"))));
        QCOMPARE(namesOf(Set::allSpotsSets()), QStringList{QStringLiteral("Home")});
        // Deleting every set keeps the data version.
        Set::deleteAllSpotsSets();
        UserDefaults reader(m_env->defaultsFilePath());
        QVERIFY(!reader.contains(kSetsKey) && reader.contains(kVersionKey));
        QVERIFY(Set::allSpotsSets().isEmpty() && backupKeys().isEmpty());
    }

    // A set is marked comparable when a set not equal to it shares a label:
    // labels differing in case or in leading zeros never match, a label twice
    // in one set is not a match, and equal sets under two keys do not mark
    // each other. bench_model compares this with the pair-by-pair definition.
    void comparableMarking()
    {
        const QList<std::pair<QString, QStringList>> stored{
            {"Run 1", {"Room 1", "Room 1"}}, {"Run 2", {"room 1", "Room 01"}}, {"Run 3", {"Room 2"}},
            {"Run 3", {"Room 2"}},           {"Run 4", {"Room 3"}},            {"Run 5", {"Room 4", "Room 3"}},
            {"Run 6", {}}};
        Set::Dictionary store;
        for (const auto &[name, labels] : stored)
            store.insert(QStringLiteral("key %1").arg(store.size()), makeSet(name, labels, name.back().digitValue()));
        QVERIFY(Set::saveAllSpotsSetDicitionary(store));
        QStringList names = namesOf(Set::allSpotsSets());
        names.sort();
        QCOMPARE(names, (QStringList{"Run 1", "Run 2", "Run 3", "Run 3", "Run 4*", "Run 5*", "Run 6"}));
    }

    void markingAgainstTarget()
    {
        const auto a = makeSet(QStringLiteral("A"), {QStringLiteral("Kitchen"), QStringLiteral("Hall")}, 4);
        const auto b = makeSet(QStringLiteral("B"), {QStringLiteral("Hall")}, 3);
        const auto c = makeSet(QStringLiteral("C"), {QStringLiteral("Garage")}, 2);
        const auto d = makeSet(QStringLiteral("D"), {}, 1);
        for (const auto &set : {c, a, d, b})
            QVERIFY(Set::saveSpotSet(set));
        // The target is an equal copy, not the stored object: equality decides.
        QCOMPARE(namesOf(Set::allSpotsSetsWithTaretSetToCompare(makeSet("A", {"Hall"}))), (QStringList{"A*", "B*", "C", "D"}));
        const Set::List candidates{d, b, c, a};
        QCOMPARE(namesOf(Set::allSpotsSetsWithTaretSetToCompare(a, candidates, false)), (QStringList{"B", "A"}));
        QCOMPARE(namesOf(Set::allSpotsSetsWithTaretSetToCompare(makeSet("A", {"Hall"}), candidates, true)), QStringList{"B"});
        // Same title, other SSID: not the target, so it stays.
        QCOMPARE(namesOf(Set::allSpotsSetsWithTaretSetToCompare(makeSet("A", {"Hall"}, 0, "Other"), candidates, true)),
                 (QStringList{"B", "A"}));
        QVERIFY(Set::allSpotsSetsWithTaretSetToCompare(nullptr, candidates, false).isEmpty());
    }

    // Each toggle goes on to the next order and three come back: newest
    // measurement first, labels descending (ties newest first), labels
    // ascending (ties oldest first). The stored order stays as recorded.
    void sortedSpots()
    {
        const auto set = Set::create("Home", "Net", day(0), {spot("Spot 2", 1), spot("Spot 10", 3), spot("Attic", 2), spot("Spot 2", 4)});
        QStringList orders;
        for (int toggle = 0; toggle < 4; ++toggle, set->toggleSorting()) {
            QString order = QString::number(set->isSortedAscending()) + u':';
            for (const auto &s : set->sortedSpots())
                order += QStringLiteral(" %1@%2").arg(s->label()).arg(s->timeAfterTest());
            orders << order;
        }
        QCOMPARE(orders, (QStringList{"0: Spot 2@4 Spot 10@3 Attic@2 Spot 2@1", "1: Spot 10@3 Spot 2@4 Spot 2@1 Attic@2",
                                      "2: Attic@2 Spot 2@1 Spot 2@4 Spot 10@3", "0: Spot 2@4 Spot 10@3 Attic@2 Spot 2@1"}));
        QCOMPARE(set->spots().first()->timeAfterTest(), 1.0);
    }

    void numericOrder_data()
    {
        QTest::addColumn<QString>("a");
        QTest::addColumn<QString>("b");
        QTest::addColumn<int>("expected"); // sign of compare(a, b)
        QTest::newRow("leading zeros keep the value") << "Spot 007" << "Spot 7" << 0;
        QTest::newRow("leading zeros do not enlarge") << "Spot 010" << "Spot 9" << 1;
        QTest::newRow("shorter text first") << "Room" << "Room 1" << -1;
        QTest::newRow("first run decides") << "Floor 10 Room 1" << "Floor 9 Room 99" << 1;
        QTest::newRow("later run decides on a tie") << "Floor 2 Room 10" << "Floor 2 Room 9" << 1;
        QTest::newRow("beyond 64 bits") << "Spot 18446744073709551616" << "Spot 18446744073709551615" << 1;
        QTest::newRow("case sensitive: capitals first") << "Zebra" << "apple" << -1;
        QTest::newRow("non-ASCII letter after ASCII") << QStringLiteral("K\u00fcche") << "Kuche" << 1;
        QTest::newRow("non-ASCII digits are plain characters") << QStringLiteral("Spot \u0662") << "Spot 10" << 1;
    }
    void numericOrder()
    {
        QFETCH(QString, a);
        QFETCH(QString, b);
        QFETCH(int, expected);
        const auto sign = [](int v) { return (v > 0) - (v < 0); };
        QCOMPARE(sign(BMNumericStringComparison::compare(a, b)), expected);
        QCOMPARE(sign(BMNumericStringComparison::compare(b, a)), -expected);
        QCOMPARE(BMNumericStringComparison::lessThan(a, b), expected < 0);
    }

    void comparisonPairing_data()
    {
        QTest::addColumn<QStringList>("first");
        QTest::addColumn<QStringList>("second");
        QTest::addColumn<QStringList>("expectedFirst");
        QTest::addColumn<QStringList>("expectedSecond");
        const QStringList none;
        // The order of the rows and the identical pairs a person toggles are
        // the compare screen's (tst_FZBaseCollectionViewController).
        QTest::newRow("no label in common") << QStringList{"Hall@1"} << QStringList{"Attic@1"} << none << none;
        QTest::newRow("first of duplicates in either set") << QStringList{"Kitchen@5", "Kitchen@6"}
            << QStringList{"Kitchen@20", "Kitchen@1"} << QStringList{"Kitchen@5"} << QStringList{"Kitchen@20"};
        QTest::newRow("absent BSSIDs are never the same") << QStringList{"Kitchen@5@-"} << QStringList{"Kitchen@5@-"}
            << QStringList{"Kitchen@5"} << QStringList{"Kitchen@5"};
        QTest::newRow("empty BSSIDs are equal texts") << QStringList{"Kitchen@5@"} << QStringList{"Kitchen@5@"} << none << none;
        QTest::newRow("half a unit apart is another measurement") << QStringList{"Kitchen@5"} << QStringList{"Kitchen@5.5"}
            << QStringList{"Kitchen@5"} << QStringList{"Kitchen@5.5"};
        QTest::newRow("labels pair by exact text only") << QStringList{"Spot 07@1", "kitchen@2"}
            << QStringList{"Spot 7@1", "Kitchen@2"} << none << none;
    }
    void comparisonPairing()
    {
        const auto a = pairSet(QStringLiteral("First"), fetched<QStringList>("first"));
        const auto b = pairSet(QStringLiteral("Second"), fetched<QStringList>("second"));
        const auto comparison = Comparison::comparisonWithFirstSet(a, b);
        QCOMPARE(rows(comparison->firstSetComparableSpots()), fetched<QStringList>("expectedFirst"));
        QCOMPARE(rows(comparison->secondSetComparableSpots()), fetched<QStringList>("expectedSecond"));
        QCOMPARE(comparison->count(), comparison->secondSetComparableSpots().size());
        for (qsizetype row = 0; row < comparison->count(); ++row) {
            QCOMPARE(comparison->spotNameAtIndex(row), comparison->secondComparableSpotAtIndex(row)->label());
            // Rows hold the sets' own objects, not copies.
            QVERIFY(a->mutableSpots().contains(comparison->firstComparableSpotAtIndex(row)));
            QVERIFY(b->mutableSpots().contains(comparison->secondComparableSpotAtIndex(row)));
        }
    }

    void comparisonEdges()
    {
        const auto set = pairSet(QStringLiteral("Home"), {"Kitchen@1", "Hall@2", "Kitchen@3"});
        Comparison itself(set, set);
        QCOMPARE(itself.count(), 0);
        itself.toggleExcludeIdenticalMatches();
        QCOMPARE(rows(itself.firstSetComparableSpots()), (QStringList{"Kitchen@1", "Hall@2"}));
        // The compare screen numbers its columns 1 and 2; every index but 1 is the second set.
        const Comparison two(pairSet("First", {"Hall@1"}), pairSet("Second", {"Hall@2"}));
        QCOMPARE(two.nameForSetIndex(1) + two.nameForSetIndex(0) + two.nameForSetIndex(2), "FirstSecondSecond");
        QCOMPARE(two.ssid(), QStringLiteral("Net of First"));
        QVERIFY(!two.firstComparableSpotAtIndex(1) && !two.secondComparableSpotAtIndex(-1) && two.spotNameAtIndex(1).isEmpty());
        const auto half = Comparison::comparisonWithFirstSet(pairSet("A", {"Hall@1"}), nullptr);
        QCOMPARE(half->count(), 0);
        QCOMPARE(half->nameForSetIndex(2), QString());
    }

    void settingsFirstRead_data()
    {
        QTest::addColumn<QVariant>("stored"); // invalid: nothing stored
        QTest::addColumn<bool>("merged");
        QTest::addColumn<QStringList>("expected");
        QTest::newRow("fresh installation") << QVariant() << false << kPresets;
        QTest::newRow("the user's names first, repeats and empty names dropped")
            << QVariant(QStringList{"Office", "", "Office", "Kitchen"}) << false
            << QStringList{"Office", "Kitchen", "Living Room", "Dining Room", "Bedroom 1", "Bedroom 2", "Bathroom 1", "Bathroom 2", "Garage"};
        QTest::newRow("already merged: the list as stored") << QVariant(QStringList{"Hall", "Hall"}) << true << QStringList{"Hall", "Hall"};
        QTest::newRow("already merged, nothing stored") << QVariant() << true << QStringList{};
    }
    void settingsFirstRead()
    {
        QFETCH(bool, merged);
        UserDefaults::standard().setObject(fetched<QVariant>("stored"), kSavedSpotsKey);
        if (merged)
            UserDefaults::standard().setBool(true, kMergedKey);
        QVERIFY(UserDefaults::standard().synchronize());
        QTEST(BMSDKUISettings::sharedInstance().savedSpots(), "expected");
        // What the first read returned is what a later session finds on disk.
        UserDefaults reader(m_env->defaultsFilePath());
        QVERIFY(reader.boolForKey(kMergedKey));
        if (!merged)
            QTEST(reader.stringArrayForKey(kSavedSpotsKey), "expected");
        // Set later, even to nothing, the presets never come back.
        BMSDKUISettings::sharedInstance().setSavedSpots({});
        QCOMPARE(BMSDKUISettings::sharedInstance().savedSpots(), QStringList{});
    }

private:
    std::unique_ptr<TestEnvironment> m_env;
    Brightmere::ManualClock m_clock;
};

QTEST_GUILESS_MAIN(tst_FZHistoricalResultSpotsSet)
#include "tst_FZHistoricalResultSpotsSet.moc"
