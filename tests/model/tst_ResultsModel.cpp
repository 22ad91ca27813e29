// The results model but the saved sets' store: the natural order of names,
// the comparison of two sets and the kit's settings. A recording's running
// figures are checked where the test screen shows them (tst_BMWifiScanVC).
#include "model/BMNumericStringComparison.h"
#include "model/BMSDKUISettings.h"
#include "model/FZResultSpotsSetsComparison.h"
#include "platform/foundation/UserDefaults.h"

#include "TestEnvironment.h"

#include <QtTest>

using Brightmere::UserDefaults;
using Set = FZHistoricalResultSpotsSet;
using Comparison = FZResultSpotsSetsComparison;

namespace {

const QString kSavedSpotsKey = QString::fromLatin1(BMSDKUISettings::kSavedSpotsKey);
const QString kMergedKey = QString::fromLatin1(BMSDKUISettings::kPresetSpotsAlreadySavedKey);
const QStringList kPresets{"Living Room", "Kitchen", "Dining Room", "Bedroom 1", "Bedroom 2", "Bathroom 1", "Bathroom 2", "Garage"};

// Each spot as "label@timeAfterTest", with "@bssid" where it matters ("-": absent).
Set::Ptr makeSet(const QString &name, const QStringList &spots)
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

class tst_ResultsModel : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init() { m_env = std::make_unique<TestEnvironment>(); }
    void cleanup() { m_env.reset(); }

    void numericOrder_data()
    {
        QTest::addColumn<QString>("a");
        QTest::addColumn<QString>("b");
        QTest::addColumn<int>("expected"); // sign of compare(a, b)
        QTest::newRow("digit runs by value") << "Spot 2" << "Spot 10" << -1;
        QTest::newRow("leading zeros keep the value") << "Spot 007" << "Spot 7" << 0;
        QTest::newRow("leading zeros do not enlarge") << "Spot 010" << "Spot 9" << 1;
        QTest::newRow("digits at the start") << "2 Hall" << "10 Hall" << -1;
        QTest::newRow("shorter text first") << "Room" << "Room 1" << -1;
        QTest::newRow("first run decides") << "Floor 10 Room 1" << "Floor 9 Room 99" << 1;
        QTest::newRow("later run decides on a tie") << "Floor 2 Room 10" << "Floor 2 Room 9" << 1;
        QTest::newRow("beyond 64 bits") << "Spot 18446744073709551616" << "Spot 18446744073709551615" << 1;
        QTest::newRow("case sensitive: capitals first") << "Zebra" << "apple" << -1;
        QTest::newRow("digit before letter") << "Spot 1" << "Spot A" << -1;
        QTest::newRow("non-ASCII letter after ASCII") << QStringLiteral("K\u00fcche") << "Kuche" << 1;
        QTest::newRow("non-ASCII digits are plain characters") << QStringLiteral("Spot \u0662") << "Spot 10" << 1;
        QTest::newRow("empty first") << "" << "a" << -1;
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
        QTest::addColumn<QStringList>("toggles");
        QTest::addColumn<QStringList>("expectedFirst");
        QTest::addColumn<QStringList>("expectedSecond");
        const QStringList first{"Spot 2@1", "Spot 10@2", "Spot 9@3", "Hall@4"};
        const QStringList second{"Spot 9@10", "Spot 2@11", "Spot 10@12", "Attic@13"};
        const QStringList none;
        QTest::newRow("no label in common") << QStringList{"Hall@1"} << QStringList{"Attic@1"} << none << none << none;
        QTest::newRow("rows start from the highest label") << first << second << none
            << QStringList{"Spot 10@2", "Spot 9@3", "Spot 2@1"} << QStringList{"Spot 10@12", "Spot 9@10", "Spot 2@11"};
        QTest::newRow("sorting by name reverses") << first << second << QStringList{"sort"}
            << QStringList{"Spot 2@1", "Spot 9@3", "Spot 10@2"} << QStringList{"Spot 2@11", "Spot 9@10", "Spot 10@12"};
        QTest::newRow("first of duplicates in either set") << QStringList{"Kitchen@5", "Kitchen@6"}
            << QStringList{"Kitchen@20", "Kitchen@1"} << none << QStringList{"Kitchen@5"} << QStringList{"Kitchen@20"};
        QTest::newRow("the same measurement is hidden") << QStringList{"Kitchen@5", "Hall@6"}
            << QStringList{"Kitchen@5", "Hall@7"} << none << QStringList{"Hall@6"} << QStringList{"Hall@7"};
        QTest::newRow("and shown after the toggle") << QStringList{"Kitchen@5", "Hall@6"} << QStringList{"Kitchen@5", "Hall@7"}
            << QStringList{"identical"} << QStringList{"Kitchen@5", "Hall@6"} << QStringList{"Kitchen@5", "Hall@7"};
        QTest::newRow("absent BSSIDs are never the same") << QStringList{"Kitchen@5@-"} << QStringList{"Kitchen@5@-"}
            << none << QStringList{"Kitchen@5"} << QStringList{"Kitchen@5"};
        QTest::newRow("empty BSSIDs are equal texts") << QStringList{"Kitchen@5@"} << QStringList{"Kitchen@5@"} << none
                                                      << none << none;
        QTest::newRow("half a unit apart is another measurement") << QStringList{"Kitchen@5"} << QStringList{"Kitchen@5.5"}
            << none << QStringList{"Kitchen@5"} << QStringList{"Kitchen@5.5"};
        QTest::newRow("labels pair by exact text only") << QStringList{"Spot 07@1", "kitchen@2"}
            << QStringList{"Spot 7@1", "Kitchen@2"} << none << none << none;
    }
    void comparisonPairing()
    {
        const auto a = makeSet(QStringLiteral("First"), fetched<QStringList>("first"));
        const auto b = makeSet(QStringLiteral("Second"), fetched<QStringList>("second"));
        const auto comparison = Comparison::comparisonWithFirstSet(a, b);
        QVERIFY(!comparison->isSortedByNameAscending() && comparison->excludeIdenticalMatches());
        for (const QString &toggle : fetched<QStringList>("toggles"))
            toggle == u"sort" ? comparison->toggleSortByName() : comparison->toggleExcludeIdenticalMatches();
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
        const auto set = makeSet(QStringLiteral("Home"), {"Kitchen@1", "Hall@2", "Kitchen@3"});
        Comparison itself(set, set);
        QCOMPARE(itself.count(), 0);
        itself.toggleExcludeIdenticalMatches();
        QCOMPARE(rows(itself.firstSetComparableSpots()), (QStringList{"Kitchen@1", "Hall@2"}));
        // The compare screen numbers its columns 1 and 2; every index but 1 is the second set.
        const Comparison two(makeSet("First", {"Hall@1"}), makeSet("Second", {"Hall@2"}));
        QCOMPARE(two.nameForSetIndex(1) + two.nameForSetIndex(0) + two.nameForSetIndex(2), "FirstSecondSecond");
        QCOMPARE(two.ssid(), QStringLiteral("Net of First"));
        QVERIFY(!two.firstComparableSpotAtIndex(1) && !two.secondComparableSpotAtIndex(-1) && two.spotNameAtIndex(1).isEmpty());
        const auto half = Comparison::comparisonWithFirstSet(makeSet("A", {"Hall@1"}), nullptr);
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

    // Each "always" switch is stored under a key of its own.
    void settingsEachSwitchHasItsOwnKey()
    {
        BMSDKUISettings &s = BMSDKUISettings::sharedInstance();
        const auto stored = [this] {
            UserDefaults reader(m_env->defaultsFilePath());
            return QStringLiteral("%1%2%3").arg(reader.boolForKey(BMSDKUISettings::kAlwaysDeleteSpotKey))
                .arg(reader.boolForKey(BMSDKUISettings::kAlwaysReplaceSpotKey)).arg(reader.boolForKey(BMSDKUISettings::kAlwaysCopySpotKey));
        };
        s.setAlwaysReplaceRecording(true);
        QCOMPARE(stored(), QStringLiteral("010"));
        s.setAlwaysCopyRecording(true);
        s.setAlwaysDeleteRecording(true);
        s.setAlwaysReplaceRecording(false);
        QCOMPARE(stored(), QStringLiteral("101"));
        QVERIFY(s.alwaysDeleteRecording() && !s.alwaysReplaceRecording() && s.alwaysCopyRecording());
    }

private:
    std::unique_ptr<TestEnvironment> m_env;
};

QTEST_GUILESS_MAIN(tst_ResultsModel)
#include "tst_ResultsModel.moc"
