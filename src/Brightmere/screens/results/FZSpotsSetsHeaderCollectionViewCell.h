#pragma once

#include <QPointer>
#include <QWidget>

class FZAttributedText;
class FZSpotsSetsHeaderCollectionViewCellDelegate;
class QLabel;
class QPushButton;

// A tappable heading cell: a title (several lines allowed) over an optional
// detail line, an optional icon beside them, a divider on its right edge.
// A transparent button covers the whole cell; a tap on it tells the delegate.
class FZSpotsSetsHeaderCollectionViewCell : public QWidget
{
    Q_OBJECT

public:
    explicit FZSpotsSetsHeaderCollectionViewCell(QWidget *parent = nullptr);

    QLabel *titleLabel() const { return m_titleLabel; }
    QLabel *detailLabel() const { return m_detailLabel; }
    QWidget *dividerView() const { return m_dividerView; }
    QLabel *iconImageView() const { return m_iconImageView; }
    QPushButton *button() const { return m_button; }

    void setTitle(const FZAttributedText &title);
    // The title as plain text, for readers.
    QString title() const { return m_sortTitle; }
    // Hidden while empty.
    void setDetail(const QString &detail);
    // The kit's image of that name; an empty name hides the icon. The name
    // shown is kept for readers (iconName()).
    void setIconNamed(const QString &name);
    // Whether the column's order is in force; when not, a reader hears only
    // what a tap sorts by, whatever arrow shows.
    void setSortInForce(bool inForce);
    QString iconName() const { return m_iconName; }

    // Not owned: the grid that sets itself here also owns the cell.
    FZSpotsSetsHeaderCollectionViewCellDelegate *delegate() const { return m_delegate; }
    void setDelegate(FZSpotsSetsHeaderCollectionViewCellDelegate *delegate) { m_delegate = delegate; }

    // The column the grid placed it over.
    int column() const { return m_column; }
    void setColumn(int column) { m_column = column; }

protected:
    void resizeEvent(QResizeEvent *event) override;

private:
    void nameSortButton();
    void touchUpInside();

    QLabel *m_titleLabel = nullptr;
    QLabel *m_detailLabel = nullptr;
    QWidget *m_dividerView = nullptr;
    QLabel *m_iconImageView = nullptr;
    QPushButton *m_button = nullptr;
    QString m_iconName;
    QString m_sortTitle;
    bool m_sortInForce = true;
    FZSpotsSetsHeaderCollectionViewCellDelegate *m_delegate = nullptr;
    int m_column = -1;
};
