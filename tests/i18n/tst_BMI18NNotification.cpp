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
        m_calls.append(QStringLiteral("%1 %2 %3 %4").arg(QLatin1String(operation), n->name(),
                                                         QLatin1String(n->metaObject()->className()),
                                                         main ? QStringLiteral("main") : QStringLiteral("worker")));
    }
    mutable QMutex m_mutex;
    QStringList m_calls;
};

void post(const QString &which, bool fromWorker = false)
{
    if (fromWorker) {
        std::unique_ptr<QThread> worker(QThread::create([which] { post(which); }));
        worker->start();
        QVERIFY(worker->wait(5000));
    } else if (which == "available") {
        BMI18NNotification::postTextBundleAvailable();
    } else if (which == "notAvailable") {
        BMI18NNotification::postTextBundleNotAvailable();
    } else {
        BMLanguageChangeNotification::postLanguageChange();
    }
}

} // namespace

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

    void eachPostReachesItsOperationOnce()
    {
        // Subscribing twice replaces the first registration.
        for (int i = 0; i < 2; ++i) {
            BMI18NNotification::subscribe(m_subscriber.get());
            BMLanguageChangeNotification::subscribe(m_subscriber.get());
        }
        for (const QString which : {"available", "notAvailable", "languageChange"})
            post(which);
        QCOMPARE(m_subscriber->calls(),
                 (QStringList{"available kTextBundleAvailable BMI18NNotification main",
                              "notAvailable kTextBundleNotAvailable BMI18NNotification main",
                              "languageChange kLanguageChange BMLanguageChangeNotification main"}));
        BMI18NNotification::unsubscribe(m_subscriber.get());
        BMLanguageChangeNotification::unsubscribe(m_subscriber.get());
        for (const QString which : {"available", "notAvailable", "languageChange"})
            post(which);
        QCOMPARE(m_subscriber->calls().size(), 3);
    }

    void delivery()
    {
        // Posting thread, posted by a worker: on the worker, during the post. Main thread: queued there
        // from a worker, during the post when posted on it.
        for (const auto &[delivery, fromWorker, duringPost, thread] :
             {std::tuple{BMNotificationDelivery::PostingThread, true, true, "worker"},
              {BMNotificationDelivery::MainThread, true, false, "main"},
              {BMNotificationDelivery::MainThread, false, true, "main"}}) {
            Subscriber subscriber;
            BMI18NNotification::subscribe(&subscriber, delivery);
            post("notAvailable", fromWorker);
            QCOMPARE(subscriber.calls().size(), duringPost ? 1 : 0);
            QTRY_COMPARE(subscriber.calls(),
                         QStringList{QStringLiteral("notAvailable kTextBundleNotAvailable BMI18NNotification ") + thread});
            BMI18NNotification::unsubscribe(&subscriber);
        }
    }

    void aQueuedCallIsDroppedAfterUnsubscribe()
    {
        BMLanguageChangeNotification::subscribe(m_subscriber.get(), BMNotificationDelivery::MainThread);
        post("languageChange", true);
        BMLanguageChangeNotification::unsubscribe(m_subscriber.get());
        // The main queue keeps its order: past this marker, the call would have come.
        bool reached = false;
        Brightmere::MainQueue::async([&reached] { reached = true; });
        QTRY_VERIFY(reached);
        QVERIFY(m_subscriber->calls().isEmpty());
    }

    void aThrowingSubscriberIsLoggedNotPropagated()
    {
        m_subscriber->throwing = true;
        for (BMNotificationDelivery delivery : {BMNotificationDelivery::PostingThread, BMNotificationDelivery::MainThread}) {
            LogCapture log;
            BMLanguageChangeNotification::subscribe(m_subscriber.get(), delivery);
            BMLanguageChangeNotification::postLanguageChange();
            QVERIFY(log.contains("kLanguageChange threw"));
        }
        QCOMPARE(m_subscriber->calls().size(), 2);
    }

private:
    std::unique_ptr<TestEnvironment> m_env;
    std::unique_ptr<Subscriber> m_subscriber;
};

QTEST_GUILESS_MAIN(tst_BMI18NNotification)
#include "tst_BMI18NNotification.moc"
