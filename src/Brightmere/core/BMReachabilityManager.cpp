#include "BMReachabilityManager.h"

#include "BMLogger.h"
#include "BMReachabilityDelegate.h"
#include "BMSDKNetworkUtilities.h"
#include "BMSimulatedNetwork.h"

#include <QCoreApplication>
#include <QNetworkInformation>
#include <QThread>

#include <algorithm>
#include <exception>

namespace {

const QString kModule = QStringLiteral("BMReachabilityManager");

const char *kindName(BMSDKBackend::Kind kind)
{
    return kind == BMSDKBackend::Kind::System ? "system" : "simulated";
}

int simulatedStatus()
{
    const int status = BMSimulatedNetwork::shared().reachabilityStatus();
    return status >= BMReachabilityManager::kNotReachable && status <= BMReachabilityManager::kReachableViaOther
        ? status
        : BMReachabilityManager::kNotReachable;
}

} // namespace

BMReachabilityManager::BMReachabilityManager(QObject *parent)
    : QObject(parent)
{
    // Callbacks go out on the main thread, so the manager lives there.
    if (QCoreApplication *app = QCoreApplication::instance(); app && thread() != app->thread())
        moveToThread(app->thread());

    // Kept for the manager's whole life: a change of the simulated network is
    // also the moment a switch back to the simulated backend is noticed.
    connect(&BMSimulatedNetwork::shared(), &BMSimulatedNetwork::reachabilityChanged, this, [this] {
        followBackend();
        statusMayHaveChanged();
    });
}

BMReachabilityManager *BMReachabilityManager::sharedInstance()
{
    static BMReachabilityManager instance;
    return &instance;
}

int BMReachabilityManager::currentStatus()
{
    followBackend();
    return BMSDKBackend::kind() == BMSDKBackend::Kind::System ? systemStatus() : simulatedStatus();
}

void BMReachabilityManager::subscribeToEvents(BMReachabilityDelegate *subscriber, const QMetaObject *cls)
{
    if (!subscriber) {
        BMLogger::sharedInstance().logFromModule(kModule, 3, "subscribeToEvents: no subscriber given");
        return;
    }
    followBackend();
    const int status = currentStatus();
    QObject *object = dynamic_cast<QObject *>(subscriber);
    {
        QMutexLocker lock(&m_mutex);
        if (m_lastStatus < 0)
            m_lastStatus = status;
        m_subscriptions.removeIf([subscriber](const Subscription &s) {
            return s.subscriber == subscriber || (s.guarded && !s.guard);
        });
        m_subscriptions.append(Subscription{subscriber, QPointer<QObject>(object), object != nullptr, cls});
    }
    BMLogger::sharedInstance().logFromModule(kModule, 1, "subscribed %@", cls ? cls->className() : "a subscriber");
}

void BMReachabilityManager::unsubscribeFromEvents(BMReachabilityDelegate *subscriber)
{
    QMutexLocker lock(&m_mutex);
    m_subscriptions.removeIf([subscriber](const Subscription &s) {
        return s.subscriber == subscriber || (s.guarded && !s.guard);
    });
}

int BMReachabilityManager::subscriberCount() const
{
    QMutexLocker lock(&m_mutex);
    return int(std::count_if(m_subscriptions.cbegin(), m_subscriptions.cend(),
                             [](const Subscription &s) { return !s.guarded || s.guard; }));
}

bool BMReachabilityManager::isSubscribed(const BMReachabilityDelegate *subscriber) const
{
    QMutexLocker lock(&m_mutex);
    return std::any_of(m_subscriptions.cbegin(), m_subscriptions.cend(), [subscriber](const Subscription &s) {
        return s.subscriber == subscriber && (!s.guarded || s.guard);
    });
}

void BMReachabilityManager::followBackend()
{
    const BMSDKBackend::Kind kind = BMSDKBackend::kind();
    {
        QMutexLocker lock(&m_mutex);
        if (m_followsBackend && m_followedKind == kind)
            return;
    }
    if (QThread::currentThread() != thread()) {
        QMetaObject::invokeMethod(this, [this] {
            followBackend();
            statusMayHaveChanged();
        }, Qt::QueuedConnection);
        return;
    }

    bool switched = false;
    {
        QMutexLocker lock(&m_mutex);
        switched = m_followsBackend;
        m_followsBackend = true;
        m_followedKind = kind;
    }
    if (kind == BMSDKBackend::Kind::System)
        attachSystemBackend();
    else
        detachSystemBackend();
    if (switched) {
        BMLogger::sharedInstance().logFromModule(kModule, 2, "following the %@ backend", kindName(kind));
        // Told after the current work, not from inside whatever asked.
        QMetaObject::invokeMethod(this, &BMReachabilityManager::statusMayHaveChanged, Qt::QueuedConnection);
    }
}

void BMReachabilityManager::attachSystemBackend()
{
    if (!m_systemConnections.isEmpty())
        return;
    // The platform's default first; where that one cannot run (no
    // NetworkManager on the system bus, say), any that knows reachability.
    if (!QNetworkInformation::instance() && !QNetworkInformation::loadDefaultBackend()
        && !QNetworkInformation::loadBackendByFeatures(QNetworkInformation::Feature::Reachability)) {
        if (!m_systemUnavailableLogged) {
            m_systemUnavailableLogged = true;
            BMLogger::sharedInstance().logFromModule(
                kModule, 2, "no network information backend could be loaded (available: %@); %@",
                QNetworkInformation::availableBackends().join(QStringLiteral(", ")),
                "reachability reads as not reachable");
        }
        return;
    }
    QNetworkInformation *info = QNetworkInformation::instance();
    const auto onChange = [this] {
        followBackend();
        statusMayHaveChanged();
    };
    m_systemConnections.append(connect(info, &QNetworkInformation::reachabilityChanged, this, onChange));
    m_systemConnections.append(connect(info, &QNetworkInformation::transportMediumChanged, this, onChange));
}

void BMReachabilityManager::detachSystemBackend()
{
    for (const QMetaObject::Connection &connection : std::as_const(m_systemConnections))
        disconnect(connection);
    m_systemConnections.clear();
}

int BMReachabilityManager::systemStatus()
{
    QNetworkInformation *info = QNetworkInformation::instance();
    if (!info || info->reachability() != QNetworkInformation::Reachability::Online)
        return kNotReachable;
    return info->transportMedium() == QNetworkInformation::TransportMedium::WiFi ? kReachableViaWiFi
                                                                                  : kReachableViaOther;
}

void BMReachabilityManager::statusMayHaveChanged()
{
    const int status = BMSDKBackend::kind() == BMSDKBackend::Kind::System ? systemStatus() : simulatedStatus();
    QList<Subscription> subscriptions;
    {
        QMutexLocker lock(&m_mutex);
        if (status == m_lastStatus)
            return;
        m_lastStatus = status;
        m_subscriptions.removeIf([](const Subscription &s) { return s.guarded && !s.guard; });
        subscriptions = m_subscriptions;
    }
    const QString bssid = BMSDKNetworkUtilities::currentWifiBSSID().value_or(QString());
    const QString ssid = BMSDKNetworkUtilities::currentWifiSSID().value_or(QString());
    BMLogger::sharedInstance().logFromModule(kModule, 1, "status %@, telling %@ subscriber(s)", status,
                                             subscriptions.size());
    Q_EMIT statusChanged(status);

    for (const Subscription &s : std::as_const(subscriptions)) {
        // One that left while others were being told hears nothing more.
        if (!isSubscribed(s.subscriber))
            continue;
        try {
            s.subscriber->reachabilityHasChanged(status, bssid, ssid);
        } catch (const std::exception &e) {
            BMLogger::sharedInstance().logFromModule(kModule, 3, "a subscriber threw (%@); the exception was dropped",
                                                     e.what());
        } catch (...) {
            BMLogger::sharedInstance().logFromModule(kModule, 3, "a subscriber threw; the exception was dropped");
        }
    }
}
