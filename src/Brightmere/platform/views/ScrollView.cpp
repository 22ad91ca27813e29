#include "ScrollView.h"

#include "DragTracker.h"
#include "ScrollAnimator.h"

#include <cmath>

namespace Brightmere {

ScrollView::ScrollView(QWidget *parent)
    : QScrollArea(parent)
    , m_content(new QWidget)
{
    setFrameShape(QFrame::NoFrame);
    // A container, not a control: a click in it must not take the keyboard
    // focus from the field being typed in.
    setFocusPolicy(Qt::NoFocus);
    setWidgetResizable(false);
    setWidget(m_content);
    setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    setVerticalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    m_content->resize(0, 0);

    m_animator = new ScrollAnimator(this);
    connect(m_animator, &ScrollAnimator::finished, this, &ScrollView::onAnimationFinished);
    m_tracker = new DragTracker(viewport());
    connect(m_tracker, &DragTracker::dragStarted, this, &ScrollView::onDragStarted);
    connect(m_tracker, &DragTracker::dragMoved, this, &ScrollView::onDragMoved);
    connect(m_tracker, &DragTracker::dragFinished, this, &ScrollView::onDragFinished);
}

void ScrollView::addSubview(QWidget *view)
{
    if (!view)
        return;
    view->setParent(m_content);
    view->show();
}

QList<QWidget *> ScrollView::subviews() const
{
    return m_content->findChildren<QWidget *>(Qt::FindDirectChildrenOnly);
}

void ScrollView::removeAllSubviews()
{
    // Out of the tree now, so a rebuild right after never sees the old ones;
    // deleted later, as one of them may be handling the event that led here.
    const QList<QWidget *> views = subviews();
    for (QWidget *view : views) {
        view->hide();
        view->setParent(nullptr);
        view->deleteLater();
    }
}

QSize ScrollView::contentSize() const
{
    return m_content->size();
}

void ScrollView::setContentSize(const QSize &size)
{
    m_content->resize(size.expandedTo(QSize(0, 0)));
}

QPoint ScrollView::contentOffset() const
{
    return m_animator->offset();
}

void ScrollView::setContentOffset(const QPoint &offset, bool animated)
{
    m_motion = animated ? Motion::Programmatic : Motion::None;
    m_animator->scrollTo(offset, animated);
}

void ScrollView::scrollRectToVisible(const QRect &rect, bool animated)
{
    setContentOffset(m_animator->offsetShowing(rect), animated);
}

void ScrollView::setScrollEnabled(bool enabled)
{
    m_scrollEnabled = enabled;
    m_tracker->setEnabled(enabled);
}

bool ScrollView::isDragging() const
{
    return m_tracker->isDragging();
}

int ScrollView::animationDuration()
{
    return ScrollAnimator::duration();
}

void ScrollView::setAnimationDuration(int milliseconds)
{
    ScrollAnimator::setDuration(milliseconds);
}

void ScrollView::onDragStarted()
{
    m_animator->stop();
    m_motion = Motion::None;
    m_dragStartOffset = contentOffset();
}

void ScrollView::onDragMoved(const QPoint &distance)
{
    m_animator->setOffset(m_animator->clamped(m_dragStartOffset - distance));
}

void ScrollView::onDragFinished(const QPoint &distance)
{
    onDragMoved(distance);
    if (!m_pagingEnabled) {
        Q_EMIT didEndDecelerating();
        return;
    }
    m_motion = Motion::Settling;
    m_animator->scrollTo(nearestPage(contentOffset()), true);
}

QPoint ScrollView::nearestPage(const QPoint &offset) const
{
    const QSize page = viewport()->size();
    const auto nearest = [](int value, int step) {
        return step > 0 ? int(std::lround(double(value) / step)) * step : value;
    };
    return m_animator->clamped(QPoint(nearest(offset.x(), page.width()), nearest(offset.y(), page.height())));
}

void ScrollView::onAnimationFinished()
{
    const Motion motion = m_motion;
    m_motion = Motion::None;
    if (motion == Motion::Settling)
        Q_EMIT didEndDecelerating();
    else if (motion == Motion::Programmatic)
        Q_EMIT didEndScrollingAnimation();
}

} // namespace Brightmere
