#include "platform/foundation/ManualClock.h"

#include <QtTest>

using Brightmere::ManualClock;

class tst_ManualClock : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void ticksFireInTimeOrder();
    void tickMayStopAndStartTimers();
    void startOnceFiresOnce();
    void noTickLostAtTodaysDates_data();
    void noTickLostAtTodaysDates();
    void systemClockCountsFromReferenceDate();
};

void tst_ManualClock::ticksFireInTimeOrder()
{
    ManualClock clock(100.0);
    QList<QPair<QString, double>> fired;
    clock.startRepeating(0.5, [&] { fired.append({QStringLiteral("half"), clock.now()}); });
    clock.startRepeating(0.3, [&] { fired.append({QStringLiteral("third"), clock.now()}); });
    clock.advance(1.0);
    const QList<QPair<QString, double>> expected{
        {QStringLiteral("third"), 100.3}, {QStringLiteral("half"), 100.5}, {QStringLiteral("third"), 100.6},
        {QStringLiteral("third"), 100.9}, {QStringLiteral("half"), 101.0}};
    QCOMPARE(fired.size(), expected.size());
    for (int i = 0; i < expected.size(); ++i) {
        QCOMPARE(fired.at(i).first, expected.at(i).first);
        QVERIFY(qAbs(fired.at(i).second - expected.at(i).second) < 1e-9);
    }
    QCOMPARE(clock.now(), 101.0);
}

void tst_ManualClock::tickMayStopAndStartTimers()
{
    ManualClock clock;
    int ticks = 0, laterTicks = 0;
    int id = 0;
    id = clock.startRepeating(1.0, [&] {
        if (++ticks == 2) {
            clock.stopRepeating(id);
            clock.startRepeating(1.0, [&] { ++laterTicks; });
        }
    });
    clock.advance(5.0);
    QCOMPARE(ticks, 2);
    QCOMPARE(laterTicks, 3);
    QCOMPARE(clock.activeTimerCount(), 1);
}

void tst_ManualClock::startOnceFiresOnce()
{
    ManualClock clock;
    int runs = 0;
    clock.startOnce(0.2, [&] { ++runs; });
    clock.advance(0.1);
    QCOMPARE(runs, 0);
    clock.advance(2.0);
    QCOMPARE(runs, 1);
    QCOMPARE(clock.activeTimerCount(), 0);
}

void tst_ManualClock::noTickLostAtTodaysDates_data()
{
    QTest::addColumn<double>("start");
    QTest::addColumn<double>("interval");
    QTest::newRow("zero, tenths") << 0.0 << 0.1;
    QTest::newRow("today, tenths") << 785000000.0 << 0.1;
    QTest::newRow("today, hundredths") << 785000000.123 << 0.01;
    QTest::newRow("today, thirds") << 785000000.7 << 1.0 / 3.0;
}

void tst_ManualClock::noTickLostAtTodaysDates()
{
    QFETCH(double, start);
    QFETCH(double, interval);
    ManualClock clock(start);
    int ticks = 0;
    clock.startRepeating(interval, [&] { ++ticks; });
    for (int i = 0; i < 300; ++i)
        clock.advance(interval);
    QCOMPARE(ticks, 300);
}

void tst_ManualClock::systemClockCountsFromReferenceDate()
{
    const double expected = QDateTime::currentDateTimeUtc().toMSecsSinceEpoch() / 1000.0 - 978307200.0;
    QVERIFY(qAbs(Brightmere::Clock::system().now() - expected) < 1.0);
}

QTEST_GUILESS_MAIN(tst_ManualClock)
#include "tst_ManualClock.moc"
