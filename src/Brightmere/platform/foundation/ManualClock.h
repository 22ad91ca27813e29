#pragma once

#include "Clock.h"

#include <QtGlobal>

#include <map>

namespace Brightmere {

// A clock that moves only when told to. advance() fires every tick that falls
// due on the way, in time order, with now() set to each tick's due time.
class ManualClock final : public Clock
{
public:
    explicit ManualClock(double start = 0.0);

    double now() const override;
    int startRepeating(double intervalSeconds, std::function<void()> tick) override;
    void stopRepeating(int id) override;

    void advance(double seconds);
    void setNow(double seconds);
    int activeTimerCount() const;

private:
    struct Timer
    {
        double interval = 0.0;
        double start = 0.0;
        quint64 ticks = 1; // due = start + ticks * interval, so no error accumulates
        double due() const { return start + double(ticks) * interval; }
        std::function<void()> tick;
    };

    double m_now;
    int m_lastId = 0;
    std::map<int, Timer> m_timers;
};

} // namespace Brightmere
