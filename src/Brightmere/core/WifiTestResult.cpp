#include "WifiTestResult.h"

#include <cmath>

#include <QIODevice>

WifiTestResult::WifiTestResult(double speedInMbps, double timeAfterTest)
    : m_speedInMbps(speedInMbps)
    , m_timeAfterTest(timeAfterTest)
{
}

WifiTestResult::Ptr WifiTestResult::create(double speedInMbps, double timeAfterTest)
{
    return std::make_shared<WifiTestResult>(speedInMbps, timeAfterTest);
}

bool WifiTestResult::hasSameValues(const WifiTestResult &other) const
{
    return m_label == other.m_label && m_speedInMbps == other.m_speedInMbps && m_ssid == other.m_ssid
        && m_bssid == other.m_bssid && m_duration == other.m_duration && m_average == other.m_average
        && m_timeAfterTest == other.m_timeAfterTest && m_coordinate == other.m_coordinate;
}

void WifiTestResult::encode(QDataStream &stream) const
{
    stream << kFieldVersion << m_label << m_speedInMbps << m_ssid << m_bssid << m_duration << m_average
           << m_timeAfterTest << m_coordinate.has_value();
    if (m_coordinate)
        stream << *m_coordinate;
}

bool WifiTestResult::decode(QDataStream &stream)
{
    quint16 version = 0;
    stream >> version;
    if (version == 0 || version > kFieldVersion)
        return false;
    WifiTestResult read;
    bool hasCoordinate = false;
    stream >> read.m_label >> read.m_speedInMbps >> read.m_ssid >> read.m_bssid >> read.m_duration
        >> read.m_average >> read.m_timeAfterTest >> hasCoordinate;
    if (hasCoordinate) {
        BMLocationCoordinate2D coordinate;
        stream >> coordinate;
        read.m_coordinate = coordinate;
    }
    if (stream.status() != QDataStream::Ok)
        return false;
    *this = read;
    return true;
}

QByteArray WifiTestResult::archiveList(const List &results)
{
    return Brightmere::Archive::write([&results](QDataStream &stream) {
        stream << quint32(results.size());
        for (const Ptr &result : results)
            (result ? *result : WifiTestResult()).encode(stream);
    });
}

std::optional<WifiTestResult::List> WifiTestResult::unarchiveList(const QByteArray &blob,
                                                                  Brightmere::Archive::Error *error)
{
    List results;
    const auto status = Brightmere::Archive::read(blob, [&results](QDataStream &stream) {
        quint32 count = 0;
        stream >> count;
        // Each result takes well over 40 bytes; a count beyond that is garbage.
        if (stream.status() != QDataStream::Ok || count > quint32(stream.device()->bytesAvailable() / 40 + 1))
            return false;
        results.reserve(count);
        for (quint32 i = 0; i < count; ++i) {
            auto result = std::make_shared<WifiTestResult>();
            if (!result->decode(stream))
                return false;
            results.append(std::move(result));
        }
        return true;
    });
    if (error)
        *error = status;
    if (status != Brightmere::Archive::Error::None)
        return std::nullopt;
    return results;
}

bool WifiTestResult::isPlausibleSpeed(double speedInMbps)
{
    return std::isfinite(speedInMbps) && speedInMbps >= 0.0 && speedInMbps <= kMaxPlausibleSpeedInMbps;
}

bool WifiTestResult::isPlausibleDuration(double seconds)
{
    return std::isfinite(seconds) && seconds >= 0.0 && seconds <= kMaxPlausibleDuration;
}
