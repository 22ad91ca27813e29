#include "FZHistoricalResultSpotsSet.h"

#include "BMNumericStringComparison.h"
#include "core/BMLogger.h"
#include "core/BMSDKBackend.h"
#include "platform/foundation/Archive.h"
#include "platform/foundation/Clock.h"
#include "platform/foundation/StringFormat.h"
#include "platform/foundation/UserDefaults.h"
#include "resources/FrameworkBundle.h"

#include <QCryptographicHash>
#include <QHash>
#include <QIODevice>
#include <QMutex>
#include <QSet>
#include <QtEndian>

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

using Set = FZHistoricalResultSpotsSet;

// The store's archive. Earlier versions wrote one kit archive of the count
// and then each title and set, so every save hashed and wrote every set
// again. This format keeps the sets apart: a table, behind the kit's archive
// header, of each title with the length and digest of its packed set, then
// the packed sets (each set's fields, compressed). A save packs only the
// set that changed and hashes only the table; a reader checks each set's
// digest before it unpacks it.
constexpr quint32 kStoreMagic = 0x424D5353; // "BMSS"
constexpr quint16 kStoreFormat = 2;
// Integrity, not secrecy: the fastest digest Qt has, several times SHA-256's speed.
constexpr auto kSetDigest = QCryptographicHash::Blake2b_256;
constexpr int kSetDigestBytes = 32;
// Smallest table entry: an empty title (4 bytes), a length and a digest.
constexpr qint64 kMinimumTableEntryBytes = 4 + 4 + kSetDigestBytes;
// A spot's fields take at least this many bytes.
constexpr qint64 kMinimumSpotBytes = 40;
// No set comes near; a packed set claiming more is refused before it is unpacked.
constexpr quint32 kMaximumSetBytes = 64 * 1024 * 1024;

// A stored set with the bytes it is stored as: a slice of the stored value
// it was read from or written to, or bytes of its own while it waits to be
// written (a set read from the earlier format has none until then).
struct StoredSet
{
    Set::Ptr set;
    QByteArray packed;
    QByteArray digest;
};
using StoredSets = QMap<QString, StoredSet>;

// The sets and the stored value their bytes are slices of: one is only
// valid with the other.
struct StoreImage
{
    QByteArray blob;
    StoredSets sets;
};

// A packed set: its fields in archive order, the spots inline rather than
// as a nested archive (the set's digest already covers them, and checking a
// digest per set again costs more than reading it), compressed.
QByteArray encodedSet(const Set &set)
{
    QByteArray bytes;
    QDataStream stream(&bytes, QIODevice::WriteOnly);
    stream.setVersion(Archive::kStreamVersion);
    stream << set.name() << set.ssid() << set.date().toUTC() << quint32(set.spotsCount());
    for (const WifiTestResult::Ptr &spot : set.mutableSpots())
        (spot ? *spot : WifiTestResult()).encode(stream);
    return bytes;
}

Set::Ptr unpackedSet(const QByteArray &packed, QString *error)
{
    if (packed.size() < 4 || qFromBigEndian<quint32>(packed.constData()) > kMaximumSetBytes) {
        *error = QStringLiteral("implausible packed size");
        return nullptr;
    }
    const QByteArray bytes = qUncompress(packed);
    if (bytes.size() != qsizetype(qFromBigEndian<quint32>(packed.constData()))) {
        *error = QStringLiteral("cannot be unpacked");
        return nullptr;
    }
    QDataStream stream(bytes);
    stream.setVersion(Archive::kStreamVersion);
    QString name;
    QString ssid;
    QDateTime date;
    quint32 count = 0;
    stream >> name >> ssid >> date >> count;
    if (stream.status() != QDataStream::Ok || count > quint64(stream.device()->bytesAvailable() / kMinimumSpotBytes)) {
        *error = QStringLiteral("cannot be read");
        return nullptr;
    }
    WifiTestResult::List spots;
    spots.reserve(count);
    for (quint32 i = 0; i < count; ++i) {
        auto spot = std::make_shared<WifiTestResult>();
        if (!spot->decode(stream)) {
            *error = QStringLiteral("spot %1 cannot be read").arg(i + 1);
            return nullptr;
        }
        spots.append(std::move(spot));
    }
    if (!stream.atEnd()) {
        *error = QStringLiteral("has bytes after its last spot");
        return nullptr;
    }
    return Set::create(name, ssid, date, spots);
}

FZHistoricalResultSpotsSet::Ptr copyOf(const FZHistoricalResultSpotsSet &set)
{
    WifiTestResult::List spots;
    spots.reserve(set.spotsCount());
    for (const WifiTestResult::Ptr &spot : set.mutableSpots())
        spots.append(std::make_shared<WifiTestResult>(*spot));
    return FZHistoricalResultSpotsSet::create(set.name(), set.ssid(), set.date(), spots);
}

// A set given by a caller, packed; what is kept for reading is decoded from
// the very bytes written, not the caller's object, so sets stay values.
StoredSet packed(const Set &set, bool decodeBack = true)
{
    StoredSet stored;
    stored.packed = qCompress(encodedSet(set));
    stored.digest = QCryptographicHash::hash(stored.packed, kSetDigest);
    if (!decodeBack)
        return stored;
    QString error;
    stored.set = unpackedSet(stored.packed, &error);
    if (!stored.set) {
        logger().logFromModule(kModule, 3, "set '%@' does not read back as packed (%@); a copy is kept", set.name(), error);
        stored.set = copyOf(set);
    }
    return stored;
}

// The stored value of the sets. Sets still stored side by side in the value
// they were read from are copied in one run, so a save of one set among
// thousands copies a few large blocks, not a block per set. Each set's bytes
// become a slice of the new value.
QByteArray assembled(StoredSets &sets)
{
    const QByteArray table = Archive::write([&sets](QDataStream &stream) {
        stream << quint32(sets.size());
        for (auto it = sets.cbegin(); it != sets.cend(); ++it) {
            stream << it.key() << quint32(it->packed.size());
            stream.writeRawData(it->digest.constData(), kSetDigestBytes);
        }
    });
    qsizetype total = 0;
    for (const StoredSet &stored : std::as_const(sets))
        total += stored.packed.size();
    QByteArray blob;
    {
        QDataStream stream(&blob, QIODevice::WriteOnly);
        stream.setVersion(Archive::kStreamVersion);
        stream << kStoreMagic << kStoreFormat << table;
    }
    const qsizetype bodyOffset = blob.size();
    blob.reserve(bodyOffset + total);
    const char *run = nullptr;
    qsizetype runLength = 0;
    for (const StoredSet &stored : std::as_const(sets)) {
        if (run && stored.packed.constData() == run + runLength) {
            runLength += stored.packed.size();
            continue;
        }
        blob.append(run, runLength);
        run = stored.packed.constData();
        runLength = stored.packed.size();
    }
    blob.append(run, runLength);
    qsizetype offset = bodyOffset;
    for (StoredSet &stored : sets) {
        const qsizetype length = stored.packed.size();
        stored.packed = QByteArray::fromRawData(blob.constData() + offset, length);
        offset += length;
    }
    return blob;
}

// The earlier format: every set decoded, none packed yet.
std::optional<StoredSets> readEarlierFormat(const QByteArray &blob, QString *error)
{
    StoredSets sets;
    QString reason;
    const Archive::Error status = Archive::read(blob, [&sets, &reason](QDataStream &stream) {
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
            auto set = std::make_shared<Set>();
            if (stream.status() != QDataStream::Ok || !set->decode(stream)) {
                reason = QStringLiteral("set %1 of %2 cannot be read").arg(i + 1).arg(count);
                return false;
            }
            sets.insert(title, StoredSet{std::move(set), {}, {}});
        }
        return true;
    });
    if (status == Archive::Error::None)
        return sets;
    *error = reason.isEmpty() ? Archive::errorString(status) : Archive::errorString(status) + QStringLiteral(": ") + reason;
    return std::nullopt;
}

// The sets' bytes are slices of blob. Sets whose digest is among `known`
// are taken from there, not unpacked again.
std::optional<StoredSets> readStore(const QByteArray &blob, const StoredSets &known, QString *error)
{
    if (blob.size() >= 4 && qFromBigEndian<quint32>(blob.constData()) == Archive::kMagic)
        return readEarlierFormat(blob, error);
    QDataStream stream(blob);
    stream.setVersion(Archive::kStreamVersion);
    quint32 magic = 0;
    quint16 format = 0;
    QByteArray table;
    stream >> magic >> format;
    if (blob.isEmpty() || magic != kStoreMagic) {
        *error = Archive::errorString(blob.isEmpty() ? Archive::Error::Empty : Archive::Error::Foreign);
        return std::nullopt;
    }
    if (format > kStoreFormat) {
        *error = Archive::errorString(Archive::Error::FutureVersion);
        return std::nullopt;
    }
    stream >> table;
    if (stream.status() != QDataStream::Ok || format != kStoreFormat) {
        *error = Archive::errorString(Archive::Error::Truncated);
        return std::nullopt;
    }
    struct Entry
    {
        QString title;
        quint32 length = 0;
        QByteArray digest;
    };
    QList<Entry> entries;
    const Archive::Error status = Archive::read(table, [&entries](QDataStream &in) {
        quint32 count = 0;
        in >> count;
        if (in.status() != QDataStream::Ok || count > quint64(in.device()->bytesAvailable() / kMinimumTableEntryBytes))
            return false;
        entries.reserve(count);
        for (quint32 i = 0; i < count; ++i) {
            Entry entry;
            entry.digest.resize(kSetDigestBytes);
            in >> entry.title >> entry.length;
            if (in.readRawData(entry.digest.data(), kSetDigestBytes) != kSetDigestBytes || in.status() != QDataStream::Ok)
                return false;
            entries.append(std::move(entry));
        }
        return true;
    });
    if (status != Archive::Error::None) {
        *error = Archive::errorString(status) + QStringLiteral(": the table of sets");
        return std::nullopt;
    }
    qsizetype offset = qsizetype(stream.device()->pos());
    qint64 total = 0;
    for (const Entry &entry : entries)
        total += entry.length;
    if (total != blob.size() - offset) {
        *error = Archive::errorString(total > blob.size() - offset ? Archive::Error::Truncated : Archive::Error::Corrupt);
        return std::nullopt;
    }
    StoredSets sets;
    for (qsizetype i = 0; i < entries.size(); ++i) {
        const Entry &entry = entries.at(i);
        const QByteArray bytes = QByteArray::fromRawData(blob.constData() + offset, entry.length);
        offset += entry.length;
        const QString where = QStringLiteral("set %1 of %2").arg(i + 1).arg(entries.size());
        if (QCryptographicHash::hash(bytes, kSetDigest) != entry.digest || sets.contains(entry.title)) {
            *error = Archive::errorString(Archive::Error::Corrupt) + QStringLiteral(": ") + where;
            return std::nullopt;
        }
        const auto same = known.constFind(entry.title);
        if (same != known.cend() && same->digest == entry.digest) {
            sets.insert(entry.title, StoredSet{same->set, bytes, entry.digest});
            continue;
        }
        QString reason;
        Set::Ptr set = unpackedSet(bytes, &reason);
        if (!set) {
            *error = Archive::errorString(Archive::Error::Corrupt) + QStringLiteral(": ") + where + u' ' + reason;
            return std::nullopt;
        }
        sets.insert(entry.title, StoredSet{std::move(set), bytes, entry.digest});
    }
    return sets;
}

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
            sets.insert(it.key(), packed(*it.value(), false));
    }
    return assembled(sets);
}

std::optional<FZHistoricalResultSpotsSet::Dictionary> FZHistoricalResultSpotsSet::unarchiveDictionary(
    const QByteArray &blob, QString *error)
{
    QString reason;
    const std::optional<StoredSets> sets = readStore(blob, {}, &reason);
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
            stored = packed(*set, false);
            stored.set = set;
        }
    }
    const QByteArray blob = assembled(image.sets);
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
    std::optional<StoredSets> sets = readStore(*blob, known.sets, &error);
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
            image.sets.insert(it.key(), packed(*it.value()));
    }
    return writeStoredSets(std::move(image));
}

FZHistoricalResultSpotsSet::Dictionary FZHistoricalResultSpotsSet::allSpotsSetsDictionary()
{
    Dictionary copy;
    const StoreImage image = storedSets();
    for (auto it = image.sets.cbegin(); it != image.sets.cend(); ++it)
        copy.insert(copy.cend(), it.key(), copyOf(*it->set));
    return copy;
}

bool FZHistoricalResultSpotsSet::saveSpotSet(const Ptr &set)
{
    if (!set) {
        logger().logFromModule(kModule, 3, "an absent set cannot be saved");
        return false;
    }
    const StoredSet stored = packed(*set);
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
    return stored != image.sets.cend() ? copyOf(*stored->set) : nullptr;
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
                sets.insert(it.key(), packed(*it.value()));
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
