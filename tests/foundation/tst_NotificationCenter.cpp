#include "platform/foundation/NotificationCenter.h"

#include <QtTest>

#include <thread>

using Brightmere::Notification;
using Brightmere::NotificationCenter;

class tst_NotificationCenter : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void deliversInRegistrationOrderWithPayload();
    void filtersByNameAndSender_data();
    void filtersByNameAndSender();
    void removalDuringDelivery_data();
    void removalDuringDelivery();
    void observerAddedDuringDeliveryWaitsForNextPost();
    void deliversOnThePostingThread();
};

void tst_NotificationCenter::deliversInRegistrationOrderWithPayload()
{
    NotificationCenter center;
    QStringList calls;
    int a = 0, b = 0, c = 0;
    center.addObserver(&b, QStringLiteral("kLanguageChange"), [&](const Notification &) { calls << QStringLiteral("b"); });
    center.addObserver(&a, QStringLiteral("kLanguageChange"), [&](const Notification &n) {
        calls << QStringLiteral("a:") + n.userInfo.value(QStringLiteral("lang")).toString();
    });
    center.addObserver(&c, QStringLiteral("kLanguageChange"), [&](const Notification &n) {
        calls << QStringLiteral("c:") + n.object->objectName();
    });
    QObject sender;
    sender.setObjectName(QStringLiteral("manager"));
    center.postNotificationName(QStringLiteral("kLanguageChange"), &sender, {{QStringLiteral("lang"), QStringLiteral("es")}});
    QCOMPARE(calls, (QStringList{QStringLiteral("b"), QStringLiteral("a:es"), QStringLiteral("c:manager")}));
}

void tst_NotificationCenter::filtersByNameAndSender_data()
{
    QTest::addColumn<QString>("observedName");
    QTest::addColumn<bool>("restrictToSender");
    QTest::addColumn<QString>("postedName");
    QTest::addColumn<bool>("postFromSender");
    QTest::addColumn<bool>("delivered");

    QTest::newRow("same name") << "kScreenChange" << false << "kScreenChange" << false << true;
    QTest::newRow("other name") << "kScreenChange" << false << "kLanguageChange" << false << false;
    QTest::newRow("names are case-sensitive") << "kScreenChange" << false << "kscreenchange" << false << false;
    QTest::newRow("empty name observes all") << "" << false << "kAnything" << false << true;
    QTest::newRow("sender matches") << "kScreenChange" << true << "kScreenChange" << true << true;
    QTest::newRow("other sender") << "kScreenChange" << true << "kScreenChange" << false << false;
}

void tst_NotificationCenter::filtersByNameAndSender()
{
    QFETCH(QString, observedName);
    QFETCH(bool, restrictToSender);
    QFETCH(QString, postedName);
    QFETCH(bool, postFromSender);
    QFETCH(bool, delivered);

    NotificationCenter center;
    QObject sender, stranger;
    int observer = 0, count = 0;
    center.addObserver(&observer, observedName, [&](const Notification &) { ++count; },
                       restrictToSender ? &sender : nullptr);
    center.postNotificationName(postedName, postFromSender ? &sender : &stranger);
    QCOMPARE(count, delivered ? 1 : 0);
}

void tst_NotificationCenter::removalDuringDelivery_data()
{
    QTest::addColumn<bool>("removeWholeObserver");
    QTest::newRow("removed from all names") << true;
    QTest::newRow("removed from the posted name") << false;
}

void tst_NotificationCenter::removalDuringDelivery()
{
    QFETCH(bool, removeWholeObserver);
    NotificationCenter center;
    const QString name = QStringLiteral("kTextBundleAvailable");
    int first = 0, second = 0;
    QStringList calls;
    center.addObserver(&first, name, [&](const Notification &) {
        calls << QStringLiteral("first");
        if (removeWholeObserver)
            center.removeObserver(&second);
        else
            center.removeObserver(&second, name);
    });
    center.addObserver(&second, name, [&](const Notification &) { calls << QStringLiteral("second"); });
    center.postNotificationName(name);
    QCOMPARE(calls, QStringList{QStringLiteral("first")});
    QCOMPARE(center.observerCount(name), 1);

    // Removing oneself from inside one's own callback is safe too.
    center.addObserver(&second, name, [&](const Notification &) { center.removeObserver(&second); });
    center.postNotificationName(name);
    QCOMPARE(center.observerCount(name), 1);
}

void tst_NotificationCenter::observerAddedDuringDeliveryWaitsForNextPost()
{
    NotificationCenter center;
    int first = 0, late = 0, lateCalls = 0;
    center.addObserver(&first, QStringLiteral("n"), [&](const Notification &) {
        if (lateCalls == 0 && center.observerCount(QStringLiteral("n")) == 1)
            center.addObserver(&late, QStringLiteral("n"), [&](const Notification &) { ++lateCalls; });
    });
    center.postNotificationName(QStringLiteral("n"));
    QCOMPARE(lateCalls, 0);
    center.postNotificationName(QStringLiteral("n"));
    QCOMPARE(lateCalls, 1);
}

void tst_NotificationCenter::deliversOnThePostingThread()
{
    NotificationCenter center;
    int observer = 0;
    std::thread::id deliveredOn;
    center.addObserver(&observer, QStringLiteral("n"), [&](const Notification &) { deliveredOn = std::this_thread::get_id(); });
    std::thread::id postedOn;
    std::thread poster([&] {
        postedOn = std::this_thread::get_id();
        center.postNotificationName(QStringLiteral("n"));
    });
    poster.join();
    QVERIFY(deliveredOn == postedOn);
}

QTEST_GUILESS_MAIN(tst_NotificationCenter)
#include "tst_NotificationCenter.moc"
