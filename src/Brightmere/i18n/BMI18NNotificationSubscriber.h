#pragma once

#include <Brightmere/SDKUIExport.h>

class BMI18NNotification;

/// What a subscriber of BMI18NNotification implements: one operation per name.
/// The notification passed in lives only for the call.
class BRIGHTMERE_SDKUI_EXPORT BMI18NNotificationSubscriber
{
public:
    virtual ~BMI18NNotificationSubscriber() = default;

    /// "kTextBundleAvailable": a refresh ended with up-to-date texts.
    virtual void notifyTextBundleAvailable(BMI18NNotification *notification) = 0;
    /// "kTextBundleNotAvailable": a refresh failed; the texts held stay usable.
    virtual void notifyTextBundleNotAvailable(BMI18NNotification *notification) = 0;
};
