#pragma once

#include <Brightmere/SDKUIExport.h>

class BMLanguageChangeNotification;

/// What a subscriber of BMLanguageChangeNotification implements. The
/// notification passed in lives only for the call.
class BRIGHTMERE_SDKUI_EXPORT BMLanguageChangeSubscriber
{
public:
    virtual ~BMLanguageChangeSubscriber() = default;

    /// "kLanguageChange": the current language was changed by the host.
    virtual void notifyLanguageChange(BMLanguageChangeNotification *notification) = 0;
};
