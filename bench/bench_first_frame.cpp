// How long a host waits between creating the test screen and seeing it: a
// fresh BMWifiScanVC inside a NavigationController on a 375 x 667 window,
// offscreen, timed from the constructor to the end of the event-loop pass in
// which the screen received its first paint (the whole window is drawn by
// then). The first run of the process pays the one-time costs (fonts, images,
// texts) and is printed on its own as well. One JSON line per figure.
//
// bench_first_frame [PNG]: also saves the first run's window as a picture.
#include "BenchScreenEnvironment.h"
#include <Brightmere/core/BMSDKBackend.h>
#include <Brightmere/platform/views/KeyWindow.h>
#include <Brightmere/platform/views/NavigationController.h>
#include <Brightmere/session/BMWifiScanVC.h>

#include <QApplication>
#include <QElapsedTimer>
#include <QEvent>
#include <QPixmap>
#include <QTextStream>

#include <algorithm>

namespace {

constexpr int kRuns = 20;
constexpr double kTargetMs = 150.0;
constexpr qint64 kGiveUpMs = 10000;

// Notes the first paint of the screen or of any view on it. The screen
// itself may never be painted: the window skips what opaque children cover.
class FirstPaintWatcher : public QObject
{
public:
    explicit FirstPaintWatcher(QWidget *screen)
        : m_screen(screen)
    {
    }
    bool painted = false;

protected:
    bool eventFilter(QObject *watched, QEvent *event) override
    {
        if (event->type() == QEvent::Paint && watched->isWidgetType()) {
            auto *widget = static_cast<QWidget *>(watched);
            if (widget == m_screen || m_screen->isAncestorOf(widget))
                painted = true;
        }
        return QObject::eventFilter(watched, event);
    }

private:
    QWidget *m_screen;
};

void print(const QString &line)
{
    QTextStream(stdout) << line << '\n';
}

QString verdict(bool met)
{
    return met ? QStringLiteral("true") : QStringLiteral("false");
}

} // namespace

int main(int argc, char *argv[])
{
    qputenv("QT_QPA_PLATFORM", "offscreen");
    QApplication app(argc, argv);
    BenchScreenEnvironment environment;
    const QString picture = argc > 1 ? QString::fromLocal8Bit(argv[1]) : QString();


    QList<double> times;
    for (int run = 0; run < kRuns; ++run) {
        QElapsedTimer timer;
        timer.start();
        auto *screen = new BMWifiScanVC;
        FirstPaintWatcher watcher(screen);
        app.installEventFilter(&watcher);
        auto *navigation = new Brightmere::NavigationController(screen);
        navigation->resize(375, 667);
        Brightmere::KeyWindow::makeKeyWindow(navigation);
        navigation->show();
        while (!watcher.painted && timer.elapsed() < kGiveUpMs)
            QCoreApplication::processEvents();
        const double ms = double(timer.nsecsElapsed()) / 1e6;
        if (!watcher.painted) {
            print(QStringLiteral(R"({"bench":"first_frame","error":"the screen was not painted within %1 ms"})")
                      .arg(kGiveUpMs));
            return 1;
        }
        times << ms;
        if (run == 0 && !picture.isEmpty())
            navigation->grab().save(picture);
        app.removeEventFilter(&watcher);
        delete navigation;
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    }

    const double cold = times.constFirst();
    std::sort(times.begin(), times.end());
    const double median = times.at(times.size() / 2);
    const double worst = times.constLast();
    print(QStringLiteral(R"({"bench":"first_frame","figure":"first_run_ms","value":%1,"unit":"ms"})")
              .arg(cold, 0, 'f', 2));
    print(QStringLiteral(R"({"bench":"first_frame","figure":"median_ms","runs":%1,"value":%2,"unit":"ms"})")
              .arg(kRuns)
              .arg(median, 0, 'f', 2));
    print(QStringLiteral(R"({"bench":"first_frame","figure":"max_ms","runs":%1,"value":%2,"unit":"ms","target_under_ms":%3,"met":%4})")
              .arg(kRuns)
              .arg(worst, 0, 'f', 2)
              .arg(kTargetMs, 0, 'f', 0)
              .arg(verdict(worst < kTargetMs)));

    return 0;
}
