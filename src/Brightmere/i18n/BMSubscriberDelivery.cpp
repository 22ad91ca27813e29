#include "BMSubscriberDelivery.h"

#include <Brightmere/core/BMLogger.h>
#include <Brightmere/platform/foundation/MainQueue.h>

#include <atomic>
#include <exception>
#include <map>
#include <mutex>
#include <tuple>

namespace {

const QString kModule = QStringLiteral("BMSubscriberDelivery");

using Key = std::tuple<const void *, QString, const QMetaObject *>;
using AliveFlag = std::shared_ptr<std::atomic<bool>>;

// One flag per live main-thread registration: a queued call runs only while
// its registration's flag is still set.
struct Registrations
{
    std::mutex mutex;
    std::map<Key, AliveFlag> flags;
};

Registrations &registrations()
{
    static Registrations r;
    return r;
}

AliveFlag replaceFlag(const Key &key, bool keep)
{
    Registrations &r = registrations();
    std::lock_guard lock(r.mutex);
    auto it = r.flags.find(key);
    if (it != r.flags.end()) {
        it->second->store(false);
        r.flags.erase(it);
    }
    if (!keep)
        return {};
    auto flag = std::make_shared<std::atomic<bool>>(true);
    r.flags.emplace(key, flag);
    return flag;
}

// A subscriber's exception must not unwind through the poster or the event loop.
void callSafely(const BMSubscriberDelivery::Call &call, BMBaseNotification *notification)
{
    try {
        call(notification);
    } catch (const std::exception &e) {
        BMLogger::sharedInstance().logFromModule(kModule, 3, "a subscriber of %@ threw (%@); the exception was dropped",
                                                 notification->name(), e.what());
    } catch (...) {
        BMLogger::sharedInstance().logFromModule(kModule, 3, "a subscriber of %@ threw; the exception was dropped",
                                                 notification->name());
    }
}

} // namespace

void BMSubscriberDelivery::subscribe(const void *subscriber, const QString &name, const QMetaObject *cls,
                                     BMNotificationDelivery delivery, Call call, Factory factory)
{
    if (!subscriber || !call) {
        BMLogger::sharedInstance().logFromModule(kModule, 3, "subscribe to %@: ignored a registration without %@",
                                                 name, subscriber ? "an operation" : "a subscriber");
        return;
    }
    const Key key{subscriber, name, cls};
    if (delivery == BMNotificationDelivery::PostingThread) {
        replaceFlag(key, false);
        BMBaseNotification::associateSelector(
            [call = std::move(call)](BMBaseNotification *notification) { callSafely(call, notification); },
            subscriber, name, cls);
        return;
    }

    const AliveFlag alive = replaceFlag(key, true);
    BMBaseNotification::associateSelector(
        [alive, call = std::move(call), factory = std::move(factory)](BMBaseNotification *notification) {
            if (Brightmere::MainQueue::isMainThread()) {
                callSafely(call, notification);
                return;
            }
            Brightmere::MainQueue::async([alive, call, factory, name = notification->name(),
                                          properties = notification->properties()] {
                if (!alive->load())
                    return;
                const std::unique_ptr<BMBaseNotification> copy = factory(name, properties);
                callSafely(call, copy.get());
            });
        },
        subscriber, name, cls);
}

void BMSubscriberDelivery::unsubscribe(const void *subscriber, const QString &name, const QMetaObject *cls)
{
    if (!subscriber)
        return;
    replaceFlag(Key{subscriber, name, cls}, false);
    BMBaseNotification::removeSubscriber(subscriber, name, cls);
}
