#include "FrameworkBundle.h"

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

} // namespace Brightmere
