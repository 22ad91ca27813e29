#pragma once

#include "model/FZResultSpotsSetsComparison.h"
#include "ui/BMSDKUIBaseViewController.h"

#include <memory>

// Two saved sets side by side, one row per spot name; sortable by name, with
// a switch that hides the rows measured alike in both sets.
class FZCompareSpotsSetsViewController : public BMSDKUIBaseViewController
{
    Q_OBJECT

public:
    explicit FZCompareSpotsSetsViewController(QWidget *parent = nullptr);

    // Set before the screen appears; the screen keeps it for its lifetime.
    std::shared_ptr<FZResultSpotsSetsComparison> spotsSetsComparison() const { return m_spotsSetsComparison; }
    void setSpotsSetsComparison(const std::shared_ptr<FZResultSpotsSetsComparison> &comparison)
    {
        m_spotsSetsComparison = comparison;
    }

private:
    std::shared_ptr<FZResultSpotsSetsComparison> m_spotsSetsComparison;
};
