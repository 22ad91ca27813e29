#include "BMSDKUIBaseViewController.h"

#include "BMLoadingView.h"
#include "BMScreenChangeNotification.h"
#include "BrightmereColor.h"
#include "BrightmereView.h"
#include <Brightmere/core/BMLogger.h>
#include <Brightmere/core/BMReachabilityManager.h>
#include <Brightmere/i18n/BMI18NManager.h>
#include <Brightmere/i18n/BMI18NNotification.h>
#include <Brightmere/i18n/BMLanguageChangeNotification.h>
#include <Brightmere/platform/foundation/Clock.h>
#include <Brightmere/platform/foundation/MainQueue.h>
#include <Brightmere/platform/foundation/StringFormat.h>
#include <Brightmere/platform/views/Alert.h>
#include <Brightmere/platform/views/BarButtonItem.h>
#include <Brightmere/platform/views/NavigationBar.h>
#include <Brightmere/platform/views/NavigationController.h>
#include <Brightmere/platform/views/NavigationItem.h>

#include <QIcon>
#include <QLabel>

#include <cmath>

using namespace Brightmere;

namespace {

const QString kModule = QStringLiteral("BMSDKUIBaseViewController");

constexpr int kTitleViewWidth = 200;
constexpr int kTitleViewHeight = 44;
constexpr qreal kTitleFontPoints = 17;

QColor clearColor()
{
    return Color::colorWithR(0, 0, 0, 0.0f);
}

// The delay as the platform's dispatch time has it: whole nanoseconds.
double dispatchDelay(float seconds)
{
    if (!std::isfinite(seconds) || seconds < 0.0f) {
        BMLogger::sharedInstance().logFromModule(kModule, 2, "a timed alert for %@ seconds closes at once",
                                                 double(seconds));
        return 0.0;
    }
    return double(qint64(double(seconds) * 1e9)) / 1e9;
}

} // namespace

BMSDKUIBaseViewController::BMSDKUIBaseViewController(QWidget *parent)
    : ViewController(parent)
{
    // Texts change under a shown screen when the host switches the language
    // or a download lands; both reach views, so on the main thread.
    BMLanguageChangeNotification::subscribe(this, BMNotificationDelivery::MainThread);
    BMI18NNotification::subscribe(this, BMNotificationDelivery::MainThread);
}

BMSDKUIBaseViewController::~BMSDKUIBaseViewController()
{
    BMLanguageChangeNotification::unsubscribe(this);
    BMI18NNotification::unsubscribe(this);
}

void BMSDKUIBaseViewController::viewDidLoad()
{
    ViewController::viewDidLoad();
    m_statusBarHidden = false;
    setNeedsStatusBarAppearanceUpdate();
}

void BMSDKUIBaseViewController::viewWillAppear(bool animated)
{
    ViewController::viewWillAppear(animated);
    BMScreenChangeNotification::postScreenChange(screenNameAndClassForEventTracker());
    setStatusBarHidden(false);
    refreshUITexts();
    refreshBackNames();
}

// "Back to <this screen>" for the back button that leads here, and the same
// name on the kit's own back arrow that leads to the screen below.
void BMSDKUIBaseViewController::refreshBackNames()
{
    const QString here = !title().isEmpty() ? title() : !m_headerTitle.isEmpty() ? m_headerTitle : navigationItem()->title();
    navigationItem()->setBackAccessibleName(
        StringFormat::print(BMI18NManager::stringForCode(QStringLiteral("a11y_back_to")), here));
    NavigationController *navigation = navigationController();
    const QList<ViewController *> stack = navigation ? navigation->viewControllers() : QList<ViewController *>();
    const qsizetype index = stack.indexOf(this);
    // While being pushed, the screen below is still the top.
    ViewController *below = index > 0 ? stack.at(index - 1) : index < 0 && !stack.isEmpty() ? stack.last() : nullptr;
    if (m_kitBackItem && below)
        m_kitBackItem->setAccessibleName(below->navigationItem()->backAccessibleName());
}

void BMSDKUIBaseViewController::viewWillLayoutSubviews()
{
    // Only the texts: the view's own layout runs on its own.
    refreshUITexts();
}

void BMSDKUIBaseViewController::setStatusBarHidden(bool hidden)
{
    m_statusBarHidden = hidden;
    setNeedsStatusBarAppearanceUpdate();
}

void BMSDKUIBaseViewController::setNeedsStatusBarAppearanceUpdate()
{
    Q_EMIT statusBarAppearanceUpdateRequested();
}

BMGAScreenClass BMSDKUIBaseViewController::screenNameAndClassForEventTracker() const
{
    return BMGAScreenClass(QStringLiteral("BMBaseViewController"), metaObject());
}

void BMSDKUIBaseViewController::setScreenBackground(bool background)
{
    Q_UNUSED(background)
    BMLogger::sharedInstance().logFromModule(QString::fromLatin1(metaObject()->className()), 1,
                                             "BMSDKUIBaseViewController::setScreenBackground - Set image Backgound");
}

void BMSDKUIBaseViewController::showLoading()
{
    BMLoadingView::sharedInstance().show();
}

void BMSDKUIBaseViewController::showCircleLoading()
{
    BMLoadingView::sharedInstance().showCircle();
}

void BMSDKUIBaseViewController::hideLoading()
{
    BMLoadingView::sharedInstance().hide();
}

void BMSDKUIBaseViewController::setNavigationBarTransparent()
{
    NavigationController *navigation = navigationController();
    if (!navigation) {
        BMLogger::sharedInstance().logFromModule(kModule, 2, "%@: no navigation bar to make transparent",
                                                 metaObject()->className());
        return;
    }
    NavigationBar *bar = navigation->navigationBar();
    // No background and no hairline: the bar shows only its items.
    bar->setTransparent(true);
    bar->setTranslucent(true);
    navigation->setAutoFillBackground(false);
    QPalette palette = navigation->palette();
    palette.setColor(QPalette::Window, clearColor());
    navigation->setPalette(palette);
    bar->setBackgroundColor(clearColor());
}

void BMSDKUIBaseViewController::resetNavigationBarToDefault()
{
    NavigationController *navigation = navigationController();
    if (!navigation) {
        BMLogger::sharedInstance().logFromModule(kModule, 2, "%@: no navigation bar to reset",
                                                 metaObject()->className());
        return;
    }
    // The colours stay as they are; only the bar's own drawing comes back.
    navigation->navigationBar()->setTransparent(false);
    navigation->navigationBar()->setTranslucent(false);
}

ViewController *BMSDKUIBaseViewController::findViewControllerOfClass(const QMetaObject &cls) const
{
    NavigationController *navigation = navigationController();
    if (!navigation)
        return nullptr;
    const QList<ViewController *> stack = navigation->viewControllers();
    for (auto it = stack.crbegin(); it != stack.crend(); ++it) {
        if ((*it)->metaObject()->inherits(&cls))
            return *it;
    }
    return nullptr;
}

void BMSDKUIBaseViewController::prepareHeaderViewForTitle(const QString &title)
{
    auto *container = new QWidget;
    container->setObjectName(QStringLiteral("headerTitleView"));
    container->setFixedSize(kTitleViewWidth, kTitleViewHeight);
    container->setAttribute(Qt::WA_TranslucentBackground);

    auto *label = new QLabel(container);
    label->setObjectName(QStringLiteral("headerTitleLabel"));
    label->setTextFormat(Qt::PlainText);
    label->setText(title);
    label->setGeometry(0, 2, kTitleViewWidth, kTitleViewHeight);
    label->setAlignment(Qt::AlignCenter);
    label->setAttribute(Qt::WA_TranslucentBackground);
    QPalette palette = label->palette();
    palette.setColor(QPalette::WindowText, Color::colorWithR(255, 255, 255));
    label->setPalette(palette);
    QFont font = View::fontOfSize(kTitleFontPoints, QFont::Bold);
    // Shrinks the font until the title fits the width, as far as the kit's
    // smallest text; a longer title is then cut with an ellipsis.
    while (font.pixelSize() > View::kMinimumTextPixels
           && QFontMetrics(font).horizontalAdvance(title) > kTitleViewWidth)
        font.setPixelSize(font.pixelSize() - 1);
    label->setFont(font);
    label->setText(QFontMetrics(font).elidedText(title, Qt::ElideRight, kTitleViewWidth));
    m_headerTitle = title;
    navigationItem()->setTitleView(container);
}

void BMSDKUIBaseViewController::replaceNativeBackButton()
{
    auto *back = new BarButtonItem(QIcon(QStringLiteral(":/images/iconBack.svg")), BarButtonItem::Style::Plain,
                                   {}, this);
    back->setObjectName(QStringLiteral("iconBack"));
    m_kitBackItem = back;
    QPointer<BMSDKUIBaseViewController> self(this);
    back->setAction([self, back] {
        if (self)
            self->backAction(back);
    });
    navigationItem()->setLeftBarButtonItem(back);
    // Made after the screen appeared (the saved list makes it on leaving
    // compare mode): named now, not at the next appearance.
    refreshBackNames();
}

void BMSDKUIBaseViewController::backAction(QObject *sender)
{
    Q_UNUSED(sender)
    if (NavigationController *navigation = navigationController())
        navigation->popViewControllerAnimated(true);
    else
        BMLogger::sharedInstance().logFromModule(kModule, 2, "%@: back with no navigation stack",
                                                 metaObject()->className());
}

bool BMSDKUIBaseViewController::showNoConnectivity()
{
    // Any status but "not reachable" will do here; the test screen is stricter.
    if (BMReachabilityManager::sharedInstance()->currentStatus() != BMReachabilityManager::kNotReachable)
        return false;
    alertControllerWithTitle(BMI18NManager::stringForCode(QStringLiteral("bmOops")),
                             BMI18NManager::stringForCode(QStringLiteral("connection_error_message")));
    return true;
}

void BMSDKUIBaseViewController::alertControllerWithTitle(const QString &title, const QString &message)
{
    presentLater([title, message] { return BMSDKUIAlertView::alertControllerWithTitleOnCancel(title, message, {}); });
}

void BMSDKUIBaseViewController::alertControllerWithTitleOnCancel(const QString &title, const QString &message,
                                                                 BMSDKUIAlertView::Handler onCancel)
{
    presentLater([title, message, onCancel = std::move(onCancel)] {
        return BMSDKUIAlertView::alertControllerWithTitleOnCancel(title, message, onCancel);
    });
}

void BMSDKUIBaseViewController::alertControllerWithTitleOnOK(const QString &title, const QString &message,
                                                             BMSDKUIAlertView::Handler onOK)
{
    presentLater([title, message, onOK = std::move(onOK)] {
        return BMSDKUIAlertView::alertControllerWithTitleOnOK(title, message, onOK);
    });
}

void BMSDKUIBaseViewController::alertControllerWithTitle(const QString &title, const QString &message,
                                                         const QList<AlertAction> &actions)
{
    presentLater([title, message, actions] {
        return BMSDKUIAlertView::alertControllerWithTitle(title, message, actions);
    });
}

void BMSDKUIBaseViewController::alertControllerWithTitleForSeconds(const QString &title, const QString &message,
                                                                   float seconds, BMSDKUIAlertView::Handler onFinish)
{
    const double delay = dispatchDelay(seconds);
    QPointer<BMSDKUIBaseViewController> self(this);
    MainQueue::async([self, title, message, delay, onFinish = std::move(onFinish)] {
        if (!self)
            return;
        QPointer<Alert> alert = BMSDKUIAlertView::alertControllerWithTitle(title, message, {});
        self->presentAlert(alert, false);
        Clock &clock = self->m_clock ? *self->m_clock : Clock::system();
        // The alert is closed on time even when its screen has gone since:
        // it has no button of its own.
        clock.startOnce(delay, [alert, onFinish] {
            if (alert && !alert->isDismissed())
                alert->dismiss(false, onFinish);
        });
    });
}

void BMSDKUIBaseViewController::setClock(Clock *clock)
{
    m_clock = clock;
}

void BMSDKUIBaseViewController::presentLater(std::function<Alert *()> build)
{
    QPointer<BMSDKUIBaseViewController> self(this);
    MainQueue::async([self, build = std::move(build)] {
        if (!self)
            return;
        self->presentAlert(build(), false);
    });
}

void BMSDKUIBaseViewController::notifyLanguageChange(BMLanguageChangeNotification *)
{
    if (isViewLoaded()) {
        textsDidChange();
        refreshBackNames();
    }
}

void BMSDKUIBaseViewController::notifyTextBundleAvailable(BMI18NNotification *)
{
    if (isViewLoaded()) {
        textsDidChange();
        refreshBackNames();
    }
}

void BMSDKUIBaseViewController::notifyTextBundleNotAvailable(BMI18NNotification *)
{
}
