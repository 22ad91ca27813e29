#pragma once

#include <Brightmere/SDKExport.h>

#include "BMSDKBackend.h"
#include "BMSimulatedNetwork.h"

#include <QList>
#include <QMutex>
#include <QObject>
#include <QPointer>

class BMReachabilityDelegate;

// Whether and how the device reaches the network, and who is told when that
// changes. Status values: 0 not reachable, 1 reachable over Wi-Fi, 2 over
// another medium.
//
// With the simulated backend the status is the simulated network's; with the
// system backend it comes from QNetworkInformation (online over Wi-Fi = 1,
// online otherwise = 2, anything else = 0; without a usable backend it reads
// 0, said once in the log). The manager follows a switch of the backend kind
// the next time it is asked or a source reports: from then on only the new
// backend's changes reach the subscribers, and they hear the new status if it
// differs from the last one they were told.
class BRIGHTMERE_SDK_EXPORT BMReachabilityManager : public QObject
{
    Q_OBJECT

public:
    // The simulated world speaks the same status values.
    static constexpr int kNotReachable = BMSimulatedNetwork::kNotReachable;
    static constexpr int kReachableViaWiFi = BMSimulatedNetwork::kReachableViaWiFi;
    static constexpr int kReachableViaOther = BMSimulatedNetwork::kReachableViaOther;

    // Lives on the main thread.
    static BMReachabilityManager *sharedInstance();

    int currentStatus();

    // Callbacks reach subscriber on the main thread when the status changes.
    // Subscribing again changes nothing. A subscriber that is also a QObject
    // is dropped when it is destroyed; any other must unsubscribe before it
    // goes. cls is the subscriber's class, named in log lines (may be null).
    void subscribeToEvents(BMReachabilityDelegate *subscriber, const QMetaObject *cls = nullptr);
    void unsubscribeFromEvents(BMReachabilityDelegate *subscriber);
    int subscriberCount() const;

Q_SIGNALS:
    // Emitted on the main thread with each change told to the subscribers.
    void statusChanged(int status);

private:
    struct Subscription
    {
        BMReachabilityDelegate *subscriber = nullptr;
        QPointer<QObject> guard;
        bool guarded = false;
        const QMetaObject *cls = nullptr;
    };

    explicit BMReachabilityManager(QObject *parent = nullptr);

    void followBackend();
    void attachSystemBackend();
    void detachSystemBackend();
    void statusMayHaveChanged();
    bool isSubscribed(const BMReachabilityDelegate *subscriber) const;
    static int systemStatus();

    mutable QMutex m_mutex;
    QList<Subscription> m_subscriptions;
    bool m_followsBackend = false;
    BMSDKBackend::Kind m_followedKind = BMSDKBackend::Kind::Simulated;
    int m_lastStatus = -1;
    bool m_systemUnavailableLogged = false;
    QList<QMetaObject::Connection> m_systemConnections;
};
