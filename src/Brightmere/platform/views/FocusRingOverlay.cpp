#include "FocusRingOverlay.h"

#include "FocusRing.h"

#include <QEvent>
#include <QPainter>

namespace Brightmere {

FocusRingOverlay::FocusRingOverlay(QWidget *control)
    : QWidget(control)
{
    setObjectName(QStringLiteral("focusRing"));
    setAttribute(Qt::WA_TransparentForMouseEvents);
    setFocusPolicy(Qt::NoFocus);
    hide();
    if (control)
        control->installEventFilter(this);
}

bool FocusRingOverlay::eventFilter(QObject *watched, QEvent *event)
{
    if (watched == parentWidget()) {
        switch (event->type()) {
        case QEvent::FocusIn:
        case QEvent::FocusOut:
        case QEvent::Resize:
        case QEvent::ChildAdded:
            follow();
            break;
        default:
            break;
        }
    }
    return QWidget::eventFilter(watched, event);
}

void FocusRingOverlay::follow()
{
    QWidget *control = parentWidget();
    setGeometry(control->rect());
    setVisible(control->hasFocus());
    // Over the control's own parts, however many it made since.
    if (isVisible())
        raise();
}

void FocusRingOverlay::paintEvent(QPaintEvent *)
{
    QPainter painter(this);
    FocusRing::paint(painter, QRectF(rect()), 0, FocusRing::color(this));
}

} // namespace Brightmere
