#pragma once

#include "BMSpotsSetSaveFlow.h"
#include "BMSpotsTableController.h"
#include "BMWifiScanVCDelegate.h"
#include "BMWifiScanView.h"
#include "BMWifiTestSession.h"
#include <Brightmere/model/BMWifiScanVCEditSpotsSetSetter.h>
#include <Brightmere/ui/BMSDKUIBaseViewController.h>

#include <QColor>
#include <QIcon>
#include <QPointer>
#include <QString>

#include <optional>

class RealTimePlot;

namespace Brightmere {
class BarButtonItem;
struct Notification;
} // namespace Brightmere

/// The Fairzone test screen. The host makes it, gives it the customer's name
/// and password and a delegate, and shows it. The screen measures Wi-Fi speed
/// continuously while a test runs, draws each result on a live chart and as a
/// big figure, clicks faster the faster the link is (when the sound is on),
/// and lets the user record spots: holding the record control averages the
/// results into one spot, which joins the list under the chart, where it can
/// be renamed, measured again (replace or copy) and deleted.
///
/// States: stopped, preparing (started, no result yet), testing, and
/// recording (testing with the record control held). Wi-Fi is checked at
/// start and at every result: a test never runs off Wi-Fi, and what was
/// measured before Wi-Fi went stays.
///
/// The screen is a front: the test itself lives in a BMWifiTestSession
/// (no widgets), the list of spots in a BMSpotsTableController, saving in a
/// BMSpotsSetSaveFlow, and the widgets in a BMWifiScanView. The screen joins
/// them, keeps the controls' looks in step with the session, and tells the
/// host's delegate what happened.
///
/// The password is handed to the tester when the screen loads and is then
/// forgotten; it is never written anywhere, logs included.
class BMWifiScanVC : public BMSDKUIBaseViewController, public BMWifiScanVCEditSpotsSetSetter
{
    Q_OBJECT

public:
    explicit BMWifiScanVC(QWidget *parent = nullptr);
    ~BMWifiScanVC() override;

    /// Set by the host before the screen is shown.
    QString sdkCustomer() const { return m_sdkCustomer; }
    void setSdkCustomer(const QString &customer) { m_sdkCustomer = customer; }
    /// Used once, when the screen loads; no getter on purpose.
    void setSdkPassword(const QString &password);
    /// Held weakly; must be a QObject (anything else is refused with a log line).
    BMWifiScanVCDelegate *fzDelegate() const;
    void setFzDelegate(BMWifiScanVCDelegate *delegate);
    /// Height of the host's advertisement strip at the bottom of the window.
    double adHeight() const { return m_adHeight; }
    void setAdHeight(double height) { m_adHeight = height; }
    /// Loaded at the next appearance, replacing the run.
    FZHistoricalResultSpotsSet::Ptr spotsSetToEdit() const { return m_spotsSetToEdit; }
    void setSpotsSetToEdit(const FZHistoricalResultSpotsSet::Ptr &spotsSet) override;

    /// Everything that marks recording: "70BE7B".
    static QColor recordingColor();
    /// The framework's image of that name; none for an empty name.
    static QIcon imageNamed(const QString &name);
    /// The confirmation note as rich text: the message, and under it the
    /// settings hint small and blue.
    static QString canBeClearedAttributedStringWithMessageString(const QString &message);

    BMGAScreenClass screenNameAndClassForEventTracker() const override;
    void refreshUITexts() override;
    /// The spot rows carry texts too ("Mbps", the averaging note).
    void textsDidChange() override;

    /// The parts the screen is made of. The spots table exists once the
    /// screen has loaded; the others from the start.
    BMWifiTestSession *session() const { return m_session; }
    BMSpotsTableController *spotsTable() const { return m_spotsTable; }
    BMSpotsSetSaveFlow *saveFlow() const { return m_saveFlow; }

    /// The test.
    void startTesting();
    void stopTesting() { m_session->stopTesting(); }
    void reloadPlot();
    void updateSSID();
    void updateUIWithResult(const WifiTestResult::Ptr &result) { m_session->acceptResult(result); }
    void updateRecordResetLabel() { m_view->updateRecordResetLabel(m_session->isScanning()); }
    void showNoWifiAlert();
    void showNoWifiPopupIfNeeded();
    void showNoWifiPopup() { showNoWifiPopupIfNeeded(); }
    void startSound() { m_session->startSound(); }
    void playSound() { m_session->playSound(); }

    /// What the controls do.
    void actStartStop();
    void actRecordResetTouchDown();
    void actRecordResetTouchUpInside() { actRecordResetTouchUp(true); }
    void actRecordResetTouchUpOutside() { actRecordResetTouchUp(false); }
    void actRecordResetTouchUp(bool inside);
    void actSoundOnOff();
    void menuButtonTapped();
    /// The speed as readers hear it, at most once a second unless atOnce
    /// (a stop or a reset shows 0.0 at once).
    void announceSpeed(double shown, bool atOnce = false);
    void leftMenuBtnTapped();
    /// The history control on the bar: the saving menu.
    virtual void menuHistoricalResultsTapped();

    /// Saving the run as a spots set (see BMSpotsSetSaveFlow).
    void showHistoricalResultsOptions(QObject *) { m_saveFlow->showHistoricalResultsOptions(); }
    void showSaveCurrentSpotSetScreen() { m_saveFlow->showSaveCurrentSpotSetScreen(); }
    void saveCurrentSpotSet() { m_saveFlow->saveCurrentSpotSet(); }
    void saveCurrentSpotSetWithName(const QString &name) { m_saveFlow->saveCurrentSpotSetWithName(name); }
    void showTitleCannotBeNil() { m_saveFlow->showTitleCannotBeNil(); }
    void showSpotsSetAlreadyExistsDialogWithName(const QString &name)
    {
        m_saveFlow->showSpotsSetAlreadyExistsDialogWithName(name);
    }
    void showSavedSpots() { m_saveFlow->showSavedSpots(); }
    /// The title field while the title prompt is open; null otherwise.
    QLineEdit *spotNameTextField() const { return m_saveFlow->spotNameTextField(); }

    /// Recording spots (see BMWifiTestSession).
    void startRecording() { m_session->startRecording(); }
    void stopRecording() { m_session->stopRecording(); }
    void saveRecordAndStopRecording() { m_session->saveRecordAndStopRecording(); }
    void saveRecordAndStopRecordingIfNeeded() { m_session->saveRecordAndStopRecordingIfNeeded(); }
    bool isRecording() const { return m_session->isRecording(); }
    void setRecordingUI() { if (m_view) m_view->setRecording(true); }
    void setNormalUI() { if (m_view) m_view->setRecording(false); }
    void reset() { m_session->reset(); }
    void resetWithNewRecordedSpeeds(const std::optional<WifiTestResult::List> &speeds)
    {
        m_session->resetWithNewRecordedSpeeds(speeds);
    }
    void updateSpeedIndex() { m_session->updateSpeedIndex(); }
    void saveSpotsLocally() { m_session->saveSpotsLocally(); }
    bool setupForEditIfNeeded();
    void deleteRecord(const WifiTestResult::Ptr &record) { m_session->deleteRecord(record); }

    /// The tutorial (see BMWifiScanView).
    void setupTutorial();
    void removeTutorial();
    void scrollViewDidEndDecelerating(Brightmere::ScrollView *scrollView)
    {
        m_view->scrollViewDidEndDecelerating(scrollView);
    }
    void scrollViewDidEndScrollingAnimation(Brightmere::ScrollView *scrollView)
    {
        m_view->scrollViewDidEndScrollingAnimation(scrollView);
    }
    void pageControlValueChanged() { m_view->pageControlValueChanged(); }

    /// The platform's notifications.
    void keyboardDidShow(const Brightmere::Notification &notification);
    void keyboardWillHide(const Brightmere::Notification &notification);
    void appWillResignActive(const Brightmere::Notification &notification);
    void appDidBecomeActive(const Brightmere::Notification &notification);
    void applicationDidEnterBackground(const Brightmere::Notification &notification);

    /// The tester's and reachability's reports go to the session.
    void wiFiTesterDidFinishSetupWithError(BMWiFiTester *tester, const std::optional<BMError> &error)
    {
        m_session->wiFiTesterDidFinishSetupWithError(tester, error);
    }
    void wiFiTesterDidUpdateWithTestResult(BMWiFiTester *tester, const WifiTestResult::Ptr &result)
    {
        m_session->wiFiTesterDidUpdateWithTestResult(tester, result);
    }
    void wiFiTesterDidFinishWithError(BMWiFiTester *tester, const std::optional<BMError> &error)
    {
        m_session->wiFiTesterDidFinishWithError(tester, error);
    }
    void reachabilityHasChanged(int status, const QString &withBSSID, const QString &withSSID)
    {
        m_session->reachabilityHasChanged(status, withBSSID, withSSID);
    }

    /// The spot rows' reports and the spots table go to the spots table.
    void didBeginEditingSpeedRecord(BMSpeedRecordCell *cell)
    {
        if (m_spotsTable)
            m_spotsTable->didBeginEditingSpeedRecord(cell);
    }
    void didEndEditingSpeedRecord(BMSpeedRecordCell *cell)
    {
        if (m_spotsTable)
            m_spotsTable->didEndEditingSpeedRecord(cell);
    }
    void didStartTapReRecordView(BMSpeedRecordCell *cell)
    {
        if (m_spotsTable)
            m_spotsTable->didStartTapReRecordView(cell);
    }
    void didFinishTapReRecordView(BMSpeedRecordCell *cell)
    {
        if (m_spotsTable)
            m_spotsTable->didFinishTapReRecordView(cell);
    }
    void didCancelTapReRecordView(BMSpeedRecordCell *cell)
    {
        if (m_spotsTable)
            m_spotsTable->didCancelTapReRecordView(cell);
    }
    void didEnterInEditMode(BMSpeedRecordCell *cell)
    {
        if (m_spotsTable)
            m_spotsTable->didEnterInEditMode(cell);
    }

    /// The screen's views; null until the screen has loaded.
    Brightmere::ScrollView *contentScrollView() const { return m_contentScrollView; }
    QWidget *viewBordered() const { return m_view ? m_view->viewBordered() : nullptr; }
    QWidget *viewPlotHolderContainer() const { return m_view ? m_view->viewPlotHolderContainer() : nullptr; }
    QWidget *viewPlotHolder() const { return m_view ? m_view->viewPlotHolder() : nullptr; }
    RealTimePlot *charPlot() const;
    BMImageButton *btnStartStop() const { return m_view ? m_view->btnStartStop() : nullptr; }
    BMImageButton *btnRecordReset() const { return m_view ? m_view->btnRecordReset() : nullptr; }
    BMImageButton *btnSound() const { return m_view ? m_view->btnSound() : nullptr; }
    BMLabel *lblHoldToAverage() const { return m_view ? m_view->lblHoldToAverage() : nullptr; }
    BMLabel *lblPreparing() const { return m_view ? m_view->lblPreparing() : nullptr; }
    BMLabel *lblWifiSpeed() const { return m_view ? m_view->lblWifiSpeed() : nullptr; }
    BMLabel *lblUnit() const { return m_view ? m_view->lblUnit() : nullptr; }
    BMLabel *lblSSID() const { return m_view ? m_view->lblSSID() : nullptr; }
    QLabel *wifiCounterBackground() const { return m_view ? m_view->wifiCounterBackground() : nullptr; }
    Brightmere::TableView *tblRecords() const { return m_view ? m_view->tblRecords() : nullptr; }
    Brightmere::ScrollView *scrollTutorial() const { return m_view ? m_view->scrollTutorial() : nullptr; }
    Brightmere::PageControl *pageResults() const { return m_view ? m_view->pageResults() : nullptr; }
    Brightmere::BarButtonItem *leftMenuButton() const { return m_leftMenuItem; }
    Brightmere::BarButtonItem *menuButton() const { return m_menuItem; }
    Brightmere::BarButtonItem *historyButton() const { return m_historyItem; }

    /// The name of the image a view shows now ("buttonStop.png"), as set by
    /// the screen; empty when none.
    static QString imageNameOf(const QWidget *view) { return BMWifiScanView::imageNameOf(view); }

protected:
    void viewDidLoad() override;
    void viewWillAppear(bool animated) override;
    void viewDidAppear(bool animated) override;
    void viewWillDisappear(bool animated) override;
    void viewWillLayoutSubviews() override;
    void prepareForSegue(Brightmere::StoryboardSegue &segue, QObject *sender) override;

private:
    void buildViews();
    void buildBarItems();
    void connectSession();
    void layoutViews();
    void observeNotifications();
    void onTestStarted();
    void onTestStopped();
    void onResultArrived();
    void onResultAccepted(const WifiTestResult::Ptr &result, double shown);
    void onSpotSaved(const WifiTestResult::Ptr &spot, int row, bool isNew);
    void onSpotsReset();
    void onNameEditBegan();
    void onNameEditEnded();
    void log(int level, const QString &message) const;
    void tellDelegate(void (BMWifiScanVCDelegate::*operation)(BMWifiScanVC *));

    // Set by the host.
    QString m_sdkCustomer;
    QString m_sdkPassword;
    QPointer<QObject> m_fzDelegateObject;
    BMWifiScanVCDelegate *m_fzDelegate = nullptr;
    FZHistoricalResultSpotsSet::Ptr m_spotsSetToEdit;
    double m_adHeight = 0.0;

    BMWifiTestSession *m_session = nullptr;
    BMSpotsTableController *m_spotsTable = nullptr;
    BMSpotsSetSaveFlow *m_saveFlow = nullptr;
    bool m_wifiTutorialShown = false;

    Brightmere::ScrollView *m_contentScrollView = nullptr;
    BMWifiScanView *m_view = nullptr;
    QPointer<RealTimePlot> m_charPlot;
    // When the reader last heard the speed, and when the hold began (clock seconds).
    double m_speedAnnouncedAt = -1e9;
    double m_recordingSince = 0.0;
    Brightmere::BarButtonItem *m_leftMenuItem = nullptr;
    Brightmere::BarButtonItem *m_menuItem = nullptr;
    Brightmere::BarButtonItem *m_historyItem = nullptr;
};
