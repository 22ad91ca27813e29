#include "WifiScanHarness.h"
#include "ui/BMLabel.h"
#include "ui/BrightmereColor.h"
#include "i18n/BMI18NManager.h"
#include "model/BMSDKUISettings.h"
#include "model/FZHistoricalResultSpotsSet.h"
#include "platform/views/KeyboardNotifications.h"
#include "platform/views/NavigationBar.h"
#include "platform/views/Switch.h"

#include <QApplication>
#include <QCompleter>
#include <QToolButton>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QStringListModel>

using namespace Brightmere;

// Spots on the test screen: recording with the control (mouse and touch),
// re-recording a row, deleting and renaming.
class tst_BMWifiScanVCSpots : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void pressAndRelease_data();
    void pressAndRelease();
    void reRecord_data();
    void reRecord();
    void deleteSpot_data();
    void deleteSpot();
    void renameSpot_data();
    void renameSpot();
    void rowHold_data();
    void rowHold();
    void tabFollowsTheScreen();
    void rowsFollowLanguage();

private:
    static void choose(FZOptionsPopup *popup, int index);
};

void tst_BMWifiScanVCSpots::choose(FZOptionsPopup *popup, int index)
{
    for (QPushButton *button : popup->optionButtons()) {
        if (FZOptionsPopup::tagOf(button) == index) {
            QTest::mouseClick(button, Qt::LeftButton);
            return;
        }
    }
    QFAIL("no such option");
}

void tst_BMWifiScanVCSpots::pressAndRelease_data()
{
    QTest::addColumn<QString>("steps");
    QTest::addColumn<QStringList>("labels");
    QTest::addColumn<bool>("average");
    QTest::addColumn<double>("duration");
    QTest::addColumn<double>("speed");
    // Results arrive at 10, 20, 30, 40 ... Mbps, one every half second.
    QTest::newRow("held over two results: their mean with the one on show")
        << "press,results:2,release" << QStringList{"Spot 1"} << true << 1.0 << 20.0;
    QTest::newRow("a new result between presses makes a second spot")
        << "press,release,results:1,press,release" << QStringList{"Spot 2", "Spot 1"} << false << 0.0 << 20.0;
    QTest::newRow("released outside still saves") << "press,releaseOut" << QStringList{"Spot 1"} << false << 0.0
                                                  << 10.0;
    QTest::newRow("a finger held over a result, dragged out and released")
        << "touchPress,results:1,touchOut" << QStringList{"Spot 1"} << true << 0.5 << 15.0;
    QTest::newRow("stopped: released inside resets the run")
        << "press,release,startStop,press,release" << QStringList{} << false << 0.0 << 0.0;
    QTest::newRow("stopped: released outside keeps it")
        << "press,release,startStop,press,releaseOut" << QStringList{"Spot 1"} << false << 0.0 << 10.0;
}

void tst_BMWifiScanVCSpots::pressAndRelease()
{
    QFETCH(QString, steps);
    QFETCH(QStringList, labels);
    QFETCH(bool, average);
    QFETCH(double, duration);
    QFETCH(double, speed);
    WifiScanHarness h({10.0, 20.0, 30.0, 40.0, 50.0});
    h.start();
    h.results(1);
    h.run(steps);
    QCOMPARE(h.labels(), labels);
    QVERIFY(!h.screen->isRecording());
    QCOMPARE(h.recorder.calls.contains("ActReset"), steps.endsWith("startStop,press,release"));
    QCOMPARE(h.recorder.calls.last(), QString("ActResetTouchUpInside"));
    if (labels.isEmpty())
        return;
    const WifiTestResult::Ptr newest = h.screen->session()->recordedSpeeds().constFirst();
    QCOMPARE(newest->isAverage(), average);
    QCOMPARE(newest->duration(), duration);
    QCOMPARE(newest->speedInMbps(), speed);
    QCOMPARE(newest->ssid(), BMSimulatedNetwork::shared().ssid());
    QCOMPARE(newest->bssid(), BMSimulatedNetwork::shared().bssid());
    QCOMPARE(h.row(0)->lblArea()->text(), labels.first());
    // Rows stripe from the top whatever was inserted above them.
    for (int i = average ? 1 : 0; i < labels.size(); ++i)
        QCOMPARE(h.row(i)->viewBg()->palette().color(QPalette::Window), Color::system(i % 2 == 0 ? 3 : 4));
}

void tst_BMWifiScanVCSpots::reRecord_data()
{
    QTest::addColumn<bool>("alwaysReplace");
    QTest::addColumn<bool>("alwaysCopy");
    QTest::addColumn<int>("choice"); // popup option; -1: no popup expected
    QTest::addColumn<bool>("switchOn");
    QTest::addColumn<QList<double>>("speeds"); // of the spots afterwards, newest first
    QTest::addColumn<QString>("remembered"); // the standing answer afterwards
    // The row held is a 10 Mbps spot; the hold sees 20 (on show), 30 and 40.
    QTest::newRow("replace") << false << false << 4 << false << QList<double>{30.0} << "";
    QTest::newRow("copy") << false << false << 3 << false << QList<double>{30.0, 10.0} << "";
    QTest::newRow("cancel drops the measurement") << false << false << 2 << false << QList<double>{10.0} << "";
    QTest::newRow("replace, always") << false << false << 4 << true << QList<double>{30.0} << "replace";
    QTest::newRow("cancel with the switch on remembers nothing") << false << false << 2 << true << QList<double>{10.0}
                                                                 << "";
    QTest::newRow("always replace asks nothing") << true << false << -1 << false << QList<double>{30.0} << "replace";
    QTest::newRow("both always: copy wins") << true << true << -1 << false << QList<double>{30.0, 10.0} << "both";
    QTest::newRow("Escape drops the measurement") << false << false << 0 << false << QList<double>{10.0} << "";
}

void tst_BMWifiScanVCSpots::reRecord()
{
    QFETCH(bool, alwaysReplace);
    QFETCH(bool, alwaysCopy);
    QFETCH(int, choice);
    QFETCH(bool, switchOn);
    QFETCH(QList<double>, speeds);
    QFETCH(QString, remembered);
    WifiScanHarness h({10.0, 20.0, 30.0, 40.0});
    BMSDKUISettings &settings = BMSDKUISettings::sharedInstance();
    settings.setAlwaysReplaceRecording(alwaysReplace);
    settings.setAlwaysCopyRecording(alwaysCopy);
    h.start();
    h.results(1);
    h.recordSpot();
    h.results(1);
    h.holdRow(0);
    h.results(2);
    h.clock.advance(0.2);
    h.releaseRow(0);

    FZConfirmSpotModificationPopup *popup = h.screen->spotsTable()->editPopup();
    QCOMPARE(popup != nullptr, choice >= 0);
    if (popup) {
        QVERIFY(!h.screen->isRecording()); // stopped while the user decides
        const QString note = popup->noteLabel()->text();
        QVERIFY(note.contains(BMI18NManager::stringForCode("fairzones_replace_record_confirm_always") + "<br/>"));
        QVERIFY(note.contains("color:#2882c6; font-size:8pt"));
        QVERIFY(note.contains(BMI18NManager::stringForCode("fairzones_delete_record_can_be_cleared_in_settings")));
        // Readable on the white card: system colour 1, not 3.
        QCOMPARE(popup->noteLabel()->palette().color(QPalette::WindowText), Brightmere::Color::system(1));
        QCOMPARE(popup->optionButtons().size(), 3);
        if (switchOn)
            QTest::mouseClick(popup->optionSwitch(), Qt::LeftButton);
        if (choice == 0)
            QTest::keyClick(QApplication::focusWidget(), Qt::Key_Escape);
        else
            choose(popup, choice);
    }
    QList<double> after;
    for (const WifiTestResult::Ptr &spot : h.screen->session()->recordedSpeeds())
        after << spot->speedInMbps();
    QCOMPARE(after, speeds);
    QCOMPARE(h.labels(), QStringList(speeds.size(), "Spot 1"));
    QVERIFY(!h.screen->isRecording() && !h.screen->session()->wifiRecordBeingEdited() && h.screen->session()->nextSpotRecordName().isNull());
    if (speeds.first() == 30.0) {
        const WifiTestResult::Ptr measured = h.screen->session()->recordedSpeeds().constFirst();
        QVERIFY(measured->isAverage());
        QVERIFY(measured->duration() >= 1.2 - 1e-9);
    }
    if (choice == 4 || (choice < 0 && !alwaysCopy)) // a replaced spot is stamped anew
        QCOMPARE(h.screen->session()->recordedSpeeds().constFirst()->timeAfterTest(), h.clock.now());
    QCOMPARE(settings.alwaysReplaceRecording(), remembered == "replace" || remembered == "both");
    QCOMPARE(settings.alwaysCopyRecording(), remembered == "copy" || remembered == "both");
}

void tst_BMWifiScanVCSpots::deleteSpot_data()
{
    QTest::addColumn<bool>("alwaysDelete");
    QTest::addColumn<int>("choice"); // -1: no popup expected
    QTest::addColumn<bool>("switchOn");
    QTest::addColumn<QStringList>("remaining");
    QTest::newRow("always: at once, no question") << true << -1 << false << QStringList{"Spot 3", "Spot 1"};
    QTest::newRow("confirmed") << false << 3 << false << QStringList{"Spot 3", "Spot 1"};
    QTest::newRow("confirmed, always from now on") << false << 3 << true << QStringList{"Spot 3", "Spot 1"};
    QTest::newRow("cancelled") << false << 2 << true << QStringList{"Spot 3", "Spot 2", "Spot 1"};
    QTest::newRow("Escape keeps it") << false << 0 << false << QStringList{"Spot 3", "Spot 2", "Spot 1"};
}

void tst_BMWifiScanVCSpots::deleteSpot()
{
    QFETCH(bool, alwaysDelete);
    QFETCH(int, choice);
    QFETCH(bool, switchOn);
    QFETCH(QStringList, remaining);
    WifiScanHarness h;
    BMSDKUISettings::sharedInstance().setAlwaysDeleteRecording(alwaysDelete);
    h.start();
    for (int i = 0; i < 3; ++i) {
        h.results(1);
        h.recordSpot();
    }
    h.clickStartStop();
    h.recorder.mark();
    // A swipe to the left that begins on the row's speed.
    const QPoint from = h.rowSpeedArea(1);
    PointerInput::drag(PointerInput::Kind::Mouse, h.screen->tblRecords()->viewport(), from, from - QPoint(80, 0));
    FZConfirmSpotModificationPopup *popup = h.screen->spotsTable()->editPopup();
    QCOMPARE(popup != nullptr, choice >= 0);
    if (popup) {
        QCOMPARE(popup->popupContainerView()->findChild<QLabel *>("popupTitle")->text(), QString("Spot 2"));
        QVERIFY(popup->noteLabel()->text().contains("font-size:8pt"));
        if (switchOn)
            QTest::mouseClick(popup->optionSwitch(), Qt::LeftButton);
        if (choice == 0)
            QTest::keyClick(QApplication::focusWidget(), Qt::Key_Escape);
        else
            choose(popup, choice);
    } else {
        QCOMPARE(h.labels().size(), 3); // on the next turn of the main queue
        QCoreApplication::processEvents();
    }
    QCOMPARE(h.labels(), remaining);
    for (int i = 0; i < remaining.size(); ++i) {
        QCOMPARE(h.row(i)->lblArea()->text(), remaining.at(i));
        QVERIFY(!h.row(i)->isEditing());
    }
    QVERIFY(!h.screen->tblRecords()->isEditing());
    QCOMPARE(BMSDKUISettings::sharedInstance().alwaysDeleteRecording(), alwaysDelete || (choice == 3 && switchOn));
    QCOMPARE(h.recorder.sinceMark(), QStringList{}); // the host is not told
}

void tst_BMWifiScanVCSpots::renameSpot_data()
{
    QTest::addColumn<QString>("typed");
    QTest::addColumn<bool>("endWithRecord"); // else Return
    QTest::addColumn<QString>("label");
    QTest::addColumn<QStringList>("remembered");
    QTest::addColumn<QStringList>("forgotten");
    // Default names are remembered, except the highest.
    QTest::newRow("blank keeps the old label") << "   " << false << "Spot 1" << QStringList{"Spot 1"}
                                               << QStringList{"Spot 2"};
    QTest::newRow("trimmed and remembered") << "  Hall  " << false << "Hall" << QStringList{"Hall"}
                                            << QStringList{"Spot 2", "Spot 1", "  Hall  "};
    // A desktop keyboard sends no keyboard notifications: what was typed
    // must still reach its spot when Record is pressed and released.
    QTest::newRow("typed, then a spot recorded") << "Kitchen" << true << "Kitchen" << QStringList{"Kitchen"}
                                                 << QStringList{"Spot 3", "Spot 1"};
}

void tst_BMWifiScanVCSpots::renameSpot()
{
    QFETCH(QString, typed);
    QFETCH(bool, endWithRecord);
    QFETCH(QString, label);
    QFETCH(QStringList, remembered);
    QFETCH(QStringList, forgotten);
    WifiScanHarness h;
    h.screen->setAdHeight(50.0);
    h.start();
    for (int i = 0; i < 2; ++i) {
        h.results(1);
        h.recordSpot();
    }
    const WifiTestResult::Ptr spot = h.screen->session()->recordedSpeeds().at(1);
    BMSpeedRecordCell *row = h.row(1);
    // The remembered names, presets included, are offered as completions.
    QVERIFY(qobject_cast<QStringListModel *>(row->completer()->model())->stringList().contains("Living Room"));

    QTest::mouseClick(row->lblArea(), Qt::LeftButton);
    QVERIFY(row->lblArea()->hasFocus());
    QVERIFY(!h.screen->btnStartStop()->isEnabled());
    QVERIFY(h.screen->btnRecordReset()->isEnabled()); // a running test keeps it
    QVERIFY(h.screen->spotsTable()->isEditingRecordName());
    if (!endWithRecord) {
        // A phone's keyboard over the row lifts the table by its height less the ad strip.
        const QRect keyboard(0, h.nav->height() - 300, h.nav->width(), 300);
        KeyboardNotifications::postKeyboardDidShow(keyboard);
        QCOMPARE(h.screen->spotsTable()->keyboardSize(), keyboard.size());
        QCOMPARE(h.screen->spotsTable()->tblRecordsBottomConstraint(), 250);
    }
    QTest::keyClick(row->lblArea(), Qt::Key_A, Qt::ControlModifier);
    QTest::keyClicks(row->lblArea(), typed);
    h.recorder.mark();
    if (endWithRecord) {
        h.results(1);
        h.recordSpot();
        QCOMPARE(h.labels(), (QStringList{"Spot 3", "Spot 2", label}));
    } else {
        QTest::keyClick(row->lblArea(), Qt::Key_Return);
        KeyboardNotifications::postKeyboardWillHide(QRect());
        QCOMPARE(row->lblArea()->text(), label);
        QCOMPARE(h.screen->spotsTable()->tblRecordsBottomConstraint(), 0);
    }
    QCOMPARE(spot->label(), label);
    QVERIFY(h.recorder.sinceMark().contains("DidEndEditingSpeedRecord"));
    QVERIFY(h.screen->btnStartStop()->isEnabled());
    QVERIFY(!h.screen->spotsTable()->isEditingRecordName());

    h.clickStartStop();
    const QStringList saved = BMSDKUISettings::sharedInstance().savedSpots();
    for (const QString &name : remembered)
        QVERIFY2(saved.contains(name), qPrintable(name));
    for (const QString &name : forgotten)
        QVERIFY2(!saved.contains(name), qPrintable(name));
}

void tst_BMWifiScanVCSpots::rowHold_data()
{
    QTest::addColumn<QString>("steps");
    QTest::addColumn<bool>("asked"); // a popup (replace or delete) is up afterwards
    // Every row starts testing with one spot, "Spot 1", listed.
    QTest::newRow("held, then dragged off the row") << "hold,off,release" << false;
    QTest::newRow("held, then a scroll begins") << "hold,up,release" << false;
    QTest::newRow("a scroll that begins on the speed") << "press,up,release" << false;
    QTest::newRow("a swipe to the left asks to delete") << "press,left,release" << true;
    QTest::newRow("a drag to the right is no hold") << "press,right,release" << false;
    QTest::newRow("held while Record is held") << "pressRecord,touchHold,touchRelease,releaseRecord" << false;
    QTest::newRow("Start pressed while Record is held") << "pressRecord,clickStart,releaseRecord" << false;
}

void tst_BMWifiScanVCSpots::rowHold()
{
    QFETCH(QString, steps);
    QFETCH(bool, asked);
    WifiScanHarness h({10.0, 20.0, 30.0});
    h.start();
    h.results(1);
    h.recordSpot();
    h.results(1);
    const QColor normal = h.screen->lblWifiSpeed()->palette().color(QPalette::WindowText);
    QWidget *viewport = h.screen->tblRecords()->viewport();
    const QPoint speed = h.rowSpeedArea(0);
    const auto mouse = PointerInput::Kind::Mouse;
    for (const QString &step : steps.split(',')) {
        if (step == "hold") {
            h.holdRow(0);
            QVERIFY(h.screen->isRecording());
        } else if (step == "press") {
            PointerInput::press(mouse, viewport, speed);
        } else if (step == "off" || step == "up" || step == "left" || step == "right") {
            const QPoint to = speed + (step == "off" ? QPoint(0, 30) : step == "up" ? QPoint(0, -40)
                                       : step == "left" ? QPoint(-80, 0) : QPoint(80, 0));
            PointerInput::move(mouse, viewport, speed + (to - speed) / 2);
            PointerInput::move(mouse, viewport, to);
            h.clock.advance(0.3);
            PointerInput::release(mouse, viewport, to);
        } else if (step == "release") {
            // Already released with the move above.
        } else if (step == "pressRecord") {
            h.pressRecord();
        } else if (step == "releaseRecord") {
            h.releaseRecord();
        } else if (step == "touchHold") {
            PointerInput::press(PointerInput::Kind::Touch, viewport, speed);
            h.clock.advance(0.3);
        } else if (step == "touchRelease") {
            PointerInput::release(PointerInput::Kind::Touch, viewport, speed);
        } else if (step == "clickStart") {
            h.clickStartStop();
            QVERIFY(h.screen->session()->isScanning());
        }
    }
    QCOMPARE(h.screen->spotsTable()->editPopup() != nullptr, asked);
    QVERIFY(!h.screen->isRecording());
    QVERIFY(!h.screen->session()->wifiRecordBeingEdited());
    QVERIFY(h.screen->session()->isScanning());
    // Back in the normal look, and nothing saved that nobody held: leaving
    // the application (which keeps a spot being recorded) adds none.
    QCOMPARE(BMWifiScanVC::imageNameOf(h.screen->wifiCounterBackground()), QString("wifiCounter"));
    QCOMPARE(h.screen->lblWifiSpeed()->palette().color(QPalette::WindowText), normal);
    if (h.screen->spotsTable()->editPopup())
        QTest::keyClick(QApplication::focusWidget(), Qt::Key_Escape);
    const QStringList before = h.labels();
    h.run("resign");
    QCOMPARE(h.labels(), before);
    // A record afterwards restores the normal colour, not the recording white.
    h.results(1);
    h.pressRecord();
    QVERIFY(h.screen->lblWifiSpeed()->palette().color(QPalette::WindowText) != normal);
    h.releaseRecord();
    QCOMPARE(h.screen->lblWifiSpeed()->palette().color(QPalette::WindowText), normal);
}

void tst_BMWifiScanVCSpots::tabFollowsTheScreen()
{
    WifiScanHarness h;
    h.start();
    for (int i = 0; i < 2; ++i) {
        h.results(1);
        h.recordSpot();
    }
    h.clickStartStop();
    // Clicks leave the focus with the screen, where no control is ringed.
    QCOMPARE(QApplication::focusWidget(), h.screen);
    // From the bar's buttons, left to right, down the screen.
    QList<QWidget *> expected;
    for (auto *button : h.nav->navigationBar()->findChildren<QToolButton *>()) {
        if (button->isVisible())
            expected << button;
    }
    std::sort(expected.begin(), expected.end(), [](QWidget *a, QWidget *b) { return a->x() < b->x(); });
    QCOMPARE(expected.size(), 3);
    expected << h.screen->btnSound() << h.screen->btnStartStop() << h.screen->btnRecordReset()
             << h.row(0)->lblArea() << h.row(1)->lblArea() << expected.first();
    for (QWidget *widget : std::as_const(expected)) {
        QTest::keyClick(QApplication::focusWidget(), Qt::Key_Tab);
        QCOMPARE(QApplication::focusWidget(), widget);
    }
    h.row(1)->lblArea()->setFocus(Qt::TabFocusReason);
    // Tabbed into, a name is not selected: a stray key does not wipe it.
    QLineEdit *name = h.row(1)->lblArea();
    QVERIFY(!name->hasSelectedText());
    QTest::keyClick(name, Qt::Key_Space);
    QCOMPARE(name->text(), QString("Spot 1 "));
    QTest::keyClick(name, Qt::Key_Return);
    // Space on a focused control presses it: Start.
    h.screen->btnStartStop()->setFocus(Qt::TabFocusReason);
    QTest::keyClick(h.screen->btnStartStop(), Qt::Key_Space);
    QVERIFY(h.screen->session()->isScanning());
}

void tst_BMWifiScanVCSpots::rowsFollowLanguage()
{
    WifiScanHarness h;
    h.start();
    h.results(1);
    h.recordSpot();
    QVERIFY(h.row(0)->lblSpeed()->text().contains(u'.'));
    BMI18NManager::sharedInstance()->setCurrentLanguage("es");
    const QString spanish = h.row(0)->lblSpeed()->text();
    BMI18NManager::sharedInstance()->setCurrentLanguage("en");
    QVERIFY2(spanish.contains(u','), qPrintable(spanish));
}

QTEST_MAIN(tst_BMWifiScanVCSpots)
#include "tst_BMWifiScanVCSpots.moc"
