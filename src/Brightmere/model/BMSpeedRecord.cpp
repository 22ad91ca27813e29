#include "BMSpeedRecord.h"

#include <Brightmere/core/BMLogger.h>
#include <Brightmere/core/BMSDKBackend.h>
#include <Brightmere/platform/foundation/Clock.h>

namespace {
const QString kModule = QStringLiteral("BMSpeedRecord");
}

BMSpeedRecord::BMSpeedRecord(Brightmere::Clock *clock)
    : m_clock(clock)
{
}

Brightmere::Clock &BMSpeedRecord::clock() const
{
    return m_clock ? *m_clock : BMSDKBackend::clock();
}

void BMSpeedRecord::start()
{
    m_startTimeInterval = clock().now();
    m_results = WifiTestResult::List();
}

void BMSpeedRecord::addResult(const WifiTestResult::Ptr &result)
{
    if (!result) {
        BMLogger::sharedInstance().logFromModule(kModule, 2, "an absent sample was not added");
        return;
    }
    if (!m_results) {
        BMLogger::sharedInstance().logFromModule(kModule, 1, "a sample of %@ Mbps arrived before start and was dropped",
                                                 result->speedInMbps());
        return;
    }
    m_results->append(result);
}

void BMSpeedRecord::finish()
{
}

bool BMSpeedRecord::isMultiResult() const
{
    return m_results && m_results->size() > 1;
}

double BMSpeedRecord::average() const
{
    if (!m_results || m_results->isEmpty())
        return 0.0;
    double sum = 0.0;
    for (const WifiTestResult::Ptr &result : *m_results)
        sum += result->speedInMbps();
    return sum / double(m_results->size());
}

double BMSpeedRecord::duration() const
{
    return clock().now() - m_startTimeInterval;
}
