#include "BMI18NManager.h"

#include "BMI18NBundleAnswer.h"
#include "BMI18NBundleCache.h"
#include "BMI18NNotification.h"
#include "BMI18NNumberFormatter.h"
#include "BMI18NServiceManager.h"
#include "BMLanguageChangeNotification.h"
#include <Brightmere/core/BMLogger.h>
#include <Brightmere/core/BMSDKGeneralUtilities.h>
#include <Brightmere/platform/foundation/LocalizedBundle.h>
#include <Brightmere/platform/foundation/UserDefaults.h>


#include <algorithm>
#include <atomic>
#include <mutex>
#include <shared_mutex>

namespace {

const QString kModule = QStringLiteral("BMI18NManager");
const QString kDefaultLang = QString::fromLatin1(kI18NDefaultLang);
const QString kPrefix = QString::fromLatin1(kPrefixString);
const QString kPlaceholder = QString::fromLatin1(kReplacePlaceholder);

// The languages the kit ships tables for: the seed of the choosable list.
const QSet<QString> &builtInLanguages()
{
    static const QSet<QString> languages{QStringLiteral("en"), QStringLiteral("es")};
    return languages;
}

// Lookups with keys made up at run time must not grow the cache without end.
constexpr qsizetype kTextCacheLimit = 4096;

template<typename... Args>
void logLine(int level, const char *format, const Args &...arguments)
{
    BMLogger::sharedInstance().logFromModule(kModule, level, QString::fromUtf8(format), arguments...);
}

bool isMap(const QVariant &value)
{
    return value.typeId() == QMetaType::QVariantMap;
}

// Constant-initialised, so usable from any static constructor too.
struct SharedInstance
{
    std::mutex mutex;
    std::shared_ptr<BMI18NManager> owner;
    std::atomic<BMI18NManager *> instance{nullptr};
};

constinit SharedInstance g_shared;

} // namespace

BMI18NManager::BMI18NManager()
{
    const QVariant stored = Brightmere::UserDefaults::standard().objectForKey(QString::fromLatin1(kI18NDataKey));
    QVariantMap record;
    if (isMap(stored)) {
        record = stored.toMap();
    } else if (stored.isValid()) {
        logLine(3, "the stored record under %@ is not a dictionary; it is ignored", kI18NDataKey);
    }

    const QVariant storedLanguage = record.value(QString::fromLatin1(kI18NLanguageKey));
    QString language;
    if (storedLanguage.typeId() == QMetaType::QString)
        language = storedLanguage.toString().trimmed();
    else if (storedLanguage.isValid())
        logLine(3, "the stored language is not a text; the device language is used");
    if (!language.isEmpty() && !isLanguageCode(language)) {
        logLine(3, "the stored language \"%@\" is no language code; the device language is used", language.left(64));
        language.clear();
    }

    m_languagesList = builtInLanguages();
    if (!language.isEmpty()) {
        m_langCode = language;
        m_languagesList.insert(language);
    } else {
        m_langCode = BMSDKGeneralUtilities::getOSLanguage().section(u'-', 0, 0).trimmed();
        if (!isLanguageCode(m_langCode))
            m_langCode = kDefaultLang;
    }
    BMSDKGeneralUtilities::setLanguage(currentLanguageLocked());

    m_bundleTexts.insert(m_langCode, loadBundle(m_langCode));
    m_bundleTexts.insert(kDefaultLang, loadBundle(kDefaultLang));

    const QVariant storedStamps = record.value(QString::fromLatin1(kI18NTimeStampKey));
    if (isMap(storedStamps) && !m_bundleTexts.value(m_langCode).isEmpty()
        && !m_bundleTexts.value(kDefaultLang).isEmpty()) {
        const QVariantMap stamps = storedStamps.toMap();
        for (auto it = stamps.cbegin(); it != stamps.cend(); ++it) {
            if (const std::optional<double> ts = BMI18NBundleAnswer::timestamp(it.value()))
                m_timestamp.insert(it.key(), *ts);
            else
                logLine(2, "the stored time stamp of %@ is not a number; that bundle will be downloaded again",
                        it.key());
        }
    }
    stateChangedLocked();
}

BMI18NManager::~BMI18NManager() = default;

BMI18NManager *BMI18NManager::sharedInstance()
{
    SharedInstance &s = g_shared;
    if (BMI18NManager *instance = s.instance.load(std::memory_order_acquire))
        return instance;
    std::lock_guard lock(s.mutex);
    if (!s.owner) {
        s.owner.reset(new BMI18NManager());
        s.instance.store(s.owner.get(), std::memory_order_release);
    }
    return s.owner.get();
}

void BMI18NManager::resetSharedInstanceForTesting()
{
    SharedInstance &s = g_shared;
    // Destroyed outside the lock, or later by a handler that still holds it.
    std::shared_ptr<BMI18NManager> previous;
    {
        std::lock_guard lock(s.mutex);
        s.instance.store(nullptr, std::memory_order_release);
        previous.swap(s.owner);
    }
}

// Lookup

QString BMI18NManager::stringForCode(const QString &code)
{
    return sharedInstance()->textForCode(code, code);
}

QString BMI18NManager::stringForCode(const QString &code, const QString &withDefault)
{
    return sharedInstance()->textForCode(code, withDefault);
}

QString BMI18NManager::textForCode(const QString &code, const QString &defaultValue)
{
    // A null key or default cannot be told from an empty one in the cache.
    const bool cacheable = !code.isNull() && !defaultValue.isNull();
    quint64 generation = 0;
    QString language;
    QString current;
    std::optional<QString> inCurrent;
    std::optional<QString> inDefault;
    {
        std::shared_lock lock(m_lock);
        if (cacheable) {
            const auto cached = m_textCache.constFind(code);
            if (cached != m_textCache.cend() && cached->defaultValue == defaultValue)
                return cached->text;
        }
        generation = m_generation;
        language = m_langCode;
        current = currentLanguageLocked();
        if (!code.isNull()) {
            const auto bundle = m_bundleTexts.constFind(language);
            if (bundle != m_bundleTexts.cend()) {
                const auto text = bundle->constFind(code);
                if (text != bundle->cend())
                    inCurrent = *text;
            }
            const auto english = m_bundleTexts.constFind(kDefaultLang);
            if (english != m_bundleTexts.cend()) {
                const auto text = english->constFind(code);
                if (text != english->cend())
                    inDefault = *text;
            }
        }
    }

    // The built-in tables are looked up by the default on purpose: the
    // one-argument form passes the key as default. Found means present, an
    // empty text included.
    std::optional<QString> found = inCurrent;
    if (!found && !defaultValue.isNull()) {
        const QString builtIn = getLocalStringWithCode(defaultValue, current, QString());
        if (!builtIn.isNull())
            found = builtIn;
    }
    if (!found)
        found = inDefault;
    if (!found && !defaultValue.isNull()) {
        const QString builtIn = getLocalStringWithCode(defaultValue, kDefaultLang, defaultValue);
        if (!builtIn.isNull())
            found = builtIn;
    }
    if (!found)
        return code;
    const QString result = found->isNull() ? QStringLiteral("") : replacePlaceholderInString(*found);

    if (cacheable) {
        std::unique_lock lock(m_lock);
        if (m_generation == generation) {
            if (m_textCache.size() >= kTextCacheLimit)
                m_textCache.clear();
            m_textCache.insert(code, CachedText{defaultValue, result});
        }
    }
    return result;
}

QString BMI18NManager::replacePlaceholderInString(const QString &text)
{
    if (text.isNull())
        return text;
    qsizetype start = text.indexOf(kPrefix);
    if (start < 0)
        return text;
    // One pass does what repeating "replace the first placeholder" does: a
    // "%@" never forms a new "PH_" with what surrounds it.
    QString result;
    result.reserve(text.size());
    qsizetype copied = 0;
    while (start >= 0) {
        result += QStringView(text).sliced(copied, start - copied);
        result += kPlaceholder;
        qsizetype end = start + kPrefix.size();
        while (end < text.size() && isIDChar(text.at(end).unicode()))
            ++end;
        copied = end;
        start = text.indexOf(kPrefix, end);
    }
    result += QStringView(text).sliced(copied);
    return result;
}

bool BMI18NManager::isIDChar(char16_t character)
{
    return (character >= u'a' && character <= u'z') || (character >= u'A' && character <= u'Z')
        || (character >= u'0' && character <= u'9') || character == u'_';
}

QString BMI18NManager::getLocalStringWithCode(const QString &code, const QString &forLanguage,
                                              const QString &defaultValue) const
{
    const QString text = getStringInBundle(Brightmere::LocalizedBundle::framework(), code, forLanguage, defaultValue);
    if (!text.isNull())
        return text;
    return getStringInBundle(Brightmere::LocalizedBundle::main(), code, forLanguage, defaultValue);
}

QString BMI18NManager::getStringInBundle(const Brightmere::LocalizedBundle &bundle, const QString &code,
                                         const QString &forLanguage, const QString &defaultValue) const
{
    if (code.isNull())
        return defaultValue;
    QString path = bundle.pathForLocalization(forLanguage);
    if (path.isNull())
        path = bundle.pathForLocalization(kDefaultLang);
    const QString text = bundle.localizedString(code, defaultValue, path);
    if (text == code)
        return defaultValue;
    return text;
}

// Numbers

QString BMI18NManager::formatNumber(double number)
{
    return sharedInstance()->numberText(number, 0, 0);
}

QString BMI18NManager::formatNumber(double number, int maxFractionDigits)
{
    return sharedInstance()->numberText(number, maxFractionDigits, 0);
}

QString BMI18NManager::formatNumber(double number, int maxFractionDigits, int minFractionDigits)
{
    return sharedInstance()->numberText(number, maxFractionDigits, minFractionDigits);
}

QString BMI18NManager::numberText(double number, int maxFractionDigits, int minFractionDigits) const
{
    if (maxFractionDigits < 0 || minFractionDigits < 0)
        logLine(2, "formatNumber: negative fraction digits (%@, %@) count as 0", maxFractionDigits,
                minFractionDigits);
    QString decimalPoint;
    {
        std::shared_lock lock(m_lock);
        decimalPoint = m_decimalPoint;
    }
    return BMI18NNumberFormatter::format(number, maxFractionDigits, minFractionDigits, decimalPoint);
}

// Language

QString BMI18NManager::currentLanguage() const
{
    std::shared_lock lock(m_lock);
    return currentLanguageLocked();
}

QString BMI18NManager::currentLanguageLocked() const
{
    if (m_languagesList.contains(m_langCode))
        return m_langCode;
    const QString base = m_langCode.section(u'-', 0, 0);
    if (m_languagesList.contains(base))
        return base;
    return kDefaultLang;
}

bool BMI18NManager::isLanguageCode(const QString &code)
{
    constexpr int kMaxParts = 4;
    constexpr int kMaxPartLength = 8;
    int parts = 1;
    int partLength = 0;
    for (const QChar c : code) {
        const char16_t u = c.unicode();
        if ((u >= u'a' && u <= u'z') || (u >= u'A' && u <= u'Z') || (u >= u'0' && u <= u'9')) {
            if (++partLength > kMaxPartLength)
                return false;
        } else if ((u == u'-' || u == u'_') && partLength > 0 && parts < kMaxParts) {
            ++parts;
            partLength = 0;
        } else {
            return false;
        }
    }
    return partLength > 0;
}

void BMI18NManager::setCurrentLanguage(const QString &code)
{
    if (code.trimmed().isEmpty()) {
        logLine(2, "setCurrentLanguage: an empty language code is ignored");
        return;
    }
    if (!isLanguageCode(code)) {
        logLine(3, "setCurrentLanguage: \"%@\" is no language code; the language stays as it was", code.left(64));
        return;
    }
    {
        std::unique_lock lock(m_lock);
        if (code == m_langCode)
            return;
        // The next refresh downloads the new language afresh.
        if (code != kDefaultLang)
            m_timestamp.remove(code);
        m_langCode = code;
        stateChangedLocked();
    }
    BMLanguageChangeNotification::postLanguageChange();
    BMSDKGeneralUtilities::setLanguage(currentLanguage());
}

QString BMI18NManager::getLanguageDescription(const QString &code) const
{
    return stringForCode(code, code);
}

QStringList BMI18NManager::getAvailableLanguages() const
{
    QStringList languages;
    {
        std::shared_lock lock(m_lock);
        languages = QStringList(m_languagesList.cbegin(), m_languagesList.cend());
    }
    languages.sort();
    return languages;
}

void BMI18NManager::removeLanguage(const QString &code)
{
    std::unique_lock lock(m_lock);
    removeLanguageLocked(code);
}

void BMI18NManager::removeLanguageLocked(const QString &code)
{
    if (code.isEmpty() || code == kDefaultLang)
        return;
    m_bundleTexts.remove(code);
    m_timestamp.remove(code);
    stateChangedLocked();
}

void BMI18NManager::stateChangedLocked()
{
    ++m_generation;
    m_textCache.clear();
    if (m_decimalPointLanguage != m_langCode) {
        m_decimalPointLanguage = m_langCode;
        m_decimalPoint = BMI18NNumberFormatter::decimalPointForLocale(m_langCode);
    }
}

QString BMI18NManager::languageCode() const
{
    std::shared_lock lock(m_lock);
    return m_langCode;
}

BMI18NManager::Texts BMI18NManager::bundleTextsForLanguage(const QString &code) const
{
    std::shared_lock lock(m_lock);
    return m_bundleTexts.value(code);
}

std::optional<double> BMI18NManager::timestampForLanguage(const QString &code) const
{
    std::shared_lock lock(m_lock);
    const auto it = m_timestamp.constFind(code);
    if (it == m_timestamp.cend())
        return std::nullopt;
    return *it;
}

// Refresh

void BMI18NManager::updateBundleTexts()
{
    const std::weak_ptr<BMI18NManager> weak = weak_from_this();
    BMI18NServiceManager::sharedInstance()->requestI18NBundleInfoWithSuccessBlock(
        requestBundleInfoSuccessBlock(),
        [weak](const std::optional<BMSDKRestRequestTask> &, const BMError &error) {
            if (!weak.lock())
                return;
            logLine(2, "requestBundleInfoSuccessBlock error %@", error.toString());
            BMI18NNotification::postTextBundleNotAvailable();
        });
}

BMI18NManager::SuccessBlock BMI18NManager::requestBundleInfoSuccessBlock()
{
    return [weak = weak_from_this()](const BMSDKRestRequestTask &, const QVariantMap &response) {
        if (const std::shared_ptr<BMI18NManager> self = weak.lock())
            self->handleBundleInfo(response);
    };
}

BMI18NManager::SuccessBlock BMI18NManager::requestBundleDataSuccessBlock()
{
    return [weak = weak_from_this()](const BMSDKRestRequestTask &, const QVariantMap &response) {
        if (const std::shared_ptr<BMI18NManager> self = weak.lock())
            self->handleBundleData(response);
    };
}

BMI18NManager::FailureBlock BMI18NManager::requestBundleDataErrorBlock()
{
    return [weak = weak_from_this()](const std::optional<BMSDKRestRequestTask> &, const BMError &error) {
        if (const std::shared_ptr<BMI18NManager> self = weak.lock())
            self->handleBundleDataError(error);
    };
}

void BMI18NManager::handleBundleInfo(const QVariantMap &response)
{
    logLine(2, "requestBundleInfoSuccessBlock %@", response);

    // Without a list every comparison is missing, which downloads the
    // current language: the safe reading of a damaged answer.
    const QList<BMI18NBundleAnswer::Listed> listed = BMI18NBundleAnswer::listedBundles(response);

    bool needCurrent = true;
    bool needDefault = false;
    QString language;
    {
        std::unique_lock lock(m_lock);
        language = m_langCode;
        const auto needed = [this](const QString &code, const std::optional<double> &ts) {
            const auto held = m_timestamp.constFind(code);
            return !ts || held == m_timestamp.cend() || *held != *ts;
        };
        m_languagesList = builtInLanguages();
        for (const auto &[code, ts] : listed) {
            if (code == language)
                needCurrent = needed(code, ts);
            else if (code == kDefaultLang)
                needDefault = needed(code, ts);
            if (code.size() == 2)
                m_languagesList.insert(code);
        }
        stateChangedLocked();
    }

    BMI18NServiceManager *service = BMI18NServiceManager::sharedInstance();
    if (needCurrent)
        service->requestI18NBundleDataWithSuccessBlock(requestBundleDataSuccessBlock(), requestBundleDataErrorBlock(),
                                                       language);
    if (needDefault)
        service->requestI18NBundleDataWithSuccessBlock(requestBundleDataSuccessBlock(), requestBundleDataErrorBlock(),
                                                       kDefaultLang);
    if (!needCurrent && !needDefault) {
        BMI18NNotification::postTextBundleAvailable();
        save();
    }
}

void BMI18NManager::handleBundleData(const QVariantMap &response)
{
    const std::optional<BMI18NBundleAnswer::Bundle> bundle = BMI18NBundleAnswer::bundle(response);
    if (!bundle) {
        BMI18NNotification::postTextBundleNotAvailable();
        return;
    }
    const QString &language = bundle->language;

    // Only one non-default language is cached: the one held before gives way.
    QString previousLanguage;
    if (language != kDefaultLang) {
        logLine(2, "requestBundleDataSuccess but bundle not available.");
        const QVariantMap record = Brightmere::UserDefaults::standard().dictionaryForKey(QString::fromLatin1(kI18NDataKey));
        const QVariant stored = record.value(QString::fromLatin1(kI18NLanguageKey));
        if (stored.typeId() == QMetaType::QString)
            previousLanguage = stored.toString();
    }
    {
        std::unique_lock lock(m_lock);
        if (!previousLanguage.isEmpty())
            removeLanguageLocked(previousLanguage);
        m_bundleTexts.insert(language, bundle->texts);
        if (bundle->ts)
            m_timestamp.insert(language, *bundle->ts);
        else
            m_timestamp.remove(language);
        if (language != kDefaultLang || !m_languagesList.contains(m_langCode))
            m_langCode = language;
        stateChangedLocked();
    }
    logLine(2, "requestBundleDataSuccess %@", language);
    save();
    BMI18NNotification::postTextBundleAvailable();
}

void BMI18NManager::handleBundleDataError(const BMError &error)
{
    logLine(3, "requestBundleDataError %@", error.toString());
    BMI18NNotification::postTextBundleNotAvailable();
}

// Persistence

void BMI18NManager::save()
{
    std::lock_guard saving(m_saveMutex);
    QVariantMap stamps;
    QString language;
    Texts current;
    Texts english;
    {
        std::shared_lock lock(m_lock);
        for (auto it = m_timestamp.cbegin(); it != m_timestamp.cend(); ++it)
            stamps.insert(it.key(), it.value());
        language = m_langCode;
        current = m_bundleTexts.value(language);
        english = m_bundleTexts.value(kDefaultLang);
    }

    Brightmere::UserDefaults &defaults = Brightmere::UserDefaults::standard();
    defaults.setObject(QVariantMap{{QString::fromLatin1(kI18NTimeStampKey), stamps},
                                   {QString::fromLatin1(kI18NLanguageKey), language}},
                       QString::fromLatin1(kI18NDataKey));
    if (!defaults.synchronize())
        logLine(3, "save: the record %@ could not be written to the user defaults", kI18NDataKey);

    saveBundle(language, current);
    // With "en" current, its file was just written.
    if (language != kDefaultLang)
        saveBundle(kDefaultLang, english);
}

QString BMI18NManager::bundleFilePath(const QString &code) const
{
    return BMI18NBundleCache::filePath(code);
}

BMI18NManager::Texts BMI18NManager::loadBundle(const QString &code) const
{
    return BMI18NBundleCache::load(code);
}

void BMI18NManager::saveBundle(const QString &code, const Texts &withTexts)
{
    BMI18NBundleCache::save(code, withTexts);
}

bool BMI18NManager::addSkipBackupAttributeToItemAtURL(const QUrl &url) const
{
    return BMI18NBundleCache::excludeFromBackup(url);
}
