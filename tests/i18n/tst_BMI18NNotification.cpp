#include "i18n/BMI18NNotification.h"
#include "i18n/BMLanguageChangeNotification.h"

#include "LogCapture.h"
#include "TestEnvironment.h"
#include "platform/foundation/MainQueue.h"

#include <QMutex>
#include <QTest>
#include <QThread>

#include <stdexcept>

namespace {

// "operation name class thread" for every call.
class Subscriber : public BMI18NNotificationSubscriber, public BMLanguageChangeSubscriber
{
public:
    void notifyTextBundleAvailable(BMI18NNotification *n) override { record("available", n); }
    void notifyTextBundleNotAvailable(BMI18NNotification *n) override { record("notAvailable", n); }
    void notifyLanguageChange(BMLanguageChangeNotification *n) override
    {
        record("languageChange", n);
        if (throwing)
            throw std::runtime_error("subscriber failure");
    }
    QStringList calls() const
    {
        QMutexLocker lock(&m_mutex);
        return m_calls;
    }

    bool throwing = false;

private:
    void record(const char *operation, BMBaseNotification *n)
    {
        const bool main = QThread::currentThread() == QCoreApplication::instance()->thread();
        QMutexLocker lock(&m_mutex);
        m_calls.append(QStringLiteral("%1 %2 %3 %4")
                           .arg(QLatin1String(operation), n->name(), QLatin1String(n->metaObject()->className()),
                                main ? QStringLiteral("main") : QStringLiteral("worker")));
    }
    mutable QMutex m_mutex;
    QStringList m_calls;
};

void post(const QString &which)
{
    if (which == "available")
        BMI18NNotification::postTextBundleAvailable();
    else if (which == "notAvailable")
        BMI18NNotification::postTextBundleNotAvailable();
    else
        BMLanguageChangeNotification::postLanguageChange();
}

void postFromWorker(const QString &which)
{
    QThread *worker = QThread::create([which] { post(which); });
    worker->start();
    QVERIFY(worker->wait(5000));
    delete worker;
}

} // namespace

Q_DECLARE_METATYPE(BMNotificationDelivery)

class tst_BMI18NNotification : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init()
    {
        m_env = std::make_unique<TestEnvironment>();
        m_subscriber = std::make_unique<Subscriber>();
    }

    void cleanup()
    {
        BMI18NNotification::unsubscribe(m_subscriber.get());
        BMLanguageChangeNotification::unsubscribe(m_subscriber.get());
        QCoreApplication::processEvents();
        m_subscriber.reset();
        m_env.reset();
    }

    void eachPostReachesItsOperationOnce_data()
    {
        QTest::addColumn<QString>("posted");
        QTest::addColumn<QString>("call");
        QTest::newRow("texts available") << "available" << "available kTextBundleAvailable BMI18NNotification main";
        QTest::newRow("texts not available")
            << "notAvailable" << "notAvailable kTextBundleNotAvailable BMI18NNotification main";
        QTest::newRow("language changed")
            << "languageChange" << "languageChange kLanguageChange BMLanguageChangeNotification main";
    }

    void eachPostReachesItsOperationOnce()
    {
        QFETCH(QString, posted);
        QFETCH(QString, call);
        // Subscribing twice replaces the first registration.
        for (int i = 0; i < 2; ++i) {
            BMI18NNotification::subscribe(m_subscriber.get());
            BMLanguageChangeNotification::subscribe(m_subscriber.get());
        }
        post(posted);
        QCOMPARE(m_subscriber->calls(), QStringList{call});

        BMI18NNotification::unsubscribe(m_subscriber.get());
        BMLanguageChangeNotification::unsubscribe(m_subscriber.get());
        post(posted);
        QCOMPARE(m_subscriber->calls().size(), 1);
    }

    void delivery_data()
    {
        QTest::addColumn<BMNotificationDelivery>("delivery");
        QTest::addColumn<bool>("fromWorker");
        QTest::addColumn<bool>("duringPost");
        QTest::addColumn<QString>("call");

        const QString onMain = "notAvailable kTextBundleNotAvailable BMI18NNotification main";
        QTest::newRow("posting thread, posted by a worker: on the worker, during the post")
            << BMNotificationDelivery::PostingThread << true << true
            << "notAvailable kTextBundleNotAvailable BMI18NNotification worker";
        QTest::newRow("main thread, posted by a worker: queued to the main thread")
            << BMNotificationDelivery::MainThread << true << false << onMain;
        QTest::newRow("main thread, posted on it: during the post")
            << BMNotificationDelivery::MainThread << false << true << onMain;
    }

    void delivery()
    {
        QFETCH(BMNotificationDelivery, delivery);
        QFETCH(bool, fromWorker);
        QFETCH(bool, duringPost);
        QFETCH(QString, call);
        BMI18NNotification::subscribe(m_subscriber.get(), delivery);
        if (fromWorker)
            postFromWorker("notAvailable");
        else
            post("notAvailable");
        QCOMPARE(m_subscriber->calls().size(), duringPost ? 1 : 0);
        QTRY_COMPARE(m_subscriber->calls(), QStringList{call});
    }

    void aQueuedCallIsDroppedAfterUnsubscribe()
    {
        BMLanguageChangeNotification::subscribe(m_subscriber.get(), BMNotificationDelivery::MainThread);
        postFromWorker("languageChange");
        BMLanguageChangeNotification::unsubscribe(m_subscriber.get());
        // The main queue keeps its order: past this marker, the call would have come.
        bool reached = false;
        Brightmere::MainQueue::async([&reached] { reached = true; });
        QTRY_VERIFY(reached);
        QVERIFY(m_subscriber->calls().isEmpty());
    }

    void aThrowingSubscriberIsLoggedNotPropagated_data()
    {
        QTest::addColumn<BMNotificationDelivery>("delivery");
        QTest::newRow("posting thread") << BMNotificationDelivery::PostingThread;
        QTest::newRow("main thread") << BMNotificationDelivery::MainThread;
    }

    void aThrowingSubscriberIsLoggedNotPropagated()
    {
        QFETCH(BMNotificationDelivery, delivery);
        LogCapture log;
        m_subscriber->throwing = true;
        BMLanguageChangeNotification::subscribe(m_subscriber.get(), delivery);
        BMLanguageChangeNotification::postLanguageChange();
        QCOMPARE(m_subscriber->calls().size(), 1);
        QVERIFY(log.contains("kLanguageChange threw"));
    }

private:
    std::unique_ptr<TestEnvironment> m_env;
    std::unique_ptr<Subscriber> m_subscriber;
};

QTEST_GUILESS_MAIN(tst_BMI18NNotification)
#include "tst_BMI18NNotification.moc"
