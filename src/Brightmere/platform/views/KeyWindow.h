#pragma once

#include <Brightmere/SDKUIExport.h>

class QWidget;

namespace Brightmere {

/// The window that overlays and popups go into: the one the host made key,
/// else the active window, else the last visible top-level window. Overlays
/// that cover "the application" (the loading view, the option popups) are
/// added to it rather than to a screen, so they stay over every screen of
/// the stack. A host that embeds the kit in a window of its own makes that
/// window key.
class BRIGHTMERE_SDKUI_EXPORT KeyWindow
{
public:
    /// Null when there is no window at all (logged by the callers that need one).
    static QWidget *keyWindow();

    /// The host's choice wins while that window lives and is visible; null
    /// gives the choice back to the application's active window.
    static void makeKeyWindow(QWidget *window);
};

} // namespace Brightmere
