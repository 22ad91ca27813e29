#pragma once

#include <Brightmere/SDKUIExport.h>

class FZSpotsSetsHeaderCollectionViewCell;

/// Told when a heading cell of a grid is tapped.
class BRIGHTMERE_SDKUI_EXPORT FZSpotsSetsHeaderCollectionViewCellDelegate
{
public:
    virtual ~FZSpotsSetsHeaderCollectionViewCellDelegate() = default;

    /// The heading cell was tapped.
    virtual void viewCellTouchUpInside(FZSpotsSetsHeaderCollectionViewCell *cell) = 0;
};
