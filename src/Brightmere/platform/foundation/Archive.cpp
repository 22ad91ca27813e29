#include "Archive.h"

#include <QCryptographicHash>
#include <QIODevice>

namespace Brightmere {

namespace {

constexpr auto kDigest = QCryptographicHash::Sha256;
constexpr int kDigestLength = 32;
// magic, format version, body length, digest
constexpr qsizetype kHeaderLength = 4 + 2 + 4 + kDigestLength;

} // namespace

QByteArray Archive::write(const Writer &body)
{
    QByteArray payload;
    {
        QDataStream stream(&payload, QIODevice::WriteOnly);
        stream.setVersion(kStreamVersion);
        body(stream);
    }
    QByteArray blob;
    blob.reserve(kHeaderLength + payload.size());
    QDataStream header(&blob, QIODevice::WriteOnly);
    header.setVersion(kStreamVersion);
    header << kMagic << kFormatVersion << quint32(payload.size());
    header.writeRawData(QCryptographicHash::hash(payload, kDigest).constData(), kDigestLength);
    header.writeRawData(payload.constData(), int(payload.size()));
    return blob;
}

Archive::Error Archive::read(const QByteArray &blob, const Reader &body)
{
    if (blob.isEmpty())
        return Error::Empty;
    if (blob.size() < 4)
        return Error::Foreign;
    QDataStream header(blob);
    header.setVersion(kStreamVersion);
    quint32 magic = 0;
    header >> magic;
    if (magic != kMagic)
        return Error::Foreign;
    if (blob.size() < kHeaderLength)
        return Error::Truncated;
    quint16 version = 0;
    quint32 length = 0;
    header >> version >> length;
    if (version > kFormatVersion)
        return Error::FutureVersion;
    if (version == 0)
        return Error::Corrupt;
    const QByteArray digest = blob.mid(10, kDigestLength);
    const qsizetype available = blob.size() - kHeaderLength;
    if (available < qsizetype(length))
        return Error::Truncated;
    if (available > qsizetype(length))
        return Error::Corrupt;
    const QByteArray payload = blob.mid(kHeaderLength);
    if (QCryptographicHash::hash(payload, kDigest) != digest)
        return Error::Corrupt;

    QDataStream stream(payload);
    stream.setVersion(kStreamVersion);
    if (!body(stream) || stream.status() != QDataStream::Ok || !stream.atEnd())
        return Error::Corrupt;
    return Error::None;
}

QString Archive::errorString(Error error)
{
    switch (error) {
    case Error::None:
        return QStringLiteral("no error");
    case Error::Empty:
        return QStringLiteral("empty archive");
    case Error::Foreign:
        return QStringLiteral("not an archive of this kit");
    case Error::FutureVersion:
        return QStringLiteral("archive written by a newer format");
    case Error::Truncated:
        return QStringLiteral("truncated archive");
    case Error::Corrupt:
        return QStringLiteral("corrupt archive");
    }
    return QStringLiteral("unknown archive error");
}

} // namespace Brightmere
