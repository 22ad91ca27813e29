#pragma once

#include <Brightmere/SDKExport.h>

#include <QDataStream>

/// A latitude/longitude pair in degrees.
struct BRIGHTMERE_SDK_EXPORT BMLocationCoordinate2D
{
    /// Degrees north, from -90 to 90.
    double latitude = 0.0;
    /// Degrees east, from -180 to 180.
    double longitude = 0.0;

    /// Whether both figures are in range.
    bool isValid() const
    {
        return latitude >= -90.0 && latitude <= 90.0 && longitude >= -180.0 && longitude <= 180.0;
    }

    friend bool operator==(const BMLocationCoordinate2D &, const BMLocationCoordinate2D &) = default;
};

inline QDataStream &operator<<(QDataStream &stream, const BMLocationCoordinate2D &c)
{
    return stream << c.latitude << c.longitude;
}

inline QDataStream &operator>>(QDataStream &stream, BMLocationCoordinate2D &c)
{
    return stream >> c.latitude >> c.longitude;
}
