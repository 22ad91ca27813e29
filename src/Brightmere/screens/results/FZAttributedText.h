#pragma once

#include <Brightmere/SDKUIExport.h>

#include <QList>
#include <QString>
#include <QTextCharFormat>
#include <QTextLayout>

/// A plain text with character formats over ranges of it (fonts, colours)
/// and one alignment for the whole paragraph: what the grid cells show. A
/// later range wins where it overlaps an earlier one, but only for the
/// properties it sets, so a colour laid over everything keeps the fonts.
class BRIGHTMERE_SDKUI_EXPORT FZAttributedText
{
public:
    FZAttributedText() = default;
    /// Plain text, without formats, aligned left.
    explicit FZAttributedText(const QString &text);

    /// The text.
    QString string() const { return m_text; }
    /// The text's length in characters.
    qsizetype length() const { return m_text.size(); }
    /// Whether the text is empty.
    bool isEmpty() const { return m_text.isEmpty(); }

    /// A range reaching outside the text is cut to it (logged); an empty one
    /// is ignored.
    void addAttributes(qsizetype start, qsizetype length, const QTextCharFormat &format);
    /// The colour over the whole text, on top of every other range.
    void addForegroundOverAll(const QColor &color);

    /// How a cell aligns the text.
    Qt::Alignment alignment() const { return m_alignment; }
    /// Sets how a cell aligns the text.
    void setAlignment(Qt::Alignment alignment) { m_alignment = alignment; }

    /// The formatted ranges, in the order added.
    const QList<QTextLayout::FormatRange> &formats() const { return m_formats; }
    /// Every range covering the position merged in order; empty outside the text.
    QTextCharFormat formatAt(qsizetype position) const;

    /// Rich text for a QLabel.
    QString toHtml() const;

private:
    QString m_text;
    QList<QTextLayout::FormatRange> m_formats;
    Qt::Alignment m_alignment = Qt::AlignLeft;
};
