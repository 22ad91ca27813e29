// A process that saves spots sets in a loop is killed (SIGKILL) at random
// moments, hundreds of times; after every kill a reader that never saw the
// file before loads the store and must find exactly the state of the last
// save reported complete, or of the save under way: never an unreadable
// store, never a set lost or half written. And a lock left exactly as a
// killed writer leaves it never stops the next save of a fresh process.
#include <Brightmere/model/FZHistoricalResultSpotsSet.h>

#include "LogCapture.h"
#include <Brightmere/platform/foundation/Archive.h>
#include <Brightmere/platform/foundation/UserDefaults.h>

#include <QDir>
#include <QElapsedTimer>
#include <QLockFile>
#include <QRandomGenerator>
#include <QSettings>
#include <QStandardPaths>
#include <QTemporaryDir>
#include <QtTest>

#include <algorithm>
#include <chrono>
#include <csignal>
#include <thread>

#include <sys/wait.h>
#include <unistd.h>

using Brightmere::UserDefaults;
using Set = FZHistoricalResultSpotsSet;

namespace {

constexpr int kSlots = 12;
// Enough for the store to live in a file of its own beside the INI.
constexpr int kSpotsPerSet = 30;
constexpr qint64 kFirstDate = 1700000000;
// Runs the writer may save before it is killed; it is always killed long before.
constexpr int kRunsPerWriter = 100000;
// The timing saves end with the store after run kTimingRuns - 1.
constexpr int kTimingRuns = kSlots + 9;

// Run n is saved under the title of slot n % kSlots, so a save replaces a set
// and the store keeps its size; its date says which run it is.
Set::Ptr run(int n)
{
    WifiTestResult::List spots;
    for (int i = 0; i < kSpotsPerSet; ++i) {
        auto spot = WifiTestResult::create(10.0 + (n * 7 + i) % 90, 700000000.0 + n * 100 + i);
        spot->setLabel(QStringLiteral("Room %1").arg((n + i) % 40));
        spot->setSsid(QStringLiteral("HomeNet"));
        spot->setBssid(QStringLiteral("a4:2b:b0:5c:17:e2"));
        spot->setDuration(1.5);
        spots.append(spot);
    }
    return Set::create(QStringLiteral("Slot %1").arg(n % kSlots), QStringLiteral("HomeNet"),
                       QDateTime::fromSecsSinceEpoch(kFirstDate + n, Qt::UTC), spots);
}

// The store once runs 0 to n have been saved in order.
Set::Dictionary storeAfter(int n)
{
    Set::Dictionary store;
    for (int m = std::max(0, n - kSlots + 1); m <= n; ++m)
        store.insert(QStringLiteral("Slot %1").arg(m % kSlots), run(m));
    return store;
}

// The store as earlier versions wrote it: one archive of every set, inline
// in the INI file.
void writeEarlierLayout(const QString &file, const Set::Dictionary &store)
{
    QDir(UserDefaults::valuesFolderPath(file)).removeRecursively();
    QFile::remove(file);
    QSettings earlier(file, QSettings::IniFormat);
    earlier.setValue(QString::fromLatin1(Set::kSetsDictionaryKey), Brightmere::Archive::write([&store](QDataStream &stream) {
        stream << quint32(store.size());
        for (auto it = store.cbegin(); it != store.cend(); ++it) {
            stream << it.key();
            it.value()->encode(stream);
        }
    }));
    earlier.setValue(QString::fromLatin1(Set::kLastDataVersionKey), Set::currentDataVersion());
}

QStringList valueFiles(const QString &file)
{
    return QDir(UserDefaults::valuesFolderPath(file)).entryList(QDir::Files | QDir::Hidden);
}

int latestRun(const Set::Dictionary &store)
{
    qint64 latest = -1;
    for (const Set::Ptr &set : store)
        latest = std::max(latest, set->date().toSecsSinceEpoch() - kFirstDate);
    return int(latest);
}

// A lock file as the next start of the program finds it after a kill: the
// same bytes, a few seconds old (how old a lock is tells QLockFile and the
// kit whether its owner may still be taking it).
bool carryLock(const QString &from, const QString &to)
{
    QFile copy(to);
    return QFile::copy(from, to) && copy.open(QIODevice::ReadWrite)
        && copy.setFileTime(QFileInfo(from).lastModified().addSecs(-5), QFileDevice::FileModificationTime);
}

// Runs work in a forked child; its exit status, or -1 when it did not exit.
int inChild(const std::function<int()> &work)
{
    const pid_t pid = ::fork();
    if (pid == 0)
        ::_exit(work());
    int status = 0;
    return pid > 0 && ::waitpid(pid, &status, 0) == pid && WIFEXITED(status) ? WEXITSTATUS(status) : -1;
}

// The names of the process's threads but the calling one.
QStringList otherThreads()
{
    QStringList names;
    const QString self = QString::number(::gettid());
    for (const QString &task : QDir(QStringLiteral("/proc/self/task")).entryList(QDir::Dirs | QDir::NoDotAndDotDot)) {
        QFile comm(QStringLiteral("/proc/self/task/%1/comm").arg(task));
        if (task != self)
            names.append(comm.open(QIODevice::ReadOnly) ? QString::fromUtf8(comm.readAll().trimmed()) : task);
    }
    return names;
}

} // namespace

class tst_SpotsStoreCrashSafety : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void killedWriterLeavesOldOrNewStore_data();
    void killedWriterLeavesOldOrNewStore();
    void lockLeftByAKilledWriterHoldsNoSave_data();
    void lockLeftByAKilledWriterHoldsNoSave();
    void cleanupTestCase();

private:
    QString roundFile(int round) const { return m_dir.filePath(QStringLiteral("round%1.ini").arg(round)); }

    // A kill, not a power cut: what the next reader finds does not depend on
    // the disk's flushes, so the files live in memory where there is room
    // (the flushes would take most of the test's time on a busy disk).
    QTemporaryDir m_dir{(QFileInfo(QStringLiteral("/dev/shm")).isWritable() ? QStringLiteral("/dev/shm") : QDir::tempPath())
                        + QStringLiteral("/tst_SpotsStoreCrashSafety-XXXXXX")};
    QRandomGenerator m_random{20251123};
    double m_saveMicroseconds = 0;
    int m_round = 0;
    int m_latest = kSlots - 1;
    int m_kills = 0;
    int m_oldState = 0;
    int m_newState = 0;
};

void tst_SpotsStoreCrashSafety::initTestCase()
{
    QStandardPaths::setTestModeEnabled(true);
    QVERIFY(m_dir.isValid());
    // fork() copies only the calling thread, so no other thread may hold a
    // lock the writer needs. Qt Test's watchdog only waits for the end of the
    // test function; anything else (a network thread, a pool) would be a risk.
    const QStringList others = otherThreads();
    QVERIFY2(others.isEmpty() || others == QStringList{QStringLiteral("QtTest Watchdog")}, qPrintable(others.join(u',')));

    // How long one save takes here (the median of a few, after a first one
    // that warms the caches), so the kills fall inside saves. It only aims
    // the kills: nothing is asserted on it.
    UserDefaults::setStandardFilePath(m_dir.filePath(QStringLiteral("timing.ini")));
    QVERIFY(Set::saveAllSpotsSetDicitionary(storeAfter(kSlots - 1)));
    QList<qint64> nanoseconds;
    for (int n = kSlots; n < kTimingRuns; ++n) {
        QElapsedTimer timer;
        timer.start();
        QVERIFY(Set::saveSpotSet(run(n)));
        nanoseconds.append(timer.nsecsElapsed());
    }
    std::sort(nanoseconds.begin(), nanoseconds.end());
    m_saveMicroseconds = double(nanoseconds.at(nanoseconds.size() / 2)) / 1000.0;

    UserDefaults::setStandardFilePath(roundFile(0));
    QVERIFY(Set::saveAllSpotsSetDicitionary(storeAfter(m_latest)));
    QCOMPARE(valueFiles(roundFile(0)).size(), 1);
}

void tst_SpotsStoreCrashSafety::killedWriterLeavesOldOrNewStore_data()
{
    // When the kill comes, in saves of the writer, from its start or from
    // its first save. A writer that finds the store as earlier versions wrote
    // it moves it to files of their own as it opens it.
    QTest::addColumn<int>("kills");
    QTest::addColumn<double>("fromSaves");
    QTest::addColumn<double>("toSaves");
    QTest::addColumn<bool>("afterFirstSave");
    QTest::addColumn<bool>("earlierLayout");
    QTest::newRow("at once, before or in the first write") << 40 << 0.0 << 0.2 << false << false;
    QTest::newRow("anywhere in the first save") << 80 << 0.0 << 1.0 << false << false;
    QTest::newRow("anywhere in the first three saves") << 60 << 0.0 << 3.0 << false << false;
    QTest::newRow("deep in a long run of saves") << 40 << 2.0 << 9.0 << true << false;
    QTest::newRow("moving an earlier store, or just after") << 40 << 0.0 << 3.0 << false << true;
}

void tst_SpotsStoreCrashSafety::killedWriterLeavesOldOrNewStore()
{
    QFETCH(int, kills);
    QFETCH(double, fromSaves);
    QFETCH(double, toSaves);
    QFETCH(bool, afterFirstSave);
    QFETCH(bool, earlierLayout);

    for (int kill = 0; kill < kills; ++kill) {
        // Every round writes a file of its own, a copy of the last one read,
        // so the reader below never holds a cached view of it. A lock file
        // the last kill left behind comes along: the writer must get past it.
        const QString previous = roundFile(m_round);
        const QString file = roundFile(++m_round);
        if (earlierLayout)
            writeEarlierLayout(file, storeAfter(m_latest));
        else
            QVERIFY(UserDefaults::copyFile(previous, file));
        if (QFile::exists(previous + QStringLiteral(".lock")))
            QVERIFY(carryLock(previous + QStringLiteral(".lock"), file + QStringLiteral(".lock")));
        const int start = m_latest;

        int report[2];
        QCOMPARE(::pipe(report), 0);
        const pid_t pid = ::fork();
        QVERIFY(pid >= 0);
        if (pid == 0) {
            ::close(report[0]);
            UserDefaults::setStandardFilePath(file);
            for (int n = start + 1; n < start + kRunsPerWriter; ++n) {
                // Reported only once the save returned, i.e. it is on disk.
                if (!Set::saveSpotSet(run(n)) || ::write(report[1], &n, sizeof n) != sizeof n)
                    ::_exit(1);
            }
            ::_exit(0);
        }
        ::close(report[1]);
        int reported = start;
        // Waits for the first save (a writer that cannot save ends, and the
        // read ends with it): the kills of this row fall in later saves.
        if (afterFirstSave && ::read(report[0], &reported, sizeof reported) != sizeof reported)
            ::kill(pid, SIGKILL);
        const double delay = m_saveMicroseconds * (fromSaves + (toSaves - fromSaves) * m_random.generateDouble());
        std::this_thread::sleep_for(std::chrono::microseconds(qint64(delay)));
        ::kill(pid, SIGKILL);
        int status = 0;
        QCOMPARE(::waitpid(pid, &status, 0), pid);
        for (int n = 0; ::read(report[0], &n, sizeof n) == sizeof n;)
            reported = n;
        ::close(report[0]);
        QVERIFY2(WIFSIGNALED(status) && WTERMSIG(status) == SIGKILL,
                 qPrintable(QStringLiteral("round %1: the writer ended on its own (status %2)").arg(m_round).arg(status)));
        QVERIFY2(!afterFirstSave || reported > start, qPrintable(QStringLiteral("round %1: no first save").arg(m_round)));
        ++m_kills;

        LogCapture log;
        UserDefaults::setStandardFilePath(file);
        const Set::Dictionary store = Set::allSpotsSetsDictionary();
        QVERIFY2(log.lines().isEmpty(), qPrintable(QStringLiteral("kill %1: %2").arg(m_kills).arg(log.text())));
        const int latest = latestRun(store);
        QVERIFY2(latest == reported || latest == reported + 1,
                 qPrintable(QStringLiteral("kill %1: the store holds run %2, the writer had reported run %3")
                                .arg(m_kills).arg(latest).arg(reported)));
        QVERIFY2(Set::archiveDictionary(store) == Set::archiveDictionary(storeAfter(latest)),
                 qPrintable(QStringLiteral("kill %1: the store of run %2 is not what was saved").arg(m_kills).arg(latest)));
        (latest == reported ? m_oldState : m_newState) += 1;
        m_latest = latest;
        QDir(UserDefaults::valuesFolderPath(previous)).removeRecursively();
        QFile::remove(previous);
        QFile::remove(previous + QStringLiteral(".lock"));
    }
    // Files a killed writer left beside the store (a value file no INI refers
    // to yet, a half-written temporary file): the next write removes them.
    QVERIFY(Set::saveSpotSet(run(++m_latest)));
    QCOMPARE(valueFiles(roundFile(m_round)).size(), 1);
}

void tst_SpotsStoreCrashSafety::lockLeftByAKilledWriterHoldsNoSave_data()
{
    // A writer killed while taking the store's lock leaves "<file>.lock"
    // behind: empty when it died before writing its process id into it. One
    // killed while removing such a lock leaves "<file>.lock.rmlock" too,
    // empty. How long the next save waits for each: bench/bench_stale_lock.
    QTest::addColumn<bool>("deadOwner"); // the lock names a process that is gone
    QTest::addColumn<int>("emptyAgeMs"); // -1: no empty file
    QTest::addColumn<QString>("emptyFile");
    QTest::newRow("empty, left long ago") << false << 10000 << ".lock";
    QTest::newRow("empty, left just now") << false << 0 << ".lock";
    QTest::newRow("naming a process that is gone") << true << -1 << "";
    QTest::newRow("killed while removing one that names a gone process") << true << 5000 << ".lock.rmlock";
}

void tst_SpotsStoreCrashSafety::lockLeftByAKilledWriterHoldsNoSave()
{
    QFETCH(bool, deadOwner);
    QFETCH(int, emptyAgeMs);
    QFETCH(QString, emptyFile);
    // A store this process never opens: the one the timing saves left.
    const QString file = m_dir.filePath(QStringLiteral("locked-%1.ini").arg(QTest::currentDataTag()).replace(u' ', u'-'));
    QVERIFY(UserDefaults::copyFile(m_dir.filePath(QStringLiteral("timing.ini")), file));
    const QString lock = file + QStringLiteral(".lock");
    if (deadOwner) {
        QCOMPARE(inChild([&] { return (new QLockFile(lock))->tryLock() ? 0 : 1; }), 0); // exits holding it
        QVERIFY(QFileInfo(lock).size() > 0);
    }
    if (emptyAgeMs >= 0) {
        QFile empty(file + emptyFile);
        QVERIFY(empty.open(QIODevice::WriteOnly));
        QVERIFY(empty.setFileTime(QDateTime::currentDateTime().addMSecs(-emptyAgeMs), QFileDevice::FileModificationTime));
    }
    // The next start of the program saves. The kit's own wait for a lock is
    // bounded, and a save that could not take it returns false.
    QCOMPARE(inChild([&] {
                 UserDefaults::setStandardFilePath(file);
                 return Set::saveSpotSet(run(kTimingRuns)) ? 0 : 1;
             }),
             0);
    QVERIFY(!QFile::exists(lock) && !QFile::exists(lock + QStringLiteral(".rmlock")));
    const QString current = UserDefaults::standard().filePath();
    UserDefaults::setStandardFilePath(file);
    QCOMPARE(Set::archiveDictionary(Set::allSpotsSetsDictionary()), Set::archiveDictionary(storeAfter(kTimingRuns)));
    UserDefaults::setStandardFilePath(current);
}

void tst_SpotsStoreCrashSafety::cleanupTestCase()
{
    qInfo("%d kills, every store readable: %d found the last reported save, %d the save under way", m_kills,
          m_oldState, m_newState);
}

QTEST_GUILESS_MAIN(tst_SpotsStoreCrashSafety)
#include "tst_SpotsStoreCrashSafety.moc"
