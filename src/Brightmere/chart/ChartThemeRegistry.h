#pragma once

#include "ChartTheme.h"

#include <QString>
#include <QStringList>

#include <functional>

// The themes a chart can be asked for by name: the kit's own ("BM Clear" and
// "Dark Gradients") from the first call on, and any a host adds.
class ChartThemeRegistry
{
public:
    using Factory = std::function<ChartTheme::Ptr()>;

    // Registering a name again replaces its factory (logged). An empty name
    // or factory is logged and refused.
    static bool registerTheme(const QString &name, Factory factory);

    // A new theme of that name; null (logged) for a name not registered.
    static ChartTheme::Ptr themeNamed(const QString &name);

    // Every registered name, sorted.
    static QStringList themeNames();
};
