#include "FZSpotsSetsArchive.h"

#include <Brightmere/core/BMLogger.h>
#include <Brightmere/platform/foundation/Archive.h>

#include <QCryptographicHash>
#include <QIODevice>
#include <QtEndian>

using Brightmere::Archive;

namespace {

const QString kModule = QStringLiteral("FZHistoricalResultSpotsSet");

using Set = FZHistoricalResultSpotsSet;
using StoredSet = FZSpotsSetsArchive::StoredSet;
using StoredSets = FZSpotsSetsArchive::StoredSets;

// Smallest archived entry: the key, name and SSID (4 bytes each when empty),
// a date and the nested blob's length.
constexpr qint64 kMinimumEntryBytes = 16;

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

} // namespace

Set::Ptr FZSpotsSetsArchive::copyOf(const Set &set)
{
    WifiTestResult::List spots;
    spots.reserve(set.spotsCount());
    for (const WifiTestResult::Ptr &spot : set.mutableSpots())
        spots.append(std::make_shared<WifiTestResult>(*spot));
    return Set::create(set.name(), set.ssid(), set.date(), spots);
}

StoredSet FZSpotsSetsArchive::packed(const Set &set, bool decodeBack)
{
    StoredSet stored;
    stored.packed = qCompress(encodedSet(set));
    stored.digest = QCryptographicHash::hash(stored.packed, kSetDigest);
    if (!decodeBack)
        return stored;
    QString error;
    stored.set = unpackedSet(stored.packed, &error);
    if (!stored.set) {
        BMLogger::sharedInstance().logFromModule(kModule, 3, "set '%@' does not read back as packed (%@); a copy is kept", set.name(), error);
        stored.set = copyOf(set);
    }
    return stored;
}

QByteArray FZSpotsSetsArchive::assembled(StoredSets &sets)
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

std::optional<StoredSets> FZSpotsSetsArchive::read(const QByteArray &blob, const StoredSets &known, QString *error)
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
