#include "BMSimulatedWiFiTester.h"

#include "BMSDKBackend.h"
#include "BMSimulatedNetwork.h"
#include <Brightmere/platform/foundation/Clock.h>

BMSimulatedWiFiTester::BMSimulatedWiFiTester(QObject *parent)
    : BMWiFiTester(parent)
    , m_walk(BMSDKBackend::simulatedSeed())
{
}

BMSimulatedWiFiTester::~BMSimulatedWiFiTester()
{
    stopMeasuring();
}

std::optional<BMLocationCoordinate2D> BMSimulatedWiFiTester::location() const
{
    return m_walk.coordinate(BMWiFiTester::location().value_or(BMSimulatedWalk::kHome));
}

void BMSimulatedWiFiTester::startMeasuring()
{
    m_walk = BMSimulatedWalk(BMSDKBackend::simulatedSeed());
    m_trace = BMSDKBackend::simulatedTrace();
    m_traceIndex = 0;
    m_interval = BMSDKBackend::sampleInterval();
    m_timerId = clock().startRepeating(m_interval, [this] { tick(); });
}

void BMSimulatedWiFiTester::stopMeasuring()
{
    if (m_timerId != 0) {
        clock().stopRepeating(m_timerId);
        m_timerId = 0;
    }
}

void BMSimulatedWiFiTester::tick()
{
    if (!BMSimulatedNetwork::shared().isOnWifi()) {
        finishWithError(BMError(kErrorDomain, ErrorNoWiFi,
                                QStringLiteral("The device is not connected to a Wi-Fi network")));
        return;
    }
    if (!isSetupFinished()) {
        reportSetupFinished(std::nullopt);
        return;
    }
    m_walk.walk(m_interval);
    double speed = 0.0;
    if (m_trace.isEmpty()) {
        speed = m_walk.measureSpeedInMbps();
    } else {
        speed = m_trace.at(m_traceIndex);
        m_traceIndex = (m_traceIndex + 1) % m_trace.size();
    }
    reportResult(speed);
}
