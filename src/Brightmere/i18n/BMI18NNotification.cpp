#include "BMI18NNotification.h"

#include "BMSubscriberDelivery.h"

namespace {

const QString kAvailableName = QString::fromLatin1(kTextBundleAvailable);
const QString kNotAvailableName = QString::fromLatin1(kTextBundleNotAvailable);

std::unique_ptr<BMBaseNotification> rebuild(const QString &name, const QVariantMap &properties)
{
    return std::make_unique<BMI18NNotification>(name, properties);
}

} // namespace

BMI18NNotification::BMI18NNotification(const QString &name, const QVariantMap &properties, QObject *parent)
    : BMBaseNotification(name, properties, parent)
{
}

void BMI18NNotification::subscribe(BMI18NNotificationSubscriber *subscriber, BMNotificationDelivery delivery)
{
    const QMetaObject *cls = &BMI18NNotification::staticMetaObject;
    BMSubscriberDelivery::subscribe(
        subscriber, kAvailableName, cls, delivery,
        [subscriber](BMBaseNotification *notification) {
            subscriber->notifyTextBundleAvailable(static_cast<BMI18NNotification *>(notification));
        },
        rebuild);
    BMSubscriberDelivery::subscribe(
        subscriber, kNotAvailableName, cls, delivery,
        [subscriber](BMBaseNotification *notification) {
            subscriber->notifyTextBundleNotAvailable(static_cast<BMI18NNotification *>(notification));
        },
        rebuild);
}

void BMI18NNotification::unsubscribe(BMI18NNotificationSubscriber *subscriber)
{
    const QMetaObject *cls = &BMI18NNotification::staticMetaObject;
    BMSubscriberDelivery::unsubscribe(subscriber, kAvailableName, cls);
    BMSubscriberDelivery::unsubscribe(subscriber, kNotAvailableName, cls);
}

void BMI18NNotification::postTextBundleAvailable()
{
    BMI18NNotification(kAvailableName, {}).post();
}

void BMI18NNotification::postTextBundleNotAvailable()
{
    BMI18NNotification(kNotAvailableName, {}).post();
}
