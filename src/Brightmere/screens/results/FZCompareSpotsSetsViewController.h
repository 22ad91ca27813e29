#pragma once

#include "FZBaseCollectionViewController.h"
#include <Brightmere/model/FZResultSpotsSetsComparison.h>

#include <memory>

class BMLabel;
class QLabel;

namespace Brightmere {
class Switch;
}

/// Two saved sets side by side, one row per spot name; sortable by name, with
/// a switch that hides the rows measured alike in both sets.
///
/// The heading of column 1 names the comparison's set index 0 and that of
/// column 2 its index 1, and the comparison answers index 1 with the first
/// set: so column 1 is headed by the second set's name while its cells hold
/// the first set's records. Hosts rely on that order; it stays.
class FZCompareSpotsSetsViewController : public FZBaseCollectionViewController
{
    Q_OBJECT

public:
    explicit FZCompareSpotsSetsViewController(QWidget *parent = nullptr);

    /// Set before the screen appears; the screen keeps it for its lifetime.
    std::shared_ptr<FZResultSpotsSetsComparison> spotsSetsComparison() const { return m_spotsSetsComparison; }
    void setSpotsSetsComparison(const std::shared_ptr<FZResultSpotsSetsComparison> &comparison)
    {
        m_spotsSetsComparison = comparison;
    }

    BMGAScreenClass screenNameAndClassForEventTracker() const override;
    void refreshUITexts() override;

    QString cellIdentifier() const override { return QStringLiteral("compareCollectionViewCell"); }
    QString headerCellIdentifier() const override { return QStringLiteral("compareHeaderCollectionViewCell"); }
    int numberOfColumns() const override { return 3; }
    int numberOfRows() const override;
    double columnWidthProportionWithIndex(int index) const override { return index == 0 ? 0.2 : 0.4; }
    int rowHeight() const override { return 65; }
    FZAttributedText textForCellWithIndexPath(const Brightmere::IndexPath &indexPath) const override;
    FZAttributedText titleForColumnWithIndex(int index) const override;
    void columnSelected(int column) override;

    /// The text in bold 12.
    static FZAttributedText headerColumnAttributedString(const QString &text);
    /// Speed, network, access point and date of one record; empty for none.
    static FZAttributedText textForRecord(const WifiTestResult::Ptr &record);

    void sortButtonTapped();
    /// Acts only when the switch's state differs from the one last applied.
    void hideIdenticalDataToggled(Brightmere::Switch *sender);

    bool hideIdenticalSwitchIsOn() const { return m_hideIdenticalSwitchIsOn; }
    /// The bottom of the grid: the screen's bottom less the room of the switch.
    int collectionViewMaxY() const { return height() - kSwitchAreaHeight; }
    /// The name of the arrow shown: "arrowUpIcon" or "arrowDownIcon".
    QString sortImageName() const;

    QWidget *headerView() const { return headerRow(); }
    QLabel *sortLabel() const;
    QLabel *sortImage() const;
    QLabel *set1Label() const;
    QLabel *set2Label() const;
    Brightmere::Switch *hideIdenticalSwitch() const { return m_hideIdenticalSwitch; }
    BMLabel *hideIdenticalDataLabel() const { return m_hideIdenticalDataLabel; }

    static constexpr int kSwitchAreaHeight = 80;

protected:
    void viewDidLoad() override;
    void viewWillAppear(bool animated) override;
    bool showsHeaderRow() const override { return true; }
    void configureHeaderCell(FZSpotsSetsHeaderCollectionViewCell *cell, int column) override;

private:
    QLabel *headerTitle(int column) const;

    std::shared_ptr<FZResultSpotsSetsComparison> m_spotsSetsComparison;
    bool m_hideIdenticalSwitchIsOn = false;
    Brightmere::Switch *m_hideIdenticalSwitch = nullptr;
    BMLabel *m_hideIdenticalDataLabel = nullptr;
};
