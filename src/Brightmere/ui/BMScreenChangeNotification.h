#pragma once

#include <Brightmere/SDKUIExport.h>

#include "BMGAScreenClass.h"
#include "BMScreenChangeSubscriber.h"
#include <Brightmere/core/BMBaseNotification.h>

inline constexpr char kScreenChange[] = "kScreenChange";

/// The keys of a screen change's properties. In the properties map each key
/// is the number's decimal text: "2" holds the screen's name (a QString),
/// "1" its class (a const QMetaObject *).
inline constexpr int kBMScreenChangeNotificationName = 2;
inline constexpr int kBMScreenChangeNotificationClass = 1;

/// Posted on the main thread each time a screen of the kit is about to
/// appear, before the screen's own appearance work, so a host's analytics
/// count every screen view once.
class BRIGHTMERE_SDKUI_EXPORT BMScreenChangeNotification : public BMBaseNotification
{
    Q_OBJECT

public:
    /// A notification named name; posted by postScreenChange().
    BMScreenChangeNotification(const QString &name, const QVariantMap &properties, QObject *parent = nullptr);

    /// Registers notifyScreenChange for "kScreenChange"; subscribing again
    /// replaces the earlier registration.
    static void subscribe(BMScreenChangeSubscriber *subscriber);
    /// Removes the subscriber; call it before the subscriber goes away.
    static void unsubscribe(BMScreenChangeSubscriber *subscriber);

    /// Posts "kScreenChange" for the screen on this thread.
    static void postScreenChange(const BMGAScreenClass &screen);

    /// The two entries, read back; empty or null when missing.
    QString screenName() const;
    /// The class of the screen (the "1" entry).
    const QMetaObject *screenClass() const;
};
