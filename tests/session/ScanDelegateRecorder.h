#pragma once

#include <Brightmere/session/BMWifiScanVCDelegate.h>

#include <QObject>
#include <QStringList>

// The test screen's host as the tests see it: every call, in order, by its
// name without the "wifiScanVC" prefix ("StopTesting", "SoundOnOff:1").
class ScanDelegateRecorder : public QObject, public BMWifiScanVCDelegate
{
public:
    QStringList calls;
    // The calls since the last mark.
    QStringList sinceMark() const { return calls.mid(m_mark); }
    void mark() { m_mark = calls.size(); }

    void wifiScanVCViewDidLoad(BMWifiScanVC *) override { calls << "ViewDidLoad"; }
    void wifiScanVCViewWillAppear(BMWifiScanVC *) override { calls << "ViewWillAppear"; }
    void wifiScanVCViewWillDisappear(BMWifiScanVC *) override { calls << "ViewWillDisappear"; }
    void wifiScanVCActStart(BMWifiScanVC *) override { calls << "ActStart"; }
    void wifiScanVCActStartAndNoWifi(BMWifiScanVC *) override { calls << "ActStartAndNoWifi"; }
    void wifiScanVCActStop(BMWifiScanVC *) override { calls << "ActStop"; }
    void wifiScanVCStartTesting(BMWifiScanVC *) override { calls << "StartTesting"; }
    void wifiScanVCStopTesting(BMWifiScanVC *) override { calls << "StopTesting"; }
    void wifiScanVCShowNoWifiPopup(BMWifiScanVC *) override { calls << "ShowNoWifiPopup"; }
    void wifiScanVCActResetTouchDown(BMWifiScanVC *) override { calls << "ActResetTouchDown"; }
    void wifiScanVCActResetTouchUpInside(BMWifiScanVC *) override { calls << "ActResetTouchUpInside"; }
    void wifiScanVCActReset(BMWifiScanVC *) override { calls << "ActReset"; }
    void wifiScanVCSaveRecord(BMWifiScanVC *) override { calls << "SaveRecord"; }
    void wifiScanVCDidEndEditingSpeedRecord(BMWifiScanVC *) override { calls << "DidEndEditingSpeedRecord"; }
    void wifiScanVCActSoundOnOff(BMWifiScanVC *, bool on) override { calls << QString("SoundOnOff:%1").arg(on); }
    void wifiScanVCScanScreenTutorialView(BMWifiScanVC *, int page) override
    {
        calls << QString("TutorialView:%1").arg(page);
    }
    void wifiScanVCMenuButtonTapped(BMWifiScanVC *) override { calls << "MenuButtonTapped"; }
    void wifiScanVCleftMenuBtnTapped(BMWifiScanVC *) override { calls << "leftMenuBtnTapped"; }

private:
    qsizetype m_mark = 0;
};
