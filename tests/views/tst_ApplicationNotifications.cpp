#include "TestEnvironment.h"
#include "platform/foundation/NotificationCenter.h"
#include "platform/views/ApplicationNotifications.h"

#include <QGuiApplication>
#include <QTest>
#include <QWidget>

using namespace Brightmere;

class tst_ApplicationNotifications : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup()
    {
        NotificationCenter::defaultCenter().removeObserver(this);
        m_env.reset();
    }
    void stateChanges_data();
    void stateChanges();
    void followsTheRealApplicationState();

private:
    std::unique_ptr<TestEnvironment> m_env;
    QString m_posted; // R resign, B background, A active
};

void tst_ApplicationNotifications::init()
{
    m_env = std::make_unique<TestEnvironment>();
    m_posted.clear();
    const QList<std::pair<QString, QChar>> names{{"ApplicationWillResignActiveNotification", 'R'},
                                                 {"ApplicationDidEnterBackgroundNotification", 'B'},
                                                 {"ApplicationDidBecomeActiveNotification", 'A'}};
    for (const auto &[name, letter] : names)
        NotificationCenter::defaultCenter().addObserver(this, name, [this, letter](const Notification &) {
            m_posted += letter;
        });
}

void tst_ApplicationNotifications::stateChanges_data()
{
    QTest::addColumn<QList<Qt::ApplicationState>>("states"); // the first is where it starts
    QTest::addColumn<QString>("posted");
    using S = QList<Qt::ApplicationState>;
    const auto active = Qt::ApplicationActive, inactive = Qt::ApplicationInactive;
    const auto hidden = Qt::ApplicationHidden, suspended = Qt::ApplicationSuspended;
    QTest::newRow("active to inactive: resign") << S{active, inactive} << "R";
    QTest::newRow("inactive to active: become active") << S{inactive, active} << "A";
    QTest::newRow("inactive to hidden: background") << S{inactive, hidden} << "B";
    QTest::newRow("inactive to suspended: background") << S{inactive, suspended} << "B";
    QTest::newRow("active straight to suspended: resign, then background") << S{active, suspended} << "RB";
    QTest::newRow("active straight to hidden: resign, then background") << S{active, hidden} << "RB";
    QTest::newRow("suspended to active: become active only") << S{suspended, active} << "A";
    QTest::newRow("hidden to inactive: in front, not active yet") << S{hidden, inactive} << "";
    QTest::newRow("hidden to suspended: still in the background") << S{hidden, suspended} << "";
    QTest::newRow("a repeated state posts once") << S{active, inactive, inactive} << "R";
    QTest::newRow("to the background and back, the phone way")
        << S{active, inactive, suspended, inactive, active} << "RBA";
}

void tst_ApplicationNotifications::stateChanges()
{
    QFETCH(QList<Qt::ApplicationState>, states);
    QFETCH(QString, posted);
    if (states.size() == 2)
        QCOMPARE(ApplicationNotifications::notificationsForTransition(states.at(0), states.at(1)).size(),
                 posted.size());
    // The watcher's path: settle on the first state, then follow the rest.
    ApplicationNotifications::handleApplicationStateChanged(states.first());
    m_posted.clear();
    for (Qt::ApplicationState state : states.mid(1))
        ApplicationNotifications::handleApplicationStateChanged(state);
    QCOMPARE(m_posted, posted);
}

void tst_ApplicationNotifications::followsTheRealApplicationState()
{
    QVERIFY(ApplicationNotifications::startWatching());
    QVERIFY(ApplicationNotifications::startWatching());
    // No window has had focus yet in this process.
    QCOMPARE(QGuiApplication::applicationState(), Qt::ApplicationInactive);
    ApplicationNotifications::handleApplicationStateChanged(Qt::ApplicationInactive);
    m_posted.clear();

    // Where the platform has no state of its own, Qt derives it from the
    // focused window: activating one makes the application active, and the
    // watcher (connected once, despite two starts) says so once.
    QWidget window;
    window.show();
    window.activateWindow();
    QVERIFY(QTest::qWaitForWindowActive(&window));
    QTRY_COMPARE(QGuiApplication::applicationState(), Qt::ApplicationActive);
    QCOMPARE(m_posted, QStringLiteral("A"));

    ApplicationNotifications::postWillResignActive();
    ApplicationNotifications::postDidEnterBackground();
    ApplicationNotifications::postDidBecomeActive();
    QCOMPARE(m_posted, QStringLiteral("ARBA"));
}

QTEST_MAIN(tst_ApplicationNotifications)
#include "tst_ApplicationNotifications.moc"
