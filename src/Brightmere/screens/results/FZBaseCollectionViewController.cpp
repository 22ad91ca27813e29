#include "FZBaseCollectionViewController.h"

#include "FZSpotsSetsCollectionViewCell.h"
#include "FZSpotsSetsHeaderCollectionViewCell.h"
#include <Brightmere/core/BMLogger.h>
#include <Brightmere/core/BMSDKGeneralUtilities.h>
#include <Brightmere/platform/foundation/Clock.h>
#include <Brightmere/platform/views/AccessibleWidget.h>
#include <Brightmere/platform/views/FocusRingOverlay.h>
#include <Brightmere/ui/BMBorderedView.h>
#include <Brightmere/ui/BrightmereColor.h>
#include <Brightmere/ui/BrightmereView.h>

#include <QApplication>
#include <QEvent>
#include <QKeyEvent>
#include <QPushButton>
#include <QScrollArea>
#include <QScrollBar>
#include <QScroller>
#include <QScrollerProperties>
#include <QVBoxLayout>
#include <QtMath>

using Brightmere::IndexPath;

namespace {
const QString kModule = QStringLiteral("FZBaseCollectionViewController");
constexpr int kSideMargin = 12;

// A row's height: the design's at the default text size; with larger text
// at least as much larger, and as tall as its tallest cell's text needs.
template<typename Cell>
int grownHeight(int designed, const QList<QRect> &cells, const QList<Cell *> &views)
{
    if (Brightmere::View::textScale() <= 1.0)
        return designed;
    int height = Brightmere::View::pixelsForTextPoints(designed);
    for (qsizetype i = 0; i < cells.size() && i < views.size(); ++i) {
        if (views.at(i)->hasHeightForWidth())
            height = qMax(height, views.at(i)->heightForWidth(cells.at(i).width()));
    }
    return height;
}
}

FZBaseCollectionViewController::FZBaseCollectionViewController(QWidget *parent)
    : BMSDKUIBaseViewController(parent)
{
    setAutoFillBackground(true);
    QPalette palette = this->palette();
    palette.setColor(QPalette::Window, Brightmere::Color::system(2));
    setPalette(palette);

    m_borderedView = new BMBorderedView(this);
    m_borderedView->setObjectName(QStringLiteral("borderedView"));
    auto *frame = new QVBoxLayout(m_borderedView);
    // Inside the one-point border, so the cells never paint over it.
    frame->setContentsMargins(1, 1, 1, 1);
    frame->setSpacing(0);

    m_headerRow = new QWidget(m_borderedView);
    m_headerRow->setObjectName(QStringLiteral("headerRow"));
    m_headerRow->hide();
    m_headerRow->installEventFilter(this);
    frame->addWidget(m_headerRow);

    m_collectionView = new QScrollArea(m_borderedView);
    m_collectionView->setObjectName(QStringLiteral("collectionView"));
    m_collectionView->setFrameShape(QFrame::NoFrame);
    // An empty grid is still reached by Tab, so the arrow keys scroll it;
    // with cells Tab goes to the current cell instead. A click leaves the
    // focus where it was.
    m_collectionView->setFocusPolicy(Qt::TabFocus);
    Brightmere::AccessibleWidget::setRole(m_collectionView, QAccessible::Table);
    new Brightmere::FocusRingOverlay(m_collectionView);
    m_collectionView->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    m_collectionView->setVerticalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    m_collectionView->setWidgetResizable(false);
    m_content = new QWidget;
    m_content->setObjectName(QStringLiteral("collectionContent"));
    m_collectionView->setWidget(m_content);
    m_collectionView->viewport()->installEventFilter(this);
    m_collectionView->viewport()->setAutoFillBackground(true);
    // The headings sit outside the scrolled area; they follow a sideways scroll.
    connect(m_collectionView->horizontalScrollBar(), &QScrollBar::valueChanged, this, [this] { layoutHeaderCells(); });
    // A drag scrolls the rows, as a finger does on the phone, and stops at
    // the ends: the grid does not bounce.
    QScroller::grabGesture(m_collectionView->viewport(), QScroller::LeftMouseButtonGesture);
    QScroller *scroller = QScroller::scroller(m_collectionView->viewport());
    QScrollerProperties properties = scroller->scrollerProperties();
    const QVariant off = QVariant::fromValue(QScrollerProperties::OvershootAlwaysOff);
    properties.setScrollMetric(QScrollerProperties::HorizontalOvershootPolicy, off);
    properties.setScrollMetric(QScrollerProperties::VerticalOvershootPolicy, off);
    scroller->setScrollerProperties(properties);
    frame->addWidget(m_collectionView, 1);

    m_pageLayout = new QVBoxLayout(this);
    m_pageLayout->setContentsMargins(kSideMargin, kSideMargin, kSideMargin, kSideMargin);
    m_pageLayout->setSpacing(kSideMargin);
    m_pageLayout->addWidget(m_borderedView, 1);
}

void FZBaseCollectionViewController::viewDidLoad()
{
    BMSDKUIBaseViewController::viewDidLoad();
    buildHeaderCells();
    // The cells' texts carry their colours: a new look needs new texts.
    Brightmere::View::followContrast(this, [this] { reloadData(); }, false);
}

void FZBaseCollectionViewController::viewWillAppear(bool animated)
{
    BMSDKUIBaseViewController::viewWillAppear(animated);
    // Bouncing is off since the grid was made (see the constructor).
    if (layout())
        layout()->activate();
    reloadData();
}

void FZBaseCollectionViewController::columnSelected(int column)
{
    Q_UNUSED(column)
    reloadData();
}

QColor FZBaseCollectionViewController::backgroundColorForSection(int section)
{
    return Brightmere::Color::system(section % 2 == 1 ? 4 : 3);
}

QColor FZBaseCollectionViewController::cellTextColor()
{
    // Readable on the darker of the two row shades, where high contrast asks for it.
    return Brightmere::Color::fixedColor(Brightmere::Color::named(QStringLiteral("medium_gray")),
                                         Brightmere::Color::system(3));
}

QFont FZBaseCollectionViewController::systemFont(double points, QFont::Weight weight, bool italic)
{
    QFont font = Brightmere::View::fontOfSize(points, weight);
    font.setItalic(italic);
    return font;
}

QString FZBaseCollectionViewController::dateTextForSpot(const WifiTestResult &spot)
{
    const qint64 ms = qRound64((spot.timeAfterTest() + Brightmere::Clock::kReferenceDateUnixSeconds) * 1000.0);
    return BMSDKGeneralUtilities::stringWithYYMMDDHMMFormatFromDate(QDateTime::fromMSecsSinceEpoch(ms, Qt::UTC));
}

QSizeF FZBaseCollectionViewController::sizeForItemAtIndexPath(const IndexPath &indexPath)
{
    const int columns = numberOfColumns();
    if (m_totalWidth == 0.0) {
        // Only a shown grid has its real width; a hidden one may still have
        // the size it was made with.
        QWidget *viewport = m_collectionView->viewport();
        const int width = viewport->isVisible() ? viewport->width() : 0;
        if (width > 0 && columns > 0) {
            m_totalWidth = width;
            m_columnWidths.clear();
            double used = 0.0;
            for (int column = 0; column < columns - 1; ++column) {
                const double columnWidth = columnWidthProportionWithIndex(column) * m_totalWidth;
                m_columnWidths.append(columnWidth);
                used += columnWidth;
            }
            m_columnWidths.append(m_totalWidth - used);
        }
    }
    const int column = indexPath.row();
    const double width = column >= 0 && column < m_columnWidths.size() ? m_columnWidths.at(column) : 0.0;
    return QSizeF(width, rowHeight());
}

double FZBaseCollectionViewController::columnX(int column) const
{
    double x = 0.0;
    for (int c = 0; c < column && c < m_columnWidths.size(); ++c)
        x += m_columnWidths.at(c);
    return x;
}

void FZBaseCollectionViewController::reloadData()
{
    willReloadData();
    // The new cells take the focus over where the old ones had it.
    const bool hadFocus = m_cells.contains(QApplication::focusWidget());
    qDeleteAll(m_cells);
    m_cells.clear();
    const int rows = qMax(0, numberOfRows());
    const int columns = qMax(0, numberOfColumns());
    const QString identifier = cellIdentifier();
    for (int section = 0; section < rows; ++section) {
        for (int column = 0; column < columns; ++column) {
            auto *cell = new FZSpotsSetsCollectionViewCell(m_content);
            cell->setReuseIdentifier(identifier);
            cell->setObjectName(QStringLiteral("cell_%1_%2").arg(section).arg(column));
            cell->setBackgroundColor(backgroundColorForSection(section));
            FZAttributedText text = textForCellWithIndexPath(IndexPath(column, section));
            // Grey over the whole text: only the column styles' fonts show.
            text.addForegroundOverAll(cellTextColor());
            cell->setAttributedText(text);
            cell->installEventFilter(this);
            new Brightmere::FocusRingOverlay(cell);
            Brightmere::AccessibleWidget::setRole(cell, QAccessible::Cell);
            m_cells.append(cell);
        }
    }
    refreshHeaderCells();
    for (qsizetype i = 0; i < m_cells.size(); ++i)
        m_cells.at(i)->setAccessibleName(accessibleCellName(int(i / columns), int(i % columns)));
    layoutCells();
    layoutHeaderCells();
    chainCells(hadFocus);
}

QString FZBaseCollectionViewController::accessibleCellName(int section, int column) const
{
    // Row heading, column heading, then the cell's lines, as one phrase.
    const auto phrase = [](const QString &text) { return text.split(QLatin1Char('\n'), Qt::SkipEmptyParts).join(u", "); };
    QStringList parts;
    const FZSpotsSetsCollectionViewCell *rowHeading = cellAt(section, 0);
    if (column > 0 && rowHeading)
        parts << rowHeading->plainText().section(QLatin1Char('\n'), 0, 0);
    parts << phrase(column < m_headerCells.size() ? m_headerCells.at(column)->title()
                                                   : titleForColumnWithIndex(column).string());
    if (const FZSpotsSetsCollectionViewCell *cell = cellAt(section, column))
        parts << phrase(cell->plainText());
    parts.removeAll(QString());
    return parts.join(u", ");
}

FZSpotsSetsCollectionViewCell *FZBaseCollectionViewController::currentCell() const
{
    return cellAt(m_currentSection, m_currentColumn);
}

void FZBaseCollectionViewController::chainCells(bool refocus)
{
    const int columns = qMax(1, numberOfColumns());
    const int sections = int((m_cells.size() + columns - 1) / columns);
    m_currentSection = qBound(0, m_currentSection, qMax(0, sections - 1));
    m_currentColumn = qBound(0, m_currentColumn, columns - 1);
    FZSpotsSetsCollectionViewCell *current = currentCell();
    if (!current)
        return m_collectionView->setFocusPolicy(Qt::TabFocus);
    // One tab stop for the grid: the current cell, after the headings
    // (made later than what follows the grid) and before what follows.
    // Tab order is only set between widgets that take the focus, hence the
    // policies set twice.
    m_collectionView->setFocusPolicy(Qt::TabFocus);
    current->setFocusPolicy(Qt::TabFocus);
    QWidget *previous = m_collectionView;
    for (FZSpotsSetsHeaderCollectionViewCell *heading : std::as_const(m_headerCells)) {
        QWidget::setTabOrder(previous, heading->button());
        previous = heading->button();
    }
    QWidget::setTabOrder(previous, current);
    m_collectionView->setFocusPolicy(Qt::NoFocus);
    for (FZSpotsSetsCollectionViewCell *cell : std::as_const(m_cells))
        cell->setFocusPolicy(cell == current ? Qt::TabFocus : Qt::NoFocus);
    if (refocus) {
        current->setFocus(Qt::OtherFocusReason);
        m_collectionView->ensureWidgetVisible(current, 0, 0);
    }
}

void FZBaseCollectionViewController::moveCurrent(int sectionStep, int columnStep, bool toRowEnd)
{
    // At an edge the cell stays; the key does not scroll the grid away from it.
    const int columns = numberOfColumns();
    if (columns <= 0 || m_cells.isEmpty())
        return;
    const int sections = int((m_cells.size() + columns - 1) / columns);
    int column = m_currentColumn + columnStep;
    if (toRowEnd)
        column = columnStep < 0 ? 0 : columns - 1;
    const int section = qBound(0, m_currentSection + sectionStep, sections - 1);
    column = qBound(0, column, columns - 1);
    if (!cellAt(section, column))
        return;
    m_currentSection = section;
    m_currentColumn = column;
    chainCells(true);
}

void FZBaseCollectionViewController::layoutCells()
{
    const int columns = qMax(0, numberOfColumns());
    if (columns == 0) {
        m_content->resize(0, 0);
        return;
    }
    if (!m_cells.isEmpty()) {
        sizeForItemAtIndexPath(IndexPath(0, 0)); // fixes the columns at the first width the grid has
        fitColumnsToText();
    }
    int top = 0;
    for (qsizetype first = 0; first < m_cells.size(); first += columns) {
        const int section = int(first / columns);
        QList<QRect> cells;
        for (int column = 0; column < columns && first + column < m_cells.size(); ++column) {
            const QSizeF size = sizeForItemAtIndexPath(IndexPath(column, section));
            const int left = qRound(columnX(column));
            cells.append(QRect(left, top, qRound(columnX(column) + size.width()) - left, rowHeight()));
        }
        const int height = grownHeight(rowHeight(), cells, m_cells.mid(first, cells.size()));
        for (qsizetype column = 0; column < cells.size(); ++column) {
            cells[column].setHeight(height);
            m_cells.at(first + column)->setGeometry(cells.at(column));
            m_cells.at(first + column)->show();
        }
        top += height;
    }
    m_content->resize(qRound(qMax(m_totalWidth, columnX(columns))), top);
}

void FZBaseCollectionViewController::fitColumnsToText()
{
    const int columns = numberOfColumns();
    if (Brightmere::View::textScale() <= 1.0 || m_totalWidth <= 0.0 || columns <= 0)
        return;
    // What each column needs so that no word of a cell or heading is cut.
    QList<double> needs(columns, 0.0);
    for (qsizetype i = 0; i < m_cells.size(); ++i)
        needs[i % columns] = qMax(needs.at(i % columns), double(m_cells.at(i)->minimumSizeHint().width()));
    for (FZSpotsSetsHeaderCollectionViewCell *cell : std::as_const(m_headerCells)) {
        if (cell->column() >= 0 && cell->column() < columns)
            needs[cell->column()] = qMax(needs.at(cell->column()), double(cell->minimumSizeHint().width()));
    }
    // A column whose share is narrower than its text keeps what the text
    // needs; the others share the rest by their proportions, again until
    // every share holds its text (or none is left to share).
    QList<bool> fixed(columns, false);
    QList<double> widths(columns, 0.0);
    for (bool again = true; again;) {
        again = false;
        double room = m_totalWidth;
        double shares = 0.0;
        for (int c = 0; c < columns; ++c) {
            if (fixed.at(c))
                room -= needs.at(c);
            else
                shares += columnWidthProportionWithIndex(c);
        }
        for (int c = 0; c < columns; ++c) {
            widths[c] = fixed.at(c) || shares <= 0.0 ? needs.at(c) : qMax(0.0, room) * columnWidthProportionWithIndex(c) / shares;
            if (!fixed.at(c) && widths.at(c) < needs.at(c)) {
                fixed[c] = true;
                again = true;
            }
        }
    }
    double used = 0.0;
    for (double width : std::as_const(widths))
        used += width;
    // Whatever is left over (all columns at their text) goes to the last one.
    if (used < m_totalWidth)
        widths.last() += m_totalWidth - used;
    m_columnWidths = widths;
}

void FZBaseCollectionViewController::buildHeaderCells()
{
    m_headerRow->setVisible(showsHeaderRow());
    if (!showsHeaderRow())
        return;
    m_headerRow->setFixedHeight(headerRowHeight());
    const QString identifier = headerCellIdentifier();
    for (int column = 0; column < numberOfColumns(); ++column) {
        auto *cell = new FZSpotsSetsHeaderCollectionViewCell(m_headerRow);
        cell->setObjectName(QStringLiteral("%1_%2").arg(identifier).arg(column));
        cell->setColumn(column);
        cell->setDelegate(this);
        // The grid's border closes the last column; no divider beside it.
        cell->dividerView()->setVisible(column < numberOfColumns() - 1);
        cell->show();
        m_headerCells.append(cell);
    }
}

void FZBaseCollectionViewController::refreshHeaderCells()
{
    for (FZSpotsSetsHeaderCollectionViewCell *cell : std::as_const(m_headerCells)) {
        cell->setTitle(titleForColumnWithIndex(cell->column()));
        configureHeaderCell(cell, cell->column());
    }
}

void FZBaseCollectionViewController::configureHeaderCell(FZSpotsSetsHeaderCollectionViewCell *, int)
{
}

void FZBaseCollectionViewController::layoutHeaderCells()
{
    const int scrolled = m_collectionView->horizontalScrollBar()->value();
    QList<QRect> cells;
    for (FZSpotsSetsHeaderCollectionViewCell *cell : std::as_const(m_headerCells)) {
        const int column = cell->column();
        const QSizeF size = sizeForItemAtIndexPath(IndexPath(column, 0));
        const int left = qRound(columnX(column));
        cells.append(QRect(left - scrolled, 0, qRound(columnX(column) + size.width()) - left, headerRowHeight()));
    }
    if (Brightmere::View::textScale() > 1.0 && showsHeaderRow())
        m_headerRow->setFixedHeight(grownHeight(headerRowHeight(), cells, m_headerCells));
    for (qsizetype i = 0; i < m_headerCells.size(); ++i)
        m_headerCells.at(i)->setGeometry(cells.at(i).x(), 0, cells.at(i).width(), m_headerRow->height());
}

FZSpotsSetsCollectionViewCell *FZBaseCollectionViewController::cellAt(int section, int column) const
{
    const int columns = numberOfColumns();
    if (section < 0 || column < 0 || column >= columns)
        return nullptr;
    const qsizetype index = qsizetype(section) * columns + column;
    return index < m_cells.size() ? m_cells.at(index) : nullptr;
}

void FZBaseCollectionViewController::viewCellTouchUpInside(FZSpotsSetsHeaderCollectionViewCell *cell)
{
    if (!cell || !m_headerCells.contains(cell)) {
        BMLogger::sharedInstance().logFromModule(kModule, 2, "%@: tap from a heading cell not of this grid; ignored",
                                                 metaObject()->className());
        return;
    }
    columnSelected(cell->column());
}

bool FZBaseCollectionViewController::eventFilter(QObject *watched, QEvent *event)
{
    // However the cell got the focus (Tab after a drag, say), it is in sight.
    if (event->type() == QEvent::FocusIn && watched == currentCell())
        m_collectionView->ensureWidgetVisible(currentCell(), 0, 0);
    if (event->type() == QEvent::KeyPress && watched == currentCell()) {
        const auto *key = static_cast<QKeyEvent *>(event);
        if (key->modifiers() & ~Qt::KeypadModifier)
            return BMSDKUIBaseViewController::eventFilter(watched, event);
        switch (key->key()) {
        case Qt::Key_Up:
            moveCurrent(-1, 0);
            return true;
        case Qt::Key_Down:
            moveCurrent(1, 0);
            return true;
        case Qt::Key_Left:
            moveCurrent(0, -1);
            return true;
        case Qt::Key_Right:
            moveCurrent(0, 1);
            return true;
        case Qt::Key_Home:
            moveCurrent(0, -1, true);
            return true;
        case Qt::Key_End:
            moveCurrent(0, 1, true);
            return true;
        default:
            break;
        }
    }
    // The first width the grid gets fixes the columns; later ones lay out again.
    if (event->type() == QEvent::Resize || event->type() == QEvent::Show) {
        if (watched == m_collectionView->viewport())
            layoutCells();
        if (watched == m_collectionView->viewport() || watched == m_headerRow)
            layoutHeaderCells();
    }
    return BMSDKUIBaseViewController::eventFilter(watched, event);
}
