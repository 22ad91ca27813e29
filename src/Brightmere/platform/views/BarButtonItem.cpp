#include "BarButtonItem.h"

#include <QPointer>

namespace Brightmere {

BarButtonItem::BarButtonItem(QObject *parent)
    : QObject(parent)
{
}

BarButtonItem::BarButtonItem(const QString &title, Style style, Action action, QObject *parent)
    : QObject(parent)
    , m_title(title)
    , m_style(style)
    , m_action(std::move(action))
{
}

BarButtonItem::BarButtonItem(const QIcon &icon, Style style, Action action, QObject *parent)
    : QObject(parent)
    , m_icon(icon)
    , m_style(style)
    , m_action(std::move(action))
{
}

void BarButtonItem::setTitle(const QString &title)
{
    if (m_title == title)
        return;
    m_title = title;
    Q_EMIT changed();
}

void BarButtonItem::setIcon(const QIcon &icon)
{
    m_icon = icon;
    Q_EMIT changed();
}

void BarButtonItem::setStyle(Style style)
{
    if (m_style == style)
        return;
    m_style = style;
    Q_EMIT changed();
}

void BarButtonItem::setAccessibleName(const QString &name)
{
    if (m_accessibleName == name)
        return;
    m_accessibleName = name;
    Q_EMIT changed();
}

void BarButtonItem::setEnabled(bool enabled)
{
    if (m_enabled == enabled)
        return;
    m_enabled = enabled;
    Q_EMIT changed();
}

void BarButtonItem::setAction(Action action)
{
    m_action = std::move(action);
}

void BarButtonItem::trigger()
{
    if (!m_enabled)
        return;
    // The action may pop the screen that owns this item; keep a copy so the
    // callable outlives a replacement made from inside it.
    const Action action = m_action;
    QPointer<BarButtonItem> self(this);
    if (action)
        action();
    if (self)
        Q_EMIT triggered();
}

} // namespace Brightmere
