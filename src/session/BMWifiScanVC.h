#pragma once

#include "BMSpeedRecordDelegate.h"
#include "BMWifiScanVCDelegate.h"
#include "core/BMReachabilityDelegate.h"
#include "core/BMWiFiTesterDelegate.h"
#include "model/BMWifiScanVCEditSpotsSetSetter.h"
#include "platform/views/TableViewDataSource.h"
#include "ui/BMSDKUIBaseViewController.h"

#include <QColor>
#include <QIcon>
#include <QLineEdit>
#include <QPointer>
#include <QSize>
#include <QString>

#include <memory>
#include <optional>

class BMImageButton;
class BMLabel;
class BMSpeedRecord;
class BMWiFiTester;
class FZConfirmSpotModificationPopup;
class FZTextViewOptionsPopup;
class QLabel;
class RealTimePlot;

namespace Brightmere {
class BarButtonItem;
class Clock;
class PageControl;
class ScrollView;
class TableView;
struct Notification;
} // namespace Brightmere

// How many pages the tutorial shows.
inline constexpr int kTutorialPages = 4;

// The Fairzone test screen. The host makes it, gives it the customer's name
// and password and a delegate, and shows it. The screen measures Wi-Fi speed
// continuously while a test runs, draws each result on a live chart and as a
// big figure, clicks faster the faster the link is (when the sound is on),
// and lets the user record spots: holding the record control averages the
// results into one spot, which joins the list under the chart, where it can
// be renamed, measured again (replace or copy) and deleted.
//
// States: stopped, preparing (started, no result yet), testing, and
// recording (testing with the record control held). Wi-Fi is checked at
// start and at every result: a test never runs off Wi-Fi, and what was
// measured before Wi-Fi went stays.
//
// The password is handed to the tester when the screen loads and is then
// forgotten; it is never written anywhere, logs included.
class BMWifiScanVC : public BMSDKUIBaseViewController,
                     public BMWiFiTesterDelegate,
                     public BMReachabilityDelegate,
                     public BMSpeedRecordDelegate,
                     public BMWifiScanVCEditSpotsSetSetter,
                     public Brightmere::TableViewDataSource
{
    Q_OBJECT

public:
    explicit BMWifiScanVC(QWidget *parent = nullptr);
    ~BMWifiScanVC() override;

    // Set by the host before the screen is shown.
    QString sdkCustomer() const { return m_sdkCustomer; }
    void setSdkCustomer(const QString &customer) { m_sdkCustomer = customer; }
    // Used once, when the screen loads; no getter on purpose.
    void setSdkPassword(const QString &password);
    // Held weakly; must be a QObject (anything else is refused with a log line).
    BMWifiScanVCDelegate *fzDelegate() const;
    void setFzDelegate(BMWifiScanVCDelegate *delegate);
    // Height of the host's advertisement strip at the bottom of the window.
    double adHeight() const { return m_adHeight; }
    void setAdHeight(double height) { m_adHeight = height; }
    // Loaded at the next appearance, replacing the run.
    FZHistoricalResultSpotsSet::Ptr spotsSetToEdit() const { return m_spotsSetToEdit; }
    void setSpotsSetToEdit(const FZHistoricalResultSpotsSet::Ptr &spotsSet) override;

    // Everything that marks recording: "70BE7B".
    static QColor recordingColor();
    // The framework's image of that name; none for an empty name.
    static QIcon imageNamed(const QString &name);
    // The confirmation note as rich text: the message, and under it the
    // settings hint small and blue.
    static QString canBeClearedAttributedStringWithMessageString(const QString &message);

    BMGAScreenClass screenNameAndClassForEventTracker() const override;
    void refreshUITexts() override;
    // The spot rows carry texts too ("Mbps", the averaging note).
    void textsDidChange() override;

    // The test session.
    void startTesting();
    void stopTesting();
    void reloadPlot();
    void updateSSID();
    void updateUIWithResult(const WifiTestResult::Ptr &result);
    void updateRecordResetLabel();
    void showNoWifiAlert();
    void showNoWifiPopupIfNeeded();
    void showNoWifiPopup();
    // The feedback sound: its timer is started by the first accepted result
    // and ticks every 0.01 s; each tick plays when the gap has passed.
    void startSound();
    void playSound();

    // What the controls do.
    void actStartStop();
    void actRecordResetTouchDown();
    void actRecordResetTouchUpInside();
    void actRecordResetTouchUpOutside();
    void actRecordResetTouchUp(bool inside);
    void actSoundOnOff();
    void menuButtonTapped();
    void leftMenuBtnTapped();
    // The history control on the bar: the saving menu.
    virtual void menuHistoricalResultsTapped();

    // Saving the run as a spots set. With no spots the menu leads straight
    // to the saved sets; otherwise it offers saving and the saved list.
    // Saving asks for a title (proposing spotsSetName), refuses a blank one
    // and asks before replacing a set of that title.
    void showHistoricalResultsOptions(QObject *sender);
    void showSaveCurrentSpotSetScreen();
    void saveCurrentSpotSet();
    void saveCurrentSpotSetWithName(const QString &name);
    void showTitleCannotBeNil();
    void showSpotsSetAlreadyExistsDialogWithName(const QString &name);
    // Opens the list of saved sets ("showSavedSpotsSegue").
    void showSavedSpots();
    // The title field and the title prompt while it is open; null otherwise.
    QLineEdit *spotNameTextField() const { return m_spotNameTextField.data(); }
    FZTextViewOptionsPopup *saveCurrentSpotAlert() const;

    // Recording spots.
    void startRecording();
    void stopRecording();
    void saveRecordAndStopRecording();
    void saveRecordAndStopRecordingIfNeeded();
    bool isRecording() const { return m_currentSpeedRecord != nullptr; }
    void setRecordingUI();
    void setNormalUI();
    void reset();
    void resetWithNewRecordedSpeeds(const std::optional<WifiTestResult::List> &speeds);
    void updateSpeedIndex();
    void saveSpotsLocally();
    bool setupForEditIfNeeded();
    void deleteRecord(const WifiTestResult::Ptr &record);

    // The tutorial.
    void setupTutorial();
    void removeTutorial();
    void scrollViewDidEndDecelerating(Brightmere::ScrollView *scrollView);
    void scrollViewDidEndScrollingAnimation(Brightmere::ScrollView *scrollView);
    void pageControlValueChanged();

    // The platform's notifications.
    void keyboardDidShow(const Brightmere::Notification &notification);
    void keyboardWillHide(const Brightmere::Notification &notification);
    void appWillResignActive(const Brightmere::Notification &notification);
    void appDidBecomeActive(const Brightmere::Notification &notification);
    void applicationDidEnterBackground(const Brightmere::Notification &notification);

    // The tester's reports.
    void wiFiTesterDidFinishSetupWithError(BMWiFiTester *tester, const std::optional<BMError> &error) override;
    void wiFiTesterDidUpdateWithTestResult(BMWiFiTester *tester, const WifiTestResult::Ptr &result) override;
    void wiFiTesterDidFinishWithError(BMWiFiTester *tester, const std::optional<BMError> &error) override;
    void reachabilityHasChanged(int status, const QString &withBSSID, const QString &withSSID) override;

    // The spot rows.
    void didBeginEditingSpeedRecord(BMSpeedRecordCell *cell) override;
    void didEndEditingSpeedRecord(BMSpeedRecordCell *cell) override;
    void didStartTapReRecordView(BMSpeedRecordCell *cell) override;
    void didFinishTapReRecordView(BMSpeedRecordCell *cell) override;
    void didCancelTapReRecordView(BMSpeedRecordCell *cell) override;
    void didEnterInEditMode(BMSpeedRecordCell *cell) override;

    // The spots table: one section, a row per spot, 38 high, all swipeable.
    int numberOfRowsInSection(Brightmere::TableView *tableView, int section) override;
    Brightmere::TableViewCell *cellForRowAtIndexPath(Brightmere::TableView *tableView,
                                                     const Brightmere::IndexPath &indexPath) override;
    double heightForRowAtIndexPath(Brightmere::TableView *tableView, const Brightmere::IndexPath &indexPath) override;
    bool canEditRowAtIndexPath(Brightmere::TableView *tableView, const Brightmere::IndexPath &indexPath) override;
    void commitEditingStyle(Brightmere::TableView *tableView, EditingStyle style,
                            const Brightmere::IndexPath &indexPath) override;

    // The session's state, for hosts and tests.
    BMWiFiTester *wifiTester() const { return m_wifiTester.get(); }
    bool isScanning() const { return m_scanning; }
    bool isPreparingWifiTester() const { return m_preparingWifiTester; }
    double startTestTime() const { return m_startTestTime; }
    const WifiTestResult::List &testedSpeeds() const { return m_testedSpeeds; }
    const WifiTestResult::List &recordedSpeeds() const { return m_recordedSpeeds; }
    BMSpeedRecord *currentSpeedRecord() const { return m_currentSpeedRecord.get(); }
    WifiTestResult::Ptr wifiRecordBeingEdited() const { return m_wifiRecordBeingEdited; }
    QString nextSpotRecordName() const { return m_nextSpotRecordName; }
    qint64 speedIndex() const { return m_speedIndex; }
    bool isSoundEnabled() const { return m_soundEnabled; }
    quint32 soundID() const { return m_soundID; }
    double lastPlayTime() const { return m_lastPlayTime; }
    bool hasSoundTimer() const { return m_soundTimer != 0; }
    bool isWaitingResetButtonTouchUp() const { return m_waitingResetButtonTouchUp; }
    bool isEditingRecordName() const { return m_isEditingRecordName; }
    QSize keyboardSize() const { return m_keyboardSize; }
    QLineEdit *activeSpotTextField() const { return m_activeSpotTextField.data(); }
    bool isWifiTutorialShown() const { return m_wifiTutorialShown; }
    QString spotsSetName() const { return m_spotsSetName; }
    FZConfirmSpotModificationPopup *editPopup() const;
    int tblRecordsBottomConstraint() const { return m_tblRecordsBottomConstraint; }

    // The screen's views; null until the screen has loaded.
    Brightmere::ScrollView *contentScrollView() const { return m_contentScrollView; }
    QWidget *viewBordered() const { return m_viewBordered; }
    QWidget *viewPlotHolderContainer() const { return m_viewPlotHolderContainer; }
    QWidget *viewPlotHolder() const { return m_viewPlotHolder.data(); }
    RealTimePlot *charPlot() const;
    BMImageButton *btnStartStop() const { return m_btnStartStop; }
    BMImageButton *btnRecordReset() const { return m_btnRecordReset; }
    BMImageButton *btnSound() const { return m_btnSound; }
    BMLabel *lblHoldToAverage() const { return m_lblHoldToAverage; }
    BMLabel *lblPreparing() const { return m_lblPreparing; }
    BMLabel *lblWifiSpeed() const { return m_lblWifiSpeed; }
    BMLabel *lblUnit() const { return m_lblUnit; }
    BMLabel *lblSSID() const { return m_lblSSID; }
    QLabel *wifiCounterBackground() const { return m_wifiCounterBackground; }
    Brightmere::TableView *tblRecords() const { return m_tblRecords; }
    Brightmere::ScrollView *scrollTutorial() const;
    Brightmere::PageControl *pageResults() const;
    Brightmere::BarButtonItem *leftMenuButton() const { return m_leftMenuItem; }
    Brightmere::BarButtonItem *menuButton() const { return m_menuItem; }
    Brightmere::BarButtonItem *historyButton() const { return m_historyItem; }

    // The name of the image a view shows now ("buttonStop.png"), as set by
    // the screen; empty when none.
    static QString imageNameOf(const QWidget *view);

protected:
    void viewDidLoad() override;
    void viewWillAppear(bool animated) override;
    void viewDidAppear(bool animated) override;
    void viewWillDisappear(bool animated) override;
    void viewWillLayoutSubviews() override;
    void prepareForSegue(Brightmere::StoryboardSegue &segue, QObject *sender) override;
    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    void buildViews();
    void buildBarItems();
    void layoutViews();
    void layoutTutorial();
    void observeNotifications();
    void showImage(QWidget *view, const QString &name);
    void showCounterImage();
    void stopSound();
    void reloadRecords();
    void updateTabOrder();
    void dismissEditPopup();
    void showReplaceConfirmation(const WifiTestResult::Ptr &spot, const std::shared_ptr<BMSpeedRecord> &kept);
    void prepareCopyOf(const WifiTestResult::Ptr &spot);
    void endTableEditing();
    bool isOnWifi() const;
    QString defaultSpotName(qint64 index) const;
    QString moduleName() const;
    void log(int level, const QString &message) const;
    void tellDelegate(void (BMWifiScanVCDelegate::*operation)(BMWifiScanVC *));

    // Set by the host.
    QString m_sdkCustomer;
    QString m_sdkPassword;
    QPointer<QObject> m_fzDelegateObject;
    BMWifiScanVCDelegate *m_fzDelegate = nullptr;
    FZHistoricalResultSpotsSet::Ptr m_spotsSetToEdit;
    double m_adHeight = 0.0;

    // The session.
    std::unique_ptr<BMWiFiTester> m_wifiTester;
    bool m_scanning = false;
    bool m_preparingWifiTester = false;
    double m_startTestTime = 0.0;
    WifiTestResult::List m_testedSpeeds;
    WifiTestResult::List m_recordedSpeeds;
    // Shared: a confirmation popup keeps the collector of the spot it asks about.
    std::shared_ptr<BMSpeedRecord> m_currentSpeedRecord;
    WifiTestResult::Ptr m_wifiRecordBeingEdited;
    QString m_nextSpotRecordName;
    qint64 m_speedIndex = 0;
    bool m_soundEnabled = false;
    // Nothing assigns it: the feedback plays system sound 0, as designed.
    quint32 m_soundID = 0;
    double m_lastPlayTime = 0.0;
    int m_soundTimer = 0;
    Brightmere::Clock *m_soundClock = nullptr;
    bool m_waitingResetButtonTouchUp = false;
    bool m_isEditingRecordName = false;
    QSize m_keyboardSize;
    QPointer<QLineEdit> m_activeSpotTextField;
    bool m_wifiTutorialShown = false;
    QString m_spotsSetName;
    QColor m_lblWifiSpeedNormalColor;
    QString m_counterImageName;
    QPointer<FZConfirmSpotModificationPopup> m_editPopup;
    QPointer<QLineEdit> m_spotNameTextField;
    QPointer<FZTextViewOptionsPopup> m_saveCurrentSpotAlert;
    int m_tblRecordsBottomConstraint = 0;
    QStringList m_completionNames;

    // The views.
    Brightmere::ScrollView *m_contentScrollView = nullptr;
    QWidget *m_contentView = nullptr;
    QWidget *m_viewBordered = nullptr;
    QWidget *m_viewBorderedFrame = nullptr;
    QWidget *m_viewPlotHolderContainer = nullptr;
    QPointer<QWidget> m_viewPlotHolder;
    QPointer<RealTimePlot> m_charPlot;
    BMImageButton *m_btnStartStop = nullptr;
    BMImageButton *m_btnRecordReset = nullptr;
    BMImageButton *m_btnSound = nullptr;
    BMLabel *m_lblHoldToAverage = nullptr;
    BMLabel *m_lblPreparing = nullptr;
    BMLabel *m_lblWifiSpeed = nullptr;
    BMLabel *m_lblUnit = nullptr;
    BMLabel *m_lblSSID = nullptr;
    QLabel *m_wifiCounterBackground = nullptr;
    Brightmere::TableView *m_tblRecords = nullptr;
    QPointer<Brightmere::ScrollView> m_scrollTutorial;
    QPointer<Brightmere::PageControl> m_pageResults;
    Brightmere::BarButtonItem *m_leftMenuItem = nullptr;
    Brightmere::BarButtonItem *m_menuItem = nullptr;
    Brightmere::BarButtonItem *m_historyItem = nullptr;
};
