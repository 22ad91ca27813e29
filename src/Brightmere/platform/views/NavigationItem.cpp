#include "NavigationItem.h"

#include "BarButtonItem.h"

#include <QWidget>

namespace Brightmere {

namespace {
const char kAdoptedProperty[] = "_brightmere_adopted_by_item";
}

NavigationItem::NavigationItem(QObject *parent)
    : QObject(parent)
{
}

NavigationItem::~NavigationItem()
{
    // The bar may be showing the title widget as its child; deleting it
    // removes it from the bar as well.
    delete m_titleView.data();
}

void NavigationItem::setTitle(const QString &title)
{
    if (m_title == title)
        return;
    m_title = title;
    Q_EMIT changed();
}

void NavigationItem::setTitleView(QWidget *titleView)
{
    if (m_titleView == titleView)
        return;
    if (QWidget *old = m_titleView.data()) {
        old->hide();
        old->deleteLater();
    }
    m_titleView = titleView;
    Q_EMIT changed();
}

QWidget *NavigationItem::titleView() const
{
    return m_titleView.data();
}

BarButtonItem *NavigationItem::leftBarButtonItem() const
{
    return m_leftItem.data();
}

void NavigationItem::setLeftBarButtonItem(BarButtonItem *item)
{
    if (m_leftItem == item)
        return;
    BarButtonItem *old = m_leftItem.data();
    adopt(item);
    m_leftItem = item;
    releaseReplaced(old);
    Q_EMIT changed();
}

QList<BarButtonItem *> NavigationItem::rightBarButtonItems() const
{
    QList<BarButtonItem *> items;
    for (const auto &item : m_rightItems) {
        if (item)
            items.append(item.data());
    }
    return items;
}

void NavigationItem::setRightBarButtonItems(const QList<BarButtonItem *> &items)
{
    const QList<BarButtonItem *> old = rightBarButtonItems();
    m_rightItems.clear();
    for (BarButtonItem *item : items) {
        if (!item || m_rightItems.contains(item))
            continue;
        adopt(item);
        m_rightItems.append(item);
    }
    for (BarButtonItem *item : old)
        releaseReplaced(item);
    Q_EMIT changed();
}

BarButtonItem *NavigationItem::rightBarButtonItem() const
{
    const QList<BarButtonItem *> items = rightBarButtonItems();
    return items.isEmpty() ? nullptr : items.first();
}

void NavigationItem::setRightBarButtonItem(BarButtonItem *item)
{
    setRightBarButtonItems(item ? QList<BarButtonItem *>{item} : QList<BarButtonItem *>{});
}

void NavigationItem::setHidesBackButton(bool hides)
{
    if (m_hidesBackButton == hides)
        return;
    m_hidesBackButton = hides;
    Q_EMIT changed();
}

void NavigationItem::adopt(BarButtonItem *item)
{
    if (!item)
        return;
    if (!item->parent()) {
        item->setParent(this);
        item->setProperty(kAdoptedProperty, true);
    }
    watch(item);
}

void NavigationItem::releaseReplaced(BarButtonItem *item)
{
    if (!item || item == m_leftItem || m_rightItems.contains(item))
        return;
    disconnect(item, nullptr, this, nullptr);
    if (item->parent() == this && item->property(kAdoptedProperty).toBool())
        item->deleteLater();
}

void NavigationItem::watch(BarButtonItem *item)
{
    // A change of a button's title or icon is a change of the item.
    connect(item, &BarButtonItem::changed, this, &NavigationItem::changed, Qt::UniqueConnection);
}

void NavigationItem::setBackAccessibleName(const QString &name)
{
    if (m_backAccessibleName == name)
        return;
    m_backAccessibleName = name;
    Q_EMIT changed();
}

} // namespace Brightmere
