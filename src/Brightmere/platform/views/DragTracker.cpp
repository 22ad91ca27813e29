#include "DragTracker.h"

#include <QApplication>
#include <QChildEvent>
#include <QMouseEvent>
#include <QWidget>

namespace Brightmere {

DragTracker::DragTracker(QWidget *root)
    : QObject(root)
    , m_root(root)
{
    watch(root);
}

void DragTracker::setEnabled(bool enabled)
{
    m_enabled = enabled;
    if (!enabled)
        reset();
}

bool DragTracker::pressReached(const QWidget *widget) const
{
    for (const QPointer<QWidget> &w : m_pressChain) {
        if (w == widget)
            return true;
    }
    return false;
}

int DragTracker::dragDistance()
{
    return QApplication::startDragDistance();
}

void DragTracker::watch(QWidget *widget)
{
    widget->installEventFilter(this);
    const QList<QWidget *> children = widget->findChildren<QWidget *>();
    for (QWidget *child : children)
        child->installEventFilter(this);
}

bool DragTracker::eventFilter(QObject *watched, QEvent *event)
{
    if (event->type() == QEvent::ChildAdded) {
        QObject *child = static_cast<QChildEvent *>(event)->child();
        if (child && child->isWidgetType())
            watch(static_cast<QWidget *>(child));
        return false;
    }
    switch (event->type()) {
    case QEvent::MouseButtonPress:
    case QEvent::MouseButtonDblClick:
    case QEvent::MouseMove:
    case QEvent::MouseButtonRelease:
        break;
    default:
        return false;
    }
    auto *widget = qobject_cast<QWidget *>(watched);
    if (!widget || !m_root)
        return false;
    if (widget != m_root && !m_root->isAncestorOf(widget)) {
        // Taken out of the tree since it was watched.
        widget->removeEventFilter(this);
        return false;
    }
    if (!m_enabled || m_sendingRelease)
        return false;
    return handleMouse(widget, static_cast<QMouseEvent *>(event));
}

bool DragTracker::handleMouse(QWidget *watched, QMouseEvent *event)
{
    // What the tracker acted on and no widget took ends at the root, so the
    // scroll area's own handling never sees half a gesture.
    const bool atRoot = watched == m_root;
    const QPoint global = event->globalPosition().toPoint();
    const EventKey key{int(event->type()), event->timestamp(), global, int(event->button())};
    if (key == m_lastEvent) {
        // The same event passed on to a parent.
        if (m_lastEventActedOn && m_tracking
            && (event->type() == QEvent::MouseButtonPress || event->type() == QEvent::MouseButtonDblClick))
            m_pressChain.append(watched);
        return atRoot && m_lastEventActedOn;
    }
    m_lastEvent = key;
    m_lastEventActedOn = false;

    switch (event->type()) {
    case QEvent::MouseButtonPress:
    case QEvent::MouseButtonDblClick:
        if (event->button() != Qt::LeftButton)
            return false;
        reset();
        m_lastEventActedOn = true;
        m_tracking = true;
        m_pressGlobal = global;
        m_pressedWidget = watched;
        m_pressChain.append(watched);
        Q_EMIT pressed(m_root->mapFromGlobal(global));
        return atRoot;

    case QEvent::MouseMove: {
        if (!m_tracking || !(event->buttons() & Qt::LeftButton))
            return false;
        m_lastEventActedOn = true;
        const QPoint distance = global - m_pressGlobal;
        if (!m_dragging && distance.manhattanLength() >= dragDistance())
            startDrag(distance);
        if (m_dragging) {
            Q_EMIT dragMoved(distance);
            return true;
        }
        return atRoot;
    }

    case QEvent::MouseButtonRelease: {
        if (!m_tracking || event->button() != Qt::LeftButton)
            return false;
        m_lastEventActedOn = true;
        const QPoint distance = global - m_pressGlobal;
        if (!m_dragging && distance.manhattanLength() >= dragDistance()) {
            // Released far away with no move reported in between.
            startDrag(distance);
            Q_EMIT dragMoved(distance);
        }
        if (m_dragging) {
            reset();
            Q_EMIT dragFinished(distance);
            return true;
        }
        // The press chain stays readable while the click is handled.
        Q_EMIT clicked(m_root->mapFromGlobal(global));
        reset();
        return atRoot;
    }

    default:
        return false;
    }
}

void DragTracker::startDrag(const QPoint &distance)
{
    m_dragging = true;
    letGoOfPressedWidget();
    Q_EMIT dragStarted(distance);
}

void DragTracker::letGoOfPressedWidget()
{
    QWidget *widget = m_pressedWidget.data();
    if (!widget || widget == m_root)
        return;
    // Far outside the widget: a control released there lets go without acting.
    const QPointF local(-10000.0, -10000.0);
    QMouseEvent release(QEvent::MouseButtonRelease, local, widget->mapToGlobal(local), Qt::LeftButton,
                        Qt::NoButton, Qt::NoModifier);
    m_sendingRelease = true;
    QCoreApplication::sendEvent(widget, &release);
    m_sendingRelease = false;
}

void DragTracker::reset()
{
    m_tracking = false;
    m_dragging = false;
    m_pressedWidget.clear();
    m_pressChain.clear();
}

} // namespace Brightmere
