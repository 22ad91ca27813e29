#include "Clock.h"

#include "SystemClock.h"

#include <memory>

namespace Brightmere {

int Clock::startOnce(double delaySeconds, std::function<void()> task)
{
    auto id = std::make_shared<int>(0);
    *id = startRepeating(delaySeconds, [this, id, task = std::move(task)] {
        stopRepeating(*id);
        task();
    });
    return *id;
}

Clock &Clock::system()
{
    static SystemClock clock;
    return clock;
}

} // namespace Brightmere
