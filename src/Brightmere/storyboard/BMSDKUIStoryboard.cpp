#include "BMSDKUIStoryboard.h"

#include <Brightmere/platform/views/Storyboard.h>
#include <Brightmere/screens/results/FZCompareSpotsSetsViewController.h>
#include <Brightmere/screens/results/FZSavedSpotsViewController.h>
#include <Brightmere/screens/results/FZSpotsSetViewController.h>
#include <Brightmere/screens/settings/FZMiscellaneousSettingsViewController.h>
#include <Brightmere/screens/settings/FZSpotNamesSettingsViewController.h>

namespace {

template<typename Screen>
void registerScreen(Brightmere::Storyboard *storyboard, const char *identifier)
{
    storyboard->registerSegue(QString::fromLatin1(identifier), [] { return new Screen; });
}

} // namespace

void BMSDKUIStoryboard::registerSegues(Brightmere::Storyboard *storyboard)
{
    Brightmere::Storyboard *board = storyboard ? storyboard : Brightmere::Storyboard::main();
    registerScreen<FZSavedSpotsViewController>(board, kShowSavedSpotsSegue);
    registerScreen<FZSpotsSetViewController>(board, kViewSpotsSegue);
    registerScreen<FZCompareSpotsSetsViewController>(board, kCompareSpotsSegue);
    registerScreen<FZMiscellaneousSettingsViewController>(board, kShowMiscellaneousSettingsSegue);
    registerScreen<FZSpotNamesSettingsViewController>(board, kShowSpotNamesSettingsSegue);
}
