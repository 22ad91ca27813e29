#pragma once

#include <Brightmere/FoundationExport.h>

#include <functional>

namespace Brightmere {

// The time source of everything that measures or paces: the platform's
// "seconds since the reference date" and repeating ticks. Code that reads the
// time takes a Clock so tests can drive it with a ManualClock instead of
// sleeping.
class BRIGHTMERE_FOUNDATION_EXPORT Clock
{
public:
    // 1 January 2001, 00:00:00 UTC, in seconds since the Unix epoch.
    static constexpr double kReferenceDateUnixSeconds = 978307200.0;

    virtual ~Clock() = default;

    // Seconds since the reference date.
    virtual double now() const = 0;

    // Calls tick every intervalSeconds until stopRepeating(id); returns the id
    // (never 0). Ticks arrive on the thread that started them.
    virtual int startRepeating(double intervalSeconds, std::function<void()> tick) = 0;
    virtual void stopRepeating(int id) = 0;

    // Calls task once after delaySeconds, through the same tick machinery.
    int startOnce(double delaySeconds, std::function<void()> task);

    // The wall clock shared by the process.
    static Clock &system();
};

} // namespace Brightmere
