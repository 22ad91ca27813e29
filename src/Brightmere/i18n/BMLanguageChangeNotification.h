#pragma once

#include <Brightmere/SDKUIExport.h>

#include "BMLanguageChangeSubscriber.h"
#include "BMNotificationDelivery.h"
#include <Brightmere/core/BMBaseNotification.h>

inline constexpr char kLanguageChange[] = "kLanguageChange";

/// Tells the kit and the host that the current language was changed
/// (BMI18NManager::setCurrentLanguage). Carries an empty properties map and is
/// posted on the thread that changed the language.
class BRIGHTMERE_SDKUI_EXPORT BMLanguageChangeNotification : public BMBaseNotification
{
    Q_OBJECT

public:
    /// A notification named name; posted by postLanguageChange().
    BMLanguageChangeNotification(const QString &name, const QVariantMap &properties, QObject *parent = nullptr);

    /// Registers notifyLanguageChange for "kLanguageChange"; subscribing again
    /// replaces the earlier registration (and its delivery).
    static void subscribe(BMLanguageChangeSubscriber *subscriber,
                          BMNotificationDelivery delivery = BMNotificationDelivery::PostingThread);
    /// Removes the subscriber; call it before the subscriber goes away.
    static void unsubscribe(BMLanguageChangeSubscriber *subscriber);

    /// Posts "kLanguageChange" on this thread.
    static void postLanguageChange();
};
