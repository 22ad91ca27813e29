// The test screen at work, offscreen on a 375 x 667 window, driven by a
// manual clock: the cost of one result (the screen's handling plus a repaint
// of the window) early and late in a long test, of one feedback-sound tick,
// and of saving one spot with 10, 200 and 1,000 spots listed, with the
// ratio of the last to the first. One JSON line
// per figure; times are medians, in milliseconds unless the unit says otherwise.
#include "BenchScreenEnvironment.h"
#include <Brightmere/core/BMSDKBackend.h>
#include <Brightmere/platform/views/NavigationController.h>
#include <Brightmere/session/BMWifiScanVC.h>

#include <QApplication>
#include <QElapsedTimer>
#include <QImage>
#include <QPainter>
#include <QTextStream>

#include <algorithm>
#include <cmath>
#include <functional>
#include <memory>
#include <vector>

namespace {

constexpr int kRepeats = 41;

double medianMs(const std::function<void()> &work, int repeats = kRepeats)
{
    QList<double> times;
    for (int i = 0; i < repeats; ++i) {
        QElapsedTimer timer;
        timer.start();
        work();
        times << double(timer.nsecsElapsed()) / 1e6;
    }
    std::sort(times.begin(), times.end());
    return times.at(times.size() / 2);
}

void print(const QString &figure, double value, const QString &unit)
{
    QTextStream(stdout) << QStringLiteral("{\"bench\":\"session\",\"figure\":\"%1\",\"value\":%2,\"unit\":\"%3\"}\n")
                               .arg(figure)
                               .arg(value, 0, 'f', 4)
                               .arg(unit);
}

} // namespace

int main(int argc, char *argv[])
{
    qputenv("QT_QPA_PLATFORM", "offscreen");
    QApplication app(argc, argv);
    BenchScreenEnvironment environment;
    Brightmere::ManualClock &clock = environment.clock;

    BMSDKBackend::setSampleInterval(0.5);

    auto *screen = new BMWifiScanVC;
    Brightmere::NavigationController navigation(screen);
    navigation.resize(375, 667);
    navigation.show();
    QImage frame(navigation.size(), QImage::Format_ARGB32_Premultiplied);
    const auto repaint = [&] {
        QPainter painter(&frame);
        navigation.render(&painter);
    };

    screen->actStartStop();
    clock.advance(0.5);
    qint64 index = 0;
    const auto oneResult = [&] {
        screen->wiFiTesterDidUpdateWithTestResult(
            screen->session()->wifiTester(), WifiTestResult::create(32.0 + 20.0 * std::sin(double(++index) / 9.0)));
        repaint();
    };
    print(QStringLiteral("result_and_repaint_early_ms"), medianMs(oneResult), QStringLiteral("ms"));
    while (index < 5000)
        screen->wiFiTesterDidUpdateWithTestResult(screen->session()->wifiTester(), WifiTestResult::create(20.0 + index++ % 7));
    print(QStringLiteral("result_and_repaint_after_5000_ms"), medianMs(oneResult), QStringLiteral("ms"));

    screen->actSoundOnOff();
    // A tick is far below a millisecond: timed a thousand at a time.
    const double thousandTicks = medianMs([&] {
        for (int i = 0; i < 1000; ++i)
            screen->playSound();
    });
    print(QStringLiteral("sound_tick_us"), thousandTicks, QStringLiteral("us"));

    // Saving a spot with 10, 200 and 1,000 listed: one screen for each, the
    // run's spots made beforehand, then a spot saved on each screen in turn,
    // so that load from other programs weighs on all three alike. A spot is a
    // hold over one result, then the release that saves it and the repaint
    // that shows its row; only the release and the repaint are timed. Between
    // a person's actions the event loop runs: posted events and the chart's
    // deleted items do not pile up as they would here without it.
    struct Listed
    {
        int spots;
        BMWifiScanVC *screen;
        std::unique_ptr<Brightmere::NavigationController> navigation;
        QList<double> times;
    };
    std::vector<Listed> listed;
    for (const int spots : {10, 200, 1000}) {
        auto *other = new BMWifiScanVC;
        listed.push_back({spots, other, std::make_unique<Brightmere::NavigationController>(other), {}});
        listed.back().navigation->resize(375, 667);
        listed.back().navigation->show();
        other->actStartStop();
    }
    clock.advance(0.5);
    double speed = 0.0;
    const auto holdOne = [&](BMWifiScanVC *on) {
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
        QCoreApplication::processEvents();
        on->actRecordResetTouchDown();
        on->wiFiTesterDidUpdateWithTestResult(on->session()->wifiTester(),
                                              WifiTestResult::create(20.0 + std::fmod(speed += 7.0, 40.0)));
    };
    const auto saveOne = [&](Listed &on) {
        on.screen->actRecordResetTouchUp(true);
        QPainter painter(&frame);
        on.navigation->render(&painter);
    };
    for (Listed &on : listed) {
        while (on.screen->session()->recordedSpeeds().size() < on.spots - 1) {
            holdOne(on.screen);
            on.screen->actRecordResetTouchUp(true);
        }
    }
    for (int round = 0; round < 31; ++round) {
        for (Listed &on : listed) {
            holdOne(on.screen);
            on.times << medianMs([&] { saveOne(on); }, 1);
        }
    }
    QList<double> medians;
    for (Listed &on : listed) {
        std::sort(on.times.begin(), on.times.end());
        medians << on.times.at(on.times.size() / 2);
        print(QStringLiteral("spot_saved_with_%1_listed_ms").arg(on.spots), medians.last(), QStringLiteral("ms"));
    }
    print(QStringLiteral("spot_saved_1000_to_10_ratio"), medians.last() / medians.first(), QStringLiteral("x"));
    listed.clear();

    return 0;
}
