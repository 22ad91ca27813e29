#pragma once

#include <QPointer>
#include <QPointingDevice>
#include <QTest>
#include <QWidget>

// The mouse or a finger on the views that scroll and swipe. Points are in a
// frame widget that stays put (a viewport) while the content moves under the
// pointer. The mouse stays with the widget it pressed, as Qt's grab does; a
// finger goes through the window.
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

inline void send(Kind kind, QEvent::Type type, QWidget *frame, const QPoint &at)
{
    if (kind == Kind::Touch) {
        QWidget *window = frame->window();
        const QPoint p = frame->mapTo(window, at);
        auto touch = QTest::touchEvent(window, touchScreen());
        type == QEvent::MouseButtonPress ? touch.press(0, p, window)
        : type == QEvent::MouseMove      ? touch.move(0, p, window)
                                         : touch.release(0, p, window);
        return;
    }
    if (type == QEvent::MouseButtonPress)
        grabbed() = frame->childAt(at) ? frame->childAt(at) : frame;
    if (!grabbed())
        return;
    const QPoint p = grabbed()->mapFromGlobal(frame->mapToGlobal(at));
    if (type == QEvent::MouseButtonPress)
        QTest::mousePress(grabbed(), Qt::LeftButton, {}, p);
    else if (type == QEvent::MouseMove)
        QTest::mouseMove(grabbed(), p);
    else
        QTest::mouseRelease(grabbed(), Qt::LeftButton, {}, p);
}

inline void press(Kind kind, QWidget *frame, const QPoint &at) { send(kind, QEvent::MouseButtonPress, frame, at); }
inline void move(Kind kind, QWidget *frame, const QPoint &to) { send(kind, QEvent::MouseMove, frame, to); }
inline void release(Kind kind, QWidget *frame, const QPoint &at) { send(kind, QEvent::MouseButtonRelease, frame, at); }

// Press, a few moves on the way, release at the end.
inline void drag(Kind kind, QWidget *frame, const QPoint &from, const QPoint &to, int steps = 4)
{
    press(kind, frame, from);
    for (int i = 1; i <= steps; ++i)
        move(kind, frame, from + (to - from) * i / steps);
    release(kind, frame, to);
}

} // namespace PointerInput

Q_DECLARE_METATYPE(PointerInput::Kind)
