#include "BMWifiScanView.h"

#include "BMFairzoneTutorialPageView.h"
#include <Brightmere/i18n/BMI18NManager.h>
#include <Brightmere/platform/foundation/StringFormat.h>
#include <Brightmere/platform/views/AccessibleWidget.h>
#include <Brightmere/platform/views/PageControl.h>
#include <Brightmere/platform/views/ScrollView.h>
#include <Brightmere/platform/views/TableView.h>
#include <Brightmere/ui/BMBorderedView.h>
#include <Brightmere/ui/BMImageButton.h>
#include <Brightmere/ui/BMLabel.h>
#include <Brightmere/ui/BrightmereColor.h>
#include <Brightmere/ui/BrightmereImage.h>
#include <Brightmere/ui/BrightmereView.h>

#include <QEvent>
#include <QFontMetrics>
#include <QGridLayout>
#include <QHBoxLayout>
#include <QLabel>
#include <QPainter>
#include <QPainterPath>
#include <QVBoxLayout>

#include <algorithm>

using namespace Brightmere;

namespace {

const char kImageNameProperty[] = "brightmereImageName";

// The phone-sized panel, in points.
constexpr int kMargin = 8;
constexpr int kChartHeight = 176;
constexpr int kPageDotsHeight = 18;
constexpr int kControlSize = 68;
constexpr int kControlInset = 16;
// The round counter behind the speed figure; the controls sit beside it,
// a little above its middle, with the hold note under the record control.
constexpr int kCounterSize = 100;
constexpr int kControlTop = (kCounterSize - kControlSize) / 2 - 8;
constexpr int kSpeedTop = 26;
constexpr int kSpeedHeight = 36;
constexpr int kSpeedPoints = 28;
constexpr int kUnitHeight = 14;
constexpr int kSoundSize = 36;
constexpr int kRowGap = 6;
// The network's line sits under the counter and under the hold note.
constexpr int kCounterRowHeight = kCounterSize + 6;
constexpr int kSsidHeight = 18;
constexpr int kSsidPoints = 13;
constexpr int kHoldNoteHeight = kCounterRowHeight - kControlTop - kControlSize;
constexpr int kPreparingHeight = 24;
// The chart's axis labels and title, the part of its height that holds text.
constexpr int kChartTextHeight = 42;
constexpr qreal kPanelCornerRadius = 5.0;

int px(qreal points)
{
    return View::pixelsForPoints(points);
}

// A height that holds text: the design's, growing with the user's text.
int tx(qreal points)
{
    return View::pixelsForTextPoints(points);
}

// Past one and a half times the text the panel would leave the spots too
// little room (fewer than two whole rows on a phone): what can give does.
bool crowded()
{
    return View::textScale() > 1.5;
}

// The space above and below the panel and under its rows, halved when crowded.
int panelGap()
{
    return crowded() ? kMargin / 2 : kMargin;
}

// Larger text may need a second line for the network's name and address;
// when crowded, two lines of its face and no more.
int ssidHeight()
{
    if (crowded())
        return 2 * QFontMetrics(View::fontOfSize(kSsidPoints)).lineSpacing() + 2;
    return View::textScale() > 1.0 ? 2 * tx(kSsidHeight) : px(kSsidHeight);
}

// When crowded the plotted part gives back what the chart's text grew past
// one and a half times.
int chartHeight()
{
    const int text = tx(kChartTextHeight);
    const int given = crowded() ? std::max(0, text - qRound(kChartTextHeight * 1.5)) : 0;
    return px(kChartHeight - kChartTextHeight) - given + text;
}

// The figures under the counter's top, and the record control with its note,
// each as tall as their text needs.
int counterRowHeight()
{
    return std::max({px(kCounterRowHeight), px(kSpeedTop) + tx(kSpeedHeight) + tx(kUnitHeight),
                     px(kControlTop + kControlSize) + tx(kHoldNoteHeight)});
}

void styleLabel(BMLabel *label, int points, QFont::Weight weight, const QColor &color,
                Qt::Alignment alignment = Qt::AlignCenter)
{
    label->setFont(View::fontOfSize(points, weight));
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

// The notes on the white panel: the table's medium grey darkened just enough
// to read there.
QColor noteColor()
{
    return Color::withContrast(Color::named(QStringLiteral("medium_gray")), Color::named(QStringLiteral("fz_chart_back")),
                               Color::kTextContrast);
}

// The unit under the speed, on the pale face of the "wifiCounter" image.
QColor unitColor()
{
    return Color::withContrast(Color::named(QStringLiteral("medium_gray")), Color::colorFromHex(QStringLiteral("F7F9FB")),
                               Color::kTextContrast);
}

QVBoxLayout *column(int left, int top, int right, int bottom)
{
    auto *layout = new QVBoxLayout;
    layout->setContentsMargins(px(left), px(top), px(right), px(bottom));
    layout->setSpacing(0);
    return layout;
}

} // namespace

BMWifiScanView::BMWifiScanView(QWidget *parent)
    : QWidget(parent)
{
    setObjectName(QStringLiteral("contentView"));
    m_layout = column(0, 0, 0, 0);
    setLayout(m_layout);
    buildPanel();

    m_tblRecords = new TableView(this);
    m_tblRecords->setObjectName(QStringLiteral("tblRecords"));
    View::setBackgroundColor(m_tblRecords->viewport(), Color::system(4));
    m_layout->addWidget(m_tblRecords, 1);

    m_counterImageName = QStringLiteral("wifiCounter");
    showCounterImage();
    m_lblWifiSpeedNormalColor = m_lblWifiSpeed->palette().color(QPalette::WindowText);
}

void BMWifiScanView::buildPanel()
{
    m_viewBordered = new QWidget(this);
    m_viewBordered->setObjectName(QStringLiteral("viewBordered"));
    m_viewBordered->setFixedHeight(chartHeight() + px(kRowGap) + counterRowHeight() + ssidHeight() + px(panelGap()));
    m_viewBordered->installEventFilter(this);
    QVBoxLayout *around = column(kMargin, panelGap(), kMargin, panelGap());
    around->addWidget(m_viewBordered);
    m_layout->addLayout(around);

    // Everything in the panel shares one cell: the rows, and over them the
    // preparing note, the sound control, the tutorial and the frame.
    auto *grid = new QGridLayout(m_viewBordered);
    grid->setContentsMargins(0, 0, 0, 0);
    grid->setSpacing(0);

    QVBoxLayout *rows = column(0, 0, 0, panelGap());
    m_viewPlotHolderContainer = new QWidget(m_viewBordered);
    m_viewPlotHolderContainer->setObjectName(QStringLiteral("viewPlotHolderContainer"));
    m_viewPlotHolderContainer->setFixedHeight(chartHeight());
    m_viewPlotHolderContainer->installEventFilter(this);
    rows->addWidget(m_viewPlotHolderContainer);
    rows->addSpacing(px(kRowGap));
    rows->addLayout(buildCounterRow());
    m_lblSSID = new BMLabel(m_viewBordered);
    m_lblSSID->setObjectName(QStringLiteral("lblSSID"));
    styleLabel(m_lblSSID, kSsidPoints, QFont::Normal, Color::colorWithHexString(QStringLiteral("3593da")));
    View::followContrast(m_lblSSID, [this] {
        const QColor blue = Color::colorWithHexString(QStringLiteral("3593da"));
        setTextColor(m_lblSSID, Color::fixedColor(blue, Color::named(QStringLiteral("fz_chart_back"))));
        showNetwork(m_ssid, m_bssid);
    });
    m_lblSSID->setTextFormat(Qt::RichText);
    m_lblSSID->setFixedHeight(ssidHeight());
    m_lblSSID->setWordWrap(View::textScale() > 1.0);
    QVBoxLayout *ssid = column(kMargin, 0, kMargin, 0);
    ssid->addWidget(m_lblSSID);
    rows->addLayout(ssid);
    grid->addLayout(rows, 0, 0);

    m_lblPreparing = new BMLabel(m_viewBordered);
    m_lblPreparing->setObjectName(QStringLiteral("lblPreparing"));
    styleLabel(m_lblPreparing, 15, QFont::DemiBold, noteColor());
    m_lblPreparing->setFixedHeight(tx(kPreparingHeight));
    QVBoxLayout *preparing = column(0, 0, 0, 0);
    preparing->addSpacing((chartHeight() - tx(kPreparingHeight)) / 2);
    preparing->addWidget(m_lblPreparing);
    preparing->addStretch();
    grid->addLayout(preparing, 0, 0);

    m_btnSound = new BMImageButton(m_viewBordered);
    m_btnSound->setObjectName(QStringLiteral("btnSound"));
    m_btnSound->setFixedSize(px(kSoundSize), px(kSoundSize));
    showSound(false);
    // kMargin in from the corner.
    QVBoxLayout *sound = column(0, kMargin, kMargin, 0);
    sound->addWidget(m_btnSound, 0, Qt::AlignRight);
    sound->addStretch();
    grid->addLayout(sound, 0, 0);

    // The tutorial strip lies over the chart until the first start; pages
    // and dots together hide the whole chart, axes included.
    m_scrollTutorial = new ScrollView(m_viewBordered);
    m_scrollTutorial->setObjectName(QStringLiteral("scrollTutorial"));
    m_scrollTutorial->setPagingEnabled(true);
    m_scrollTutorial->setFixedHeight(px(kPlotTop - kPageDotsHeight) + chartHeight());
    View::setBackgroundColor(m_scrollTutorial->viewport(), Color::named(QStringLiteral("fz_chart_back")));
    connect(m_scrollTutorial, &ScrollView::didEndDecelerating, this,
            [this] { scrollViewDidEndDecelerating(m_scrollTutorial); });
    connect(m_scrollTutorial, &ScrollView::didEndScrollingAnimation, this,
            [this] { scrollViewDidEndScrollingAnimation(m_scrollTutorial); });
    m_pageResults = new PageControl(m_viewBordered);
    m_pageResults->setObjectName(QStringLiteral("pageResults"));
    m_pageResults->setNumberOfPages(kTutorialPages);
    m_pageResults->setPageIndicatorTintColor(Color::withContrast(
        Color::named(QStringLiteral("disable_gray")), Color::named(QStringLiteral("fz_chart_back")), Color::kLargeContrast));
    m_pageResults->setCurrentPageIndicatorTintColor(Color::named(QStringLiteral("medium_blue")));
    m_pageResults->setFixedHeight(px(kPageDotsHeight));
    View::setBackgroundColor(m_pageResults, Color::named(QStringLiteral("fz_chart_back")));
    m_pageResults->hide();
    connect(m_pageResults, &PageControl::valueChanged, this, &BMWifiScanView::pageControlValueChanged);
    QVBoxLayout *tutorial = column(0, 0, 0, 0);
    tutorial->addWidget(m_scrollTutorial);
    tutorial->addWidget(m_pageResults);
    tutorial->addStretch();
    grid->addLayout(tutorial, 0, 0);

    // The frame is drawn over everything in the panel, the chart included.
    m_viewBorderedFrame = new BMBorderedView(m_viewBordered);
    m_viewBorderedFrame->setObjectName(QStringLiteral("viewBorderedFrame"));
    m_viewBorderedFrame->setAttribute(Qt::WA_TransparentForMouseEvents);
    grid->addWidget(m_viewBorderedFrame, 0, 0);
}

QLayout *BMWifiScanView::buildCounterRow()
{
    // Three columns: start, the counter, record with its note. The outer two
    // share the rest of the width equally.
    auto *row = new QGridLayout;
    row->setContentsMargins(0, 0, 0, 0);
    row->setSpacing(0);
    const int side = px(kControlSize + 2 * kControlInset);
    row->setColumnMinimumWidth(0, side);
    row->setColumnMinimumWidth(2, side);
    row->setColumnStretch(0, 1);
    row->setColumnStretch(2, 1);

    m_btnStartStop = new BMImageButton(m_viewBordered);
    m_btnStartStop->setObjectName(QStringLiteral("btnStartStop"));
    m_btnStartStop->setFixedSize(px(kControlSize), px(kControlSize));
    QVBoxLayout *start = column(kControlInset, kControlTop, 0, 0);
    start->addWidget(m_btnStartStop, 0, Qt::AlignLeft);
    start->addStretch();
    row->addLayout(start, 0, 0);

    m_wifiCounterBackground = new QLabel(m_viewBordered);
    Brightmere::AccessibleWidget::exposeValue(m_wifiCounterBackground, QAccessible::StaticText);
    m_wifiCounterBackground->setObjectName(QStringLiteral("wifiCounterBackground"));
    m_wifiCounterBackground->setAlignment(Qt::AlignCenter);
    m_wifiCounterBackground->setFixedSize(px(kCounterSize), px(kCounterSize));
    m_lblWifiSpeed = new BMLabel(m_viewBordered);
    m_lblWifiSpeed->setObjectName(QStringLiteral("lblWifiSpeed"));
    styleLabel(m_lblWifiSpeed, kSpeedPoints, QFont::Bold, Color::named(QStringLiteral("dark_blue")));
    // Larger text grows the figures only as far as "000.0" fits inside the
    // counter's ring: past it they would run onto the panel, white on white
    // while recording. Never under their size at the default text size.
    const int figuresWidth = px(kCounterSize);
    QFont figureFont = m_lblWifiSpeed->font();
    while (figureFont.pixelSize() > View::pixelsForPoints(kSpeedPoints)
           && QFontMetrics(figureFont).horizontalAdvance(QStringLiteral("000.0")) + 4 > figuresWidth)
        figureFont.setPixelSize(figureFont.pixelSize() - 1);
    m_lblWifiSpeed->setFont(figureFont);
    m_lblWifiSpeed->setFixedSize(figuresWidth, tx(kSpeedHeight));
    m_lblUnit = new BMLabel(m_viewBordered);
    m_lblUnit->setObjectName(QStringLiteral("lblUnit"));
    styleLabel(m_lblUnit, 11, QFont::DemiBold, unitColor());
    m_lblUnit->setFixedSize(figuresWidth, tx(kUnitHeight));
    QVBoxLayout *figures = column(0, kSpeedTop, 0, 0);
    figures->addWidget(m_lblWifiSpeed);
    figures->addWidget(m_lblUnit);
    figures->addStretch();
    auto *counter = new QGridLayout;
    counter->setContentsMargins(0, 0, 0, 0);
    counter->addWidget(m_wifiCounterBackground, 0, 0, Qt::AlignTop);
    counter->addLayout(figures, 0, 0);
    // Centred over the whole row (its left edge rounds down), the middle
    // column keeping the controls clear of it.
    row->setColumnMinimumWidth(1, px(kCounterSize));
    row->addLayout(counter, 0, 0, 1, 3, Qt::AlignHCenter | Qt::AlignTop);

    m_btnRecordReset = new BMImageButton(m_viewBordered);
    m_btnRecordReset->setObjectName(QStringLiteral("btnRecordReset"));
    m_btnRecordReset->setFixedSize(px(kControlSize), px(kControlSize));
    m_lblHoldToAverage = new BMLabel(m_viewBordered);
    m_lblHoldToAverage->setObjectName(QStringLiteral("lblHoldToAverage"));
    styleLabel(m_lblHoldToAverage, 11, QFont::Normal, noteColor(),
               Qt::AlignHCenter | Qt::AlignTop);
    // A longer translation takes a second line under the control, and a
    // still longer one ends in an ellipsis.
    m_lblHoldToAverage->setMaximumLines(2);
    m_lblHoldToAverage->setFixedSize(side, tx(kHoldNoteHeight));
    QVBoxLayout *record = column(0, kControlTop, kControlInset, 0);
    record->addWidget(m_btnRecordReset, 0, Qt::AlignRight);
    QVBoxLayout *note = column(0, 0, 0, 0);
    note->addWidget(m_lblHoldToAverage, 0, Qt::AlignRight);
    auto *right = column(0, 0, 0, 0);
    right->addLayout(record);
    right->addLayout(note);
    right->addStretch();
    row->addLayout(right, 0, 2);
    row->setRowMinimumHeight(0, counterRowHeight());
    return row;
}

QWidget *BMWifiScanView::makePlotHolder()
{
    delete m_viewPlotHolder.data();
    m_viewPlotHolder = new QWidget(m_viewBordered);
    m_viewPlotHolder->setObjectName(QStringLiteral("viewPlotHolder"));
    Brightmere::AccessibleWidget::exposeValue(m_viewPlotHolder, QAccessible::Chart);
    m_viewPlotHolder->setAccessibleName(BMI18NManager::stringForCode(QStringLiteral("a11y_speed_chart")));
    placePlotHolder();
    m_viewPlotHolder->show();
    // The notes and the tutorial stay over the chart, the controls over all.
    m_lblPreparing->raise();
    if (m_scrollTutorial)
        m_scrollTutorial->raise();
    if (m_pageResults)
        m_pageResults->raise();
    m_btnStartStop->raise();
    m_btnRecordReset->raise();
    m_btnSound->raise();
    m_viewBorderedFrame->raise();
    return m_viewPlotHolder;
}

void BMWifiScanView::placePlotHolder()
{
    // The holder overhangs the chart's area on both sides, so the chart's
    // own side margins run under the panel's frame: no layout places a
    // widget partly outside its parent, so this one is placed by hand.
    if (!m_viewPlotHolder)
        return;
    const QRect area = m_viewPlotHolderContainer->geometry();
    m_viewPlotHolder->setGeometry(area.x() - px(kPlotSideOverhang), area.y() + px(kPlotTop),
                                  area.width() + 2 * px(kPlotSideOverhang), area.height());
}

ScrollView *BMWifiScanView::scrollTutorial() const
{
    return m_scrollTutorial.data();
}

PageControl *BMWifiScanView::pageResults() const
{
    return m_pageResults.data();
}

void BMWifiScanView::setTblRecordsBottomConstraint(int constraint)
{
    m_layout->setContentsMargins(0, 0, 0, qMax(0, constraint));
}

bool BMWifiScanView::eventFilter(QObject *watched, QEvent *event)
{
    if (watched == m_viewBordered && event->type() == QEvent::Paint) {
        QPainter painter(m_viewBordered);
        painter.setRenderHint(QPainter::Antialiasing);
        QPainterPath path;
        path.addRoundedRect(QRectF(m_viewBordered->rect()), kPanelCornerRadius, kPanelCornerRadius);
        painter.fillPath(path, Color::named(QStringLiteral("fz_chart_back")));
        return true;
    }
    if (watched == m_viewPlotHolderContainer && (event->type() == QEvent::Resize || event->type() == QEvent::Move))
        placePlotHolder();
    if (watched == m_scrollTutorial.data() && event->type() == QEvent::Resize)
        placeTutorialPages();
    return QWidget::eventFilter(watched, event);
}

void BMWifiScanView::placeTutorialPages()
{
    // A page is as wide as the strip, whatever the window did since the
    // pages were made; the page on show stays on show.
    const QSize page = m_scrollTutorial->size();
    const QList<QWidget *> pages = m_scrollTutorial->subviews();
    for (int i = 0; i < pages.size(); ++i)
        pages.at(i)->setGeometry(QRect(QPoint(i * page.width(), 0), page));
    m_scrollTutorial->setContentSize(QSize(int(pages.size()) * page.width(), page.height()));
    m_scrollTutorial->setContentOffset(QPoint(m_pageResults ? m_pageResults->currentPage() * page.width() : 0, 0),
                                       false);
}

// ---------------------------------------------------------------------------
// Texts and the controls' look

void BMWifiScanView::showTesting(bool testing)
{
    showImage(m_btnStartStop, testing ? QStringLiteral("buttonStop.png") : QStringLiteral("buttonStart.png"));
    showImage(m_btnRecordReset, testing ? QStringLiteral("buttonRecord.png") : QStringLiteral("buttonReset.png"));
    m_lblHoldToAverage->setVisible(testing);
    m_lblPreparing->setVisible(testing);
    retranslate(testing);
}

void BMWifiScanView::retranslate(bool testing)
{
    m_lblHoldToAverage->setText(BMI18NManager::stringForCode(QStringLiteral("fairzones_hold_to_average")));
    const QString startStopKey = testing ? QStringLiteral("stop") : QStringLiteral("start"); // i18n-key
    m_btnStartStop->setTitle(BMI18NManager::stringForCode(startStopKey));
    updateRecordResetLabel(testing);
    m_lblPreparing->setText(BMI18NManager::stringForCode(QStringLiteral("preparing")));
    m_lblUnit->setText(BMI18NManager::stringForCode(QStringLiteral("bmMbps")));
    m_btnStartStop->setAccessibleName(
        BMI18NManager::stringForCode(testing ? QStringLiteral("a11y_stop_test") : QStringLiteral("a11y_start_test"))); // i18n-key
    showSound(m_soundOn);
    m_wifiCounterBackground->setAccessibleName(BMI18NManager::stringForCode(QStringLiteral("a11y_speed")));
    if (m_pageResults)
        m_pageResults->setAccessibleName(BMI18NManager::stringForCode(QStringLiteral("a11y_tutorial_page")));
}

void BMWifiScanView::showSound(bool on)
{
    m_soundOn = on;
    showImage(m_btnSound, on ? QStringLiteral("buttonAudioOn") : QStringLiteral("buttonAudioOff"));
    Brightmere::AccessibleWidget::setToggle(m_btnSound, on);
    m_btnSound->setAccessibleName(
        BMI18NManager::stringForCode(on ? QStringLiteral("a11y_sound_on") : QStringLiteral("a11y_sound_off"))); // i18n-key
}

void BMWifiScanView::showNetwork(const QString &ssid, const QString &bssid)
{
    m_ssid = ssid;
    m_bssid = bssid;
    if (ssid.isEmpty()) {
        m_lblSSID->clear();
        return;
    }
    QString text = ssid.toHtmlEscaped();
    if (!bssid.isEmpty()) {
        const QString grey = Color::colorToString(Color::fixedColor(Color::colorWithHexString(QStringLiteral("999999")),
                                                                    Color::named(QStringLiteral("fz_chart_back"))));
        text += QStringLiteral("<span style=\"color:#%1\"> (%2)</span>").arg(grey, bssid.toHtmlEscaped());
    }
    m_lblSSID->setText(text);
}

void BMWifiScanView::updateRecordResetLabel(bool testing)
{
    m_btnRecordReset->setTitle(BMI18NManager::stringForCode(QStringLiteral("reset")), BMImageButton::State::Disabled);
    const QString normalKey = testing ? QStringLiteral("record") : QStringLiteral("reset"); // i18n-key
    m_btnRecordReset->setTitle(BMI18NManager::stringForCode(normalKey));
    m_btnRecordReset->setAccessibleName(
        BMI18NManager::stringForCode(testing ? QStringLiteral("a11y_record_spot") : QStringLiteral("a11y_clear_spots"))); // i18n-key
}

QIcon BMWifiScanView::barIcon(bool dots)
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

// ---------------------------------------------------------------------------
// Images and the recording look

void BMWifiScanView::showImage(QWidget *view, const QString &name)
{
    if (!view)
        return;
    view->setProperty(kImageNameProperty, name);
    if (auto *button = qobject_cast<BMImageButton *>(view))
        button->setBackgroundImage(Brightmere::Image::named(name));
    else if (auto *label = qobject_cast<QLabel *>(view)) {
        const QIcon image = Brightmere::Image::named(name);
        label->setPixmap(image.isNull() ? QPixmap() : image.pixmap(label->size(), label->devicePixelRatioF()));
    }
}

QString BMWifiScanView::imageNameOf(const QWidget *view)
{
    return view ? view->property(kImageNameProperty).toString() : QString();
}

void BMWifiScanView::showCounterImage()
{
    showImage(m_wifiCounterBackground, m_counterImageName);
}

bool BMWifiScanView::isRecordingLook() const
{
    return m_counterImageName == QLatin1String("wifiCounterRecording");
}

void BMWifiScanView::setRecording(bool recording)
{
    if (recording) {
        // The colour to restore is the normal one: never the recording
        // white, should the look already be the recording one.
        if (!isRecordingLook())
            m_lblWifiSpeedNormalColor = m_lblWifiSpeed->palette().color(QPalette::WindowText);
        setTextColor(m_lblWifiSpeed, Color::colorWithR(255, 255, 255));
        setTextColor(m_lblUnit, Color::colorWithR(255, 255, 255));
        m_counterImageName = QStringLiteral("wifiCounterRecording");
    } else {
        m_counterImageName = QStringLiteral("wifiCounter");
        setTextColor(m_lblWifiSpeed, m_lblWifiSpeedNormalColor);
        setTextColor(m_lblUnit, unitColor());
    }
    showCounterImage();
}

// ---------------------------------------------------------------------------
// The tutorial

void BMWifiScanView::setupTutorial()
{
    if (!m_scrollTutorial || !m_pageResults)
        return;
    // The pages take the strip's size: it must be laid out first.
    if (QLayout *layout = m_viewBordered->layout())
        layout->activate();
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
    m_scrollTutorial->installEventFilter(this);
    m_scrollTutorial->show();
    m_pageResults->show();
}

bool BMWifiScanView::removeTutorial()
{
    bool removed = false;
    if (ScrollView *scroll = m_scrollTutorial.data()) {
        m_scrollTutorial.clear();
        scroll->hide();
        scroll->deleteLater();
        removed = true;
    }
    if (PageControl *dots = m_pageResults.data()) {
        m_pageResults.clear();
        dots->hide();
        dots->deleteLater();
    }
    return removed;
}

void BMWifiScanView::scrollViewDidEndDecelerating(ScrollView *scrollView)
{
    if (!scrollView || scrollView->width() <= 0 || !m_pageResults)
        return;
    const int page = int(double(scrollView->contentOffset().x()) / double(scrollView->width()));
    if (page == m_pageResults->currentPage())
        return;
    m_pageResults->setCurrentPage(page);
    if (scrollView == m_scrollTutorial)
        Q_EMIT tutorialPageSettled(page);
}

void BMWifiScanView::scrollViewDidEndScrollingAnimation(ScrollView *scrollView)
{
    if (!scrollView || scrollView->width() <= 0 || !m_pageResults)
        return;
    m_pageResults->setCurrentPage(int(double(scrollView->contentOffset().x()) / double(scrollView->width())));
}

void BMWifiScanView::pageControlValueChanged()
{
    if (!m_scrollTutorial || !m_pageResults)
        return;
    const QSize size = m_scrollTutorial->size();
    m_scrollTutorial->scrollRectToVisible(QRect(QPoint(size.width() * m_pageResults->currentPage(), 0), size), true);
}
