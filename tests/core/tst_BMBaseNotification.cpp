#include "core/BMBaseNotification.h"

#include "TestEnvironment.h"
#include "platform/foundation/NotificationCenter.h"

#include <QTest>

#include <memory>

namespace {

const QString kDoorbellRang = QStringLiteral("kDoorbellRang");
const QString kRoomKey = BMBaseNotification::propertyKey(1);

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
        associateSelector([listener](BMBaseNotification *n) { listener->notifyDoorbellRang(n); }, listener,
                          kDoorbellRang, &staticMetaObject);
    }
    static void unsubscribe(DoorbellListener *l) { removeSubscriber(l, kDoorbellRang, &staticMetaObject); }
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

    void subclassDeliversItselfWithItsProperties()
    {
        struct Listener : DoorbellListener
        {
            QStringList heard;
            void notifyDoorbellRang(BMBaseNotification *n) override
            {
                heard.append(n->name() + u'/' + n->properties().value(QStringLiteral("1")).toString() + u'/'
                             + n->metaObject()->className());
            }
        } hall;
        DoorbellNotification::subscribe(&hall);
        DoorbellNotification::subscribe(&hall); // again: still told once
        DoorbellNotification::postDoorbellRang(QStringLiteral("Hall"));
        QCOMPARE(hall.heard, QStringList{"kDoorbellRang/Hall/DoorbellNotification"});

        DoorbellNotification::unsubscribe(&hall);
        DoorbellNotification::postDoorbellRang(QStringLiteral("Attic"));
        QCOMPARE(hall.heard.size(), 1);
        QCOMPARE(BMBaseNotification::subscriptionCount(&hall), 0);
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

        // m_a holds kDoorbellRang as Doorbell, kDoorbellRang as Chime, kOther without class.
        const QStringList all{"kDoorbellRang/Doorbell", "kDoorbellRang/Chime", "kOther/Doorbell"};
        QTest::newRow("name and class leave the other class") << kDoorbellRang << "Doorbell"
                                                              << QStringList{all.at(1), all.at(2)};
        QTest::newRow("no class drops every class of the name") << kDoorbellRang << "" << QStringList{all.at(2)};
        QTest::newRow("no name drops the class under every name") << "" << "Chime" << QStringList{all.at(0), all.at(2)};
        QTest::newRow("no name and no class drop everything") << "" << "" << QStringList();
        QTest::newRow("a class never registered drops nothing") << kDoorbellRang << "LoudDoorbell" << all;
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
        // Another subscriber's same registration survives, unless it is removed
        // while a post is being delivered.
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

        BMBaseNotification::associateSelector(
            [this](BMBaseNotification *) { BMBaseNotification::removeSubscriber(&m_b, QString(), nullptr); }, &m_a,
            QStringLiteral("kFirst"), nullptr);
        BMBaseNotification::associateSelector([&otherHeard](BMBaseNotification *) { ++otherHeard; }, &m_b,
                                              QStringLiteral("kFirst"), nullptr);
        postAs("Doorbell", QStringLiteral("kFirst"));
        QCOMPARE(otherHeard, 1);
    }

private:
    std::unique_ptr<TestEnvironment> m_env;
    int m_a = 0;
    int m_b = 0;
};

QTEST_GUILESS_MAIN(tst_BMBaseNotification)
#include "tst_BMBaseNotification.moc"
