#include "TableViewCell.h"

#include "AccessibleWidget.h"
#include "FocusRingOverlay.h"

#include <QPainter>
#include <QPainterPath>
#include <QToolButton>

namespace Brightmere {

namespace {

// A waste bin in white, drawn at twice the size so it stays crisp on dense
// screens.
QIcon deleteGlyph()
{
    constexpr int kSide = 22;
    constexpr qreal kScale = 2.0;
    QPixmap pixmap(QSize(kSide, kSide) * kScale);
    pixmap.setDevicePixelRatio(kScale);
    pixmap.fill(Qt::transparent);
    QPainter painter(&pixmap);
    painter.setRenderHint(QPainter::Antialiasing);
    QPen pen(Qt::white, 1.8, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin);
    painter.setPen(pen);
    painter.setBrush(Qt::NoBrush);
    painter.drawLine(QPointF(4, 6), QPointF(18, 6));
    painter.drawLine(QPointF(9, 6), QPointF(9.5, 3.5));
    painter.drawLine(QPointF(9.5, 3.5), QPointF(12.5, 3.5));
    painter.drawLine(QPointF(12.5, 3.5), QPointF(13, 6));
    QPainterPath bin;
    bin.moveTo(6, 8);
    bin.lineTo(7, 19);
    bin.lineTo(15, 19);
    bin.lineTo(16, 8);
    painter.drawPath(bin);
    painter.drawLine(QPointF(9.5, 10.5), QPointF(9.8, 16.5));
    painter.drawLine(QPointF(12.5, 10.5), QPointF(12.2, 16.5));
    return QIcon(pixmap);
}

} // namespace

TableViewCell::TableViewCell(QWidget *parent)
    : QWidget(parent)
{
    AccessibleWidget::installFactory();
}

void TableViewCell::setDeleteAccessibleName(const QString &name)
{
    m_deleteAccessibleName = name;
    if (m_deleteStrip)
        m_deleteStrip->setAccessibleName(name);
}

void TableViewCell::setDeleteStripColor(const QColor &color)
{
    if (!color.isValid())
        return;
    m_deleteStripColor = color;
    paintDeleteStrip();
}

void TableViewCell::paintDeleteStrip()
{
    if (!m_deleteStrip)
        return;
    m_deleteStrip->setStyleSheet(QStringLiteral("QToolButton { background-color: %1; border: none; }"
                                                "QToolButton:pressed { background-color: %2; }")
                                     .arg(m_deleteStripColor.name(), m_deleteStripColor.darker(120).name()));
}

void TableViewCell::setAccessibleSelected(bool selected)
{
    if (m_selected == selected)
        return;
    m_selected = selected;
    QAccessible::State changed;
    changed.selected = true;
    AccessibleWidget::announceState(this, changed);
}

void TableViewCell::setEditing(bool editing, bool animated)
{
    Q_UNUSED(animated)
    m_editing = editing;
    if (editing && !m_deleteStrip) {
        // Made on first use: most rows are never edited.
        m_deleteStrip = new QToolButton(this);
        m_deleteStrip->setObjectName(QStringLiteral("deleteStrip"));
        m_deleteStrip->setAccessibleName(m_deleteAccessibleName);
        m_deleteStrip->setIcon(deleteGlyph());
        m_deleteStrip->setIconSize(QSize(22, 22));
        m_deleteStrip->setCursor(Qt::PointingHandCursor);
        // Delete on a focused row hands it the focus; a click leaves the
        // focus where it was.
        m_deleteStrip->setFocusPolicy(Qt::TabFocus);
        new FocusRingOverlay(m_deleteStrip);
        paintDeleteStrip();
        connect(m_deleteStrip, &QToolButton::clicked, this, &TableViewCell::deleteButtonClicked);
    }
    if (m_deleteStrip) {
        placeDeleteStrip();
        m_deleteStrip->setVisible(editing);
        if (editing)
            m_deleteStrip->raise();
    }
    update();
}

QWidget *TableViewCell::deleteStrip() const
{
    return m_deleteStrip;
}

void TableViewCell::resizeEvent(QResizeEvent *event)
{
    QWidget::resizeEvent(event);
    if (m_deleteStrip)
        placeDeleteStrip();
}

void TableViewCell::placeDeleteStrip()
{
    const int stripWidth = qMin(kDeleteStripWidth, width());
    m_deleteStrip->setGeometry(width() - stripWidth, 0, stripWidth, height());
}

} // namespace Brightmere
