// How long the next save of the saved sets waits when it finds the store's
// lock as a killed writer leaves it: no lock (for comparison), an empty lock
// file left long ago or just now, one naming a process that is gone, and an
// empty "<lock>.rmlock" beside such a lock. Each save runs in a fresh process
// (the next start of the program) on the thread that would be the UI thread;
// tst_SpotsStoreCrashSafety shows that each save completes. One JSON line per
// case; times are medians in milliseconds.
#include <Brightmere/model/FZHistoricalResultSpotsSet.h>
#include <Brightmere/platform/foundation/UserDefaults.h>

#include <QCoreApplication>
#include <QDateTime>
#include <QElapsedTimer>
#include <QFile>
#include <QFileInfo>
#include <QLockFile>
#include <QLoggingCategory>
#include <QTemporaryDir>
#include <QTextStream>

#include <algorithm>

#include <sys/wait.h>
#include <unistd.h>

using Brightmere::UserDefaults;
using Set = FZHistoricalResultSpotsSet;

namespace {

Set::Ptr makeRun(int number)
{
    WifiTestResult::List spots;
    for (int i = 0; i < 30; ++i) {
        auto spot = WifiTestResult::create(10.0 + (number + i) % 90, 700000000.0 + number * 100 + i);
        spot->setLabel(QStringLiteral("Room %1").arg(i));
        spots.append(spot);
    }
    return Set::create(QStringLiteral("Run %1").arg(number), QStringLiteral("HomeNet"),
                       QDateTime::fromSecsSinceEpoch(1700000000 + number, Qt::UTC), spots);
}

// The milliseconds a fresh process's save took, or -1 when it failed.
double saveInFreshProcess(const QString &file)
{
    int pipeEnds[2];
    if (::pipe(pipeEnds) != 0)
        return -1;
    const pid_t pid = ::fork();
    if (pid == 0) {
        ::close(pipeEnds[0]);
        UserDefaults::setStandardFilePath(file);
        QElapsedTimer timer;
        timer.start();
        const double ms = Set::saveSpotSet(makeRun(99)) ? double(timer.nsecsElapsed()) / 1e6 : -1.0;
        ::_exit(::write(pipeEnds[1], &ms, sizeof ms) == sizeof ms ? 0 : 1);
    }
    ::close(pipeEnds[1]);
    double ms = -1;
    if (::read(pipeEnds[0], &ms, sizeof ms) != sizeof ms)
        ms = -1;
    ::close(pipeEnds[0]);
    int status = 0;
    ::waitpid(pid, &status, 0);
    return ms;
}

} // namespace

int main(int argc, char *argv[])
{
    QCoreApplication app(argc, argv);
    QLoggingCategory::setFilterRules(QStringLiteral("brightmere.*=false"));
    struct Case
    {
        const char *name;
        bool deadOwner;
        int emptyAgeMs; // -1: no empty file
        const char *emptyFile;
    };
    const Case cases[] = {{"no_lock", false, -1, ""},
                          {"empty_lock_left_long_ago", false, 10000, ".lock"},
                          {"empty_lock_left_just_now", false, 0, ".lock"},
                          {"lock_of_a_gone_process", true, -1, ""},
                          {"empty_rmlock_beside_a_gone_process_lock", true, 5000, ".lock.rmlock"}};
    constexpr int kRuns = 5;
    for (const Case &c : cases) {
        QList<double> times;
        for (int run = 0; run < kRuns; ++run) {
            QTemporaryDir dir;
            const QString file = dir.filePath(QStringLiteral("defaults.ini"));
            UserDefaults::setStandardFilePath(file);
            Set::Dictionary store;
            for (int n = 0; n < 12; ++n)
                store.insert(QStringLiteral("Run %1").arg(n), makeRun(n));
            Set::saveAllSpotsSetDicitionary(store);
            UserDefaults::setStandardFilePath(dir.filePath(QStringLiteral("elsewhere.ini")));
            if (c.deadOwner) {
                const pid_t owner = ::fork();
                if (owner == 0) {
                    QLockFile held(file + QStringLiteral(".lock"));
                    ::_exit(held.tryLock() ? 0 : 1); // exits holding it
                }
                int status = 0;
                ::waitpid(owner, &status, 0);
            }
            if (c.emptyAgeMs >= 0) {
                QFile empty(file + QLatin1String(c.emptyFile));
                empty.open(QIODevice::WriteOnly);
                empty.setFileTime(QDateTime::currentDateTime().addMSecs(-c.emptyAgeMs), QFileDevice::FileModificationTime);
            }
            times.append(saveInFreshProcess(file));
        }
        std::sort(times.begin(), times.end());
        QTextStream(stdout) << QStringLiteral(R"({"bench":"save_past_left_lock","case":"%1","runs":%2,"ms_median":%3,"ms_max":%4,"all_saved":%5})")
                                   .arg(QLatin1String(c.name))
                                   .arg(kRuns)
                                   .arg(times.at(kRuns / 2), 0, 'f', 1)
                                   .arg(times.last(), 0, 'f', 1)
                                   .arg(times.first() >= 0 ? "true" : "false")
                            << '\n';
    }
    return 0;
}
