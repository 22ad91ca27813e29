#include "platform/foundation/MainQueue.h"

#include <QtTest>

#include <thread>

using Brightmere::MainQueue;

class tst_MainQueue : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void asyncRunsLaterInOrder();
    void asyncFromWorkerThreadRunsOnMain();
    void contextGoneDropsWork();
    void afterRunsAfterDelay();
    void cancelAllStopsOnlyThatContext();
    void afterFromWorkerThread();
};

void tst_MainQueue::asyncRunsLaterInOrder()
{
    QStringList order;
    MainQueue::async([&] { order << QStringLiteral("1"); });
    MainQueue::async([&] { order << QStringLiteral("2"); });
    order << QStringLiteral("now");
    QTRY_COMPARE(order, (QStringList{QStringLiteral("now"), QStringLiteral("1"), QStringLiteral("2")}));
}

void tst_MainQueue::asyncFromWorkerThreadRunsOnMain()
{
    QThread *ranOn = nullptr;
    bool wasMain = false;
    std::thread worker([&] {
        QVERIFY(!MainQueue::isMainThread());
        MainQueue::async([&] {
            ranOn = QThread::currentThread();
            wasMain = MainQueue::isMainThread();
        });
    });
    worker.join();
    QTRY_VERIFY(ranOn != nullptr);
    QCOMPARE(ranOn, qApp->thread());
    QVERIFY(wasMain);
}

void tst_MainQueue::contextGoneDropsWork()
{
    bool ran = false;
    auto *context = new QObject;
    MainQueue::async(context, [&] { ran = true; });
    MainQueue::after(context, 0.0, [&] { ran = true; });
    delete context;
    bool sentinel = false;
    MainQueue::after(0.01, [&] { sentinel = true; });
    QTRY_VERIFY(sentinel);
    QVERIFY(!ran);
}

void tst_MainQueue::afterRunsAfterDelay()
{
    QObject context;
    QElapsedTimer timer;
    timer.start();
    qint64 elapsed = -1;
    MainQueue::after(&context, 0.05, [&] { elapsed = timer.elapsed(); });
    QCOMPARE(MainQueue::pendingCount(&context), 1);
    QTRY_VERIFY(elapsed >= 0);
    QVERIFY(elapsed >= 45);
    QCOMPARE(MainQueue::pendingCount(&context), 0);
}

void tst_MainQueue::cancelAllStopsOnlyThatContext()
{
    QObject screen, other;
    int screenRuns = 0, otherRuns = 0;
    MainQueue::after(&screen, 0.01, [&] { ++screenRuns; });
    MainQueue::after(&screen, 0.02, [&] { ++screenRuns; });
    MainQueue::after(&other, 0.02, [&] { ++otherRuns; });
    MainQueue::cancelAll(&screen);
    QCOMPARE(MainQueue::pendingCount(&screen), 0);
    QTRY_COMPARE(otherRuns, 1);
    QTest::qWait(20);
    QCOMPARE(screenRuns, 0);
}

void tst_MainQueue::afterFromWorkerThread()
{
    bool ranOnMain = false;
    std::thread worker([&] { MainQueue::after(0.01, [&] { ranOnMain = MainQueue::isMainThread(); }); });
    worker.join();
    QTRY_VERIFY(ranOnMain);
}

QTEST_GUILESS_MAIN(tst_MainQueue)
#include "tst_MainQueue.moc"
