#pragma once

#include "Clock.h"

#include <QHash>
#include <QMutex>

class QTimer;

namespace Brightmere {

// The wall clock; ticks are precise QTimers owned by the calling thread.
class SystemClock final : public Clock
{
public:
    SystemClock() = default;
    ~SystemClock() override;

    double now() const override;
    int startRepeating(double intervalSeconds, std::function<void()> tick) override;
    void stopRepeating(int id) override;

private:
    mutable QMutex m_mutex;
    QHash<int, QTimer *> m_timers;
    int m_lastId = 0;
};

} // namespace Brightmere
