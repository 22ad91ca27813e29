#include "NotificationCenter.h"

#include <algorithm>

namespace Brightmere {

NotificationCenter &NotificationCenter::defaultCenter()
{
    static NotificationCenter center;
    return center;
}

void NotificationCenter::addObserver(const void *observer, const QString &name, Callback callback,
                                     const QObject *sender)
{
    if (!observer || !callback)
        return;
    auto registration = std::make_shared<Registration>();
    registration->observer = observer;
    registration->name = name;
    registration->sender = sender;
    registration->callback = std::move(callback);
    QMutexLocker lock(&m_mutex);
    m_registrations.push_back(std::move(registration));
}

void NotificationCenter::removeObserver(const void *observer)
{
    markRemoved([observer](const Registration &r) { return r.observer == observer; });
}

void NotificationCenter::removeObserver(const void *observer, const QString &name)
{
    markRemoved([observer, &name](const Registration &r) {
        return r.observer == observer && r.name == name;
    });
}

void NotificationCenter::markRemoved(const std::function<bool(const Registration &)> &match)
{
    QMutexLocker lock(&m_mutex);
    auto firstRemoved = std::stable_partition(
        m_registrations.begin(), m_registrations.end(),
        [&match](const std::shared_ptr<Registration> &r) { return !match(*r); });
    for (auto it = firstRemoved; it != m_registrations.end(); ++it)
        (*it)->removed = true;
    m_registrations.erase(firstRemoved, m_registrations.end());
}

void NotificationCenter::post(const Notification &notification)
{
    std::vector<std::shared_ptr<Registration>> targets;
    {
        QMutexLocker lock(&m_mutex);
        for (const auto &r : m_registrations) {
            if ((r->name.isEmpty() || r->name == notification.name)
                && (!r->sender || r->sender == notification.object))
                targets.push_back(r);
        }
    }
    for (const auto &r : targets) {
        {
            QMutexLocker lock(&m_mutex);
            if (r->removed)
                continue;
        }
        r->callback(notification);
    }
}

void NotificationCenter::postNotificationName(const QString &name, QObject *object,
                                              const QVariantMap &userInfo)
{
    post(Notification{name, object, userInfo});
}

int NotificationCenter::observerCount(const QString &name) const
{
    QMutexLocker lock(&m_mutex);
    return int(std::count_if(m_registrations.begin(), m_registrations.end(),
                             [&name](const std::shared_ptr<Registration> &r) { return r->name == name; }));
}

} // namespace Brightmere
