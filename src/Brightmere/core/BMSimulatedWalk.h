#pragma once

#include "BMLocationCoordinate2D.h"
#include "BMSeededRandom.h"

#include <QString>

// A person walking through a home with a phone while the Wi-Fi router sits in
// the living room: the simulated backend's source of speeds and locations.
//
// The home is a fixed plan of seven rooms (metres, x east, y north, the
// router at (2, 2)); each room lies behind a number of walls as seen from the
// router. The walker follows a loop from room to room through the doors at
// walking pace, lingering a few seconds in each room. The speed at a point
// attenuates a 300 Mbps maximum by distance and walls (a log-distance path
// loss mapped to a throughput curve) with a little noise. Everything random
// comes from one seeded source, so the same seed gives the same walk.
class BMSimulatedWalk
{
public:
    static constexpr double kMaxSpeedInMbps = 300.0;
    // Metres per second; each stretch of the walk varies it by up to 15 %.
    static constexpr double kWalkingPace = 1.4;
    static constexpr double kFastestPace = kWalkingPace * 1.15;
    static constexpr double kRouterX = 2.0;
    static constexpr double kRouterY = 2.0;
    // Where the router is when no location is given.
    static const BMLocationCoordinate2D kHome;

    explicit BMSimulatedWalk(quint32 seed);

    // Walks on for the given time.
    void walk(double seconds);
    // The speed a measurement taken here now would show, noise included;
    // never negative. Each call draws fresh noise.
    double measureSpeedInMbps();

    double x() const { return m_x; }
    double y() const { return m_y; }
    double distanceToRouter() const;
    int wallsToRouter() const;
    QString roomName() const;
    // The walker's position as latitude/longitude, the router being at home.
    BMLocationCoordinate2D coordinate(const BMLocationCoordinate2D &home = kHome) const;

    // The noiseless speed at a distance from the router behind some walls.
    static double expectedSpeedInMbps(double distanceInMetres, int walls);

private:
    void beginStretch();

    BMSeededRandom m_random;
    double m_x = 0.0;
    double m_y = 0.0;
    int m_target = 1;
    double m_pace = kWalkingPace;
    double m_pauseLeft = 0.0;
};
