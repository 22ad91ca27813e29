#pragma once

#include "PointerInput.h"
#include "ScanDelegateRecorder.h"
#include "TestEnvironment.h"
#include <Brightmere/core/BMSDKBackend.h>
#include <Brightmere/core/BMSimulatedNetwork.h>
#include <Brightmere/model/FZHistoricalResultSpotsSet.h>
#include <Brightmere/platform/foundation/ManualClock.h>
#include <Brightmere/platform/views/Alert.h>
#include <Brightmere/platform/views/ApplicationNotifications.h>
#include <Brightmere/platform/views/KeyWindow.h>
#include <Brightmere/platform/views/NavigationController.h>
#include <Brightmere/platform/views/ScrollView.h>
#include <Brightmere/platform/views/Storyboard.h>
#include <Brightmere/platform/views/TableView.h>
#include <Brightmere/popups/FZConfirmSpotModificationPopup.h>
#include <Brightmere/session/BMSpeedRecordCell.h>
#include <Brightmere/session/BMSpotsSetSaveFlow.h>
#include <Brightmere/session/BMSpotsTableController.h>
#include <Brightmere/session/BMWifiScanVC.h>
#include <Brightmere/session/BMWifiScanView.h>
#include <Brightmere/storyboard/BMSDKUIStoryboard.h>
#include <Brightmere/ui/BMImageButton.h>

#include <QCoreApplication>
#include <QTest>

#include <memory>

// The test screen in a phone-sized window on the simulated backend, with a
// manual clock: a test result arrives every kInterval seconds of
// clock.advance, at the speeds of the trace, in a loop. The controls are
// driven as a person does, with the mouse on the real widgets.
class WifiScanHarness
{
public:
    static constexpr double kInterval = 0.5;
    static constexpr const char *kPassword = "pw-9f3K!x";

    explicit WifiScanHarness(const QList<double> &trace = {10.0})
    {
        BMSDKBackend::setClock(&clock);
        BMSDKBackend::setSampleInterval(kInterval);
        BMSDKBackend::setSimulatedTrace(trace);
        Brightmere::ScrollView::setAnimationDuration(0);
        screen = new BMWifiScanVC;
        screen->setSdkCustomer("acme");
        screen->setSdkPassword(kPassword);
        screen->setFzDelegate(&recorder);
        nav = std::make_unique<Brightmere::NavigationController>(screen);
        nav->resize(375, 667);
        Brightmere::KeyWindow::makeKeyWindow(nav.get());
        nav->show();
        // Active, so the keyboard focus can be in it.
        nav->activateWindow();
        (void)QTest::qWaitForWindowActive(nav.get());
    }

    ~WifiScanHarness()
    {
        nav.reset();
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
        BMSDKBackend::setClock(nullptr);
    }

    // The kit's segues, so the bar's history control leads on.
    void useStoryboard()
    {
        BMSDKUIStoryboard::registerSegues(&board);
        screen->setStoryboard(&board);
    }

    // A point on a row's speed area (its re-record control), in the
    // coordinates of the table's viewport, which stays put while rows move.
    QPoint rowSpeedArea(int index) const
    {
        QWidget *control = row(index)->reRecordView();
        return control->mapTo(screen->tblRecords()->viewport(), control->rect().center());
    }
    // Presses a row's speed area and keeps still past the table's delay: a hold.
    void holdRow(int index)
    {
        PointerInput::press(PointerInput::Kind::Mouse, screen->tblRecords()->viewport(), rowSpeedArea(index));
        clock.advance(Brightmere::TableView::kContentTouchDelaySeconds + 0.01);
    }
    void releaseRow(int index)
    {
        PointerInput::release(PointerInput::Kind::Mouse, screen->tblRecords()->viewport(), rowSpeedArea(index));
    }
    void setWifi(bool on)
    {
        BMSimulatedNetwork::shared().setReachabilityStatus(on ? BMSimulatedNetwork::kReachableViaWiFi
                                                              : BMSimulatedNetwork::kNotReachable);
    }

    // Runs a comma-separated script: start (and let setup finish),
    // startStop (the control alone), results:N, seconds:S (between results),
    // press, release, releaseOut,
    // record (press and release), wifiOff, background,
    // resign, hide, show, edit (hand over a saved set of two spots), mark,
    // touchPress and touchOut (a finger on Record, lifted outside it), sound.
    void run(const QString &steps)
    {
        static QPointingDevice *finger = QTest::createTouchDevice();
        BMImageButton *record = screen->btnRecordReset();
        const QPoint inside = record->rect().center(), outside(-30, 10);
        for (const QString &step : steps.split(',', Qt::SkipEmptyParts)) {
            if (step == "start" || step == "startStop") {
                QTest::mouseClick(screen->btnStartStop(), Qt::LeftButton);
                if (step == "start")
                    clock.advance(kInterval); // the tester's setup
            } else if (step.startsWith("results:"))
                clock.advance(step.section(':', 1).toInt() * kInterval);
            else if (step.startsWith("seconds:"))
                clock.advance(step.section(':', 1).toDouble());
            else if (step == "press" || step == "release" || step == "releaseOut" || step == "record") {
                if (step == "press" || step == "record")
                    QTest::mousePress(record, Qt::LeftButton, {}, inside);
                if (step != "press")
                    QTest::mouseRelease(record, Qt::LeftButton, {}, step == "releaseOut" ? outside : inside);
            } else if (step == "touchPress")
                QTest::touchEvent(record, finger).press(0, inside);
            else if (step == "touchOut") {
                QTest::touchEvent(record, finger).move(0, outside);
                QTest::touchEvent(record, finger).release(0, outside);
            } else if (step == "sound")
                QTest::mouseClick(screen->btnSound(), Qt::LeftButton);
            else if (step == "wifiOff")
                setWifi(false);
            else if (step == "background")
                Brightmere::ApplicationNotifications::postDidEnterBackground();
            else if (step == "resign")
                Brightmere::ApplicationNotifications::postWillResignActive();
            else if (step == "hide" || step == "show") {
                nav->setVisible(step == "show");
                if (step == "show") {
                    nav->activateWindow();
                    (void)QTest::qWaitForWindowActive(nav.get());
                }
            } else if (step == "edit")
                screen->setSpotsSetToEdit(FZHistoricalResultSpotsSet::create(
                    "Upstairs", "HomeNet", QDateTime(), {WifiTestResult::create(12.0), WifiTestResult::create(30.0)}));
            else if (step == "mark")
                recorder.mark();
            else
                qFatal("unknown step %s", qPrintable(step));
        }
    }

    Brightmere::Alert *alert()
    {
        QCoreApplication::processEvents();
        return Brightmere::Alert::shownAlert(nav.get());
    }
    BMSpeedRecordCell *row(int index) const
    {
        return qobject_cast<BMSpeedRecordCell *>(
            screen->tblRecords()->cellForRowAtIndexPath(Brightmere::IndexPath(index, 0)));
    }
    QStringList labels() const
    {
        QStringList names;
        for (const WifiTestResult::Ptr &spot : screen->session()->recordedSpeeds())
            names << spot->label();
        return names;
    }

    TestEnvironment env;
    Brightmere::Storyboard board;
    Brightmere::ManualClock clock{1000.0};
    ScanDelegateRecorder recorder;
    std::unique_ptr<Brightmere::NavigationController> nav;
    BMWifiScanVC *screen = nullptr;
};
