#pragma once

#include <QObject>
#include <QPoint>
#include <QPointer>

class QAbstractScrollArea;
class QPropertyAnimation;

namespace Brightmere {

// Moves a scroll area's view to an offset (its scroll bars' values), either
// at once or over duration() milliseconds, and says when an animated move
// got there. The tables and scroll views of the platform share it, so every
// animated scroll in the kit takes the same time; tests set the duration to
// 0, which places the view at once and still reports the end on the next
// turn of the event loop.
class ScrollAnimator : public QObject
{
    Q_OBJECT
    Q_PROPERTY(QPoint offset READ offset WRITE setOffset)

public:
    explicit ScrollAnimator(QAbstractScrollArea *area);

    static int duration();
    // Negative values count as 0.
    static void setDuration(int milliseconds);

    QPoint offset() const;
    // Placed at once, clamped to what the area can scroll; stops nothing.
    void setOffset(const QPoint &offset);
    // The offset clamped to the scroll bars' ranges.
    QPoint clamped(const QPoint &offset) const;
    // The offset nearest to the current one at which the rectangle (content
    // coordinates) is in view; a rectangle larger than the view shows its
    // top left.
    QPoint offsetShowing(const QRect &rect) const;

    // Not animated: placed now, stopping a running move, and nothing is
    // reported. Animated: finished() follows once, also for a move to where
    // the view already is.
    void scrollTo(const QPoint &offset, bool animated);
    // A move that is stopped does not report its end.
    void stop();
    bool isRunning() const;

Q_SIGNALS:
    void finished();

private:
    void reportEnd(quint64 generation);

    QPointer<QAbstractScrollArea> m_area;
    QPropertyAnimation *m_animation = nullptr;
    // Bumped by every move and stop, so a queued end of a replaced move is
    // dropped.
    quint64 m_generation = 0;
    bool m_pendingEnd = false;
};

} // namespace Brightmere
