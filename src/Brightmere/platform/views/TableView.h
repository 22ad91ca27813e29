#pragma once

#include "IndexPath.h"

#include <QList>
#include <QMap>
#include <QPointer>
#include <QScrollArea>

#include <functional>

namespace Brightmere {

class DragTracker;
class ScrollAnimator;
class TableViewCell;
class TableViewDataSource;

// A vertical list of row widgets (TableViewCell), filled by a data source,
// that scrolls by dragging (mouse or touch) and hands rows out again for
// reuse. Row widgets exist only for the rows in view (and a row holding the
// keyboard focus or a press), so a list of thousands costs what a screenful
// does; the data source is asked for a row as it comes into view. A swipe to the left on a row whose data source allows editing turns
// that row's editing on. A drag to the right is the table's horizontal pan,
// which begins only where its delegate (horizontalPanShouldBegin) allows it;
// either way it is no press on the row's content. Rows are real widgets, so
// they can hold text fields and buttons. One section (0); rows span the
// viewport's width.
class TableView : public QScrollArea
{
    Q_OBJECT

public:
    enum class RowAnimation { None, Fade, Automatic };
    enum class ScrollPosition { None, Top, Middle, Bottom };
    // How far a drag to the left on a row must go to turn its editing on.
    static constexpr int kSwipeDistance = 40;
    // How long a press on a row's content must stay put before the content
    // takes it, when the table delays content touches: a press that moves
    // past the drag distance sooner is the table's (a scroll or a swipe).
    static constexpr double kContentTouchDelaySeconds = 0.15;
    // The state of the table's own drag (pan) gesture: anything but
    // GestureStatePossible means the user is scrolling the list.
    enum GestureState {
        GestureStatePossible = 0,
        GestureStateBegan,
        GestureStateChanged,
        GestureStateEnded,
        GestureStateCancelled,
        GestureStateFailed,
    };

    explicit TableView(QWidget *parent = nullptr);
    ~TableView() override;

    // Not owned; may be null (an empty table).
    void setDataSource(TableViewDataSource *dataSource);
    TableViewDataSource *dataSource() const { return m_dataSource; }

    // Asks the data source for the row count and heights again, and for the
    // rows in view. Rows shown before go back to the reuse pool first.
    void reloadData();
    int numberOfSections() const;
    int numberOfRowsInSection(int section) const;

    // A row taken out of the table earlier with this identifier, or null.
    TableViewCell *dequeueReusableCellWithIdentifier(const QString &identifier);
    // The row at that index while it has a widget (it is in view, or holds
    // the focus or a press); null otherwise.
    TableViewCell *cellForRowAtIndexPath(const IndexPath &indexPath) const;
    // Where the row at that index is, in content coordinates, in view or
    // not; an empty rectangle when there is no such row.
    QRect rectForRowAtIndexPath(const IndexPath &indexPath) const;
    // The index of a row of this table; an invalid index for anything else.
    IndexPath indexPathForCell(const TableViewCell *cell) const;
    // The row a widget of this table belongs to (the row itself or a part
    // of it); -1 for anything else.
    int rowOfWidget(const QWidget *widget) const;
    // The rows at least partly inside the viewport, top to bottom.
    QList<TableViewCell *> visibleCells() const;
    // The row under a point of the viewport; invalid where there is none.
    IndexPath indexPathForRowAtPoint(const QPoint &viewportPoint) const;

    double rowHeight() const { return m_rowHeight; }
    void setRowHeight(double height);

    // Offsets and rectangles are in the coordinates of the rows' content:
    // row 0 starts at y 0. Targets are clamped to what can be scrolled;
    // animated moves take ScrollAnimator::duration().
    QPoint contentOffset() const;
    void setContentOffset(const QPoint &offset, bool animated);
    // Scrolls as little as makes the rectangle visible.
    void scrollRectToVisible(const QRect &rect, bool animated);
    void scrollToRowAtIndexPath(const IndexPath &indexPath, ScrollPosition position, bool animated);
    // The height of all rows together.
    int contentHeight() const;

    // Changes between begin and end are laid out together. Deleting rows
    // takes them out of the table at once (the data source must have dropped
    // them by the end of the updates); the animation only concerns their
    // look as they go. When the data source's count then disagrees with the
    // rows left, the disagreement is logged and the table reloads.
    void beginUpdates();
    void endUpdates();
    void deleteRowsAtIndexPaths(const QList<IndexPath> &indexPaths, RowAnimation animation);
    // New rows at these indexes (as they are after the insertion); the data
    // source must already count them. Rows below move down; only rows that
    // come into view are asked for.
    void insertRowsAtIndexPaths(const QList<IndexPath> &indexPaths, RowAnimation animation);
    // Asks the data source again for these rows (their heights, and the rows
    // themselves where they are in view).
    void reloadRowsAtIndexPaths(const QList<IndexPath> &indexPaths, RowAnimation animation);

    bool isEditing() const { return m_editing; }
    // Turns editing on or off for the table and every row.
    void setEditing(bool editing, bool animated);

    bool allowsSelection() const { return m_allowsSelection; }
    void setAllowsSelection(bool allows) { m_allowsSelection = allows; }
    bool delaysContentTouches() const { return m_delaysContentTouches; }
    void setDelaysContentTouches(bool delays) { m_delaysContentTouches = delays; }
    bool allowsMultipleSelectionDuringEditing() const { return m_allowsMultipleSelectionDuringEditing; }
    void setAllowsMultipleSelectionDuringEditing(bool allows) { m_allowsMultipleSelectionDuringEditing = allows; }

    // Asked when a drag to the right starts, with the drag so far; the pan
    // begins only on true. Without a delegate it never begins.
    using PanShouldBegin = std::function<bool(const QPoint &translation)>;
    void setHorizontalPanShouldBegin(PanShouldBegin shouldBegin) { m_horizontalPanShouldBegin = std::move(shouldBegin); }

    GestureState panGestureRecognizerState() const { return m_panState; }
    // For input handling and tests: the drag gesture's state as it moves.
    void setPanGestureRecognizerState(GestureState state) { m_panState = state; }

    // The table a widget sits in: the nearest enclosing TableView, or null.
    static TableView *enclosingTableView(const QWidget *widget);

Q_SIGNALS:
    // Row widgets were made, dropped or moved: the rows in view changed.
    void visibleRowsChanged();
    // The horizontal pan, with its translation from where it began.
    void horizontalPanBegan(const QPoint &translation);
    void horizontalPanEnded(const QPoint &translation);

protected:
    void resizeEvent(QResizeEvent *event) override;
    // Keys the focused row left alone: Delete does what a swipe to the left
    // does (the row's delete strip, which then has the focus), Escape puts
    // the strip away again, and Space or Enter on a focusable row selects
    // it as a click does.
    void keyPressEvent(QKeyEvent *event) override;

private:
    enum class DragMode { None, Scroll, Swipe, HorizontalPan };

    TableViewCell *makeRow(const IndexPath &indexPath);
    void adoptRow(TableViewCell *row);
    void retireRow(TableViewCell *row);
    double askHeight(const IndexPath &indexPath);
    bool isValidRow(const IndexPath &indexPath) const;
    // The row whose span holds the content y (clamped to the rows).
    int rowAtContentY(int y) const;
    void updateContentHeight();
    // Makes widgets for the rows in view, retires the others and puts each
    // where it belongs.
    void layoutRows();
    void shiftLiveRows(int from, int by);
    void finishUpdates();
    void fadeOut(TableViewCell *row);
    void swipeIfFarEnough(const QPoint &distance);
    void onPressed(const QPoint &position);
    void onDragStarted(const QPoint &distance);
    void onDragMoved(const QPoint &distance);
    void onDragFinished(const QPoint &distance);
    void onClicked(const QPoint &position);
    void onDeleteButtonClicked();

    TableViewDataSource *m_dataSource = nullptr;
    QWidget *m_content = nullptr;
    // The row widgets there are, by row.
    QMap<int, TableViewCell *> m_live;
    QList<int> m_heights;
    // Where each row starts; one more entry than rows, the last the total.
    QList<int> m_tops;
    bool m_layingOut = false;
    QList<QPointer<TableViewCell>> m_reusePool;
    DragTracker *m_tracker = nullptr;
    ScrollAnimator *m_animator = nullptr;
    DragMode m_dragMode = DragMode::None;
    QPoint m_dragStartOffset;
    QPointer<TableViewCell> m_pressRow;
    bool m_pressEndedEditing = false;
    bool m_swiped = false;
    bool m_layoutPending = false;
    double m_rowHeight = 44.0;
    int m_updateDepth = 0;
    bool m_editing = false;
    bool m_allowsSelection = true;
    bool m_delaysContentTouches = true;
    bool m_allowsMultipleSelectionDuringEditing = false;
    GestureState m_panState = GestureStatePossible;
    PanShouldBegin m_horizontalPanShouldBegin;
};

} // namespace Brightmere
