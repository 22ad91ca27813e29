#pragma once

#include <QIcon>
#include <QString>
#include <QVariant>

namespace Brightmere {

/// The kit's own bundle: its info dictionary (version and build) and the path
/// of its resources, as the host's bundle is told apart from the framework's.
class FrameworkBundle
{
public:
    static constexpr const char *kShortVersionKey = "CFBundleShortVersionString";
    static constexpr const char *kBuildVersionKey = "CFBundleVersion";
    static constexpr const char *kIdentifierKey = "CFBundleIdentifier";

    /// A value of the info dictionary; invalid for an unknown key.
    static QVariant infoValue(const QString &key);
    static QString shortVersion();
    static QString buildVersion();
    static QString identifier();

    /// The resource path of a bundled file, for example "sounds/click.wav" ->
    /// ":/sounds/click.wav".
    static QString resourcePath(const QString &relativePath);

    /// One of the kit's images by name, with or without an extension
    /// ("buttonStart.png" and "buttonStart" are the same image, drawn from
    /// images/buttonStart.svg). A null icon for an empty name; an unknown
    /// name is logged and gives a null icon.
    static QIcon imageNamed(const QString &name);
};

} // namespace Brightmere
