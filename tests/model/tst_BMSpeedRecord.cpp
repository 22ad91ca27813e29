#include "model/BMSpeedRecord.h"

#include "LogCapture.h"
#include "platform/foundation/ManualClock.h"

#include <QtTest>

class tst_BMSpeedRecord : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void figures_data();
    void figures();
    void durationKeepsGrowingAfterFinish();
    void startEmptiesTheRecord();
};

void tst_BMSpeedRecord::figures_data()
{
    QTest::addColumn<QList<double>>("beforeStart");
    QTest::addColumn<QList<double>>("speeds");
    QTest::addColumn<bool>("multi");
    QTest::addColumn<double>("average");
    QTest::newRow("no sample") << QList<double>{} << QList<double>{} << false << 0.0;
    QTest::newRow("one sample is not multi") << QList<double>{} << QList<double>{42.5} << false << 42.5;
    QTest::newRow("two samples") << QList<double>{} << QList<double>{10.0, 20.0} << true << 15.0;
    QTest::newRow("equal weights") << QList<double>{} << QList<double>{0.0, 0.0, 90.0} << true << 30.0;
    QTest::newRow("samples before start are dropped") << QList<double>{100.0, 200.0} << QList<double>{10.0} << false << 10.0;
}

void tst_BMSpeedRecord::figures()
{
    QFETCH(QList<double>, beforeStart);
    QFETCH(QList<double>, speeds);
    QFETCH(bool, multi);
    QFETCH(double, average);
    LogCapture log;
    Brightmere::ManualClock clock(500.0);
    BMSpeedRecord record(&clock);
    for (double speed : beforeStart)
        record.addResult(WifiTestResult::create(speed));
    QVERIFY(!record.results().has_value());
    QCOMPARE(log.lines().size(), beforeStart.size());
    record.start();
    for (double speed : speeds)
        record.addResult(WifiTestResult::create(speed));
    QCOMPARE(record.isMultiResult(), multi);
    QCOMPARE(record.average(), average);
    QCOMPARE(record.results()->size(), speeds.size());
}

void tst_BMSpeedRecord::durationKeepsGrowingAfterFinish()
{
    Brightmere::ManualClock clock(760000000.0);
    BMSpeedRecord record(&clock);
    record.start();
    QCOMPARE(record.startTimeInterval(), 760000000.0);
    clock.advance(1.0);
    QCOMPARE(record.duration(), 1.0);
    record.finish();
    clock.advance(1.0);
    QCOMPARE(record.duration(), 2.0);
}

void tst_BMSpeedRecord::startEmptiesTheRecord()
{
    Brightmere::ManualClock clock(100.0);
    BMSpeedRecord record(&clock);
    record.start();
    record.addResult(WifiTestResult::create(5.0));
    record.addResult(WifiTestResult::create(7.0));
    clock.advance(30.0);
    record.start();
    QVERIFY(record.results()->isEmpty());
    QCOMPARE(record.duration(), 0.0);
    record.addResult(WifiTestResult::create(9.0));
    QCOMPARE(record.average(), 9.0);
}

QTEST_GUILESS_MAIN(tst_BMSpeedRecord)
#include "tst_BMSpeedRecord.moc"
