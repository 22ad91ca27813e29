#pragma once

#include <Brightmere/SDKUIExport.h>

#include "BMI18NNotificationSubscriber.h"
#include "BMNotificationDelivery.h"
#include <Brightmere/core/BMBaseNotification.h>

/// Names of the two notifications that end a refresh of the texts.
inline constexpr char kTextBundleAvailable[] = "kTextBundleAvailable";
inline constexpr char kTextBundleNotAvailable[] = "kTextBundleNotAvailable";

/// Tells the kit and the host that a refresh of the downloaded texts ended:
/// "kTextBundleAvailable" when the texts are up to date, "kTextBundleNotAvailable"
/// when the refresh failed. Both carry an empty properties map.
///
/// The localisation manager posts them from the thread its service answers
/// arrive on; a subscriber that touches views subscribes with
/// BMNotificationDelivery::MainThread.
class BRIGHTMERE_SDKUI_EXPORT BMI18NNotification : public BMBaseNotification
{
    Q_OBJECT

public:
    /// A notification named name; posted by the post functions below.
    BMI18NNotification(const QString &name, const QVariantMap &properties, QObject *parent = nullptr);

    /// Registers notifyTextBundleAvailable for "kTextBundleAvailable" and
    /// notifyTextBundleNotAvailable for "kTextBundleNotAvailable". Subscribing
    /// again replaces the earlier registration (and its delivery).
    static void subscribe(BMI18NNotificationSubscriber *subscriber,
                          BMNotificationDelivery delivery = BMNotificationDelivery::PostingThread);
    /// Removes the subscriber from both names. Call it before the subscriber goes away.
    static void unsubscribe(BMI18NNotificationSubscriber *subscriber);

    /// Posts "kTextBundleAvailable" on this thread.
    static void postTextBundleAvailable();
    /// Posts "kTextBundleNotAvailable" on this thread.
    static void postTextBundleNotAvailable();
};
