#pragma once

#include <QList>
#include <QScrollArea>

namespace Brightmere {

// A scroll view whose subviews sit at given frames inside a content area of
// a given size, scrolled by dragging. With paging on, a drag comes to rest
// on a whole page (the view's width). Animated scrolls take
// animationDuration() milliseconds on the main loop; tests set it to 0.
class ScrollView : public QScrollArea
{
    Q_OBJECT

public:
    explicit ScrollView(QWidget *parent = nullptr);

    // Subviews are placed by their geometry within the content area.
    void addSubview(QWidget *view);
    QList<QWidget *> subviews() const;
    void removeAllSubviews();

    QSize contentSize() const;
    void setContentSize(const QSize &size);
    QPoint contentOffset() const;
    void setContentOffset(const QPoint &offset, bool animated);
    void scrollRectToVisible(const QRect &rect, bool animated);

    bool isPagingEnabled() const { return m_pagingEnabled; }
    void setPagingEnabled(bool enabled) { m_pagingEnabled = enabled; }
    bool isScrollEnabled() const { return m_scrollEnabled; }
    void setScrollEnabled(bool enabled);

    static int animationDuration();
    static void setAnimationDuration(int milliseconds);

Q_SIGNALS:
    // A drag by the user came to rest (on a page, with paging on).
    void didEndDecelerating();
    // An animated scroll asked for by code ended.
    void didEndScrollingAnimation();

private:
    QWidget *m_content = nullptr;
    bool m_pagingEnabled = false;
    bool m_scrollEnabled = true;
};

} // namespace Brightmere
