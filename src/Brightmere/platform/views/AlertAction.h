#pragma once

#include <Brightmere/SDKUIExport.h>

#include <QString>

#include <functional>

namespace Brightmere {

/// One button of an alert: its title, its style and what pressing it does.
/// The handler runs after the alert has closed.
class BRIGHTMERE_SDKUI_EXPORT AlertAction
{
public:
    /// How the alert draws the button: plain, as the way out, or as a warning.
    enum class Style { Default, Cancel, Destructive };
    /// What pressing the button does.
    using Handler = std::function<void()>;

    AlertAction() = default;
    /// A button titled title, of style, running handler.
    AlertAction(const QString &title, Style style, Handler handler = {});

    /// The same as the constructor, under the platform's name.
    static AlertAction actionWithTitle(const QString &title, Style style, Handler handler);

    /// The button's title.
    QString title() const { return m_title; }
    /// The button's style.
    Style style() const { return m_style; }
    /// What pressing the button does; may be empty.
    Handler handler() const { return m_handler; }

private:
    QString m_title;
    Style m_style = Style::Default;
    Handler m_handler;
};

} // namespace Brightmere
