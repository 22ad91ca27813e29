#pragma once

#include <Brightmere/SDKUIExport.h>

#include "BMWiFiFairzoneTestSubscriber.h"
#include <Brightmere/core/BMBaseNotification.h>

inline constexpr char kWiFiFairzoneTestStarted[] = "kWiFiFairzoneTestStarted";

/// Posted on the main thread at every start of a test on the test screen,
/// with no properties, so the host can react (pause its own work, count
/// tests).
class BRIGHTMERE_SDKUI_EXPORT BMWiFiFairzoneTestNotification : public BMBaseNotification
{
    Q_OBJECT

public:
    /// A notification named name; posted by postWiFiFairzoneTestStarted().
    BMWiFiFairzoneTestNotification(const QString &name, const QVariantMap &properties, QObject *parent = nullptr);

    /// Registers notifyWiFiFairzoneTestStarted for "kWiFiFairzoneTestStarted".
    static void subscribe(BMWiFiFairzoneTestSubscriber *subscriber);
    /// Removes the subscriber; call it before the subscriber goes away.
    static void unsubscribe(BMWiFiFairzoneTestSubscriber *subscriber);
    /// Posts "kWiFiFairzoneTestStarted" on this thread.
    static void postWiFiFairzoneTestStarted();
};
