#include "TableView.h"

#include "DragTracker.h"
#include "ScrollAnimator.h"
#include "TableViewCell.h"
#include "TableViewDataSource.h"
#include "core/BMLogger.h"

#include <QGraphicsOpacityEffect>
#include <QLabel>
#include <QPropertyAnimation>
#include <QResizeEvent>
#include <QScrollBar>

#include <algorithm>
#include <cmath>

namespace Brightmere {

namespace {

const QString kModule = QStringLiteral("TableView");
constexpr int kFadeMilliseconds = 200;
// Rows beyond this many waiting for reuse are deleted: a data source that
// makes new rows instead of dequeuing them would otherwise pile them up.
constexpr int kReusePoolLimit = 64;

} // namespace

TableView::TableView(QWidget *parent)
    : QScrollArea(parent)
    , m_content(new QWidget)
{
    setFrameShape(QFrame::NoFrame);
    // A container, not a control: a click on a row must not take the
    // keyboard focus from the field being typed in.
    setFocusPolicy(Qt::NoFocus);
    setWidgetResizable(false);
    setWidget(m_content);
    setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    setVerticalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    m_content->resize(viewport()->width(), 0);

    m_animator = new ScrollAnimator(this);
    m_tracker = new DragTracker(viewport());
    connect(m_tracker, &DragTracker::pressed, this, &TableView::onPressed);
    connect(m_tracker, &DragTracker::dragStarted, this, &TableView::onDragStarted);
    connect(m_tracker, &DragTracker::dragMoved, this, &TableView::onDragMoved);
    connect(m_tracker, &DragTracker::dragFinished, this, &TableView::onDragFinished);
    connect(m_tracker, &DragTracker::clicked, this, &TableView::onClicked);
}

TableView::~TableView() = default;

void TableView::setDataSource(TableViewDataSource *dataSource)
{
    m_dataSource = dataSource;
}

void TableView::reloadData()
{
    for (TableViewCell *row : std::as_const(m_rows))
        retireRow(row);
    m_rows.clear();
    m_heights.clear();
    m_layoutPending = false;

    const int count = numberOfRowsInSection(0);
    for (int i = 0; i < count; ++i) {
        const IndexPath index(i, 0);
        TableViewCell *row = makeRow(index);
        m_rows.append(row);
        m_heights.append(int(askHeight(index)));
        adoptRow(row);
    }
    // Rows waiting for reuse beyond the limit go for good.
    while (m_reusePool.size() > kReusePoolLimit) {
        if (TableViewCell *row = m_reusePool.takeFirst())
            row->deleteLater();
    }
    layoutRows();
}

TableViewCell *TableView::makeRow(const IndexPath &indexPath)
{
    TableViewCell *row = m_dataSource->cellForRowAtIndexPath(this, indexPath);
    if (!row) {
        BMLogger::sharedInstance().logFromModule(kModule, 3, "the data source gave no row for row %d; an empty row "
                                                             "stands in",
                                                 indexPath.row());
        return new TableViewCell(m_content);
    }
    if (m_rows.contains(row)) {
        BMLogger::sharedInstance().logFromModule(kModule, 3, "the data source gave row %d a row it already shows; "
                                                             "an empty row stands in",
                                                 indexPath.row());
        return new TableViewCell(m_content);
    }
    m_reusePool.removeAll(row);
    return row;
}

void TableView::adoptRow(TableViewCell *row)
{
    if (row->parentWidget() != m_content)
        row->setParent(m_content);
    if (row->isEditing() != m_editing)
        row->setEditing(m_editing, false);
    connect(row, &TableViewCell::deleteButtonClicked, this, &TableView::onDeleteButtonClicked, Qt::UniqueConnection);
    row->show();
}

void TableView::retireRow(TableViewCell *row)
{
    if (!row)
        return;
    row->hide();
    if (row->isEditing())
        row->setEditing(false, false);
    if (!m_reusePool.contains(row))
        m_reusePool.append(row);
}

double TableView::askHeight(const IndexPath &indexPath)
{
    const double height = m_dataSource->heightForRowAtIndexPath(this, indexPath);
    if (!std::isfinite(height) || height < 0.0) {
        BMLogger::sharedInstance().logFromModule(kModule, 3, "row %d has no usable height (%@); %@ is used",
                                                 indexPath.row(), height, m_rowHeight);
        return m_rowHeight;
    }
    return std::round(height);
}

void TableView::layoutRows()
{
    const int width = viewport()->width();
    int y = 0;
    for (int i = 0; i < m_rows.size(); ++i) {
        m_rows.at(i)->setGeometry(0, y, width, m_heights.at(i));
        y += m_heights.at(i);
    }
    m_content->resize(width, y);
}

int TableView::numberOfSections() const
{
    return m_dataSource ? m_dataSource->numberOfSectionsInTableView(const_cast<TableView *>(this)) : 0;
}

int TableView::numberOfRowsInSection(int section) const
{
    if (!m_dataSource)
        return 0;
    const int count = m_dataSource->numberOfRowsInSection(const_cast<TableView *>(this), section);
    if (count < 0) {
        BMLogger::sharedInstance().logFromModule(kModule, 3, "the data source counts %d rows in section %d; 0 is "
                                                             "used",
                                                 count, section);
        return 0;
    }
    return count;
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
    m_reusePool.removeAll(nullptr);
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
    const QRect visible(contentOffset(), viewport()->size());
    QList<TableViewCell *> rows;
    for (TableViewCell *row : m_rows) {
        if (row->geometry().intersects(visible))
            rows.append(row);
    }
    return rows;
}

IndexPath TableView::indexPathForRowAtPoint(const QPoint &viewportPoint) const
{
    const QPoint point = viewportPoint + contentOffset();
    for (int i = 0; i < m_rows.size(); ++i) {
        if (m_rows.at(i)->geometry().contains(point))
            return IndexPath(i, 0);
    }
    return {};
}

void TableView::setRowHeight(double height)
{
    if (!std::isfinite(height) || height < 0.0) {
        BMLogger::sharedInstance().logFromModule(kModule, 3, "row height %@ is not usable; %@ is kept", height,
                                                 m_rowHeight);
        return;
    }
    m_rowHeight = height;
}

QPoint TableView::contentOffset() const
{
    return m_animator->offset();
}

void TableView::setContentOffset(const QPoint &offset, bool animated)
{
    m_animator->scrollTo(offset, animated);
}

void TableView::scrollRectToVisible(const QRect &rect, bool animated)
{
    m_animator->scrollTo(m_animator->offsetShowing(rect), animated);
}

void TableView::scrollToRowAtIndexPath(const IndexPath &indexPath, ScrollPosition position, bool animated)
{
    const TableViewCell *row = cellForRowAtIndexPath(indexPath);
    if (!row) {
        BMLogger::sharedInstance().logFromModule(kModule, 2, "no row %d in section %d to scroll to", indexPath.row(),
                                                 indexPath.section());
        return;
    }
    const QRect frame = row->geometry();
    const int viewHeight = viewport()->height();
    switch (position) {
    case ScrollPosition::Top:
        setContentOffset(QPoint(0, frame.y()), animated);
        break;
    case ScrollPosition::Middle:
        setContentOffset(QPoint(0, frame.y() + frame.height() / 2 - viewHeight / 2), animated);
        break;
    case ScrollPosition::Bottom:
        setContentOffset(QPoint(0, frame.y() + frame.height() - viewHeight), animated);
        break;
    case ScrollPosition::None:
        scrollRectToVisible(frame, animated);
        break;
    }
}

int TableView::contentHeight() const
{
    return m_content->height();
}

void TableView::beginUpdates()
{
    ++m_updateDepth;
}

void TableView::endUpdates()
{
    if (m_updateDepth == 0) {
        BMLogger::sharedInstance().log(kModule, 2, QStringLiteral("endUpdates without beginUpdates is ignored"));
        return;
    }
    if (--m_updateDepth == 0 && m_layoutPending)
        finishUpdates();
}

void TableView::deleteRowsAtIndexPaths(const QList<IndexPath> &indexPaths, RowAnimation animation)
{
    QList<int> doomed;
    for (const IndexPath &index : indexPaths) {
        if (index.section() != 0 || index.row() < 0 || index.row() >= m_rows.size() || doomed.contains(index.row())) {
            BMLogger::sharedInstance().logFromModule(kModule, 3, "cannot delete row %d of section %d: the table has "
                                                                 "%d rows; ignored",
                                                     index.row(), index.section(), m_rows.size());
            continue;
        }
        doomed.append(index.row());
    }
    // From the bottom up, so the indexes still to come stay right.
    std::sort(doomed.begin(), doomed.end(), std::greater<>());
    for (const int i : std::as_const(doomed)) {
        TableViewCell *row = m_rows.takeAt(i);
        m_heights.removeAt(i);
        if (animation != RowAnimation::None)
            fadeOut(row);
        retireRow(row);
    }
    m_layoutPending = true;
    if (m_updateDepth == 0)
        finishUpdates();
}

void TableView::finishUpdates()
{
    m_layoutPending = false;
    const int expected = numberOfRowsInSection(0);
    if (expected != m_rows.size()) {
        BMLogger::sharedInstance().logFromModule(kModule, 3, "the data source counts %d rows where the table has "
                                                             "%d after the update; reloading",
                                                 expected, m_rows.size());
        reloadData();
        return;
    }
    layoutRows();
}

void TableView::fadeOut(TableViewCell *row)
{
    if (!row->isVisible() || row->width() <= 0 || row->height() <= 0)
        return;
    // A picture of the row fades where it was; the row itself is free for
    // reuse at once.
    auto *ghost = new QLabel(m_content);
    ghost->setPixmap(row->grab());
    ghost->setGeometry(row->geometry());
    ghost->setAttribute(Qt::WA_TransparentForMouseEvents);
    auto *effect = new QGraphicsOpacityEffect(ghost);
    ghost->setGraphicsEffect(effect);
    ghost->show();
    ghost->raise();
    auto *fade = new QPropertyAnimation(effect, "opacity", ghost);
    fade->setDuration(kFadeMilliseconds);
    fade->setStartValue(1.0);
    fade->setEndValue(0.0);
    connect(fade, &QPropertyAnimation::finished, ghost, &QObject::deleteLater);
    fade->start();
}

void TableView::setEditing(bool editing, bool animated)
{
    m_editing = editing;
    for (TableViewCell *row : std::as_const(m_rows)) {
        if (row->isEditing() != editing)
            row->setEditing(editing, animated);
    }
}

TableView *TableView::enclosingTableView(const QWidget *widget)
{
    for (QWidget *w = widget ? widget->parentWidget() : nullptr; w; w = w->parentWidget()) {
        if (auto *table = qobject_cast<TableView *>(w))
            return table;
    }
    return nullptr;
}

void TableView::resizeEvent(QResizeEvent *event)
{
    QScrollArea::resizeEvent(event);
    layoutRows();
}

void TableView::onPressed(const QPoint &position)
{
    m_pressRow.clear();
    m_pressEndedEditing = false;
    m_swiped = false;
    const IndexPath index = indexPathForRowAtPoint(position);
    TableViewCell *pressed = cellForRowAtIndexPath(index);
    m_pressRow = pressed;
    // A press anywhere but on a delete strip puts rows out of editing, as
    // tapping beside a revealed delete button does.
    const bool onStrip = pressed && pressed->isEditing() && pressed->deleteStrip()
                         && m_tracker->pressedWidget() == pressed->deleteStrip();
    if (onStrip)
        return;
    for (TableViewCell *row : std::as_const(m_rows)) {
        if (row->isEditing()) {
            row->setEditing(false, true);
            m_pressEndedEditing = true;
        }
    }
    m_animator->stop();
}

void TableView::onDragStarted(const QPoint &distance)
{
    if (std::abs(distance.x()) > std::abs(distance.y())) {
        if (distance.x() < 0) {
            m_dragMode = DragMode::Swipe;
            return;
        }
        // To the right: the horizontal pan, if its delegate lets it begin;
        // else the drag is nobody's.
        m_dragMode = DragMode::None;
        if (m_horizontalPanShouldBegin && m_horizontalPanShouldBegin(distance)) {
            m_dragMode = DragMode::HorizontalPan;
            m_panState = GestureStateBegan;
            Q_EMIT horizontalPanBegan(distance);
        }
        return;
    }
    m_dragMode = DragMode::Scroll;
    m_dragStartOffset = contentOffset();
    m_panState = GestureStateBegan;
}

void TableView::onDragMoved(const QPoint &distance)
{
    if (m_dragMode == DragMode::Swipe) {
        swipeIfFarEnough(distance);
        return;
    }
    if (m_dragMode == DragMode::HorizontalPan)
        m_panState = GestureStateChanged;
    if (m_dragMode != DragMode::Scroll)
        return;
    m_animator->setOffset(m_animator->clamped(QPoint(m_dragStartOffset.x(), m_dragStartOffset.y() - distance.y())));
    m_panState = GestureStateChanged;
}

void TableView::onDragFinished(const QPoint &distance)
{
    if (m_dragMode == DragMode::Swipe)
        swipeIfFarEnough(distance);
    else if (m_dragMode == DragMode::HorizontalPan)
        Q_EMIT horizontalPanEnded(distance);
    m_dragMode = DragMode::None;
    m_panState = GestureStatePossible;
    m_pressRow.clear();
}

void TableView::swipeIfFarEnough(const QPoint &distance)
{
    if (m_swiped || m_pressEndedEditing || distance.x() > -kSwipeDistance || !m_pressRow || !m_dataSource)
        return;
    const IndexPath index = indexPathForCell(m_pressRow);
    if (!index.isValid())
        return;
    m_swiped = true;
    if (!m_pressRow->isEditing() && m_dataSource->canEditRowAtIndexPath(this, index))
        m_pressRow->setEditing(true, true);
}

void TableView::onClicked(const QPoint &position)
{
    TableViewCell *row = m_pressRow;
    m_pressRow.clear();
    // Only a click the row's own widgets let go of selects it: a click on a
    // text field or a button in the row is theirs.
    if (!m_allowsSelection || m_pressEndedEditing || !row || !m_tracker->pressReached(row) || !m_dataSource)
        return;
    const IndexPath index = indexPathForCell(row);
    if (index.isValid() && indexPathForRowAtPoint(position) == index)
        m_dataSource->didSelectRowAtIndexPath(this, index);
}

void TableView::onDeleteButtonClicked()
{
    const auto *row = qobject_cast<const TableViewCell *>(sender());
    const IndexPath index = indexPathForCell(row);
    if (!index.isValid() || !m_dataSource)
        return;
    m_dataSource->commitEditingStyle(this, TableViewDataSource::EditingStyle::Delete, index);
}

} // namespace Brightmere
