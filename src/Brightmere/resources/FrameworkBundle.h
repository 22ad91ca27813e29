#pragma once

#include <Brightmere/SDKUIExport.h>

#include <QString>
#include <QVariant>

namespace Brightmere {

/// The kit's own bundle: its info dictionary (version and build) and the path
/// of its resources, as the host's bundle is told apart from the framework's.
class BRIGHTMERE_SDKUI_EXPORT FrameworkBundle
{
public:
    /// Info key of the kit's version ("1.0.0").
    static constexpr const char *kShortVersionKey = "CFBundleShortVersionString";
    /// Info key of the kit's build number.
    static constexpr const char *kBuildVersionKey = "CFBundleVersion";
    /// Info key of the kit's identifier.
    static constexpr const char *kIdentifierKey = "CFBundleIdentifier";

    /// A value of the info dictionary; invalid for an unknown key.
    static QVariant infoValue(const QString &key);
    /// The kit's version.
    static QString shortVersion();
    /// The kit's build number.
    static QString buildVersion();
    /// The kit's identifier.
    static QString identifier();

    /// The resource path of a bundled file, for example "sounds/click.wav" ->
    /// ":/sounds/click.wav".
    static QString resourcePath(const QString &relativePath);
};

} // namespace Brightmere
