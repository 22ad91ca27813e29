#include "model/BMNumericStringComparison.h"

#include <QtTest>

class tst_BMNumericStringComparison : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void order_data();
    void order();
};

void tst_BMNumericStringComparison::order_data()
{
    QTest::addColumn<QString>("a");
    QTest::addColumn<QString>("b");
    QTest::addColumn<int>("expected"); // sign of compare(a, b)

    QTest::newRow("digit runs by value") << "Spot 2" << "Spot 10" << -1;
    QTest::newRow("equal numbers") << "Spot 10" << "Spot 10" << 0;
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
    QTest::newRow("accented capital after z") << QStringLiteral("\u00c9tage") << "zone" << 1;
    QTest::newRow("non-ASCII digits are plain characters") << QStringLiteral("Spot \u0662") << "Spot 10" << 1;
    QTest::newRow("empty first") << "" << "a" << -1;
}

void tst_BMNumericStringComparison::order()
{
    QFETCH(QString, a);
    QFETCH(QString, b);
    QFETCH(int, expected);
    const auto sign = [](int v) { return (v > 0) - (v < 0); };
    QCOMPARE(sign(BMNumericStringComparison::compare(a, b)), expected);
    QCOMPARE(sign(BMNumericStringComparison::compare(b, a)), -expected);
    QCOMPARE(BMNumericStringComparison::lessThan(a, b), expected < 0);
}

QTEST_GUILESS_MAIN(tst_BMNumericStringComparison)
#include "tst_BMNumericStringComparison.moc"
