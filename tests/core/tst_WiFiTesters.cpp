// The Wi-Fi testers on a ManualClock, as the factory makes them: the
// simulated one, and the HTTP one against a loopback server whose bytes the
// test counts out. That the customer's password is never written is checked
// where the test screen runs a tester (tst_BMWifiScanVC).
#include "core/BMSDKBackend.h"
#include "core/BMSimulatedNetwork.h"
#include "core/BMSimulatedWiFiTester.h"
#include "core/BMTesterFactory.h"
#include "core/BMWiFiTesterDelegate.h"
#include "platform/foundation/ManualClock.h"

#include "ScriptedHttpServer.h"
#include "TestEnvironment.h"

#include <QTest>
#include <QThread>

#include <memory>

using Kind = BMSDKBackend::Kind;
using S = ScriptedHttpServer;

namespace {

constexpr double kStart = 100000.0;

// Every delegate call ("setup", "setup-error", "result", "finish"); it can
// act from inside one, as a screen would.
struct Recorder : BMWiFiTesterDelegate
{
    QStringList events;
    WifiTestResult::List results;
    QList<BMError> errors;
    std::function<void(BMWiFiTester *, const QString &)> onEvent;

    void wiFiTesterDidFinishSetupWithError(BMWiFiTester *t, const std::optional<BMError> &e) override
    {
        note(t, e ? "setup-error" : "setup", e);
    }
    void wiFiTesterDidUpdateWithTestResult(BMWiFiTester *t, const WifiTestResult::Ptr &result) override
    {
        results << result;
        note(t, "result", std::nullopt);
    }
    void wiFiTesterDidFinishWithError(BMWiFiTester *t, const std::optional<BMError> &e) override { note(t, "finish", e); }
    QList<double> speeds() const
    {
        QList<double> list;
        for (const auto &r : results)
            list << r->speedInMbps();
        return list;
    }
    void note(BMWiFiTester *tester, const QString &event, const std::optional<BMError> &error)
    {
        if (error)
            errors << *error;
        events << event;
        if (onEvent)
            onEvent(tester, event);
    }
};

} // namespace

class tst_WiFiTesters : public QObject
{
    Q_OBJECT

    std::unique_ptr<TestEnvironment> m_env;
    std::unique_ptr<Brightmere::ManualClock> m_clock;
    std::unique_ptr<BMWiFiTester> m_tester;
    Recorder m_recorder;

    void start(Kind kind, const QString &url = QString())
    {
        BMSDKBackend::setKind(kind);
        BMSDKBackend::setSystemDownloadUrl(QUrl(url));
        m_tester = BMTesterFactory::createWiFiTesterWithSDKCustomer("acme", "pw", true);
        m_tester->setResultDelegate(&m_recorder);
        m_tester->start();
        QVERIFY(m_recorder.events.isEmpty()); // never told from inside start()
    }
    void advanceIntervals(double count) { m_clock->advance(BMSDKBackend::sampleInterval() * count); }

private Q_SLOTS:
    void init()
    {
        m_env = std::make_unique<TestEnvironment>();
        m_clock = std::make_unique<Brightmere::ManualClock>(kStart);
        BMSDKBackend::setClock(m_clock.get());
        m_recorder = Recorder();
    }
    void cleanup()
    {
        m_tester.reset();
        m_env.reset();
        m_clock.reset();
    }

    void simulatedRate_data()
    {
        QTest::addColumn<double>("interval");
        QTest::addColumn<int>("count");
        QTest::newRow("one result at half a second") << 0.5 << 1;
        QTest::newRow("forty results at a tenth of a second") << 0.1 << 40;
    }
    void simulatedRate()
    {
        QFETCH(double, interval);
        QFETCH(int, count);
        BMSDKBackend::setSampleInterval(interval);
        BMSimulatedNetwork::shared().setNetwork("Attic", "00:11:22:33:44:55");
        start(Kind::Simulated);
        m_tester->start(); // already running: nothing changes
        advanceIntervals(0.99);
        QVERIFY(m_recorder.events.isEmpty());
        advanceIntervals(0.01);
        QCOMPARE(m_recorder.events, QStringList{"setup"});
        advanceIntervals(count);
        QCOMPARE(m_recorder.results.size(), count);
        const auto &last = m_recorder.results.last();
        QCOMPARE(last->timeAfterTest(), m_clock->now());
        QCOMPARE(last->ssid() + u' ' + last->bssid(), QStringLiteral("Attic 00:11:22:33:44:55"));
        QCOMPARE(last->coordinate(), m_tester->location());

        m_tester->stop();
        m_tester->stop();
        advanceIntervals(10);
        QCOMPARE(m_recorder.events.size(), count + 1);
        QCOMPARE(m_clock->activeTimerCount(), 0);
        m_recorder = Recorder();
        m_tester->start();
        advanceIntervals(count + 1);
        QCOMPARE(m_recorder.events.first(), QStringLiteral("setup"));
        QCOMPARE(m_recorder.results.size(), count);
    }

    void simulatedWifiGoesAway_data()
    {
        QTest::addColumn<int>("resultsBefore");
        QTest::addColumn<int>("status");
        QTest::addColumn<QStringList>("events");
        QTest::newRow("lost before setup")
            << -1 << int(BMSimulatedNetwork::kNotReachable) << QStringList{"setup-error", "finish"};
        QTest::newRow("lost during the test")
            << 2 << int(BMSimulatedNetwork::kNotReachable) << QStringList{"setup", "result", "result", "finish"};
        QTest::newRow("another medium is not Wi-Fi")
            << 0 << int(BMSimulatedNetwork::kReachableViaOther) << QStringList{"setup", "finish"};
    }
    void simulatedWifiGoesAway()
    {
        QFETCH(int, resultsBefore);
        QFETCH(int, status);
        QFETCH(QStringList, events);
        start(Kind::Simulated);
        advanceIntervals(resultsBefore + 1);
        BMSimulatedNetwork::shared().setReachabilityStatus(status);
        advanceIntervals(10);
        QCOMPARE(m_recorder.events, events);
        QVERIFY(!m_tester->isRunning());
        QCOMPARE(m_clock->activeTimerCount(), 0);
        QCOMPARE(m_recorder.errors.last().domain(), BMWiFiTester::kErrorDomain);
        QCOMPARE(m_recorder.errors.last().code(), int(BMWiFiTester::ErrorNoWiFi));
    }

    void delegateActsInsideCallback_data()
    {
        QTest::addColumn<QString>("when");
        QTest::addColumn<QString>("action");
        QTest::addColumn<QStringList>("events");
        QTest::newRow("stop at setup") << "setup" << "stop" << QStringList{"setup"};
        QTest::newRow("stop at a result") << "result" << "stop" << QStringList{"setup", "result"};
        QTest::newRow("delete at setup") << "setup" << "delete" << QStringList{"setup"};
        QTest::newRow("delete at a result") << "result" << "delete" << QStringList{"setup", "result"};
        QTest::newRow("restart at a result") << "result" << "restart" << QStringList{"setup", "result", "setup", "result"};
        // Stopped or gone at the setup failure: no finish call follows.
        QTest::newRow("stop at a setup failure") << "setup-error" << "stop" << QStringList{"setup-error"};
        QTest::newRow("delete at a setup failure") << "setup-error" << "delete" << QStringList{"setup-error"};
    }
    void delegateActsInsideCallback()
    {
        QFETCH(QString, when);
        QFETCH(QString, action);
        QFETCH(QStringList, events);
        if (when == u"setup-error")
            BMSimulatedNetwork::shared().setReachabilityStatus(BMSimulatedNetwork::kNotReachable);
        m_recorder.onEvent = [&](BMWiFiTester *tester, const QString &event) {
            if (event != when || m_recorder.events.count(event) > 1)
                return;
            if (action == u"delete")
                return m_tester.reset();
            tester->stop();
            if (action == u"restart")
                tester->start();
        };
        start(Kind::Simulated);
        advanceIntervals(4);
        QCOMPARE(m_recorder.events.mid(0, events.size()), events);
        if (action != u"restart") {
            QCOMPARE(m_recorder.events.size(), events.size());
            QCOMPARE(m_clock->activeTimerCount(), 0);
        }
    }

    void callbacksArriveOnTheOwnerThread()
    {
        BMSDKBackend::setClock(nullptr);
        BMSDKBackend::setSampleInterval(0.02);
        bool allOnOwnerThread = true;
        m_recorder.onEvent = [&](BMWiFiTester *, const QString &) { allOnOwnerThread = allOnOwnerThread && QThread::currentThread() == thread(); };
        m_tester = std::make_unique<BMSimulatedWiFiTester>();
        m_tester->setResultDelegate(&m_recorder);
        std::unique_ptr<QThread> worker(QThread::create([this] { m_tester->start(); }));
        worker->start();
        QVERIFY(worker->wait(5000));
        QTRY_VERIFY(m_recorder.results.size() >= 2);
        m_tester->stop();
        QVERIFY(allOnOwnerThread);
    }

    void httpSetupFails_data()
    {
        QTest::addColumn<QString>("address");
        QTest::addColumn<int>("code");
        QTest::newRow("no address configured") << QString() << int(BMWiFiTester::ErrorNoDownloadAddress);
        QTest::newRow("not an http address") << "ftp://127.0.0.1/blob" << int(BMWiFiTester::ErrorNoDownloadAddress);
        QTest::newRow("nothing listens") << "closed" << int(BMWiFiTester::ErrorConnectionFailed);
        QTest::newRow("the server answers 404") << "404" << int(BMWiFiTester::ErrorConnectionFailed);
    }
    void httpSetupFails()
    {
        QFETCH(QString, address);
        QFETCH(int, code);
        ScriptedHttpServer server; // 404 to everything
        const QString url = server.baseUrl() + QStringLiteral("/blob");
        if (address == u"closed")
            server.close();
        if (address == u"404" || address == u"closed")
            address = url;
        start(Kind::System, address);
        QTRY_VERIFY_WITH_TIMEOUT(m_recorder.events.contains("finish"), 10000);
        QCOMPARE(m_recorder.events, (QStringList{"setup-error", "finish"}));
        QVERIFY(!m_tester->isRunning());
        QCOMPARE(m_recorder.errors.first().code(), code);
        QCOMPARE(m_recorder.errors.first().domain(), BMWiFiTester::kErrorDomain);
    }

    // The speed is the bytes of an interval over the real time it lasted,
    // and nothing carries over to the next interval. The nominal interval is
    // a day here: a tester that divided by it would give a speed far below
    // what the same bytes make over an hour, longer than any run of this
    // test may last. How close the figure comes to a served rate is
    // bench/bench_http_tester's.
    void httpSpeedIsTheBytesOverTheRealInterval()
    {
        const qint64 body = 250'000;
        ScriptedHttpServer server;
        server.setAnswerOnce("/blob", S::http(200, QByteArray(body, 'x')));
        server.setAnswer("/blob", S::http(200, QByteArray(), qint64(1) << 40), S::Ending::KeepOpen);
        BMSDKBackend::setSampleInterval(86400.0);
        start(Kind::System, server.baseUrl() + QStringLiteral("/blob"));
        // The first download is counted to its end once the next one is asked for.
        QTRY_COMPARE(server.requestedPaths().size(), 2);
        advanceIntervals(1);
        advanceIntervals(1);
        QCOMPARE(m_recorder.events, (QStringList{"setup", "result", "result"}));
        QVERIFY2(m_recorder.speeds().first() >= double(body) * 8.0 / 1e6 / 3600.0, qPrintable(QString::number(m_recorder.speeds().first())));
        QCOMPARE(m_recorder.speeds().last(), 0.0);
        m_tester->stop();
        advanceIntervals(3);
        QCOMPARE(m_recorder.events.size(), 3);
        QCOMPARE(m_clock->activeTimerCount(), 0);
    }

    void httpDroppedConnectionFinishesTheTest_data()
    {
        QTest::addColumn<int>("ending");
        QTest::newRow("closed mid-body") << int(S::Ending::Close);
        QTest::newRow("reset mid-body") << int(S::Ending::Reset);
    }
    void httpDroppedConnectionFinishesTheTest()
    {
        QFETCH(int, ending);
        ScriptedHttpServer server;
        server.setAnswer("/blob", S::http(200, QByteArray(1000, 'x'), qint64(1) << 40), S::Ending::KeepOpen);
        start(Kind::System, server.baseUrl() + QStringLiteral("/blob"));
        QTRY_VERIFY(m_recorder.events.contains("setup"));
        advanceIntervals(1);
        server.endOpenConnections(S::Ending(ending));
        QTRY_VERIFY_WITH_TIMEOUT(m_recorder.events.contains("finish"), 10000);
        QCOMPARE(m_recorder.events, (QStringList{"setup", "result", "finish"}));
        QCOMPARE(m_recorder.errors.last().code(), int(BMWiFiTester::ErrorDownloadFailed));
        QVERIFY(!m_tester->isRunning());
        QCOMPARE(server.requestedPaths().size(), 1);
    }
};

QTEST_GUILESS_MAIN(tst_WiFiTesters)
#include "tst_WiFiTesters.moc"
