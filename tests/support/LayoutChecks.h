#pragma once

#include "ui/BrightmereView.h"

#include <QAbstractButton>
#include <QAbstractScrollArea>
#include <QFontInfo>
#include <QLabel>
#include <QLineEdit>
#include <QStackedLayout>

// What a person would see wrong in a laid-out tree, a line a fault: a widget
// reaching outside the root, two siblings over each other, a label whose
// text needs more room than it has, a text under the kit's smallest size.
// Scroll areas' own parts and the layers of a StackAll layout overlap on
// purpose and are left alone. Joined into one line and compared with an
// empty string, a failure names every fault.
namespace LayoutChecks {

inline QStringList faults(QWidget *root)
{
    QStringList found;
    const auto shown = [root](const QWidget *w) {
        return w && !w->isWindow() && w->isVisibleTo(root) && !w->size().isEmpty();
    };
    for (QWidget *widget : root->findChildren<QWidget *>()) {
        QWidget *parent = widget->parentWidget();
        if (!shown(widget) || qobject_cast<QAbstractScrollArea *>(parent))
            continue;
        const QString name = QString::fromLatin1(widget->metaObject()->className()) + " '" + widget->objectName() + "'";
        if (!root->rect().contains(QRect(widget->mapTo(root, QPoint(0, 0)), widget->size())))
            found << name + " reaches outside";
        const QObjectList siblings = qobject_cast<QStackedLayout *>(parent->layout()) ? QObjectList() : parent->children();
        for (qsizetype i = siblings.indexOf(widget) + 1; i > 0 && i < siblings.size(); ++i) {
            auto *other = qobject_cast<QWidget *>(siblings.at(i));
            if (shown(other) && other->geometry().intersects(widget->geometry()))
                found << name + " under '" + other->objectName() + "'";
        }
        auto *label = qobject_cast<QLabel *>(widget);
        if (label && !label->text().isEmpty()
            && (label->wordWrap() ? label->heightForWidth(label->width()) > label->height()
                                  : label->sizeHint().width() > label->width()))
            found << name + " cut: " + label->text().left(40);
        if ((label || qobject_cast<QAbstractButton *>(widget) || qobject_cast<QLineEdit *>(widget))
            && QFontInfo(widget->font()).pixelSize() < Brightmere::View::kMinimumTextPixels)
            found << name + " text under the smallest size";
    }
    return found;
}

} // namespace LayoutChecks
