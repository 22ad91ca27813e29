#pragma once

#include <QIcon>
#include <QObject>
#include <QString>

#include <functional>

namespace Brightmere {

/// A button of the navigation bar: a title or an icon and the action a tap
/// runs. The bar draws it; the item only describes it, so a screen can change
/// it at any time and the bar follows.
class BarButtonItem : public QObject
{
    Q_OBJECT

public:
    enum class Style { Plain, Done };
    using Action = std::function<void()>;

    explicit BarButtonItem(QObject *parent = nullptr);
    BarButtonItem(const QString &title, Style style, Action action, QObject *parent = nullptr);
    BarButtonItem(const QIcon &icon, Style style, Action action, QObject *parent = nullptr);

    QString title() const { return m_title; }
    void setTitle(const QString &title);
    QIcon icon() const { return m_icon; }
    void setIcon(const QIcon &icon);
    Style style() const { return m_style; }
    void setStyle(Style style);
    bool isEnabled() const { return m_enabled; }
    void setEnabled(bool enabled);
    /// What assistive tools call the button, where the title does not say it
    /// (an icon alone); empty: the title.
    QString accessibleName() const { return m_accessibleName; }
    void setAccessibleName(const QString &name);
    Action action() const { return m_action; }
    void setAction(Action action);

    /// Runs the action as a tap does; nothing while disabled.
    void trigger();

Q_SIGNALS:
    void changed();
    void triggered();

private:
    QString m_title;
    QIcon m_icon;
    QString m_accessibleName;
    Style m_style = Style::Plain;
    bool m_enabled = true;
    Action m_action;
};

} // namespace Brightmere
