#pragma once

#include <QIcon>
#include <QString>

// The kit's images, bundled as resources beside its strings and sounds.
namespace Brightmere::Image {

/// One of the kit's images by name, with or without an extension
/// ("buttonStart.png" and "buttonStart" are the same image, drawn from
/// images/buttonStart.svg). A null icon for an empty name; an unknown name is
/// logged and gives a null icon.
QIcon named(const QString &name);

} // namespace Brightmere::Image
