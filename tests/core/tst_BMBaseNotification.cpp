#include "core/BMBaseNotification.h"

#include "LogCapture.h"
#include "TestEnvironment.h"
#include "platform/foundation/NotificationCenter.h"

#include <QTest>
#include <QThread>

#include <memory>

namespace {

const QString kDoorbellRang = QStringLiteral("kDoorbellRang");
const QString kRoomKey = BMBaseNotification::propertyKey(1);

// What a subscriber of the doorbell implements.
class DoorbellListener
{
public:
    virtual ~DoorbellListener() = default;
    virtual void notifyDoorbellRang(BMBaseNotification *notification) = 0;
};

} // namespace

// The pattern every notification of the kit follows: typed class operations
// over the base's associateSelector / removeSubscriber / post.
class DoorbellNotification : public BMBaseNotification
{
    Q_OBJECT

public:
    using BMBaseNotification::BMBaseNotification;

    static void subscribe(DoorbellListener *listener)
    {
        associateSelector([listener](BMBaseNotification *n) { listener->notifyDoorbellRang(n); },
                          listener, kDoorbellRang, &staticMetaObject);
    }
    static void unsubscribe(DoorbellListener *listener)
    {
        removeSubscriber(listener, kDoorbellRang, &staticMetaObject);
    }
    static void postDoorbellRang(const QString &room)
    {
        DoorbellNotification(kDoorbellRang, {{kRoomKey, room}}).post();
    }
};

class LoudDoorbellNotification : public DoorbellNotification
{
    Q_OBJECT

public:
    using DoorbellNotification::DoorbellNotification;
};

// Same name, unrelated class.
class ChimeNotification : public BMBaseNotification
{
    Q_OBJECT

public:
    using BMBaseNotification::BMBaseNotification;
};

namespace {

struct Listener : DoorbellListener
{
    QStringList rooms;
    void notifyDoorbellRang(BMBaseNotification *notification) override
    {
        rooms.append(notification->properties().value(kRoomKey).toString());
    }
};

const QMetaObject *classNamed(const QString &name)
{
    if (name == u"Doorbell")
        return &DoorbellNotification::staticMetaObject;
    if (name == u"LoudDoorbell")
        return &LoudDoorbellNotification::staticMetaObject;
    if (name == u"Chime")
        return &ChimeNotification::staticMetaObject;
    return nullptr;
}

// Posts kind ("Doorbell", "LoudDoorbell", "Chime", or "centre" for a bare
// post through the notification centre) under the given name.
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

class tst_BMBaseNotification : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init() { m_env = std::make_unique<TestEnvironment>(); }
    void cleanup()
    {
        BMBaseNotification::removeSubscriber(&m_a, QString(), nullptr);
        BMBaseNotification::removeSubscriber(&m_b, QString(), nullptr);
        m_env.reset();
    }

    void deliversNameAndPropertiesWithTheNotificationAsSender()
    {
        BMBaseNotification *received = nullptr;
        QString name;
        QVariantMap properties;
        BMBaseNotification::associateSelector(
            [&](BMBaseNotification *n) {
                received = n;
                name = n->name();
                properties = n->properties();
            },
            &m_a, QStringLiteral("kScreenChange"), nullptr);

        // Numeric keys stand as their decimal texts.
        const QVariantMap sent{{BMBaseNotification::propertyKey(2), QStringLiteral("Spots Set Screen")},
                               {BMBaseNotification::propertyKey(1), QStringLiteral("FZSavedSpotsViewController")}};
        BMBaseNotification notification(QStringLiteral("kScreenChange"), sent);
        notification.post();

        QCOMPARE(received, &notification);
        QCOMPARE(name, QStringLiteral("kScreenChange"));
        QCOMPARE(properties.value(QStringLiteral("2")).toString(), QStringLiteral("Spots Set Screen"));
        QCOMPARE(properties.value(QStringLiteral("1")).toString(), QStringLiteral("FZSavedSpotsViewController"));
    }

    void classFiltering_data()
    {
        QTest::addColumn<QString>("registeredClass");
        QTest::addColumn<QString>("postedAs");
        QTest::addColumn<bool>("delivered");

        QTest::newRow("no class hears any class") << "" << "Chime" << true;
        QTest::newRow("a class hears itself") << "Doorbell" << "Doorbell" << true;
        QTest::newRow("a class hears its subclass") << "Doorbell" << "LoudDoorbell" << true;
        QTest::newRow("a subclass does not hear its base") << "LoudDoorbell" << "Doorbell" << false;
        QTest::newRow("an unrelated class of the same name is not heard") << "Doorbell" << "Chime" << false;
        QTest::newRow("a bare centre post reaches a registration without class") << "" << "centre" << true;
        QTest::newRow("a bare centre post does not reach a class registration") << "Doorbell" << "centre" << false;
    }

    void classFiltering()
    {
        QFETCH(QString, registeredClass);
        QFETCH(QString, postedAs);
        QFETCH(bool, delivered);

        QStringList heard;
        BMBaseNotification::associateSelector(
            [&](BMBaseNotification *n) { heard.append(n->properties().value(kRoomKey).toString()); }, &m_a,
            kDoorbellRang, classNamed(registeredClass));
        postAs(postedAs);
        postAs(postedAs, QStringLiteral("kSomethingElse"));

        QCOMPARE(heard, delivered ? QStringList{postedAs} : QStringList());
    }

    void removal_data()
    {
        QTest::addColumn<QString>("removedName");
        QTest::addColumn<QString>("removedClass");
        QTest::addColumn<QStringList>("stillHeard");

        // m_a holds: kDoorbellRang as Doorbell, kDoorbellRang as Chime, kOther (no class).
        QTest::newRow("name and class leave the other class")
            << kDoorbellRang << "Doorbell" << QStringList{"kDoorbellRang/Chime", "kOther/Doorbell"};
        QTest::newRow("no class drops every class of the name")
            << kDoorbellRang << "" << QStringList{"kOther/Doorbell"};
        QTest::newRow("no name drops every name of the class")
            << "" << "Chime" << QStringList{"kDoorbellRang/Doorbell", "kOther/Doorbell"};
        QTest::newRow("no name and no class drop everything") << "" << "" << QStringList();
        QTest::newRow("a class never registered drops nothing")
            << kDoorbellRang << "LoudDoorbell"
            << QStringList{"kDoorbellRang/Doorbell", "kDoorbellRang/Chime", "kOther/Doorbell"};
    }

    void removal()
    {
        QFETCH(QString, removedName);
        QFETCH(QString, removedClass);
        QFETCH(QStringList, stillHeard);

        QStringList heard;
        auto record = [&heard](BMBaseNotification *n) {
            heard.append(n->name() + u'/' + n->properties().value(kRoomKey).toString());
        };
        BMBaseNotification::associateSelector(record, &m_a, kDoorbellRang, classNamed("Doorbell"));
        BMBaseNotification::associateSelector(record, &m_a, kDoorbellRang, classNamed("Chime"));
        BMBaseNotification::associateSelector(record, &m_a, QStringLiteral("kOther"), nullptr);
        // Another subscriber's identical registration must survive m_a's removal.
        int otherHeard = 0;
        BMBaseNotification::associateSelector([&otherHeard](BMBaseNotification *) { ++otherHeard; }, &m_b,
                                              kDoorbellRang, classNamed("Doorbell"));

        BMBaseNotification::removeSubscriber(&m_a, removedName, classNamed(removedClass));
        postAs("Doorbell");
        postAs("Chime");
        postAs("Doorbell", QStringLiteral("kOther"));

        QCOMPARE(heard, stillHeard);
        QCOMPARE(otherHeard, 1);
        QCOMPARE(BMBaseNotification::subscriptionCount(&m_a), int(stillHeard.size()));
    }

    void registeringAgainReplacesTheOperation()
    {
        int first = 0;
        int second = 0;
        BMBaseNotification::associateSelector([&](BMBaseNotification *) { ++first; }, &m_a, kDoorbellRang, nullptr);
        BMBaseNotification::associateSelector([&](BMBaseNotification *) { ++second; }, &m_a, kDoorbellRang, nullptr);
        postAs("Doorbell");
        QCOMPARE(first, 0);
        QCOMPARE(second, 1);
    }

    void subscriberRemovedDuringDeliveryIsNotCalled()
    {
        int bHeard = 0;
        BMBaseNotification::associateSelector(
            [this](BMBaseNotification *) { BMBaseNotification::removeSubscriber(&m_b, kDoorbellRang, nullptr); },
            &m_a, kDoorbellRang, nullptr);
        BMBaseNotification::associateSelector([&](BMBaseNotification *) { ++bHeard; }, &m_b, kDoorbellRang, nullptr);
        postAs("Doorbell");
        QCOMPARE(bHeard, 0);
    }

    void subclassPatternSubscribesPostsAndUnsubscribes()
    {
        Listener kitchen;
        DoorbellNotification::subscribe(&kitchen);
        DoorbellNotification::subscribe(&kitchen);
        DoorbellNotification::postDoorbellRang(QStringLiteral("Hall"));
        ChimeNotification(kDoorbellRang, {{kRoomKey, QStringLiteral("Garden")}}).post();
        QCOMPARE(kitchen.rooms, QStringList{QStringLiteral("Hall")});

        DoorbellNotification::unsubscribe(&kitchen);
        DoorbellNotification::postDoorbellRang(QStringLiteral("Attic"));
        QCOMPARE(kitchen.rooms, QStringList{QStringLiteral("Hall")});
        QCOMPARE(BMBaseNotification::subscriptionCount(&kitchen), 0);
    }

    void postIsSynchronousOnThePostingThread()
    {
        QThread *heardOn = nullptr;
        BMBaseNotification::associateSelector([&](BMBaseNotification *) { heardOn = QThread::currentThread(); },
                                              &m_a, kDoorbellRang, nullptr);
        QThread *worker = QThread::create([] { DoorbellNotification::postDoorbellRang(QStringLiteral("Cellar")); });
        worker->start();
        QVERIFY(worker->wait(5000));
        QCOMPARE(heardOn, worker);
        delete worker;
    }

    void incompleteRegistrationIsLoggedAndIgnored_data()
    {
        QTest::addColumn<bool>("withOperation");
        QTest::addColumn<bool>("withSubscriber");
        QTest::addColumn<QString>("name");

        QTest::newRow("no operation") << false << true << kDoorbellRang;
        QTest::newRow("no subscriber") << true << false << kDoorbellRang;
        QTest::newRow("no name") << true << true << QString();
    }

    void incompleteRegistrationIsLoggedAndIgnored()
    {
        QFETCH(bool, withOperation);
        QFETCH(bool, withSubscriber);
        QFETCH(QString, name);

        LogCapture log;
        BMBaseNotification::Operation operation;
        if (withOperation)
            operation = [](BMBaseNotification *) {};
        BMBaseNotification::associateSelector(operation, withSubscriber ? &m_a : nullptr, name, nullptr);

        QCOMPARE(BMBaseNotification::subscriptionCount(&m_a), 0);
        QCOMPARE(log.lines().size(), 1);
        QCOMPARE(log.lines().first().module, QStringLiteral("BMBaseNotification"));
        QCOMPARE(log.lines().first().level, 3);
    }

private:
    std::unique_ptr<TestEnvironment> m_env;
    int m_a = 0;
    int m_b = 0;
};

QTEST_GUILESS_MAIN(tst_BMBaseNotification)
#include "tst_BMBaseNotification.moc"
