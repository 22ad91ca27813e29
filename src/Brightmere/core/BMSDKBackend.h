#pragma once

#include <Brightmere/SDKExport.h>

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
class BRIGHTMERE_SDK_EXPORT BMSDKBackend
{
public:
    /// The two worlds the core library can measure.
    enum class Kind { Simulated, System };

    /// The world the core library measures now; Simulated by default.
    static Kind kind();
    /// Chooses the world; takes effect for testers created afterwards.
    static void setKind(Kind kind);
    /// Which tester the factory makes: the world's kind unless set. A host
    /// trying a real download on a machine that is not on Wi-Fi (a wired
    /// desktop, loopback) keeps the simulated network and sets System here.
    static Kind testerKind();
    /// Sets the tester's kind apart from the world's; std::nullopt follows the world again.
    static void setTesterKind(std::optional<Kind> kind);

    /// The time source of testers and of everything that paces by time; the
    /// system clock unless one was set (the caller keeps it alive).
    static Brightmere::Clock &clock();
    /// Sets the time source; null restores the system clock.
    static void setClock(Brightmere::Clock *clock);

    /// Seconds between two results of a tester.
    static double sampleInterval();
    /// Sets the seconds between two results.
    static void setSampleInterval(double seconds);

    /// Simulated speeds in Mbps, replayed in a loop; empty = the walk model.
    static QList<double> simulatedTrace();
    /// Sets the simulated speeds to replay; an empty list goes back to the walk model.
    static void setSimulatedTrace(const QList<double> &speedsInMbps);
    /// Seed of the walk model: the same seed gives the same walk.
    static quint32 simulatedSeed();
    /// Sets the seed of the walk model.
    static void setSimulatedSeed(quint32 seed);

    /// What the system tester downloads to measure throughput.
    static QUrl systemDownloadUrl();
    /// Sets what the system tester downloads.
    static void setSystemDownloadUrl(const QUrl &url);

    /// Every setting back to its default.
    static void reset();
};
