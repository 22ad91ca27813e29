#include "core/BMSDKBackend.h"
#include "core/BMSimulatedNetwork.h"
#include "core/BMSimulatedWalk.h"
#include "core/BMSimulatedWiFiTester.h"
#include "platform/foundation/ManualClock.h"

#include "TestEnvironment.h"
#include "WiFiTesterRecorder.h"

#include <QTest>

#include <cmath>
#include <memory>

using Location = std::optional<BMLocationCoordinate2D>;
Q_DECLARE_METATYPE(Location)

namespace {

// Small enough that sums of intervals stay exact to well under a nanosecond.
constexpr double kStart = 100000.0;

double metresBetween(const BMLocationCoordinate2D &a, const BMLocationCoordinate2D &b)
{
    return std::hypot((b.latitude - a.latitude) * 111320.0,
                      (b.longitude - a.longitude) * 111320.0 * std::cos(a.latitude * M_PI / 180.0));
}

} // namespace

class tst_BMSimulatedWiFiTester : public QObject
{
    Q_OBJECT

    std::unique_ptr<TestEnvironment> m_env;
    std::unique_ptr<Brightmere::ManualClock> m_clock;
    std::unique_ptr<BMSimulatedWiFiTester> m_tester;
    WiFiTesterRecorder m_recorder;

    void startTester(const Location &location = std::nullopt)
    {
        m_tester = std::make_unique<BMSimulatedWiFiTester>();
        m_tester->initializeWithAppId("app", location, QString(), {});
        m_tester->setResultDelegate(&m_recorder);
        m_tester->start();
    }
    void advanceIntervals(double count) { m_clock->advance(BMSDKBackend::sampleInterval() * count); }
    QList<double> speedsForSeed(quint32 seed, int count)
    {
        BMSDKBackend::setSimulatedSeed(seed);
        m_recorder = WiFiTesterRecorder();
        startTester();
        advanceIntervals(count + 1);
        m_tester.reset();
        return m_recorder.speeds();
    }

private Q_SLOTS:
    void init()
    {
        m_env = std::make_unique<TestEnvironment>();
        m_clock = std::make_unique<Brightmere::ManualClock>(kStart);
        BMSDKBackend::setClock(m_clock.get());
        m_recorder = WiFiTesterRecorder();
    }
    void cleanup()
    {
        m_tester.reset();
        m_env.reset();
        m_clock.reset();
    }

    void determinism_data()
    {
        QTest::addColumn<quint32>("first");
        QTest::addColumn<quint32>("second");
        QTest::addColumn<bool>("same");
        QTest::newRow("same seed, same speeds") << 7u << 7u << true;
        QTest::newRow("neighbouring seeds differ") << 7u << 8u << false;
        QTest::newRow("far seeds differ") << 1u << 4000000000u << false;
    }
    void determinism()
    {
        QFETCH(quint32, first);
        QFETCH(quint32, second);
        QFETCH(bool, same);
        const QList<double> a = speedsForSeed(first, 120);
        QCOMPARE(a.size(), 120);
        QCOMPARE(a == speedsForSeed(second, 120), same);
    }

    void traceReplay_data()
    {
        QTest::addColumn<QList<double>>("trace");
        QTest::addColumn<QList<double>>("expected");
        QTest::newRow("in order, then looped") << QList<double>{10, 20, 30} << QList<double>{10, 20, 30, 10, 20, 30, 10};
        QTest::newRow("one value repeats") << QList<double>{42.5} << QList<double>{42.5, 42.5, 42.5};
        QTest::newRow("negative samples replayed as recorded") << QList<double>{5, -1} << QList<double>{5, -1, 5};
    }
    void traceReplay()
    {
        QFETCH(QList<double>, trace);
        QFETCH(QList<double>, expected);
        BMSDKBackend::setSimulatedTrace(trace);
        startTester();
        advanceIntervals(expected.size() + 1);
        QCOMPARE(m_recorder.speeds(), expected);
        // A new test replays the trace from its start.
        m_tester->stop();
        m_recorder = WiFiTesterRecorder();
        m_tester->start();
        advanceIntervals(2);
        QCOMPARE(m_recorder.speeds(), expected.mid(0, 1));
    }

    void rate_data()
    {
        QTest::addColumn<double>("interval");
        QTest::addColumn<int>("count");
        QTest::newRow("one result at half a second") << 0.5 << 1;
        QTest::newRow("five results a second apart") << 1.0 << 5;
        QTest::newRow("forty results at a tenth of a second") << 0.1 << 40;
    }
    void rate()
    {
        QFETCH(double, interval);
        QFETCH(int, count);
        BMSDKBackend::setSampleInterval(interval);
        startTester();
        m_tester->start(); // already running: nothing changes
        advanceIntervals(0.99);
        QVERIFY(m_recorder.events.isEmpty());
        advanceIntervals(0.01);
        QCOMPARE(m_recorder.events, QStringList{"setup"});
        advanceIntervals(count);
        QCOMPARE(m_recorder.results.size(), count);
        QCOMPARE(m_recorder.results.last()->timeAfterTest(), m_clock->now());

        m_tester->stop();
        m_tester->stop();
        QVERIFY(!m_tester->isRunning());
        advanceIntervals(10);
        QCOMPARE(m_recorder.events.size(), count + 1);
        QCOMPARE(m_clock->activeTimerCount(), 0);

        m_recorder = WiFiTesterRecorder();
        m_tester->start();
        advanceIntervals(count + 1);
        QCOMPARE(m_recorder.events.first(), QStringLiteral("setup"));
        QCOMPARE(m_recorder.results.size(), count);
    }

    void resultFields()
    {
        BMSimulatedNetwork::shared().setNetwork("Attic", "00:11:22:33:44:55");
        startTester();
        advanceIntervals(3);
        QCOMPARE(m_recorder.events, (QStringList{"setup", "result", "result"}));
        QVERIFY(m_recorder.results[0] != m_recorder.results[1]);
        const auto &r = m_recorder.results.last();
        QCOMPARE(r->ssid(), QStringLiteral("Attic"));
        QCOMPARE(r->bssid(), QStringLiteral("00:11:22:33:44:55"));
        QVERIFY(r->label().isEmpty() && !r->isAverage());
        QCOMPARE(r->duration(), 0.0);
        QCOMPARE(r->timeAfterTest(), kStart + 3 * BMSDKBackend::sampleInterval());
        QCOMPARE(r->coordinate(), m_tester->location());
    }

    void wifiGoesAway_data()
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
    void wifiGoesAway()
    {
        QFETCH(int, resultsBefore);
        QFETCH(int, status);
        QFETCH(QStringList, events);
        startTester();
        advanceIntervals(resultsBefore + 1);
        BMSimulatedNetwork::shared().setReachabilityStatus(status);
        advanceIntervals(10);
        QCOMPARE(m_recorder.events, events);
        QVERIFY(!m_tester->isRunning());
        QCOMPARE(m_clock->activeTimerCount(), 0);
        const BMError error = m_recorder.errors.last();
        QCOMPARE(error.domain(), BMWiFiTester::kErrorDomain);
        QCOMPARE(error.code(), int(BMWiFiTester::ErrorNoWiFi));
        QVERIFY(error.localizedDescription().contains("Wi-Fi"));
    }

    void delegateActsInsideCallback_data()
    {
        QTest::addColumn<QString>("when");
        QTest::addColumn<QString>("action");
        QTest::addColumn<bool>("wifi");
        QTest::addColumn<QStringList>("events");
        QTest::newRow("stop at setup") << "setup" << "stop" << true << QStringList{"setup"};
        QTest::newRow("stop at a result") << "result" << "stop" << true << QStringList{"setup", "result"};
        QTest::newRow("delete at setup") << "setup" << "delete" << true << QStringList{"setup"};
        QTest::newRow("delete at a result") << "result" << "delete" << true << QStringList{"setup", "result"};
        QTest::newRow("restart at a result")
            << "result" << "restart" << true << QStringList{"setup", "result", "setup", "result"};
        // Stopped or gone at the setup failure: no finish call follows.
        QTest::newRow("stop at a setup failure") << "setup-error" << "stop" << false << QStringList{"setup-error"};
        QTest::newRow("delete at a setup failure") << "setup-error" << "delete" << false << QStringList{"setup-error"};
    }
    void delegateActsInsideCallback()
    {
        QFETCH(QString, when);
        QFETCH(QString, action);
        QFETCH(bool, wifi);
        QFETCH(QStringList, events);
        if (!wifi)
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
        startTester();
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
        m_tester = std::make_unique<BMSimulatedWiFiTester>();
        m_tester->setResultDelegate(&m_recorder);
        std::unique_ptr<QThread> worker(QThread::create([this] { m_tester->start(); }));
        worker->start();
        QVERIFY(worker->wait(5000));
        QTRY_VERIFY(m_recorder.results.size() >= 2);
        m_tester->stop();
        for (QThread *callbackThread : std::as_const(m_recorder.threads))
            QCOMPARE(callbackThread, thread());
    }

    void longWalk_data()
    {
        QTest::addColumn<quint32>("seed");
        QTest::addColumn<Location>("given");
        QTest::newRow("default seed, fixed home") << BMSDKBackend::simulatedSeed() << Location();
        QTest::newRow("seed 1, fixed home") << 1u << Location();
        QTest::newRow("seed 99, the host's location") << 99u << Location(BMLocationCoordinate2D{-33.86, 151.21});
    }
    // Never negative, realistic near and far from the router, and the
    // location moves with the walker at walking pace around the home.
    void longWalk()
    {
        QFETCH(quint32, seed);
        QFETCH(Location, given);
        const BMLocationCoordinate2D home = given.value_or(BMSimulatedWalk::kHome);
        BMSDKBackend::setSimulatedSeed(seed);
        BMSDKBackend::setSampleInterval(1.0);
        startTester(given);
        advanceIntervals(2001);
        QCOMPARE(m_recorder.results.size(), 2000);
        double nearSum = 0, farSum = 0;
        int nearCount = 0, farCount = 0;
        QList<BMLocationCoordinate2D> places;
        for (qsizetype i = 0; i < m_recorder.results.size(); ++i) {
            const double speed = m_recorder.results[i]->speedInMbps();
            const BMLocationCoordinate2D place = m_recorder.results[i]->coordinate().value();
            QVERIFY2(speed >= 0.0 && speed <= 330.0, qPrintable(QString::number(speed)));
            const double fromRouter = metresBetween(home, place);
            QVERIFY(fromRouter < 20.0);
            if (i > 0)
                QVERIFY(metresBetween(places.last(), place) <= BMSimulatedWalk::kFastestPace + 1e-6);
            places << place;
            if (fromRouter < 3.0)
                nearSum += speed, ++nearCount;
            else if (fromRouter > 12.0)
                farSum += speed, ++farCount;
        }
        QCOMPARE(m_tester->location(), m_recorder.results.last()->coordinate());
        QVERIFY(nearCount > 50 && farCount > 50);
        QVERIFY(nearSum / nearCount > 200.0);
        QVERIFY(farSum / farCount < 15.0);
    }
};

QTEST_GUILESS_MAIN(tst_BMSimulatedWiFiTester)
#include "tst_BMSimulatedWiFiTester.moc"
