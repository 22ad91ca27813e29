#pragma once

#include <Brightmere/SDKExport.h>

#include <Brightmere/platform/foundation/StringFormat.h>

#include <QDateTime>
#include <QString>
#include <QUrl>

// Small services of the core library: the device language, the language the
// kit shows, addresses built from formats, and date texts.
class BRIGHTMERE_SDK_EXPORT BMSDKGeneralUtilities
{
public:
    // The device's preferred language in the "en-US" form, from the system
    // locale's UI languages ("en-US" when the system names none, as under the
    // C locale). A non-empty override, for tests and hosts, wins.
    static QString getOSLanguage();
    static void setOSLanguageOverride(const QString &language);

    // The language the kit shows texts in, as the localisation layer tells
    // it; until then the device language without its region ("en").
    static void setLanguage(const QString &code);
    static QString language();

    // Formats with "%@" placeholders, then percent-encodes what may not stand
    // in an address (spaces, double quotes, < > \ ^ ` { | }, controls,
    // non-ASCII as UTF-8) while keeping the reserved characters
    // (: / ? # [ ] @ ! $ & ' ( ) * + , ; =) and "%", so an address built from
    // parts keeps its shape and what was already encoded stays as it is.
    template<typename... Args>
    static QString urlEncodeWithFormat(const QString &format, const Args &...arguments)
    {
        return urlEncode(Brightmere::StringFormat::print(format, arguments...));
    }
    static QString urlEncode(const QString &text);

    // "yy/MM/dd HH:mm" in local time; an invalid date gives an empty text.
    static QString stringWithYYMMDDHMMFormatFromDate(const QDateTime &date);

    // An address as logs, errors and screens may show it: without its user
    // name and password ("http://host/..."), and without its query.
    static QString displayAddress(const QUrl &url);
    static QString displayAddress(const QString &address);
    // The text with every mention of the address's user name and password
    // taken out (Qt's own error texts quote the address whole).
    static QString withoutUserInfo(const QString &text, const QUrl &url);
};
