#pragma once

#include <QColor>
#include <QList>
#include <QPointer>
#include <QWidget>

class QLabel;
class QToolButton;

namespace Brightmere {

class BarButtonItem;
class NavigationItem;

// The bar above a navigation stack. It shows the top controller's navigation
// item: the title (a centred label, or the item's own title widget), its left
// and right buttons, and a back button when there is a controller to go back
// to, the top item has no left button and does not hide the back button.
// Tapping back emits backRequested(); the navigation controller pops.
class NavigationBar : public QWidget
{
    Q_OBJECT

public:
    static constexpr int kDefaultHeight = 44;

    explicit NavigationBar(QWidget *parent = nullptr);
    ~NavigationBar() override;

    // The item on top and the one under it (null at the root); the back
    // button shows the latter's title.
    void setTopItem(NavigationItem *topItem, NavigationItem *backItem = nullptr);
    NavigationItem *topItem() const;
    NavigationItem *backItem() const;

    QColor backgroundColor() const { return m_backgroundColor; }
    void setBackgroundColor(const QColor &color);
    QColor tintColor() const { return m_tintColor; }
    void setTintColor(const QColor &color);
    QColor titleColor() const { return m_titleColor; }
    void setTitleColor(const QColor &color);

    // A transparent bar draws nothing at all (no background, no hairline).
    bool isTransparent() const { return m_transparent; }
    void setTransparent(bool transparent);
    // A translucent bar lets the content run underneath it.
    bool isTranslucent() const { return m_translucent; }
    void setTranslucent(bool translucent);

    void setVisible(bool visible) override;

    // What the bar shows now, for screens and tests.
    bool isBackButtonShown() const;
    QToolButton *backButton() const { return m_backButton; }
    QLabel *titleLabel() const { return m_titleLabel; }
    QWidget *shownTitleWidget() const;
    QToolButton *leftButton() const;
    QList<QToolButton *> rightButtons() const;

    QSize sizeHint() const override;
    QSize minimumSizeHint() const override;

Q_SIGNALS:
    void backRequested();
    // Hidden or translucent changed: the container lays its content out anew.
    void placementChanged();

protected:
    void paintEvent(QPaintEvent *event) override;
    void resizeEvent(QResizeEvent *event) override;

private:
    void refresh();
    void relayout();
    static int fitButtonTitle(QToolButton *button, int maximumWidth);
    // With larger text: narrows the text buttons beside the title so the
    // title keeps its size; sets the room each text button gets and answers
    // the smallest size the title may shrink to.
    int giveTitlePriority(const QString &title, int room, int titleFloor, int &buttonRoom);
    void applyColors();
    void releaseTitleView();
    QToolButton *makeButton(BarButtonItem *item);
    void clearButtons();

    QPointer<NavigationItem> m_topItem;
    QPointer<NavigationItem> m_backItem;
    QPointer<QWidget> m_titleView;
    QLabel *m_titleLabel = nullptr;
    QToolButton *m_backButton = nullptr;
    QToolButton *m_leftButton = nullptr;
    QList<QToolButton *> m_rightButtons;
    QColor m_backgroundColor = QColor(0x1c, 0x1c, 0x1e);
    QColor m_tintColor = Qt::white;
    QColor m_titleColor = Qt::white;
    bool m_transparent = false;
    bool m_translucent = false;
};

} // namespace Brightmere
