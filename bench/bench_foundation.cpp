// Figures of the foundation's hot paths: archiving a run's spots, posting a
// notification, formatting a log line. One JSON line per figure.
#include <Brightmere/core/WifiTestResult.h>
#include <Brightmere/platform/foundation/NotificationCenter.h>
#include <Brightmere/platform/foundation/StringFormat.h>

#include <QCoreApplication>
#include <QElapsedTimer>
#include <QTextStream>

namespace {

template<typename F>
void measure(const char *name, int iterations, F &&work)
{
    QElapsedTimer timer;
    timer.start();
    for (int i = 0; i < iterations; ++i)
        work(i);
    const double micros = double(timer.nsecsElapsed()) / 1000.0 / iterations;
    QTextStream(stdout) << QStringLiteral(R"({"bench":"%1","iterations":%2,"us_per_op":%3})")
                               .arg(QLatin1String(name))
                               .arg(iterations)
                               .arg(micros, 0, 'f', 3)
                        << '\n';
}

} // namespace

int main(int argc, char *argv[])
{
    QCoreApplication app(argc, argv);

    WifiTestResult::List spots;
    for (int i = 0; i < 1000; ++i) {
        auto spot = WifiTestResult::create(10.0 + i % 90, 700000000.0 + i);
        spot->setLabel(QStringLiteral("Spot %1").arg(i));
        spot->setSsid(QStringLiteral("HomeNet"));
        spots.append(spot);
    }
    QByteArray blob;
    measure("archive_1000_spots", 50, [&](int) { blob = WifiTestResult::archiveList(spots); });
    measure("unarchive_1000_spots", 50, [&](int) { (void)WifiTestResult::unarchiveList(blob); });

    auto &center = Brightmere::NotificationCenter::defaultCenter();
    int observers[10];
    int delivered = 0;
    for (int &observer : observers)
        center.addObserver(&observer, QStringLiteral("bench"), [&delivered](const auto &) { ++delivered; });
    measure("post_to_10_observers", 100000, [&](int) { center.postNotificationName(QStringLiteral("bench")); });

    measure("format_log_line", 100000, [](int i) {
        (void)Brightmere::StringFormat::print(QStringLiteral("Added plot %lu for %@ at %.2f"), i,
                                              QStringLiteral("Kitchen"), 12.345);
    });
    return 0;
}
