#pragma once

#include <Brightmere/ui/BrightmereView.h>

#include <QAbstractButton>
#include <QAbstractScrollArea>
#include <QFontInfo>
#include <QLabel>
#include <QLineEdit>
#include <QStackedLayout>

// What a person would see wrong in a laid-out tree, a line a fault: a widget
// reaching outside the root, two siblings over each other, a label (or a
// field without the focus) whose text needs more room than it has or is cut
// with an ellipsis (unless the
// widget's "elidesOnPurpose" property says the design cuts it), a text under
// the kit's smallest size. Scroll areas' own parts and the layers of a
// StackAll layout overlap on purpose and are left alone. Joined into one
// line and compared with an empty string, a failure names every fault.
namespace LayoutChecks {

// Whole screens lay layers over each other on purpose (a panel's overlays,
// a popup over its screen, a click area over a heading, a chart's overhang,
// a scrolled strip's pages): there only texts over each other (by more than
// a pixel) count, and nothing reaching outside.
enum Overlaps : bool { AnySiblings, Texts };

inline QStringList faults(QWidget *root, Overlaps texts = AnySiblings)
{
    // Labels, buttons and fields all show their "text" property.
    const auto textOf = [](const QWidget *w) { return w->property("text").toString(); };
    QStringList found;
    const auto shown = [root](const QWidget *w) {
        return w && !w->isWindow() && w->isVisibleTo(root) && !w->size().isEmpty();
    };
    for (QWidget *widget : root->findChildren<QWidget *>()) {
        QWidget *parent = widget->parentWidget();
        if (!shown(widget) || qobject_cast<QAbstractScrollArea *>(parent))
            continue;
        const QString name = QString::fromLatin1(widget->metaObject()->className()) + " '" + widget->objectName() + "'";
        // (A whole screen's scrolled rows and strips reach past it on purpose.)
        if (!texts && !root->rect().contains(QRect(widget->mapTo(root, QPoint(0, 0)), widget->size())))
            found << name + " reaches outside";
        const QObjectList siblings = qobject_cast<QStackedLayout *>(parent->layout()) ? QObjectList() : parent->children();
        for (qsizetype i = siblings.indexOf(widget) + 1; i > 0 && i < siblings.size(); ++i) {
            auto *other = qobject_cast<QWidget *>(siblings.at(i));
            const QRect common = shown(other) ? other->geometry().intersected(widget->geometry()) : QRect();
            if (!common.isEmpty()
                && (!texts || (!textOf(widget).isEmpty() && !textOf(other).isEmpty() && qMin(common.width(), common.height()) > 1)))
                found << name + " under '" + other->objectName() + "'";
        }
        auto *label = qobject_cast<QLabel *>(widget);
        if (label && !label->text().isEmpty()
            && (label->wordWrap() ? label->heightForWidth(label->width()) > label->height()
                                  : label->sizeHint().width() > label->width()
                                        || (texts && QFontMetrics(label->font()).height() > label->height())))
            found << name + " cut: " + label->text().left(40);
        // A field scrolls its text, but one shown without the focus must show it whole.
        else if (auto *field = qobject_cast<QLineEdit *>(widget); field && !field->hasFocus()
                 && field->fontMetrics().horizontalAdvance(field->text()) + 4 > field->contentsRect().width())
            found << name + " cut: " + field->text().left(40);
        // A BMLabel cuts only as it paints: an ellipsis in its text is the text's own.
        else if (textOf(widget).contains(QChar(0x2026)) && !widget->inherits("BMLabel")
                 && !widget->property("elidesOnPurpose").toBool())
            found << name + " cut short: " + textOf(widget).left(40);
        if ((label || qobject_cast<QAbstractButton *>(widget) || qobject_cast<QLineEdit *>(widget))
            && QFontInfo(widget->font()).pixelSize() < Brightmere::View::kMinimumTextPixels)
            found << name + " text under the smallest size";
    }
    return found;
}

} // namespace LayoutChecks
