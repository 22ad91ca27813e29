#pragma once

#include <Brightmere/FoundationExport.h>

#include "Notification.h"

#include <QMutex>

#include <functional>
#include <memory>
#include <vector>

namespace Brightmere {

// Named notifications, delivered synchronously on the posting thread to the
// observers of that name in the order they were added. Observers are
// identified by an address (usually `this`), so one call removes all of an
// observer's registrations. An observer removed while a notification is being
// delivered is not called afterwards, even by that same delivery.
class BRIGHTMERE_FOUNDATION_EXPORT NotificationCenter
{
public:
    using Callback = std::function<void(const Notification &)>;

    NotificationCenter() = default;
    NotificationCenter(const NotificationCenter &) = delete;
    NotificationCenter &operator=(const NotificationCenter &) = delete;

    static NotificationCenter &defaultCenter();

    // An empty name observes every notification; a non-null sender restricts
    // the registration to notifications posted with that object.
    void addObserver(const void *observer, const QString &name, Callback callback,
                     const QObject *sender = nullptr);
    void removeObserver(const void *observer);
    void removeObserver(const void *observer, const QString &name);

    void post(const Notification &notification);
    void postNotificationName(const QString &name, QObject *object = nullptr,
                              const QVariantMap &userInfo = {});

    int observerCount(const QString &name) const;

private:
    struct Registration
    {
        const void *observer = nullptr;
        QString name;
        const QObject *sender = nullptr;
        Callback callback;
        bool removed = false; // guarded by m_mutex
    };

    void markRemoved(const std::function<bool(const Registration &)> &match);

    mutable QMutex m_mutex;
    std::vector<std::shared_ptr<Registration>> m_registrations;
};

} // namespace Brightmere
