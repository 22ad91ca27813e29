#pragma once

class BMLanguageChangeNotification;

/// What a subscriber of BMLanguageChangeNotification implements. The
/// notification passed in lives only for the call.
class BMLanguageChangeSubscriber
{
public:
    virtual ~BMLanguageChangeSubscriber() = default;

    /// "kLanguageChange": the current language was changed by the host.
    virtual void notifyLanguageChange(BMLanguageChangeNotification *notification) = 0;
};
