#include "LayoutChecks.h"
#include "TestEnvironment.h"
#include <Brightmere/model/BMSDKUISettings.h>
#include <Brightmere/platform/views/NavigationController.h>
#include <Brightmere/platform/views/Switch.h>
#include <Brightmere/screens/settings/FZMiscellaneousSettingsViewController.h>

#include <QTest>

#include <memory>

using Brightmere::Switch;

namespace {

// The "always" preferences as "replace copy delete", 1 for always.
QString stored()
{
    const BMSDKUISettings &settings = BMSDKUISettings::sharedInstance();
    return QString("%1 %2 %3")
        .arg(int(settings.alwaysReplaceRecording()))
        .arg(int(settings.alwaysCopyRecording()))
        .arg(int(settings.alwaysDeleteRecording()));
}

void store(const QString &always)
{
    BMSDKUISettings &settings = BMSDKUISettings::sharedInstance();
    settings.setAlwaysReplaceRecording(always.at(0) == '1');
    settings.setAlwaysCopyRecording(always.at(2) == '1');
    settings.setAlwaysDeleteRecording(always.at(4) == '1');
}

// The switches as "replace, copy, delete": on or off, and locked when disabled.
QString shown(const FZMiscellaneousSettingsViewController *screen)
{
    QStringList states;
    for (const Switch *s : {screen->confirmReplacementSwitch(), screen->confirmCopySwitch(),
                            screen->confirmDeletionSwitch()})
        states << QString(s->isOn() ? "on" : "off") + (s->isEnabled() ? "" : " locked");
    return states.join(", ");
}

} // namespace

// The confirmation switches: the negation of the "always" preferences, the
// lock between replace and copy, and what a tap writes.
class tst_FZMiscellaneousSettingsViewController : public QObject
{
    Q_OBJECT

    std::unique_ptr<TestEnvironment> m_env;
    std::unique_ptr<Brightmere::NavigationController> m_navigation;

    FZMiscellaneousSettingsViewController *open()
    {
        auto *screen = new FZMiscellaneousSettingsViewController;
        m_navigation = std::make_unique<Brightmere::NavigationController>(screen);
        m_navigation->resize(375, 667);
        m_navigation->show();
        return screen;
    }

private Q_SLOTS:
    void init() { m_env = std::make_unique<TestEnvironment>(); }

    void cleanup()
    {
        m_navigation.reset();
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
        m_env.reset();
    }

    void switchesMirrorThePreferencesAndLock_data()
    {
        QTest::addColumn<QString>("before"); // stored at opening
        // Taps on "replace", "copy", "delete"; "away:<always>" stores while
        // another screen covers this one, as the test screen's popup does.
        QTest::addColumn<QStringList>("steps");
        QTest::addColumn<QString>("expected");
        QTest::addColumn<QString>("after");
        QTest::newRow("nothing always: all ask") << "0 0 0" << QStringList{} << "on, on, on" << "0 0 0";
        QTest::newRow("both always at opening: both locked off")
            << "1 1 1" << QStringList{} << "off locked, off locked, off" << "1 1 1";
        QTest::newRow("replace off locks copy on") << "0 0 0" << QStringList{"replace"} << "off, on locked, on"
                                                   << "1 0 0";
        QTest::newRow("a locked switch ignores a tap") << "0 0 0" << QStringList{"copy", "replace"}
                                                       << "on locked, off, on" << "0 1 0";
        QTest::newRow("delete locks nothing") << "0 1 0" << QStringList{"delete"} << "on locked, off, off"
                                              << "0 1 1";
        QTest::newRow("both always: taps change nothing")
            << "1 1 0" << QStringList{"replace", "copy"} << "off locked, off locked, on" << "1 1 0";
        QTest::newRow("popup's always delete shows off on return")
            << "0 0 0" << QStringList{"away:0 0 1"} << "on, on, off" << "0 0 1";
    }

    void switchesMirrorThePreferencesAndLock()
    {
        QFETCH(QString, before);
        QFETCH(QStringList, steps);
        QFETCH(QString, expected);
        QFETCH(QString, after);
        store(before);
        auto *screen = open();
        for (const QString &step : steps) {
            if (step.startsWith("away:")) {
                m_navigation->pushViewController(new FZMiscellaneousSettingsViewController, false);
                store(step.mid(5));
                m_navigation->popViewControllerAnimated(false);
                continue;
            }
            QTest::mouseClick(step == "replace" ? screen->confirmReplacementSwitch()
                              : step == "copy"  ? screen->confirmCopySwitch()
                                                : screen->confirmDeletionSwitch(),
                              Qt::LeftButton);
        }
        QCOMPARE(shown(screen), expected);
        QCOMPARE(stored(), after);
    }

    void followsTheWindow_data()
    {
        QTest::addColumn<int>("width");
        for (int width : {320, 375, 800, 1280})
            QTest::newRow(QByteArray::number(width) + " wide") << width;
    }

    // Each label wraps beside its switch instead of being cut or covered;
    // on a wide window the rows keep a readable width, in the middle.
    void followsTheWindow()
    {
        QFETCH(int, width);
        auto *screen = open();
        QCOMPARE(screen->screenNameAndClassForEventTracker().screenName(), QString("Miscellaneous Screen"));
        m_navigation->resize(width, 667);
        QCoreApplication::processEvents();
        QCOMPARE(LayoutChecks::faults(m_navigation.get()).join("; "), QString());
        const QRect group = screen->findChild<QWidget *>("confirmationsGroup")->geometry();
        QCOMPARE(group.width(), std::min(width, 600));
        QVERIFY(qAbs(group.center().x() - screen->rect().center().x()) <= 1);
    }
};

QTEST_MAIN(tst_FZMiscellaneousSettingsViewController)
#include "tst_FZMiscellaneousSettingsViewController.moc"
