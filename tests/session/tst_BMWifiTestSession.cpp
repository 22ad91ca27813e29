#include "TestEnvironment.h"
#include <Brightmere/core/BMSDKBackend.h>
#include <Brightmere/core/BMSimulatedNetwork.h>
#include <Brightmere/core/BMWiFiTester.h>
#include <Brightmere/platform/foundation/ManualClock.h>
#include <Brightmere/platform/views/SystemSound.h>
#include <Brightmere/session/BMWifiTestSession.h>

#include <QCoreApplication>
#include <QTest>

#include <memory>

using namespace Brightmere;

// The test session without a screen or even a GUI application: driven by a
// manual clock on the simulated tester, heard through its signals.
class tst_BMWifiTestSession : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();
    void aTestAndItsSpots_data();
    void aTestAndItsSpots();
    void defaultNames_data();
    void defaultNames();
    void soundGap_data();
    void soundGap();

private:
    static constexpr double kInterval = 0.5;

    void start(const QList<double> &trace)
    {
        BMSDKBackend::setSimulatedTrace(trace);
        m_session = std::make_unique<BMWifiTestSession>();
        m_session->createTester(QStringLiteral("acme"), QStringLiteral("pw"));
        m_session->subscribeToReachability();
        m_session->startTesting();
        m_clock->advance(kInterval); // the tester's setup
    }
    // Each signal as a word, in the order they came.
    void listen()
    {
        BMWifiTestSession *s = m_session.get();
        connect(s, &BMWifiTestSession::testStarted, this, [this] { m_heard << "started"; });
        connect(s, &BMWifiTestSession::testStopped, this, [this] { m_heard << "stopped"; });
        connect(s, &BMWifiTestSession::resultAccepted, this,
                [this](const WifiTestResult::Ptr &, double shown) { m_heard << QString::number(shown); });
        connect(s, &BMWifiTestSession::recordingChanged, this,
                [this](bool on) { m_heard << (on ? "hold" : "unhold"); });
        connect(s, &BMWifiTestSession::spotSaved, this, [this](const WifiTestResult::Ptr &, int row, bool isNew) {
            m_heard << QStringLiteral("saved:%1%2").arg(row).arg(isNew ? "" : " again");
        });
        connect(s, &BMWifiTestSession::wifiLost, this, [this] { m_heard << "wifiLost"; });
    }

    std::unique_ptr<TestEnvironment> m_env;
    std::unique_ptr<ManualClock> m_clock;
    std::unique_ptr<BMWifiTestSession> m_session;
    QStringList m_heard;
};

void tst_BMWifiTestSession::init()
{
    m_env = std::make_unique<TestEnvironment>();
    m_clock = std::make_unique<ManualClock>(1000.0);
    BMSDKBackend::setClock(m_clock.get());
    BMSDKBackend::setSampleInterval(kInterval);
    m_heard.clear();
}

void tst_BMWifiTestSession::cleanup()
{
    m_session.reset();
    BMSDKBackend::setClock(nullptr);
    m_clock.reset();
    m_env.reset();
}

void tst_BMWifiTestSession::aTestAndItsSpots_data()
{
    // The trace gives 10, 20, 30, 40 Mbps, a result every step; "hold" and
    // "release" are the record control, "re:N" a hold that measures spot N
    // again, "resign" the application going inactive, "wifiOff" the network
    // gone before the next result.
    QTest::addColumn<QString>("steps");
    QTest::addColumn<QStringList>("heard");
    QTest::addColumn<QList<double>>("spots"); // newest first
    QTest::addColumn<bool>("scanning");
    QTest::newRow("a hold averages the value on show and what comes while held")
        << "result,hold,result,result,release" << QStringList{"10", "hold", "15", "20", "saved:0", "unhold"}
        << QList<double>{20.0} << true;
    QTest::newRow("a hold shorter than a result keeps the value on show")
        << "result,result,hold,release" << QStringList{"10", "20", "hold", "saved:0", "unhold"}
        << QList<double>{20.0} << true;
    QTest::newRow("one result never makes two spots")
        << "result,hold,release,hold,release" << QStringList{"10", "hold", "saved:0", "unhold", "hold", "unhold"}
        << QList<double>{10.0} << true;
    QTest::newRow("a hold before any result saves nothing")
        << "hold,release" << QStringList{"hold", "unhold"} << QList<double>{} << true;
    QTest::newRow("a stop abandons the hold") << "result,hold,result,stop"
                                              << QStringList{"10", "hold", "15", "unhold", "stopped"}
                                              << QList<double>{} << false;
    QTest::newRow("going inactive keeps a hold under way, and nothing else")
        << "result,resign,hold,result,resign" << QStringList{"10", "hold", "15", "saved:0", "unhold"}
        << QList<double>{15.0} << true;
    QTest::newRow("a spot measured again keeps its row")
        << "result,hold,release,result,result,re:0,result,release"
        << QStringList{"10", "hold", "saved:0", "unhold", "20", "30", "hold", "35", "saved:0 again", "unhold"}
        << QList<double>{35.0} << true;
    QTest::newRow("a speed below zero or none at all is dropped, zero is a result")
        << "result,bad,hold,release" << QStringList{"10", "0", "hold", "saved:0", "unhold"} << QList<double>{0.0}
        << true;
    QTest::newRow("Wi-Fi gone at the next result: the test stops, the spots stay")
        << "result,hold,release,wifiOff,result"
        << QStringList{"10", "hold", "saved:0", "unhold", "stopped", "wifiLost"} << QList<double>{10.0} << false;
}

void tst_BMWifiTestSession::aTestAndItsSpots()
{
    QFETCH(QStringList, heard);
    QFETCH(QList<double>, spots);
    QFETCH(bool, scanning);
    start({10.0, 20.0, 30.0, 40.0});
    listen();
    for (const QString &step : fetched<QString>("steps").split(',')) {
        if (step == "result")
            m_clock->advance(kInterval);
        else if (step == "hold")
            m_session->startRecording();
        else if (step.startsWith("re:")) {
            m_session->setWifiRecordBeingEdited(m_session->recordedSpeeds().at(step.mid(3).toInt()));
            m_session->startRecording();
        } else if (step == "release")
            m_session->saveRecordAndStopRecording();
        else if (step == "resign")
            m_session->saveRecordAndStopRecordingIfNeeded();
        else if (step == "bad") {
            for (const double speed : {-1.0, qQNaN(), 0.0})
                m_session->wiFiTesterDidUpdateWithTestResult(m_session->wifiTester(), WifiTestResult::create(speed));
        } else if (step == "stop")
            m_session->stopTesting();
        else if (step == "wifiOff")
            BMSimulatedNetwork::shared().setReachabilityStatus(BMSimulatedNetwork::kNotReachable);
    }
    QCOMPARE(m_heard, heard);
    QList<double> speeds;
    for (const WifiTestResult::Ptr &spot : m_session->recordedSpeeds())
        speeds << spot->speedInMbps();
    QCOMPARE(speeds, spots);
    QCOMPARE(m_session->isScanning(), scanning);
    QVERIFY(!m_session->isRecording());
    if (!spots.isEmpty()) {
        const WifiTestResult::Ptr newest = m_session->recordedSpeeds().constFirst();
        QCOMPARE(newest->label(), m_session->defaultSpotName(1));
        QCOMPARE(newest->ssid(), BMSimulatedNetwork::shared().ssid());
    }
}

void tst_BMWifiTestSession::defaultNames_data()
{
    QTest::addColumn<QStringList>("loaded");
    QTest::addColumn<bool>("resetFirst");
    QTest::addColumn<QString>("next");
    QTest::newRow("a name that is no number counts 0") << QStringList{"Living Room"} << false << "Spot 1";
    QTest::newRow("read like atoi, the largest wins")
        << QStringList{"Spot 7b", "Kitchen 3", "Hall -9", "Spot"} << false << "Spot 8";
    QTest::newRow("after a reset, Spot 1") << QStringList{"Spot 7"} << true << "Spot 1";
}

void tst_BMWifiTestSession::defaultNames()
{
    QFETCH(bool, resetFirst);
    QFETCH(QString, next);
    start({5.0});
    WifiTestResult::List spots;
    for (const QString &label : fetched<QStringList>("loaded")) {
        spots << WifiTestResult::create(5.0);
        spots.last()->setLabel(label);
    }
    m_session->loadSetForEditing(FZHistoricalResultSpotsSet::create("Run", "HomeNet", QDateTime(), spots));
    m_session->updateSpeedIndex();
    if (resetFirst)
        m_session->reset();
    m_clock->advance(kInterval);
    m_session->startRecording();
    m_session->saveRecordAndStopRecording();
    QCOMPARE(m_session->recordedSpeeds().constFirst()->label(), next);
}

void tst_BMWifiTestSession::soundGap_data()
{
    QTest::addColumn<double>("speed");
    QTest::addColumn<bool>("soundOn");
    QTest::addColumn<double>("gap"); // 0: never plays
    QTest::newRow("0 Mbps: every 2 s") << 0.0 << true << 2.0;
    QTest::newRow("10 Mbps: every second") << 10.0 << true << 1.0;
    QTest::newRow("100 Mbps: ten a second") << 100.0 << true << 0.1;
    QTest::newRow("sound off: silent") << 100.0 << false << 0.0;
}

void tst_BMWifiTestSession::soundGap()
{
    QFETCH(bool, soundOn);
    QFETCH(double, gap);
    start({fetched<double>("speed")});
    m_session->setSoundEnabled(soundOn);
    QCOMPARE(m_session->wifiTester()->isSoundEnabled(), soundOn);
    QVERIFY(!m_session->hasSoundTimer()); // the first result starts it
    m_clock->advance(kInterval);
    QVERIFY(m_session->hasSoundTimer());
    const int playsBefore = SystemSound::playCount();
    QList<double> playTimes;
    double lastPlay = m_session->lastPlayTime();
    for (int tick = 0; tick < 500; ++tick) {
        m_clock->advance(0.01);
        if (m_session->lastPlayTime() != lastPlay)
            playTimes << (lastPlay = m_session->lastPlayTime());
    }
    QCOMPARE(SystemSound::playCount() - playsBefore, int(playTimes.size()));
    QCOMPARE(playTimes.isEmpty(), gap == 0.0);
    for (qsizetype i = 1; i < playTimes.size(); ++i)
        QVERIFY2(qAbs(playTimes[i] - playTimes[i - 1] - gap) < 1e-6,
                 qPrintable(QString("gap %1 between plays %2 and %3").arg(playTimes[i] - playTimes[i - 1]).arg(i - 1).arg(i)));
    m_session->stopTesting();
    QVERIFY(!m_session->hasSoundTimer());
}

// No QApplication: the session needs no widgets and no GUI.
QTEST_GUILESS_MAIN(tst_BMWifiTestSession)
#include "tst_BMWifiTestSession.moc"
