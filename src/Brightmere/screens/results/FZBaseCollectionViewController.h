#pragma once

#include <Brightmere/SDKUIExport.h>

#include "FZAttributedText.h"
#include "FZSpotsSetsHeaderCollectionViewCellDelegate.h"
#include <Brightmere/core/WifiTestResult.h>
#include <Brightmere/platform/views/IndexPath.h>
#include <Brightmere/ui/BMSDKUIBaseViewController.h>

#include <QFont>
#include <QList>

class BMBorderedView;
class FZSpotsSetsCollectionViewCell;
class FZSpotsSetsHeaderCollectionViewCell;
class QScrollArea;
class QVBoxLayout;

/// The grid the saved-results screens share: one grid row per section, one
/// cell per column, the columns sized by the proportions a subclass gives.
/// The widths are computed once, the first time the grid has a width, and
/// kept after (a later resize keeps them); the last column takes what the
/// others leave, so the columns always add up to that first width. Rows are
/// shaded alternately (system colour 3 for even rows, 4 for odd ones) and
/// every cell text is painted grey over the column styles, whose fonts stay.
/// A subclass may put a row of tappable heading cells above the grid.
///
/// Cells are addressed as IndexPath(item, section): section = grid row,
/// row() = column.
///
/// With text larger than the system's the widths follow the text instead:
/// a column gets at least the room of its widest word (a spot's name, an
/// address, its heading), the columns share the rest by their proportions,
/// and past the grid's width it scrolls sideways, the headings with it.
///
/// Tab reaches the grid's current cell (one tab stop for the whole grid) and
/// the arrow keys move it, Home and End along its row; it shows the focus
/// ring and is scrolled into sight. A reader hears it as a table cell named
/// by its row, its column and its text.
class BRIGHTMERE_SDKUI_EXPORT FZBaseCollectionViewController : public BMSDKUIBaseViewController,
                                                               protected FZSpotsSetsHeaderCollectionViewCellDelegate
{
    Q_OBJECT

public:
    /// A grid screen; subclasses give its columns, rows and texts.
    explicit FZBaseCollectionViewController(QWidget *parent = nullptr);

    /// The scrolling area of the grid.
    QScrollArea *collectionView() const { return m_collectionView; }
    /// The bordered frame around the grid.
    BMBorderedView *borderedView() const { return m_borderedView; }
    /// The strip of heading cells above the grid (hidden when there are none).
    QWidget *headerRow() const { return m_headerRow; }

    /// 0 until the widths are computed.
    double totalWidth() const { return m_totalWidth; }
    /// The columns' widths in pixels, from the proportions and the grid's width.
    QList<double> columnWidths() const { return m_columnWidths; }

    /// The name of the grid's cells.
    virtual QString cellIdentifier() const = 0;
    /// The name of the heading's cells; cellIdentifier() unless given.
    virtual QString headerCellIdentifier() const { return cellIdentifier(); }
    /// How many columns.
    virtual int numberOfColumns() const = 0;
    /// How many rows, without the heading.
    virtual int numberOfRows() const = 0;
    /// The share of the width a column takes (all adding up to 1).
    virtual double columnWidthProportionWithIndex(int index) const = 0;
    /// A row's height in pixels.
    virtual int rowHeight() const = 0;
    /// The text of a cell.
    virtual FZAttributedText textForCellWithIndexPath(const Brightmere::IndexPath &indexPath) const = 0;
    /// The heading of a column.
    virtual FZAttributedText titleForColumnWithIndex(int index) const = 0;
    /// A tap on a heading cell; reloads the grid.
    virtual void columnSelected(int column);

    /// Builds every cell again from the subclass's answers, and refreshes the
    /// heading cells' titles and icons.
    void reloadData();

    /// The size of one cell; the first call with a laid-out grid fixes the
    /// column widths.
    QSizeF sizeForItemAtIndexPath(const Brightmere::IndexPath &indexPath);

    /// The cell at a grid row and column, or null.
    FZSpotsSetsCollectionViewCell *cellAt(int section, int column) const;
    /// How many cells are built now.
    int visibleCellCount() const { return int(m_cells.size()); }
    /// The cell the keyboard is on (kept across reloads); null without cells.
    FZSpotsSetsCollectionViewCell *currentCell() const;
    /// The heading cells, one per column, when the subclass shows them.
    QList<FZSpotsSetsHeaderCollectionViewCell *> headerCells() const { return m_headerCells; }

    /// The background of a grid row: system colour 4 when odd, 3 when even.
    static QColor backgroundColorForSection(int section);
    /// The grey every cell text is painted in.
    static QColor cellTextColor();
    /// The kit's face at a size in points (never under the kit's smallest
    /// text), weight and slant.
    static QFont systemFont(double points, QFont::Weight weight, bool italic = false);
    /// When a spot was measured (its seconds since 1 January 2001), as the
    /// grids show it.
    static QString dateTextForSpot(const WifiTestResult &spot);

protected:
    void viewDidLoad() override;
    void viewWillAppear(bool animated) override;
    /// Draws and resizes what the grid watches.
    bool eventFilter(QObject *watched, QEvent *event) override;
    /// A heading was tapped; nothing unless a screen sorts by it.
    void viewCellTouchUpInside(FZSpotsSetsHeaderCollectionViewCell *cell) override;

    /// Runs first in every reloadData, before any cell is asked for.
    virtual void willReloadData() {}
    /// Whether a row of heading cells sits above the grid; none by default.
    virtual bool showsHeaderRow() const { return false; }
    /// The heading's height in pixels.
    virtual int headerRowHeight() const { return 44; }
    /// Lets a subclass fill a heading cell after its title was set from
    /// titleForColumnWithIndex (icon, detail, or a title of its own).
    virtual void configureHeaderCell(FZSpotsSetsHeaderCollectionViewCell *cell, int column);

    /// The page layout: the subclass adds its widgets above (index 0) or
    /// below the bordered grid.
    QVBoxLayout *pageLayout() const { return m_pageLayout; }

private:
    void layoutCells();
    void buildHeaderCells();
    void refreshHeaderCells();
    void layoutHeaderCells();
    double columnX(int column) const;
    void fitColumnsToText();
    void chainCells(bool refocus);
    void moveCurrent(int sectionStep, int columnStep, bool toRowEnd = false);
    QString accessibleCellName(int section, int column) const;

    QVBoxLayout *m_pageLayout = nullptr;
    BMBorderedView *m_borderedView = nullptr;
    QWidget *m_headerRow = nullptr;
    QScrollArea *m_collectionView = nullptr;
    QWidget *m_content = nullptr;
    QList<FZSpotsSetsCollectionViewCell *> m_cells;
    QList<FZSpotsSetsHeaderCollectionViewCell *> m_headerCells;
    double m_totalWidth = 0.0;
    QList<double> m_columnWidths;
    int m_currentSection = 0;
    int m_currentColumn = 0;
};
