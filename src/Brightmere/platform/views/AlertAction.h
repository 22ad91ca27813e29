#pragma once

#include <QString>

#include <functional>

namespace Brightmere {

/// One button of an alert: its title, its style and what pressing it does.
/// The handler runs after the alert has closed.
class AlertAction
{
public:
    enum class Style { Default, Cancel, Destructive };
    using Handler = std::function<void()>;

    AlertAction() = default;
    AlertAction(const QString &title, Style style, Handler handler = {});

    static AlertAction actionWithTitle(const QString &title, Style style, Handler handler);

    QString title() const { return m_title; }
    Style style() const { return m_style; }
    Handler handler() const { return m_handler; }

private:
    QString m_title;
    Style m_style = Style::Default;
    Handler m_handler;
};

} // namespace Brightmere
