#include "BrightmereImage.h"

#include <Brightmere/core/BMLogger.h>
#include <Brightmere/resources/FrameworkBundle.h>

#include <QFileInfo>

namespace Brightmere::Image {

QIcon named(const QString &name)
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
        const QString path = FrameworkBundle::resourcePath(QStringLiteral("images/") + base + QLatin1String(extension));
        if (QFileInfo::exists(path))
            return QIcon(path);
    }
    BMLogger::sharedInstance().logFromModule(QStringLiteral("BrightmereImage"), 3, "no image named '%@'", name);
    return {};
}

} // namespace Brightmere::Image
