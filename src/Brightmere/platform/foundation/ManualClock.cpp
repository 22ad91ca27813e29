#include "ManualClock.h"

#include <algorithm>
#include <cmath>
#include <limits>

namespace Brightmere {

ManualClock::ManualClock(double start)
    : m_now(start)
{
}

double ManualClock::now() const
{
    return m_now;
}

int ManualClock::startRepeating(double intervalSeconds, std::function<void()> tick)
{
    // A zero interval would never let time pass; treat it as the smallest step.
    const double interval = std::max(intervalSeconds, 1e-6);
    const int id = ++m_lastId;
    m_timers[id] = Timer{interval, m_now, 1, std::move(tick)};
    return id;
}

void ManualClock::stopRepeating(int id)
{
    m_timers.erase(id);
}

void ManualClock::advance(double seconds)
{
    const double target = m_now + std::max(0.0, seconds);
    for (;;) {
        int nextId = 0;
        double nextDue = std::numeric_limits<double>::infinity();
        for (const auto &[id, timer] : m_timers) {
            if (timer.due() < nextDue) {
                nextDue = timer.due();
                nextId = id;
            }
        }
        // Times near today's date (~7e8 s) carry rounding far above 1e-9 s.
        if (nextId == 0 || nextDue > target + 1e-9 + std::abs(target) * 1e-12)
            break;
        m_now = std::max(m_now, nextDue);
        auto it = m_timers.find(nextId);
        ++it->second.ticks;
        // The tick may start or stop timers, this one included.
        auto tick = it->second.tick;
        tick();
    }
    m_now = target;
}

void ManualClock::setNow(double seconds)
{
    m_now = seconds;
}

int ManualClock::activeTimerCount() const
{
    return int(m_timers.size());
}

} // namespace Brightmere
