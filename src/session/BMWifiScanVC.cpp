#include "BMWifiScanVC.h"

#include "BMFairzoneTutorialPageView.h"
#include "BMSpeedRecordCell.h"
#include "BMWiFiFairzoneTestNotification.h"
#include "chart/ChartThemeRegistry.h"
#include "chart/RealTimePlot.h"
#include "chart/_CPTBMClearTheme.h"
#include "core/BMLogger.h"
#include "core/BMReachabilityManager.h"
#include "core/BMSDKBackend.h"
#include "core/BMSDKNetworkUtilities.h"
#include "core/BMTesterFactory.h"
#include "core/BMWiFiTester.h"
#include "i18n/BMI18NManager.h"
#include "model/BMSDKUISettings.h"
#include "model/BMSpeedRecord.h"
#include "platform/foundation/Clock.h"
#include "platform/foundation/MainQueue.h"
#include "platform/foundation/NotificationCenter.h"
#include "platform/foundation/StringFormat.h"
#include "platform/views/ApplicationNotifications.h"
#include "platform/views/BarButtonItem.h"
#include "platform/views/KeyboardNotifications.h"
#include "platform/views/NavigationItem.h"
#include "platform/views/PageControl.h"
#include "platform/views/ScrollView.h"
#include "platform/views/StoryboardSegue.h"
#include "platform/views/SystemSound.h"
#include "platform/views/TableView.h"
#include "popups/FZConfirmSpotModificationPopup.h"
#include "popups/FZLabelOptionsPopup.h"
#include "popups/FZOptionsPopup.h"
#include "popups/FZTextViewOptionsPopup.h"
#include "resources/FrameworkBundle.h"
#include "ui/BMBorderedView.h"
#include "ui/BMImageButton.h"
#include "ui/BMLabel.h"
#include "ui/BMLoadingView.h"
#include "ui/BrightmereColor.h"
#include "ui/BrightmereView.h"

#include <QCompleter>
#include <QCoreApplication>
#include <QLabel>
#include <QLineEdit>
#include <QPaintEvent>
#include <QPainter>
#include <QPainterPath>
#include <QStringListModel>

#include <limits>
#include <utility>

using namespace Brightmere;

namespace {

const char kImageNameProperty[] = "brightmereImageName";
const char kEditSpotsSetSetterProperty[] = "editSpotsSetSetter";
const char kShowSavedSpotsSegue[] = "showSavedSpotsSegue";

// Layout of the phone-sized screen, in points.
constexpr int kMargin = 8;
constexpr int kChartHeight = 176;
// The chart runs this far under the panel's frame on both sides.
constexpr int kPlotSideOverhang = 20;
constexpr int kPlotTop = 5;
constexpr int kPageDotsHeight = 18;
constexpr int kControlSize = 68;
constexpr int kControlInset = 16;
// The round counter behind the speed figure; the controls sit beside it.
constexpr int kCounterSize = 100;
constexpr int kSoundSize = 36;
constexpr int kRowGap = 6;
constexpr int kHoldLabelHeight = 16;
constexpr int kSsidHeight = 18;
// The SSID line sits under the counter and under the hold note's two lines.
constexpr int kSsidTop = kCounterSize + 6;
constexpr int kPanelHeight = kChartHeight + kRowGap + kSsidTop + kSsidHeight + kMargin;
constexpr qreal kPanelCornerRadius = 5.0;

// The feedback sound: the timer's period, the gap with no usable speed,
// and the longest gap.
constexpr double kSoundTick = 0.01;
constexpr float kSilentGap = 10.0f;
constexpr float kLongestGap = 2.0f;

// What the spot-name text after the first blank is worth: C's atoi, leading
// blanks, an optional sign, digits; saturating instead of overflowing.
qint64 leadingInteger(QStringView text)
{
    qsizetype i = 0;
    while (i < text.size() && (text[i] == u' ' || (text[i] >= u'\t' && text[i] <= u'\r')))
        ++i;
    bool negative = false;
    if (i < text.size() && (text[i] == u'+' || text[i] == u'-'))
        negative = text[i++] == u'-';
    qint64 value = 0;
    constexpr qint64 limit = std::numeric_limits<qint64>::max();
    for (; i < text.size() && text[i] >= u'0' && text[i] <= u'9'; ++i) {
        const int digit = text[i].unicode() - u'0';
        value = value > (limit - digit) / 10 ? limit : value * 10 + digit;
    }
    return negative ? -value : value;
}

void styleLabel(BMLabel *label, int pixels, QFont::Weight weight, const QColor &color,
                Qt::Alignment alignment = Qt::AlignCenter)
{
    QFont font = label->font();
    font.setPixelSize(pixels);
    font.setWeight(weight);
    label->setFont(font);
    label->baseInit();
    label->setAlignment(alignment);
    QPalette palette = label->palette();
    palette.setColor(QPalette::WindowText, color);
    label->setPalette(palette);
}

void setTextColor(QWidget *view, const QColor &color)
{
    QPalette palette = view->palette();
    palette.setColor(QPalette::WindowText, color);
    view->setPalette(palette);
}

void fillBackground(QWidget *view, const QColor &color)
{
    view->setAutoFillBackground(true);
    QPalette palette = view->palette();
    palette.setColor(QPalette::Window, color);
    view->setPalette(palette);
}

// Bar icons drawn in white, so the bar needs no image files for them.
QIcon barIcon(bool dots)
{
    QPixmap pixmap(48, 48);
    pixmap.fill(Qt::transparent);
    QPainter painter(&pixmap);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(Qt::NoPen);
    painter.setBrush(Color::colorWithR(255, 255, 255));
    for (int i = 0; i < 3; ++i) {
        if (dots)
            painter.drawEllipse(QPointF(24, 12 + i * 12), 3.5, 3.5);
        else
            painter.drawRoundedRect(QRectF(8, 11 + i * 12, 32, 4), 2, 2);
    }
    return QIcon(pixmap);
}

} // namespace

BMWifiScanVC::BMWifiScanVC(QWidget *parent)
    : BMSDKUIBaseViewController(parent)
{
    setObjectName(QStringLiteral("BMWifiScanVC"));
}

BMWifiScanVC::~BMWifiScanVC()
{
    NotificationCenter::defaultCenter().removeObserver(this);
    BMReachabilityManager::sharedInstance()->unsubscribeFromEvents(this);
    MainQueue::cancelAll(this);
    stopSound();
    if (m_editPopup)
        m_editPopup->dismiss();
    // The tester reports to this screen: it goes first.
    if (m_wifiTester) {
        m_wifiTester->setResultDelegate(nullptr);
        m_wifiTester->stop();
        m_wifiTester.reset();
    }
    delete m_charPlot.data();
}

// ---------------------------------------------------------------------------
// Host properties

void BMWifiScanVC::setSdkPassword(const QString &password)
{
    if (m_wifiTester && !password.isEmpty()) {
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

FZConfirmSpotModificationPopup *BMWifiScanVC::editPopup() const
{
    return m_editPopup.data();
}

FZTextViewOptionsPopup *BMWifiScanVC::saveCurrentSpotAlert() const
{
    return m_saveCurrentSpotAlert.data();
}

RealTimePlot *BMWifiScanVC::charPlot() const
{
    return m_charPlot.data();
}

ScrollView *BMWifiScanVC::scrollTutorial() const
{
    return m_scrollTutorial.data();
}

PageControl *BMWifiScanVC::pageResults() const
{
    return m_pageResults.data();
}

QColor BMWifiScanVC::recordingColor()
{
    return Color::colorWithHexString(QStringLiteral("70BE7B"));
}

QIcon BMWifiScanVC::imageNamed(const QString &name)
{
    return FrameworkBundle::imageNamed(name);
}

QString BMWifiScanVC::imageNameOf(const QWidget *view)
{
    return view ? view->property(kImageNameProperty).toString() : QString();
}

QString BMWifiScanVC::canBeClearedAttributedStringWithMessageString(const QString &message)
{
    const QString note =
        BMI18NManager::stringForCode(QStringLiteral("fairzones_delete_record_can_be_cleared_in_settings"));
    const QString blue = Color::colorToString(Color::colorWithHexString(QStringLiteral("2882c6")));
    // Line spacing 0: the two lines sit as close as the fonts allow.
    return QStringLiteral("<div style=\"line-height:100%\">%1<br/><span style=\"color:#%2; font-size:8pt\">%3</span></div>")
        .arg(message.toHtmlEscaped(), blue, note.toHtmlEscaped());
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
    // The panel's background, "fz_chart_back", is painted in eventFilter.
    BMSDKUIBaseViewController::viewDidLoad();

    // The controls start in the stopped look; there is no tester yet, so only
    // the look changes, but the delegate already hears of a stop.
    stopTesting();

    m_wifiTester = BMTesterFactory::createWiFiTesterWithSDKCustomer(m_sdkCustomer, m_sdkPassword, true);
    // The tester keeps its own copy in memory; the screen's goes now.
    m_sdkPassword.clear();
    m_sdkPassword.squeeze();
    m_wifiTester->initializeWithAppId(QCoreApplication::applicationName(), std::nullopt, QString(), {});
    m_wifiTester->setResultDelegate(this);

    tellDelegate(&BMWifiScanVCDelegate::wifiScanVCViewDidLoad);

    observeNotifications();

    m_contentScrollView->setContentSize(m_contentView->size());
    m_contentScrollView->setScrollEnabled(false);

    m_soundEnabled = false;
    m_btnRecordReset->setExclusiveTouch(true);
    m_tblRecords->setAllowsSelection(true);
    m_tblRecords->setDelaysContentTouches(true);
    m_tblRecords->setAllowsMultipleSelectionDuringEditing(false);
    // The table's horizontal pan may begin only on a drag to the right; a
    // drag to the left is a row's swipe to delete.
    m_tblRecords->setHorizontalPanShouldBegin([](const QPoint &translation) { return translation.x() > 0; });
    m_speedIndex = 0;
}

void BMWifiScanVC::viewWillAppear(bool animated)
{
    BMSDKUIBaseViewController::viewWillAppear(animated);
    // A set handed over for editing makes this appearance a load, and
    // nothing else: no texts, no reachability, no word to the delegate.
    if (setupForEditIfNeeded())
        return;

    m_contentView->setGeometry(QRect(QPoint(0, 0), m_contentScrollView->size()));
    refreshUITexts();
    reloadRecords();
    setTextColor(m_lblSSID, Color::colorWithHexString(QStringLiteral("3593da")));
    updateSSID();

    BMReachabilityManager::sharedInstance()->subscribeToEvents(this, nullptr);
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
    if (m_scanning)
        stopTesting();
    tellDelegate(&BMWifiScanVCDelegate::wifiScanVCViewWillDisappear);
    BMReachabilityManager::sharedInstance()->unsubscribeFromEvents(this);
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
    if (!m_isEditingRecordName)
        reloadRecords();
}

void BMWifiScanVC::refreshUITexts()
{
    if (!isViewLoaded())
        return;
    setTitle(BMI18NManager::stringForCode(QStringLiteral("fairzones_title")));
    m_lblHoldToAverage->setText(BMI18NManager::stringForCode(QStringLiteral("fairzones_hold_to_average")));
    const QString startStopKey = m_scanning ? QStringLiteral("stop") : QStringLiteral("start"); // i18n-key
    m_btnStartStop->setTitle(BMI18NManager::stringForCode(startStopKey));
    updateRecordResetLabel();
    m_lblPreparing->setText(BMI18NManager::stringForCode(QStringLiteral("preparing")));
    m_lblUnit->setText(BMI18NManager::stringForCode(QStringLiteral("bmMbps")));
    m_historyItem->setTitle(BMI18NManager::stringForCode(QStringLiteral("fairzones_historical_results_title")));
}

// ---------------------------------------------------------------------------
// Views

void BMWifiScanVC::buildViews()
{
    fillBackground(this, Color::system(4));

    m_contentScrollView = new ScrollView(this);
    m_contentScrollView->setObjectName(QStringLiteral("contentScrollView"));
    m_contentView = new QWidget;
    m_contentView->setObjectName(QStringLiteral("contentView"));
    m_contentScrollView->addSubview(m_contentView);
    fillBackground(m_contentScrollView->viewport(), Color::system(4));

    m_viewBordered = new QWidget(m_contentView);
    m_viewBordered->setObjectName(QStringLiteral("viewBordered"));
    m_viewBordered->installEventFilter(this);
    m_viewPlotHolderContainer = new QWidget(m_viewBordered);
    m_viewPlotHolderContainer->setObjectName(QStringLiteral("viewPlotHolderContainer"));

    m_lblPreparing = new BMLabel(m_viewBordered);
    m_lblPreparing->setObjectName(QStringLiteral("lblPreparing"));
    styleLabel(m_lblPreparing, 15, QFont::DemiBold, Color::named(QStringLiteral("medium_gray")));

    m_wifiCounterBackground = new QLabel(m_viewBordered);
    m_wifiCounterBackground->setObjectName(QStringLiteral("wifiCounterBackground"));
    m_wifiCounterBackground->setAlignment(Qt::AlignCenter);
    m_lblWifiSpeed = new BMLabel(m_viewBordered);
    m_lblWifiSpeed->setObjectName(QStringLiteral("lblWifiSpeed"));
    styleLabel(m_lblWifiSpeed, 28, QFont::Bold, Color::named(QStringLiteral("dark_blue")));
    m_lblUnit = new BMLabel(m_viewBordered);
    m_lblUnit->setObjectName(QStringLiteral("lblUnit"));
    styleLabel(m_lblUnit, 11, QFont::DemiBold, Color::named(QStringLiteral("medium_gray")));
    m_lblSSID = new BMLabel(m_viewBordered);
    m_lblSSID->setObjectName(QStringLiteral("lblSSID"));
    styleLabel(m_lblSSID, 13, QFont::Normal, Color::colorWithHexString(QStringLiteral("3593da")));
    m_lblSSID->setTextFormat(Qt::RichText);
    m_lblHoldToAverage = new BMLabel(m_viewBordered);
    m_lblHoldToAverage->setObjectName(QStringLiteral("lblHoldToAverage"));
    styleLabel(m_lblHoldToAverage, 11, QFont::Normal, Color::named(QStringLiteral("medium_gray")));
    // A longer translation takes a second line under the control, and a
    // still longer one ends in an ellipsis.
    m_lblHoldToAverage->setMaximumLines(2);
    m_lblHoldToAverage->setAlignment(Qt::AlignHCenter | Qt::AlignTop);

    m_btnStartStop = new BMImageButton(m_viewBordered);
    m_btnStartStop->setObjectName(QStringLiteral("btnStartStop"));
    connect(m_btnStartStop, &QPushButton::clicked, this, [this] { actStartStop(); });
    m_btnRecordReset = new BMImageButton(m_viewBordered);
    m_btnRecordReset->setObjectName(QStringLiteral("btnRecordReset"));
    connect(m_btnRecordReset, &BMImageButton::touchDown, this, &BMWifiScanVC::actRecordResetTouchDown);
    connect(m_btnRecordReset, &BMImageButton::touchUpInside, this, &BMWifiScanVC::actRecordResetTouchUpInside);
    connect(m_btnRecordReset, &BMImageButton::touchUpOutside, this, &BMWifiScanVC::actRecordResetTouchUpOutside);
    m_btnSound = new BMImageButton(m_viewBordered);
    m_btnSound->setObjectName(QStringLiteral("btnSound"));
    showImage(m_btnSound, QStringLiteral("buttonAudioOff"));
    connect(m_btnSound, &QPushButton::clicked, this, [this] { actSoundOnOff(); });

    // The tutorial strip lies over the chart until the first start.
    m_scrollTutorial = new ScrollView(m_viewBordered);
    m_scrollTutorial->setObjectName(QStringLiteral("scrollTutorial"));
    m_scrollTutorial->setPagingEnabled(true);
    fillBackground(m_scrollTutorial->viewport(), Color::named(QStringLiteral("fz_chart_back")));
    connect(m_scrollTutorial, &ScrollView::didEndDecelerating, this,
            [this] { scrollViewDidEndDecelerating(m_scrollTutorial); });
    connect(m_scrollTutorial, &ScrollView::didEndScrollingAnimation, this,
            [this] { scrollViewDidEndScrollingAnimation(m_scrollTutorial); });
    m_pageResults = new PageControl(m_viewBordered);
    m_pageResults->setObjectName(QStringLiteral("pageResults"));
    m_pageResults->setNumberOfPages(kTutorialPages);
    m_pageResults->setPageIndicatorTintColor(Color::named(QStringLiteral("disable_gray")));
    m_pageResults->setCurrentPageIndicatorTintColor(Color::named(QStringLiteral("medium_blue")));
    fillBackground(m_pageResults, Color::named(QStringLiteral("fz_chart_back")));
    m_pageResults->hide();
    connect(m_pageResults, &PageControl::valueChanged, this, &BMWifiScanVC::pageControlValueChanged);

    // The panel's frame is drawn over everything in it, the chart included.
    m_viewBorderedFrame = new BMBorderedView(m_viewBordered);
    m_viewBorderedFrame->setObjectName(QStringLiteral("viewBorderedFrame"));
    m_viewBorderedFrame->setAttribute(Qt::WA_TransparentForMouseEvents);

    m_tblRecords = new TableView(m_contentView);
    m_tblRecords->setObjectName(QStringLiteral("tblRecords"));
    m_tblRecords->setRowHeight(BMSpeedRecordCell::height());
    m_tblRecords->setDataSource(this);
    fillBackground(m_tblRecords->viewport(), Color::system(4));

    m_counterImageName = QStringLiteral("wifiCounter");
    m_lblWifiSpeedNormalColor = m_lblWifiSpeed->palette().color(QPalette::WindowText);
    buildBarItems();
    layoutViews();
    // The screen may already be on show when it loads: its views must be told.
    m_contentScrollView->show();
}

void BMWifiScanVC::buildBarItems()
{
    QPointer<BMWifiScanVC> self(this);
    m_leftMenuItem = new BarButtonItem(barIcon(false), BarButtonItem::Style::Plain, [self] {
        if (self)
            self->leftMenuBtnTapped();
    }, this);
    m_leftMenuItem->setObjectName(QStringLiteral("leftMenuButton"));
    m_menuItem = new BarButtonItem(barIcon(true), BarButtonItem::Style::Plain, [self] {
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
    const int width = this->width();
    m_contentScrollView->setGeometry(rect());
    m_contentView->setGeometry(QRect(QPoint(0, 0), size()));
    m_contentScrollView->setContentSize(size());

    const int panelWidth = width - 2 * kMargin;
    m_viewBordered->setGeometry(kMargin, kMargin, panelWidth, kPanelHeight);
    m_viewPlotHolderContainer->setGeometry(0, 0, panelWidth, kChartHeight);
    if (m_viewPlotHolder)
        m_viewPlotHolder->setGeometry(-kPlotSideOverhang, kPlotTop, panelWidth + 2 * kPlotSideOverhang, kChartHeight);
    layoutTutorial();
    m_lblPreparing->setGeometry(0, kChartHeight / 2 - 12, panelWidth, 24);
    m_btnSound->setGeometry(panelWidth - kMargin - kSoundSize, kMargin, kSoundSize, kSoundSize);

    const int rowTop = kChartHeight + kRowGap;
    const int counterX = (panelWidth - kCounterSize) / 2;
    m_wifiCounterBackground->setGeometry(counterX, rowTop, kCounterSize, kCounterSize);
    m_lblWifiSpeed->setGeometry(counterX, rowTop + 26, kCounterSize, 36);
    m_lblUnit->setGeometry(counterX, rowTop + 62, kCounterSize, 14);
    showCounterImage();
    const int controlTop = rowTop + (kCounterSize - kControlSize) / 2 - kHoldLabelHeight / 2;
    m_btnStartStop->setGeometry(kControlInset, controlTop, kControlSize, kControlSize);
    m_btnRecordReset->setGeometry(panelWidth - kControlInset - kControlSize, controlTop, kControlSize, kControlSize);
    const int holdWidth = kControlSize + 2 * kControlInset;
    const int holdTop = controlTop + kControlSize;
    const int ssidTop = rowTop + kSsidTop;
    m_lblHoldToAverage->setGeometry(panelWidth - holdWidth, holdTop, holdWidth, ssidTop - holdTop);
    m_lblSSID->setGeometry(kMargin, ssidTop, panelWidth - 2 * kMargin, kSsidHeight);
    m_viewBorderedFrame->setGeometry(m_viewBordered->rect());
    m_viewBorderedFrame->raise();

    const int tableTop = kMargin + kPanelHeight + kMargin;
    m_tblRecords->setGeometry(0, tableTop, width, qMax(0, height() - tableTop - m_tblRecordsBottomConstraint));
}

void BMWifiScanVC::layoutTutorial()
{
    // Pages and dots together hide the whole chart, axes included.
    const int width = m_viewPlotHolderContainer->width();
    const int covered = kPlotTop + kChartHeight;
    if (m_scrollTutorial)
        m_scrollTutorial->setGeometry(0, 0, width, covered - kPageDotsHeight);
    if (m_pageResults)
        m_pageResults->setGeometry(0, covered - kPageDotsHeight, width, kPageDotsHeight);
}

bool BMWifiScanVC::eventFilter(QObject *watched, QEvent *event)
{
    if (watched == m_viewBordered && event->type() == QEvent::Paint) {
        QPainter painter(m_viewBordered);
        painter.setRenderHint(QPainter::Antialiasing);
        QPainterPath path;
        path.addRoundedRect(QRectF(m_viewBordered->rect()), kPanelCornerRadius, kPanelCornerRadius);
        painter.fillPath(path, Color::named(QStringLiteral("fz_chart_back")));
        return true;
    }
    return BMSDKUIBaseViewController::eventFilter(watched, event);
}

void BMWifiScanVC::showImage(QWidget *view, const QString &name)
{
    view->setProperty(kImageNameProperty, name);
    if (auto *button = qobject_cast<BMImageButton *>(view))
        button->setBackgroundImage(imageNamed(name));
}

void BMWifiScanVC::showCounterImage()
{
    if (!m_wifiCounterBackground)
        return;
    m_wifiCounterBackground->setProperty(kImageNameProperty, m_counterImageName);
    const QIcon image = imageNamed(m_counterImageName);
    m_wifiCounterBackground->setPixmap(
        image.isNull() ? QPixmap() : image.pixmap(m_wifiCounterBackground->size(), devicePixelRatioF()));
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
// The test session

void BMWifiScanVC::reloadPlot()
{
    if (!isViewLoaded())
        return;
    m_testedSpeeds.clear();
    delete m_charPlot.data();
    delete m_viewPlotHolder.data();

    m_charPlot = new RealTimePlot(this);
    m_charPlot->setRecordingColor(recordingColor());
    // The panel's frame covers the overhang: the axes keep out of it.
    m_charPlot->setCoveredMargins(QMarginsF(kPlotSideOverhang, 0, kPlotSideOverhang, 0));
    // The holder overhangs the panel on both sides, so the chart's own side
    // margins run under the panel's frame.
    const QSize container = m_viewPlotHolderContainer->size();
    m_viewPlotHolder = new QWidget(m_viewPlotHolderContainer);
    m_viewPlotHolder->setObjectName(QStringLiteral("viewPlotHolder"));
    m_viewPlotHolder->setParent(m_viewBordered);
    m_viewPlotHolder->setGeometry(-kPlotSideOverhang, kPlotTop, container.width() + 2 * kPlotSideOverhang,
                                  container.height());
    m_viewPlotHolder->show();
    m_lblPreparing->raise();
    m_charPlot->renderInView(m_viewPlotHolder, ChartThemeRegistry::themeNamed(QString::fromLatin1(kCPTBMClearTheme)),
                             false);
    // The tutorial stays over the chart, the controls over both.
    if (m_scrollTutorial)
        m_scrollTutorial->raise();
    if (m_pageResults)
        m_pageResults->raise();
    m_btnStartStop->raise();
    m_btnRecordReset->raise();
    m_btnSound->raise();
    m_viewBorderedFrame->raise();
}

void BMWifiScanVC::startTesting()
{
    m_scanning = true;
    m_preparingWifiTester = true;
    m_btnStartStop->setEnabled(false);

    BMWiFiFairzoneTestNotification::postWiFiFairzoneTestStarted();
    if (m_wifiTester)
        m_wifiTester->start();

    showImage(m_btnStartStop, QStringLiteral("buttonStop.png"));
    m_btnStartStop->setTitle(BMI18NManager::stringForCode(QStringLiteral("stop")));
    showImage(m_btnRecordReset, QStringLiteral("buttonRecord.png"));
    m_btnRecordReset->setEnabled(true);
    m_lblHoldToAverage->show();
    updateRecordResetLabel();
    m_lblPreparing->show();

    removeTutorial();
    tellDelegate(&BMWifiScanVCDelegate::wifiScanVCStartTesting);
}

void BMWifiScanVC::stopTesting()
{
    if (m_wifiTester)
        m_wifiTester->stop();
    m_lblWifiSpeed->setText(BMI18NManager::formatNumber(0.0, 1, 1));

    // A spot being recorded is abandoned, not saved.
    stopRecording();
    MainQueue::cancelAll(this);
    stopSound();

    m_scanning = false;
    m_lblPreparing->hide();
    m_btnStartStop->setEnabled(true);
    showImage(m_btnStartStop, QStringLiteral("buttonStart.png"));
    m_btnStartStop->setTitle(BMI18NManager::stringForCode(QStringLiteral("start")));

    m_btnRecordReset->setEnabled(!m_testedSpeeds.isEmpty());
    m_lblHoldToAverage->hide();

    saveSpotsLocally();

    showImage(m_btnRecordReset, QStringLiteral("buttonReset.png"));
    updateRecordResetLabel();
    tellDelegate(&BMWifiScanVCDelegate::wifiScanVCStopTesting);
}

void BMWifiScanVC::updateRecordResetLabel()
{
    m_btnRecordReset->setTitle(BMI18NManager::stringForCode(QStringLiteral("reset")), BMImageButton::State::Disabled);
    const QString normalKey = m_scanning ? QStringLiteral("record") : QStringLiteral("reset"); // i18n-key
    m_btnRecordReset->setTitle(BMI18NManager::stringForCode(normalKey));
}

void BMWifiScanVC::actStartStop()
{
    if (m_scanning) {
        // Stopping before the first result would leave the tester half set up.
        if (m_preparingWifiTester)
            return;
        stopTesting();
        tellDelegate(&BMWifiScanVCDelegate::wifiScanVCActStop);
        return;
    }
    if (!isOnWifi()) {
        tellDelegate(&BMWifiScanVCDelegate::wifiScanVCActStartAndNoWifi);
        showNoWifiAlert();
        return;
    }
    startTesting();
    m_startTestTime = BMSDKBackend::clock().now();
    tellDelegate(&BMWifiScanVCDelegate::wifiScanVCActStart);
}

void BMWifiScanVC::wiFiTesterDidFinishSetupWithError(BMWiFiTester *, const std::optional<BMError> &)
{
    m_btnStartStop->setEnabled(true);
}

void BMWifiScanVC::wiFiTesterDidUpdateWithTestResult(BMWiFiTester *, const WifiTestResult::Ptr &result)
{
    if (!isOnWifi()) {
        stopTesting();
        showNoWifiPopupIfNeeded();
        return;
    }
    if (!result) {
        log(2, QStringLiteral("The tester reported no result; ignored"));
        return;
    }
    startSound();
    m_lblPreparing->hide();
    m_btnStartStop->setEnabled(true);
    m_preparingWifiTester = false;
    result->setLabel(QString());
    updateSSID();
    updateUIWithResult(result);
}

void BMWifiScanVC::wiFiTesterDidFinishWithError(BMWiFiTester *, const std::optional<BMError> &)
{
    // With Wi-Fi there, the screen stays as it is.
    if (isOnWifi())
        return;
    stopTesting();
    showNoWifiPopupIfNeeded();
    m_btnStartStop->setEnabled(true);
}

void BMWifiScanVC::reachabilityHasChanged(int, const QString &, const QString &)
{
    // A loss alone does not stop the test: the next result or the tester's
    // finish does.
    updateSSID();
}

void BMWifiScanVC::updateUIWithResult(const WifiTestResult::Ptr &result)
{
    if (!result)
        return;
    if (m_wifiTester) {
        if (const auto location = m_wifiTester->location())
            result->setCoordinate(location);
    }
    const double speed = result->speedInMbps();
    if (speed < 0.0)
        return;
    if (!(speed >= 0.0)) {
        log(2, QStringLiteral("A result without a speed was dropped"));
        return;
    }
    double shown = speed;
    m_testedSpeeds.append(result);
    if (m_currentSpeedRecord) {
        m_currentSpeedRecord->addResult(result);
        shown = m_currentSpeedRecord->average();
    }
    m_lblWifiSpeed->setText(BMI18NManager::formatNumber(shown, 1, 1));
    // The chart shows what was measured, never the average.
    if (m_charPlot)
        m_charPlot->addSpeedToGraph(speed);
}

void BMWifiScanVC::startSound()
{
    if (m_soundTimer != 0)
        return;
    QPointer<BMWifiScanVC> self(this);
    // Stopped on the clock it was started on, whatever is set meanwhile.
    m_soundClock = &BMSDKBackend::clock();
    m_soundTimer = m_soundClock->startRepeating(kSoundTick, [self] {
        if (self)
            self->playSound();
    });
}

void BMWifiScanVC::stopSound()
{
    if (m_soundTimer == 0)
        return;
    m_soundClock->stopRepeating(m_soundTimer);
    m_soundTimer = 0;
    m_soundClock = nullptr;
}

void BMWifiScanVC::playSound()
{
    if (!m_scanning || !m_soundEnabled)
        return;
    // Single precision on purpose: the float cut absorbs the timer's drift,
    // so a 1 s gap is met on the tick at 1 s, not one tick later.
    float gap = kSilentGap;
    if (!m_testedSpeeds.isEmpty() && m_testedSpeeds.constLast()->speedInMbps() > 0.0)
        gap = float(double(kSilentGap) / m_testedSpeeds.constLast()->speedInMbps());
    if (gap > kLongestGap)
        gap = kLongestGap;
    const double now = BMSDKBackend::clock().now();
    const float elapsed = float(now - m_lastPlayTime);
    if (elapsed >= gap) {
        SystemSound::play(m_soundID);
        m_lastPlayTime = now;
    }
}

void BMWifiScanVC::actSoundOnOff()
{
    m_soundEnabled = !m_soundEnabled;
    showImage(m_btnSound, m_soundEnabled ? QStringLiteral("buttonAudioOn") : QStringLiteral("buttonAudioOff"));
    if (m_wifiTester)
        m_wifiTester->setSoundEnabled(m_soundEnabled);
    if (BMWifiScanVCDelegate *delegate = fzDelegate())
        delegate->wifiScanVCActSoundOnOff(this, m_soundEnabled);
}

void BMWifiScanVC::showNoWifiAlert()
{
    alertControllerWithTitle(BMI18NManager::stringForCode(QStringLiteral("bmOops")),
                             BMI18NManager::stringForCode(QStringLiteral("switch_wifi_to_continue")));
}

void BMWifiScanVC::showNoWifiPopupIfNeeded()
{
    if (isOnWifi())
        return;
    tellDelegate(&BMWifiScanVCDelegate::wifiScanVCShowNoWifiPopup);
    showNoWifiAlert();
}

void BMWifiScanVC::showNoWifiPopup()
{
    showNoWifiPopupIfNeeded();
}

void BMWifiScanVC::updateSSID()
{
    if (!m_lblSSID)
        return;
    const QString ssid = BMSDKNetworkUtilities::currentWifiSSID().value_or(QString());
    const QString bssid = BMSDKNetworkUtilities::currentWifiBSSID().value_or(QString());
    if (ssid.isEmpty()) {
        m_lblSSID->clear();
        return;
    }
    QString text = ssid.toHtmlEscaped();
    if (!bssid.isEmpty()) {
        const QString grey = Color::colorToString(Color::colorWithHexString(QStringLiteral("999999")));
        text += QStringLiteral("<span style=\"color:#%1\"> (%2)</span>").arg(grey, bssid.toHtmlEscaped());
    }
    m_lblSSID->setText(text);
}

void BMWifiScanVC::menuButtonTapped()
{
    tellDelegate(&BMWifiScanVCDelegate::wifiScanVCMenuButtonTapped);
}

void BMWifiScanVC::leftMenuBtnTapped()
{
    if (m_isEditingRecordName)
        View::findAndResignFirstResponder(this);
    tellDelegate(&BMWifiScanVCDelegate::wifiScanVCleftMenuBtnTapped);
}

// ---------------------------------------------------------------------------
// Saving the run

void BMWifiScanVC::menuHistoricalResultsTapped()
{
    showHistoricalResultsOptions(m_historyItem);
}

void BMWifiScanVC::showHistoricalResultsOptions(QObject *)
{
    if (m_recordedSpeeds.isEmpty()) {
        showSavedSpots();
        return;
    }
    FZOptionsPopup *popup = FZOptionsPopup::popupWithOptions(
        {BMI18NManager::stringForCode(QStringLiteral("fairzones_historical_results_title")),
         BMI18NManager::stringForCode(QStringLiteral("fairzones_historical_results_save")),
         BMI18NManager::stringForCode(QStringLiteral("fairzones_historical_results_view_saved_list")),
         BMI18NManager::stringForCode(QStringLiteral("cancel"))});
    QPointer<BMWifiScanVC> self(this);
    popup->setOptionChosenBlock([self](int index) {
        if (!self)
            return;
        if (index == 1)
            self->showSaveCurrentSpotSetScreen();
        else if (index == 2)
            self->showSavedSpots();
    });
    popup->show();
}

void BMWifiScanVC::showSaveCurrentSpotSetScreen()
{
    QPointer<BMWifiScanVC> self(this);
    FZTextViewOptionsPopup *popup = FZTextViewOptionsPopup::popupWithOptions(
        {BMI18NManager::stringForCode(QStringLiteral("fairzones_historical_results_save_alert_title")),
         BMI18NManager::stringForCode(QStringLiteral("fairzones_historical_results_save_alert_message")),
         BMI18NManager::stringForCode(QStringLiteral("fairzones_historical_results_save_alert_save")),
         BMI18NManager::stringForCode(QStringLiteral("cancel"))},
        [self](QLineEdit *textField) {
            textField->setPlaceholderText(BMI18NManager::stringForCode(
                QStringLiteral("fairzones_historical_results_save_alert_title_placeholder")));
            textField->setMaxLength(FZHistoricalResultSpotsSet::kMaxTitleLength);
            if (!self)
                return;
            // A set loaded for editing proposes its own title.
            textField->setText(self->m_spotsSetName);
            self->m_spotNameTextField = textField;
        },
        FZOptionsPopup::Horizontal);
    popup->setOptionChosenBlock([self](int index) {
        if (self && index == 2)
            self->saveCurrentSpotSet();
    });
    popup->show();
    if (QLineEdit *field = popup->textField()) {
        field->setFocus(Qt::OtherFocusReason);
        // Typing replaces the proposed title rather than adding to it.
        field->selectAll();
    }
    m_saveCurrentSpotAlert = popup;
}

void BMWifiScanVC::saveCurrentSpotSet()
{
    const QString title = m_spotNameTextField ? m_spotNameTextField->text().trimmed() : QString();
    if (m_recordedSpeeds.isEmpty()) {
        log(2, QStringLiteral("no spots to save"));
        return;
    }
    if (title.isEmpty()) {
        showTitleCannotBeNil();
        return;
    }
    if (FZHistoricalResultSpotsSet::spotsSetWithName(title)) {
        showSpotsSetAlreadyExistsDialogWithName(title);
        return;
    }
    m_spotsSetName = title;
    saveCurrentSpotSetWithName(title);
}

void BMWifiScanVC::saveCurrentSpotSetWithName(const QString &name)
{
    const QString ssid = BMSDKNetworkUtilities::currentWifiSSID().value_or(QString());
    const double now = BMSDKBackend::clock().now() + Clock::kReferenceDateUnixSeconds;
    const QDateTime date = QDateTime::fromMSecsSinceEpoch(qint64(now * 1000.0), Qt::UTC);
    if (!FZHistoricalResultSpotsSet::saveSetWithName(name, ssid, date, m_recordedSpeeds)) {
        // The store has logged why; the run stays on screen, so nothing is lost.
        log(3, StringFormat::print("the run could not be saved as '%@'", name));
        alertControllerWithTitle(
            BMI18NManager::stringForCode(QStringLiteral("bmOops")),
            BMI18NManager::stringForCode(QStringLiteral("fairzones_historical_result_save_failed_message")));
        return;
    }
    showSavedSpots();
}

void BMWifiScanVC::showTitleCannotBeNil()
{
    FZLabelOptionsPopup *popup = FZLabelOptionsPopup::popupWithOptions(
        {BMI18NManager::stringForCode(QStringLiteral("fairzones_historical_result_save_title_nil_title")),
         BMI18NManager::stringForCode(QStringLiteral("fairzones_historical_result_save_title_nil_message")),
         BMI18NManager::stringForCode(QStringLiteral("fairzones_historical_result_save_title_nil_ok"))},
        FZOptionsPopup::Vertical);
    popup->show();
}

void BMWifiScanVC::showSpotsSetAlreadyExistsDialogWithName(const QString &name)
{
    const QString title = StringFormat::print(
        "'%@' %@", name,
        BMI18NManager::stringForCode(QStringLiteral("fairzones_historical_result_save_already_exist_title")));
    FZOptionsPopup *popup = FZOptionsPopup::popupWithOptions(
        {title, BMI18NManager::stringForCode(QStringLiteral("fairzones_historical_result_save_already_exist_cancel")),
         BMI18NManager::stringForCode(QStringLiteral("fairzones_historical_result_save_already_exist_confirm"))},
        FZOptionsPopup::Horizontal);
    QPointer<BMWifiScanVC> self(this);
    popup->setOptionChosenBlock([self, name](int index) {
        if (!self)
            return;
        // Back to the prompt, which proposes spotsSetName again, not the
        // rejected title.
        if (index == 1)
            self->showSaveCurrentSpotSetScreen();
        // Replacing keeps spotsSetName as it was, on purpose.
        else if (index == 2)
            self->saveCurrentSpotSetWithName(name);
    });
    popup->show();
}

void BMWifiScanVC::showSavedSpots()
{
    performSegueWithIdentifier(QString::fromLatin1(kShowSavedSpotsSegue), nullptr);
}

// ---------------------------------------------------------------------------
// Application state and keyboard

void BMWifiScanVC::applicationDidEnterBackground(const Notification &)
{
    log(1, QStringLiteral("applicationDidEnterBackground, hiding SVProgressHUD"));
    BMLoadingView::sharedInstance().hide();
    if (m_scanning)
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
    if (m_saveCurrentSpotAlert)
        return;
    m_isEditingRecordName = true;
    const QRect keyboard = KeyboardNotifications::endFrame(notification);
    m_keyboardSize = keyboard.size();
    QLineEdit *field = m_activeSpotTextField.data();
    if (!field || !field->window())
        return;
    // The field must stay above the keyboard: if its bottom falls under the
    // keyboard's top, the table's bottom moves up by the keyboard, less the
    // advertisement strip it already clears.
    QWidget *window = field->window();
    const int fieldBottom = field->mapTo(window, QPoint(0, field->height())).y();
    const int visibleHeight = window->height() - m_keyboardSize.height();
    if (fieldBottom > visibleHeight) {
        m_tblRecordsBottomConstraint = qMax(0, m_keyboardSize.height() - int(m_adHeight));
        layoutViews();
    }
}

void BMWifiScanVC::keyboardWillHide(const Notification &)
{
    m_tblRecordsBottomConstraint = 0;
    layoutViews();
    m_isEditingRecordName = false;
}

// ---------------------------------------------------------------------------
// Recording

void BMWifiScanVC::actRecordResetTouchDown()
{
    if (m_scanning)
        startRecording();
    else
        m_waitingResetButtonTouchUp = true;
    tellDelegate(&BMWifiScanVCDelegate::wifiScanVCActResetTouchDown);
}

void BMWifiScanVC::actRecordResetTouchUpInside()
{
    actRecordResetTouchUp(true);
}

void BMWifiScanVC::actRecordResetTouchUpOutside()
{
    actRecordResetTouchUp(false);
}

void BMWifiScanVC::actRecordResetTouchUp(bool inside)
{
    if (m_scanning) {
        if (m_isEditingRecordName)
            View::findAndResignFirstResponder(this);
        // Released outside or not, the spot is kept.
        saveRecordAndStopRecording();
    } else if (m_waitingResetButtonTouchUp) {
        m_waitingResetButtonTouchUp = false;
        if (inside)
            reset();
    }
    tellDelegate(&BMWifiScanVCDelegate::wifiScanVCActResetTouchUpInside);
}

void BMWifiScanVC::startRecording()
{
    m_currentSpeedRecord = std::make_shared<BMSpeedRecord>();
    m_currentSpeedRecord->start();
    // A press shorter than one result still has a value: the one on show.
    if (!m_testedSpeeds.isEmpty())
        m_currentSpeedRecord->addResult(m_testedSpeeds.constLast());
    if (m_charPlot)
        m_charPlot->startRecording();
    setRecordingUI();
}

void BMWifiScanVC::stopRecording()
{
    if (!isRecording())
        return;
    if (m_charPlot)
        m_charPlot->stopRecording();
    setNormalUI();
    m_currentSpeedRecord->finish();
    m_currentSpeedRecord.reset();
}

void BMWifiScanVC::setRecordingUI()
{
    // The colour to restore is the normal one: never the recording white,
    // should the look already be the recording one.
    if (m_counterImageName != QLatin1String("wifiCounterRecording"))
        m_lblWifiSpeedNormalColor = m_lblWifiSpeed->palette().color(QPalette::WindowText);
    setTextColor(m_lblWifiSpeed, Color::colorWithR(255, 255, 255));
    setTextColor(m_lblUnit, Color::colorWithR(255, 255, 255));
    m_counterImageName = QStringLiteral("wifiCounterRecording");
    showCounterImage();
}

void BMWifiScanVC::setNormalUI()
{
    m_counterImageName = QStringLiteral("wifiCounter");
    showCounterImage();
    setTextColor(m_lblWifiSpeed, m_lblWifiSpeedNormalColor);
    setTextColor(m_lblUnit, Color::named(QStringLiteral("medium_gray")));
}

void BMWifiScanVC::saveRecordAndStopRecording()
{
    WifiTestResult::Ptr target = std::exchange(m_wifiRecordBeingEdited, nullptr);
    const bool reRecording = target != nullptr;
    if (reRecording)
        target->setTimeAfterTest(BMSDKBackend::clock().now());
    else if (!m_testedSpeeds.isEmpty())
        target = m_testedSpeeds.constLast();

    // One result never becomes two spots, and without a result there is none.
    const bool isNewSpot = !reRecording && target
                           && (m_recordedSpeeds.isEmpty() || m_recordedSpeeds.constFirst() != target);
    if (reRecording || isNewSpot) {
        target->setSsid(BMSDKNetworkUtilities::currentWifiSSID().value_or(QString()));
        target->setBssid(BMSDKNetworkUtilities::currentWifiBSSID().value_or(QString()));
        if (m_currentSpeedRecord) {
            const bool averaged = m_currentSpeedRecord->isMultiResult();
            target->setDuration(averaged ? m_currentSpeedRecord->duration() : 0.0);
            target->setAverage(averaged);
            target->setSpeedInMbps(m_currentSpeedRecord->average());
        } else {
            // Saved without a recording: the result keeps its own speed.
            log(2, QStringLiteral("A spot was saved without a recording; it keeps its measured speed"));
            target->setDuration(0.0);
            target->setAverage(false);
        }
        if (isNewSpot) {
            QString name = std::exchange(m_nextSpotRecordName, QString());
            if (name.isNull()) {
                name = defaultSpotName(m_speedIndex + 1);
                ++m_speedIndex;
            }
            target->setLabel(name);
            m_recordedSpeeds.prepend(target);
        }
        m_tblRecords->scrollRectToVisible(QRect(0, 0, 1, 1), false);
        if (m_pageResults)
            m_pageResults->hide();
        if (isNewSpot)
            tellDelegate(&BMWifiScanVCDelegate::wifiScanVCSaveRecord);
        reloadRecords();
    }
    stopRecording();
}

void BMWifiScanVC::saveRecordAndStopRecordingIfNeeded()
{
    if (isRecording())
        saveRecordAndStopRecording();
}

QString BMWifiScanVC::defaultSpotName(qint64 index) const
{
    return StringFormat::print(BMI18NManager::stringForCode(QStringLiteral("spot")), index);
}

void BMWifiScanVC::updateSpeedIndex()
{
    m_speedIndex = 0;
    for (const WifiTestResult::Ptr &spot : std::as_const(m_recordedSpeeds)) {
        const QString label = spot->label();
        const qsizetype blank = label.indexOf(u' ');
        if (blank >= 0)
            m_speedIndex = qMax(m_speedIndex, leadingInteger(QStringView(label).mid(blank)));
    }
}

void BMWifiScanVC::reset()
{
    m_speedIndex = 0;
    resetWithNewRecordedSpeeds(std::nullopt);
}

void BMWifiScanVC::resetWithNewRecordedSpeeds(const std::optional<WifiTestResult::List> &speeds)
{
    m_lblWifiSpeed->setText(BMI18NManager::formatNumber(0.0, 1, 1));
    m_btnRecordReset->setEnabled(false);
    m_recordedSpeeds = speeds.value_or(WifiTestResult::List());
    m_testedSpeeds.clear();
    reloadPlot();
    tellDelegate(&BMWifiScanVCDelegate::wifiScanVCActReset);
    reloadRecords();
    m_spotsSetName.clear();
}

void BMWifiScanVC::saveSpotsLocally()
{
    if (m_recordedSpeeds.isEmpty())
        return;
    // Only names the user typed are remembered; of the default names only
    // the highest is recognised, deliberately.
    QStringList names = BMSDKUISettings::sharedInstance().savedSpots();
    const QString defaultName = defaultSpotName(m_speedIndex);
    for (const WifiTestResult::Ptr &spot : std::as_const(m_recordedSpeeds)) {
        const QString label = spot->label();
        if (!names.contains(label) && label != defaultName)
            names.append(label);
    }
    BMSDKUISettings::sharedInstance().setSavedSpots(names);
}

bool BMWifiScanVC::setupForEditIfNeeded()
{
    if (!m_spotsSetToEdit)
        return false;
    const FZHistoricalResultSpotsSet::Ptr set = std::exchange(m_spotsSetToEdit, nullptr);
    resetWithNewRecordedSpeeds(set->spots());
    m_recordedSpeeds = set->spots();
    // After the reset, which clears the name.
    m_spotsSetName = set->name();
    m_btnRecordReset->setEnabled(true);
    removeTutorial();
    return true;
}

void BMWifiScanVC::reloadRecords()
{
    if (!m_tblRecords)
        return;
    // Read once per reload rather than once per row.
    m_completionNames = BMSDKUISettings::sharedInstance().savedSpots();
    m_tblRecords->reloadData();
    updateTabOrder();
}

void BMWifiScanVC::updateTabOrder()
{
    // Tab follows the screen from top to bottom: the sound control, start,
    // record, then the spots' names in list order. Rows are reused, so the
    // chain is made anew with every reload.
    QWidget *previous = m_btnRecordReset;
    setTabOrder(m_btnSound, m_btnStartStop);
    setTabOrder(m_btnStartStop, m_btnRecordReset);
    for (int row = 0; row < m_recordedSpeeds.size(); ++row) {
        auto *cell = qobject_cast<BMSpeedRecordCell *>(m_tblRecords->cellForRowAtIndexPath(IndexPath(row, 0)));
        if (!cell)
            continue;
        setTabOrder(previous, cell->lblArea());
        previous = cell->lblArea();
    }
}

// ---------------------------------------------------------------------------
// Spot rows: renaming, re-recording, deleting

void BMWifiScanVC::didBeginEditingSpeedRecord(BMSpeedRecordCell *cell)
{
    if (!cell)
        return;
    m_activeSpotTextField = cell->lblArea();
    // A desktop keyboard sends no keyboard notifications: the name is being
    // typed while its field has the focus.
    m_isEditingRecordName = true;
    m_tblRecords->scrollToRowAtIndexPath(m_tblRecords->indexPathForCell(cell), TableView::ScrollPosition::Top, true);
    m_btnStartStop->setEnabled(false);
    if (!m_scanning)
        m_btnRecordReset->setEnabled(false);
}

void BMWifiScanVC::didEndEditingSpeedRecord(BMSpeedRecordCell *cell)
{
    if (!cell)
        return;
    if (m_activeSpotTextField == cell->lblArea()) {
        m_activeSpotTextField.clear();
        m_isEditingRecordName = false;
    }
    const int row = m_tblRecords->indexPathForCell(cell).row();
    if (row < 0 || row >= m_recordedSpeeds.size())
        return;
    const WifiTestResult::Ptr spot = m_recordedSpeeds.at(row);
    const QString typed = cell->lblArea()->text().trimmed();
    if (typed.isEmpty()) {
        cell->lblArea()->setText(spot->label());
    } else {
        cell->lblArea()->setText(typed);
        spot->setLabel(typed);
    }
    m_btnStartStop->setEnabled(true);
    m_btnRecordReset->setEnabled(true);
    tellDelegate(&BMWifiScanVCDelegate::wifiScanVCDidEndEditingSpeedRecord);
}

void BMWifiScanVC::didStartTapReRecordView(BMSpeedRecordCell *cell)
{
    if (!cell || !m_scanning || m_isEditingRecordName)
        return;
    if (isRecording()) {
        log(2, QStringLiteral("A row was held while a spot is being recorded; ignored"));
        return;
    }
    m_wifiRecordBeingEdited = cell->record();
    startRecording();
}

void BMWifiScanVC::didCancelTapReRecordView(BMSpeedRecordCell *)
{
    // The recording the hold started ends with it, unsaved: a hold dragged
    // off the row or turned into a scroll records nothing.
    const bool holdRecording = m_wifiRecordBeingEdited && isRecording();
    m_wifiRecordBeingEdited.reset();
    dismissEditPopup();
    if (holdRecording)
        stopRecording();
}

void BMWifiScanVC::didFinishTapReRecordView(BMSpeedRecordCell *)
{
    if (!m_scanning) {
        // The test ended during the hold: nothing is left to re-record.
        m_wifiRecordBeingEdited.reset();
        return;
    }
    // Only a hold that really started a re-recording is finished.
    const WifiTestResult::Ptr spot = m_wifiRecordBeingEdited;
    if (!spot || !isRecording()) {
        m_wifiRecordBeingEdited.reset();
        return;
    }
    BMSDKUISettings &settings = BMSDKUISettings::sharedInstance();
    const bool alwaysCopy = settings.alwaysCopyRecording();
    if (!alwaysCopy && !settings.alwaysReplaceRecording()) {
        const std::shared_ptr<BMSpeedRecord> kept = m_currentSpeedRecord;
        stopRecording();
        showReplaceConfirmation(spot, kept);
        return;
    }
    // Copy wins when both standing answers are set.
    if (alwaysCopy)
        prepareCopyOf(spot);
    saveRecordAndStopRecordingIfNeeded();
}

void BMWifiScanVC::prepareCopyOf(const WifiTestResult::Ptr &spot)
{
    m_nextSpotRecordName = spot->label();
    m_wifiRecordBeingEdited.reset();
}

void BMWifiScanVC::showReplaceConfirmation(const WifiTestResult::Ptr &spot, const std::shared_ptr<BMSpeedRecord> &kept)
{
    const QStringList options{
        spot->label(),
        canBeClearedAttributedStringWithMessageString(
            BMI18NManager::stringForCode(QStringLiteral("fairzones_replace_record_confirm_always"))),
        BMI18NManager::stringForCode(QStringLiteral("cancel")),
        BMI18NManager::stringForCode(QStringLiteral("fairzones_replace_copy")),
        BMI18NManager::stringForCode(QStringLiteral("fairzones_replace_confirm")),
    };
    enum { kCopy = 3, kReplace = 4 };
    FZConfirmSpotModificationPopup *popup =
        FZConfirmSpotModificationPopup::popupWithOptions(options, FZOptionsPopup::Horizontal, Qt::RichText);
    QPointer<BMWifiScanVC> self(this);
    QPointer<FZConfirmSpotModificationPopup> guard(popup);
    popup->setOptionChosenBlock([self, guard, spot, kept](int index) {
        if (!self)
            return;
        if (index != kCopy && index != kReplace) {
            self->m_wifiRecordBeingEdited.reset();
            return;
        }
        self->m_wifiRecordBeingEdited = spot;
        if (index == kCopy)
            self->prepareCopyOf(spot);
        self->m_currentSpeedRecord = kept;
        self->saveRecordAndStopRecordingIfNeeded();
        if (guard && guard->isAlwaysSwitchOn()) {
            if (index == kCopy)
                BMSDKUISettings::sharedInstance().setAlwaysCopyRecording(true);
            else
                BMSDKUISettings::sharedInstance().setAlwaysReplaceRecording(true);
        }
    });
    // Escape or a click beside the card drops the new measurement.
    connect(popup, &FZOptionsPopup::dismissed, this, [self] {
        if (self)
            self->m_wifiRecordBeingEdited.reset();
    });
    m_editPopup = popup;
    popup->show();
}

void BMWifiScanVC::didEnterInEditMode(BMSpeedRecordCell *cell)
{
    dismissEditPopup();
    // A name still being typed is the spot's before it is asked about.
    if (m_isEditingRecordName)
        View::findAndResignFirstResponder(this);
    const WifiTestResult::Ptr spot = cell ? cell->record() : nullptr;
    if (!spot)
        return;
    QPointer<BMWifiScanVC> self(this);
    if (BMSDKUISettings::sharedInstance().alwaysDeleteRecording()) {
        // After the swipe's own handling has finished.
        MainQueue::async(this, [self, spot] {
            if (self)
                self->deleteRecord(spot);
        });
        return;
    }
    const QStringList options{
        spot->label(),
        canBeClearedAttributedStringWithMessageString(
            BMI18NManager::stringForCode(QStringLiteral("fairzones_delete_record_confirm_always"))),
        BMI18NManager::stringForCode(QStringLiteral("cancel")),
        BMI18NManager::stringForCode(QStringLiteral("fairzones_delete_confirm")),
    };
    enum { kDelete = 3 };
    FZConfirmSpotModificationPopup *popup =
        FZConfirmSpotModificationPopup::popupWithOptions(options, FZOptionsPopup::Horizontal, Qt::RichText);
    QPointer<FZConfirmSpotModificationPopup> guard(popup);
    popup->setOptionChosenBlock([self, guard, spot](int index) {
        if (!self)
            return;
        if (index != kDelete) {
            self->endTableEditing();
            return;
        }
        self->deleteRecord(spot);
        if (guard && guard->isAlwaysSwitchOn())
            BMSDKUISettings::sharedInstance().setAlwaysDeleteRecording(true);
    });
    // Escape or a click beside the card keeps the spot, as cancel does.
    connect(popup, &FZOptionsPopup::dismissed, this, [self] {
        if (self)
            self->endTableEditing();
    });
    m_editPopup = popup;
    popup->show();
}

void BMWifiScanVC::endTableEditing()
{
    m_tblRecords->beginUpdates();
    m_tblRecords->setEditing(false, true);
    m_tblRecords->endUpdates();
}

void BMWifiScanVC::dismissEditPopup()
{
    // A popup closed unanswered drops the measurement it asked about.
    if (FZConfirmSpotModificationPopup *popup = m_editPopup.data()) {
        m_editPopup.clear();
        // Dismissed by the screen, not the user: its dismissal handlers
        // (which end the table's editing) must not run now.
        disconnect(popup, &FZOptionsPopup::dismissed, this, nullptr);
        popup->dismiss();
        m_wifiRecordBeingEdited.reset();
    }
}

void BMWifiScanVC::deleteRecord(const WifiTestResult::Ptr &record)
{
    const qsizetype index = m_recordedSpeeds.indexOf(record);
    if (index < 0) {
        log(2, QStringLiteral("A spot to delete is no longer in the list"));
        return;
    }
    m_recordedSpeeds.removeAt(index);
    m_tblRecords->beginUpdates();
    m_tblRecords->deleteRowsAtIndexPaths({IndexPath(int(index), 0)}, TableView::RowAnimation::Fade);
    m_tblRecords->setEditing(false, true);
    m_tblRecords->endUpdates();
}

// ---------------------------------------------------------------------------
// The spots table

int BMWifiScanVC::numberOfRowsInSection(TableView *, int)
{
    return int(m_recordedSpeeds.size());
}

TableViewCell *BMWifiScanVC::cellForRowAtIndexPath(TableView *tableView, const IndexPath &indexPath)
{
    if (indexPath.row() < 0 || indexPath.row() >= m_recordedSpeeds.size())
        return nullptr;
    auto *cell = qobject_cast<BMSpeedRecordCell *>(
        tableView->dequeueReusableCellWithIdentifier(BMTableViewCell::cellIdentifier(BMSpeedRecordCell::staticMetaObject)));
    if (!cell) {
        cell = BMTableViewCell::cell<BMSpeedRecordCell>();
        if (QCompleter *completer = cell->completer()) {
            connect(completer, qOverload<const QString &>(&QCompleter::activated), this,
                    [this](const QString &chosen) { log(2, StringFormat::print("selectedString: %@", chosen)); });
        }
    }
    cell->setRecordingColor(recordingColor());
    cell->setDelegate(this);
    if (auto *model = cell->completer() ? qobject_cast<QStringListModel *>(cell->completer()->model()) : nullptr)
        model->setStringList(m_completionNames);
    cell->setupWithRecord(m_recordedSpeeds.at(indexPath.row()), indexPath.row() % 2 == 0);
    return cell;
}

double BMWifiScanVC::heightForRowAtIndexPath(TableView *, const IndexPath &)
{
    return BMSpeedRecordCell::height();
}

bool BMWifiScanVC::canEditRowAtIndexPath(TableView *, const IndexPath &)
{
    return true;
}

void BMWifiScanVC::commitEditingStyle(TableView *, EditingStyle, const IndexPath &)
{
    // Deleting goes through didEnterInEditMode and its confirmation.
}

// ---------------------------------------------------------------------------
// The tutorial

void BMWifiScanVC::setupTutorial()
{
    if (!m_scrollTutorial || !m_pageResults)
        return;
    layoutViews();
    m_scrollTutorial->removeAllSubviews();
    const QRect frame = m_scrollTutorial->geometry();
    QRect page(frame.x(), 0, frame.width(), frame.height());
    for (int i = 1; i <= kTutorialPages; ++i) {
        auto *view = new BMFairzoneTutorialPageView(page);
        const QString textKey = StringFormat::print("fairzones_tutorial_%d", i); // i18n-key 1..4
        view->configureWithImageName(StringFormat::print("fairzones_scroll_%d", i),
                                     BMI18NManager::stringForCode(textKey));
        m_scrollTutorial->addSubview(view);
        page.translate(frame.width(), 0);
    }
    m_scrollTutorial->setContentSize(QSize(kTutorialPages * frame.width(), frame.height()));
    m_scrollTutorial->show();
    m_pageResults->show();
}

void BMWifiScanVC::removeTutorial()
{
    if (m_scrollTutorial) {
        ScrollView *scroll = m_scrollTutorial.data();
        m_scrollTutorial.clear();
        scroll->hide();
        scroll->deleteLater();
        m_wifiTutorialShown = true;
    }
    if (PageControl *dots = m_pageResults.data()) {
        m_pageResults.clear();
        dots->hide();
        dots->deleteLater();
    }
}

void BMWifiScanVC::scrollViewDidEndDecelerating(ScrollView *scrollView)
{
    if (!scrollView || scrollView->width() <= 0 || !m_pageResults)
        return;
    const int page = int(double(scrollView->contentOffset().x()) / double(scrollView->width()));
    if (page == m_pageResults->currentPage())
        return;
    m_pageResults->setCurrentPage(page);
    if (scrollView == m_scrollTutorial) {
        if (BMWifiScanVCDelegate *delegate = fzDelegate())
            delegate->wifiScanVCScanScreenTutorialView(this, page + 1);
    }
}

void BMWifiScanVC::scrollViewDidEndScrollingAnimation(ScrollView *scrollView)
{
    if (!scrollView || scrollView->width() <= 0 || !m_pageResults)
        return;
    m_pageResults->setCurrentPage(int(double(scrollView->contentOffset().x()) / double(scrollView->width())));
}

void BMWifiScanVC::pageControlValueChanged()
{
    if (!m_scrollTutorial || !m_pageResults)
        return;
    const QSize size = m_scrollTutorial->size();
    m_scrollTutorial->scrollRectToVisible(QRect(QPoint(size.width() * m_pageResults->currentPage(), 0), size), true);
}

// ---------------------------------------------------------------------------
// Helpers

bool BMWifiScanVC::isOnWifi() const
{
    // Only Wi-Fi will do; another medium counts as none here.
    return BMReachabilityManager::sharedInstance()->currentStatus() == BMReachabilityManager::kReachableViaWiFi;
}

QString BMWifiScanVC::moduleName() const
{
    return QString::fromLatin1(metaObject()->className());
}

void BMWifiScanVC::log(int level, const QString &message) const
{
    BMLogger::sharedInstance().log(moduleName(), level, message);
}

void BMWifiScanVC::tellDelegate(void (BMWifiScanVCDelegate::*operation)(BMWifiScanVC *))
{
    if (BMWifiScanVCDelegate *delegate = fzDelegate())
        (delegate->*operation)(this);
}
