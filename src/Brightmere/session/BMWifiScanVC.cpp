#include "BMWifiScanVC.h"

#include "BMSpotsSetSaveFlow.h"
#include "BMSpotsTableController.h"
#include "BMWifiScanView.h"
#include <Brightmere/chart/_CPTBMClearTheme.h>
#include <Brightmere/chart/ChartThemeRegistry.h>
#include <Brightmere/chart/RealTimePlot.h>
#include <Brightmere/core/BMLogger.h>
#include <Brightmere/core/BMSDKBackend.h>
#include <Brightmere/core/BMSDKNetworkUtilities.h>
#include <Brightmere/i18n/BMI18NManager.h>
#include <Brightmere/i18n/BMI18NNumberFormatter.h>
#include <Brightmere/platform/foundation/Clock.h>
#include <Brightmere/platform/foundation/MainQueue.h>
#include <Brightmere/platform/foundation/NotificationCenter.h>
#include <Brightmere/platform/foundation/StringFormat.h>
#include <Brightmere/platform/views/AccessibleWidget.h>
#include <Brightmere/platform/views/ApplicationNotifications.h>
#include <Brightmere/platform/views/BarButtonItem.h>
#include <Brightmere/platform/views/KeyboardNotifications.h>
#include <Brightmere/platform/views/NavigationItem.h>
#include <Brightmere/platform/views/PageControl.h>
#include <Brightmere/platform/views/ScrollView.h>
#include <Brightmere/platform/views/StoryboardSegue.h>
#include <Brightmere/ui/BMImageButton.h>
#include <Brightmere/ui/BMLabel.h>
#include <Brightmere/ui/BMLoadingView.h>
#include <Brightmere/ui/BrightmereColor.h>
#include <Brightmere/ui/BrightmereImage.h>
#include <Brightmere/ui/BrightmereView.h>

#include <algorithm>

using namespace Brightmere;

namespace {

const char kEditSpotsSetSetterProperty[] = "editSpotsSetSetter";

} // namespace

BMWifiScanVC::BMWifiScanVC(QWidget *parent)
    : BMSDKUIBaseViewController(parent)
    , m_session(new BMWifiTestSession(this))
    , m_saveFlow(new BMSpotsSetSaveFlow(m_session, this, this))
{
    setObjectName(QStringLiteral("BMWifiScanVC"));
}

BMWifiScanVC::~BMWifiScanVC()
{
    NotificationCenter::defaultCenter().removeObserver(this);
    MainQueue::cancelAll(this);
    // The session's reports would reach widgets already on their way out.
    m_session->disconnect(this);
    delete m_spotsTable;
    delete m_session;
    delete m_charPlot.data();
}

// ---------------------------------------------------------------------------
// Host properties

void BMWifiScanVC::setSdkPassword(const QString &password)
{
    if (m_session->wifiTester() && !password.isEmpty()) {
        log(2, QStringLiteral("The tester is already made; a password given now is not used"));
        return;
    }
    m_sdkPassword = password;
}

BMWifiScanVCDelegate *BMWifiScanVC::fzDelegate() const
{
    return m_fzDelegateObject ? m_fzDelegate : nullptr;
}

void BMWifiScanVC::setFzDelegate(BMWifiScanVCDelegate *delegate)
{
    auto *object = dynamic_cast<QObject *>(delegate);
    if (delegate && !object) {
        log(3, QStringLiteral("The delegate is not a QObject, so it cannot be held weakly; it is not used"));
        delegate = nullptr;
    }
    m_fzDelegate = delegate;
    m_fzDelegateObject = object;
}

void BMWifiScanVC::setSpotsSetToEdit(const FZHistoricalResultSpotsSet::Ptr &spotsSet)
{
    m_spotsSetToEdit = spotsSet;
}

RealTimePlot *BMWifiScanVC::charPlot() const
{
    return m_charPlot.data();
}

QColor BMWifiScanVC::recordingColor()
{
    return Color::colorWithHexString(QStringLiteral("70BE7B"));
}

QIcon BMWifiScanVC::imageNamed(const QString &name)
{
    return Brightmere::Image::named(name);
}

QString BMWifiScanVC::canBeClearedAttributedStringWithMessageString(const QString &message)
{
    return BMSpotsTableController::canBeClearedAttributedStringWithMessageString(message);
}

BMGAScreenClass BMWifiScanVC::screenNameAndClassForEventTracker() const
{
    return BMGAScreenClass(QStringLiteral("WiFiSpeedScanScreen"), metaObject());
}

// ---------------------------------------------------------------------------
// Lifecycle

void BMWifiScanVC::viewDidLoad()
{
    buildViews();
    BMSDKUIBaseViewController::viewDidLoad();
    connectSession();

    // The controls start in the stopped look; there is no tester yet, so only
    // the look changes, but the delegate already hears of a stop.
    stopTesting();

    m_session->createTester(m_sdkCustomer, m_sdkPassword);
    // The tester keeps its own copy in memory; the screen's goes now.
    m_sdkPassword.clear();
    m_sdkPassword.squeeze();

    tellDelegate(&BMWifiScanVCDelegate::wifiScanVCViewDidLoad);

    observeNotifications();

    m_contentScrollView->setContentSize(m_view->size());
    m_contentScrollView->setScrollEnabled(false);

    btnRecordReset()->setExclusiveTouch(true);
}

void BMWifiScanVC::viewWillAppear(bool animated)
{
    BMSDKUIBaseViewController::viewWillAppear(animated);
    // A set handed over for editing makes this appearance a load, and
    // nothing else: no texts, no reachability, no word to the delegate.
    if (setupForEditIfNeeded())
        return;

    m_view->setGeometry(QRect(QPoint(0, 0), m_contentScrollView->size()));
    refreshUITexts();
    m_spotsTable->reloadRecords();
    updateSSID();

    m_session->subscribeToReachability();
    tellDelegate(&BMWifiScanVCDelegate::wifiScanVCViewWillAppear);
}

void BMWifiScanVC::viewDidAppear(bool animated)
{
    BMSDKUIBaseViewController::viewDidAppear(animated);
    updateSpeedIndex();
    reloadPlot();
    if (!m_wifiTutorialShown)
        setupTutorial();
}

void BMWifiScanVC::viewWillDisappear(bool animated)
{
    if (m_session->isScanning())
        stopTesting();
    tellDelegate(&BMWifiScanVCDelegate::wifiScanVCViewWillDisappear);
    m_session->unsubscribeFromReachability();
    BMSDKUIBaseViewController::viewWillDisappear(animated);
}

void BMWifiScanVC::viewWillLayoutSubviews()
{
    BMSDKUIBaseViewController::viewWillLayoutSubviews();
    layoutViews();
}

void BMWifiScanVC::prepareForSegue(StoryboardSegue &segue, QObject *sender)
{
    BMSDKUIBaseViewController::prepareForSegue(segue, sender);
    // Screens further on hand a saved set back through this.
    ViewController *destination = segue.destinationViewController();
    if (!destination || destination->metaObject()->indexOfProperty(kEditSpotsSetSetterProperty) < 0)
        return;
    if (!destination->setProperty(kEditSpotsSetSetterProperty, QVariant::fromValue(static_cast<QObject *>(this))))
        log(3, StringFormat::print("%@ declares editSpotsSetSetter with a type that cannot take the screen",
                                   destination->metaObject()->className()));
}

void BMWifiScanVC::textsDidChange()
{
    refreshUITexts();
    // A reload would take the keyboard from a name being typed; the rows
    // catch up at the next reload.
    if (m_spotsTable && !m_spotsTable->isEditingRecordName())
        m_spotsTable->reloadRecords();
}

void BMWifiScanVC::refreshUITexts()
{
    if (!isViewLoaded())
        return;
    setTitle(BMI18NManager::stringForCode(QStringLiteral("fairzones_title")));
    m_view->retranslate(m_session->isScanning());
    m_historyItem->setTitle(BMI18NManager::stringForCode(QStringLiteral("fairzones_historical_results_title")));
    m_leftMenuItem->setAccessibleName(BMI18NManager::stringForCode(QStringLiteral("a11y_menu")));
    m_menuItem->setAccessibleName(BMI18NManager::stringForCode(QStringLiteral("a11y_options")));
}

// ---------------------------------------------------------------------------
// Views

void BMWifiScanVC::buildViews()
{
    View::setBackgroundColor(this, Color::system(4));
    m_contentScrollView = new ScrollView(this);
    m_contentScrollView->setObjectName(QStringLiteral("contentScrollView"));
    View::setBackgroundColor(m_contentScrollView->viewport(), Color::system(4));
    m_view = new BMWifiScanView;
    m_contentScrollView->addSubview(m_view);

    connect(btnStartStop(), &QPushButton::clicked, this, [this] { actStartStop(); });
    connect(btnRecordReset(), &BMImageButton::touchDown, this, &BMWifiScanVC::actRecordResetTouchDown);
    connect(btnRecordReset(), &BMImageButton::touchUpInside, this, &BMWifiScanVC::actRecordResetTouchUpInside);
    connect(btnRecordReset(), &BMImageButton::touchUpOutside, this, &BMWifiScanVC::actRecordResetTouchUpOutside);
    connect(btnSound(), &QPushButton::clicked, this, [this] { actSoundOnOff(); });
    connect(m_view, &BMWifiScanView::tutorialPageSettled, this, [this](int page) {
        if (BMWifiScanVCDelegate *delegate = fzDelegate())
            delegate->wifiScanVCScanScreenTutorialView(this, page + 1);
    });

    m_spotsTable = new BMSpotsTableController(m_session, tblRecords(), recordingColor(), this);
    connect(m_spotsTable, &BMSpotsTableController::nameEditBegan, this, &BMWifiScanVC::onNameEditBegan);
    connect(m_spotsTable, &BMSpotsTableController::nameEditEnded, this, &BMWifiScanVC::onNameEditEnded);
    connect(m_spotsTable, &BMSpotsTableController::bottomConstraintChanged, this,
            [this] { m_view->setTblRecordsBottomConstraint(m_spotsTable->tblRecordsBottomConstraint()); });
    // Tab follows the screen from top to bottom: the sound control in the
    // chart's corner, the tutorial's page dots (while it shows), start,
    // record, then the spots in list order, each its name and then its speed.
    if (pageResults()) {
        setTabOrder(btnSound(), pageResults());
        setTabOrder(pageResults(), btnStartStop());
    } else {
        setTabOrder(btnSound(), btnStartStop());
    }
    setTabOrder(btnStartStop(), btnRecordReset());
    m_spotsTable->setTabChainStart(btnRecordReset());

    buildBarItems();
    layoutViews();
    // The screen may already be on show when it loads: its views must be told.
    m_contentScrollView->show();
}

void BMWifiScanVC::buildBarItems()
{
    QPointer<BMWifiScanVC> self(this);
    m_leftMenuItem = new BarButtonItem(BMWifiScanView::barIcon(false), BarButtonItem::Style::Plain, [self] {
        if (self)
            self->leftMenuBtnTapped();
    }, this);
    m_leftMenuItem->setObjectName(QStringLiteral("leftMenuButton"));
    m_menuItem = new BarButtonItem(BMWifiScanView::barIcon(true), BarButtonItem::Style::Plain, [self] {
        if (self)
            self->menuButtonTapped();
    }, this);
    m_menuItem->setObjectName(QStringLiteral("menuButton"));
    m_historyItem = new BarButtonItem(QString(), BarButtonItem::Style::Plain, [self] {
        if (self)
            self->menuHistoricalResultsTapped();
    }, this);
    m_historyItem->setObjectName(QStringLiteral("historyButton"));
    navigationItem()->setLeftBarButtonItem(m_leftMenuItem);
    navigationItem()->setRightBarButtonItems({m_menuItem, m_historyItem});
}

void BMWifiScanVC::layoutViews()
{
    if (!m_contentScrollView)
        return;
    // The scroll view stays still (scrolling is off): its content is the
    // laid-out screen at the window's size.
    m_contentScrollView->setGeometry(rect());
    m_view->setGeometry(QRect(QPoint(0, 0), size()));
    m_contentScrollView->setContentSize(size());
}

void BMWifiScanVC::connectSession()
{
    connect(m_session, &BMWifiTestSession::testStarted, this, &BMWifiScanVC::onTestStarted);
    connect(m_session, &BMWifiTestSession::testStopped, this, &BMWifiScanVC::onTestStopped);
    connect(m_session, &BMWifiTestSession::setupFinished, this, [this] { btnStartStop()->setEnabled(true); });
    connect(m_session, &BMWifiTestSession::resultArrived, this, &BMWifiScanVC::onResultArrived);
    connect(m_session, &BMWifiTestSession::resultAccepted, this, &BMWifiScanVC::onResultAccepted);
    connect(m_session, &BMWifiTestSession::recordingChanged, this, [this](bool recording) {
        if (m_charPlot)
            recording ? m_charPlot->startRecording() : m_charPlot->stopRecording();
        recording ? setRecordingUI() : setNormalUI();
        m_recordingSince = BMSDKBackend::clock().now();
        if (!recording && m_view)
            m_view->updateRecordResetLabel(m_session->isScanning());
    });
    connect(m_session, &BMWifiTestSession::spotSaved, this, &BMWifiScanVC::onSpotSaved);
    connect(m_session, &BMWifiTestSession::spotDeleted, m_spotsTable, &BMSpotsTableController::removeRow);
    connect(m_session, &BMWifiTestSession::spotsReset, this, &BMWifiScanVC::onSpotsReset);
    connect(m_session, &BMWifiTestSession::wifiLost, this, [this] {
        showNoWifiPopupIfNeeded();
        btnStartStop()->setEnabled(true);
    });
    connect(m_session, &BMWifiTestSession::reachabilityChanged, this, &BMWifiScanVC::updateSSID);
}

void BMWifiScanVC::observeNotifications()
{
    NotificationCenter &center = NotificationCenter::defaultCenter();
    center.addObserver(this, QString::fromLatin1(KeyboardNotifications::kKeyboardDidShowNotification),
                       [this](const Notification &n) { keyboardDidShow(n); });
    center.addObserver(this, QString::fromLatin1(KeyboardNotifications::kKeyboardWillHideNotification),
                       [this](const Notification &n) { keyboardWillHide(n); });
    center.addObserver(this, QString::fromLatin1(ApplicationNotifications::kApplicationWillResignActiveNotification),
                       [this](const Notification &n) { appWillResignActive(n); });
    center.addObserver(this, QString::fromLatin1(ApplicationNotifications::kApplicationDidBecomeActiveNotification),
                       [this](const Notification &n) { appDidBecomeActive(n); });
    center.addObserver(this,
                       QString::fromLatin1(ApplicationNotifications::kApplicationDidEnterBackgroundNotification),
                       [this](const Notification &n) { applicationDidEnterBackground(n); });
}

// ---------------------------------------------------------------------------
// The test

void BMWifiScanVC::reloadPlot()
{
    if (!isViewLoaded())
        return;
    m_session->clearTestedSpeeds();
    delete m_charPlot.data();
    m_charPlot = new RealTimePlot(this);
    m_charPlot->setRecordingColor(recordingColor());
    // The panel's frame covers the overhang: the axes keep out of it.
    const int overhang = View::pixelsForPoints(BMWifiScanView::kPlotSideOverhang);
    m_charPlot->setCoveredMargins(QMarginsF(overhang, 0, overhang, 0));
    m_charPlot->renderInView(m_view->makePlotHolder(),
                             ChartThemeRegistry::themeNamed(QString::fromLatin1(kCPTBMClearTheme)), false);
}

void BMWifiScanVC::startTesting()
{
    // Off before the tester starts (its setup may finish at once); a
    // keyboard on it goes on to Record, not to whatever comes next.
    const bool keyboardOnStart = btnStartStop()->hasFocus();
    btnStartStop()->setEnabled(false);
    m_session->startTesting();
    if (keyboardOnStart)
        btnRecordReset()->setFocus(Qt::TabFocusReason);
}

void BMWifiScanVC::onTestStarted()
{
    m_view->showTesting(true);
    btnRecordReset()->setEnabled(true);
    removeTutorial();
    tellDelegate(&BMWifiScanVCDelegate::wifiScanVCStartTesting);
}

void BMWifiScanVC::onTestStopped()
{
    MainQueue::cancelAll(this);
    if (m_spotsTable)
        MainQueue::cancelAll(m_spotsTable);
    lblWifiSpeed()->setText(BMI18NManager::formatNumber(0.0, 1, 1));
    announceSpeed(0.0, true);
    m_view->showTesting(false);
    btnStartStop()->setEnabled(true);
    btnRecordReset()->setEnabled(!m_session->testedSpeeds().isEmpty());
    tellDelegate(&BMWifiScanVCDelegate::wifiScanVCStopTesting);
}

void BMWifiScanVC::actStartStop()
{
    if (m_session->isScanning()) {
        // Stopping before the first result would leave the tester half set up.
        if (m_session->isPreparingWifiTester())
            return;
        stopTesting();
        tellDelegate(&BMWifiScanVCDelegate::wifiScanVCActStop);
        return;
    }
    if (!BMWifiTestSession::isOnWifi()) {
        tellDelegate(&BMWifiScanVCDelegate::wifiScanVCActStartAndNoWifi);
        showNoWifiAlert();
        return;
    }
    startTesting();
    m_session->setStartTestTime(BMSDKBackend::clock().now());
    tellDelegate(&BMWifiScanVCDelegate::wifiScanVCActStart);
}

void BMWifiScanVC::onResultArrived()
{
    lblPreparing()->hide();
    btnStartStop()->setEnabled(true);
    updateSSID();
}

void BMWifiScanVC::onResultAccepted(const WifiTestResult::Ptr &result, double shown)
{
    lblWifiSpeed()->setText(BMI18NManager::formatNumber(shown, 1, 1));
    announceSpeed(shown);
    // The chart shows what was measured, never the average.
    if (m_charPlot)
        m_charPlot->addSpeedToGraph(result->speedInMbps());
}

// A reader hears the speed at most once a second, and the hold's progress
// on the record control.
void BMWifiScanVC::announceSpeed(double shown, bool atOnce)
{
    const double now = BMSDKBackend::clock().now();
    if (m_session->isRecording() && btnRecordReset()) {
        btnRecordReset()->setAccessibleName(Brightmere::StringFormat::print(
            BMI18NManager::stringForCode(QStringLiteral("a11y_recording")), m_session->nextSpotRecordName(),
            int(std::clamp(now - m_recordingSince, 0.0, 1e6))));
        Brightmere::AccessibleWidget::announceName(btnRecordReset());
    }
    if ((!atOnce && now - m_speedAnnouncedAt < 1.0) || !m_view)
        return;
    m_speedAnnouncedAt = now;
    // What the counter shows, cut to one digit as it is, with its unit; the
    // number too, so a reader that speaks the value as a number does not
    // read out digits that are not on the screen.
    const QString text = BMI18NManager::formatNumber(shown, 1, 1) + u' '
        + BMI18NManager::stringForCode(QStringLiteral("bmMbps"));
    const double figure = BMI18NNumberFormatter::format(shown, 1, 1, QStringLiteral(".")).toDouble();
    Brightmere::AccessibleWidget::setValue(m_view->wifiCounterBackground(), figure, text);
    if (QWidget *chart = m_view->viewPlotHolder())
        Brightmere::AccessibleWidget::setValue(chart, figure, text);
}

void BMWifiScanVC::actSoundOnOff()
{
    const bool enabled = !m_session->isSoundEnabled();
    m_session->setSoundEnabled(enabled);
    m_view->showSound(enabled);
    if (BMWifiScanVCDelegate *delegate = fzDelegate())
        delegate->wifiScanVCActSoundOnOff(this, enabled);
}

void BMWifiScanVC::showNoWifiAlert()
{
    alertControllerWithTitle(BMI18NManager::stringForCode(QStringLiteral("bmOops")),
                             BMI18NManager::stringForCode(QStringLiteral("switch_wifi_to_continue")));
}

void BMWifiScanVC::showNoWifiPopupIfNeeded()
{
    if (BMWifiTestSession::isOnWifi())
        return;
    tellDelegate(&BMWifiScanVCDelegate::wifiScanVCShowNoWifiPopup);
    showNoWifiAlert();
}

void BMWifiScanVC::updateSSID()
{
    if (!m_view)
        return;
    m_view->showNetwork(BMSDKNetworkUtilities::currentWifiSSID().value_or(QString()),
                        BMSDKNetworkUtilities::currentWifiBSSID().value_or(QString()));
}

void BMWifiScanVC::menuHistoricalResultsTapped()
{
    showHistoricalResultsOptions(m_historyItem);
}

void BMWifiScanVC::menuButtonTapped()
{
    tellDelegate(&BMWifiScanVCDelegate::wifiScanVCMenuButtonTapped);
}

void BMWifiScanVC::leftMenuBtnTapped()
{
    if (m_spotsTable && m_spotsTable->isEditingRecordName())
        View::findAndResignFirstResponder(this);
    tellDelegate(&BMWifiScanVCDelegate::wifiScanVCleftMenuBtnTapped);
}

// ---------------------------------------------------------------------------
// Application state and keyboard

void BMWifiScanVC::applicationDidEnterBackground(const Notification &)
{
    log(1, QStringLiteral("applicationDidEnterBackground, hiding SVProgressHUD"));
    BMLoadingView::sharedInstance().hide();
    if (m_session->isScanning())
        stopTesting();
}

void BMWifiScanVC::appWillResignActive(const Notification &)
{
    // Only the spot being recorded is kept; the test itself goes on.
    log(1, QStringLiteral("appWillResignActive, stop testing"));
    saveRecordAndStopRecordingIfNeeded();
}

void BMWifiScanVC::appDidBecomeActive(const Notification &)
{
    log(1, QStringLiteral("appDidBecomeActive, hiding SVProgressHUD"));
    BMLoadingView::sharedInstance().hide();
    updateSSID();
}

void BMWifiScanVC::keyboardDidShow(const Notification &notification)
{
    // The title prompt moves itself above the keyboard; the spots under it
    // stay where they are.
    if (m_saveFlow->saveCurrentSpotAlert() || !m_spotsTable)
        return;
    m_spotsTable->keyboardDidShow(notification, m_adHeight);
}

void BMWifiScanVC::keyboardWillHide(const Notification &)
{
    if (m_spotsTable)
        m_spotsTable->keyboardWillHide();
}

// ---------------------------------------------------------------------------
// Recording and the run's spots

void BMWifiScanVC::actRecordResetTouchDown()
{
    if (m_session->isScanning())
        startRecording();
    else
        m_session->setWaitingResetButtonTouchUp(true);
    tellDelegate(&BMWifiScanVCDelegate::wifiScanVCActResetTouchDown);
}

void BMWifiScanVC::actRecordResetTouchUp(bool inside)
{
    if (m_session->isScanning()) {
        if (m_spotsTable && m_spotsTable->isEditingRecordName())
            View::findAndResignFirstResponder(this);
        // Released outside or not, the spot is kept.
        saveRecordAndStopRecording();
    } else if (m_session->isWaitingResetButtonTouchUp()) {
        m_session->setWaitingResetButtonTouchUp(false);
        if (inside)
            reset();
    }
    tellDelegate(&BMWifiScanVCDelegate::wifiScanVCActResetTouchUpInside);
}

void BMWifiScanVC::onSpotSaved(const WifiTestResult::Ptr &, int row, bool isNew)
{
    if (QWidget *dots = pageResults())
        dots->hide();
    if (isNew)
        tellDelegate(&BMWifiScanVCDelegate::wifiScanVCSaveRecord);
    m_spotsTable->showSavedSpot(row, isNew);
}

void BMWifiScanVC::onSpotsReset()
{
    if (!m_view)
        return;
    lblWifiSpeed()->setText(BMI18NManager::formatNumber(0.0, 1, 1));
    btnRecordReset()->setEnabled(false);
    reloadPlot();
    announceSpeed(0.0, true);
    tellDelegate(&BMWifiScanVCDelegate::wifiScanVCActReset);
    m_spotsTable->reloadRecords();
}

bool BMWifiScanVC::setupForEditIfNeeded()
{
    if (!m_spotsSetToEdit)
        return false;
    const FZHistoricalResultSpotsSet::Ptr set = std::exchange(m_spotsSetToEdit, nullptr);
    m_session->loadSetForEditing(set);
    btnRecordReset()->setEnabled(true);
    removeTutorial();
    return true;
}

void BMWifiScanVC::onNameEditBegan()
{
    btnStartStop()->setEnabled(false);
    if (!m_session->isScanning())
        btnRecordReset()->setEnabled(false);
}

void BMWifiScanVC::onNameEditEnded()
{
    btnStartStop()->setEnabled(true);
    btnRecordReset()->setEnabled(true);
    tellDelegate(&BMWifiScanVCDelegate::wifiScanVCDidEndEditingSpeedRecord);
}

// ---------------------------------------------------------------------------
// The tutorial

void BMWifiScanVC::setupTutorial()
{
    if (!m_view)
        return;
    layoutViews();
    m_view->setupTutorial();
}

void BMWifiScanVC::removeTutorial()
{
    if (m_view && m_view->removeTutorial())
        m_wifiTutorialShown = true;
}

// ---------------------------------------------------------------------------
// Helpers

void BMWifiScanVC::log(int level, const QString &message) const
{
    BMLogger::sharedInstance().log(QString::fromLatin1(metaObject()->className()), level, message);
}

void BMWifiScanVC::tellDelegate(void (BMWifiScanVCDelegate::*operation)(BMWifiScanVC *))
{
    if (BMWifiScanVCDelegate *delegate = fzDelegate())
        (delegate->*operation)(this);
}

void BMWifiScanVC::updateRecordResetLabel()
{
    m_view->updateRecordResetLabel(m_session->isScanning());
}

void BMWifiScanVC::showHistoricalResultsOptions(QObject *)
{
    m_saveFlow->showHistoricalResultsOptions();
}

void BMWifiScanVC::showSaveCurrentSpotSetScreen()
{
    m_saveFlow->showSaveCurrentSpotSetScreen();
}

void BMWifiScanVC::saveCurrentSpotSet()
{
    m_saveFlow->saveCurrentSpotSet();
}

void BMWifiScanVC::saveCurrentSpotSetWithName(const QString &name)
{
    m_saveFlow->saveCurrentSpotSetWithName(name);
}

void BMWifiScanVC::showTitleCannotBeNil()
{
    m_saveFlow->showTitleCannotBeNil();
}

void BMWifiScanVC::showSpotsSetAlreadyExistsDialogWithName(const QString &name)
{
    m_saveFlow->showSpotsSetAlreadyExistsDialogWithName(name);
}

void BMWifiScanVC::showSavedSpots()
{
    m_saveFlow->showSavedSpots();
}

QLineEdit *BMWifiScanVC::spotNameTextField() const
{
    return m_saveFlow->spotNameTextField();
}

void BMWifiScanVC::setRecordingUI()
{
    if (m_view)
        m_view->setRecording(true);
}

void BMWifiScanVC::setNormalUI()
{
    if (m_view)
        m_view->setRecording(false);
}

void BMWifiScanVC::scrollViewDidEndDecelerating(Brightmere::ScrollView *scrollView)
{
    m_view->scrollViewDidEndDecelerating(scrollView);
}

void BMWifiScanVC::scrollViewDidEndScrollingAnimation(Brightmere::ScrollView *scrollView)
{
    m_view->scrollViewDidEndScrollingAnimation(scrollView);
}

void BMWifiScanVC::pageControlValueChanged()
{
    m_view->pageControlValueChanged();
}

void BMWifiScanVC::didBeginEditingSpeedRecord(BMSpeedRecordCell *cell)
{
    if (m_spotsTable)
        m_spotsTable->didBeginEditingSpeedRecord(cell);
}

void BMWifiScanVC::didEndEditingSpeedRecord(BMSpeedRecordCell *cell)
{
    if (m_spotsTable)
        m_spotsTable->didEndEditingSpeedRecord(cell);
}

void BMWifiScanVC::didStartTapReRecordView(BMSpeedRecordCell *cell)
{
    if (m_spotsTable)
        m_spotsTable->didStartTapReRecordView(cell);
}

void BMWifiScanVC::didFinishTapReRecordView(BMSpeedRecordCell *cell)
{
    if (m_spotsTable)
        m_spotsTable->didFinishTapReRecordView(cell);
}

void BMWifiScanVC::didCancelTapReRecordView(BMSpeedRecordCell *cell)
{
    if (m_spotsTable)
        m_spotsTable->didCancelTapReRecordView(cell);
}

void BMWifiScanVC::didEnterInEditMode(BMSpeedRecordCell *cell)
{
    if (m_spotsTable)
        m_spotsTable->didEnterInEditMode(cell);
}

QWidget *BMWifiScanVC::viewBordered() const
{
    return m_view ? m_view->viewBordered() : nullptr;
}

QWidget *BMWifiScanVC::viewPlotHolderContainer() const
{
    return m_view ? m_view->viewPlotHolderContainer() : nullptr;
}

QWidget *BMWifiScanVC::viewPlotHolder() const
{
    return m_view ? m_view->viewPlotHolder() : nullptr;
}

BMImageButton *BMWifiScanVC::btnStartStop() const
{
    return m_view ? m_view->btnStartStop() : nullptr;
}

BMImageButton *BMWifiScanVC::btnRecordReset() const
{
    return m_view ? m_view->btnRecordReset() : nullptr;
}

BMImageButton *BMWifiScanVC::btnSound() const
{
    return m_view ? m_view->btnSound() : nullptr;
}

BMLabel *BMWifiScanVC::lblHoldToAverage() const
{
    return m_view ? m_view->lblHoldToAverage() : nullptr;
}

BMLabel *BMWifiScanVC::lblPreparing() const
{
    return m_view ? m_view->lblPreparing() : nullptr;
}

BMLabel *BMWifiScanVC::lblWifiSpeed() const
{
    return m_view ? m_view->lblWifiSpeed() : nullptr;
}

BMLabel *BMWifiScanVC::lblUnit() const
{
    return m_view ? m_view->lblUnit() : nullptr;
}

BMLabel *BMWifiScanVC::lblSSID() const
{
    return m_view ? m_view->lblSSID() : nullptr;
}

QLabel *BMWifiScanVC::wifiCounterBackground() const
{
    return m_view ? m_view->wifiCounterBackground() : nullptr;
}

Brightmere::TableView *BMWifiScanVC::tblRecords() const
{
    return m_view ? m_view->tblRecords() : nullptr;
}

Brightmere::ScrollView *BMWifiScanVC::scrollTutorial() const
{
    return m_view ? m_view->scrollTutorial() : nullptr;
}

Brightmere::PageControl *BMWifiScanVC::pageResults() const
{
    return m_view ? m_view->pageResults() : nullptr;
}

QString BMWifiScanVC::imageNameOf(const QWidget *view)
{
    return BMWifiScanView::imageNameOf(view);
}
