#include "BMBaseNotification.h"

#include "BMLogger.h"
#include <Brightmere/platform/foundation/NotificationCenter.h>

#include <QMutex>

#include <memory>
#include <vector>

namespace {

const QString kModule = QStringLiteral("BMBaseNotification");

// One registration. Its address is what the notification centre knows the
// registration by, so that removal can tell apart two registrations of one
// subscriber for the same name with different classes.
struct Registration
{
    const void *subscriber = nullptr;
    QString name;
    const QMetaObject *cls = nullptr;
};

struct Registry
{
    QMutex mutex;
    std::vector<std::unique_ptr<Registration>> registrations;
};

Registry &registry()
{
    static Registry r;
    return r;
}

bool isDeliverable(const Brightmere::Notification &notification, const QMetaObject *cls)
{
    auto *posted = qobject_cast<BMBaseNotification *>(notification.object);
    if (!cls)
        return true;
    return posted && posted->metaObject()->inherits(cls);
}

// Removes the matching registrations from the registry and the centre. The
// caller holds the registry's mutex.
void removeMatching(Registry &r, const void *subscriber, const QString &name, const QMetaObject *cls,
                    bool exactClass)
{
    auto &list = r.registrations;
    for (auto it = list.begin(); it != list.end();) {
        const Registration &reg = **it;
        const bool match = reg.subscriber == subscriber && (name.isEmpty() || reg.name == name)
            && (exactClass ? reg.cls == cls : (!cls || reg.cls == cls));
        if (match) {
            Brightmere::NotificationCenter::defaultCenter().removeObserver(it->get());
            it = list.erase(it);
        } else {
            ++it;
        }
    }
}

} // namespace

BMBaseNotification::BMBaseNotification(const QString &name, const QVariantMap &properties, QObject *parent)
    : QObject(parent)
    , m_name(name)
    , m_properties(properties)
{
}

BMBaseNotification::~BMBaseNotification() = default;

void BMBaseNotification::post()
{
    if (m_name.isEmpty()) {
        BMLogger::sharedInstance().logFromModule(kModule, 3, "post: a notification without a name is not posted");
        return;
    }
    Brightmere::NotificationCenter::defaultCenter().postNotificationName(m_name, this, m_properties);
}

void BMBaseNotification::associateSelector(Operation operation, const void *subscriber, const QString &name,
                                           const QMetaObject *cls)
{
    if (!operation || !subscriber || name.isEmpty()) {
        BMLogger::sharedInstance().logFromModule(
            kModule, 3, "associateSelector: ignored a registration without %@",
            !operation ? "an operation" : (!subscriber ? "a subscriber" : "a name"));
        return;
    }
    auto registration = std::make_unique<Registration>();
    registration->subscriber = subscriber;
    registration->name = name;
    registration->cls = cls;

    // The centre's callback holds copies only, so a registration removed
    // during a delivery leaves nothing dangling behind.
    auto callback = [operation = std::move(operation), cls](const Brightmere::Notification &notification) {
        if (!isDeliverable(notification, cls))
            return;
        if (auto *posted = qobject_cast<BMBaseNotification *>(notification.object)) {
            operation(posted);
            return;
        }
        BMBaseNotification transient(notification.name, notification.userInfo);
        operation(&transient);
    };

    Registry &r = registry();
    QMutexLocker lock(&r.mutex);
    removeMatching(r, subscriber, name, cls, true);
    Brightmere::NotificationCenter::defaultCenter().addObserver(registration.get(), name, std::move(callback));
    r.registrations.push_back(std::move(registration));
}

void BMBaseNotification::removeSubscriber(const void *subscriber, const QString &name, const QMetaObject *cls)
{
    if (!subscriber)
        return;
    Registry &r = registry();
    QMutexLocker lock(&r.mutex);
    removeMatching(r, subscriber, name, cls, false);
}

int BMBaseNotification::subscriptionCount(const void *subscriber)
{
    Registry &r = registry();
    QMutexLocker lock(&r.mutex);
    int count = 0;
    for (const auto &reg : r.registrations) {
        if (reg->subscriber == subscriber)
            ++count;
    }
    return count;
}
