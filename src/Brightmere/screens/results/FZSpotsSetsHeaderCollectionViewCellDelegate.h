#pragma once

class FZSpotsSetsHeaderCollectionViewCell;

/// Told when a heading cell of a grid is tapped.
class FZSpotsSetsHeaderCollectionViewCellDelegate
{
public:
    virtual ~FZSpotsSetsHeaderCollectionViewCellDelegate() = default;

    virtual void viewCellTouchUpInside(FZSpotsSetsHeaderCollectionViewCell *cell) = 0;
};
