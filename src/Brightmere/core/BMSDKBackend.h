#pragma once

#include <QList>
#include <QUrl>

#include <optional>

namespace Brightmere {
class Clock;
}

/// Which world the core library measures: the simulated one (the default: a
/// home network, a walk through the home, switchable reachability) or the
/// system's (real reachability, the real Wi-Fi network and real HTTP download
/// throughput). The host chooses before it creates a tester; tests inject a
/// clock, a rate and a trace so that runs are fast and repeatable.
class BMSDKBackend
{
public:
    enum class Kind { Simulated, System };

    static Kind kind();
    static void setKind(Kind kind);
    /// Which tester the factory makes: the world's kind unless set. A host
    /// trying a real download on a machine that is not on Wi-Fi (a wired
    /// desktop, loopback) keeps the simulated network and sets System here.
    static Kind testerKind();
    static void setTesterKind(std::optional<Kind> kind);

    /// The time source of testers and of everything that paces by time; the
    /// system clock unless one was set (the caller keeps it alive).
    static Brightmere::Clock &clock();
    static void setClock(Brightmere::Clock *clock);

    /// Seconds between two results of a tester.
    static double sampleInterval();
    static void setSampleInterval(double seconds);

    /// Simulated speeds in Mbps, replayed in a loop; empty = the walk model.
    static QList<double> simulatedTrace();
    static void setSimulatedTrace(const QList<double> &speedsInMbps);
    /// Seed of the walk model: the same seed gives the same walk.
    static quint32 simulatedSeed();
    static void setSimulatedSeed(quint32 seed);

    /// What the system tester downloads to measure throughput.
    static QUrl systemDownloadUrl();
    static void setSystemDownloadUrl(const QUrl &url);

    /// Every setting back to its default.
    static void reset();
};
