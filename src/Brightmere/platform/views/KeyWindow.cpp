#include "KeyWindow.h"

#include <QApplication>
#include <QPointer>
#include <QWidget>

namespace Brightmere {

namespace {

// Main thread only, like every widget.
QPointer<QWidget> s_keyWindow;

bool isCandidate(const QWidget *widget)
{
    if (!widget || !widget->isWindow() || !widget->isVisible())
        return false;
    // Menus, tool tips and the like are windows of their own but hold no screen.
    const Qt::WindowType type = widget->windowType();
    return type == Qt::Window || type == Qt::Dialog || type == Qt::Widget;
}

} // namespace

QWidget *KeyWindow::keyWindow()
{
    if (isCandidate(s_keyWindow.data()))
        return s_keyWindow.data();
    if (QWidget *active = QApplication::activeWindow(); isCandidate(active))
        return active;
    QWidget *last = nullptr;
    for (QWidget *widget : QApplication::topLevelWidgets()) {
        if (isCandidate(widget))
            last = widget;
    }
    return last;
}

void KeyWindow::makeKeyWindow(QWidget *window)
{
    s_keyWindow = window ? window->window() : nullptr;
}

} // namespace Brightmere
