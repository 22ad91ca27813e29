#include "AlertAction.h"

namespace Brightmere {

AlertAction::AlertAction(const QString &title, Style style, Handler handler)
    : m_title(title)
    , m_style(style)
    , m_handler(std::move(handler))
{
}

AlertAction AlertAction::actionWithTitle(const QString &title, Style style, Handler handler)
{
    return AlertAction(title, style, std::move(handler));
}

} // namespace Brightmere
