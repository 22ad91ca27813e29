#pragma once

#include <Brightmere/SDKUIExport.h>

#include "BMWifiScanVCDelegate.h"
#include "BMWifiTestSession.h"
#include <Brightmere/model/BMWifiScanVCEditSpotsSetSetter.h>
#include <Brightmere/ui/BMSDKUIBaseViewController.h>

#include <QColor>
#include <QIcon>
#include <QPointer>
#include <QString>

#include <optional>

class BMImageButton;
class BMLabel;
class BMSpeedRecordCell;
class BMSpotsSetSaveFlow;
class BMSpotsTableController;
class BMWifiScanView;
class QLabel;
class QLineEdit;
class RealTimePlot;

namespace Brightmere {
class BarButtonItem;
class PageControl;
class ScrollView;
class TableView;
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
class BRIGHTMERE_SDKUI_EXPORT BMWifiScanVC : public BMSDKUIBaseViewController, public BMWifiScanVCEditSpotsSetSetter
{
    Q_OBJECT

public:
    /// The test screen, not yet loaded; the host sets its customer, password and delegate next.
    explicit BMWifiScanVC(QWidget *parent = nullptr);
    ~BMWifiScanVC() override;

    /// Set by the host before the screen is shown.
    QString sdkCustomer() const { return m_sdkCustomer; }
    /// Sets the customer's name the tester is made for.
    void setSdkCustomer(const QString &customer) { m_sdkCustomer = customer; }
    /// Used once, when the screen loads; no getter on purpose.
    void setSdkPassword(const QString &password);
    /// Held weakly; must be a QObject (anything else is refused with a log line).
    BMWifiScanVCDelegate *fzDelegate() const;
    /// Sets the delegate (a QObject; held weakly).
    void setFzDelegate(BMWifiScanVCDelegate *delegate);
    /// Height of the host's advertisement strip at the bottom of the window.
    double adHeight() const { return m_adHeight; }
    /// Sets the height of the strip kept free for the host's advertisement.
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
    /// The list of recorded spots; null until the screen has loaded.
    BMSpotsTableController *spotsTable() const { return m_spotsTable; }
    /// The save flow of the run.
    BMSpotsSetSaveFlow *saveFlow() const { return m_saveFlow; }

    /// The test.
    void startTesting();
    /// Stops the test (see BMWifiTestSession).
    void stopTesting() { m_session->stopTesting(); }
    /// Redraws the chart from the run's results.
    void reloadPlot();
    /// Shows the current network's name.
    void updateSSID();
    /// Takes one result as if the tester had sent it.
    void updateUIWithResult(const WifiTestResult::Ptr &result) { m_session->acceptResult(result); }
    /// Titles the record/reset control for the current state.
    void updateRecordResetLabel();
    /// Shows the "no Wi-Fi" alert.
    void showNoWifiAlert();
    /// Shows the "no Wi-Fi" alert when a test runs off Wi-Fi.
    void showNoWifiPopupIfNeeded();
    /// The same as showNoWifiPopupIfNeeded().
    void showNoWifiPopup() { showNoWifiPopupIfNeeded(); }
    /// Starts the feedback sound's pacing.
    void startSound() { m_session->startSound(); }
    /// Plays the feedback sound once.
    void playSound() { m_session->playSound(); }

    /// What the controls do.
    void actStartStop();
    /// The record/reset control went down: recording starts while testing.
    void actRecordResetTouchDown();
    /// The record/reset control came up inside it.
    void actRecordResetTouchUpInside() { actRecordResetTouchUp(true); }
    /// The record/reset control came up outside it.
    void actRecordResetTouchUpOutside() { actRecordResetTouchUp(false); }
    /// The record/reset control came up: while testing the spot is kept; when stopped, a release inside resets the run.
    void actRecordResetTouchUp(bool inside);
    /// Turns the feedback sound on or off.
    void actSoundOnOff();
    /// The menu control on the bar: tells the delegate.
    void menuButtonTapped();
    /// The speed as readers hear it, at most once a second unless atOnce
    /// (a stop or a reset shows 0.0 at once).
    void announceSpeed(double shown, bool atOnce = false);
    /// The left control on the bar: ends a spot-name edit first, then tells the delegate.
    void leftMenuBtnTapped();
    /// The history control on the bar: the saving menu.
    virtual void menuHistoricalResultsTapped();

    /// Saving the run as a spots set (see BMSpotsSetSaveFlow).
    void showHistoricalResultsOptions(QObject *);
    /// Opens the title prompt of the save flow.
    void showSaveCurrentSpotSetScreen();
    /// Saves the run under the title typed in the prompt.
    void saveCurrentSpotSet();
    /// Saves the run under name.
    void saveCurrentSpotSetWithName(const QString &name);
    /// Tells the user a title is needed.
    void showTitleCannotBeNil();
    /// Asks whether to replace the set saved as name.
    void showSpotsSetAlreadyExistsDialogWithName(const QString &name);
    /// Opens the list of saved sets.
    void showSavedSpots();
    /// The title field while the title prompt is open; null otherwise.
    QLineEdit *spotNameTextField() const;

    /// Recording spots (see BMWifiTestSession).
    void startRecording() { m_session->startRecording(); }
    /// Ends recording without keeping the spot.
    void stopRecording() { m_session->stopRecording(); }
    /// Keeps the spot being recorded and ends recording.
    void saveRecordAndStopRecording() { m_session->saveRecordAndStopRecording(); }
    /// The same, only while recording.
    void saveRecordAndStopRecordingIfNeeded() { m_session->saveRecordAndStopRecordingIfNeeded(); }
    /// Whether a spot is being recorded.
    bool isRecording() const { return m_session->isRecording(); }
    /// Gives the controls their recording look.
    void setRecordingUI();
    /// Gives the controls their normal look.
    void setNormalUI();
    /// Clears the run: results, spots and chart.
    void reset() { m_session->reset(); }
    /// Clears the run and starts from speeds (a set opened for editing), or from nothing.
    void resetWithNewRecordedSpeeds(const std::optional<WifiTestResult::List> &speeds)
    {
        m_session->resetWithNewRecordedSpeeds(speeds);
    }
    /// Numbers the next default spot name after the highest in the run.
    void updateSpeedIndex() { m_session->updateSpeedIndex(); }
    /// Remembers the names the user gave the run's spots among the saved spot names.
    void saveSpotsLocally() { m_session->saveSpotsLocally(); }
    /// Loads the set given to setSpotsSetToEdit(); true when one was loaded.
    bool setupForEditIfNeeded();
    /// Removes a recorded spot from the run.
    void deleteRecord(const WifiTestResult::Ptr &record) { m_session->deleteRecord(record); }

    /// The tutorial (see BMWifiScanView).
    void setupTutorial();
    /// Removes the tutorial pages.
    void removeTutorial();
    /// The tutorial stopped scrolling: its page indicator follows.
    void scrollViewDidEndDecelerating(Brightmere::ScrollView *scrollView);
    /// The tutorial's animated scroll ended: its page indicator follows.
    void scrollViewDidEndScrollingAnimation(Brightmere::ScrollView *scrollView);
    /// The page indicator was tapped: the tutorial scrolls to its page.
    void pageControlValueChanged();

    /// The platform's notifications.
    void keyboardDidShow(const Brightmere::Notification &notification);
    /// The keyboard goes: the spots table gets its space back.
    void keyboardWillHide(const Brightmere::Notification &notification);
    /// The application goes inactive: a spot being recorded is kept; the test goes on.
    void appWillResignActive(const Brightmere::Notification &notification);
    /// The application is active again: the loading overlay goes and the network's name is read again.
    void appDidBecomeActive(const Brightmere::Notification &notification);
    /// The application went to the background: the loading overlay goes and the test stops.
    void applicationDidEnterBackground(const Brightmere::Notification &notification);

    /// The tester's and reachability's reports go to the session.
    void wiFiTesterDidFinishSetupWithError(BMWiFiTester *tester, const std::optional<BMError> &error)
    {
        m_session->wiFiTesterDidFinishSetupWithError(tester, error);
    }
    /// A result of the tester (see BMWiFiTesterDelegate).
    void wiFiTesterDidUpdateWithTestResult(BMWiFiTester *tester, const WifiTestResult::Ptr &result)
    {
        m_session->wiFiTesterDidUpdateWithTestResult(tester, result);
    }
    /// The tester ended with an error, or stopped (see BMWiFiTesterDelegate).
    void wiFiTesterDidFinishWithError(BMWiFiTester *tester, const std::optional<BMError> &error)
    {
        m_session->wiFiTesterDidFinishWithError(tester, error);
    }
    /// The reachability changed (see BMReachabilityDelegate).
    void reachabilityHasChanged(int status, const QString &withBSSID, const QString &withSSID)
    {
        m_session->reachabilityHasChanged(status, withBSSID, withSSID);
    }

    /// The spot rows' reports and the spots table go to the spots table.
    void didBeginEditingSpeedRecord(BMSpeedRecordCell *cell);
    /// A spot-name edit ended.
    void didEndEditingSpeedRecord(BMSpeedRecordCell *cell);
    /// A spot's re-record control went down.
    void didStartTapReRecordView(BMSpeedRecordCell *cell);
    /// A spot's re-record control came up inside it: the spot is measured again.
    void didFinishTapReRecordView(BMSpeedRecordCell *cell);
    /// A spot's re-record control came up outside it: nothing changes.
    void didCancelTapReRecordView(BMSpeedRecordCell *cell);
    /// A spot row went into edit mode.
    void didEnterInEditMode(BMSpeedRecordCell *cell);

    /// The screen's views; null until the screen has loaded.
    Brightmere::ScrollView *contentScrollView() const { return m_contentScrollView; }
    /// The bordered box around the speed figure.
    QWidget *viewBordered() const;
    /// The chart's outer holder.
    QWidget *viewPlotHolderContainer() const;
    /// The chart's holder.
    QWidget *viewPlotHolder() const;
    /// The live speed chart.
    RealTimePlot *charPlot() const;
    /// The start/stop control.
    BMImageButton *btnStartStop() const;
    /// The record/reset control.
    BMImageButton *btnRecordReset() const;
    /// The sound control.
    BMImageButton *btnSound() const;
    /// The "hold to average" note.
    BMLabel *lblHoldToAverage() const;
    /// The "preparing" note shown until the first result.
    BMLabel *lblPreparing() const;
    /// The big speed figure.
    BMLabel *lblWifiSpeed() const;
    /// The unit under the figure ("Mbps").
    BMLabel *lblUnit() const;
    /// The network's name.
    BMLabel *lblSSID() const;
    /// The background behind the speed figure.
    QLabel *wifiCounterBackground() const;
    /// The table of recorded spots.
    Brightmere::TableView *tblRecords() const;
    /// The tutorial's paged view.
    Brightmere::ScrollView *scrollTutorial() const;
    /// The tutorial's page indicator.
    Brightmere::PageControl *pageResults() const;
    /// The bar's left control.
    Brightmere::BarButtonItem *leftMenuButton() const { return m_leftMenuItem; }
    /// The bar's menu control.
    Brightmere::BarButtonItem *menuButton() const { return m_menuItem; }
    /// The bar's history control.
    Brightmere::BarButtonItem *historyButton() const { return m_historyItem; }

    /// The name of the image a view shows now ("buttonStop.png"), as set by
    /// the screen; empty when none.
    static QString imageNameOf(const QWidget *view);

protected:
    void viewDidLoad() override;
    void viewWillAppear(bool animated) override;
    void viewDidAppear(bool animated) override;
    void viewWillDisappear(bool animated) override;
    void viewWillLayoutSubviews() override;
    /// Gives a screen opened from here the way to hand a saved set back for editing.
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
