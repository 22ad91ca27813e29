#pragma once

#include <Brightmere/FoundationExport.h>

#include <QObject>
#include <QString>
#include <QVariantMap>

namespace Brightmere {

// One named event as the notification centre delivers it. `object` is the
// sender (may be null); it is only guaranteed to live while the delivery runs.
struct BRIGHTMERE_FOUNDATION_EXPORT Notification
{
    QString name;
    QObject *object = nullptr;
    QVariantMap userInfo;
};

} // namespace Brightmere
