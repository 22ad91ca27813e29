#pragma once

#include <QColor>
#include <QWidget>

namespace Brightmere {

// A row of dots, one per page, the current one highlighted. A tap on either
// side of the current dot moves one page that way and emits valueChanged;
// setting currentPage from code emits nothing. Tab reaches it (a click
// leaves the focus where it was); the arrow keys move a page, Space and
// Enter go on to the next. Colours are the caller's; those not set (invalid)
// come from the widget's palette (Mid for the dots, Highlight for the current
// one), each made to stand out from the page.
class PageControl : public QWidget
{
    Q_OBJECT

public:
    explicit PageControl(QWidget *parent = nullptr);

    int numberOfPages() const { return m_numberOfPages; }
    void setNumberOfPages(int pages);
    int currentPage() const { return m_currentPage; }
    // Clamped to the pages there are.
    void setCurrentPage(int page);

    QColor pageIndicatorTintColor() const { return m_pageIndicatorTintColor; }
    void setPageIndicatorTintColor(const QColor &color);
    QColor currentPageIndicatorTintColor() const { return m_currentPageIndicatorTintColor; }
    void setCurrentPageIndicatorTintColor(const QColor &color);

    static constexpr int kDotDiameter = 7;
    static constexpr int kDotSpacing = 16; // centre to centre

    QSize sizeHint() const override;
    // The centre of a page's dot, in the control's coordinates.
    QPointF dotCentre(int page) const;

Q_SIGNALS:
    void valueChanged();

protected:
    void paintEvent(QPaintEvent *event) override;
    void mousePressEvent(QMouseEvent *event) override;
    void mouseReleaseEvent(QMouseEvent *event) override;
    void keyPressEvent(QKeyEvent *event) override;

private:
    void step(int delta);

    int m_numberOfPages = 0;
    int m_currentPage = 0;
    QColor m_pageIndicatorTintColor;
    QColor m_currentPageIndicatorTintColor;
    // The colours without a tint, and the palette they were made from
    // (QPalette::cacheKey), so a paint makes them again only after a change.
    qint64 m_defaultsPalette = -1;
    QColor m_defaultDot;
    QColor m_defaultCurrentDot;
};

} // namespace Brightmere
