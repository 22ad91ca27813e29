#include "i18n/BMI18NNotification.h"
#include "i18n/BMLanguageChangeNotification.h"

#include "LogCapture.h"
#include "TestEnvironment.h"

#include <QMutex>
#include <QTest>
#include <QThread>

#include <stdexcept>

namespace {

struct Call
{
    QString operation;
    QString name;
    QString className;
    bool onMainThread = false;
};

class Subscriber : public BMI18NNotificationSubscriber, public BMLanguageChangeSubscriber
{
public:
    void notifyTextBundleAvailable(BMI18NNotification *notification) override
    {
        record("available", notification);
    }
    void notifyTextBundleNotAvailable(BMI18NNotification *notification) override
    {
        record("notAvailable", notification);
    }
    void notifyLanguageChange(BMLanguageChangeNotification *notification) override
    {
        record("languageChange", notification);
        if (throwing)
            throw std::runtime_error("subscriber failure");
    }
    QList<Call> calls() const
    {
        QMutexLocker lock(&m_mutex);
        return m_calls;
    }
    QStringList operations() const
    {
        QStringList result;
        for (const Call &call : calls())
            result.append(call.operation);
        return result;
    }

    bool throwing = false;

private:
    void record(const char *operation, BMBaseNotification *notification)
    {
        QMutexLocker lock(&m_mutex);
        m_calls.append({QString::fromLatin1(operation), notification->name(),
                        QString::fromLatin1(notification->metaObject()->className()),
                        QThread::currentThread() == QCoreApplication::instance()->thread()});
    }
    mutable QMutex m_mutex;
    QList<Call> m_calls;
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

    void eachPostReachesItsOperation_data()
    {
        QTest::addColumn<QString>("posted");
        QTest::addColumn<QString>("name");
        QTest::addColumn<QString>("className");
        QTest::newRow("texts available") << "available" << "kTextBundleAvailable" << "BMI18NNotification";
        QTest::newRow("texts not available") << "notAvailable" << "kTextBundleNotAvailable" << "BMI18NNotification";
        QTest::newRow("language changed") << "languageChange" << "kLanguageChange" << "BMLanguageChangeNotification";
    }

    void eachPostReachesItsOperation()
    {
        QFETCH(QString, posted);
        BMI18NNotification::subscribe(m_subscriber.get());
        BMLanguageChangeNotification::subscribe(m_subscriber.get());
        // Subscribing again replaces the registration: still one call per post.
        BMI18NNotification::subscribe(m_subscriber.get());
        BMLanguageChangeNotification::subscribe(m_subscriber.get());

        post(posted);
        QCOMPARE(m_subscriber->operations(), QStringList{posted});
        const Call call = m_subscriber->calls().first();
        QFETCH(QString, name);
        QCOMPARE(call.name, name);
        QFETCH(QString, className);
        QCOMPARE(call.className, className);
    }

    void unsubscribedHearsNothing()
    {
        BMI18NNotification::subscribe(m_subscriber.get());
        BMLanguageChangeNotification::subscribe(m_subscriber.get());
        BMI18NNotification::unsubscribe(m_subscriber.get());
        BMI18NNotification::postTextBundleAvailable();
        BMI18NNotification::postTextBundleNotAvailable();
        BMLanguageChangeNotification::postLanguageChange();
        QCOMPARE(m_subscriber->operations(), QStringList{"languageChange"});
        QCOMPARE(BMBaseNotification::subscriptionCount(static_cast<BMI18NNotificationSubscriber *>(m_subscriber.get())), 0);
    }

    void aForeignNotificationOfTheSameNameIsNotDelivered()
    {
        BMI18NNotification::subscribe(m_subscriber.get());
        BMBaseNotification(QString::fromLatin1(kTextBundleAvailable), {}).post();
        QVERIFY(m_subscriber->calls().isEmpty());
    }

    void delivery_data()
    {
        QTest::addColumn<BMNotificationDelivery>("delivery");
        QTest::addColumn<bool>("fromWorker");
        QTest::addColumn<bool>("expectMainThread");
        QTest::addColumn<bool>("expectDuringPost");

        QTest::newRow("posting thread, posted off the main thread")
            << BMNotificationDelivery::PostingThread << true << false << true;
        QTest::newRow("main thread, posted off the main thread: queued to it")
            << BMNotificationDelivery::MainThread << true << true << false;
        QTest::newRow("main thread, posted on the main thread: at once")
            << BMNotificationDelivery::MainThread << false << true << true;
    }

    void delivery()
    {
        QFETCH(bool, fromWorker);
        QFETCH(BMNotificationDelivery, delivery);
        BMI18NNotification::subscribe(m_subscriber.get(), delivery);
        if (fromWorker)
            postFromWorker("notAvailable");
        else
            BMI18NNotification::postTextBundleNotAvailable();

        QFETCH(bool, expectDuringPost);
        QCOMPARE(m_subscriber->calls().size(), expectDuringPost ? 1 : 0);
        QTRY_COMPARE(m_subscriber->calls().size(), 1);
        const Call call = m_subscriber->calls().first();
        QFETCH(bool, expectMainThread);
        QCOMPARE(call.onMainThread, expectMainThread);
        QCOMPARE(call.operation, QStringLiteral("notAvailable"));
        // A queued call rebuilds a notification of the posted class.
        QCOMPARE(call.className, QStringLiteral("BMI18NNotification"));
        QCOMPARE(call.name, QStringLiteral("kTextBundleNotAvailable"));
    }

    void aQueuedCallIsDroppedAfterUnsubscribe()
    {
        BMLanguageChangeNotification::subscribe(m_subscriber.get(), BMNotificationDelivery::MainThread);
        postFromWorker("languageChange");
        BMLanguageChangeNotification::unsubscribe(m_subscriber.get());
        QCoreApplication::processEvents();
        QTest::qWait(20);
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
        LogCapture log;
        m_subscriber->throwing = true;
        QFETCH(BMNotificationDelivery, delivery);
        BMLanguageChangeNotification::subscribe(m_subscriber.get(), delivery);
        BMLanguageChangeNotification::postLanguageChange();
        QCOMPARE(m_subscriber->calls().size(), 1);
        QVERIFY(log.contains("threw"));
    }

private:
    std::unique_ptr<TestEnvironment> m_env;
    std::unique_ptr<Subscriber> m_subscriber;
};

QTEST_GUILESS_MAIN(tst_BMI18NNotification)
#include "tst_BMI18NNotification.moc"
