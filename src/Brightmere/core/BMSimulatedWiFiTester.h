#pragma once

#include "BMSimulatedWalk.h"
#include "BMWiFiTester.h"

#include <QList>

// The tester of the simulated backend. One sample interval after start it
// finishes setup, then measures once per interval: the next figure of the
// recorded trace when one is set (replayed in a loop, as recorded), else the
// speed where the walker of the walk model now is. Each test replays the walk
// from the seed, so the same seed gives the same speeds. Without Wi-Fi on the
// simulated network at a tick, the test finishes with ErrorNoWiFi.
class BMSimulatedWiFiTester : public BMWiFiTester
{
    Q_OBJECT

public:
    explicit BMSimulatedWiFiTester(QObject *parent = nullptr);
    ~BMSimulatedWiFiTester() override;

    // The walker's position (also before and after a test), around the
    // location given at initialisation, if any, else around a fixed home.
    std::optional<BMLocationCoordinate2D> location() const override;

protected:
    void startMeasuring() override;
    void stopMeasuring() override;

private:
    void tick();

    BMSimulatedWalk m_walk;
    QList<double> m_trace;
    qsizetype m_traceIndex = 0;
    double m_interval = 0.0;
    int m_timerId = 0;
};
