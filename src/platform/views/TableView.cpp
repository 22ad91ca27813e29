#include "TableView.h"

#include "TableViewCell.h"
#include "TableViewDataSource.h"

#include <QScrollBar>

// First cut: rows stacked in one column, no swipe or drag handling yet.

namespace Brightmere {

TableView::TableView(QWidget *parent)
    : QScrollArea(parent)
    , m_content(new QWidget)
{
    setFrameShape(QFrame::NoFrame);
    setWidgetResizable(false);
    setWidget(m_content);
    setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
}

TableView::~TableView() = default;

void TableView::setDataSource(TableViewDataSource *dataSource)
{
    m_dataSource = dataSource;
}

void TableView::reloadData()
{
    for (TableViewCell *row : std::as_const(m_rows)) {
        row->hide();
        m_reusePool.append(row);
    }
    m_rows.clear();
    const int count = numberOfRowsInSection(0);
    int y = 0;
    const int width = viewport()->width();
    for (int i = 0; i < count; ++i) {
        const IndexPath index(i, 0);
        TableViewCell *row = m_dataSource->cellForRowAtIndexPath(this, index);
        if (!row)
            continue;
        m_reusePool.removeAll(row);
        row->setParent(m_content);
        const int height = int(m_dataSource->heightForRowAtIndexPath(this, index));
        row->setGeometry(0, y, width, height);
        row->show();
        m_rows.append(row);
        y += height;
    }
    m_content->resize(width, y);
}

int TableView::numberOfSections() const
{
    return m_dataSource ? m_dataSource->numberOfSectionsInTableView(const_cast<TableView *>(this)) : 0;
}

int TableView::numberOfRowsInSection(int section) const
{
    return m_dataSource ? m_dataSource->numberOfRowsInSection(const_cast<TableView *>(this), section) : 0;
}

TableViewCell *TableView::dequeueReusableCellWithIdentifier(const QString &identifier)
{
    for (int i = 0; i < m_reusePool.size(); ++i) {
        TableViewCell *row = m_reusePool.at(i);
        if (row && row->reuseIdentifier() == identifier) {
            m_reusePool.removeAt(i);
            return row;
        }
    }
    return nullptr;
}

TableViewCell *TableView::cellForRowAtIndexPath(const IndexPath &indexPath) const
{
    if (indexPath.section() != 0 || indexPath.row() < 0 || indexPath.row() >= m_rows.size())
        return nullptr;
    return m_rows.at(indexPath.row());
}

IndexPath TableView::indexPathForCell(const TableViewCell *cell) const
{
    const int row = m_rows.indexOf(const_cast<TableViewCell *>(cell));
    return row < 0 ? IndexPath() : IndexPath(row, 0);
}

QList<TableViewCell *> TableView::visibleCells() const
{
    return m_rows;
}

void TableView::setRowHeight(double height)
{
    m_rowHeight = height;
}

QPoint TableView::contentOffset() const
{
    return QPoint(horizontalScrollBar()->value(), verticalScrollBar()->value());
}

void TableView::setContentOffset(const QPoint &offset, bool animated)
{
    Q_UNUSED(animated)
    verticalScrollBar()->setValue(offset.y());
}

void TableView::scrollRectToVisible(const QRect &rect, bool animated)
{
    Q_UNUSED(animated)
    ensureVisible(rect.center().x(), rect.center().y(), rect.width() / 2, rect.height() / 2);
}

void TableView::scrollToRowAtIndexPath(const IndexPath &indexPath, ScrollPosition position, bool animated)
{
    Q_UNUSED(position)
    if (TableViewCell *row = cellForRowAtIndexPath(indexPath))
        setContentOffset(QPoint(0, row->y()), animated);
}

void TableView::beginUpdates()
{
    ++m_updateDepth;
}

void TableView::endUpdates()
{
    if (m_updateDepth > 0)
        --m_updateDepth;
}

void TableView::deleteRowsAtIndexPaths(const QList<IndexPath> &indexPaths, RowAnimation animation)
{
    Q_UNUSED(animation)
    Q_UNUSED(indexPaths)
    reloadData();
}

void TableView::setEditing(bool editing, bool animated)
{
    m_editing = editing;
    for (TableViewCell *row : std::as_const(m_rows))
        row->setEditing(editing, animated);
}

TableView *TableView::enclosingTableView(const QWidget *widget)
{
    for (QWidget *w = widget ? widget->parentWidget() : nullptr; w; w = w->parentWidget()) {
        if (auto *table = qobject_cast<TableView *>(w))
            return table;
    }
    return nullptr;
}

} // namespace Brightmere
