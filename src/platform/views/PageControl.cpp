#include "PageControl.h"

// First cut: state only; drawing and taps come next.

namespace Brightmere {

PageControl::PageControl(QWidget *parent)
    : QWidget(parent)
{
}

void PageControl::setNumberOfPages(int pages)
{
    m_numberOfPages = qMax(0, pages);
    setCurrentPage(m_currentPage);
}

void PageControl::setCurrentPage(int page)
{
    m_currentPage = qBound(0, page, qMax(0, m_numberOfPages - 1));
    update();
}

void PageControl::setPageIndicatorTintColor(const QColor &color)
{
    m_pageIndicatorTintColor = color;
    update();
}

void PageControl::setCurrentPageIndicatorTintColor(const QColor &color)
{
    m_currentPageIndicatorTintColor = color;
    update();
}

QSize PageControl::sizeHint() const
{
    return QSize(qMax(1, m_numberOfPages) * 16, 20);
}

} // namespace Brightmere
