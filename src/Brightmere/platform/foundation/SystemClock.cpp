#include "SystemClock.h"

#include <QTimer>

#include <chrono>
#include <cmath>

namespace Brightmere {

SystemClock::~SystemClock()
{
    // Timers belong to the threads that started them; at process exit those
    // may be gone, so the remaining timers are left to their threads.
    m_timers.clear();
}

double SystemClock::now() const
{
    using namespace std::chrono;
    const auto sinceEpoch = duration_cast<microseconds>(system_clock::now().time_since_epoch());
    return double(sinceEpoch.count()) / 1e6 - kReferenceDateUnixSeconds;
}

int SystemClock::startRepeating(double intervalSeconds, std::function<void()> tick)
{
    auto *timer = new QTimer;
    timer->setTimerType(Qt::PreciseTimer);
    timer->setInterval(std::max(0, int(std::lround(intervalSeconds * 1000.0))));
    QObject::connect(timer, &QTimer::timeout, timer, std::move(tick));
    int id;
    {
        QMutexLocker lock(&m_mutex);
        id = ++m_lastId;
        m_timers.insert(id, timer);
    }
    timer->start();
    return id;
}

void SystemClock::stopRepeating(int id)
{
    QTimer *timer = nullptr;
    {
        QMutexLocker lock(&m_mutex);
        timer = m_timers.take(id);
    }
    if (timer) {
        timer->stop();
        // The tick that stops its own timer is still running inside it.
        timer->deleteLater();
    }
}

} // namespace Brightmere
