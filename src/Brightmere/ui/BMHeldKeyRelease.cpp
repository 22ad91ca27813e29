#include "BMHeldKeyRelease.h"

#include <Brightmere/core/BMSDKBackend.h>
#include <Brightmere/platform/foundation/Clock.h>

BMHeldKeyRelease::BMHeldKeyRelease(std::function<void()> released)
    : m_released(std::move(released))
{
}

void BMHeldKeyRelease::releaseSeen()
{
    if (m_pending != 0)
        return;
    m_clock = &BMSDKBackend::clock();
    const std::weak_ptr<bool> alive = m_alive;
    m_pending = m_clock->startOnce(kRepeatGapSeconds, [this, alive] {
        if (alive.expired())
            return;
        m_pending = 0;
        if (m_released)
            m_released();
    });
}

bool BMHeldKeyRelease::pressSeen()
{
    if (m_pending == 0)
        return false;
    cancel();
    return true;
}

bool BMHeldKeyRelease::settleNow()
{
    if (m_pending == 0)
        return false;
    cancel();
    if (m_released)
        m_released();
    return true;
}

void BMHeldKeyRelease::cancel()
{
    m_clock->stopRepeating(m_pending);
    m_pending = 0;
}
