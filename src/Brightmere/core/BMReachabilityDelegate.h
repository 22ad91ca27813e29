#pragma once

#include <Brightmere/SDKExport.h>

#include <QString>

/// What a subscriber of BMReachabilityManager implements. Called on the main
/// thread each time the reachability status changes, with the new status
/// (0 not reachable, 1 Wi-Fi, 2 another medium) and the Wi-Fi network's BSSID
/// and SSID (empty when not known).
class BRIGHTMERE_SDK_EXPORT BMReachabilityDelegate
{
public:
    virtual ~BMReachabilityDelegate() = default;

    /// The status changed; see the class comment for the arguments.
    virtual void reachabilityHasChanged(int status, const QString &withBSSID, const QString &withSSID) = 0;
};
