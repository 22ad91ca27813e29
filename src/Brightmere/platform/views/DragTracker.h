#pragma once

#include <QList>
#include <QObject>
#include <QPoint>
#include <QPointer>

class QMouseEvent;
class QWidget;

namespace Brightmere {

// Follows one press-drag-release anywhere in a widget tree before the
// widgets under the pointer see it, for the platform's scrolling views. A
// finger works as the mouse does: Qt turns the touches that no widget takes
// into mouse events.
//
// A press goes on to the widget under it as usual. Once the pointer has moved
// further than the platform's drag distance, the drag belongs to the tracker:
// the widget that got the press is sent a release outside itself (so a
// control held there lets go without acting), and the rest of the drag and
// its release reach no widget. A release before that is a click and goes to
// the widgets as usual.
class DragTracker : public QObject
{
    Q_OBJECT

public:
    // Watches root and every widget that is or later comes below it.
    explicit DragTracker(QWidget *root);

    bool isEnabled() const { return m_enabled; }
    // Disabled, it lets every event through and forgets a drag under way.
    void setEnabled(bool enabled);

    bool isTracking() const { return m_tracking; }
    bool isDragging() const { return m_dragging; }
    // The widget the press went to first (the one under the pointer).
    QWidget *pressedWidget() const { return m_pressedWidget.data(); }
    // Whether the press came as far as this widget: every widget between it
    // and the one under the pointer let the press go.
    bool pressReached(const QWidget *widget) const;

    // How far the pointer must move before a press becomes a drag.
    static int dragDistance();

Q_SIGNALS:
    // Positions and distances are in the root's coordinates.
    void pressed(const QPoint &position);
    void dragStarted(const QPoint &distance);
    void dragMoved(const QPoint &distance);
    void dragFinished(const QPoint &distance);
    // Released without becoming a drag.
    void clicked(const QPoint &position);

protected:
    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    // Qt passes a mouse event on to a parent as a copy, so an event is
    // told by what it says, not by its address.
    struct EventKey
    {
        int type = 0;
        quint64 timestamp = 0;
        QPoint global;
        int button = 0;
        friend bool operator==(const EventKey &, const EventKey &) = default;
    };

    void watch(QWidget *widget);
    bool handleMouse(QWidget *watched, QMouseEvent *event);
    void startDrag(const QPoint &distance);
    void letGoOfPressedWidget();
    void reset();

    QPointer<QWidget> m_root;
    bool m_enabled = true;
    bool m_tracking = false;
    bool m_dragging = false;
    bool m_sendingRelease = false;
    QPoint m_pressGlobal;
    QPointer<QWidget> m_pressedWidget;
    QList<QPointer<QWidget>> m_pressChain;
    // The mouse event last seen: a propagated event reaches the filter once
    // for every widget it passes, and counts once.
    EventKey m_lastEvent;
    bool m_lastEventActedOn = false;
};

} // namespace Brightmere
