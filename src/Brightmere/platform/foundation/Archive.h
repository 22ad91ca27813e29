#pragma once

#include <Brightmere/FoundationExport.h>

#include <QByteArray>
#include <QDataStream>
#include <QString>

#include <functional>
#include <optional>

namespace Brightmere {

/// Keyed archiving on this platform: a value written with QDataStream behind a
/// fixed header (magic, archive format version, body length and a digest of
/// the body). Reading checks the header before a single byte of the body is
/// parsed, so a truncated, foreign or garbled blob is refused with an error
/// and never yields a partial object.
class BRIGHTMERE_FOUNDATION_EXPORT Archive
{
public:
    static constexpr quint32 kMagic = 0x424D4152; ///< "BMAR"
    /// Version of the header and body layout this build writes.
    static constexpr quint16 kFormatVersion = 1;
    /// The QDataStream version bodies are written and read with.
    static constexpr QDataStream::Version kStreamVersion = QDataStream::Qt_6_0;

    /// Why a blob was refused.
    enum class Error {
        None, ///< the blob was read
        Empty,         ///< no bytes at all
        Foreign,       ///< not an archive of ours (wrong magic)
        FutureVersion, ///< written by a newer format than this build reads
        Truncated,     ///< shorter than its header says
        Corrupt,       ///< digest mismatch, trailing bytes, or a body that does not parse
    };

    /// Writes the body.
    using Writer = std::function<void(QDataStream &)>;
    /// Reads the body; returns false when the content makes no sense.
    using Reader = std::function<bool(QDataStream &)>;

    /// An archive of what body writes.
    static QByteArray write(const Writer &body);
    /// Checks the header, then reads the body with body; Error::None when both succeeded.
    static Error read(const QByteArray &blob, const Reader &body);

    template<typename T>
    /// An archive of one value that QDataStream can write.
    static QByteArray archive(const T &value)
    {
        return write([&value](QDataStream &stream) { stream << value; });
    }

    template<typename T>
    /// The value archived in blob; std::nullopt, with the reason in *error, when refused.
    static std::optional<T> unarchive(const QByteArray &blob, Error *error = nullptr)
    {
        T value{};
        const Error result = read(blob, [&value](QDataStream &stream) {
            stream >> value;
            return true;
        });
        if (error)
            *error = result;
        if (result != Error::None)
            return std::nullopt;
        return value;
    }

    /// The reason as text, for log lines.
    static QString errorString(Error error);
};

} // namespace Brightmere
