#include "BrightmereView.h"

#include <Brightmere/core/BMLogger.h>
#include <Brightmere/model/BMSDKUISettings.h>
#include <Brightmere/platform/foundation/NotificationCenter.h>

#include <QFontDatabase>
#include <QFontInfo>
#include <QGuiApplication>
#include <QHash>
#include <QMutex>
#include <QMutexLocker>
#include <QPalette>
#include <QThread>

#include <atomic>
#include <cmath>
#include <mutex>

namespace Brightmere::View {

namespace {

const QString kModule = QStringLiteral("BrightmereView");

void registerSubstitutions()
{
    static std::once_flag once;
    std::call_once(once, [] {
        const QStringList substitutes{QStringLiteral("DejaVu Sans"), QStringLiteral("Sans Serif")};
        for (const char *family : {kFontSemibold, kFontBold, kFontLight, kFontRegular})
            QFont::insertSubstitutions(QString::fromLatin1(family), substitutes);
    });
}

// The weight each face is drawn with when a substitute stands in for it.
QFont::Weight faceWeight(int weight)
{
    if (weight >= QFont::Bold)
        return QFont::Bold;
    if (weight >= QFont::DemiBold)
        return QFont::DemiBold;
    if (weight <= QFont::Light)
        return QFont::Light;
    return QFont::Normal;
}

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

QString fontFamilyForWeight(int weight)
{
    switch (faceWeight(weight)) {
    case QFont::Bold:
        return QString::fromLatin1(kFontBold);
    case QFont::DemiBold:
        return QString::fromLatin1(kFontSemibold);
    case QFont::Light:
        return QString::fromLatin1(kFontLight);
    default:
        return QString::fromLatin1(kFontRegular);
    }
}

QFont kitFont(const QFont &font)
{
    registerSubstitutions();
    const QString family = fontFamilyForWeight(font.weight());
    QFont mapped = font;
    mapped.setFamilies({family});
    mapped.setFamily(family);
    // A style name would win over the weight in font matching.
    mapped.setStyleName(QString());
    mapped.setWeight(faceWeight(font.weight()));
    return mapped;
}

int pixelsForPoints(qreal points)
{
    return qRound(points);
}

namespace {

std::atomic<double> s_textScaleFactor{1.0};

// A font's size in points whether it was given in points or pixels.
qreal pointSizeOf(const QFont &font)
{
    return font.pointSizeF() > 0 ? font.pointSizeF() : QFontInfo(font).pointSizeF();
}

// The application's font against the platform's, 1 when either is unknown.
// Asking the platform for its font is costly and this is asked for every
// font made and for round titles on every paint, so on the main thread the
// answer is kept while the application's font stays the same; other threads
// ask afresh.
qreal userFontScale()
{
    const QFont application = QGuiApplication::font();
    const bool mainThread = QThread::currentThread() == QCoreApplication::instance()->thread();
    static QString keptFont; // the application font's key
    static qreal keptScale = 0; // 0: not known
    if (mainThread && keptScale > 0 && application.key() == keptFont)
        return keptScale;
    const qreal platform = pointSizeOf(QFontDatabase::systemFont(QFontDatabase::GeneralFont));
    const qreal points = pointSizeOf(application);
    const qreal scale = platform > 0 && points > 0 ? points / platform : 1.0;
    if (mainThread) {
        keptFont = application.key();
        keptScale = scale;
    }
    return scale;
}

} // namespace

qreal textScale()
{
    qreal scale = s_textScaleFactor.load();
    // Without a GUI application there is no user's font to follow.
    if (!qobject_cast<QGuiApplication *>(QCoreApplication::instance()))
        return scale;
    scale *= userFontScale();
    return qBound(kMinimumTextScaleFactor, scale, kMaximumTextScaleFactor);
}

void setTextScaleFactor(qreal factor)
{
    if (!std::isfinite(factor) || factor < kMinimumTextScaleFactor || factor > kMaximumTextScaleFactor) {
        const qreal clamped = std::isfinite(factor) ? qBound(kMinimumTextScaleFactor, factor, kMaximumTextScaleFactor) : 1.0;
        BMLogger::sharedInstance().logFromModule(kModule, 2, "text scale factor %@ is out of range; %@ is used",
                                                 QString::number(factor), QString::number(clamped));
        factor = clamped;
    }
    s_textScaleFactor.store(factor);
}

qreal textScaleFactor()
{
    return s_textScaleFactor.load();
}

int pixelsForTextPoints(qreal points)
{
    return qMax(pixelsForPoints(points), qRound(points * textScale()));
}

QFont fontOfSize(qreal points, QFont::Weight weight)
{
    QFont font;
    font.setPixelSize(qMax(kMinimumTextPixels, qRound(points * textScale())));
    font.setWeight(weight);
    return kitFont(font);
}

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
