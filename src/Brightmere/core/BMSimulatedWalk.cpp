#include "BMSimulatedWalk.h"

#include <QtMath>

#include <algorithm>
#include <array>
#include <cmath>

namespace {

struct Room
{
    const char *name;
    double left, bottom, right, top;
    int walls;
};

// The first room that holds a point wins, so doorways on a shared edge
// belong to the room listed first.
constexpr std::array<Room, 7> kRooms{{
    {"Living Room", 0, 0, 8, 4, 0},
    {"Kitchen", 8, 0, 14, 4, 1},
    {"Hallway", 0, 4, 14, 6, 1},
    {"Bedroom 2", 0, 6, 5, 10, 2},
    {"Bathroom", 5, 6, 8, 10, 2},
    {"Bedroom 1", 8, 6, 14, 10, 2},
    {"Study", 14, 6, 18, 10, 3},
}};

struct Waypoint
{
    double x, y;
    bool linger;
};

// One round of the home through its doors, back to the start.
constexpr std::array<Waypoint, 25> kRoute{{
    {3, 2, true},   {6, 2, true},    {8, 2, false},   {11, 2, true},  {11, 4, false},
    {11, 5, false}, {11, 6, false},  {11, 8, true},   {14, 8, false}, {16, 8, true},
    {14, 8, false}, {11, 8, false},  {11, 6, false},  {11, 5, false}, {6.5, 5, false},
    {6.5, 6, false}, {6.5, 8, true}, {6.5, 6, false}, {6.5, 5, false}, {2.5, 5, false},
    {2.5, 6, false}, {2.5, 8, true}, {2.5, 6, false}, {2.5, 5, false}, {2.5, 4, false},
}};

constexpr double kShortestLinger = 2.0;
constexpr double kLongestLinger = 6.0;

// Signal model: -30 dBm at one metre, path-loss exponent 3.5 (indoors), 4 dB
// per wall; the throughput curve is half the maximum at -60 dBm.
constexpr double kSignalAtOneMetre = -30.0;
constexpr double kPathLossExponent = 3.5;
constexpr double kWallLoss = 4.0;
constexpr double kHalfSpeedSignal = -60.0;
constexpr double kCurveWidth = 5.0;
constexpr double kSignalNoise = 1.0;
constexpr double kSpeedNoise = 0.02;

constexpr double kMetresPerDegree = 111320.0;

const Room *roomAt(double x, double y)
{
    for (const Room &room : kRooms) {
        if (x >= room.left && x <= room.right && y >= room.bottom && y <= room.top)
            return &room;
    }
    return nullptr;
}

double signalAt(double distance, int walls)
{
    return kSignalAtOneMetre - 10.0 * kPathLossExponent * std::log10(std::max(distance, 1.0)) - kWallLoss * walls;
}

double speedForSignal(double signal)
{
    return BMSimulatedWalk::kMaxSpeedInMbps / (1.0 + std::exp((kHalfSpeedSignal - signal) / kCurveWidth));
}

} // namespace

const BMLocationCoordinate2D BMSimulatedWalk::kHome{46.9480, 7.4474};

BMSimulatedWalk::BMSimulatedWalk(quint32 seed)
    : m_random(seed)
    , m_x(kRoute[0].x)
    , m_y(kRoute[0].y)
{
    beginStretch();
}

void BMSimulatedWalk::beginStretch()
{
    m_pace = kWalkingPace * m_random.nextUniform(0.85, 1.15);
}

void BMSimulatedWalk::walk(double seconds)
{
    double remaining = std::max(0.0, seconds);
    while (remaining > 0.0) {
        if (m_pauseLeft > 0.0) {
            const double used = std::min(remaining, m_pauseLeft);
            m_pauseLeft -= used;
            remaining -= used;
            continue;
        }
        const Waypoint &target = kRoute[size_t(m_target)];
        const double dx = target.x - m_x;
        const double dy = target.y - m_y;
        const double distance = std::hypot(dx, dy);
        const double reach = m_pace * remaining;
        if (reach < distance) {
            m_x += dx * reach / distance;
            m_y += dy * reach / distance;
            return;
        }
        m_x = target.x;
        m_y = target.y;
        remaining -= distance / m_pace;
        if (target.linger)
            m_pauseLeft = m_random.nextUniform(kShortestLinger, kLongestLinger);
        m_target = (m_target + 1) % int(kRoute.size());
        beginStretch();
    }
}

double BMSimulatedWalk::measureSpeedInMbps()
{
    const double signal = signalAt(distanceToRouter(), wallsToRouter()) + m_random.nextNormal(0.0, kSignalNoise);
    const double speed = speedForSignal(signal) * (1.0 + m_random.nextNormal(0.0, kSpeedNoise));
    return std::max(0.0, speed);
}

double BMSimulatedWalk::distanceToRouter() const
{
    return std::hypot(m_x - kRouterX, m_y - kRouterY);
}

int BMSimulatedWalk::wallsToRouter() const
{
    const Room *room = roomAt(m_x, m_y);
    return room ? room->walls : 0;
}

QString BMSimulatedWalk::roomName() const
{
    const Room *room = roomAt(m_x, m_y);
    return room ? QString::fromLatin1(room->name) : QString();
}

BMLocationCoordinate2D BMSimulatedWalk::coordinate(const BMLocationCoordinate2D &home) const
{
    const double metresPerLongitudeDegree =
        kMetresPerDegree * std::max(0.01, std::cos(qDegreesToRadians(home.latitude)));
    BMLocationCoordinate2D c;
    c.latitude = std::clamp(home.latitude + (m_y - kRouterY) / kMetresPerDegree, -90.0, 90.0);
    c.longitude = std::clamp(home.longitude + (m_x - kRouterX) / metresPerLongitudeDegree, -180.0, 180.0);
    return c;
}

double BMSimulatedWalk::expectedSpeedInMbps(double distanceInMetres, int walls)
{
    return speedForSignal(signalAt(distanceInMetres, std::max(0, walls)));
}
