#pragma once

#include <QList>
#include <QScrollArea>

namespace Brightmere {

class DragTracker;
class ScrollAnimator;

// A scroll view whose subviews sit at given frames inside a content area of
// a given size, scrolled by dragging. With paging on, a drag comes to rest
// on the nearest whole page (multiples of the view's width and height).
// Animated scrolls take animationDuration() milliseconds on the main loop
// (the duration every animated scroll of the platform shares); tests set it
// to 0.
class ScrollView : public QScrollArea
{
    Q_OBJECT

public:
    explicit ScrollView(QWidget *parent = nullptr);

    // Subviews are placed by their geometry within the content area.
    void addSubview(QWidget *view);
    QList<QWidget *> subviews() const;
    // They leave at once and are deleted on the next turn of the event loop.
    void removeAllSubviews();

    QSize contentSize() const;
    void setContentSize(const QSize &size);
    QPoint contentOffset() const;
    // Clamped to the content. Animated, didEndScrollingAnimation follows
    // (queued when the duration is 0); not animated, nothing is emitted.
    void setContentOffset(const QPoint &offset, bool animated);
    // Scrolls as little as makes the rectangle (content coordinates) visible.
    void scrollRectToVisible(const QRect &rect, bool animated);

    bool isPagingEnabled() const { return m_pagingEnabled; }
    void setPagingEnabled(bool enabled) { m_pagingEnabled = enabled; }
    bool isScrollEnabled() const { return m_scrollEnabled; }
    void setScrollEnabled(bool enabled);
    // A drag by the user is under way.
    bool isDragging() const;

    static int animationDuration();
    static void setAnimationDuration(int milliseconds);

Q_SIGNALS:
    // A drag by the user came to rest (on a page, with paging on).
    void didEndDecelerating();
    // An animated scroll asked for by code ended.
    void didEndScrollingAnimation();

private:
    enum class Motion { None, Settling, Programmatic };

    void onDragStarted();
    void onDragMoved(const QPoint &distance);
    void onDragFinished(const QPoint &distance);
    void onAnimationFinished();
    QPoint nearestPage(const QPoint &offset) const;

    QWidget *m_content = nullptr;
    DragTracker *m_tracker = nullptr;
    ScrollAnimator *m_animator = nullptr;
    Motion m_motion = Motion::None;
    QPoint m_dragStartOffset;
    bool m_pagingEnabled = false;
    bool m_scrollEnabled = true;
};

} // namespace Brightmere
