#include "FZHistoricalResultSpotsSet.h"

#include "BMNumericStringComparison.h"
#include "core/BMLogger.h"
#include "core/BMSDKBackend.h"
#include "platform/foundation/Archive.h"
#include "platform/foundation/Clock.h"
#include "platform/foundation/StringFormat.h"
#include "platform/foundation/UserDefaults.h"
#include "resources/FrameworkBundle.h"

#include <QHash>
#include <QIODevice>
#include <QMutex>
#include <QSet>

#include <algorithm>

using Brightmere::Archive;
using Brightmere::UserDefaults;

namespace {

const QString kModule = QStringLiteral("FZHistoricalResultSpotsSet");

// Smallest archived entry: the key, name and SSID (4 bytes each when empty),
// a date and the nested blob's length.
constexpr qint64 kMinimumEntryBytes = 16;

QString key(const char *name)
{
    return QString::fromLatin1(name);
}

BMLogger &logger()
{
    return BMLogger::sharedInstance();
}

// The sets last read from the store, with the stored bytes they were read
// from. Holding those bytes keeps their buffer alive, so a stored value that
// still lies in the same buffer (QSettings hands out shared copies until the
// value is replaced or the file is read anew) has the same content, and its
// sets need not be decoded again. The objects are never handed out: callers
// get copies, so sets stay values.
struct DecodedStore
{
    QMutex mutex;
    QByteArray blob;
    FZHistoricalResultSpotsSet::Dictionary sets;
};

DecodedStore &decodedStore()
{
    static DecodedStore store;
    return store;
}

FZHistoricalResultSpotsSet::Ptr copyOf(const FZHistoricalResultSpotsSet &set)
{
    WifiTestResult::List spots;
    spots.reserve(set.spotsCount());
    for (const WifiTestResult::Ptr &spot : set.mutableSpots())
        spots.append(std::make_shared<WifiTestResult>(*spot));
    return FZHistoricalResultSpotsSet::create(set.name(), set.ssid(), set.date(), spots);
}

FZHistoricalResultSpotsSet::Dictionary copyOf(const FZHistoricalResultSpotsSet::Dictionary &sets)
{
    FZHistoricalResultSpotsSet::Dictionary copy;
    for (auto it = sets.cbegin(); it != sets.cend(); ++it)
        copy.insert(copy.cend(), it.key(), copyOf(*it.value()));
    return copy;
}

} // namespace

FZHistoricalResultSpotsSet::FZHistoricalResultSpotsSet(const QString &name, const QString &ssid,
                                                       const QDateTime &date, const WifiTestResult::List &spots)
    : m_name(name)
    , m_ssid(ssid)
    , m_date(date)
    , m_mutableSpots(spots)
{
}

FZHistoricalResultSpotsSet::Ptr FZHistoricalResultSpotsSet::create(const QString &name, const QString &ssid,
                                                                   const QDateTime &date,
                                                                   const WifiTestResult::List &spots)
{
    return std::make_shared<FZHistoricalResultSpotsSet>(name, ssid, date, spots);
}

WifiTestResult::List FZHistoricalResultSpotsSet::sortedSpots() const
{
    WifiTestResult::List sorted;
    sorted.reserve(m_mutableSpots.size());
    for (const WifiTestResult::Ptr &spot : m_mutableSpots) {
        if (spot)
            sorted.append(spot);
    }
    const bool ascending = m_sorting == 2;
    const bool byLabel = m_sorting != 0;
    std::stable_sort(sorted.begin(), sorted.end(),
                     [ascending, byLabel](const WifiTestResult::Ptr &a, const WifiTestResult::Ptr &b) {
                         const WifiTestResult &first = ascending ? *a : *b;
                         const WifiTestResult &second = ascending ? *b : *a;
                         if (byLabel) {
                             const int order = BMNumericStringComparison::compare(first.label(), second.label());
                             if (order != 0)
                                 return order < 0;
                         }
                         return first.timeAfterTest() < second.timeAfterTest();
                     });
    return sorted;
}

void FZHistoricalResultSpotsSet::toggleSorting()
{
    m_sorting = ((m_sorting + 1) % 3 + 3) % 3;
}

bool FZHistoricalResultSpotsSet::operator==(const FZHistoricalResultSpotsSet &other) const
{
    return m_name == other.m_name && m_ssid == other.m_ssid;
}

size_t qHash(const FZHistoricalResultSpotsSet &set, size_t seed)
{
    return qHash(set.name(), seed) ^ qHash(set.ssid(), seed);
}

void FZHistoricalResultSpotsSet::encode(QDataStream &stream) const
{
    stream << m_name << m_ssid << m_date.toUTC() << WifiTestResult::archiveList(m_mutableSpots);
}

bool FZHistoricalResultSpotsSet::decode(QDataStream &stream)
{
    QString name;
    QString ssid;
    QDateTime date;
    QByteArray spotsBlob;
    stream >> name >> ssid >> date >> spotsBlob;
    if (stream.status() != QDataStream::Ok)
        return false;
    Archive::Error error = Archive::Error::None;
    std::optional<WifiTestResult::List> spots = WifiTestResult::unarchiveList(spotsBlob, &error);
    if (!spots) {
        logger().logFromModule(kModule, 1, "the spots of set '%@' cannot be read: %@", name,
                               Archive::errorString(error));
        return false;
    }
    m_name = name;
    m_ssid = ssid;
    m_date = date;
    m_mutableSpots = *spots;
    m_sorting = 0;
    m_comparable = false;
    return true;
}

// The store --------------------------------------------------------------

QByteArray FZHistoricalResultSpotsSet::archiveDictionary(const Dictionary &dictionary)
{
    return Archive::write([&dictionary](QDataStream &stream) {
        quint32 count = 0;
        for (const Ptr &set : dictionary) {
            if (set)
                ++count;
        }
        stream << count;
        for (auto it = dictionary.cbegin(); it != dictionary.cend(); ++it) {
            if (!it.value())
                continue;
            stream << it.key();
            it.value()->encode(stream);
        }
    });
}

std::optional<FZHistoricalResultSpotsSet::Dictionary> FZHistoricalResultSpotsSet::unarchiveDictionary(
    const QByteArray &blob, QString *error)
{
    Dictionary dictionary;
    QString reason;
    const Archive::Error status = Archive::read(blob, [&dictionary, &reason](QDataStream &stream) {
        quint32 count = 0;
        stream >> count;
        if (stream.status() != QDataStream::Ok
            || count > quint64(stream.device()->bytesAvailable() / kMinimumEntryBytes + 1)) {
            reason = QStringLiteral("implausible number of sets");
            return false;
        }
        for (quint32 i = 0; i < count; ++i) {
            QString title;
            stream >> title;
            auto set = std::make_shared<FZHistoricalResultSpotsSet>();
            if (stream.status() != QDataStream::Ok || !set->decode(stream)) {
                reason = QStringLiteral("set %1 of %2 cannot be read").arg(i + 1).arg(count);
                return false;
            }
            dictionary.insert(title, std::move(set));
        }
        return true;
    });
    if (status != Archive::Error::None) {
        if (error)
            *error = reason.isEmpty() ? Archive::errorString(status)
                                      : Archive::errorString(status) + QStringLiteral(": ") + reason;
        return std::nullopt;
    }
    return dictionary;
}

std::optional<QByteArray> FZHistoricalResultSpotsSet::savedSpotsSetsDictionary()
{
    UserDefaults &defaults = UserDefaults::standard();
    if (!defaults.contains(key(kLastDataVersionKey)) || !defaults.contains(key(kSetsDictionaryKey)))
        return std::nullopt;
    return defaults.dataForKey(key(kSetsDictionaryKey));
}

std::optional<QString> FZHistoricalResultSpotsSet::savedDataVersion()
{
    UserDefaults &defaults = UserDefaults::standard();
    if (!defaults.contains(key(kLastDataVersionKey)))
        return std::nullopt;
    return defaults.stringForKey(key(kLastDataVersionKey));
}

QString FZHistoricalResultSpotsSet::currentDataVersion()
{
    return Brightmere::StringFormat::print(QStringLiteral("%@.%@"), Brightmere::FrameworkBundle::shortVersion(),
                                           Brightmere::FrameworkBundle::buildVersion());
}

bool FZHistoricalResultSpotsSet::saveAllSpotsSetDicitionary(const Dictionary &dictionary)
{
    UserDefaults &defaults = UserDefaults::standard();
    defaults.setObject(archiveDictionary(dictionary), key(kSetsDictionaryKey));
    defaults.setObject(currentDataVersion(), key(kLastDataVersionKey));
    if (!defaults.synchronize()) {
        logger().logFromModule(kModule, 3, "the saved sets could not be written to %@", defaults.filePath());
        return false;
    }
    return true;
}

QString FZHistoricalResultSpotsSet::setStoredValueAside()
{
    UserDefaults &defaults = UserDefaults::standard();
    const double unixSeconds = BMSDKBackend::clock().now() + Brightmere::Clock::kReferenceDateUnixSeconds;
    const QString stamp = QDateTime::fromMSecsSinceEpoch(qint64(unixSeconds * 1000.0), Qt::UTC)
                              .toString(QStringLiteral("yyyyMMddTHHmmss"));
    const QString base = key(kSetsDictionaryBackupKeyPrefix) + stamp;
    QString backupKey = base;
    // An earlier copy is never overwritten, even within the same second.
    for (int n = 2; defaults.contains(backupKey); ++n)
        backupKey = base + QLatin1Char('.') + QString::number(n);
    defaults.setObject(defaults.objectForKey(key(kSetsDictionaryKey)), backupKey);
    return backupKey;
}

FZHistoricalResultSpotsSet::Dictionary FZHistoricalResultSpotsSet::resetStore(const QString &reason, bool setAside)
{
    if (setAside) {
        const QString backupKey = setStoredValueAside();
        logger().logFromModule(kModule, 3,
                               "the saved sets cannot be used (%@); they were copied to \"%@\" in %@ and the "
                               "store starts empty",
                               reason, backupKey, UserDefaults::standard().filePath());
    }
    Dictionary empty;
    // The copy and the empty store reach the file in the same write.
    saveAllSpotsSetDicitionary(empty);
    return empty;
}

FZHistoricalResultSpotsSet::Dictionary FZHistoricalResultSpotsSet::storedSets()
{
    UserDefaults &defaults = UserDefaults::standard();
    const bool hasSets = defaults.contains(key(kSetsDictionaryKey));
    if (!savedDataVersion())
        return resetStore(QStringLiteral("stored without a data version"), hasSets);
    const std::optional<QByteArray> blob = savedSpotsSetsDictionary();
    if (!blob)
        return resetStore(QString(), false);
    if (defaults.objectForKey(key(kSetsDictionaryKey)).typeId() != QMetaType::QByteArray)
        return resetStore(QStringLiteral("the stored value is not data"), true);

    DecodedStore &cache = decodedStore();
    {
        QMutexLocker lock(&cache.mutex);
        if (!blob->isEmpty() && cache.blob.constData() == blob->constData() && cache.blob.size() == blob->size())
            return cache.sets;
    }
    QString error;
    std::optional<Dictionary> dictionary = unarchiveDictionary(*blob, &error);
    if (!dictionary)
        return resetStore(error, true);
    QMutexLocker lock(&cache.mutex);
    cache.blob = *blob;
    cache.sets = *dictionary;
    return *dictionary;
}

FZHistoricalResultSpotsSet::Dictionary FZHistoricalResultSpotsSet::allSpotsSetsDictionary()
{
    return copyOf(storedSets());
}

bool FZHistoricalResultSpotsSet::saveSpotSet(const Ptr &set)
{
    if (!set) {
        logger().logFromModule(kModule, 3, "an absent set cannot be saved");
        return false;
    }
    Dictionary dictionary = storedSets();
    dictionary.insert(set->name(), set);
    return saveAllSpotsSetDicitionary(dictionary);
}

bool FZHistoricalResultSpotsSet::saveSetWithName(const QString &name, const QString &ssid, const QDateTime &date,
                                                 const WifiTestResult::List &andWifiTestResults)
{
    WifiTestResult::List spots;
    spots.reserve(andWifiTestResults.size());
    spots.append(andWifiTestResults);
    return saveSpotSet(create(name, ssid, date, spots));
}

FZHistoricalResultSpotsSet::Ptr FZHistoricalResultSpotsSet::spotsSetWithName(const QString &name)
{
    const Ptr stored = storedSets().value(name);
    return stored ? copyOf(*stored) : nullptr;
}

bool FZHistoricalResultSpotsSet::deleteSpotsSet(const Ptr &set)
{
    if (!set) {
        logger().logFromModule(kModule, 3, "an absent set cannot be deleted");
        return false;
    }
    Dictionary dictionary = storedSets();
    dictionary.remove(set->name());
    return saveAllSpotsSetDicitionary(dictionary);
}

void FZHistoricalResultSpotsSet::deleteAllSpotsSets()
{
    UserDefaults &defaults = UserDefaults::standard();
    defaults.removeObjectForKey(key(kSetsDictionaryKey));
    if (!defaults.synchronize())
        logger().logFromModule(kModule, 3, "removing the saved sets from %@ failed", defaults.filePath());
}

// Listings ---------------------------------------------------------------

FZHistoricalResultSpotsSet::List FZHistoricalResultSpotsSet::sortedNewestFirst(const Dictionary &dictionary)
{
    List sets;
    sets.reserve(dictionary.size());
    for (const Ptr &set : dictionary) {
        if (set)
            sets.append(set);
    }
    std::stable_sort(sets.begin(), sets.end(), [](const Ptr &a, const Ptr &b) { return b->date() < a->date(); });
    return sets;
}

FZHistoricalResultSpotsSet::List FZHistoricalResultSpotsSet::allSpotsSets()
{
    const List sets = sortedNewestFirst(allSpotsSetsDictionary());

    // A set is comparable when a set other than itself (by name and SSID)
    // holds one of its labels. Asking that of every pair costs sets squared
    // times labels; instead, note for each label the first set that holds it
    // and whether a different one does too, which is linear in the spots.
    QHash<std::pair<QString, QString>, int> identities;
    identities.reserve(sets.size());
    QList<int> identityOfSet;
    identityOfSet.reserve(sets.size());
    for (const Ptr &set : sets) {
        const std::pair<QString, QString> identity{set->name(), set->ssid()};
        auto it = identities.constFind(identity);
        if (it == identities.constEnd())
            it = identities.insert(identity, int(identities.size()));
        identityOfSet.append(it.value());
    }

    struct Holders
    {
        int first = -1;
        bool shared = false;
    };
    QHash<QString, Holders> holders;
    for (qsizetype i = 0; i < sets.size(); ++i) {
        const int identity = identityOfSet.at(i);
        for (const WifiTestResult::Ptr &spot : sets.at(i)->mutableSpots()) {
            if (!spot)
                continue;
            Holders &entry = holders[spot->label()];
            if (entry.first < 0)
                entry.first = identity;
            else if (entry.first != identity)
                entry.shared = true;
        }
    }
    // Membership is by equality, so sets that are equal share their mark.
    QList<bool> comparableIdentity(identities.size(), false);
    for (qsizetype i = 0; i < sets.size(); ++i) {
        for (const WifiTestResult::Ptr &spot : sets.at(i)->mutableSpots()) {
            if (spot && holders.value(spot->label()).shared) {
                comparableIdentity[identityOfSet.at(i)] = true;
                break;
            }
        }
    }
    for (qsizetype i = 0; i < sets.size(); ++i)
        sets.at(i)->setComparable(comparableIdentity.at(identityOfSet.at(i)));
    return sets;
}

FZHistoricalResultSpotsSet::List FZHistoricalResultSpotsSet::allSpotsSetsWithTaretSetToCompare(const Ptr &target)
{
    const List sets = sortedNewestFirst(allSpotsSetsDictionary());
    const List matching = allSpotsSetsWithTaretSetToCompare(target, sets, false);
    // Membership is by equality (name and SSID), as for any set of sets.
    QSet<FZHistoricalResultSpotsSet> matched;
    for (const Ptr &set : matching)
        matched.insert(*set);
    for (const Ptr &set : sets)
        set->setComparable(matched.contains(*set));
    return sets;
}

FZHistoricalResultSpotsSet::List FZHistoricalResultSpotsSet::allSpotsSetsWithTaretSetToCompare(
    const Ptr &target, const List &allSpotsSets, bool excludeTarget)
{
    if (!target) {
        logger().logFromModule(kModule, 2, "no target set to compare with: nothing matches");
        return {};
    }
    QSet<QString> labels;
    for (const WifiTestResult::Ptr &spot : target->mutableSpots()) {
        if (spot)
            labels.insert(spot->label());
    }
    List matching;
    for (const Ptr &candidate : allSpotsSets) {
        if (!candidate || (excludeTarget && *candidate == *target))
            continue;
        const auto &spots = candidate->mutableSpots();
        const bool shares = std::any_of(spots.cbegin(), spots.cend(), [&labels](const WifiTestResult::Ptr &spot) {
            return spot && labels.contains(spot->label());
        });
        if (shares)
            matching.append(candidate);
    }
    return matching;
}
