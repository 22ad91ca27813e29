#pragma once

#include <Brightmere/i18n/BMI18NNotificationSubscriber.h>
#include <Brightmere/i18n/BMLanguageChangeSubscriber.h>
#include <Brightmere/session/BMWiFiFairzoneTestSubscriber.h>
#include <Brightmere/session/BMWifiScanVCDelegate.h>
#include <Brightmere/ui/BMScreenChangeSubscriber.h>

#include <QObject>
#include <QPointer>
#include <QStringList>

class DemoEventLog;

// The host as the kit sees it: the test screen's delegate and a subscriber
// of every notification the kit posts. Each call becomes one line in the
// event log ("delegate: ActStart", "notification: kScreenChange ...") and
// in the host's own log category; the two menu controls ask for the host
// menu. Nothing it logs carries the customer's password.
class DemoHostDelegate : public QObject,
                         public BMWifiScanVCDelegate,
                         public BMWiFiFairzoneTestSubscriber,
                         public BMScreenChangeSubscriber,
                         public BMI18NNotificationSubscriber,
                         public BMLanguageChangeSubscriber
{
    Q_OBJECT

public:
    explicit DemoHostDelegate(DemoEventLog *log, QObject *parent = nullptr);
    ~DemoHostDelegate() override;

    // Every line so far, oldest first; the log view keeps only the newest.
    QStringList events() const { return m_events; }
    int count(const QString &prefix) const;
    // Where the texts on screen come from: "Texts (es): 10 downloaded
    // (service http://127.0.0.1:8099), the rest built in". The sample
    // bundles keep the built-in texts' lengths, so this, not the texts,
    // tells a person which source is in use.
    static QString textsSource();

    void wifiScanVCViewDidLoad(BMWifiScanVC *vc) override;
    void wifiScanVCViewWillAppear(BMWifiScanVC *vc) override;
    void wifiScanVCViewWillDisappear(BMWifiScanVC *vc) override;
    void wifiScanVCActStart(BMWifiScanVC *vc) override;
    void wifiScanVCActStartAndNoWifi(BMWifiScanVC *vc) override;
    void wifiScanVCActStop(BMWifiScanVC *vc) override;
    void wifiScanVCStartTesting(BMWifiScanVC *vc) override;
    void wifiScanVCStopTesting(BMWifiScanVC *vc) override;
    void wifiScanVCShowNoWifiPopup(BMWifiScanVC *vc) override;
    void wifiScanVCActResetTouchDown(BMWifiScanVC *vc) override;
    void wifiScanVCActResetTouchUpInside(BMWifiScanVC *vc) override;
    void wifiScanVCActReset(BMWifiScanVC *vc) override;
    void wifiScanVCSaveRecord(BMWifiScanVC *vc) override;
    void wifiScanVCDidEndEditingSpeedRecord(BMWifiScanVC *vc) override;
    void wifiScanVCActSoundOnOff(BMWifiScanVC *vc, bool on) override;
    void wifiScanVCScanScreenTutorialView(BMWifiScanVC *vc, int page) override;
    void wifiScanVCMenuButtonTapped(BMWifiScanVC *vc) override;
    void wifiScanVCleftMenuBtnTapped(BMWifiScanVC *vc) override;

    void notifyWiFiFairzoneTestStarted(BMWiFiFairzoneTestNotification *notification) override;
    void notifyScreenChange(BMScreenChangeNotification *notification) override;
    void notifyTextBundleAvailable(BMI18NNotification *notification) override;
    void notifyTextBundleNotAvailable(BMI18NNotification *notification) override;
    void notifyLanguageChange(BMLanguageChangeNotification *notification) override;

Q_SIGNALS:
    void menuRequested();
    // A refresh of the texts ended; available tells how.
    void textBundleRefreshed(bool available);
    // After a refresh or a change of language: textsSource() now.
    void textsSourceChanged(const QString &source);

private:
    void record(const QString &line);

    QPointer<DemoEventLog> m_log;
    QStringList m_events;
};
