// The foundation's small services: keyed archives, the manual and system
// clocks, the notification centre and the main queue.
#include "platform/foundation/Archive.h"
#include "platform/foundation/MainQueue.h"
#include "platform/foundation/ManualClock.h"
#include "platform/foundation/NotificationCenter.h"

#include "TestEnvironment.h"

#include <QtTest>

#include <thread>

using namespace Brightmere;

Q_DECLARE_METATYPE(Archive::Error)

class tst_Foundation : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void archiveRefusals_data()
    {
        QTest::addColumn<QByteArray>("blob");
        QTest::addColumn<Archive::Error>("expected");
        const QByteArray good = Archive::archive(QVariantMap{{"Home", QStringList{"Kitchen", "Garage"}}});
        QByteArray flipped = good;
        flipped[flipped.size() - 3] = char(flipped.at(flipped.size() - 3) ^ 0x40);
        QByteArray future = good;
        future[5] = char(Archive::kFormatVersion + 1);
        QTest::newRow("the good one") << good << Archive::Error::None;
        QTest::newRow("empty") << QByteArray() << Archive::Error::Empty;
        QTest::newRow("foreign text") << QByteArray("<?xml version=\"1.0\"?><plist/>") << Archive::Error::Foreign;
        QTest::newRow("header cut") << good.left(20) << Archive::Error::Truncated;
        QTest::newRow("body cut by one byte") << good.chopped(1) << Archive::Error::Truncated;
        QTest::newRow("trailing byte") << good + '\0' << Archive::Error::Corrupt;
        QTest::newRow("body byte flipped") << flipped << Archive::Error::Corrupt;
        QTest::newRow("newer format") << future << Archive::Error::FutureVersion;
        // A header that promises a huge body must not make the reader allocate it.
        QTest::newRow("length beyond the blob") << good.left(6) + QByteArray::fromHex("7fffffff") + good.mid(10)
                                                << Archive::Error::Truncated;
    }
    void archiveRefusals()
    {
        QFETCH(Archive::Error, expected);
        Archive::Error error = Archive::Error::Empty;
        const auto value = Archive::unarchive<QVariantMap>(fetched<QByteArray>("blob"), &error);
        QCOMPARE(error, expected);
        QCOMPARE(value.has_value(), expected == Archive::Error::None);
        QVERIFY(!value || value->value("Home").toStringList() == QStringList({"Kitchen", "Garage"}));
    }

    // What a reader refuses, reads past the end of or leaves unread is corrupt.
    void archiveReaderMistakesAreCorrupt()
    {
        const QByteArray one = Archive::write([](QDataStream &s) { s << quint32(3); });
        const QByteArray two = Archive::write([](QDataStream &s) { s << quint32(1) << quint32(2); });
        quint32 n = 0;
        quint64 wide = 0;
        QCOMPARE(Archive::read(one, [&](QDataStream &s) { s >> n; return false; }), Archive::Error::Corrupt);
        QCOMPARE(Archive::read(one, [&](QDataStream &s) { s >> wide; return true; }), Archive::Error::Corrupt);
        QCOMPARE(Archive::read(two, [&](QDataStream &s) { s >> n; return true; }), Archive::Error::Corrupt);
    }

    void manualClockLosesNoTickAtTodaysDates_data()
    {
        QTest::addColumn<double>("start");
        QTest::addColumn<double>("interval");
        QTest::newRow("today, tenths") << 785000000.0 << 0.1;
        QTest::newRow("today, thirds") << 785000000.7 << 1.0 / 3.0;
    }
    void manualClockLosesNoTickAtTodaysDates()
    {
        QFETCH(double, interval);
        ManualClock clock(fetched<double>("start"));
        int ticks = 0;
        clock.startRepeating(interval, [&] { ++ticks; });
        for (int i = 0; i < 300; ++i)
            clock.advance(interval);
        QCOMPARE(ticks, 300);
    }

    void systemClockCountsFromTheReferenceDate()
    {
        const auto unixNow = [] { return QDateTime::currentDateTimeUtc().toMSecsSinceEpoch() / 1000.0 - 978307200.0; };
        const double before = unixNow(), now = Clock::system().now(), after = unixNow();
        QVERIFY2(now >= before - 0.002 && now <= after + 0.002, qPrintable(QString::number(now - before)));
    }

    void centreFiltersByNameAndSender_data()
    {
        QTest::addColumn<QString>("observedName");
        QTest::addColumn<bool>("restrictToSender");
        QTest::addColumn<QString>("postedName");
        QTest::addColumn<bool>("postFromSender");
        QTest::addColumn<bool>("delivered");
        QTest::newRow("same name") << "kScreenChange" << false << "kScreenChange" << false << true;
        QTest::newRow("other name") << "kScreenChange" << false << "kLanguageChange" << false << false;
        QTest::newRow("names are case-sensitive") << "kScreenChange" << false << "kscreenchange" << false << false;
        QTest::newRow("empty name observes all") << "" << false << "kAnything" << false << true;
        QTest::newRow("sender matches") << "kScreenChange" << true << "kScreenChange" << true << true;
        QTest::newRow("other sender") << "kScreenChange" << true << "kScreenChange" << false << false;
    }
    void centreFiltersByNameAndSender()
    {
        NotificationCenter center;
        QObject sender, stranger;
        int observer = 0, count = 0;
        center.addObserver(&observer, fetched<QString>("observedName"), [&](const Notification &) { ++count; },
                           fetched<bool>("restrictToSender") ? &sender : nullptr);
        center.postNotificationName(fetched<QString>("postedName"), fetched<bool>("postFromSender") ? &sender : &stranger);
        QCOMPARE(count, fetched<bool>("delivered") ? 1 : 0);
    }

    void centreObserversChangeDuringDelivery_data()
    {
        QTest::addColumn<bool>("removeWholeObserver");
        QTest::newRow("removed from all names") << true;
        QTest::newRow("removed from the posted name") << false;
    }
    void centreObserversChangeDuringDelivery()
    {
        QFETCH(bool, removeWholeObserver);
        NotificationCenter center;
        const QString name = QStringLiteral("kTextBundleAvailable");
        int first = 0, second = 0, third = 0, late = 0, lateCalls = 0;
        QStringList calls;
        center.addObserver(&first, name, [&](const Notification &) {
            calls << "first";
            if (calls.size() > 1)
                return;
            removeWholeObserver ? center.removeObserver(&second) : center.removeObserver(&second, name);
            // Added during a delivery: told from the next post on.
            center.addObserver(&late, name, [&](const Notification &) { ++lateCalls; });
        });
        center.addObserver(&second, name, [&](const Notification &) { calls << "second"; });
        center.postNotificationName(name);
        QCOMPARE(calls, QStringList{"first"});
        QCOMPARE(lateCalls, 0);
        // Removing oneself from inside one's own callback is safe too.
        center.addObserver(&third, name, [&](const Notification &) { calls << "third"; center.removeObserver(&third); });
        center.postNotificationName(name);
        QCOMPARE(calls, (QStringList{"first", "first", "third"}));
        QCOMPARE(lateCalls, 1);
        QCOMPARE(center.observerCount(name), 2);
    }

    void mainQueueRunsLaterInOrderOnTheMainThread()
    {
        QStringList order;
        bool wasMain = false;
        MainQueue::async([&] { order << "1"; });
        std::thread worker([&] {
            wasMain = MainQueue::isMainThread();
            MainQueue::async([&] { order << (MainQueue::isMainThread() ? "worker" : "worker, off the main thread"); });
            MainQueue::after(0.01, [&] { order << "worker after"; });
        });
        worker.join();
        MainQueue::async([&] { order << "2"; });
        order << "now";
        QTRY_COMPARE(order, (QStringList{"now", "1", "worker", "2", "worker after"}));
        QVERIFY(!wasMain);
    }

    // Delays order the work, whatever the machine's load: a later deadline
    // never runs first, and a task runs only once its timer is gone.
    void mainQueueDelaysOrderTheWork()
    {
        QObject context;
        QStringList order;
        const auto note = [&](const char *delay) { order << QStringLiteral("%1, pending %2").arg(delay).arg(MainQueue::pendingCount(&context)); };
        MainQueue::after(&context, 0.05, [&] { note("0.05 s"); });
        MainQueue::after(&context, 0.01, [&] { note("0.01 s"); });
        QCOMPARE(MainQueue::pendingCount(&context), 2);
        QTRY_COMPARE(order, (QStringList{"0.01 s, pending 1", "0.05 s, pending 0"}));
    }

    // Work tied to a context that is gone, or cancelled, never runs: work
    // with a later deadline that did run proves it.
    void mainQueueDropsWorkOfAContextGoneOrCancelled()
    {
        int ran = 0, otherRuns = 0;
        auto *gone = new QObject;
        MainQueue::async(gone, [&] { ++ran; });
        MainQueue::after(gone, 0.0, [&] { ++ran; });
        delete gone;
        QObject screen, other;
        MainQueue::after(&screen, 0.01, [&] { ++ran; });
        MainQueue::after(&screen, 0.02, [&] { ++ran; });
        MainQueue::after(&other, 0.03, [&] { ++otherRuns; });
        MainQueue::cancelAll(&screen);
        QCOMPARE(MainQueue::pendingCount(&screen), 0);
        QTRY_COMPARE(otherRuns, 1);
        QCOMPARE(ran, 0);
    }
};

QTEST_GUILESS_MAIN(tst_Foundation)
#include "tst_Foundation.moc"
