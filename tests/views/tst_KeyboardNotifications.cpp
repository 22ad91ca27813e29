#include "TestEnvironment.h"
#include "platform/foundation/NotificationCenter.h"
#include "platform/views/KeyboardNotifications.h"

#include <QTest>

using namespace Brightmere;

class tst_KeyboardNotifications : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup()
    {
        NotificationCenter::defaultCenter().removeObserver(this);
        m_env.reset();
    }
    void inputMethodReports_data();
    void inputMethodReports();

private:
    std::unique_ptr<TestEnvironment> m_env;
    QString m_posted; // S for did show, H for will hide
    QList<QVariantMap> m_userInfos;
};

void tst_KeyboardNotifications::init()
{
    m_env = std::make_unique<TestEnvironment>();
    QVERIFY(KeyboardNotifications::startWatching());
    QVERIFY(KeyboardNotifications::startWatching()); // a second start changes nothing
    // Every case starts from a hidden keyboard, before anyone listens.
    KeyboardNotifications::handleInputMethodState(false, QRect());
    m_posted.clear();
    m_userInfos.clear();
    for (const char *name : {"KeyboardDidShowNotification", "KeyboardWillHideNotification"}) {
        NotificationCenter::defaultCenter().addObserver(this, name, [this](const Notification &notification) {
            m_posted += notification.name == KeyboardNotifications::kKeyboardDidShowNotification ? 'S' : 'H';
            m_userInfos.append(notification.userInfo);
        });
    }
}

void tst_KeyboardNotifications::inputMethodReports_data()
{
    QTest::addColumn<QList<bool>>("visible");
    QTest::addColumn<QList<QRect>>("frames");
    QTest::addColumn<QString>("posted");
    QTest::addColumn<QList<QRect>>("endFrames");
    const QRect low(0, 544, 390, 300), high(0, 500, 390, 344), none;
    QTest::newRow("keyboard comes up") << QList<bool>{true} << QList<QRect>{low} << "S" << QList<QRect>{low};
    QTest::newRow("the same report again posts nothing")
        << QList<bool>{true, true} << QList<QRect>{low, low} << "S" << QList<QRect>{low};
    QTest::newRow("a new frame while up posts did-show again")
        << QList<bool>{true, true} << QList<QRect>{low, high} << "SS" << QList<QRect>{low, high};
    QTest::newRow("going down posts will-hide")
        << QList<bool>{true, false} << QList<QRect>{low, none} << "SH" << QList<QRect>{low, none};
    QTest::newRow("down while down posts nothing")
        << QList<bool>{false, false} << QList<QRect>{none, low} << "" << QList<QRect>{};
    QTest::newRow("up, down, up")
        << QList<bool>{true, false, true} << QList<QRect>{low, none, low} << "SHS" << QList<QRect>{low, none, low};
}

void tst_KeyboardNotifications::inputMethodReports()
{
    QFETCH(QList<bool>, visible);
    QFETCH(QList<QRect>, frames);
    QFETCH(QString, posted);
    QFETCH(QList<QRect>, endFrames);
    for (int i = 0; i < visible.size(); ++i)
        KeyboardNotifications::handleInputMethodState(visible.at(i), frames.at(i));
    QCOMPARE(m_posted, posted);
    QList<QRect> got;
    for (const QVariantMap &userInfo : std::as_const(m_userInfos)) {
        // Screens read a QRect under exactly this key.
        QCOMPARE(userInfo.keys(), QStringList{"KeyboardFrameEndUserInfoKey"});
        QCOMPARE(userInfo.value("KeyboardFrameEndUserInfoKey").typeId(), QMetaType::QRect);
        got.append(userInfo.value("KeyboardFrameEndUserInfoKey").toRect());
    }
    QCOMPARE(got, endFrames);
}

QTEST_MAIN(tst_KeyboardNotifications)
#include "tst_KeyboardNotifications.moc"
