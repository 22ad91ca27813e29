#include "BMLabel.h"

#include "BrightmereView.h"

#include <QPainter>
#include <QStyle>
#include <QTextLayout>

BMLabel::BMLabel(QWidget *parent)
    : QLabel(parent)
{
    setTextFormat(Qt::PlainText);
    baseInit();
}

BMLabel::BMLabel(const QString &text, QWidget *parent)
    : QLabel(parent)
{
    setTextFormat(Qt::PlainText);
    setText(text);
    baseInit();
}

void BMLabel::baseInit()
{
    Brightmere::View::setupFont(this);
}

void BMLabel::setMaximumLines(int lines)
{
    m_maximumLines = qMax(0, lines);
    if (m_maximumLines > 0)
        setWordWrap(true);
    updateGeometry();
    update();
}

bool BMLabel::limitsLines() const
{
    return m_maximumLines > 0 && textFormat() == Qt::PlainText;
}

QStringList BMLabel::linesForWidth(int width) const
{
    const QString shown = text();
    QStringList lines;
    if (shown.isEmpty() || width <= 0)
        return lines;
    const QFontMetrics metrics(font());
    QTextLayout layout(shown, font());
    QTextOption option;
    option.setWrapMode(QTextOption::WrapAtWordBoundaryOrAnywhere);
    layout.setTextOption(option);
    layout.beginLayout();
    for (;;) {
        QTextLine line = layout.createLine();
        if (!line.isValid())
            break;
        line.setLineWidth(width);
        const QString part = shown.mid(line.textStart(), line.textLength());
        if (m_maximumLines > 0 && lines.size() == m_maximumLines - 1) {
            // The last line allowed takes the rest of the text, cut to fit.
            const QString rest = shown.mid(line.textStart()).simplified();
            lines.append(metrics.elidedText(rest, Qt::ElideRight, width));
            break;
        }
        lines.append(part.trimmed());
    }
    layout.endLayout();
    return lines;
}

int BMLabel::heightForWidth(int width) const
{
    if (!limitsLines())
        return QLabel::heightForWidth(width);
    const QMargins margins = contentsMargins();
    const int lines = int(linesForWidth(width - margins.left() - margins.right()).size());
    return qMax(1, lines) * QFontMetrics(font()).lineSpacing() + margins.top() + margins.bottom();
}

QSize BMLabel::sizeHint() const
{
    const QSize hint = QLabel::sizeHint();
    if (!limitsLines())
        return hint;
    return QSize(hint.width(), heightForWidth(hint.width()));
}

QSize BMLabel::minimumSizeHint() const
{
    const QSize hint = QLabel::minimumSizeHint();
    if (!limitsLines())
        return hint;
    return QSize(hint.width(), qMin(hint.height(), heightForWidth(qMax(1, hint.width()))));
}

void BMLabel::paintEvent(QPaintEvent *event)
{
    if (!limitsLines()) {
        QLabel::paintEvent(event);
        return;
    }
    QPainter painter(this);
    const QRect area = contentsRect();
    const QStringList lines = linesForWidth(area.width());
    const int lineHeight = QFontMetrics(font()).lineSpacing();
    const int blockHeight = int(lines.size()) * lineHeight;
    int y = area.top();
    if (alignment() & Qt::AlignVCenter)
        y += (area.height() - blockHeight) / 2;
    else if (alignment() & Qt::AlignBottom)
        y += area.height() - blockHeight;
    const Qt::Alignment horizontal = QStyle::visualAlignment(layoutDirection(), alignment() & Qt::AlignHorizontal_Mask);
    painter.setPen(palette().color(isEnabled() ? QPalette::Active : QPalette::Disabled, foregroundRole()));
    painter.setFont(font());
    for (const QString &line : lines) {
        painter.drawText(QRect(area.left(), y, area.width(), lineHeight), int(horizontal | Qt::AlignVCenter), line);
        y += lineHeight;
    }
}
