#include "PageControl.h"

#include "AccessibleWidget.h"
#include "FocusRing.h"
#include <Brightmere/platform/views/ColorContrast.h>

#include <QAccessible>
#include <QKeyEvent>
#include <QMouseEvent>
#include <QPainter>

namespace Brightmere {

PageControl::PageControl(QWidget *parent)
    : QWidget(parent)
{
    setSizePolicy(QSizePolicy::Preferred, QSizePolicy::Fixed);
    setCursor(Qt::PointingHandCursor);
    setFocusPolicy(Qt::TabFocus);
}

void PageControl::setNumberOfPages(int pages)
{
    m_numberOfPages = qMax(0, pages);
    setCurrentPage(m_currentPage);
    updateGeometry();
}

void PageControl::setCurrentPage(int page)
{
    const int before = m_currentPage;
    m_currentPage = qBound(0, page, qMax(0, m_numberOfPages - 1));
    update();
    if (before != m_currentPage) {
        QAccessibleValueChangeEvent event(this, m_currentPage + 1);
        QAccessible::updateAccessibility(&event);
    }
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
    return QSize(qMax(1, m_numberOfPages) * kDotSpacing, 20);
}

QPointF PageControl::dotCentre(int page) const
{
    const qreal rowWidth = qreal(m_numberOfPages - 1) * kDotSpacing;
    return {width() / 2.0 - rowWidth / 2.0 + page * kDotSpacing, height() / 2.0};
}

void PageControl::paintEvent(QPaintEvent *)
{
    if (m_numberOfPages <= 0)
        return;
    // Without a caller's tint the dots take the widget's palette, made to
    // stand out from the page as a control's parts must (3:1). Worked out
    // again only when the palette changes.
    const QColor page = palette().color(QPalette::Window);
    if (palette().cacheKey() != m_defaultsPalette) {
        m_defaultsPalette = palette().cacheKey();
        m_defaultDot = Color::withContrast(palette().color(QPalette::Mid), page, Color::kLargeContrast);
        m_defaultCurrentDot = Color::withContrast(palette().color(QPalette::Highlight), page, Color::kLargeContrast);
    }
    const QColor dot = m_pageIndicatorTintColor.isValid() ? m_pageIndicatorTintColor : m_defaultDot;
    const QColor current =
        m_currentPageIndicatorTintColor.isValid() ? m_currentPageIndicatorTintColor : m_defaultCurrentDot;
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(Qt::NoPen);
    const qreal radius = kDotDiameter / 2.0;
    for (int page = 0; page < m_numberOfPages; ++page) {
        painter.setBrush(page == m_currentPage ? current : dot);
        painter.drawEllipse(dotCentre(page), radius, radius);
    }
    if (hasFocus()) {
        const qreal half = kDotSpacing / 2.0;
        const QRectF dots(QPointF(dotCentre(0).x() - half, 0),
                          QPointF(dotCentre(m_numberOfPages - 1).x() + half, height()));
        FocusRing::paint(painter, dots, height() / 2.0, FocusRing::color(this));
    }
}

void PageControl::keyPressEvent(QKeyEvent *event)
{
    // The arrows move a page as a tap beside the current dot does; Space
    // and Enter go on to the next page.
    switch (event->key()) {
    case Qt::Key_Left:
        step(-1);
        break;
    case Qt::Key_Right:
    case Qt::Key_Space:
    case Qt::Key_Return:
    case Qt::Key_Enter:
        step(1);
        break;
    default:
        QWidget::keyPressEvent(event);
        return;
    }
    event->accept();
}

void PageControl::step(int delta)
{
    const int page = m_currentPage + delta;
    if (page < 0 || page >= m_numberOfPages)
        return;
    setCurrentPage(page);
    Q_EMIT valueChanged();
}

void PageControl::mousePressEvent(QMouseEvent *event)
{
    // Taken, so the release comes here too.
    event->setAccepted(event->button() == Qt::LeftButton);
}

void PageControl::mouseReleaseEvent(QMouseEvent *event)
{
    if (event->button() != Qt::LeftButton || !rect().contains(event->position().toPoint())) {
        event->ignore();
        return;
    }
    event->accept();
    const qreal x = event->position().x();
    const qreal centre = dotCentre(m_currentPage).x();
    if (x < centre - kDotDiameter / 2.0)
        step(-1);
    else if (x > centre + kDotDiameter / 2.0)
        step(1);
}

} // namespace Brightmere
