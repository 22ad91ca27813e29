#pragma once

#include <QWidget>

class FZAttributedText;
class QLabel;

// One cell of a grid: a label over a plain background, inset a little from
// the cell's edges, wrapping over as many lines as the text has.
class FZSpotsSetsCollectionViewCell : public QWidget
{
    Q_OBJECT

public:
    explicit FZSpotsSetsCollectionViewCell(QWidget *parent = nullptr);

    QLabel *textLabel() const { return m_textLabel; }

    // The identifier the grid made it for ("spotsSetCollectionViewCell").
    QString reuseIdentifier() const { return m_reuseIdentifier; }
    void setReuseIdentifier(const QString &identifier) { m_reuseIdentifier = identifier; }

    void setBackgroundColor(const QColor &color);
    QColor backgroundColor() const;

    void setAttributedText(const FZAttributedText &text);
    // The plain text last set, for readers that need no formatting.
    QString plainText() const { return m_plainText; }

private:
    QLabel *m_textLabel = nullptr;
    QString m_reuseIdentifier;
    QString m_plainText;
};
