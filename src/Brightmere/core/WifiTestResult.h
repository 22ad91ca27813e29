#pragma once

#include <Brightmere/SDKExport.h>

#include "BMLocationCoordinate2D.h"
#include <Brightmere/platform/foundation/Archive.h>

#include <QList>
#include <QMetaType>
#include <QString>

#include <memory>
#include <optional>

/// One measurement of the Wi-Fi tester. A spot of a run or of a saved set is
/// one such object, so it is shared by pointer: the list of tested results and
/// the list of spots hold the very same object.
class BRIGHTMERE_SDK_EXPORT WifiTestResult
{
public:
    /// A result as shared between the tested list and the spots.
    using Ptr = std::shared_ptr<WifiTestResult>;
    /// A list of shared results.
    using List = QList<Ptr>;

    /// What a Wi-Fi measurement can be: a speed or an averaging time that is
    /// not finite, negative or beyond these is no measurement (a restored
    /// file may hold anything), and nothing drawn depends on more.
    static constexpr double kMaxPlausibleSpeedInMbps = 100000.0;
    /// Longest plausible averaging time, in seconds.
    static constexpr double kMaxPlausibleDuration = 1000000.0;
    /// Whether speedInMbps is a finite speed from 0 to kMaxPlausibleSpeedInMbps.
    static bool isPlausibleSpeed(double speedInMbps);
    /// Whether seconds is a finite duration from 0 to kMaxPlausibleDuration.
    static bool isPlausibleDuration(double seconds);

    WifiTestResult() = default;
    /// A single (not averaged) measurement of speedInMbps taken at timeAfterTest.
    explicit WifiTestResult(double speedInMbps, double timeAfterTest = 0.0);
    /// A shared result of speedInMbps taken at timeAfterTest.
    static Ptr create(double speedInMbps, double timeAfterTest = 0.0);

    /// The spot's name ("Kitchen"); empty for a plain measurement.
    QString label() const { return m_label; }
    /// Names the spot.
    void setLabel(const QString &label) { m_label = label; }
    /// The measured download speed in Mbps.
    double speedInMbps() const { return m_speedInMbps; }
    /// Sets the measured speed in Mbps.
    void setSpeedInMbps(double speed) { m_speedInMbps = speed; }
    /// The name of the network it was measured on.
    QString ssid() const { return m_ssid; }
    /// Sets the network's name.
    void setSsid(const QString &ssid) { m_ssid = ssid; }
    /// The access point's BSSID it was measured on.
    QString bssid() const { return m_bssid; }
    /// Sets the access point's BSSID.
    void setBssid(const QString &bssid) { m_bssid = bssid; }
    /// Seconds over which an averaged spot was measured.
    double duration() const { return m_duration; }
    /// Sets the seconds over which the spot was averaged.
    void setDuration(double seconds) { m_duration = seconds; }
    /// Whether the result is the average of a spot rather than one measurement.
    bool isAverage() const { return m_average; }
    /// Marks the result as a spot's average or not.
    void setAverage(bool average) { m_average = average; }
    /// When the measurement was taken, in seconds since the reference date.
    double timeAfterTest() const { return m_timeAfterTest; }
    /// Sets when the measurement was taken.
    void setTimeAfterTest(double seconds) { m_timeAfterTest = seconds; }
    /// Where the measurement was taken, when known.
    std::optional<BMLocationCoordinate2D> coordinate() const { return m_coordinate; }
    /// Sets where the measurement was taken.
    void setCoordinate(const std::optional<BMLocationCoordinate2D> &coordinate) { m_coordinate = coordinate; }

    /// Field-by-field equality (not identity).
    bool hasSameValues(const WifiTestResult &other) const;

    /// The archived form of one result inside a larger archive body. decode
    /// returns false on an unknown field version or a broken stream.
    void encode(QDataStream &stream) const;
    /// Reads one result written by encode().
    bool decode(QDataStream &stream);

    /// A whole list as one archive blob (the form saved sets keep their spots in).
    static QByteArray archiveList(const List &results);
    /// Reads a blob written by archiveList(); std::nullopt, with the reason in *error, when it is not one.
    static std::optional<List> unarchiveList(const QByteArray &blob,
                                             Brightmere::Archive::Error *error = nullptr);

    /// Version of the fields encode() writes.
    static constexpr quint16 kFieldVersion = 1;

private:
    QString m_label;
    double m_speedInMbps = 0.0;
    QString m_ssid;
    QString m_bssid;
    double m_duration = 0.0;
    bool m_average = false;
    double m_timeAfterTest = 0.0;
    std::optional<BMLocationCoordinate2D> m_coordinate;
};

Q_DECLARE_METATYPE(WifiTestResult::Ptr)
