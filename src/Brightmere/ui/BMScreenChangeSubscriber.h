#pragma once

#include <Brightmere/SDKUIExport.h>

class BMScreenChangeNotification;

/// What a subscriber of BMScreenChangeNotification implements. The
/// notification passed in lives only for the call.
class BRIGHTMERE_SDKUI_EXPORT BMScreenChangeSubscriber
{
public:
    virtual ~BMScreenChangeSubscriber() = default;

    /// "kScreenChange": a screen of the kit is about to appear.
    virtual void notifyScreenChange(BMScreenChangeNotification *notification) = 0;
};
