#include "DemoHostDelegate.h"

#include "DemoEventLog.h"
#include <Brightmere/core/BMLogger.h>
#include <Brightmere/core/BMSDKGeneralUtilities.h>
#include <Brightmere/core/BMSDKRestServiceManager.h>
#include <Brightmere/i18n/BMI18NManager.h>
#include <Brightmere/i18n/BMI18NNotification.h>
#include <Brightmere/i18n/BMLanguageChangeNotification.h>
#include <Brightmere/session/BMWiFiFairzoneTestNotification.h>
#include <Brightmere/ui/BMScreenChangeNotification.h>

namespace {
const QString kModule = QStringLiteral("DemoHost");
}

DemoHostDelegate::DemoHostDelegate(DemoEventLog *log, QObject *parent)
    : QObject(parent)
    , m_log(log)
{
    BMWiFiFairzoneTestNotification::subscribe(this);
    BMScreenChangeNotification::subscribe(this);
    // The service answers on its own thread; the log is a widget.
    BMI18NNotification::subscribe(this, BMNotificationDelivery::MainThread);
    BMLanguageChangeNotification::subscribe(this, BMNotificationDelivery::MainThread);
}

DemoHostDelegate::~DemoHostDelegate()
{
    BMWiFiFairzoneTestNotification::unsubscribe(this);
    BMScreenChangeNotification::unsubscribe(this);
    BMI18NNotification::unsubscribe(this);
    BMLanguageChangeNotification::unsubscribe(this);
}

int DemoHostDelegate::count(const QString &prefix) const
{
    int n = 0;
    for (const QString &event : m_events)
        n += event.startsWith(prefix) ? 1 : 0;
    return n;
}

QString DemoHostDelegate::textsSource()
{
    BMI18NManager *i18n = BMI18NManager::sharedInstance();
    const QString language = i18n->currentLanguage();
    const qsizetype own = i18n->bundleTextsForLanguage(language).size();
    const qsizetype english = language == u"en" ? 0 : i18n->bundleTextsForLanguage(QStringLiteral("en")).size();
    if (own == 0 && english == 0)
        return QStringLiteral("Texts (%1): built in").arg(language);
    return QStringLiteral("Texts (%1): %2 downloaded (service %3), the rest built in")
        .arg(language)
        .arg(own > 0 ? own : english)
        .arg(BMSDKGeneralUtilities::displayAddress(BMSDKRestServiceManager::brightmereServerURL()));
}

void DemoHostDelegate::record(const QString &line)
{
    m_events << line;
    BMLogger::sharedInstance().log(kModule, 1, line);
    if (m_log)
        m_log->append(line);
}

void DemoHostDelegate::wifiScanVCViewDidLoad(BMWifiScanVC *) { record(QStringLiteral("delegate: ViewDidLoad")); }
void DemoHostDelegate::wifiScanVCViewWillAppear(BMWifiScanVC *) { record(QStringLiteral("delegate: ViewWillAppear")); }
void DemoHostDelegate::wifiScanVCViewWillDisappear(BMWifiScanVC *)
{
    record(QStringLiteral("delegate: ViewWillDisappear"));
}
void DemoHostDelegate::wifiScanVCActStart(BMWifiScanVC *) { record(QStringLiteral("delegate: ActStart")); }
void DemoHostDelegate::wifiScanVCActStartAndNoWifi(BMWifiScanVC *)
{
    record(QStringLiteral("delegate: ActStartAndNoWifi"));
}
void DemoHostDelegate::wifiScanVCActStop(BMWifiScanVC *) { record(QStringLiteral("delegate: ActStop")); }
void DemoHostDelegate::wifiScanVCStartTesting(BMWifiScanVC *) { record(QStringLiteral("delegate: StartTesting")); }
void DemoHostDelegate::wifiScanVCStopTesting(BMWifiScanVC *) { record(QStringLiteral("delegate: StopTesting")); }
void DemoHostDelegate::wifiScanVCShowNoWifiPopup(BMWifiScanVC *) { record(QStringLiteral("delegate: ShowNoWifiPopup")); }
void DemoHostDelegate::wifiScanVCActResetTouchDown(BMWifiScanVC *)
{
    record(QStringLiteral("delegate: ActResetTouchDown"));
}
void DemoHostDelegate::wifiScanVCActResetTouchUpInside(BMWifiScanVC *)
{
    record(QStringLiteral("delegate: ActResetTouchUpInside"));
}
void DemoHostDelegate::wifiScanVCActReset(BMWifiScanVC *) { record(QStringLiteral("delegate: ActReset")); }
void DemoHostDelegate::wifiScanVCSaveRecord(BMWifiScanVC *) { record(QStringLiteral("delegate: SaveRecord")); }
void DemoHostDelegate::wifiScanVCDidEndEditingSpeedRecord(BMWifiScanVC *)
{
    record(QStringLiteral("delegate: DidEndEditingSpeedRecord"));
}
void DemoHostDelegate::wifiScanVCActSoundOnOff(BMWifiScanVC *, bool on)
{
    record(QStringLiteral("delegate: ActSoundOnOff %1").arg(on ? u"on" : u"off"));
}
void DemoHostDelegate::wifiScanVCScanScreenTutorialView(BMWifiScanVC *, int page)
{
    record(QStringLiteral("delegate: ScanScreenTutorialView page %1").arg(page));
}
void DemoHostDelegate::wifiScanVCMenuButtonTapped(BMWifiScanVC *)
{
    record(QStringLiteral("delegate: MenuButtonTapped"));
    Q_EMIT menuRequested();
}
void DemoHostDelegate::wifiScanVCleftMenuBtnTapped(BMWifiScanVC *)
{
    record(QStringLiteral("delegate: leftMenuBtnTapped"));
    Q_EMIT menuRequested();
}

void DemoHostDelegate::notifyWiFiFairzoneTestStarted(BMWiFiFairzoneTestNotification *)
{
    record(QStringLiteral("notification: %1").arg(QLatin1String(kWiFiFairzoneTestStarted)));
}

void DemoHostDelegate::notifyScreenChange(BMScreenChangeNotification *notification)
{
    const QMetaObject *screenClass = notification ? notification->screenClass() : nullptr;
    record(QStringLiteral("notification: %1 %2 (%3)")
               .arg(QLatin1String(kScreenChange), notification ? notification->screenName() : QString(),
                    screenClass ? QLatin1String(screenClass->className()) : QLatin1String("?")));
}

void DemoHostDelegate::notifyTextBundleAvailable(BMI18NNotification *)
{
    const QString source = textsSource();
    record(QStringLiteral("notification: %1; %2").arg(QLatin1String(kTextBundleAvailable), source));
    Q_EMIT textBundleRefreshed(true);
    Q_EMIT textsSourceChanged(source);
}

void DemoHostDelegate::notifyTextBundleNotAvailable(BMI18NNotification *)
{
    const QString source = textsSource();
    record(QStringLiteral("notification: %1; %2").arg(QLatin1String(kTextBundleNotAvailable), source));
    Q_EMIT textBundleRefreshed(false);
    Q_EMIT textsSourceChanged(source);
}

void DemoHostDelegate::notifyLanguageChange(BMLanguageChangeNotification *)
{
    record(QStringLiteral("notification: %1 %2")
               .arg(QLatin1String(kLanguageChange), BMI18NManager::sharedInstance()->currentLanguage()));
    Q_EMIT textsSourceChanged(textsSource());
}
