#pragma once

#include <QList>
#include <QString>
#include <QTextCharFormat>
#include <QTextLayout>

/// A plain text with character formats over ranges of it (fonts, colours)
/// and one alignment for the whole paragraph: what the grid cells show. A
/// later range wins where it overlaps an earlier one, but only for the
/// properties it sets, so a colour laid over everything keeps the fonts.
class FZAttributedText
{
public:
    FZAttributedText() = default;
    explicit FZAttributedText(const QString &text);

    QString string() const { return m_text; }
    qsizetype length() const { return m_text.size(); }
    bool isEmpty() const { return m_text.isEmpty(); }

    /// A range reaching outside the text is cut to it (logged); an empty one
    /// is ignored.
    void addAttributes(qsizetype start, qsizetype length, const QTextCharFormat &format);
    /// The colour over the whole text, on top of every other range.
    void addForegroundOverAll(const QColor &color);

    Qt::Alignment alignment() const { return m_alignment; }
    void setAlignment(Qt::Alignment alignment) { m_alignment = alignment; }

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
