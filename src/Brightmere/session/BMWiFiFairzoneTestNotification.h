#pragma once

#include "BMWiFiFairzoneTestSubscriber.h"
#include <Brightmere/core/BMBaseNotification.h>

inline constexpr char kWiFiFairzoneTestStarted[] = "kWiFiFairzoneTestStarted";

/// Posted on the main thread at every start of a test on the test screen,
/// with no properties, so the host can react (pause its own work, count
/// tests).
class BMWiFiFairzoneTestNotification : public BMBaseNotification
{
    Q_OBJECT

public:
    BMWiFiFairzoneTestNotification(const QString &name, const QVariantMap &properties, QObject *parent = nullptr);

    /// Registers notifyWiFiFairzoneTestStarted for "kWiFiFairzoneTestStarted".
    static void subscribe(BMWiFiFairzoneTestSubscriber *subscriber);
    static void unsubscribe(BMWiFiFairzoneTestSubscriber *subscriber);
    static void postWiFiFairzoneTestStarted();
};
