#include "ScrollAnimator.h"

#include <QAbstractScrollArea>
#include <QEasingCurve>
#include <QPropertyAnimation>
#include <QScrollBar>

namespace Brightmere {

namespace {
int g_duration = 250;
}

ScrollAnimator::ScrollAnimator(QAbstractScrollArea *area)
    : QObject(area)
    , m_area(area)
    , m_animation(new QPropertyAnimation(this, "offset", this))
{
    m_animation->setEasingCurve(QEasingCurve::OutCubic);
    connect(m_animation, &QPropertyAnimation::finished, this, [this] { reportEnd(m_generation); });
}

int ScrollAnimator::duration()
{
    return g_duration;
}

void ScrollAnimator::setDuration(int milliseconds)
{
    g_duration = qMax(0, milliseconds);
}

QPoint ScrollAnimator::offset() const
{
    if (!m_area)
        return {};
    return {m_area->horizontalScrollBar()->value(), m_area->verticalScrollBar()->value()};
}

void ScrollAnimator::setOffset(const QPoint &offset)
{
    if (!m_area)
        return;
    m_area->horizontalScrollBar()->setValue(offset.x());
    m_area->verticalScrollBar()->setValue(offset.y());
}

QPoint ScrollAnimator::clamped(const QPoint &offset) const
{
    if (!m_area)
        return {};
    const QScrollBar *h = m_area->horizontalScrollBar();
    const QScrollBar *v = m_area->verticalScrollBar();
    return {qBound(h->minimum(), offset.x(), h->maximum()), qBound(v->minimum(), offset.y(), v->maximum())};
}

QPoint ScrollAnimator::offsetShowing(const QRect &rect) const
{
    if (!m_area)
        return {};
    const QPoint offset = this->offset();
    const QSize view = m_area->viewport()->size();
    const auto along = [](int current, int start, int length, int viewLength) {
        if (start < current || length > viewLength)
            return start;
        if (start + length > current + viewLength)
            return start + length - viewLength;
        return current;
    };
    return {along(offset.x(), rect.x(), rect.width(), view.width()),
            along(offset.y(), rect.y(), rect.height(), view.height())};
}

void ScrollAnimator::scrollTo(const QPoint &offset, bool animated)
{
    stop();
    const QPoint target = clamped(offset);
    if (!animated || g_duration == 0) {
        setOffset(target);
        if (animated) {
            // Reported on the next turn, as a real animation would be.
            const quint64 generation = m_generation;
            m_pendingEnd = true;
            QMetaObject::invokeMethod(this, [this, generation] { reportEnd(generation); }, Qt::QueuedConnection);
        }
        return;
    }
    m_animation->setDuration(g_duration);
    m_animation->setStartValue(this->offset());
    m_animation->setEndValue(target);
    m_animation->start();
}

void ScrollAnimator::stop()
{
    ++m_generation;
    m_pendingEnd = false;
    if (m_animation->state() != QAbstractAnimation::Stopped) {
        // Stopping emits finished; the bumped generation drops it.
        m_animation->stop();
    }
}

bool ScrollAnimator::isRunning() const
{
    return m_pendingEnd || m_animation->state() == QAbstractAnimation::Running;
}

void ScrollAnimator::reportEnd(quint64 generation)
{
    if (generation != m_generation)
        return;
    m_pendingEnd = false;
    Q_EMIT finished();
}

} // namespace Brightmere
