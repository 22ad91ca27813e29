#pragma once

#include "BMNotificationDelivery.h"
#include <Brightmere/core/BMBaseNotification.h>

#include <QString>
#include <QVariantMap>

#include <functional>
#include <memory>

// Registers a subscriber's operation with BMBaseNotification so that it is
// called as its BMNotificationDelivery asks. The localisation notifications
// share it; each passes a factory that rebuilds a notification of its own
// class for a call queued to the main thread (the posted object is gone by
// then).
class BMSubscriberDelivery
{
public:
    using Call = std::function<void(BMBaseNotification *notification)>;
    using Factory = std::function<std::unique_ptr<BMBaseNotification>(const QString &name,
                                                                      const QVariantMap &properties)>;

    // Registers call for name, restricted to notifications of cls. A
    // subscriber registered again for the same name and class replaces its
    // earlier registration; main-thread calls still queued for it are dropped.
    static void subscribe(const void *subscriber, const QString &name, const QMetaObject *cls,
                          BMNotificationDelivery delivery, Call call, Factory factory);

    // Removes the subscriber's registration for name and class; queued
    // main-thread calls for it are dropped.
    static void unsubscribe(const void *subscriber, const QString &name, const QMetaObject *cls);
};
