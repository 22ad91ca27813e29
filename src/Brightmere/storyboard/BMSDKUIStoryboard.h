#pragma once

#include <Brightmere/SDKUIExport.h>

#include <QString>

namespace Brightmere {
class Storyboard;
}

/// The one place that knows every screen of the kit: it registers each segue
/// identifier with the factory of its destination, so the screens name
/// identifiers only and never include each other. A host calls
/// registerSegues() once at start, before showing the test screen.
class BRIGHTMERE_SDKUI_EXPORT BMSDKUIStoryboard
{
public:
    /// The test screen's way to the list of saved sets.
    static constexpr const char *kShowSavedSpotsSegue = "showSavedSpotsSegue";
    /// From the list: one set, and two sets compared.
    static constexpr const char *kViewSpotsSegue = "viewSpotsSegue";
    /// The list's way to two sets compared.
    static constexpr const char *kCompareSpotsSegue = "compareSpotsSegue";
    /// The settings screens, for hosts that open them by identifier.
    static constexpr const char *kShowMiscellaneousSettingsSegue = "showMiscellaneousSettingsSegue";
    /// The screen of the remembered spot names.
    static constexpr const char *kShowSpotNamesSettingsSegue = "showSpotNamesSettingsSegue";

    /// Registers every identifier above on the storyboard (the shared one
    /// when null). Registering again replaces the factories, so a second call
    /// changes nothing.
    static void registerSegues(Brightmere::Storyboard *storyboard = nullptr);
};
