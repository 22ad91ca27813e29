#pragma once

class FZSpotsSetsHeaderCollectionViewCell;

/// Told when a heading cell of a grid is tapped.
class FZSpotsSetsHeaderCollectionViewCellDelegate
{
public:
    virtual ~FZSpotsSetsHeaderCollectionViewCellDelegate() = default;

    /// The heading cell was tapped.
    virtual void viewCellTouchUpInside(FZSpotsSetsHeaderCollectionViewCell *cell) = 0;
};
