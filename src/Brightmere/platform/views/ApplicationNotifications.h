#pragma once

#include <QStringList>

#include <Qt>

namespace Brightmere {

// The application's state changes, re-posted through the notification
// centre under the phone platform's names. From Qt's states: leaving
// Active posts will-resign-active, entering Active posts did-become-active,
// and going from a foreground state (Active, Inactive) to a background one
// (Hidden, Suspended) posts did-enter-background, after will-resign-active
// when both apply.
class ApplicationNotifications
{
public:
    static constexpr const char *kApplicationWillResignActiveNotification = "ApplicationWillResignActiveNotification";
    static constexpr const char *kApplicationDidBecomeActiveNotification = "ApplicationDidBecomeActiveNotification";
    static constexpr const char *kApplicationDidEnterBackgroundNotification =
        "ApplicationDidEnterBackgroundNotification";

    // Starts following QGuiApplication::applicationStateChanged; later calls
    // do nothing. False (and logged) while there is no GUI application yet.
    static bool startWatching();
    static bool isWatching();

    static void postWillResignActive();
    static void postDidBecomeActive();
    static void postDidEnterBackground();

    // The names posted, in order, for a change from one state to another.
    static QStringList notificationsForTransition(Qt::ApplicationState from, Qt::ApplicationState to);

    // What the watcher does with each new state: posts the notifications
    // for the change from the state seen last.
    static void handleApplicationStateChanged(Qt::ApplicationState state);
};

} // namespace Brightmere
