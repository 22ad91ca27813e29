// A one-hour test on the simulated backend, as fast as the machine goes: the
// test screen in a 375 x 667 window offscreen, a result every 0.1 s of a
// manual clock (36,000 results), the chart drawing each one and the feedback
// sound on, its 0.01 s timer ticking ten times per result as the real timer
// would. After each result the event loop gets its turn (posted events,
// repaints of what changed); every 10th result the whole window is also drawn
// into an image, as a display refreshing it would. Printed, one JSON line per
// figure: resident memory at the start and the end and its growth, the CPU
// cost per result over the first and the last 1,000 results and their ratio,
// each with its target and whether it is met.
#include "BenchScreenEnvironment.h"
#include <Brightmere/core/BMSDKBackend.h>
#include <Brightmere/platform/views/KeyWindow.h>
#include <Brightmere/platform/views/NavigationController.h>
#include <Brightmere/platform/views/SystemSound.h>
#include <Brightmere/session/BMWifiScanVC.h>

#include <QApplication>
#include <QElapsedTimer>
#include <QFile>
#include <QImage>
#include <QPainter>
#include <QTextStream>

#include <ctime>

namespace {

constexpr double kInterval = 0.1;
constexpr int kResults = 36000;
constexpr int kWindow = 1000;
constexpr int kFullRepaintEvery = 10;
constexpr int kMemoryProfileEvery = 6000;
constexpr double kGrowthTargetMb = 50.0;
constexpr double kRatioTarget = 1.5;

// Resident memory from /proc/self/status, in MB; -1 where unavailable.
double residentMb()
{
    QFile status(QStringLiteral("/proc/self/status"));
    if (!status.open(QIODevice::ReadOnly))
        return -1.0;
    for (const QByteArray &line : status.readAll().split('\n')) {
        if (line.startsWith("VmRSS:"))
            return line.mid(6).trimmed().split(' ').constFirst().toDouble() / 1024.0;
    }
    return -1.0;
}

// CPU time of the whole process: other programs sharing the machine weigh
// far less on it than on wall time.
double cpuMs()
{
    timespec now{};
    clock_gettime(CLOCK_PROCESS_CPUTIME_ID, &now);
    return double(now.tv_sec) * 1e3 + double(now.tv_nsec) / 1e6;
}

void print(const QString &line)
{
    QTextStream(stdout) << line << '\n';
}

QString verdict(bool met)
{
    return met ? QStringLiteral("true") : QStringLiteral("false");
}

QString number(double value, int decimals = 4)
{
    return QString::number(value, 'f', decimals);
}

} // namespace

int main(int argc, char *argv[])
{
    qputenv("QT_QPA_PLATFORM", "offscreen");
    QApplication app(argc, argv);
    BenchScreenEnvironment environment;
    Brightmere::ManualClock &clock = environment.clock;

    BMSDKBackend::setSampleInterval(kInterval);

    auto *screen = new BMWifiScanVC;
    Brightmere::NavigationController navigation(screen);
    navigation.resize(375, 667);
    Brightmere::KeyWindow::makeKeyWindow(&navigation);
    navigation.show();
    QCoreApplication::processEvents();
    QImage frame(navigation.size(), QImage::Format_ARGB32_Premultiplied);
    const auto fullRepaint = [&] {
        QPainter painter(&frame);
        navigation.render(&painter);
    };

    screen->actSoundOnOff();
    screen->actStartStop();
    clock.advance(kInterval); // the tester's setup
    QCoreApplication::processEvents();
    fullRepaint(); // one-time costs of drawing out of the figures
    const int soundsBefore = Brightmere::SystemSound::playCount();
    const double rssStart = residentMb();

    // CPU and wall time of every block of kWindow results.
    QList<double> blockCpu;
    QList<double> blockWall;
    QStringList profile{number(rssStart, 1)};
    double blockStartCpu = cpuMs();
    QElapsedTimer wall;
    wall.start();
    QElapsedTimer total;
    total.start();
    for (int i = 0; i < kResults; ++i) {
        clock.advance(kInterval);
        QCoreApplication::processEvents();
        if ((i + 1) % kFullRepaintEvery == 0)
            fullRepaint();
        if ((i + 1) % kWindow == 0) {
            const double now = cpuMs();
            blockCpu << (now - blockStartCpu) / kWindow;
            blockWall << double(wall.nsecsElapsed()) / 1e6 / kWindow;
            blockStartCpu = now;
            wall.start();
        }
        if ((i + 1) % kMemoryProfileEvery == 0)
            profile << number(residentMb(), 1);
    }
    const double earlyCpu = blockCpu.constFirst();
    const double lateCpu = blockCpu.constLast();
    QStringList costProfile;
    for (qsizetype block = 0; block < blockCpu.size(); block += kMemoryProfileEvery / kWindow)
        costProfile << number(blockCpu.at(block), 3);
    costProfile << number(lateCpu, 3);
    const double seconds = double(total.elapsed()) / 1e3;
    const double rssEnd = residentMb();
    const double growth = rssEnd - rssStart;
    const double ratio = earlyCpu > 0.0 ? lateCpu / earlyCpu : 0.0;
    const qsizetype results = screen->session()->testedSpeeds().size();
    const int sounds = Brightmere::SystemSound::playCount() - soundsBefore;

    print(QStringLiteral(R"({"bench":"hour_test","figure":"run","results":%1,"results_on_screen":%2,"clicks":%3,"scanning":%4,"seconds":%5})")
              .arg(kResults)
              .arg(results)
              .arg(sounds)
              .arg(verdict(screen->session()->isScanning()))
              .arg(number(seconds, 1)));
    print(QStringLiteral(R"({"bench":"hour_test","figure":"rss_start_mb","value":%1,"unit":"MB"})").arg(number(rssStart, 1)));
    print(QStringLiteral(R"({"bench":"hour_test","figure":"rss_end_mb","value":%1,"unit":"MB"})").arg(number(rssEnd, 1)));
    print(QStringLiteral(R"({"bench":"hour_test","figure":"rss_every_10_min_mb","values":[%1],"unit":"MB"})")
              .arg(profile.join(',')));
    print(QStringLiteral(R"({"bench":"hour_test","figure":"rss_growth_mb","value":%1,"unit":"MB","target_under_mb":%2,"met":%3})")
              .arg(number(growth, 1))
              .arg(number(kGrowthTargetMb, 0))
              .arg(verdict(rssStart > 0.0 && growth < kGrowthTargetMb)));
    print(QStringLiteral(R"({"bench":"hour_test","figure":"cpu_per_result_first_1000_ms","value":%1,"wall_ms":%2,"unit":"ms"})")
              .arg(number(earlyCpu))
              .arg(number(blockWall.constFirst())));
    print(QStringLiteral(R"({"bench":"hour_test","figure":"cpu_per_result_last_1000_ms","value":%1,"wall_ms":%2,"unit":"ms"})")
              .arg(number(lateCpu))
              .arg(number(blockWall.constLast())));
    print(QStringLiteral(R"({"bench":"hour_test","figure":"cpu_per_result_every_10_min_ms","values":[%1],"unit":"ms"})")
              .arg(costProfile.join(',')));
    print(QStringLiteral(R"({"bench":"hour_test","figure":"last_over_first","value":%1,"target_at_most":%2,"met":%3})")
              .arg(number(ratio, 3))
              .arg(number(kRatioTarget, 1))
              .arg(verdict(earlyCpu > 0.0 && ratio <= kRatioTarget)));

    return 0;
}
