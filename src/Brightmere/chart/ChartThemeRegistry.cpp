#include "ChartThemeRegistry.h"

#include "DarkGradientTheme.h"
#include "_CPTBMClearTheme.h"
#include <Brightmere/core/BMLogger.h>

#include <QMutex>
#include <QMutexLocker>

#include <map>

namespace {

const QString kModule = QStringLiteral("ChartThemeRegistry");

// The kit's own themes are in it from the start, whichever parts of the kit
// a program links; a theme registered under one of their names replaces it.
struct Registry
{
    Registry()
    {
        factories[QString::fromLatin1(kCPTBMClearTheme)] = [] { return std::make_shared<const _CPTBMClearTheme>(); };
        factories[QString::fromLatin1(kCPTDarkGradientTheme)] = [] {
            return std::make_shared<const DarkGradientTheme>();
        };
    }

    QMutex mutex;
    std::map<QString, ChartThemeRegistry::Factory> factories;
};

// Made on first use, which may come while other static objects are made.
Registry &registry()
{
    static Registry instance;
    return instance;
}

} // namespace

bool ChartThemeRegistry::registerTheme(const QString &name, Factory factory)
{
    if (name.isEmpty() || !factory) {
        BMLogger::sharedInstance().logFromModule(kModule, 3, "a theme needs a name and a factory; '%@' refused", name);
        return false;
    }
    Registry &r = registry();
    QMutexLocker lock(&r.mutex);
    if (r.factories.count(name))
        BMLogger::sharedInstance().logFromModule(kModule, 2, "theme '%@' registered again; the new one is used", name);
    r.factories[name] = std::move(factory);
    return true;
}

ChartTheme::Ptr ChartThemeRegistry::themeNamed(const QString &name)
{
    Factory factory;
    {
        Registry &r = registry();
        QMutexLocker lock(&r.mutex);
        const auto found = r.factories.find(name);
        if (found != r.factories.end())
            factory = found->second;
    }
    if (!factory) {
        BMLogger::sharedInstance().logFromModule(kModule, 3, "no theme named '%@'", name);
        return nullptr;
    }
    return factory();
}

QStringList ChartThemeRegistry::themeNames()
{
    Registry &r = registry();
    QMutexLocker lock(&r.mutex);
    QStringList names;
    for (const auto &entry : r.factories)
        names.append(entry.first);
    return names;
}
