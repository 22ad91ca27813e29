#pragma once

#include <Brightmere/core/WifiTestResult.h>

#include <optional>

namespace Brightmere {
class Clock;
}

// The accumulator of one recording at one spot: every speed sample fed while
// the user records, their mean, whether there was more than one, and how long
// the recording has lasted. It holds nothing else; the test screen copies
// these figures into the spot result it keeps. Identity only: not copied.
class BMSpeedRecord
{
public:
    // clock = nullptr reads the core library's clock (BMSDKBackend::clock())
    // at each call; a test passes its own (the caller keeps it alive).
    explicit BMSpeedRecord(Brightmere::Clock *clock = nullptr);
    BMSpeedRecord(const BMSpeedRecord &) = delete;
    BMSpeedRecord &operator=(const BMSpeedRecord &) = delete;

    // Samples since the last start(), in order of arrival; empty std::optional
    // until start() is first called.
    const std::optional<WifiTestResult::List> &results() const { return m_results; }
    // Seconds since the reference date at the last start(); 0 before.
    double startTimeInterval() const { return m_startTimeInterval; }

    // Restarts the record from empty at the current time.
    void start();
    // Appends a sample; before start() there is no list and it is dropped.
    void addResult(const WifiTestResult::Ptr &result);
    // Stopping needs nothing: duration() keeps counting from the start.
    void finish();

    bool isMultiResult() const;
    // The arithmetic mean of every sample's speed in Mbps; 0.0 without samples.
    double average() const;
    // Seconds since start(), read anew at each call.
    double duration() const;

private:
    Brightmere::Clock &clock() const;

    Brightmere::Clock *m_clock = nullptr;
    std::optional<WifiTestResult::List> m_results;
    double m_startTimeInterval = 0.0;
};
