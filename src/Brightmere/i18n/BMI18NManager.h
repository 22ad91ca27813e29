#pragma once

#include <Brightmere/SDKUIExport.h>

#include "BMI18NBundleFile.h"
#include <Brightmere/core/BMSDKRestServiceManager.h>

#include <QHash>
#include <QSet>
#include <QString>
#include <QStringList>
#include <QUrl>

#include <memory>
#include <mutex>
#include <optional>
#include <shared_mutex>

namespace Brightmere {
class LocalizedBundle;
}

/// Key of the record the manager keeps in the standard user-defaults store.
inline constexpr char kI18NDataKey[] = "kI18NDataKey";
/// Keys inside that record: the time stamp of each cached bundle by language,
/// and the current language.
inline constexpr char kI18NTimeStampKey[] = "kI18NTimeStampKey";
inline constexpr char kI18NLanguageKey[] = "kI18NLanguageKey";
/// For hosts; the manager itself neither reads nor writes it.
inline constexpr char kI18NStringsKey[] = "kI18NStringsKey";
/// The default language: its bundle is always kept.
inline constexpr char kI18NDefaultLang[] = "en";
/// "PH_name" inside a text is a placeholder; it becomes "%@".
inline constexpr char kPrefixString[] = "PH_";
inline constexpr char kReplacePlaceholder[] = "%@";

/// Turns localisation keys ("fairzones_title") into the texts shown, and
/// formats numbers for display.
///
/// Texts come, in this order, from the bundle downloaded for the current
/// language, the built-in string tables of that language (the kit's, then the
/// host's under ":/main/lproj"), the downloaded English bundle and the
/// built-in English tables; a key found nowhere comes back as its default.
/// Downloaded bundles are cached in the caches folder ("bundle_en" and
/// "bundle_user", one non-default language at a time) and their time stamps
/// and the current language in the user-defaults record "kI18NDataKey".
///
/// Thread safety: every operation may be called from any thread. The service's
/// answers arrive on the core library's network thread and change the state
/// there, and the notifications that end a refresh are posted there too
/// (subscribe with BMNotificationDelivery::MainThread to get them on the main
/// thread). Lookups take a shared lock and are served from a cache of
/// finished texts that every change of bundle or language empties; a host
/// adds its own tables before the first lookup (a table added later shows
/// after the next change of bundle or language).
///
/// Nothing is thrown: bad answers, files or arguments give a log line (module
/// "BMI18NManager") and leave the texts held usable.
class BRIGHTMERE_SDKUI_EXPORT BMI18NManager : public std::enable_shared_from_this<BMI18NManager>
{
public:
    /// Texts by key.
    using Texts = BMI18NBundleFile::Texts;
    /// Handler of a successful answer of the service.
    using SuccessBlock = BMSDKRestServiceManager::SuccessBlock;
    /// Handler of a failed request to the service.
    using FailureBlock = BMSDKRestServiceManager::FailureBlock;

    ~BMI18NManager();
    BMI18NManager(const BMI18NManager &) = delete;
    BMI18NManager &operator=(const BMI18NManager &) = delete;

    /// Created once, from any thread, reading the record and the cache files
    /// at that moment.
    static BMI18NManager *sharedInstance();

    /// For tests only, while no other thread uses the manager: drops the shared
    /// instance, so the next sharedInstance() builds a fresh one from the
    /// store and cache files as they are then. Handlers of requests the old
    /// instance started find it gone and do nothing.
    static void resetSharedInstanceForTesting();

    /// The text for code, with code as its default.
    static QString stringForCode(const QString &code);
    /// The text for code; never null when code is not. See the class comment
    /// for the order; the default is also the key looked up in the built-in
    /// tables.
    static QString stringForCode(const QString &code, const QString &withDefault);
    /// Every "PH_" and the identifier characters after it become "%@"; null
    /// for null.
    static QString replacePlaceholderInString(const QString &text);
    /// An ASCII letter or digit, or "_".
    static bool isIDChar(char16_t character);

    /// Numbers for display in the manager's language (see BMI18NNumberFormatter):
    /// cut toward zero, "2,7" for 2.79 with one digit in "es".
    static QString formatNumber(double number);
    /// The same with at most maxFractionDigits digits after the separator.
    static QString formatNumber(double number, int maxFractionDigits);
    /// The same with at least minFractionDigits digits after the separator.
    static QString formatNumber(double number, int maxFractionDigits, int minFractionDigits);

    /// Asks the service for its bundle list and downloads the bundles whose
    /// time stamps changed. Returns at once; "kTextBundleAvailable" or
    /// "kTextBundleNotAvailable" tells the outcome (one per download).
    void updateBundleTexts();

    /// Changes the language texts are shown in and posts "kLanguageChange";
    /// nothing is downloaded or saved (call updateBundleTexts for that). A
    /// code that is no language code is refused with a log line.
    void setCurrentLanguage(const QString &code);
    /// Whether a text looks like a language code: letters and digits in up
    /// to four parts joined by "-" or "_", each at most 8 long ("es",
    /// "pt-BR", "zh_Hant"). Codes from the service, the cache or a host are
    /// taken only when they do; they also become a part of an address.
    static bool isLanguageCode(const QString &code);
    /// The language code held when the user can choose it, else its part
    /// before "-" when the user can choose that, else "en".
    QString currentLanguage() const;
    /// The display name of a language: the text for the language code.
    QString getLanguageDescription(const QString &code) const;
    /// The languages the user can choose, sorted.
    QStringList getAvailableLanguages() const;

    /// Writes the record to the user defaults and the current and English
    /// bundles to their cache files.
    void save();
    /// Forgets a non-default language's bundle and time stamp (not its file).
    void removeLanguage(const QString &code);

    /// The texts of a language's cache file; empty when there is none or it
    /// cannot be read (with a log line for an unreadable one).
    Texts loadBundle(const QString &code) const;
    /// Writes a language's cache file atomically and marks it for exclusion
    /// from backups. Keys the format cannot hold are left out with a log line;
    /// a failed write leaves the file as it was, with a log line.
    void saveBundle(const QString &code, const Texts &withTexts);
    /// "<caches folder>/bundle_en" for "en", "<caches folder>/bundle_user" for
    /// every other language.
    QString bundleFilePath(const QString &code) const;
    /// Excludes the file's folder from backups with a CACHEDIR.TAG beside it.
    /// False (with a log line when writing the tag failed) when not done.
    bool addSkipBackupAttributeToItemAtURL(const QUrl &url) const;

    /// The text of code in the built-in tables for a language: the kit's
    /// tables, then the host's. Null when neither has it and defaultValue is null.
    QString getLocalStringWithCode(const QString &code, const QString &forLanguage,
                                   const QString &defaultValue) const;
    /// The same in one bundle; its "en" table stands in for a language it lacks.
    QString getStringInBundle(const Brightmere::LocalizedBundle &bundle, const QString &code,
                              const QString &forLanguage, const QString &defaultValue) const;

    /// Handlers for the service's answers; each holds the manager weakly and
    /// does nothing once it is gone.
    SuccessBlock requestBundleInfoSuccessBlock();
    /// Handles a downloaded bundle.
    SuccessBlock requestBundleDataSuccessBlock();
    /// Handles a failed bundle download.
    FailureBlock requestBundleDataErrorBlock();

    /// What the manager holds, for hosts and tests.
    QString languageCode() const;
    /// The downloaded texts held for a language.
    Texts bundleTextsForLanguage(const QString &code) const;
    /// The time stamp of the bundle held for a language, when one is.
    std::optional<double> timestampForLanguage(const QString &code) const;

private:
    BMI18NManager();

    struct CachedText
    {
        QString defaultValue;
        QString text;
    };

    QString textForCode(const QString &code, const QString &defaultValue);
    QString numberText(double number, int maxFractionDigits, int minFractionDigits) const;
    QString currentLanguageLocked() const;
    void removeLanguageLocked(const QString &code);
    // After any change of language or bundles: drops the finished texts and
    // follows the language with the decimal separator. Write lock held.
    void stateChangedLocked();

    void handleBundleInfo(const QVariantMap &response);
    void handleBundleData(const QVariantMap &response);
    void handleBundleDataError(const BMError &error);

    // Standard locks rather than Qt's: ThreadSanitizer understands them, so
    // a race check sees the manager's own synchronisation.
    mutable std::shared_mutex m_lock;
    QString m_langCode;
    QHash<QString, Texts> m_bundleTexts;
    QHash<QString, double> m_timestamp;
    QSet<QString> m_languagesList;
    QString m_decimalPoint = QStringLiteral(".");
    QString m_decimalPointLanguage;
    // Finished texts of the current state, by key; filled by lookups.
    QHash<QString, CachedText> m_textCache;
    quint64 m_generation = 0;

    // One save at a time, so a later state is never overwritten by an earlier one.
    std::mutex m_saveMutex;
};
