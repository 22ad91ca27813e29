#pragma once

#include <Brightmere/SDKUIExport.h>

#include "FZHistoricalResultSpotsSet.h"

/// The test screen as the saved-results screens see it: they can hand it a
/// saved set to load for editing, without knowing the screen itself. Screens
/// that take it along declare the QObject property "editSpotsSetSetter"; the
/// test screen sets it on every destination of its segues, and they pass it
/// on to theirs.
class BRIGHTMERE_SDKUI_EXPORT BMWifiScanVCEditSpotsSetSetter
{
public:
    virtual ~BMWifiScanVCEditSpotsSetSetter() = default;

    /// The set is loaded at the screen's next appearance.
    virtual void setSpotsSetToEdit(const FZHistoricalResultSpotsSet::Ptr &spotsSet) = 0;
};
