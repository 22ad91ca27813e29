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

Q_DECLARE_METATYPE(std::optional<BMLocationCoordinate2D>)
Q_DECLARE_METATYPE(BMLocationCoordinate2D)

namespace {

// Small enough that sums of intervals stay exact to well under a nanosecond.
constexpr double kStart = 100000.0;

// Metres between a coordinate and the home's router, flat-earth.
double metresFrom(const BMLocationCoordinate2D &home, const BMLocationCoordinate2D &c)
{
    const double north = (c.latitude - home.latitude) * 111320.0;
    const double east = (c.longitude - home.longitude) * 111320.0 * std::cos(home.latitude * M_PI / 180.0);
    return std::hypot(north, east);
}

} // namespace

class tst_BMSimulatedWiFiTester : public QObject
{
    Q_OBJECT

private:
    std::unique_ptr<TestEnvironment> m_env;
    std::unique_ptr<Brightmere::ManualClock> m_clock;
    std::unique_ptr<BMSimulatedWiFiTester> m_tester;
    WiFiTesterRecorder m_recorder;

    void startTester()
    {
        m_tester = std::make_unique<BMSimulatedWiFiTester>();
        m_tester->setResultDelegate(&m_recorder);
        m_tester->start();
    }
    QList<double> runSpeeds(quint32 seed, int count)
    {
        BMSDKBackend::setSimulatedSeed(seed);
        m_recorder = WiFiTesterRecorder();
        startTester();
        m_clock->advance(BMSDKBackend::sampleInterval() * (count + 1));
        m_tester.reset();
        return m_recorder.speeds();
    }

private Q_SLOTS:
    void init()
    {
        m_env = std::make_unique<TestEnvironment>();
        m_clock = std::make_unique<Brightmere::ManualClock>(kStart);
        BMSDKBackend::setClock(m_clock.get());
        BMSDKBackend::setSampleInterval(0.5);
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
        const QList<double> a = runSpeeds(first, 120);
        const QList<double> b = runSpeeds(second, 120);
        QCOMPARE(a.size(), 120);
        QCOMPARE(a == b, same);
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
        m_clock->advance(0.5 * (expected.size() + 1));
        QCOMPARE(m_recorder.speeds(), expected);
        // A new test replays the trace from its start.
        m_tester->stop();
        m_recorder = WiFiTesterRecorder();
        m_tester->start();
        m_clock->advance(1.0);
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
        m_clock->advance(interval * 0.99);
        QVERIFY(m_recorder.events.isEmpty());
        m_clock->advance(interval * 0.01);
        QCOMPARE(m_recorder.events, QStringList{"setup"});
        m_clock->advance(interval * count);
        QCOMPARE(m_recorder.results.size(), count);
        QCOMPARE(m_recorder.results.last()->timeAfterTest(), m_clock->now());

        m_tester->stop();
        QVERIFY(!m_tester->isRunning());
        m_clock->advance(interval * 10);
        QCOMPARE(m_recorder.results.size(), count);
        QCOMPARE(m_clock->activeTimerCount(), 0);

        // Restart: setup again after one interval, then results again.
        m_recorder = WiFiTesterRecorder();
        m_tester->start();
        m_clock->advance(interval * (count + 1));
        QCOMPARE(m_recorder.events.first(), QStringLiteral("setup"));
        QCOMPARE(m_recorder.results.size(), count);
    }

    void startAndStopAreIdempotent()
    {
        startTester();
        m_tester->start();
        m_clock->advance(0.5 * 4);
        QCOMPARE(m_recorder.events, (QStringList{"setup", "result", "result", "result"}));
        m_tester->stop();
        m_tester->stop();
        QCOMPARE(m_clock->activeTimerCount(), 0);
        QCOMPARE(m_recorder.events.size(), 4);
    }

    void resultFields()
    {
        BMSimulatedNetwork::shared().setNetwork("Attic", "00:11:22:33:44:55");
        startTester();
        m_clock->advance(0.5 * 3);
        QCOMPARE(m_recorder.events.first(), QStringLiteral("setup"));
        QCOMPARE(m_recorder.results.size(), 2);
        QVERIFY(m_recorder.results[0] != m_recorder.results[1]);
        const auto &r = m_recorder.results.last();
        QCOMPARE(r->ssid(), QStringLiteral("Attic"));
        QCOMPARE(r->bssid(), QStringLiteral("00:11:22:33:44:55"));
        QVERIFY(r->label().isEmpty());
        QVERIFY(!r->isAverage());
        QCOMPARE(r->duration(), 0.0);
        QCOMPARE(r->timeAfterTest(), kStart + 1.5);
        QCOMPARE(r->coordinate(), m_tester->location());
    }

    void wifiGoesAway_data()
    {
        QTest::addColumn<int>("resultsBefore");
        QTest::addColumn<int>("status");
        QTest::addColumn<QStringList>("events");
        QTest::newRow("lost before setup") << -1 << int(BMSimulatedNetwork::kNotReachable)
                                           << QStringList{"setup-error", "finish"};
        QTest::newRow("lost during the test") << 2 << int(BMSimulatedNetwork::kNotReachable)
                                              << QStringList{"setup", "result", "result", "finish"};
        QTest::newRow("another medium is not Wi-Fi") << 0 << int(BMSimulatedNetwork::kReachableViaOther)
                                                     << QStringList{"setup", "finish"};
    }
    void wifiGoesAway()
    {
        QFETCH(int, resultsBefore);
        QFETCH(int, status);
        QFETCH(QStringList, events);
        startTester();
        m_clock->advance(0.5 * (resultsBefore + 1));
        BMSimulatedNetwork::shared().setReachabilityStatus(status);
        m_clock->advance(0.5 * 10);
        QCOMPARE(m_recorder.events, events);
        QVERIFY(!m_tester->isRunning());
        QCOMPARE(m_clock->activeTimerCount(), 0);
        QVERIFY(!m_recorder.errors.isEmpty());
        QCOMPARE(m_recorder.errors.last().domain(), BMWiFiTester::kErrorDomain);
        QCOMPARE(m_recorder.errors.last().code(), int(BMWiFiTester::ErrorNoWiFi));
        QVERIFY(m_recorder.errors.last().localizedDescription().contains("Wi-Fi"));
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
        QTest::newRow("restart at the first result")
            << "result" << "restart" << QStringList{"setup", "result", "setup", "result"};
    }
    void delegateActsInsideCallback()
    {
        QFETCH(QString, when);
        QFETCH(QString, action);
        QFETCH(QStringList, events);
        m_recorder.onEvent = [&](BMWiFiTester *tester, const QString &event) {
            if (event != when || m_recorder.events.count(event) > 1)
                return;
            if (action == u"delete") {
                m_tester.reset();
                return;
            }
            tester->stop();
            if (action == u"restart")
                tester->start();
        };
        startTester();
        m_clock->advance(0.5 * 4);
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

    void walkSpeedsStayRealistic_data()
    {
        QTest::addColumn<quint32>("seed");
        QTest::newRow("default seed") << BMSDKBackend::simulatedSeed();
        QTest::newRow("seed 1") << 1u;
        QTest::newRow("seed 99") << 99u;
    }
    void walkSpeedsStayRealistic()
    {
        QFETCH(quint32, seed);
        BMSDKBackend::setSimulatedSeed(seed);
        BMSDKBackend::setSampleInterval(1.0);
        startTester();
        m_clock->advance(2001);
        QCOMPARE(m_recorder.results.size(), 2000);
        double nearSum = 0, farSum = 0;
        int nearCount = 0, farCount = 0;
        BMLocationCoordinate2D previous = BMSimulatedWalk::kHome;
        for (qsizetype i = 0; i < m_recorder.results.size(); ++i) {
            const auto &r = m_recorder.results[i];
            QVERIFY2(r->speedInMbps() >= 0.0, qPrintable(QString::number(r->speedInMbps())));
            QVERIFY(r->speedInMbps() <= BMSimulatedWalk::kMaxSpeedInMbps * 1.2);
            QVERIFY(r->coordinate().has_value());
            const double distance = metresFrom(BMSimulatedWalk::kHome, *r->coordinate());
            QVERIFY(distance < 20.0);
            // Nobody walks faster than walking pace between two samples.
            if (i > 0)
                QVERIFY(metresFrom(previous, *r->coordinate()) <= BMSimulatedWalk::kFastestPace + 1e-6);
            previous = *r->coordinate();
            if (distance < 3.0) {
                nearSum += r->speedInMbps();
                ++nearCount;
            } else if (distance > 12.0) {
                farSum += r->speedInMbps();
                ++farCount;
            }
        }
        // The walk visits both the router's room and the far end of the home.
        QVERIFY(nearCount > 50 && farCount > 50);
        QVERIFY(nearSum / nearCount > 200.0);
        QVERIFY(farSum / farCount < 15.0);
    }

    void locationFollowsTheWalk_data()
    {
        QTest::addColumn<std::optional<BMLocationCoordinate2D>>("given");
        QTest::addColumn<BMLocationCoordinate2D>("home");
        QTest::newRow("around the fixed home") << std::optional<BMLocationCoordinate2D>() << BMSimulatedWalk::kHome;
        const BMLocationCoordinate2D elsewhere{-33.86, 151.21};
        QTest::newRow("around the given location") << std::optional(elsewhere) << elsewhere;
    }
    void locationFollowsTheWalk()
    {
        QFETCH(std::optional<BMLocationCoordinate2D>, given);
        QFETCH(BMLocationCoordinate2D, home);
        m_tester = std::make_unique<BMSimulatedWiFiTester>();
        m_tester->initializeWithAppId("app", given, QString(), {});
        m_tester->setResultDelegate(&m_recorder);
        m_tester->start();
        QList<BMLocationCoordinate2D> seen;
        for (int i = 0; i < 60; ++i) {
            m_clock->advance(0.5);
            const auto location = m_tester->location();
            QVERIFY(location.has_value());
            QVERIFY(metresFrom(home, *location) < 20.0);
            if (!seen.contains(*location))
                seen << *location;
        }
        QVERIFY(seen.size() > 20);
    }
};

QTEST_GUILESS_MAIN(tst_BMSimulatedWiFiTester)
#include "tst_BMSimulatedWiFiTester.moc"
