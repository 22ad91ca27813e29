#pragma once

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
class WifiTestResult
{
public:
    using Ptr = std::shared_ptr<WifiTestResult>;
    using List = QList<Ptr>;

    /// What a Wi-Fi measurement can be: a speed or an averaging time that is
    /// not finite, negative or beyond these is no measurement (a restored
    /// file may hold anything), and nothing drawn depends on more.
    static constexpr double kMaxPlausibleSpeedInMbps = 100000.0;
    static constexpr double kMaxPlausibleDuration = 1000000.0;
    static bool isPlausibleSpeed(double speedInMbps);
    static bool isPlausibleDuration(double seconds);

    WifiTestResult() = default;
    explicit WifiTestResult(double speedInMbps, double timeAfterTest = 0.0);
    static Ptr create(double speedInMbps, double timeAfterTest = 0.0);

    QString label() const { return m_label; }
    void setLabel(const QString &label) { m_label = label; }
    double speedInMbps() const { return m_speedInMbps; }
    void setSpeedInMbps(double speed) { m_speedInMbps = speed; }
    QString ssid() const { return m_ssid; }
    void setSsid(const QString &ssid) { m_ssid = ssid; }
    QString bssid() const { return m_bssid; }
    void setBssid(const QString &bssid) { m_bssid = bssid; }
    /// Seconds over which an averaged spot was measured.
    double duration() const { return m_duration; }
    void setDuration(double seconds) { m_duration = seconds; }
    bool isAverage() const { return m_average; }
    void setAverage(bool average) { m_average = average; }
    /// When the measurement was taken, in seconds since the reference date.
    double timeAfterTest() const { return m_timeAfterTest; }
    void setTimeAfterTest(double seconds) { m_timeAfterTest = seconds; }
    std::optional<BMLocationCoordinate2D> coordinate() const { return m_coordinate; }
    void setCoordinate(const std::optional<BMLocationCoordinate2D> &coordinate) { m_coordinate = coordinate; }

    /// Field-by-field equality (not identity).
    bool hasSameValues(const WifiTestResult &other) const;

    /// The archived form of one result inside a larger archive body. decode
    /// returns false on an unknown field version or a broken stream.
    void encode(QDataStream &stream) const;
    bool decode(QDataStream &stream);

    /// A whole list as one archive blob (the form saved sets keep their spots in).
    static QByteArray archiveList(const List &results);
    static std::optional<List> unarchiveList(const QByteArray &blob,
                                             Brightmere::Archive::Error *error = nullptr);

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
