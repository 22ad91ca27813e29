// Figures of the reports and backups: the CSV and the PDF of a set of 1,000
// spots, a backup of 1,000 stored sets of 30 spots, and its restore into an
// empty store and into the same store again (every set skipped). One JSON
// line per figure; times are medians of five runs in milliseconds.
#include <Brightmere/model/FZHistoricalResultSpotsSet.h>
#include <Brightmere/platform/foundation/UserDefaults.h>
#include <Brightmere/reports/FZReportPdfWriter.h>
#include <Brightmere/reports/FZSpotsSetCsvWriter.h>
#include <Brightmere/reports/FZSpotsSetsBackup.h>

#include <QElapsedTimer>
#include <QFileInfo>
#include <QGuiApplication>
#include <QRandomGenerator>
#include <QStandardPaths>
#include <QTemporaryDir>
#include <QTextStream>

#include <algorithm>
#include <functional>

using Set = FZHistoricalResultSpotsSet;

namespace {

Set::Ptr makeSet(int number, int spots, QRandomGenerator &random)
{
    WifiTestResult::List list;
    for (int i = 0; i < spots; ++i) {
        auto spot = WifiTestResult::create(5.0 + random.bounded(295.0), 700000000.0 + number * 100 + i);
        spot->setLabel(QStringLiteral("Room %1").arg(i + 1));
        spot->setSsid(QStringLiteral("HomeNet"));
        spot->setBssid(QStringLiteral("a4:2b:b0:5c:17:e2"));
        list.append(spot);
    }
    return Set::create(QStringLiteral("Run %1").arg(number), QStringLiteral("HomeNet"),
                       QDateTime::fromSecsSinceEpoch(1700000000 + number * 3600, Qt::UTC), list);
}

// The median of five runs; setup runs before each, untimed.
double medianMs(const std::function<void()> &setup, const std::function<void()> &work)
{
    QList<double> times;
    for (int i = 0; i < 5; ++i) {
        if (setup)
            setup();
        QElapsedTimer timer;
        timer.start();
        work();
        times.append(double(timer.nsecsElapsed()) / 1e6);
    }
    std::sort(times.begin(), times.end());
    return times.at(2);
}

void report(const QString &name, double ms, const QString &extra = QString())
{
    QTextStream(stdout) << QStringLiteral("{\"bench\":\"reports\",\"figure\":\"%1\",\"ms\":%2,\"target_ms\":1000%3}")
                               .arg(name)
                               .arg(ms, 0, 'f', 2)
                               .arg(extra)
                        << '\n';
}

} // namespace

int main(int argc, char *argv[])
{
    qputenv("QT_QPA_PLATFORM", "offscreen");
    QGuiApplication app(argc, argv);
    QStandardPaths::setTestModeEnabled(true);
    QTemporaryDir dir;
    Brightmere::UserDefaults::setStandardFilePath(dir.filePath(QStringLiteral("defaults.ini")));
    QRandomGenerator random(13);

    const Set::Ptr big = makeSet(1, 1000, random);
    qsizetype csvBytes = 0;
    const double csvMs = medianMs({}, [&] { csvBytes = FZSpotsSetCsvWriter::csvForSet(big).size(); });
    report(QStringLiteral("csv_1000_spots"), csvMs, QStringLiteral(",\"bytes\":%1").arg(csvBytes));
    FZReportPdfWriter writer(QLocale(QStringLiteral("en_GB")));
    const QString pdf = dir.filePath(QStringLiteral("big.pdf"));
    const double pdfMs = medianMs({}, [&] { writer.writeSetReport(big, pdf); });
    report(QStringLiteral("pdf_1000_spots"), pdfMs,
           QStringLiteral(",\"pages\":%1,\"bytes\":%2").arg(writer.lastLayout().pageCount).arg(QFileInfo(pdf).size()));

    Set::Dictionary sets;
    for (int n = 1; n <= 1000; ++n) {
        const Set::Ptr set = makeSet(n, 30, random);
        sets.insert(set->name(), set);
    }
    Set::saveAllSpotsSetDicitionary(sets);
    QByteArray backup;
    const double backupMs = medianMs({}, [&] { backup = FZSpotsSetsBackup::backupJsonOfStore(); });
    report(QStringLiteral("backup_1000_sets_of_30"), backupMs, QStringLiteral(",\"bytes\":%1").arg(backup.size()));
    report(QStringLiteral("restore_1000_sets_into_empty_store"),
           medianMs([] { Set::deleteAllSpotsSets(); }, [&] { FZSpotsSetsBackup::restoreBackupJson(backup); }));
    report(QStringLiteral("restore_1000_sets_all_already_stored"),
           medianMs({}, [&] { FZSpotsSetsBackup::restoreBackupJson(backup); }));
    return 0;
}
