#include "model/FZResultSpotsSetsComparison.h"

#include "LogCapture.h"

#include <QtTest>

using Set = FZHistoricalResultSpotsSet;
using Comparison = FZResultSpotsSetsComparison;

namespace {

// Each spot as "label@timeAfterTest" with an optional "@bssid" ("-" = absent).
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

class tst_FZResultSpotsSetsComparison : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void pairing_data();
    void pairing();
    void setComparedWithItself();
    void namesOfTheColumns();
    void outOfRangeAndAbsentSets();
};

void tst_FZResultSpotsSetsComparison::pairing_data()
{
    QTest::addColumn<QStringList>("first");
    QTest::addColumn<QStringList>("second");
    QTest::addColumn<QStringList>("toggles");
    QTest::addColumn<QStringList>("expectedFirst");
    QTest::addColumn<QStringList>("expectedSecond");

    const QStringList first{"Spot 2@1", "Spot 10@2", "Spot 9@3", "Hall@4"};
    const QStringList second{"Spot 9@10", "Spot 2@11", "Spot 10@12", "Attic@13"};
    QTest::newRow("no label in common") << QStringList{"Hall@1"} << QStringList{"Attic@1"} << QStringList{}
                                        << QStringList{} << QStringList{};
    QTest::newRow("rows start from the highest label")
        << first << second << QStringList{} << QStringList{"Spot 10@2", "Spot 9@3", "Spot 2@1"}
        << QStringList{"Spot 10@12", "Spot 9@10", "Spot 2@11"};
    QTest::newRow("sorting by name reverses")
        << first << second << QStringList{"sort"} << QStringList{"Spot 2@1", "Spot 9@3", "Spot 10@2"}
        << QStringList{"Spot 2@11", "Spot 9@10", "Spot 10@12"};
    QTest::newRow("first of duplicates in either set")
        << QStringList{"Kitchen@5", "Kitchen@6"} << QStringList{"Kitchen@20", "Kitchen@1"} << QStringList{}
        << QStringList{"Kitchen@5"} << QStringList{"Kitchen@20"};
    QTest::newRow("the same measurement is hidden")
        << QStringList{"Kitchen@5", "Hall@6"} << QStringList{"Kitchen@5", "Hall@7"} << QStringList{}
        << QStringList{"Hall@6"} << QStringList{"Hall@7"};
    QTest::newRow("and shown after the toggle")
        << QStringList{"Kitchen@5", "Hall@6"} << QStringList{"Kitchen@5", "Hall@7"} << QStringList{"identical"}
        << QStringList{"Kitchen@5", "Hall@6"} << QStringList{"Kitchen@5", "Hall@7"};
    QTest::newRow("absent BSSIDs are never the same")
        << QStringList{"Kitchen@5@-"} << QStringList{"Kitchen@5@-"} << QStringList{} << QStringList{"Kitchen@5"}
        << QStringList{"Kitchen@5"};
    QTest::newRow("empty BSSIDs are equal texts")
        << QStringList{"Kitchen@5@"} << QStringList{"Kitchen@5@"} << QStringList{} << QStringList{} << QStringList{};
    QTest::newRow("half a unit apart is another measurement")
        << QStringList{"Kitchen@5"} << QStringList{"Kitchen@5.5"} << QStringList{} << QStringList{"Kitchen@5"}
        << QStringList{"Kitchen@5.5"};
    QTest::newRow("labels pair by exact text only")
        << QStringList{"Spot 07@1", "kitchen@2"} << QStringList{"Spot 7@1", "Kitchen@2"} << QStringList{}
        << QStringList{} << QStringList{};
}

void tst_FZResultSpotsSetsComparison::pairing()
{
    QFETCH(QStringList, first);
    QFETCH(QStringList, second);
    QFETCH(QStringList, toggles);
    const auto a = makeSet(QStringLiteral("First"), first);
    const auto b = makeSet(QStringLiteral("Second"), second);
    const auto comparison = Comparison::comparisonWithFirstSet(a, b);
    QVERIFY(!comparison->isSortedByNameAscending());
    QVERIFY(comparison->excludeIdenticalMatches());
    for (const QString &toggle : toggles)
        toggle == u"sort" ? comparison->toggleSortByName() : comparison->toggleExcludeIdenticalMatches();

    QTEST(rows(comparison->firstSetComparableSpots()), "expectedFirst");
    QTEST(rows(comparison->secondSetComparableSpots()), "expectedSecond");
    QCOMPARE(comparison->count(), comparison->secondSetComparableSpots().size());
    for (qsizetype row = 0; row < comparison->count(); ++row) {
        QCOMPARE(comparison->spotNameAtIndex(row), comparison->secondComparableSpotAtIndex(row)->label());
        // Rows hold the sets' own objects, not copies.
        QVERIFY(a->mutableSpots().contains(comparison->firstComparableSpotAtIndex(row)));
        QVERIFY(b->mutableSpots().contains(comparison->secondComparableSpotAtIndex(row)));
    }
}

void tst_FZResultSpotsSetsComparison::setComparedWithItself()
{
    const auto set = makeSet(QStringLiteral("Home"), {"Kitchen@1", "Hall@2", "Kitchen@3"});
    Comparison comparison(set, set);
    QCOMPARE(comparison.count(), 0);
    comparison.toggleExcludeIdenticalMatches();
    QCOMPARE(rows(comparison.firstSetComparableSpots()), (QStringList{"Kitchen@1", "Hall@2"}));
    QCOMPARE(comparison.firstSet(), set);
    QCOMPARE(comparison.secondSet(), set);
}

void tst_FZResultSpotsSetsComparison::namesOfTheColumns()
{
    // The compare screen numbers its columns 1 and 2; every index but 1 is the second set.
    const Comparison comparison(makeSet(QStringLiteral("First"), {}), makeSet(QStringLiteral("Second"), {}));
    QCOMPARE(comparison.nameForSetIndex(1), QStringLiteral("First"));
    for (qsizetype index : {0, 2, -1})
        QCOMPARE(comparison.nameForSetIndex(index), QStringLiteral("Second"));
    QCOMPARE(comparison.ssid(), QStringLiteral("Net of First"));
}

void tst_FZResultSpotsSetsComparison::outOfRangeAndAbsentSets()
{
    LogCapture log;
    const Comparison comparison(makeSet("A", {"Hall@1"}), makeSet("B", {"Hall@2"}));
    QCOMPARE(comparison.count(), 1);
    QVERIFY(!comparison.firstComparableSpotAtIndex(1));
    QVERIFY(!comparison.secondComparableSpotAtIndex(-1));
    QVERIFY(comparison.spotNameAtIndex(1).isEmpty());
    QCOMPARE(log.lines().size(), 3);

    log.clear();
    const auto half = Comparison::comparisonWithFirstSet(makeSet("A", {"Hall@1"}), nullptr);
    QCOMPARE(half->count(), 0);
    QCOMPARE(half->nameForSetIndex(2), QString());
    QCOMPARE(log.lines().size(), 1);
    QCOMPARE(log.lines().first().level, 3);
}

QTEST_GUILESS_MAIN(tst_FZResultSpotsSetsComparison)
#include "tst_FZResultSpotsSetsComparison.moc"
