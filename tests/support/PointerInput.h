#pragma once

#include <QPointer>
#include <QPointingDevice>
#include <QTest>
#include <QWidget>

// Presses, drags and releases with the mouse or a finger, for tests of the
// views that scroll and swipe. Points are in the coordinates of a frame
// widget that stays put (a scroll view's viewport, say), as a user aims at
// the screen while the content moves under the finger. The mouse goes to the
// widget under the press and stays with it until the release, as Qt's mouse
// grab does; a finger goes through the window.
namespace PointerInput {

enum class Kind { Mouse, Touch };

inline QPointingDevice *touchScreen()
{
    static QPointingDevice *device = QTest::createTouchDevice();
    return device;
}

inline QPointer<QWidget> &grabbed()
{
    static QPointer<QWidget> widget;
    return widget;
}

inline QPoint inGrabbed(QWidget *frame, const QPoint &point)
{
    return grabbed()->mapFromGlobal(frame->mapToGlobal(point));
}

inline void press(Kind kind, QWidget *frame, const QPoint &at)
{
    if (kind == Kind::Touch) {
        QTest::touchEvent(frame->window(), touchScreen()).press(0, frame->mapTo(frame->window(), at), frame->window());
        return;
    }
    QWidget *under = frame->childAt(at);
    grabbed() = under ? under : frame;
    QTest::mousePress(grabbed(), Qt::LeftButton, {}, inGrabbed(frame, at));
}

inline void move(Kind kind, QWidget *frame, const QPoint &to)
{
    if (kind == Kind::Touch)
        QTest::touchEvent(frame->window(), touchScreen()).move(0, frame->mapTo(frame->window(), to), frame->window());
    else if (grabbed())
        QTest::mouseMove(grabbed(), inGrabbed(frame, to));
}

inline void release(Kind kind, QWidget *frame, const QPoint &at)
{
    if (kind == Kind::Touch)
        QTest::touchEvent(frame->window(), touchScreen()).release(0, frame->mapTo(frame->window(), at), frame->window());
    else if (grabbed())
        QTest::mouseRelease(grabbed(), Qt::LeftButton, {}, inGrabbed(frame, at));
}

// Press, a few moves on the way, release at the end.
inline void drag(Kind kind, QWidget *frame, const QPoint &from, const QPoint &to, int steps = 4)
{
    press(kind, frame, from);
    for (int i = 1; i <= steps; ++i)
        move(kind, frame, from + (to - from) * i / steps);
    release(kind, frame, to);
}

inline const char *name(Kind kind)
{
    return kind == Kind::Mouse ? "mouse" : "touch";
}

} // namespace PointerInput

Q_DECLARE_METATYPE(PointerInput::Kind)
