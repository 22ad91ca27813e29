#include "ChartThemeRegistry.h"

#include <Brightmere/core/BMLogger.h>

#include <QMutex>
#include <QMutexLocker>

#include <map>

namespace {

const QString kModule = QStringLiteral("ChartThemeRegistry");

struct Registry
{
    QMutex mutex;
    std::map<QString, ChartThemeRegistry::Factory> factories;
};

// Filled while the library's static objects are made, so it must exist
// before any of them asks: a function-local static.
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
