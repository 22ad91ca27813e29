// The core library's services but the REST client: the spot result's
// archive, the logger, the base notification, reachability, the general and
// network utilities, and the Wi-Fi testers on a ManualClock as the factory
// makes them: the simulated one, and the HTTP one against a loopback server
// whose bytes the test counts out. That the customer's password is never
// written is checked where the test screen runs a tester (tst_BMWifiScanVC).
#include "WiFiTesterRecorder.h"
#include <Brightmere/core/BMBaseNotification.h>
#include <Brightmere/core/BMLogger.h>
#include <Brightmere/core/BMReachabilityDelegate.h>
#include <Brightmere/core/BMReachabilityManager.h>
#include <Brightmere/core/BMSDKBackend.h>
#include <Brightmere/core/BMSDKGeneralUtilities.h>
#include <Brightmere/core/BMSDKNetworkUtilities.h>
#include <Brightmere/core/BMSimulatedNetwork.h>
#include <Brightmere/core/BMSimulatedWiFiTester.h>
#include <Brightmere/core/BMTesterFactory.h>
#include <Brightmere/core/BMWiFiTesterDelegate.h>
#include <Brightmere/core/WifiTestResult.h>
#include <Brightmere/platform/foundation/ManualClock.h>
#include <Brightmere/platform/foundation/NotificationCenter.h>

#include "LogCapture.h"
#include "ScriptedHttpServer.h"
#include "TestEnvironment.h"

#include <QFile>
#include <QRegularExpression>
#include <QTest>
#include <QThread>
#include <QTimeZone>

#include <ctime>
#include <memory>

using Brightmere::Archive;
using Kind = BMSDKBackend::Kind;
using S = ScriptedHttpServer;

namespace {

const QString kDoorbellRang = QStringLiteral("kDoorbellRang");
const QString kRoomKey = BMBaseNotification::propertyKey(1);
const QString kBssid = QStringLiteral("a4:2b:b0:5c:17:e2");
constexpr double kStart = 100000.0;

// "status|bssid|ssid" per call, and whether each came on the main thread.
class ReachabilityListener : public QObject, public BMReachabilityDelegate
{
public:
    QStringList calls;
    bool allOnMainThread = true;
    std::function<void()> onCall;

    void reachabilityHasChanged(int status, const QString &bssid, const QString &ssid) override
    {
        calls.append(QStringLiteral("%1|%2|%3").arg(status).arg(bssid, ssid));
        allOnMainThread = allOnMainThread && QThread::currentThread() == QCoreApplication::instance()->thread();
        if (onCall)
            onCall();
    }
};

QString call(int status)
{
    return status == 1 ? QStringLiteral("1|%1|HomeNet").arg(kBssid) : QStringLiteral("%1||").arg(status);
}

BMReachabilityManager *reachability()
{
    return BMReachabilityManager::sharedInstance();
}

void setStatus(int status)
{
    BMSimulatedNetwork::shared().setReachabilityStatus(status);
}

// "SSID BSSID" as the utilities give them now, "<none>" for an absent one.
QString currentWifiNames()
{
    const auto shown = [](const std::optional<QString> &value) { return value.value_or(QStringLiteral("<none>")); };
    return shown(BMSDKNetworkUtilities::currentWifiSSID()) + u' ' + shown(BMSDKNetworkUtilities::currentWifiBSSID());
}

using Recorder = WiFiTesterRecorder;


} // namespace

// The pattern every notification of the kit follows: a class of its own over
// the base, posted and heard by name and class. LoudDoorbell derives from
// Doorbell; Chime is unrelated, posted under the same name.
// clang-format off
class DoorbellNotification : public BMBaseNotification { Q_OBJECT public: using BMBaseNotification::BMBaseNotification; };
class LoudDoorbellNotification : public DoorbellNotification { Q_OBJECT public: using DoorbellNotification::DoorbellNotification; };
class ChimeNotification : public BMBaseNotification { Q_OBJECT public: using BMBaseNotification::BMBaseNotification; };
// clang-format on

namespace {

const QMetaObject *classNamed(const QString &name)
{
    return name == u"Doorbell"       ? &DoorbellNotification::staticMetaObject
         : name == u"LoudDoorbell" ? &LoudDoorbellNotification::staticMetaObject
         : name == u"Chime"        ? &ChimeNotification::staticMetaObject
                                   : nullptr;
}

// Posts as the class named, or straight through the centre for "centre".
void postAs(const QString &kind, const QString &name = kDoorbellRang)
{
    const QVariantMap properties{{kRoomKey, kind}};
    if (kind == u"Doorbell")
        DoorbellNotification(name, properties).post();
    else if (kind == u"LoudDoorbell")
        LoudDoorbellNotification(name, properties).post();
    else if (kind == u"Chime")
        ChimeNotification(name, properties).post();
    else
        Brightmere::NotificationCenter::defaultCenter().postNotificationName(name, nullptr, properties);
}

} // namespace

class tst_CoreServices : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase()
    {
        // Two hours east of UTC without summer time, so "local time" rows
        // mean the same on every machine.
        qputenv("TZ", "BMT-2");
        tzset();
    }
    void init()
    {
        m_env = std::make_unique<TestEnvironment>();
        m_clock = std::make_unique<Brightmere::ManualClock>(kStart);
        BMSDKBackend::setClock(m_clock.get());
        BMSDKNetworkUtilities::clearCache();
        m_recorder = Recorder();
    }
    void cleanup()
    {
        BMBaseNotification::removeSubscriber(&m_a, QString(), nullptr);
        QCOMPARE(reachability()->subscriberCount(), 0);
        BMSDKNetworkUtilities::setNmcliProgram(QString());
        m_tester.reset();
        m_env.reset();
        m_clock.reset();
    }

    // A count beyond the body must not allocate it; a spot written by a newer
    // kit is refused, not misread.
    void spotListRefusals()
    {
        Archive::Error error = Archive::Error::None;
        QVERIFY(!WifiTestResult::unarchiveList(Archive::write([](QDataStream &s) { s << quint32(1000000); }), &error));
        QCOMPARE(error, Archive::Error::Corrupt);
        error = Archive::Error::None;
        QVERIFY(!WifiTestResult::unarchiveList(Archive::write([](QDataStream &s) {
            s << quint32(1) << quint16(WifiTestResult::kFieldVersion + 1);
            WifiTestResult::create(1.0)->encode(s);
        }), &error));
        QCOMPARE(error, Archive::Error::Corrupt);
    }

    // Levels 1, 2 and 3 (or more) go out as debug, info and warning; every
    // observer sees every line, whatever the rules enable, as one line of a
    // readable length.
    void logger()
    {
        QLoggingCategory::setFilterRules(QStringLiteral("brightmere.*=true"));
        const QtMsgType types[] = {QtDebugMsg, QtInfoMsg, QtWarningMsg, QtWarningMsg};
        for (int level = 1; level <= 4; ++level) {
            QTest::ignoreMessage(types[level - 1], QRegularExpression(QStringLiteral("BMWifiScanVC.*active 3$")));
            BMLogger::sharedInstance().logFromModule("BMWifiScanVC", level, "active %lu", std::size_t(3));
        }
        LogCapture capture;
        QLoggingCategory::setFilterRules(QStringLiteral("brightmere.*=false"));
        BMLogger::sharedInstance().log("PlotItem", 2, QString(5000, u'x') + u'\n');
        QLoggingCategory::setFilterRules(QString());
        QCOMPARE(capture.lines().size(), 1);
        QCOMPARE(capture.lines().first().module + QString::number(capture.lines().first().level), QStringLiteral("PlotItem2"));
        QVERIFY(capture.lines().first().message.size() < 2100);
    }

    void notificationClassFiltering_data()
    {
        QTest::addColumn<QString>("registeredClass");
        QTest::addColumn<QString>("postedAs");
        QTest::addColumn<bool>("delivered");
        QTest::newRow("no class hears any class") << "" << "Chime" << true;
        QTest::newRow("a class hears itself") << "Doorbell" << "Doorbell" << true;
        QTest::newRow("a class hears its subclass") << "Doorbell" << "LoudDoorbell" << true;
        QTest::newRow("a subclass does not hear its base") << "LoudDoorbell" << "Doorbell" << false;
        QTest::newRow("an unrelated class of the same name is not heard") << "Doorbell" << "Chime" << false;
        QTest::newRow("a bare centre post does not reach a class registration") << "Doorbell" << "centre" << false;
    }
    void notificationClassFiltering()
    {
        QFETCH(QString, postedAs);
        QStringList heard;
        for (int twice = 0; twice < 2; ++twice) // registered again: still told once
            BMBaseNotification::associateSelector(
                [&](BMBaseNotification *n) { heard.append(n->properties().value(kRoomKey).toString()); }, &m_a,
                kDoorbellRang, classNamed(fetched<QString>("registeredClass")));
        postAs(postedAs);
        postAs(postedAs, QStringLiteral("kSomethingElse"));
        QCOMPARE(heard, fetched<bool>("delivered") ? QStringList{postedAs} : QStringList());
    }

    void reachabilityCallbacks_data()
    {
        QTest::addColumn<QList<int>>("statuses");
        QTest::addColumn<bool>("fromWorkerThread");
        QTest::addColumn<QStringList>("expected");
        // The simulated network starts on Wi-Fi.
        QTest::newRow("another medium, then Wi-Fi again with its names") << QList<int>{2, 1} << false << QStringList{call(2), call(1)};
        QTest::newRow("the same status twice is told once") << QList<int>{0, 0} << false << QStringList{call(0)};
        QTest::newRow("no change tells nothing") << QList<int>{1} << false << QStringList();
        QTest::newRow("an unknown value reads as not reachable") << QList<int>{7} << false << QStringList{call(0)};
        QTest::newRow("a change on another thread is told on the main thread") << QList<int>{2} << true << QStringList{call(2)};
    }
    void reachabilityCallbacks()
    {
        QFETCH(QList<int>, statuses);
        ReachabilityListener listener;
        reachability()->subscribeToEvents(&listener, &QObject::staticMetaObject);
        reachability()->subscribeToEvents(&listener); // again: still told once
        const auto change = [statuses] {
            for (int status : statuses)
                setStatus(status);
        };
        std::unique_ptr<QThread> worker(QThread::create(change));
        fetched<bool>("fromWorkerThread") ? worker->start() : change();
        QVERIFY(worker->wait(5000));
        QTRY_COMPARE(listener.calls, fetched<QStringList>("expected"));
        QVERIFY(listener.allOnMainThread);
        QCOMPARE(reachability()->currentStatus(), statuses.last() <= 2 ? statuses.last() : 0);
        reachability()->unsubscribeFromEvents(&listener);
    }

    void reachabilitySubscriberLeaves_data()
    {
        QTest::addColumn<QString>("how");
        QTest::newRow("unsubscribed") << "unsubscribe";
        QTest::newRow("unsubscribed by another during the same change") << "during";
        QTest::newRow("destroyed without unsubscribing") << "destroyed";
    }
    void reachabilitySubscriberLeaves()
    {
        QFETCH(QString, how);
        ReachabilityListener witness;
        auto leaver = std::make_unique<ReachabilityListener>();
        reachability()->subscribeToEvents(&witness);
        reachability()->subscribeToEvents(leaver.get());
        ReachabilityListener *leaverSeen = leaver.get();
        if (how == u"unsubscribe")
            reachability()->unsubscribeFromEvents(leaver.get());
        else if (how == u"during")
            witness.onCall = [leaverSeen] { reachability()->unsubscribeFromEvents(leaverSeen); };
        else
            leaver.reset();
        setStatus(0);
        QCOMPARE(witness.calls, QStringList{call(0)});
        QVERIFY(!leaver || leaver->calls.isEmpty());
        QCOMPARE(reachability()->subscriberCount(), 1);
        reachability()->unsubscribeFromEvents(&witness);
    }

    void urlEncode_data()
    {
        QTest::addColumn<QString>("language");
        QTest::addColumn<QString>("expectedTail");
        QTest::newRow("reserved, unreserved and percent are kept") << "AZaz09-._~:/?#[]@!$&'()*+,;=%20%" << "AZaz09-._~:/?#[]@!$&'()*+,;=%20%";
        QTest::newRow("space, quotes, brackets and controls are encoded")
            << "pt BR\"<>\\^`{|}\t\n" << "pt%20BR%22%3C%3E%5C%5E%60%7B%7C%7D%09%0A";
        QTest::newRow("non-ASCII as UTF-8 bytes") << "café/日本" << "caf%C3%A9/%E6%97%A5%E6%9C%AC";
    }
    void urlEncode()
    {
        QCOMPARE(BMSDKGeneralUtilities::urlEncodeWithFormat(QStringLiteral("%@/%@/%@/message/bundle/%@"), "http://127.0.0.1:8787",
                                                            "api", "v2", fetched<QString>("language")),
                 QStringLiteral("http://127.0.0.1:8787/api/v2/message/bundle/") + fetched<QString>("expectedTail"));
    }

    void dateText_data()
    {
        QTest::addColumn<QDateTime>("date");
        QTest::addColumn<QString>("expected");
        // The format itself is what the result screens show (tst_FZBaseCollectionViewController).
        QTest::newRow("another zone is converted to local time, seconds dropped")
            << QDateTime(QDate(2024, 7, 1), QTime(8, 0, 59, 999), QTimeZone(-5 * 3600)) << "24/07/01 15:00";
        QTest::newRow("an invalid date gives an empty text") << QDateTime() << "";
    }
    void dateText()
    {
        QCOMPARE(BMSDKGeneralUtilities::stringWithYYMMDDHMMFormatFromDate(fetched<QDateTime>("date")), fetched<QString>("expected"));
    }

    void wifiNames_data()
    {
        QTest::addColumn<QByteArray>("output"); // of nmcli; "simulated:<status>" for the simulated network
        QTest::addColumn<int>("exitCode");
        QTest::addColumn<QString>("expected");
        const QByteArray bssid = "00\\:11\\:22\\:33\\:44\\:55";
        QTest::newRow("simulated, on Wi-Fi") << QByteArray("simulated:1") << 0 << "HomeNet " + kBssid;
        QTest::newRow("the active access point among others")
            << "no:Neighbour:" + bssid + "\nyes:HomeNet:A4\\:2B\\:B0\\:5C\\:17\\:E2\nno:HomeNet:" + bssid + "\n" << 0 << "HomeNet " + kBssid;
        QTest::newRow("escaped colon and backslash in the SSID") << "yes:Caf\\:e\\\\s:" + bssid + "\n" << 0 << "Caf:e\\s 00:11:22:33:44:55";
        QTest::newRow("UTF-8 SSID and CRLF line ends") << "yes:Caf\xc3\xa9:" + bssid + "\r\n" << 0 << QStringLiteral("Café 00:11:22:33:44:55");
        QTest::newRow("a hidden network: BSSID only") << "yes::" + bssid + "\n" << 0 << "<none> 00:11:22:33:44:55";
        QTest::newRow("nmcli fails") << "yes:HomeNet:" + bssid + "\n" << 8 << "<none> <none>";
        QTest::newRow("nmcli missing") << QByteArray() << -1 << "<none> <none>";
    }
    void wifiNames()
    {
        QFETCH(QByteArray, output);
        QFETCH(int, exitCode);
        if (output.startsWith("simulated:"))
            setStatus(output.mid(10).toInt());
        else
            useFakeNmcli(output, exitCode);
        QCOMPARE(currentWifiNames(), fetched<QString>("expected"));
        QCOMPARE(nmcliCalls(), exitCode >= 0 && !output.startsWith("simulated:") ? QStringList{"-t -f ACTIVE,SSID,BSSID dev wifi list --rescan no"}
                                                                                 : QStringList());
    }

    void systemAnswerIsKeptForAFewSeconds_data()
    {
        QTest::addColumn<double>("secondsLater");
        QTest::addColumn<int>("expectedRuns");
        QTest::newRow("asked again just before it expires") << 2.9 << 1;
        QTest::newRow("asked again once it expired") << 3.0 << 2;
        QTest::newRow("the clock went backwards") << -1.0 << 2;
    }
    void systemAnswerIsKeptForAFewSeconds()
    {
        useFakeNmcli("yes:HomeNet:00\\:11\\:22\\:33\\:44\\:55\n", 0);
        QCOMPARE(currentWifiNames(), QStringLiteral("HomeNet 00:11:22:33:44:55"));
        m_clock->setNow(m_clock->now() + fetched<double>("secondsLater"));
        QCOMPARE(currentWifiNames(), QStringLiteral("HomeNet 00:11:22:33:44:55"));
        QCOMPARE(nmcliCalls().size(), fetched<int>("expectedRuns"));
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
    }

    // Lost before the setup, the screen shows as a start without Wi-Fi
    // (tst_BMWifiScanVC); another medium is no Wi-Fi either.
    void simulatedWifiGoesAwayToAnotherMedium()
    {
        start(Kind::Simulated);
        advanceIntervals(1);
        BMSimulatedNetwork::shared().setReachabilityStatus(BMSimulatedNetwork::kReachableViaOther);
        advanceIntervals(10);
        QCOMPARE(m_recorder.events, (QStringList{"setup", "finish"}));
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

    // A start asked for on another thread is carried out on the owner's: a
    // timer started on the worker would tick there, or never once it ends.
    void callbacksArriveOnTheOwnerThread()
    {
        m_tester = std::make_unique<BMSimulatedWiFiTester>();
        m_tester->setResultDelegate(&m_recorder);
        std::unique_ptr<QThread> worker(QThread::create([this] { m_tester->start(); }));
        worker->start();
        QVERIFY(worker->wait(5000));
        QCOMPARE(m_clock->activeTimerCount(), 0);
        QTRY_COMPARE(m_clock->activeTimerCount(), 1);
        advanceIntervals(2);
        QCOMPARE(m_recorder.events, (QStringList{"setup", "result"}));
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
    }

private:
    // The system backend with a stand-in for nmcli that records its
    // arguments and prints output (none at all for a negative exit code).
    void useFakeNmcli(const QByteArray &output, int exitCode)
    {
        QFile data(m_env->filePath(QStringLiteral("nmcli-output")));
        QVERIFY(data.open(QIODevice::WriteOnly) && data.write(output) == output.size());
        data.close();
        QFile script(m_env->filePath(QStringLiteral("nmcli")));
        QVERIFY(script.open(QIODevice::WriteOnly));
        script.write(QStringLiteral("#!/bin/sh\necho \"$*\" >> '%1'\ncat '%2'\nexit %3\n")
                         .arg(m_env->filePath(QStringLiteral("nmcli-calls")), data.fileName()).arg(exitCode).toUtf8());
        script.close();
        QVERIFY(script.setPermissions(QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner));
        BMSDKBackend::setKind(BMSDKBackend::Kind::System);
        BMSDKNetworkUtilities::setNmcliProgram(exitCode < 0 ? m_env->filePath(QStringLiteral("no-such-nmcli")) : script.fileName());
    }
    QStringList nmcliCalls() const
    {
        QFile file(m_env->filePath(QStringLiteral("nmcli-calls")));
        return file.open(QIODevice::ReadOnly) ? QString::fromUtf8(file.readAll()).split(u'\n', Qt::SkipEmptyParts) : QStringList();
    }

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

    std::unique_ptr<TestEnvironment> m_env;
    std::unique_ptr<Brightmere::ManualClock> m_clock;
    std::unique_ptr<BMWiFiTester> m_tester;
    Recorder m_recorder;
    int m_a = 0;
};

QTEST_GUILESS_MAIN(tst_CoreServices)
#include "tst_CoreServices.moc"
