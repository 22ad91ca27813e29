#pragma once

#include <QRect>

namespace Brightmere {

struct Notification;

// The on-screen keyboard's comings and goings, re-posted through the
// notification centre: did-show when the input method's keyboard becomes
// visible (and again when its frame changes while it is up), will-hide when
// it goes. The user info holds the keyboard's end frame, in window
// coordinates, under kKeyboardFrameEndUserInfoKey.
class KeyboardNotifications
{
public:
    static constexpr const char *kKeyboardDidShowNotification = "KeyboardDidShowNotification";
    static constexpr const char *kKeyboardWillHideNotification = "KeyboardWillHideNotification";
    static constexpr const char *kKeyboardFrameEndUserInfoKey = "KeyboardFrameEndUserInfoKey";

    // Starts following the application's input method; later calls do
    // nothing. False (and logged) while there is no GUI application yet.
    static bool startWatching();
    static bool isWatching();

    static void postKeyboardDidShow(const QRect &endFrame);
    static void postKeyboardWillHide(const QRect &endFrame);

    // What the watcher does with each report of the input method: posts
    // did-show or will-hide when the visibility or the shown frame changed.
    static void handleInputMethodState(bool visible, const QRect &frame);

    // The end frame a keyboard notification carries (empty when absent).
    static QRect endFrame(const Notification &notification);
};

} // namespace Brightmere
