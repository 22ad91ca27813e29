#include "AccessibleWidget.h"

#include "PageControl.h"
#include "TableViewCell.h"

#include <QAbstractButton>

namespace Brightmere {

namespace {
constexpr char kToggleProperty[] = "brightmereAccessibleToggle";
constexpr char kRoleProperty[] = "brightmereAccessibleRole";
constexpr char kPlainRoleProperty[] = "brightmereAccessiblePlainRole";
constexpr char kValueProperty[] = "brightmereAccessibleValue";
constexpr char kValueTextProperty[] = "brightmereAccessibleValueText";

QAccessibleInterface *factory(const QString &, QObject *object)
{
    auto *widget = qobject_cast<QWidget *>(object);
    if (!widget)
        return nullptr;
    if (qobject_cast<TableViewCell *>(widget))
        return new AccessibleWidget(widget, QAccessible::ListItem);
    if (qobject_cast<PageControl *>(widget))
        return new AccessibleWidget(widget, QAccessible::Slider);
    if (widget->property(kToggleProperty).isValid())
        return new AccessibleWidget(widget, QAccessible::Button);
    if (widget->property(kRoleProperty).isValid())
        return new AccessibleWidget(widget, QAccessible::Role(widget->property(kRoleProperty).toInt()));
    if (widget->property(kPlainRoleProperty).isValid())
        return new AccessibleWidget(widget, QAccessible::Role(widget->property(kPlainRoleProperty).toInt()));
    return nullptr;
}
} // namespace

AccessibleWidget::AccessibleWidget(QWidget *widget, QAccessible::Role role)
    : QAccessibleWidget(widget, role)
    , m_role(role)
{
}

void AccessibleWidget::installFactory()
{
    static const bool installed = [] {
        QAccessible::installFactory(factory);
        return true;
    }();
    Q_UNUSED(installed);
}

void AccessibleWidget::setToggle(QWidget *button, bool on)
{
    installFactory();
    const QVariant before = button->property(kToggleProperty);
    button->setProperty(kToggleProperty, on);
    if (before.isValid() && before.toBool() != on) {
        QAccessible::State changed;
        changed.checked = true;
        announceState(button, changed);
    }
}

void AccessibleWidget::exposeValue(QWidget *widget, QAccessible::Role role)
{
    installFactory();
    widget->setProperty(kRoleProperty, int(role));
}

void AccessibleWidget::setRole(QWidget *widget, QAccessible::Role role)
{
    installFactory();
    widget->setProperty(kPlainRoleProperty, int(role));
}

void AccessibleWidget::setValue(QWidget *widget, double value, const QString &text)
{
    if (widget->property(kValueTextProperty).toString() == text)
        return;
    widget->setProperty(kValueProperty, value);
    widget->setProperty(kValueTextProperty, text);
    QAccessibleValueChangeEvent event(widget, value);
    QAccessible::updateAccessibility(&event);
}

void AccessibleWidget::announceName(QWidget *widget)
{
    QAccessibleEvent event(widget, QAccessible::NameChanged);
    QAccessible::updateAccessibility(&event);
}

void AccessibleWidget::announceState(QWidget *widget, QAccessible::State changed)
{
    QAccessibleStateChangeEvent event(widget, changed);
    QAccessible::updateAccessibility(&event);
}

QAccessible::State AccessibleWidget::state() const
{
    QAccessible::State s = QAccessibleWidget::state();
    if (auto *cell = qobject_cast<TableViewCell *>(widget())) {
        s.selectable = true;
        s.selected = cell->isAccessibleSelected();
    }
    const QVariant toggle = widget()->property(kToggleProperty);
    if (toggle.isValid()) {
        s.checkable = true;
        s.checked = toggle.toBool();
    }
    return s;
}

QString AccessibleWidget::text(QAccessible::Text t) const
{
    if (t == QAccessible::Value) {
        if (auto *dots = qobject_cast<PageControl *>(widget()))
            return QStringLiteral("%1 / %2").arg(dots->currentPage() + 1).arg(dots->numberOfPages());
        return widget()->property(kValueTextProperty).toString();
    }
    return QAccessibleWidget::text(t);
}

void *AccessibleWidget::interface_cast(QAccessible::InterfaceType type)
{
    if (type == QAccessible::ValueInterface && (m_role == QAccessible::Slider || widget()->property(kRoleProperty).isValid()))
        return static_cast<QAccessibleValueInterface *>(this);
    return QAccessibleWidget::interface_cast(type);
}

QStringList AccessibleWidget::actionNames() const
{
    QStringList names = QAccessibleWidget::actionNames();
    if (qobject_cast<QAbstractButton *>(widget()))
        names.prepend(widget()->property(kToggleProperty).isValid() ? toggleAction() : pressAction());
    return names;
}

void AccessibleWidget::doAction(const QString &actionName)
{
    auto *button = qobject_cast<QAbstractButton *>(widget());
    if (button && (actionName == pressAction() || actionName == toggleAction()))
        button->click();
    else
        QAccessibleWidget::doAction(actionName);
}

QVariant AccessibleWidget::currentValue() const
{
    if (auto *dots = qobject_cast<PageControl *>(widget()))
        return dots->currentPage() + 1;
    return widget()->property(kValueProperty);
}

QVariant AccessibleWidget::maximumValue() const
{
    if (auto *dots = qobject_cast<PageControl *>(widget()))
        return dots->numberOfPages();
    return widget()->property(kValueProperty);
}

QVariant AccessibleWidget::minimumValue() const
{
    return qobject_cast<PageControl *>(widget()) ? QVariant(1) : QVariant(0.0);
}

} // namespace Brightmere
