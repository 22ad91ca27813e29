#pragma once

#include <Brightmere/SDKUIExport.h>

#include "FZBaseCollectionViewController.h"
#include <Brightmere/model/BMWifiScanVCEditSpotsSetSetter.h>
#include <Brightmere/model/FZHistoricalResultSpotsSet.h>

#include <QPointer>

class BMMainButton;
class QLabel;

/// One saved set as a grid: each spot's name and date, and its speed with the
/// network it was measured on; sortable, and able to hand the set back to the
/// test screen to go on recording.
///
/// The headings sit in the grid's heading cells: spot and date (with the sort
/// arrow) over column 0, speed and network over column 1. A tap on the first
/// heading cycles the set's order; the arrow points up only while the order
/// is "labels ascending" (2), down for the other two.
class BRIGHTMERE_SDKUI_EXPORT FZSpotsSetViewController : public FZBaseCollectionViewController
{
    Q_OBJECT
    // The test screen (a BMWifiScanVCEditSpotsSetSetter), held weakly.
    Q_PROPERTY(QObject *editSpotsSetSetter READ editSpotsSetSetterObject WRITE setEditSpotsSetSetterObject)

public:
    /// The screen of one saved set, without a set until one is given.
    explicit FZSpotsSetViewController(QWidget *parent = nullptr);

    /// The set shown.
    FZHistoricalResultSpotsSet::Ptr spotsSet() const { return m_spotsSet; }
    /// Sets the set shown.
    void setSpotsSet(const FZHistoricalResultSpotsSet::Ptr &spotsSet) { m_spotsSet = spotsSet; }

    /// Null when none was given or it is gone.
    BMWifiScanVCEditSpotsSetSetter *editSpotsSetSetter() const;
    /// The test screen the set goes back to for more recording.
    QObject *editSpotsSetSetterObject() const { return m_editSpotsSetSetter.data(); }
    /// Sets the test screen the set goes back to for more recording.
    void setEditSpotsSetSetterObject(QObject *setter) { m_editSpotsSetSetter = setter; }

    BMGAScreenClass screenNameAndClassForEventTracker() const override;
    void refreshUITexts() override;

    /// The grid's cells.
    QString cellIdentifier() const override { return QStringLiteral("spotsSetCollectionViewCell"); }
    /// The heading's cells.
    QString headerCellIdentifier() const override { return QStringLiteral("spotsSetHeaderCollectionViewCell"); }
    /// Label and speed.
    int numberOfColumns() const override { return 2; }
    /// One row per spot.
    int numberOfRows() const override;
    /// The share of the width of the label's and of the speed's column.
    double columnWidthProportionWithIndex(int index) const override;
    /// A row's height in pixels.
    int rowHeight() const override { return 60; }
    /// The label or the speed of a spot.
    FZAttributedText textForCellWithIndexPath(const Brightmere::IndexPath &indexPath) const override;
    /// The label and speed headings.
    FZAttributedText titleForColumnWithIndex(int index) const override;
    void columnSelected(int column) override;

    /// Cycles the set's order, turns the arrow and reloads.
    void sortButtonTapped();
    /// Hands the set to the test screen (when there is one) and goes back to it.
    void editSpotsSet(QObject *sender = nullptr);

    /// The name of the arrow shown: "arrowUpIcon" or "arrowDownIcon".
    QString sortImageName() const;

    /// The column styles: bold black first line, small grey second line
    /// (italic in column 0); column 1 centred.
    static void setupFirstColumnStyle(FZAttributedText &text);
    /// Gives a speed text the second column's look.
    static void setupSecondColumnStyle(FZAttributedText &text);
    /// Formats a range of text with a font and a colour.
    static void addTextAttributes(FZAttributedText &text, qsizetype start, qsizetype length, const QFont &font,
                                  const QColor &color);

    /// The headings over the grid (null before the screen has loaded).
    QLabel *spotLabel() const;
    /// The set's date.
    QLabel *dateLabel() const;
    /// The sort arrow.
    QLabel *sortImage() const;
    /// The speed heading.
    QLabel *speedLabel() const;
    /// The set's network name.
    QLabel *ssidLabel() const;
    /// The control that continues recording the set on the test screen.
    BMMainButton *continueRecordingButton() const { return m_continueRecordingButton; }

protected:
    void viewDidLoad() override;
    void viewWillAppear(bool animated) override;
    void willReloadData() override;
    bool showsHeaderRow() const override { return true; }
    void configureHeaderCell(FZSpotsSetsHeaderCollectionViewCell *cell, int column) override;

private:
    WifiTestResult::Ptr spotAt(int section) const;

    FZHistoricalResultSpotsSet::Ptr m_spotsSet;
    QPointer<QObject> m_editSpotsSetSetter;
    BMMainButton *m_continueRecordingButton = nullptr;
    // sortedSpots() of the last reload, so building a row does not sort again.
    WifiTestResult::List m_sortedSpots;
};
