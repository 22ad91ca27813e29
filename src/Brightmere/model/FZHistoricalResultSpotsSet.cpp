#include "FZHistoricalResultSpotsSet.h"

#include "BMNumericStringComparison.h"
#include "FZSpotsSetsArchive.h"
#include <Brightmere/core/BMLogger.h>
#include <Brightmere/core/BMSDKBackend.h>
#include <Brightmere/platform/foundation/Archive.h>
#include <Brightmere/platform/foundation/Clock.h>
#include <Brightmere/platform/foundation/StringFormat.h>
#include <Brightmere/platform/foundation/UserDefaults.h>
#include <Brightmere/resources/FrameworkBundle.h>

#include <QHash>
#include <QMutex>
#include <QSet>

#include <algorithm>

using Brightmere::Archive;
using Brightmere::UserDefaults;

namespace {

const QString kModule = QStringLiteral("FZHistoricalResultSpotsSet");

QString key(const char *name)
{
    return QString::fromLatin1(name);
}

BMLogger &logger()
{
    return BMLogger::sharedInstance();
}

using Set = FZHistoricalResultSpotsSet;
using StoredSet = FZSpotsSetsArchive::StoredSet;
using StoredSets = FZSpotsSetsArchive::StoredSets;

// The sets and the stored value their bytes are slices of: one is only
// valid with the other.
struct StoreImage
{
    QByteArray blob;
    StoredSets sets;
};

// The sets last read from the store or written to it, with the stored value
// they stand for. Holding that value keeps its buffer alive, so a stored
// value that still lies in the same buffer (the defaults hand out shared
// copies until the value is replaced) has the same content, and its sets
// need not be decoded again. The objects are never handed out: callers get
// copies, so sets stay values.
struct DecodedStore
{
    QMutex mutex;
    StoreImage image;
};

DecodedStore &decodedStore()
{
    static DecodedStore store;
    return store;
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
    StoredSets sets;
    for (auto it = dictionary.cbegin(); it != dictionary.cend(); ++it) {
        if (it.value())
            sets.insert(it.key(), FZSpotsSetsArchive::packed(*it.value(), false));
    }
    return FZSpotsSetsArchive::assembled(sets);
}

std::optional<FZHistoricalResultSpotsSet::Dictionary> FZHistoricalResultSpotsSet::unarchiveDictionary(
    const QByteArray &blob, QString *error)
{
    QString reason;
    const std::optional<StoredSets> sets = FZSpotsSetsArchive::read(blob, {}, &reason);
    if (!sets) {
        if (error)
            *error = reason;
        return std::nullopt;
    }
    Dictionary dictionary;
    for (auto it = sets->cbegin(); it != sets->cend(); ++it)
        dictionary.insert(dictionary.cend(), it.key(), it->set);
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

namespace {

// Writes the sets whole; the cache follows only a write that reached the
// disk. After a failed one it is dropped, so the next read decodes what the
// disk holds.
bool writeStoredSets(StoreImage image)
{
    for (StoredSet &stored : image.sets) {
        if (stored.packed.isEmpty()) { // read from the earlier format: packed once, on its first write
            const Set::Ptr set = stored.set;
            stored = FZSpotsSetsArchive::packed(*set, false);
            stored.set = set;
        }
    }
    const QByteArray blob = FZSpotsSetsArchive::assembled(image.sets);
    UserDefaults &defaults = UserDefaults::standard();
    defaults.setObject(blob, key(Set::kSetsDictionaryKey));
    defaults.setObject(Set::currentDataVersion(), key(Set::kLastDataVersionKey));
    const bool written = defaults.synchronize();
    if (!written)
        logger().logFromModule(kModule, 3, "the saved sets could not be written to %@", defaults.filePath());
    DecodedStore &cache = decodedStore();
    QMutexLocker lock(&cache.mutex);
    cache.image = written ? StoreImage{blob, std::move(image.sets)} : StoreImage{};
    return written;
}

QString setStoredValueAside()
{
    UserDefaults &defaults = UserDefaults::standard();
    const double unixSeconds = BMSDKBackend::clock().now() + Brightmere::Clock::kReferenceDateUnixSeconds;
    const QString stamp = QDateTime::fromMSecsSinceEpoch(qint64(unixSeconds * 1000.0), Qt::UTC)
                              .toString(QStringLiteral("yyyyMMddTHHmmss"));
    const QString base = key(Set::kSetsDictionaryBackupKeyPrefix) + stamp;
    QString backupKey = base;
    // An earlier copy is never overwritten, even within the same second.
    for (int n = 2; defaults.contains(backupKey); ++n)
        backupKey = base + QLatin1Char('.') + QString::number(n);
    defaults.setObject(defaults.objectForKey(key(Set::kSetsDictionaryKey)), backupKey);
    return backupKey;
}

bool resetStore(const QString &reason, bool setAside)
{
    if (setAside) {
        const QString backupKey = setStoredValueAside();
        logger().logFromModule(kModule, 3,
                               "the saved sets cannot be used (%@); they were copied to \"%@\" in %@ and the "
                               "store starts empty",
                               reason, backupKey, UserDefaults::standard().filePath());
    }
    // The copy and the empty store reach the disk in the same write.
    return writeStoredSets(StoreImage{});
}

// The stored sets, or why the store must start again (and whether what is
// stored is to be copied aside first).
struct StoreReading
{
    std::optional<StoreImage> image;
    QString reason;
    bool setAside = false;
};

StoreReading readStoredSets()
{
    UserDefaults &defaults = UserDefaults::standard();
    const bool hasSets = defaults.contains(key(Set::kSetsDictionaryKey));
    if (!Set::savedDataVersion())
        return {std::nullopt, QStringLiteral("stored without a data version"), hasSets};
    const std::optional<QByteArray> blob = Set::savedSpotsSetsDictionary();
    if (!blob)
        return {};
    if (defaults.objectForKey(key(Set::kSetsDictionaryKey)).typeId() != QMetaType::QByteArray)
        return {std::nullopt, QStringLiteral("the stored value is not data"), true};

    DecodedStore &cache = decodedStore();
    StoreImage known;
    {
        QMutexLocker lock(&cache.mutex);
        const QByteArray &cached = cache.image.blob;
        if (!blob->isEmpty() && cached.constData() == blob->constData() && cached.size() == blob->size())
            return {cache.image, {}, false};
        known = cache.image;
    }
    QString error;
    std::optional<StoredSets> sets = FZSpotsSetsArchive::read(*blob, known.sets, &error);
    if (!sets)
        return {std::nullopt, error, true};
    QMutexLocker lock(&cache.mutex);
    cache.image = StoreImage{*blob, std::move(*sets)};
    return {cache.image, {}, false};
}

// The stored sets, shared with the cache: read, never change or hand out.
// A store that cannot be used is started again under the store's lock, and
// only when, read again there, it still cannot be used.
StoreImage storedSets()
{
    StoreReading reading = readStoredSets();
    if (reading.image)
        return *reading.image;
    StoreImage image;
    UserDefaults::standard().modifyExclusively([&image] {
        StoreReading again = readStoredSets();
        if (again.image) {
            image = *again.image;
            return true;
        }
        return resetStore(again.reason, again.setAside);
    });
    return image;
}

// Reads the store afresh under its lock, lets change alter the sets and
// writes them when it returns true. The sets are taken from the cache while
// they change, so a change of one set among thousands copies none of them.
bool changeStore(const std::function<bool(StoredSets &)> &change)
{
    bool written = false;
    const bool done = UserDefaults::standard().modifyExclusively([&change, &written] {
        StoreImage image = storedSets();
        {
            DecodedStore &cache = decodedStore();
            QMutexLocker lock(&cache.mutex);
            cache.image = StoreImage{};
        }
        if (!change(image.sets)) {
            DecodedStore &cache = decodedStore();
            QMutexLocker lock(&cache.mutex);
            cache.image = std::move(image);
            return true;
        }
        written = writeStoredSets(std::move(image));
        return written;
    });
    if (!done && !written)
        logger().logFromModule(kModule, 3, "the saved sets were not changed");
    return done;
}

} // namespace

bool FZHistoricalResultSpotsSet::saveAllSpotsSetDicitionary(const Dictionary &dictionary)
{
    StoreImage image;
    for (auto it = dictionary.cbegin(); it != dictionary.cend(); ++it) {
        if (it.value())
            image.sets.insert(it.key(), FZSpotsSetsArchive::packed(*it.value()));
    }
    return writeStoredSets(std::move(image));
}

FZHistoricalResultSpotsSet::Dictionary FZHistoricalResultSpotsSet::allSpotsSetsDictionary()
{
    Dictionary copy;
    const StoreImage image = storedSets();
    for (auto it = image.sets.cbegin(); it != image.sets.cend(); ++it)
        copy.insert(copy.cend(), it.key(), FZSpotsSetsArchive::copyOf(*it->set));
    return copy;
}

bool FZHistoricalResultSpotsSet::saveSpotSet(const Ptr &set)
{
    if (!set) {
        logger().logFromModule(kModule, 3, "an absent set cannot be saved");
        return false;
    }
    const StoredSet stored = FZSpotsSetsArchive::packed(*set);
    return changeStore([&set, &stored](StoredSets &sets) {
        sets.insert(set->name(), stored);
        return true;
    });
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
    const StoreImage image = storedSets();
    const auto stored = image.sets.constFind(name);
    return stored != image.sets.cend() ? FZSpotsSetsArchive::copyOf(*stored->set) : nullptr;
}

bool FZHistoricalResultSpotsSet::deleteSpotsSet(const Ptr &set)
{
    if (!set) {
        logger().logFromModule(kModule, 3, "an absent set cannot be deleted");
        return false;
    }
    return changeStore([&set](StoredSets &sets) {
        sets.remove(set->name());
        return true;
    });
}

bool FZHistoricalResultSpotsSet::changeStoredSets(const std::function<Change(const ConstDictionary &stored)> &change)
{
    return changeStore([&change](StoredSets &sets) {
        ConstDictionary stored;
        for (auto it = sets.cbegin(); it != sets.cend(); ++it)
            stored.insert(stored.cend(), it.key(), it->set);
        const Change wanted = change(stored);
        for (auto it = wanted.put.cbegin(); it != wanted.put.cend(); ++it) {
            if (it.value())
                sets.insert(it.key(), FZSpotsSetsArchive::packed(*it.value()));
        }
        for (const QString &title : wanted.remove)
            sets.remove(title);
        return !wanted.put.isEmpty() || !wanted.remove.isEmpty();
    });
}

void FZHistoricalResultSpotsSet::deleteAllSpotsSets()
{
    UserDefaults &defaults = UserDefaults::standard();
    const bool removed = defaults.modifyExclusively([&defaults] {
        defaults.removeObjectForKey(key(kSetsDictionaryKey));
        return defaults.synchronize();
    });
    if (!removed)
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
