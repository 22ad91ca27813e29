#include "ScrollView.h"

#include <QScrollBar>
#include <QTimer>

// First cut: positions only; dragging and animation come next.

namespace Brightmere {

namespace {
int g_animationDuration = 250;
}

ScrollView::ScrollView(QWidget *parent)
    : QScrollArea(parent)
    , m_content(new QWidget)
{
    setFrameShape(QFrame::NoFrame);
    setWidgetResizable(false);
    setWidget(m_content);
    setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    setVerticalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
}

void ScrollView::addSubview(QWidget *view)
{
    view->setParent(m_content);
    view->show();
}

QList<QWidget *> ScrollView::subviews() const
{
    return m_content->findChildren<QWidget *>(Qt::FindDirectChildrenOnly);
}

void ScrollView::removeAllSubviews()
{
    qDeleteAll(subviews());
}

QSize ScrollView::contentSize() const
{
    return m_content->size();
}

void ScrollView::setContentSize(const QSize &size)
{
    m_content->resize(size);
}

QPoint ScrollView::contentOffset() const
{
    return QPoint(horizontalScrollBar()->value(), verticalScrollBar()->value());
}

void ScrollView::setContentOffset(const QPoint &offset, bool animated)
{
    horizontalScrollBar()->setValue(offset.x());
    verticalScrollBar()->setValue(offset.y());
    if (animated)
        QTimer::singleShot(g_animationDuration, this, &ScrollView::didEndScrollingAnimation);
}

void ScrollView::scrollRectToVisible(const QRect &rect, bool animated)
{
    setContentOffset(rect.topLeft(), animated);
}

void ScrollView::setScrollEnabled(bool enabled)
{
    m_scrollEnabled = enabled;
}

int ScrollView::animationDuration()
{
    return g_animationDuration;
}

void ScrollView::setAnimationDuration(int milliseconds)
{
    g_animationDuration = qMax(0, milliseconds);
}

} // namespace Brightmere
