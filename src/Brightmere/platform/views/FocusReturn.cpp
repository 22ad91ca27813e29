#include "FocusReturn.h"

#include <QApplication>

namespace Brightmere {

namespace {

bool usable(const QWidget *widget)
{
    return widget && widget->isVisible() && widget->isEnabled();
}

// The first control inside the holder in Tab order. The chain runs through
// the whole window, so it is walked once round and what lies outside the
// holder is passed over.
QWidget *firstControlIn(QWidget *holder)
{
    for (QWidget *w = holder->nextInFocusChain(); w && w != holder; w = w->nextInFocusChain()) {
        if ((w->focusPolicy() & Qt::TabFocus) && usable(w) && holder->isAncestorOf(w))
            return w;
    }
    return nullptr;
}

} // namespace

void FocusReturn::remember(QWidget *window)
{
    m_control.clear();
    m_holders.clear();
    if (!window)
        return;
    QWidget *focus = QApplication::focusWidget();
    if (focus && window->isAncestorOf(focus)) {
        m_control = focus;
        for (QWidget *w = focus->parentWidget(); w && w != window; w = w->parentWidget())
            m_holders.append(w);
    }
    m_holders.append(window);
}

void FocusReturn::restore() const
{
    if (usable(m_control)) {
        m_control->setFocus(Qt::OtherFocusReason);
        return;
    }
    QWidget *nearestShown = nullptr;
    for (const QPointer<QWidget> &holder : m_holders) {
        if (!holder || !holder->isVisible())
            continue;
        if (!nearestShown)
            nearestShown = holder.data();
        if (QWidget *control = firstControlIn(holder.data())) {
            control->setFocus(Qt::OtherFocusReason);
            return;
        }
    }
    if (nearestShown)
        nearestShown->setFocus(Qt::OtherFocusReason);
}

} // namespace Brightmere
