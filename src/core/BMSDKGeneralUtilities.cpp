#include "BMSDKGeneralUtilities.h"

#include "BMLogger.h"

#include <QLocale>
#include <QMutex>
#include <QUrl>

namespace {

const QString kModule = QStringLiteral("BMSDKGeneralUtilities");
const QString kFallbackOSLanguage = QStringLiteral("en-US");

struct LanguageState
{
    QMutex mutex;
    QString osLanguageOverride;
    QString language;
};

LanguageState &languageState()
{
    static LanguageState s;
    return s;
}

} // namespace

QString BMSDKGeneralUtilities::getOSLanguage()
{
    {
        LanguageState &s = languageState();
        QMutexLocker lock(&s.mutex);
        if (!s.osLanguageOverride.isEmpty())
            return s.osLanguageOverride;
    }
    const QStringList languages = QLocale::system().uiLanguages();
    QString first = languages.isEmpty() ? QString() : languages.first();
    first.replace(u'_', u'-');
    if (first.isEmpty() || first.compare(QLatin1String("C"), Qt::CaseInsensitive) == 0)
        return kFallbackOSLanguage;
    return first;
}

void BMSDKGeneralUtilities::setOSLanguageOverride(const QString &language)
{
    LanguageState &s = languageState();
    QMutexLocker lock(&s.mutex);
    s.osLanguageOverride = language.trimmed();
}

void BMSDKGeneralUtilities::setLanguage(const QString &code)
{
    const QString cleaned = code.trimmed();
    {
        LanguageState &s = languageState();
        QMutexLocker lock(&s.mutex);
        s.language = cleaned;
    }
    BMLogger::sharedInstance().logFromModule(kModule, 1, "language in use: %@",
                                             cleaned.isEmpty() ? QStringLiteral("(device)") : cleaned);
}

QString BMSDKGeneralUtilities::language()
{
    {
        LanguageState &s = languageState();
        QMutexLocker lock(&s.mutex);
        if (!s.language.isEmpty())
            return s.language;
    }
    return getOSLanguage().section(u'-', 0, 0);
}

QString BMSDKGeneralUtilities::urlEncode(const QString &text)
{
    // Unreserved characters are never encoded; these are kept besides them.
    static const QByteArray kKept = QByteArrayLiteral(":/?#[]@!$&'()*+,;=%");
    return QString::fromLatin1(QUrl::toPercentEncoding(text, kKept));
}

QString BMSDKGeneralUtilities::stringWithYYMMDDHMMFormatFromDate(const QDateTime &date)
{
    if (!date.isValid())
        return QString();
    return date.toLocalTime().toString(QStringLiteral("yy/MM/dd HH:mm"));
}
