#include "FuzzEntryPoints.h"

#include <Brightmere/core/BMSDKHTTPSessionManager.h>
#include <Brightmere/core/BMSDKRestServiceManager.h>
#include <Brightmere/core/WifiTestResult.h>
#include <Brightmere/i18n/BMI18NBundleFile.h>
#include <Brightmere/i18n/BMI18NManager.h>
#include <Brightmere/i18n/BMI18NNotification.h>
#include <Brightmere/model/FZHistoricalResultSpotsSet.h>
#include <Brightmere/model/FZResultSpotsSetsComparison.h>
#include <Brightmere/platform/foundation/Archive.h>
#include <Brightmere/platform/foundation/StringFormat.h>
#include <Brightmere/platform/foundation/StringTable.h>
#include <Brightmere/platform/foundation/UserDefaults.h>
#include <Brightmere/reports/FZComparisonCsvWriter.h>
#include <Brightmere/reports/FZReportPdfWriter.h>
#include <Brightmere/reports/FZSpotsSetCsvWriter.h>
#include <Brightmere/reports/FZSpotsSetsBackup.h>

#include <QDir>
#include <QHashFunctions>
#include <QLoggingCategory>
#include <QStandardPaths>

namespace {

using Brightmere::Archive;

// Notifications counted on the thread that posted them, so that answers
// finishing on another thread never blur the count of the input at hand.
thread_local int t_available = 0;
thread_local int t_notAvailable = 0;

class NotificationCounter : public BMI18NNotificationSubscriber
{
public:
    void notifyTextBundleAvailable(BMI18NNotification *) override { ++t_available; }
    void notifyTextBundleNotAvailable(BMI18NNotification *) override { ++t_notAvailable; }
};

// Also a body that the archive header vouches for: a random blob almost never
// gets past the digest, and the decoder behind it is what is worth fuzzing.
QList<QByteArray> archiveForms(QByteArrayView input)
{
    const QByteArray raw = input.toByteArray();
    return {raw, Archive::write([&raw](QDataStream &stream) { stream.writeRawData(raw.constData(), int(raw.size())); })};
}

QString describeTexts(const BMI18NBundleFile::Texts &texts)
{
    QStringList keys = texts.keys();
    keys.sort();
    return QStringLiteral("%1 entries (%2)").arg(texts.size()).arg(keys.mid(0, 3).join(QStringLiteral(", ")));
}

// What the manager holds that a refused answer must leave alone.
struct HeldState
{
    QString language;
    BMI18NBundleFile::Texts current;
    BMI18NBundleFile::Texts english;

    static HeldState of(const BMI18NManager &manager)
    {
        const QString language = manager.languageCode();
        return {language, manager.bundleTextsForLanguage(language),
                manager.bundleTextsForLanguage(QStringLiteral("en"))};
    }
    bool operator==(const HeldState &) const = default;
};

} // namespace

// In the order of the enum.
const char *const kTargetNames[] = {"bundle_file", "string_table", "spots_store", "spot_blob",
                                    "bundle_info", "bundle_data",  "format",      "reports"};

QList<FuzzEntryPoints::Target> FuzzEntryPoints::allTargets()
{
    QList<Target> all;
    for (int i = 0; i <= int(Target::Reports); ++i)
        all.append(Target(i));
    return all;
}

QString FuzzEntryPoints::targetName(Target target)
{
    return QString::fromLatin1(kTargetNames[int(target)]);
}

QString &reportsFolder()
{
    static QString folder;
    return folder;
}

void FuzzEntryPoints::setUp(const QString &folder)
{
    reportsFolder() = QDir(folder).filePath(QStringLiteral("reports"));
    QDir().mkpath(reportsFolder());
    // The same input walks the same hash order on every run.
    QHashSeed::setDeterministicGlobalSeed();
    QStandardPaths::setTestModeEnabled(false);
    qputenv("XDG_CACHE_HOME", QDir(folder).filePath(QStringLiteral("cache")).toLocal8Bit());
    qputenv("XDG_CONFIG_HOME", QDir(folder).filePath(QStringLiteral("config")).toLocal8Bit());
    Brightmere::UserDefaults::setStandardFilePath(QDir(folder).filePath(QStringLiteral("defaults.ini")));
    QLoggingCategory::setFilterRules(QStringLiteral("brightmere.*=false"));
    // Not an HTTP address: a download the bundle list asks for fails at once.
    BMSDKRestServiceManager::setBrightmereServerURL(QStringLiteral("fuzz:"));
    static NotificationCounter counter;
    BMI18NNotification::subscribe(&counter);
    BMI18NManager::resetSharedInstanceForTesting();
    (void)BMI18NManager::sharedInstance();
}

QString FuzzEntryPoints::run(Target target, QByteArrayView input)
{
    switch (target) {
    case Target::BundleFile: return bundleFile(input);
    case Target::StringTable: return stringTable(input);
    case Target::SpotsStore: return spotsStore(input);
    case Target::SpotBlob: return spotBlob(input);
    case Target::BundleInfo: return bundleAnswer(input, true);
    case Target::BundleData: return bundleAnswer(input, false);
    case Target::Format: return format(input);
    case Target::Reports: return reports(input);
    }
    return QStringLiteral("unknown target");
}

QString FuzzEntryPoints::bundleFile(QByteArrayView input)
{
    const std::optional<BMI18NBundleFile::Texts> texts = BMI18NBundleFile::decode(input.toByteArray());
    if (!texts)
        return QString();
    // Whatever a cache file gave must be cached again and read back unchanged.
    QStringList skipped;
    const QByteArray written = BMI18NBundleFile::encode(*texts, &skipped);
    if (!skipped.isEmpty())
        return QStringLiteral("keys read from a cache file cannot be written back: %1").arg(skipped.join(u','));
    const std::optional<BMI18NBundleFile::Texts> again = BMI18NBundleFile::decode(written);
    if (!again)
        return QStringLiteral("a written cache file is not UTF-8");
    if (*again != *texts)
        return QStringLiteral("written and read again, %1 became %2").arg(describeTexts(*texts), describeTexts(*again));
    return QString();
}

QString FuzzEntryPoints::stringTable(QByteArrayView input)
{
    QString error;
    const Brightmere::StringTable table = Brightmere::StringTable::parse(input.toByteArray(), &error);
    const QStringList keys = table.keys();
    if (keys.size() != table.size())
        return QStringLiteral("%1 keys listed for %2 entries").arg(keys.size()).arg(table.size());
    for (const QString &key : keys) {
        if (table.value(key).isNull())
            return QStringLiteral("the listed key \"%1\" has no text").arg(key);
    }
    if (!error.isEmpty() && !error.startsWith(QStringLiteral("line ")))
        return QStringLiteral("the error names no line: %1").arg(error);
    return QString();
}

QString FuzzEntryPoints::spotsStore(QByteArrayView input)
{
    for (const QByteArray &blob : archiveForms(input)) {
        QString error;
        const std::optional<FZHistoricalResultSpotsSet::Dictionary> sets =
            FZHistoricalResultSpotsSet::unarchiveDictionary(blob, &error);
        if (!sets) {
            if (error.isEmpty())
                return QStringLiteral("a refused store gives no reason");
            continue;
        }
        // What was read is stored again by the next save: it must read back.
        const QByteArray saved = FZHistoricalResultSpotsSet::archiveDictionary(*sets);
        const std::optional<FZHistoricalResultSpotsSet::Dictionary> again =
            FZHistoricalResultSpotsSet::unarchiveDictionary(saved, &error);
        if (!again)
            return QStringLiteral("a store read and saved again cannot be read: %1").arg(error);
        if (FZHistoricalResultSpotsSet::archiveDictionary(*again) != saved)
            return QStringLiteral("a store read and saved again changed");
    }
    return QString();
}

QString FuzzEntryPoints::spotBlob(QByteArrayView input)
{
    for (const QByteArray &blob : archiveForms(input)) {
        const std::optional<WifiTestResult::List> spots = WifiTestResult::unarchiveList(blob);
        if (!spots)
            continue;
        const QByteArray saved = WifiTestResult::archiveList(*spots);
        const std::optional<WifiTestResult::List> again = WifiTestResult::unarchiveList(saved);
        if (!again)
            return QStringLiteral("spots read and saved again cannot be read");
        if (WifiTestResult::archiveList(*again) != saved)
            return QStringLiteral("spots read and saved again changed");
    }
    return QString();
}

QString FuzzEntryPoints::bundleAnswer(QByteArrayView input, bool information)
{
    // The reply's own parse step; what it refuses never reaches the manager.
    const std::optional<QVariantMap> response = BMSDKHTTPSessionManager::responseFromBody(input.toByteArray());
    if (!response)
        return QString();

    BMI18NManager *manager = BMI18NManager::sharedInstance();
    const HeldState before = HeldState::of(*manager);
    t_available = 0;
    t_notAvailable = 0;
    if (information)
        manager->requestBundleInfoSuccessBlock()(BMSDKRestRequestTask(), *response);
    else
        manager->requestBundleDataSuccessBlock()(BMSDKRestRequestTask(), *response);
    const HeldState after = HeldState::of(*manager);

    if (information) {
        // The list only decides what to download; the texts stay as they were.
        if (after.english != before.english || (after.language == before.language && after.current != before.current))
            return QStringLiteral("the bundle list changed the texts held");
        if (!manager->getAvailableLanguages().contains(QStringLiteral("es")))
            return QStringLiteral("a built-in language left the list");
        return QString();
    }
    if (t_available + t_notAvailable != 1)
        return QStringLiteral("a bundle answer ended in %1 notification(s)").arg(t_available + t_notAvailable);
    if (t_notAvailable == 1 && !(after == before))
        return QStringLiteral("a refused bundle changed the texts held");
    if (t_available == 1) {
        // Every text the answer carried is held, under the answer's language.
        const QVariantMap data = response->value(QStringLiteral("data")).toMap();
        const BMI18NBundleFile::Texts held = manager->bundleTextsForLanguage(data.value(QStringLiteral("_id")).toString());
        const QVariantMap contents = data.value(QStringLiteral("contents")).toMap();
        for (auto it = contents.cbegin(); it != contents.cend(); ++it) {
            if (it.value().typeId() == QMetaType::QString && held.value(it.key()) != it.value().toString())
                return QStringLiteral("the text of \"%1\" was not taken").arg(it.key());
        }
    }
    return QString();
}

QString FuzzEntryPoints::format(QByteArrayView input)
{
    // The format up to the first NUL; each further NUL-separated part one
    // argument, given as text, as a whole number and as a double, as the
    // kit's callers give them.
    const QList<QByteArray> parts = input.toByteArray().split('\0');
    const QString text = QString::fromUtf8(parts.value(0));
    QVariantList arguments;
    for (qsizetype i = 1; i < parts.size(); ++i) {
        const QString part = QString::fromUtf8(parts.at(i));
        switch (i % 3) {
        case 0: arguments.append(part); break;
        case 1: arguments.append(part.toLongLong()); break;
        default: arguments.append(part.toDouble()); break;
        }
    }
    const QString out = Brightmere::StringFormat::format(text, arguments);
    // Bounded whatever the input.
    if (out.size() > Brightmere::StringFormat::kMaxOutputLength)
        return QStringLiteral("a format of %1 characters made %2").arg(text.size()).arg(out.size());
    return QString();
}

QString FuzzEntryPoints::reports(QByteArrayView input)
{
    // Whatever a restore accepts, both writers must turn into a report: no
    // hang, no endless axis, no crash, whatever the values and names.
    FZReportResult refused;
    const std::optional<FZHistoricalResultSpotsSet::List> sets =
        FZSpotsSetsBackup::readBackupJson(input.toByteArray(), &refused);
    if (!sets)
        return QString();
    FZReportPdfWriter pdf(QLocale(QStringLiteral("en_GB")));
    const QString path = QDir(reportsFolder()).filePath(QStringLiteral("report.pdf"));
    for (qsizetype i = 0; i < std::min<qsizetype>(sets->size(), 2); ++i) {
        if (!FZSpotsSetCsvWriter::csvForSet(sets->at(i)).startsWith("\xEF\xBB\xBF"))
            return QStringLiteral("the CSV of restored set %1 has no byte-order mark").arg(i + 1);
        const FZReportResult written = pdf.writeSetReport(sets->at(i), path);
        if (!written.isOk())
            return QStringLiteral("the PDF of restored set %1 failed: %2").arg(i + 1).arg(written.message());
    }
    if (sets->size() >= 2) {
        const FZResultSpotsSetsComparison comparison(sets->at(0), sets->at(1));
        if (!FZComparisonCsvWriter::csvForComparison(comparison, true).startsWith("\xEF\xBB\xBF"))
            return QStringLiteral("the comparison CSV has no byte-order mark");
        const FZReportResult written = pdf.writeComparisonReport(comparison, false, path);
        if (!written.isOk())
            return QStringLiteral("the comparison PDF failed: %1").arg(written.message());
    }
    return QString();
}
