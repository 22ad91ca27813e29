#include "core/BMReachabilityManager.h"

#include "TestEnvironment.h"
#include "core/BMReachabilityDelegate.h"
#include "core/BMSDKBackend.h"
#include "core/BMSimulatedNetwork.h"

#include <QCoreApplication>
#include <QTest>
#include <QThread>

#include <functional>
#include <memory>

namespace {

const QString kBssid = QStringLiteral("a4:2b:b0:5c:17:e2");
const QString kSsid = QStringLiteral("HomeNet");

class Subscriber : public QObject, public BMReachabilityDelegate
{
public:
    // "status|bssid|ssid" per call.
    QStringList calls;
    bool allOnMainThread = true;
    std::function<void()> onCall;

    void reachabilityHasChanged(int status, const QString &withBSSID, const QString &withSSID) override
    {
        calls.append(QStringLiteral("%1|%2|%3").arg(status).arg(withBSSID, withSSID));
        allOnMainThread = allOnMainThread && QThread::currentThread() == QCoreApplication::instance()->thread();
        if (onCall)
            onCall();
    }
};

QString call(int status, bool named)
{
    return named ? QStringLiteral("%1|%2|%3").arg(status).arg(kBssid, kSsid) : QStringLiteral("%1||").arg(status);
}

void setStatus(int status)
{
    BMSimulatedNetwork::shared().setReachabilityStatus(status);
}

} // namespace

class tst_BMReachabilityManager : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init() { m_env = std::make_unique<TestEnvironment>(); }
    void cleanup()
    {
        QCOMPARE(manager()->subscriberCount(), 0);
        m_env.reset();
    }

    void callbacksOnSwitch_data()
    {
        QTest::addColumn<QList<int>>("statuses");
        QTest::addColumn<bool>("fromWorkerThread");
        QTest::addColumn<QStringList>("expected");

        // The simulated network starts on Wi-Fi.
        QTest::newRow("Wi-Fi lost") << QList<int>{0} << false << QStringList{call(0, false)};
        QTest::newRow("another medium, then Wi-Fi again with its names")
            << QList<int>{2, 1} << false << QStringList{call(2, false), call(1, true)};
        QTest::newRow("the same status twice is told once") << QList<int>{0, 0} << false << QStringList{call(0, false)};
        QTest::newRow("no change tells nothing") << QList<int>{1} << false << QStringList();
        QTest::newRow("an unknown value reads as not reachable")
            << QList<int>{7} << false << QStringList{call(0, false)};
        QTest::newRow("a change on another thread is told on the main thread")
            << QList<int>{2} << true << QStringList{call(2, false)};
    }

    void callbacksOnSwitch()
    {
        QFETCH(QList<int>, statuses);
        QFETCH(bool, fromWorkerThread);
        QFETCH(QStringList, expected);

        Subscriber subscriber;
        manager()->subscribeToEvents(&subscriber, &QObject::staticMetaObject);
        manager()->subscribeToEvents(&subscriber); // again: still told once
        if (fromWorkerThread) {
            QThread *worker = QThread::create([statuses] {
                for (int status : statuses)
                    setStatus(status);
            });
            worker->start();
            QVERIFY(worker->wait(5000));
            delete worker;
        } else {
            for (int status : statuses)
                setStatus(status);
        }
        QTRY_COMPARE(subscriber.calls, expected);
        QVERIFY(subscriber.allOnMainThread);
        const int last = statuses.last();
        QCOMPARE(manager()->currentStatus(), last >= 0 && last <= 2 ? last : 0);
        manager()->unsubscribeFromEvents(&subscriber);
    }

    void leaving_data()
    {
        QTest::addColumn<QString>("how");

        QTest::newRow("unsubscribed") << "unsubscribe";
        QTest::newRow("unsubscribed by another during the same change") << "during";
        QTest::newRow("destroyed without unsubscribing") << "destroyed";
    }

    void leaving()
    {
        QFETCH(QString, how);

        Subscriber witness;
        auto leaver = std::make_unique<Subscriber>();
        manager()->subscribeToEvents(&witness);
        manager()->subscribeToEvents(leaver.get());
        Subscriber *leaverSeen = leaver.get();
        if (how == u"unsubscribe")
            manager()->unsubscribeFromEvents(leaver.get());
        else if (how == u"during")
            witness.onCall = [this, leaverSeen] { manager()->unsubscribeFromEvents(leaverSeen); };
        else
            leaver.reset();

        setStatus(0);
        QCOMPARE(witness.calls, QStringList{call(0, false)});
        if (leaver)
            QCOMPARE(leaver->calls, QStringList());
        QCOMPARE(manager()->subscriberCount(), 1);
        manager()->unsubscribeFromEvents(&witness);
    }

    void switchingTheBackendLeavesNoStaleSource()
    {
        Subscriber subscriber;
        manager()->subscribeToEvents(&subscriber);

        BMSDKBackend::setKind(BMSDKBackend::Kind::System);
        manager()->currentStatus();
        QCoreApplication::processEvents();
        setStatus(0);
        setStatus(2);
        QCoreApplication::processEvents();

        // Whatever was told since the switch is the system's word (at most
        // one change, from the Wi-Fi heard last), never the simulated
        // network's 0 and 2.
        const int systemStatus = manager()->currentStatus();
        QVERIFY2(subscriber.calls.size() <= 1, qPrintable(subscriber.calls.join(u' ')));
        for (const QString &heardCall : std::as_const(subscriber.calls))
            QVERIFY2(heardCall.startsWith(QString::number(systemStatus) + u'|'), qPrintable(heardCall));
        const qsizetype heard = subscriber.calls.size();

        // And speaks again once the simulated backend is back.
        BMSDKBackend::setKind(BMSDKBackend::Kind::Simulated);
        setStatus(0);
        setStatus(1);
        QCoreApplication::processEvents();
        QVERIFY(subscriber.calls.size() > heard);
        QCOMPARE(subscriber.calls.last(), call(1, true));
        QCOMPARE(manager()->currentStatus(), 1);
        QVERIFY(subscriber.allOnMainThread);
        manager()->unsubscribeFromEvents(&subscriber);
    }

private:
    static BMReachabilityManager *manager() { return BMReachabilityManager::sharedInstance(); }

    std::unique_ptr<TestEnvironment> m_env;
};

QTEST_GUILESS_MAIN(tst_BMReachabilityManager)
#include "tst_BMReachabilityManager.moc"
