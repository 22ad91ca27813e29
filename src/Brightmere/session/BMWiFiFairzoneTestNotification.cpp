#include "BMWiFiFairzoneTestNotification.h"

#include <Brightmere/i18n/BMSubscriberDelivery.h>

namespace {

const QString kName = QString::fromLatin1(kWiFiFairzoneTestStarted);

} // namespace

BMWiFiFairzoneTestNotification::BMWiFiFairzoneTestNotification(const QString &name, const QVariantMap &properties,
                                                               QObject *parent)
    : BMBaseNotification(name, properties, parent)
{
}

void BMWiFiFairzoneTestNotification::subscribe(BMWiFiFairzoneTestSubscriber *subscriber)
{
    BMSubscriberDelivery::subscribe(
        subscriber, kName, &BMWiFiFairzoneTestNotification::staticMetaObject, BMNotificationDelivery::PostingThread,
        [subscriber](BMBaseNotification *notification) {
            subscriber->notifyWiFiFairzoneTestStarted(static_cast<BMWiFiFairzoneTestNotification *>(notification));
        },
        [](const QString &name, const QVariantMap &properties) -> std::unique_ptr<BMBaseNotification> {
            return std::make_unique<BMWiFiFairzoneTestNotification>(name, properties);
        });
}

void BMWiFiFairzoneTestNotification::unsubscribe(BMWiFiFairzoneTestSubscriber *subscriber)
{
    BMSubscriberDelivery::unsubscribe(subscriber, kName, &BMWiFiFairzoneTestNotification::staticMetaObject);
}

void BMWiFiFairzoneTestNotification::postWiFiFairzoneTestStarted()
{
    BMWiFiFairzoneTestNotification(kName, QVariantMap()).post();
}
