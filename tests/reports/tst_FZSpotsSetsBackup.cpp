#include "reports/FZSpotsSetsBackup.h"

#include "LogCapture.h"
#include "ReportFixtures.h"
#include "TestEnvironment.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QtTest>

using namespace ReportFixtures;
using Set = FZHistoricalResultSpotsSet;

namespace {

// A backup holding the sets in this order, titles repeated as they come.
QByteArray backupOf(const Set::List &sets)
{
    QJsonArray all;
    for (const Set::Ptr &set : sets)
        all.append(QJsonDocument::fromJson(FZSpotsSetsBackup::backupJson({{set->name(), set}})).object().value("sets").toArray().first());
    QJsonObject root = QJsonDocument::fromJson(FZSpotsSetsBackup::backupJson({})).object();
    root.insert("sets", all);
    return QJsonDocument(root).toJson();
}

// "Title" is the set makeSet builds; "Title=n" differs from it by one speed.
Set::Ptr setFor(const QString &entry)
{
    const QString variant = entry.section(u'=', 1);
    const double speed = variant.isEmpty() ? 20.0 : variant == "other" ? 99.0 : variant.toDouble();
    return makeSet(entry.section(u'=', 0, 0), {"Kitchen", "Hall"}, {10.0, speed});
}

QByteArray fileBytes(const QString &path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

// A set with every kind of value a spot can hold.
Set::Ptr richSet()
{
    auto set = makeSet(QStringLiteral("Casa, planta 1 \"A\" 客厅"), {"Cocina", "Salón"}, {12.345678901234, 0.0});
    auto odd = WifiTestResult::create(qQNaN(), 763637999.125);
    odd->setAverage(true);
    odd->setDuration(7.25);
    odd->setCoordinate(BMLocationCoordinate2D{40.4168, -3.7038});
    set->mutableSpots().append(odd);  // no label, SSID or BSSID at all
    return set;
}

} // namespace

class tst_FZSpotsSetsBackup : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init() { m_env = std::make_unique<TestEnvironment>(); }
    void cleanup() { m_env.reset(); }

    void roundTripGivesTheStoreBack();
    void restoreMerges_data();
    void restoreMerges();
    void refusedFileLeavesTheStoreAlone_data();
    void refusedFileLeavesTheStoreAlone();

private:
    std::unique_ptr<TestEnvironment> m_env;
};

void tst_FZSpotsSetsBackup::roundTripGivesTheStoreBack()
{
    QVERIFY(Set::saveSpotSet(richSet()));
    QVERIFY(Set::saveSpotSet(numberedSet("Office", 30)));
    QVERIFY(Set::saveSpotSet(makeSet("Empty", {})));
    const Set::Dictionary before = Set::allSpotsSetsDictionary();
    const QString path = m_env->filePath("backup.json");
    QVERIFY(FZSpotsSetsBackup::writeBackup(path).isOk());
    QCOMPARE(QJsonDocument::fromJson(fileBytes(path)).object().value("formatVersion").toInt(), 1);

    Set::deleteAllSpotsSets();
    QVERIFY(Set::allSpotsSetsDictionary().isEmpty());
    const FZReportResult result = FZSpotsSetsBackup::restoreBackup(path);
    QVERIFY2(result.isOk(), qPrintable(result.message()));
    QCOMPARE(result.addedTitles().size(), 3);

    const Set::Dictionary after = Set::allSpotsSetsDictionary();
    QCOMPARE(after.keys(), before.keys());
    for (const QString &title : before.keys()) {
        QVERIFY2(FZSpotsSetsBackup::hasSameContent(*after.value(title), *before.value(title)), qPrintable(title));
        QCOMPARE(after.value(title)->name(), title);
    }
    const auto odd = after.value(richSet()->name())->mutableSpots().last();
    QVERIFY(odd->label().isNull());
    QVERIFY(qIsNaN(odd->speedInMbps()));
    QCOMPARE(odd->coordinate()->longitude, -3.7038);
    // A backup of the restored store is the very same file.
    QCOMPARE(FZSpotsSetsBackup::backupJsonOfStore(), fileBytes(path));
}

void tst_FZSpotsSetsBackup::restoreMerges_data()
{
    QTest::addColumn<QStringList>("storedTitles"); // "Title", or "Title=<speed>" or "Title=other" for other content
    QTest::addColumn<QStringList>("fileTitles");
    QTest::addColumn<QStringList>("added");
    QTest::addColumn<QStringList>("skipped");
    QTest::addColumn<QStringList>("titlesAfter");
    QTest::newRow("into an empty store") << QStringList{} << QStringList{"Home", "Office"}
                                         << QStringList{"Home", "Office"} << QStringList{}
                                         << QStringList{"Home", "Office"};
    QTest::newRow("identical set skipped") << QStringList{"Home"} << QStringList{"Home", "Office"}
                                           << QStringList{"Office"} << QStringList{"Home"}
                                           << QStringList{"Home", "Office"};
    QTest::newRow("other content renamed") << QStringList{"Home=other"} << QStringList{"Home"}
                                           << QStringList{"Home (2)"} << QStringList{}
                                           << QStringList{"Home", "Home (2)"};
    QTest::newRow("next free number") << QStringList{"Home=other", "Home (2)=other"} << QStringList{"Home"}
                                      << QStringList{"Home (3)"} << QStringList{}
                                      << QStringList{"Home", "Home (2)", "Home (3)"};
    QTest::newRow("already restored under a new title") << QStringList{"Home=other", "Home (2)"}
                                                        << QStringList{"Home"} << QStringList{}
                                                        << QStringList{"Home"} << QStringList{"Home", "Home (2)"};
    QTest::newRow("one title many times, numbered on")
        << QStringList{"Home=other"} << QStringList{"Home=1", "Home=2", "Home", "Home=1"}
        << QStringList{"Home (2)", "Home (3)", "Home (4)"} << QStringList{"Home"}
        << QStringList{"Home", "Home (2)", "Home (3)", "Home (4)"};
    QTest::newRow("a title that reads like a format") << QStringList{"Net 100%2=other"} << QStringList{"Net 100%2"}
                                                      << QStringList{"Net 100%2 (2)"} << QStringList{}
                                                      << QStringList{"Net 100%2", "Net 100%2 (2)"};
}

void tst_FZSpotsSetsBackup::restoreMerges()
{
    QFETCH(QStringList, storedTitles);
    QFETCH(QStringList, fileTitles);
    QFETCH(QStringList, added);
    QFETCH(QStringList, skipped);
    QFETCH(QStringList, titlesAfter);
    Set::List fileSets;
    for (const QString &entry : fileTitles)
        fileSets.append(setFor(entry));
    for (const QString &entry : storedTitles)
        QVERIFY(Set::saveSpotSet(setFor(entry)));
    const Set::Dictionary storedBefore = Set::allSpotsSetsDictionary();
    const QByteArray json = backupOf(fileSets);

    const FZReportResult result = FZSpotsSetsBackup::restoreBackupJson(json);
    QVERIFY2(result.isOk(), qPrintable(result.message()));
    QCOMPARE(result.addedTitles(), added);
    QCOMPARE(result.skippedTitles(), skipped);
    const Set::Dictionary after = Set::allSpotsSetsDictionary();
    QCOMPARE(after.keys(), titlesAfter);
    // Nothing stored was replaced.
    for (const QString &title : storedBefore.keys())
        QVERIFY(FZSpotsSetsBackup::hasSameContent(*after.value(title), *storedBefore.value(title)));

    // Restoring the same file again adds nothing and writes nothing.
    const QByteArray stored = fileBytes(m_env->defaultsFilePath());
    const FZReportResult again = FZSpotsSetsBackup::restoreBackupJson(json);
    QVERIFY(again.isOk());
    QCOMPARE(again.addedTitles(), QStringList());
    QCOMPARE(again.skippedTitles().size(), fileTitles.size());
    QCOMPARE(fileBytes(m_env->defaultsFilePath()), stored);
}

void tst_FZSpotsSetsBackup::refusedFileLeavesTheStoreAlone_data()
{
    Set::Dictionary sets;
    sets.insert("Home", makeSet("Home", {"Kitchen"}, {12.5}));
    const QByteArray good = FZSpotsSetsBackup::backupJson(sets);
    const auto edited = [&good](const char *from, const char *to) {
        Q_ASSERT(good.contains(from));
        return QByteArray(good).replace(from, to);
    };
    QTest::addColumn<QByteArray>("json");
    QTest::addColumn<int>("error");
    QTest::addColumn<bool>("emptyStore");
    using E = FZReportResult::Error;
    QTest::newRow("empty file") << QByteArray() << int(E::Malformed) << false;
    QTest::newRow("not JSON") << QByteArray("Home,Kitchen,12.5") << int(E::Malformed) << false;
    QTest::newRow("truncated") << good.left(good.size() / 2) << int(E::Malformed) << false;
    QTest::newRow("truncated, into an empty store") << good.left(good.size() - 3) << int(E::Malformed) << true;
    QTest::newRow("another kind of file") << edited("spots-sets-backup", "notes") << int(E::Malformed) << false;
    QTest::newRow("future version") << edited("\"formatVersion\": 1", "\"formatVersion\": 2") << int(E::FutureVersion) << false;
    QTest::newRow("version as text") << edited("\"formatVersion\": 1", "\"formatVersion\": \"1\"") << int(E::WrongTypes) << false;
    QTest::newRow("title a number") << edited("\"title\": \"Home\"", "\"title\": 7") << int(E::WrongTypes) << false;
    QTest::newRow("date not a time") << edited("\"date\": \"2025", "\"date\": \"x2025") << int(E::WrongTypes) << false;
    QTest::newRow("spots missing") << edited("\"spots\"", "\"spot\"") << int(E::WrongTypes) << false;
    QTest::newRow("speed as text") << edited("\"speedInMbps\": 12.5", "\"speedInMbps\": \"12.5\"") << int(E::WrongTypes) << false;
    QTest::newRow("average as word") << edited("\"average\": false", "\"average\": \"no\"") << int(E::WrongTypes) << false;
    QTest::newRow("label missing") << edited("\"label\"", "\"name\"") << int(E::WrongTypes) << false;
    QTest::newRow("coordinate a list") << edited("\"average\": false", "\"average\": false, \"coordinate\": [1, 2]") << int(E::WrongTypes) << false;
    // Values no measurement can have, and titles no person can type.
    QTest::newRow("speed 1.6e308") << edited("\"speedInMbps\": 12.5", "\"speedInMbps\": 1.6e308") << int(E::WrongTypes) << false;
    QTest::newRow("negative speed") << edited("\"speedInMbps\": 12.5", "\"speedInMbps\": -3") << int(E::WrongTypes) << false;
    QTest::newRow("negative duration") << edited("\"duration\": 0", "\"duration\": -1") << int(E::WrongTypes) << false;
    QTest::newRow("a year-long duration") << edited("\"duration\": 0", "\"duration\": 31536000") << int(E::WrongTypes) << false;
    QTest::newRow("blank title") << edited("\"title\": \"Home\"", "\"title\": \"   \"") << int(E::WrongTypes) << false;
    QTest::newRow("a 10 MB title")
        << edited("\"title\": \"Home\"", "\"title\": \"" + QByteArray(10 << 20, 'A') + "\"") << int(E::WrongTypes) << false;
}

void tst_FZSpotsSetsBackup::refusedFileLeavesTheStoreAlone()
{
    QFETCH(QByteArray, json);
    QFETCH(int, error);
    QFETCH(bool, emptyStore);
    if (!emptyStore) {
        QVERIFY(Set::saveSpotSet(makeSet("Home", {"Kitchen"}, {55.0})));
        QVERIFY(Set::saveSpotSet(numberedSet("Office", 5)));
    }
    const QByteArray defaults = fileBytes(m_env->defaultsFilePath());
    const auto archive = Set::savedSpotsSetsDictionary();
    const QString path = m_env->filePath("backup.json");
    QFile file(path);
    QVERIFY(file.open(QIODevice::WriteOnly));
    file.write(json);
    file.close();

    LogCapture log;
    const FZReportResult result = FZSpotsSetsBackup::restoreBackup(path);
    QCOMPARE(int(result.error()), error);
    QVERIFY(!result.message().isEmpty());
    QVERIFY(log.contains(QStringLiteral("backup refused")));
    QCOMPARE(fileBytes(m_env->defaultsFilePath()), defaults);
    QCOMPARE(QFile::exists(m_env->defaultsFilePath()), !emptyStore);
    QCOMPARE(Set::savedSpotsSetsDictionary(), archive);
    QVERIFY(result.addedTitles().isEmpty());
}

QTEST_GUILESS_MAIN(tst_FZSpotsSetsBackup)
#include "tst_FZSpotsSetsBackup.moc"
