#include "FrameworkBundle.h"

#include <Brightmere/core/BMLogger.h>

#include <QFileInfo>

namespace Brightmere {

QVariant FrameworkBundle::infoValue(const QString &key)
{
    if (key == QLatin1String(kShortVersionKey))
        return QStringLiteral(BRIGHTMERE_VERSION);
    if (key == QLatin1String(kBuildVersionKey))
        return QStringLiteral(BRIGHTMERE_BUILD_NUMBER);
    if (key == QLatin1String(kIdentifierKey))
        return QStringLiteral("com.brightmere.BrightmereMobileSDKUI");
    return {};
}

QString FrameworkBundle::shortVersion()
{
    return infoValue(QLatin1String(kShortVersionKey)).toString();
}

QString FrameworkBundle::buildVersion()
{
    return infoValue(QLatin1String(kBuildVersionKey)).toString();
}

QString FrameworkBundle::identifier()
{
    return infoValue(QLatin1String(kIdentifierKey)).toString();
}

QString FrameworkBundle::resourcePath(const QString &relativePath)
{
    return QStringLiteral(":/") + relativePath;
}

QIcon FrameworkBundle::imageNamed(const QString &name)
{
    if (name.isEmpty())
        return {};
    // Names come from the screens with a ".png" now and then; the images are
    // drawn as SVG, so the extension only picks nothing.
    QString base = name;
    const QString suffix = QFileInfo(name).suffix().toLower();
    if (suffix == QLatin1String("png") || suffix == QLatin1String("svg"))
        base.chop(suffix.size() + 1);
    for (const char *extension : {".svg", ".png"}) {
        const QString path = resourcePath(QStringLiteral("images/") + base + QLatin1String(extension));
        if (QFileInfo::exists(path))
            return QIcon(path);
    }
    BMLogger::sharedInstance().logFromModule(QStringLiteral("FrameworkBundle"), 3, "no image named '%@'", name);
    return {};
}

} // namespace Brightmere
