#include "BMLanguageChangeNotification.h"

#include "BMSubscriberDelivery.h"

namespace {

const QString kName = QString::fromLatin1(kLanguageChange);

} // namespace

BMLanguageChangeNotification::BMLanguageChangeNotification(const QString &name, const QVariantMap &properties,
                                                           QObject *parent)
    : BMBaseNotification(name, properties, parent)
{
}

void BMLanguageChangeNotification::subscribe(BMLanguageChangeSubscriber *subscriber,
                                             BMNotificationDelivery delivery)
{
    BMSubscriberDelivery::subscribe(
        subscriber, kName, &BMLanguageChangeNotification::staticMetaObject, delivery,
        [subscriber](BMBaseNotification *notification) {
            subscriber->notifyLanguageChange(static_cast<BMLanguageChangeNotification *>(notification));
        },
        [](const QString &name, const QVariantMap &properties) -> std::unique_ptr<BMBaseNotification> {
            return std::make_unique<BMLanguageChangeNotification>(name, properties);
        });
}

void BMLanguageChangeNotification::unsubscribe(BMLanguageChangeSubscriber *subscriber)
{
    BMSubscriberDelivery::unsubscribe(subscriber, kName, &BMLanguageChangeNotification::staticMetaObject);
}

void BMLanguageChangeNotification::postLanguageChange()
{
    BMLanguageChangeNotification(kName, {}).post();
}
