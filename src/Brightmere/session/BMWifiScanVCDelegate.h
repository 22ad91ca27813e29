#pragma once

#include <Brightmere/SDKUIExport.h>

class BMWifiScanVC;

/// What the test screen tells its host, each with the screen as the first
/// argument. Every operation has an empty default, so a host implements only
/// what it follows. The screen holds its delegate weakly: a delegate that is
/// a QObject may go away at any time and the screen stops telling it.
class BRIGHTMERE_SDKUI_EXPORT BMWifiScanVCDelegate
{
public:
    virtual ~BMWifiScanVCDelegate() = default;

    /// At the end of the screen's first load (after a first StopTesting).
    virtual void wifiScanVCViewDidLoad(BMWifiScanVC *vc) {}
    /// At the end of an appearance, except one that loaded a set for editing.
    virtual void wifiScanVCViewWillAppear(BMWifiScanVC *vc) {}
    /// As the screen goes, after a running test was stopped.
    virtual void wifiScanVCViewWillDisappear(BMWifiScanVC *vc) {}

    /// The user pressed start on Wi-Fi; the test has started.
    virtual void wifiScanVCActStart(BMWifiScanVC *vc) {}
    /// The user pressed start without Wi-Fi; an alert follows.
    virtual void wifiScanVCActStartAndNoWifi(BMWifiScanVC *vc) {}
    /// The user pressed stop; the test has stopped.
    virtual void wifiScanVCActStop(BMWifiScanVC *vc) {}
    /// At the end of every start and of every stop, whatever caused it.
    virtual void wifiScanVCStartTesting(BMWifiScanVC *vc) {}
    /// See wifiScanVCStartTesting().
    virtual void wifiScanVCStopTesting(BMWifiScanVC *vc) {}
    /// Wi-Fi went missing during a test, just before the alert.
    virtual void wifiScanVCShowNoWifiPopup(BMWifiScanVC *vc) {}

    /// The record/reset control went down, and came up (inside or outside).
    virtual void wifiScanVCActResetTouchDown(BMWifiScanVC *vc) {}
    /// See wifiScanVCActResetTouchDown().
    virtual void wifiScanVCActResetTouchUpInside(BMWifiScanVC *vc) {}
    /// The run was reset.
    virtual void wifiScanVCActReset(BMWifiScanVC *vc) {}
    /// A new spot joined the list.
    virtual void wifiScanVCSaveRecord(BMWifiScanVC *vc) {}
    /// A spot's name edit ended.
    virtual void wifiScanVCDidEndEditingSpeedRecord(BMWifiScanVC *vc) {}

    /// The sound control was toggled; on is the new state.
    virtual void wifiScanVCActSoundOnOff(BMWifiScanVC *vc, bool on) {}
    /// The user paged the tutorial; page counts from 1.
    virtual void wifiScanVCScanScreenTutorialView(BMWifiScanVC *vc, int page) {}

    /// The menu control on the bar was tapped.
    virtual void wifiScanVCMenuButtonTapped(BMWifiScanVC *vc) {}
    /// An open spot-name keyboard was dismissed first.
    virtual void wifiScanVCleftMenuBtnTapped(BMWifiScanVC *vc) {}
};
