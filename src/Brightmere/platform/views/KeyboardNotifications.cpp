#include "KeyboardNotifications.h"

#include <Brightmere/core/BMLogger.h>
#include <Brightmere/platform/foundation/NotificationCenter.h>

#include <QGuiApplication>
#include <QInputMethod>
#include <QTransform>

namespace Brightmere {

namespace {

const QString kModule = QStringLiteral("KeyboardNotifications");

// Main thread only, like the input method itself.
bool s_watching = false;
bool s_lastVisible = false;
QRect s_lastFrame;

void post(const char *name, const QRect &endFrame)
{
    NotificationCenter::defaultCenter().postNotificationName(
        QString::fromLatin1(name), nullptr,
        {{QString::fromLatin1(KeyboardNotifications::kKeyboardFrameEndUserInfoKey), endFrame}});
}

QRect frameInWindow(const QInputMethod *inputMethod)
{
    // The input method reports the keyboard in the focused item's
    // coordinates; the screens want it in the window's.
    return inputMethod->inputItemTransform().mapRect(inputMethod->keyboardRectangle()).toAlignedRect();
}

} // namespace

bool KeyboardNotifications::startWatching()
{
    if (s_watching)
        return true;
    auto *app = qobject_cast<QGuiApplication *>(QCoreApplication::instance());
    if (!app) {
        BMLogger::sharedInstance().logFromModule(kModule, 3, "no GUI application: the keyboard is not watched");
        return false;
    }
    s_watching = true;
    QInputMethod *inputMethod = QGuiApplication::inputMethod();
    const auto report = [inputMethod] {
        handleInputMethodState(inputMethod->isVisible(), frameInWindow(inputMethod));
    };
    QObject::connect(inputMethod, &QInputMethod::visibleChanged, app, report);
    QObject::connect(inputMethod, &QInputMethod::keyboardRectangleChanged, app, report);
    QObject::connect(app, &QObject::destroyed, app, [] { s_watching = false; });
    return true;
}

bool KeyboardNotifications::isWatching()
{
    return s_watching;
}

void KeyboardNotifications::postKeyboardDidShow(const QRect &endFrame)
{
    post(kKeyboardDidShowNotification, endFrame);
}

void KeyboardNotifications::postKeyboardWillHide(const QRect &endFrame)
{
    post(kKeyboardWillHideNotification, endFrame);
}

void KeyboardNotifications::handleInputMethodState(bool visible, const QRect &frame)
{
    const bool wasVisible = s_lastVisible;
    const QRect lastFrame = s_lastFrame;
    s_lastVisible = visible;
    s_lastFrame = frame;
    if (visible && (!wasVisible || frame != lastFrame))
        postKeyboardDidShow(frame);
    else if (!visible && wasVisible)
        postKeyboardWillHide(frame);
}

QRect KeyboardNotifications::endFrame(const Notification &notification)
{
    return notification.userInfo.value(QString::fromLatin1(kKeyboardFrameEndUserInfoKey)).toRect();
}

} // namespace Brightmere
