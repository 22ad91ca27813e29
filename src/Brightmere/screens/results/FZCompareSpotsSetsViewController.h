#pragma once

#include <Brightmere/SDKUIExport.h>

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
class BRIGHTMERE_SDKUI_EXPORT FZCompareSpotsSetsViewController : public FZBaseCollectionViewController
{
    Q_OBJECT

public:
    /// The compare screen, without a comparison until one is set.
    explicit FZCompareSpotsSetsViewController(QWidget *parent = nullptr);

    /// Set before the screen appears; the screen keeps it for its lifetime.
    std::shared_ptr<FZResultSpotsSetsComparison> spotsSetsComparison() const { return m_spotsSetsComparison; }
    /// Sets the comparison shown.
    void setSpotsSetsComparison(const std::shared_ptr<FZResultSpotsSetsComparison> &comparison)
    {
        m_spotsSetsComparison = comparison;
    }

    BMGAScreenClass screenNameAndClassForEventTracker() const override;
    void refreshUITexts() override;

    /// The grid's cells.
    QString cellIdentifier() const override { return QStringLiteral("compareCollectionViewCell"); }
    /// The heading's cells.
    QString headerCellIdentifier() const override { return QStringLiteral("compareHeaderCollectionViewCell"); }
    /// Label, first set, second set.
    int numberOfColumns() const override { return 3; }
    /// One row per compared label.
    int numberOfRows() const override;
    /// The label's column takes a fifth, each set two fifths.
    double columnWidthProportionWithIndex(int index) const override { return index == 0 ? 0.2 : 0.4; }
    /// A row's height in pixels.
    int rowHeight() const override { return 65; }
    /// The label, or a set's speed, of a row.
    FZAttributedText textForCellWithIndexPath(const Brightmere::IndexPath &indexPath) const override;
    /// The label heading and the two sets' titles.
    FZAttributedText titleForColumnWithIndex(int index) const override;
    void columnSelected(int column) override;

    /// The text in bold 12.
    static FZAttributedText headerColumnAttributedString(const QString &text);
    /// Speed, network, access point and date of one record; empty for none.
    static FZAttributedText textForRecord(const WifiTestResult::Ptr &record);

    /// Reverses the row order.
    void sortButtonTapped();
    /// Acts only when the switch's state differs from the one last applied.
    void hideIdenticalDataToggled(Brightmere::Switch *sender);

    /// Whether identical pairs are hidden.
    bool hideIdenticalSwitchIsOn() const { return m_hideIdenticalSwitchIsOn; }
    /// The bottom of the grid: the screen's bottom less the room of the switch.
    int collectionViewMaxY() const { return height() - kSwitchAreaHeight; }
    /// The name of the arrow shown: "arrowUpIcon" or "arrowDownIcon".
    QString sortImageName() const;

    /// The heading row.
    QWidget *headerView() const { return headerRow(); }
    /// The sort heading.
    QLabel *sortLabel() const;
    /// The sort arrow.
    QLabel *sortImage() const;
    /// The first set's title.
    QLabel *set1Label() const;
    /// The second set's title.
    QLabel *set2Label() const;
    /// The "hide identical data" switch.
    Brightmere::Switch *hideIdenticalSwitch() const { return m_hideIdenticalSwitch; }
    /// The switch's label.
    BMLabel *hideIdenticalDataLabel() const { return m_hideIdenticalDataLabel; }

    /// Height of the switch's strip under the grid.
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
