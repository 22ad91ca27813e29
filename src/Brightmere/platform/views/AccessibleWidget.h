#pragma once

#include <QAccessibleWidget>

namespace Brightmere {

// What assistive tools hear from the controls Qt has no fitting interface
// for: a table row is a list item that can be picked, the page dots a slider
// over the pages, a button marked as a toggle is on or off, and a view that
// shows a figure (a speed) exposes it as its value. The names come from the
// callers (QWidget::setAccessibleName), so the views hold no texts.
class AccessibleWidget : public QAccessibleWidget, public QAccessibleValueInterface
{
public:
    AccessibleWidget(QWidget *widget, QAccessible::Role role);

    // Puts the factory in place once; the views that need it call it when made.
    static void installFactory();
    // Marks a button as a toggle (before anything asks for its interface)
    // and tells whether it is on; a change is announced.
    static void setToggle(QWidget *button, bool on);
    // Marks a view as showing a figure with that role; setValue() changes it
    // and announces the change.
    static void exposeValue(QWidget *widget, QAccessible::Role role);
    // Gives a plain view a role of its own (a grid, one of its cells); its
    // name stays the widget's accessible name.
    static void setRole(QWidget *widget, QAccessible::Role role);
    static void setValue(QWidget *widget, double value, const QString &text);
    // Tells assistive tools that a widget's name, or one of its states, changed.
    static void announceName(QWidget *widget);
    static void announceState(QWidget *widget, QAccessible::State changed);

    QAccessible::State state() const override;
    QString text(QAccessible::Text t) const override;
    void *interface_cast(QAccessible::InterfaceType type) override;
    QStringList actionNames() const override;
    void doAction(const QString &actionName) override;

    QVariant currentValue() const override;
    void setCurrentValue(const QVariant &) override {}
    QVariant maximumValue() const override;
    QVariant minimumValue() const override;
    QVariant minimumStepSize() const override { return 1; }

private:
    QAccessible::Role m_role;
};

} // namespace Brightmere
