#include "BMSDKGeneralUtilities.h"

#include "BMLogger.h"

#include <QLocale>
#include <QMutex>

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
    // QUrl::toPercentEncoding always encodes "%", which would encode again
    // what a caller already encoded; hence a loop of our own.
    static const QByteArray kKept = QByteArrayLiteral(":/?#[]@!$&'()*+,;=%-._~");
    static const char kHex[] = "0123456789ABCDEF";
    const QByteArray utf8 = text.toUtf8();
    QString encoded;
    encoded.reserve(utf8.size());
    for (const char c : utf8) {
        const auto byte = static_cast<unsigned char>(c);
        const bool alphanumeric =
            (byte >= 'a' && byte <= 'z') || (byte >= 'A' && byte <= 'Z') || (byte >= '0' && byte <= '9');
        if (alphanumeric || (byte < 0x80 && kKept.contains(c))) {
            encoded += QLatin1Char(c);
        } else {
            encoded += u'%';
            encoded += QLatin1Char(kHex[byte >> 4]);
            encoded += QLatin1Char(kHex[byte & 0x0f]);
        }
    }
    return encoded;
}

QString BMSDKGeneralUtilities::stringWithYYMMDDHMMFormatFromDate(const QDateTime &date)
{
    if (!date.isValid())
        return QString();
    return date.toLocalTime().toString(QStringLiteral("yy/MM/dd HH:mm"));
}

QString BMSDKGeneralUtilities::displayAddress(const QUrl &url)
{
    return url.toString(QUrl::RemoveUserInfo | QUrl::RemoveQuery);
}

QString BMSDKGeneralUtilities::displayAddress(const QString &address)
{
    return displayAddress(QUrl(address));
}

QString BMSDKGeneralUtilities::withoutUserInfo(const QString &text, const QUrl &url)
{
    QString cleaned = text;
    for (const QUrl::ComponentFormattingOptions form : {QUrl::FullyEncoded, QUrl::PrettyDecoded, QUrl::FullyDecoded}) {
        const QString userInfo = url.userInfo(form);
        if (!userInfo.isEmpty())
            cleaned.replace(userInfo + u'@', QString());
        const QString password = url.password(form);
        if (!password.isEmpty())
            cleaned.replace(password, QStringLiteral("***"));
    }
    return cleaned;
}
