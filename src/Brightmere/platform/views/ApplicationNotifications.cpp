#include "ApplicationNotifications.h"

#include <Brightmere/core/BMLogger.h>
#include <Brightmere/platform/foundation/NotificationCenter.h>

#include <QGuiApplication>

namespace Brightmere {

namespace {

const QString kModule = QStringLiteral("ApplicationNotifications");

// Main thread only, like the application's state itself.
bool s_watching = false;
Qt::ApplicationState s_lastState = Qt::ApplicationActive;

bool isBackground(Qt::ApplicationState state)
{
    return state == Qt::ApplicationHidden || state == Qt::ApplicationSuspended;
}

void post(const char *name)
{
    NotificationCenter::defaultCenter().postNotificationName(QString::fromLatin1(name));
}

} // namespace

bool ApplicationNotifications::startWatching()
{
    if (s_watching)
        return true;
    auto *app = qobject_cast<QGuiApplication *>(QCoreApplication::instance());
    if (!app) {
        BMLogger::sharedInstance().logFromModule(kModule, 3,
                                                 "no GUI application: its state changes are not watched");
        return false;
    }
    s_watching = true;
    s_lastState = QGuiApplication::applicationState();
    QObject::connect(app, &QGuiApplication::applicationStateChanged, app,
                     [](Qt::ApplicationState state) { handleApplicationStateChanged(state); });
    QObject::connect(app, &QObject::destroyed, app, [] { s_watching = false; });
    return true;
}

bool ApplicationNotifications::isWatching()
{
    return s_watching;
}

void ApplicationNotifications::postWillResignActive()
{
    post(kApplicationWillResignActiveNotification);
}

void ApplicationNotifications::postDidBecomeActive()
{
    post(kApplicationDidBecomeActiveNotification);
}

void ApplicationNotifications::postDidEnterBackground()
{
    post(kApplicationDidEnterBackgroundNotification);
}

QStringList ApplicationNotifications::notificationsForTransition(Qt::ApplicationState from,
                                                                 Qt::ApplicationState to)
{
    QStringList names;
    if (from == to)
        return names;
    if (from == Qt::ApplicationActive)
        names.append(QString::fromLatin1(kApplicationWillResignActiveNotification));
    if (!isBackground(from) && isBackground(to))
        names.append(QString::fromLatin1(kApplicationDidEnterBackgroundNotification));
    if (to == Qt::ApplicationActive)
        names.append(QString::fromLatin1(kApplicationDidBecomeActiveNotification));
    return names;
}

void ApplicationNotifications::handleApplicationStateChanged(Qt::ApplicationState state)
{
    const Qt::ApplicationState from = s_lastState;
    s_lastState = state;
    for (const QString &name : notificationsForTransition(from, state))
        NotificationCenter::defaultCenter().postNotificationName(name);
}

} // namespace Brightmere
