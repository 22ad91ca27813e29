#include "TableView.h"

#include "DragTracker.h"
#include "ScrollAnimator.h"
#include "TableViewCell.h"
#include "TableViewDataSource.h"
#include <Brightmere/core/BMLogger.h>

#include <QAbstractButton>
#include <QApplication>
#include <QGraphicsOpacityEffect>
#include <QKeyEvent>
#include <QLabel>
#include <QPropertyAnimation>
#include <QResizeEvent>
#include <QScrollBar>

#include <algorithm>
#include <cmath>
#include <utility>

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
    connect(verticalScrollBar(), &QScrollBar::valueChanged, this, &TableView::layoutRows);
}

TableView::~TableView() = default;

void TableView::setDataSource(TableViewDataSource *dataSource)
{
    m_dataSource = dataSource;
}

void TableView::reloadData()
{
    for (TableViewCell *row : std::as_const(m_live))
        retireRow(row);
    m_live.clear();
    m_layoutPending = false;

    const int count = numberOfRowsInSection(0);
    m_heights.clear();
    m_heights.reserve(count);
    for (int i = 0; i < count; ++i)
        m_heights.append(int(askHeight(IndexPath(i, 0))));
    updateContentHeight();
    layoutRows();
    // Rows waiting for reuse beyond the limit go for good.
    while (m_reusePool.size() > kReusePoolLimit) {
        if (TableViewCell *row = m_reusePool.takeFirst())
            row->deleteLater();
    }
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
    if (std::find(m_live.cbegin(), m_live.cend(), row) != m_live.cend()) {
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

bool TableView::isValidRow(const IndexPath &indexPath) const
{
    return indexPath.section() == 0 && indexPath.row() >= 0 && indexPath.row() < m_heights.size();
}

int TableView::rowAtContentY(int y) const
{
    // m_tops[0] is 0: the last start at or above y.
    const auto after = std::upper_bound(m_tops.cbegin(), m_tops.cend() - 1, y);
    return qBound(0, int(after - m_tops.cbegin()) - 1, int(m_heights.size()) - 1);
}

void TableView::updateContentHeight()
{
    m_tops.resize(m_heights.size() + 1);
    int y = 0;
    for (int i = 0; i < m_heights.size(); ++i) {
        m_tops[i] = y;
        y += m_heights.at(i);
    }
    m_tops[m_heights.size()] = y;
    const bool layingOut = std::exchange(m_layingOut, true);
    // Resizing moves the scroll bar when the content shrinks under it.
    m_content->resize(viewport()->width(), y);
    m_layingOut = layingOut;
}

void TableView::layoutRows()
{
    if (m_layingOut)
        return;
    m_layingOut = true;
    bool changed = false;
    const int count = int(m_heights.size());
    const int top = verticalScrollBar()->value();
    const int bottom = top + viewport()->height();
    const int first = count > 0 ? rowAtContentY(top) : 0;
    const int last = count > 0 && bottom > top ? rowAtContentY(bottom - 1) : -1;

    // A row out of view goes back to the pool, unless the user is typing in
    // it or pressing it: that row is kept, wherever it is.
    const QWidget *focus = QApplication::focusWidget();
    for (auto it = m_live.begin(); it != m_live.end();) {
        TableViewCell *row = it.value();
        const bool inView = it.key() >= first && it.key() <= last;
        const bool held = row == m_pressRow || (focus && row->isAncestorOf(focus));
        if (inView || held) {
            ++it;
            continue;
        }
        retireRow(row);
        it = m_live.erase(it);
        changed = true;
    }
    for (int i = first; i <= last; ++i) {
        if (m_live.contains(i))
            continue;
        TableViewCell *row = makeRow(IndexPath(i, 0));
        m_live.insert(i, row);
        adoptRow(row);
        changed = true;
    }
    const int width = viewport()->width();
    for (auto it = m_live.cbegin(); it != m_live.cend(); ++it) {
        const QRect frame(0, m_tops.at(it.key()), width, m_heights.at(it.key()));
        if (it.value()->geometry() != frame) {
            it.value()->setGeometry(frame);
            changed = true;
        }
    }
    m_layingOut = false;
    if (changed)
        Q_EMIT visibleRowsChanged();
}

void TableView::shiftLiveRows(int from, int by)
{
    QMap<int, TableViewCell *> shifted;
    for (auto it = m_live.cbegin(); it != m_live.cend(); ++it)
        shifted.insert(it.key() >= from ? it.key() + by : it.key(), it.value());
    m_live = shifted;
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
    if (indexPath.section() != 0)
        return nullptr;
    return m_live.value(indexPath.row(), nullptr);
}

QRect TableView::rectForRowAtIndexPath(const IndexPath &indexPath) const
{
    if (!isValidRow(indexPath) || m_tops.size() != m_heights.size() + 1)
        return {};
    return QRect(0, m_tops.at(indexPath.row()), viewport()->width(), m_heights.at(indexPath.row()));
}

IndexPath TableView::indexPathForCell(const TableViewCell *cell) const
{
    for (auto it = m_live.cbegin(); it != m_live.cend(); ++it) {
        if (it.value() == cell)
            return IndexPath(it.key(), 0);
    }
    return {};
}

int TableView::rowOfWidget(const QWidget *widget) const
{
    for (const QWidget *w = widget; w && w != this; w = w->parentWidget()) {
        if (w->parentWidget() == m_content) {
            const IndexPath index = indexPathForCell(qobject_cast<const TableViewCell *>(w));
            return index.isValid() ? index.row() : -1;
        }
    }
    return -1;
}

QList<TableViewCell *> TableView::visibleCells() const
{
    const QRect visible(contentOffset(), viewport()->size());
    QList<TableViewCell *> rows;
    for (TableViewCell *row : m_live) {
        if (row->geometry().intersects(visible))
            rows.append(row);
    }
    return rows;
}

IndexPath TableView::indexPathForRowAtPoint(const QPoint &viewportPoint) const
{
    const QPoint point = viewportPoint + contentOffset();
    if (m_heights.isEmpty() || point.x() < 0 || point.x() >= viewport()->width() || point.y() < 0
        || point.y() >= m_tops.constLast())
        return {};
    return IndexPath(rowAtContentY(point.y()), 0);
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
    const QRect frame = rectForRowAtIndexPath(indexPath);
    if (frame.isNull()) {
        BMLogger::sharedInstance().logFromModule(kModule, 2, "no row %d in section %d to scroll to", indexPath.row(),
                                                 indexPath.section());
        return;
    }
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
    return m_tops.isEmpty() ? 0 : m_tops.constLast();
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
        if (!isValidRow(index) || doomed.contains(index.row())) {
            BMLogger::sharedInstance().logFromModule(kModule, 3, "cannot delete row %d of section %d: the table has "
                                                                 "%d rows; ignored",
                                                     index.row(), index.section(), m_heights.size());
            continue;
        }
        doomed.append(index.row());
    }
    // From the bottom up, so the indexes still to come stay right.
    std::sort(doomed.begin(), doomed.end(), std::greater<>());
    for (const int i : std::as_const(doomed)) {
        if (TableViewCell *row = m_live.take(i)) {
            if (animation != RowAnimation::None)
                fadeOut(row);
            retireRow(row);
        }
        shiftLiveRows(i + 1, -1);
        m_heights.removeAt(i);
    }
    m_layoutPending = true;
    if (m_updateDepth == 0)
        finishUpdates();
}

void TableView::insertRowsAtIndexPaths(const QList<IndexPath> &indexPaths, RowAnimation)
{
    QList<int> rows;
    for (const IndexPath &index : indexPaths) {
        if (index.section() == 0 && index.row() >= 0 && !rows.contains(index.row()))
            rows.append(index.row());
    }
    // From the top down: each index counts the rows inserted above it.
    std::sort(rows.begin(), rows.end());
    for (const int i : std::as_const(rows)) {
        if (i > m_heights.size()) {
            BMLogger::sharedInstance().logFromModule(kModule, 3, "cannot insert row %d: the table has %d rows; "
                                                                 "ignored",
                                                     i, m_heights.size());
            continue;
        }
        shiftLiveRows(i, 1);
        m_heights.insert(i, int(askHeight(IndexPath(i, 0))));
    }
    m_layoutPending = true;
    if (m_updateDepth == 0)
        finishUpdates();
}

void TableView::reloadRowsAtIndexPaths(const QList<IndexPath> &indexPaths, RowAnimation)
{
    for (const IndexPath &index : indexPaths) {
        if (!isValidRow(index))
            continue;
        if (TableViewCell *row = m_live.take(index.row()))
            retireRow(row);
        m_heights[index.row()] = int(askHeight(index));
    }
    m_layoutPending = true;
    if (m_updateDepth == 0)
        finishUpdates();
}

void TableView::finishUpdates()
{
    m_layoutPending = false;
    const int expected = numberOfRowsInSection(0);
    if (expected != m_heights.size()) {
        BMLogger::sharedInstance().logFromModule(kModule, 3, "the data source counts %d rows where the table has "
                                                             "%d after the update; reloading",
                                                 expected, m_heights.size());
        reloadData();
        return;
    }
    updateContentHeight();
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
    for (TableViewCell *row : std::as_const(m_live)) {
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
    updateContentHeight();
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
    for (TableViewCell *row : std::as_const(m_live)) {
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

void TableView::keyPressEvent(QKeyEvent *event)
{
    QWidget *focus = QApplication::focusWidget();
    const int rowIndex = rowOfWidget(focus);
    TableViewCell *row = rowIndex >= 0 ? m_live.value(rowIndex) : nullptr;
    if (!row || !m_dataSource || event->modifiers() & ~Qt::KeypadModifier) {
        QScrollArea::keyPressEvent(event);
        return;
    }
    const IndexPath index(rowIndex, 0);
    const bool enter = event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter;
    if (event->key() == Qt::Key_Delete && !row->isEditing() && m_dataSource->canEditRowAtIndexPath(this, index)) {
        row->setEditing(true, true);
        // Unless a question that the swipe brings up has taken the focus.
        if (row->isEditing() && row->deleteStrip() && QApplication::focusWidget() == focus)
            row->deleteStrip()->setFocus(Qt::OtherFocusReason);
    } else if (event->key() == Qt::Key_Escape && row->isEditing()) {
        const bool onStrip = focus == row->deleteStrip();
        row->setEditing(false, true);
        // The focus goes back to where Delete was pressed: the row, or its
        // first control.
        if (onStrip) {
            if (row->focusPolicy() & Qt::TabFocus)
                row->setFocus(Qt::OtherFocusReason);
            else
                row->nextInFocusChain()->setFocus(Qt::OtherFocusReason);
        }
    } else if (enter && focus == row->deleteStrip()) {
        if (auto *strip = qobject_cast<QAbstractButton *>(row->deleteStrip()))
            strip->click();
    } else if ((enter || event->key() == Qt::Key_Space) && focus == row && m_allowsSelection && !row->isEditing()) {
        if (!event->isAutoRepeat())
            m_dataSource->didSelectRowAtIndexPath(this, index);
    } else {
        QScrollArea::keyPressEvent(event);
        return;
    }
    event->accept();
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
