#include "BMScreenChangeNotification.h"

#include <Brightmere/i18n/BMSubscriberDelivery.h>

namespace {

const QString kName = QString::fromLatin1(kScreenChange);

} // namespace

BMScreenChangeNotification::BMScreenChangeNotification(const QString &name, const QVariantMap &properties,
                                                       QObject *parent)
    : BMBaseNotification(name, properties, parent)
{
}

void BMScreenChangeNotification::subscribe(BMScreenChangeSubscriber *subscriber)
{
    BMSubscriberDelivery::subscribe(
        subscriber, kName, &BMScreenChangeNotification::staticMetaObject, BMNotificationDelivery::PostingThread,
        [subscriber](BMBaseNotification *notification) {
            subscriber->notifyScreenChange(static_cast<BMScreenChangeNotification *>(notification));
        },
        [](const QString &name, const QVariantMap &properties) -> std::unique_ptr<BMBaseNotification> {
            return std::make_unique<BMScreenChangeNotification>(name, properties);
        });
}

void BMScreenChangeNotification::unsubscribe(BMScreenChangeSubscriber *subscriber)
{
    BMSubscriberDelivery::unsubscribe(subscriber, kName, &BMScreenChangeNotification::staticMetaObject);
}

void BMScreenChangeNotification::postScreenChange(const BMGAScreenClass &screen)
{
    const QVariantMap properties{
        {propertyKey(kBMScreenChangeNotificationName), screen.screenName()},
        {propertyKey(kBMScreenChangeNotificationClass), QVariant::fromValue(screen.screenClass())},
    };
    BMScreenChangeNotification(kName, properties).post();
}

QString BMScreenChangeNotification::screenName() const
{
    return properties().value(propertyKey(kBMScreenChangeNotificationName)).toString();
}

const QMetaObject *BMScreenChangeNotification::screenClass() const
{
    return properties().value(propertyKey(kBMScreenChangeNotificationClass)).value<const QMetaObject *>();
}
