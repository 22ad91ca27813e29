#pragma once

#include <Brightmere/SDKUIExport.h>

class BMWiFiFairzoneTestNotification;

/// What a subscriber of BMWiFiFairzoneTestNotification implements. The
/// notification passed in lives only for the call.
class BRIGHTMERE_SDKUI_EXPORT BMWiFiFairzoneTestSubscriber
{
public:
    virtual ~BMWiFiFairzoneTestSubscriber() = default;

    /// "kWiFiFairzoneTestStarted": the user started a test.
    virtual void notifyWiFiFairzoneTestStarted(BMWiFiFairzoneTestNotification *notification) = 0;
};
