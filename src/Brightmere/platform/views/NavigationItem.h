#pragma once

#include <QList>
#include <QObject>
#include <QPointer>
#include <QString>

class QWidget;

namespace Brightmere {

class BarButtonItem;

/// What the navigation bar shows while its controller is on top: a title (or
/// a custom title widget), a left button, right buttons and whether the back
/// button is suppressed. Every change emits changed(), so the bar follows.
///
/// Ownership: a title widget is adopted (deleted when replaced or with the
/// item). A bar button item without a parent is adopted the same way; one
/// that already has a parent stays its parent's, so a screen can keep its
/// items and swap them in and out.
class NavigationItem : public QObject
{
    Q_OBJECT

public:
    explicit NavigationItem(QObject *parent = nullptr);
    ~NavigationItem() override;

    QString title() const { return m_title; }
    void setTitle(const QString &title);

    QWidget *titleView() const;
    void setTitleView(QWidget *titleView);

    BarButtonItem *leftBarButtonItem() const;
    void setLeftBarButtonItem(BarButtonItem *item);

    /// The first item is the rightmost, as the platform orders them.
    QList<BarButtonItem *> rightBarButtonItems() const;
    void setRightBarButtonItems(const QList<BarButtonItem *> &items);
    BarButtonItem *rightBarButtonItem() const;
    void setRightBarButtonItem(BarButtonItem *item);

    /// What assistive tools call the back button that leads to this item
    /// ("Back to ..."); empty: the title.
    QString backAccessibleName() const { return m_backAccessibleName; }
    void setBackAccessibleName(const QString &name);

    bool hidesBackButton() const { return m_hidesBackButton; }
    void setHidesBackButton(bool hides);

Q_SIGNALS:
    void changed();

private:
    void adopt(BarButtonItem *item);
    void releaseReplaced(BarButtonItem *item);
    void watch(BarButtonItem *item);

    QString m_title;
    QPointer<QWidget> m_titleView;
    QPointer<BarButtonItem> m_leftItem;
    QList<QPointer<BarButtonItem>> m_rightItems;
    bool m_hidesBackButton = false;
    QString m_backAccessibleName;
};

} // namespace Brightmere
