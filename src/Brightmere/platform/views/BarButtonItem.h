#pragma once

#include <Brightmere/SDKUIExport.h>

#include <QIcon>
#include <QObject>
#include <QString>

#include <functional>

namespace Brightmere {

/// A button of the navigation bar: a title or an icon and the action a tap
/// runs. The bar draws it; the item only describes it, so a screen can change
/// it at any time and the bar follows.
class BRIGHTMERE_SDKUI_EXPORT BarButtonItem : public QObject
{
    Q_OBJECT

public:
    /// How the bar draws the item: plain, or bold for the screen's main action.
    enum class Style { Plain, Done };
    /// What a tap runs.
    using Action = std::function<void()>;

    /// An empty plain item; set its title or icon and action afterwards.
    explicit BarButtonItem(QObject *parent = nullptr);
    /// An item showing title.
    BarButtonItem(const QString &title, Style style, Action action, QObject *parent = nullptr);
    /// An item showing icon.
    BarButtonItem(const QIcon &icon, Style style, Action action, QObject *parent = nullptr);

    /// The title shown; empty for an icon item.
    QString title() const { return m_title; }
    /// Changes the title shown.
    void setTitle(const QString &title);
    /// The icon shown; null for a title item.
    QIcon icon() const { return m_icon; }
    /// Changes the icon shown.
    void setIcon(const QIcon &icon);
    /// How the item is drawn.
    Style style() const { return m_style; }
    /// Changes how the item is drawn.
    void setStyle(Style style);
    /// Whether a tap runs the action.
    bool isEnabled() const { return m_enabled; }
    /// Enables or disables the button.
    void setEnabled(bool enabled);
    /// What assistive tools call the button, where the title does not say it
    /// (an icon alone); empty: the title.
    QString accessibleName() const { return m_accessibleName; }
    /// Sets the name assistive tools use.
    void setAccessibleName(const QString &name);
    /// What a tap runs.
    Action action() const { return m_action; }
    /// Changes what a tap runs.
    void setAction(Action action);

    /// Runs the action as a tap does; nothing while disabled.
    void trigger();

Q_SIGNALS:
    /// Something the bar draws changed.
    void changed();
    /// The item was tapped (or trigger() was called) while enabled.
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
