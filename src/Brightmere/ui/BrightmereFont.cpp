#include "BrightmereFont.h"

#include <Brightmere/core/BMLogger.h>

#include <QCoreApplication>
#include <QFontDatabase>
#include <QFontInfo>
#include <QGuiApplication>
#include <QThread>

#include <atomic>
#include <cmath>
#include <mutex>

namespace Brightmere::View {

namespace {

const QString kModule = QStringLiteral("BrightmereFont");

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

} // namespace Brightmere::View
