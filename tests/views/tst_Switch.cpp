#include "platform/views/Switch.h"

#include <QSignalSpy>
#include <QTest>

using Brightmere::Switch;

// The knob must end where the state is, whichever way the state changed:
// a user's click (which Qt applies with the button's refresh held back), a
// change from code, animated or not.
class tst_Switch : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void cleanup() { Switch::setSlideDuration(150); }

    void knobFollowsState_data()
    {
        QTest::addColumn<bool>("startOn");
        QTest::addColumn<QString>("how");
        QTest::addColumn<bool>("endOn");

        QTest::newRow("click turns on") << false << "click" << true;
        QTest::newRow("click turns off") << true << "click" << false;
        QTest::newRow("space key turns on") << false << "key" << true;
        QTest::newRow("code turns on") << false << "code" << true;
        QTest::newRow("code animated turns off") << true << "code animated" << false;
    }

    void knobFollowsState()
    {
        QFETCH(bool, startOn);
        QFETCH(QString, how);
        QFETCH(bool, endOn);

        Switch::setSlideDuration(0);
        Switch control;
        control.resize(control.sizeHint());
        control.setOn(startOn);
        QCOMPARE(control.knobPosition(), startOn ? 1.0 : 0.0);
        QSignalSpy toggled(&control, &Switch::toggled);

        if (how == QLatin1String("click"))
            QTest::mouseClick(&control, Qt::LeftButton);
        else if (how == QLatin1String("key"))
            QTest::keyClick(&control, Qt::Key_Space);
        else
            control.setOn(endOn, how.endsWith(QLatin1String("animated")));

        QCOMPARE(control.isOn(), endOn);
        QCOMPARE(control.knobPosition(), endOn ? 1.0 : 0.0);
        QCOMPARE(toggled.size(), 1);
    }

    void clickSlidesWhenSlideHasLength()
    {
        Switch control;
        control.resize(control.sizeHint());
        QTest::mouseClick(&control, Qt::LeftButton);
        QVERIFY(control.isOn());
        // The slide runs on the event loop: the knob has not arrived yet, and
        // a change from code then jumps straight to its end.
        QVERIFY(control.knobPosition() < 1.0);
        control.setOn(false);
        QCOMPARE(control.knobPosition(), 0.0);
    }
};

QTEST_MAIN(tst_Switch)
#include "tst_Switch.moc"
