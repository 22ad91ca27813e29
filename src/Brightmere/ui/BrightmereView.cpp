#include "BrightmereView.h"

#include <Brightmere/core/BMLogger.h>
#include <Brightmere/model/BMSDKUISettings.h>
#include <Brightmere/platform/foundation/NotificationCenter.h>

#include <QHash>
#include <QMutex>
#include <QMutexLocker>
#include <QPalette>

namespace Brightmere::View {

namespace {

const QString kModule = QStringLiteral("BrightmereView");

struct NibRegistry
{
    QMutex mutex;
    QHash<QString, NibFactory> factories;
};

NibRegistry &nibRegistry()
{
    static NibRegistry registry;
    return registry;
}

bool resign(QWidget *widget)
{
    QWidget *window = widget->window();
    if (window && window->focusWidget() == widget) {
        widget->clearFocus();
        return true;
    }
    for (QObject *child : widget->children()) {
        if (child->isWidgetType() && resign(static_cast<QWidget *>(child)))
            return true;
    }
    return false;
}

} // namespace

void setupFont(QWidget *view)
{
    if (!view) {
        BMLogger::sharedInstance().log(kModule, 3, QStringLiteral("setupFont on no widget; nothing to do"));
        return;
    }
    view->setFont(kitFont(view->font()));
}

void registerNib(const QString &className, NibFactory factory)
{
    if (className.isEmpty() || !factory) {
        BMLogger::sharedInstance().logFromModule(kModule, 3,
                                                 "form '%@' not registered: it needs a class name and a factory",
                                                 className);
        return;
    }
    NibRegistry &registry = nibRegistry();
    QMutexLocker locker(&registry.mutex);
    if (registry.factories.contains(className))
        BMLogger::sharedInstance().logFromModule(kModule, 1, "form '%@' registered again; the new factory wins",
                                                 className);
    registry.factories.insert(className, std::move(factory));
}

void unregisterNib(const QString &className)
{
    NibRegistry &registry = nibRegistry();
    QMutexLocker locker(&registry.mutex);
    registry.factories.remove(className);
}

bool hasNib(const QString &className)
{
    NibRegistry &registry = nibRegistry();
    QMutexLocker locker(&registry.mutex);
    return registry.factories.contains(className);
}

QWidget *loadFromNib(const QString &className, QWidget *parent)
{
    NibFactory factory;
    {
        NibRegistry &registry = nibRegistry();
        QMutexLocker locker(&registry.mutex);
        factory = registry.factories.value(className);
    }
    if (!factory) {
        BMLogger::sharedInstance().logFromModule(kModule, 3, "no form registered for class '%@'", className);
        return nullptr;
    }
    // Called unlocked: a form may load the forms it is made of.
    QWidget *widget = factory(parent);
    if (!widget)
        BMLogger::sharedInstance().logFromModule(kModule, 3, "the form of class '%@' made no widget", className);
    return widget;
}

void Detail::discardMistypedNib(QWidget *widget, const char *expectedClassName)
{
    BMLogger::sharedInstance().logFromModule(kModule, 3, "the form of class '%@' made a %@; it is discarded",
                                             QString::fromLatin1(expectedClassName),
                                             QString::fromLatin1(widget->metaObject()->className()));
    delete widget;
}

bool findAndResignFirstResponder(QWidget *view)
{
    if (!view) {
        BMLogger::sharedInstance().log(kModule, 3, QStringLiteral("findAndResignFirstResponder on no widget"));
        return false;
    }
    return resign(view);
}

void setBackgroundColor(QWidget *view, const QColor &color)
{
    if (!view)
        return;
    view->setAutoFillBackground(true);
    QPalette palette = view->palette();
    palette.setColor(QPalette::Window, color);
    view->setPalette(palette);
}

void followContrast(QWidget *widget, const std::function<void()> &apply, bool applyNow)
{
    if (!widget || !apply)
        return;
    if (applyNow)
        apply();
    NotificationCenter &center = NotificationCenter::defaultCenter();
    center.addObserver(widget, QString::fromLatin1(BMSDKUISettings::kHighContrastChangeNotification),
                       [apply](const Notification &) { apply(); });
    // Registered once per widget however many parts of it follow.
    if (!widget->property("followsContrast").toBool()) {
        widget->setProperty("followsContrast", true);
        QObject::connect(widget, &QObject::destroyed,
                         [widget] { NotificationCenter::defaultCenter().removeObserver(widget); });
    }
}

QString literalButtonText(const QString &text)
{
    QString literal = text;
    return literal.replace(QLatin1Char('&'), QStringLiteral("&&"));
}

} // namespace Brightmere::View
