#include "FZAttributedText.h"

#include <Brightmere/core/BMLogger.h>

#include <QTextBlock>
#include <QTextCursor>
#include <QTextDocument>

namespace {
const QString kModule = QStringLiteral("FZAttributedText");
}

FZAttributedText::FZAttributedText(const QString &text)
    : m_text(text)
{
}

void FZAttributedText::addAttributes(qsizetype start, qsizetype length, const QTextCharFormat &format)
{
    const qsizetype from = qBound<qsizetype>(0, start, m_text.size());
    const qsizetype to = qBound<qsizetype>(from, start + length, m_text.size());
    if (from != start || to != start + length)
        BMLogger::sharedInstance().logFromModule(kModule, 2, "range %@+%@ outside a text of %@ characters; cut to it",
                                                 QString::number(start), QString::number(length),
                                                 QString::number(m_text.size()));
    if (to <= from)
        return;
    m_formats.append({int(from), int(to - from), format});
}

void FZAttributedText::addForegroundOverAll(const QColor &color)
{
    QTextCharFormat format;
    format.setForeground(color);
    addAttributes(0, m_text.size(), format);
}

QTextCharFormat FZAttributedText::formatAt(qsizetype position) const
{
    QTextCharFormat merged;
    if (position < 0 || position >= m_text.size())
        return merged;
    for (const QTextLayout::FormatRange &range : m_formats) {
        if (position >= range.start && position < range.start + range.length)
            merged.merge(range.format);
    }
    return merged;
}

QString FZAttributedText::toHtml() const
{
    QTextDocument document;
    document.setDocumentMargin(0);
    document.setPlainText(m_text);
    QTextCursor cursor(&document);
    for (const QTextLayout::FormatRange &range : m_formats) {
        cursor.setPosition(range.start);
        cursor.setPosition(range.start + range.length, QTextCursor::KeepAnchor);
        cursor.mergeCharFormat(range.format);
    }
    QTextBlockFormat block;
    block.setAlignment(m_alignment);
    cursor.select(QTextCursor::Document);
    cursor.mergeBlockFormat(block);
    return document.toHtml();
}
