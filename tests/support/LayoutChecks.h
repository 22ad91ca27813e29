#pragma once

#include "ui/BrightmereView.h"

#include <QAbstractButton>
#include <QAbstractScrollArea>
#include <QFontInfo>
#include <QLabel>
#include <QLineEdit>
#include <QStackedLayout>
#include <QWidget>

// What a person would see wrong in a laid-out tree, each fault a line: a
// widget reaching outside the root, two sibling widgets over each other, a
// label whose text needs more room than it has, a text under the kit's
// smallest size. Scroll areas' own parts and the layers of a StackAll
// layout overlap on purpose and are left alone.
namespace LayoutChecks {

inline QString nameOf(const QWidget *widget)
{
    return QStringLiteral("%1 '%2'").arg(QString::fromLatin1(widget->metaObject()->className()), widget->objectName());
}

inline QStringList faults(QWidget *root)
{
    QStringList found;
    const auto shown = [root](const QWidget *w) { return w->isVisibleTo(root) && !w->size().isEmpty(); };
    for (QWidget *widget : root->findChildren<QWidget *>()) {
        if (!shown(widget) || qobject_cast<QAbstractScrollArea *>(widget->parentWidget()))
            continue;
        if (!root->rect().contains(QRect(widget->mapTo(root, QPoint(0, 0)), widget->size())))
            found << nameOf(widget) + " reaches outside";
        const auto *layers = qobject_cast<QStackedLayout *>(widget->parentWidget()->layout());
        const QObjectList siblings = widget->parentWidget()->children();
        for (qsizetype i = siblings.indexOf(widget) + 1; i < siblings.size() && !layers; ++i) {
            auto *other = qobject_cast<QWidget *>(siblings.at(i));
            if (other && shown(other) && !other->isWindow() && other->geometry().intersects(widget->geometry()))
                found << nameOf(widget) + " under " + nameOf(other);
        }
        if (auto *label = qobject_cast<QLabel *>(widget); label && !label->text().isEmpty()) {
            const bool fits = label->wordWrap() ? label->heightForWidth(label->width()) <= label->height()
                                                : label->sizeHint().width() <= label->width();
            if (!fits)
                found << nameOf(widget) + " cut: " + label->text().left(40);
        }
        const bool text = qobject_cast<QLabel *>(widget) || qobject_cast<QAbstractButton *>(widget)
                          || qobject_cast<QLineEdit *>(widget);
        if (text && QFontInfo(widget->font()).pixelSize() < Brightmere::View::kMinimumTextPixels)
            found << nameOf(widget) + QStringLiteral(" text of %1 px").arg(QFontInfo(widget->font()).pixelSize());
    }
    return found;
}

} // namespace LayoutChecks
