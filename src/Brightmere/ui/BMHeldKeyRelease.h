#pragma once

#include <functional>
#include <memory>

namespace Brightmere {
class Clock;
}

// The release of a key held down as a finger is (Space on Record or on a
// spot's speed), held back a moment: some window systems send a held key's
// repeats as plain release and press pairs, not marked as repeats, so a
// release counts only once no press has followed it within
// kRepeatGapSeconds on the backend's clock.
class BMHeldKeyRelease
{
public:
    // How long after the key is let go a press still counts as its repeat.
    static constexpr double kRepeatGapSeconds = 0.05;

    // released runs when a release counts.
    explicit BMHeldKeyRelease(std::function<void()> released);

    bool isPending() const { return m_pending != 0; }
    // A release seen: it counts after the gap unless a press comes first.
    // Nothing when one is already waiting.
    void releaseSeen();
    // A press seen: true when it was the repeat of a waiting release, which
    // is dropped (the hold goes on).
    bool pressSeen();
    // A waiting release counts at once (the focus is leaving); false when
    // none was waiting.
    bool settleNow();

private:
    void cancel();

    std::function<void()> m_released;
    Brightmere::Clock *m_clock = nullptr;
    int m_pending = 0;
    // The clock's task outlives its owner when the widget goes first.
    std::shared_ptr<bool> m_alive = std::make_shared<bool>(true);
};
