#pragma once

#include "IndexPath.h"

#include <QList>
#include <QPointer>
#include <QScrollArea>

namespace Brightmere {

class TableViewCell;
class TableViewDataSource;

// A vertical list of row widgets (TableViewCell), filled by a data source,
// that scrolls by dragging (mouse or touch) and hands rows out again for
// reuse. A swipe to the left on a row whose data source allows editing turns
// that row's editing on. Rows are real widgets, so they can hold text
// fields and buttons.
class TableView : public QScrollArea
{
    Q_OBJECT

public:
    enum class RowAnimation { None, Fade, Automatic };
    enum class ScrollPosition { None, Top, Middle, Bottom };
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

    // Asks the data source for every row again. Rows shown before go back to
    // the reuse pool first.
    void reloadData();
    int numberOfSections() const;
    int numberOfRowsInSection(int section) const;

    // A row taken out of the table earlier with this identifier, or null.
    TableViewCell *dequeueReusableCellWithIdentifier(const QString &identifier);
    // The row at that index, or null when there is none.
    TableViewCell *cellForRowAtIndexPath(const IndexPath &indexPath) const;
    // The index of a row of this table; an invalid index for anything else.
    IndexPath indexPathForCell(const TableViewCell *cell) const;
    QList<TableViewCell *> visibleCells() const;

    double rowHeight() const { return m_rowHeight; }
    void setRowHeight(double height);

    QPoint contentOffset() const;
    void setContentOffset(const QPoint &offset, bool animated);
    void scrollRectToVisible(const QRect &rect, bool animated);
    void scrollToRowAtIndexPath(const IndexPath &indexPath, ScrollPosition position, bool animated);

    // Changes between begin and end are laid out together. Deleting rows
    // takes them out at once (the data source must already have dropped
    // them); the animation only concerns their look as they go.
    void beginUpdates();
    void endUpdates();
    void deleteRowsAtIndexPaths(const QList<IndexPath> &indexPaths, RowAnimation animation);

    bool isEditing() const { return m_editing; }
    // Turns editing on or off for the table and every row.
    void setEditing(bool editing, bool animated);

    bool allowsSelection() const { return m_allowsSelection; }
    void setAllowsSelection(bool allows) { m_allowsSelection = allows; }
    bool delaysContentTouches() const { return m_delaysContentTouches; }
    void setDelaysContentTouches(bool delays) { m_delaysContentTouches = delays; }
    bool allowsMultipleSelectionDuringEditing() const { return m_allowsMultipleSelectionDuringEditing; }
    void setAllowsMultipleSelectionDuringEditing(bool allows) { m_allowsMultipleSelectionDuringEditing = allows; }

    GestureState panGestureRecognizerState() const { return m_panState; }
    // For input handling and tests: the drag gesture's state as it moves.
    void setPanGestureRecognizerState(GestureState state) { m_panState = state; }

    // The table a widget sits in: the nearest enclosing TableView, or null.
    static TableView *enclosingTableView(const QWidget *widget);

private:
    TableViewDataSource *m_dataSource = nullptr;
    QWidget *m_content = nullptr;
    QList<TableViewCell *> m_rows;
    QList<QPointer<TableViewCell>> m_reusePool;
    double m_rowHeight = 44.0;
    int m_updateDepth = 0;
    bool m_editing = false;
    bool m_allowsSelection = true;
    bool m_delaysContentTouches = true;
    bool m_allowsMultipleSelectionDuringEditing = false;
    GestureState m_panState = GestureStatePossible;
};

} // namespace Brightmere
