#pragma once

#include <Brightmere/SDKUIExport.h>

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
class BRIGHTMERE_SDKUI_EXPORT NavigationItem : public QObject
{
    Q_OBJECT

public:
    /// An item with no title and no buttons.
    explicit NavigationItem(QObject *parent = nullptr);
    ~NavigationItem() override;

    /// The title shown in the bar's middle.
    QString title() const { return m_title; }
    /// Changes the title.
    void setTitle(const QString &title);

    /// The custom title widget shown instead of the title; null when none.
    QWidget *titleView() const;
    /// Shows titleView in place of the title (adopted; null goes back to the title).
    void setTitleView(QWidget *titleView);

    /// The button on the bar's left; null for the back button.
    BarButtonItem *leftBarButtonItem() const;
    /// Sets the left button; null gives the back button again.
    void setLeftBarButtonItem(BarButtonItem *item);

    /// The first item is the rightmost, as the platform orders them.
    QList<BarButtonItem *> rightBarButtonItems() const;
    /// Sets the right buttons, rightmost first.
    void setRightBarButtonItems(const QList<BarButtonItem *> &items);
    /// The rightmost button; null when none.
    BarButtonItem *rightBarButtonItem() const;
    /// Makes item the only right button (none for null).
    void setRightBarButtonItem(BarButtonItem *item);

    /// What assistive tools call the back button that leads to this item
    /// ("Back to ..."); empty: the title.
    QString backAccessibleName() const { return m_backAccessibleName; }
    /// Sets the back button's name for assistive tools.
    void setBackAccessibleName(const QString &name);

    /// Whether the back button is left out.
    bool hidesBackButton() const { return m_hidesBackButton; }
    /// Leaves the back button out or shows it again.
    void setHidesBackButton(bool hides);

Q_SIGNALS:
    /// Something the bar shows changed.
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
