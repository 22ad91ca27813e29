// A process that saves spots sets in a loop is killed (SIGKILL) at random
// moments, hundreds of times; after every kill a reader that never saw the
// file before loads the store and must find exactly the state of the last
// save reported complete, or of the save under way: never an unreadable
// store, never a set lost or half written.
#include "model/FZHistoricalResultSpotsSet.h"

#include "LogCapture.h"
#include "platform/foundation/Archive.h"
#include "platform/foundation/UserDefaults.h"

#include <QDir>
#include <QElapsedTimer>
#include <QSettings>
#include <QRandomGenerator>
#include <QStandardPaths>
#include <QTemporaryDir>
#include <QtTest>

#include <algorithm>
#include <chrono>
#include <csignal>
#include <thread>

#include <poll.h>
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

// Whether the process has a file of folder open just now (a save writing).
bool writesInto(pid_t pid, const QString &folder)
{
    const QFileInfoList fds = QDir(QStringLiteral("/proc/%1/fd").arg(pid)).entryInfoList(QDir::Files | QDir::System);
    return std::any_of(fds.cbegin(), fds.cend(),
                       [&folder](const QFileInfo &fd) { return fd.symLinkTarget().startsWith(folder); });
}

// A lock file as the next start of the program finds it after a kill: the
// same bytes, a few seconds old (how old a lock is tells QLockFile and the
// kit whether its owner may still be taking it).
constexpr int kRestartSeconds = 5;

bool carryLock(const QString &from, const QString &to)
{
    const QDateTime modified = QFileInfo(from).lastModified().addSecs(-kRestartSeconds);
    QFile copy(to);
    return QFile::copy(from, to) && copy.open(QIODevice::ReadWrite)
        && copy.setFileTime(modified, QFileDevice::FileModificationTime);
}

QByteArray contentOf(const QString &path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

// The names of the process's threads but the calling one.
QStringList otherThreads()
{
    QStringList names;
    const QString self = QString::number(::gettid());
    for (const QString &task : QDir(QStringLiteral("/proc/self/task")).entryList(QDir::Dirs | QDir::NoDotAndDotDot)) {
        if (task == self)
            continue;
        QFile comm(QStringLiteral("/proc/self/task/%1/comm").arg(task));
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
    void cleanupTestCase();

private:
    QString roundFile(int round) const { return m_dir.filePath(QStringLiteral("round%1.ini").arg(round)); }

    QTemporaryDir m_dir;
    QRandomGenerator m_random{20251123};
    double m_saveMicroseconds = 0;
    int m_round = 0;
    int m_latest = kSlots - 1;
    int m_kills = 0;
    int m_survived = 0;
    int m_killedWriting = 0;
    int m_killedHoldingLock = 0;
    int m_lockedRounds = 0;
    int m_lockedRoundsSaved = 0;
    int m_oldState = 0;
    int m_newState = 0;
    int m_leftFiles = 0;
};

void tst_SpotsStoreCrashSafety::initTestCase()
{
    QStandardPaths::setTestModeEnabled(true);
    QVERIFY(m_dir.isValid());
    // fork() copies only the calling thread, so no other thread may hold a
    // lock the writer needs. Qt Test's watchdog only waits for the end of the
    // test function; anything else (a network thread, a pool) would be a risk.
    const QStringList others = otherThreads();
    QVERIFY2(others.isEmpty() || others == QStringList{QStringLiteral("QtTest Watchdog")},
             qPrintable(others.join(u',')));

    // How long one save takes here (the median of a few, after a first one
    // that warms the caches), so the kills fall inside saves.
    UserDefaults::setStandardFilePath(m_dir.filePath(QStringLiteral("timing.ini")));
    QVERIFY(Set::saveAllSpotsSetDicitionary(storeAfter(kSlots - 1)));
    QList<qint64> nanoseconds;
    for (int n = kSlots; n < kSlots + 9; ++n) {
        QElapsedTimer timer;
        timer.start();
        QVERIFY(Set::saveSpotSet(run(n)));
        nanoseconds.append(timer.nsecsElapsed());
    }
    std::sort(nanoseconds.begin(), nanoseconds.end());
    m_saveMicroseconds = double(nanoseconds.at(nanoseconds.size() / 2)) / 1000.0;
    qInfo("one save of %d sets of %d spots takes %.0f us", kSlots, kSpotsPerSet, m_saveMicroseconds);

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

    int lockedRounds = 0;
    int lockedRoundsSaved = 0;
    for (int kill = 0; kill < kills; ++kill) {
        // Every round writes a file of its own, a copy of the last one read,
        // so the reader below never holds a cached view of it. A lock file
        // the last kill left behind comes along: the writer must get past it.
        const QString previous = roundFile(m_round);
        const QString file = roundFile(++m_round);
        const QString lock = file + QStringLiteral(".lock");
        if (earlierLayout)
            writeEarlierLayout(file, storeAfter(m_latest));
        else
            QVERIFY(UserDefaults::copyFile(previous, file));
        const bool locked = QFile::exists(previous + QStringLiteral(".lock"));
        if (locked)
            QVERIFY(carryLock(previous + QStringLiteral(".lock"), lock));
        const QByteArray carried = contentOf(lock);
        const int start = m_latest;

        int report[2];
        QCOMPARE(::pipe(report), 0);
        const pid_t pid = ::fork();
        QVERIFY(pid >= 0);
        if (pid == 0) {
            ::close(report[0]);
            UserDefaults::setStandardFilePath(file);
            for (int n = start + 1; n < start + kRunsPerWriter; ++n) {
                if (!Set::saveSpotSet(run(n)))
                    ::_exit(1);
                // Only once the save returned, i.e. it is on disk.
                if (::write(report[1], &n, sizeof n) != sizeof n)
                    ::_exit(2);
            }
            ::_exit(0);
        }
        ::close(report[1]);
        int reported = start;
        if (afterFirstSave) {
            // Whatever lock the last kill left, the writer saves well before a
            // lock whose owner cannot be told would be waited out (30 s).
            pollfd first{report[0], POLLIN, 0};
            const bool saved = ::poll(&first, 1, 10000) == 1 && ::read(report[0], &reported, sizeof reported) == sizeof reported;
            if (!saved)
                ::kill(pid, SIGKILL);
            QVERIFY2(saved, qPrintable(QStringLiteral("round %1: no save within 10 s (lock carried: %2)").arg(m_round).arg(locked)));
        }
        const double delay = m_saveMicroseconds * (fromSaves + (toSaves - fromSaves) * m_random.generateDouble());
        std::this_thread::sleep_for(std::chrono::microseconds(qint64(delay)));
        const bool writing = writesInto(pid, m_dir.path());
        ::kill(pid, SIGKILL);
        int status = 0;
        QCOMPARE(::waitpid(pid, &status, 0), pid);
        for (int n = 0; ::read(report[0], &n, sizeof n) == sizeof n;)
            reported = n;
        ::close(report[0]);
        QVERIFY2(WIFSIGNALED(status) && WTERMSIG(status) == SIGKILL,
                 qPrintable(QStringLiteral("the writer ended on its own (status %1)").arg(status)));
        ++m_kills;
        m_killedWriting += writing ? 1 : 0;
        // A lock file of this writer left behind: the kill came while its save held it.
        if (QFile::exists(lock) && !(locked && contentOf(lock) == carried))
            ++m_killedHoldingLock;
        if (locked) {
            ++lockedRounds;
            lockedRoundsSaved += reported > start ? 1 : 0;
        }

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
        ++m_survived;
        m_latest = latest;
        // Files a killed writer left beside the store: the next write removes them.
        m_leftFiles += int(valueFiles(file).size()) - 1;
        QDir(UserDefaults::valuesFolderPath(previous)).removeRecursively();
        QFile::remove(previous);
        QFile::remove(previous + QStringLiteral(".lock"));
    }
    QVERIFY(Set::saveSpotSet(run(++m_latest)));
    QCOMPARE(valueFiles(roundFile(m_round)).size(), 1);
    m_lockedRounds += lockedRounds;
    m_lockedRoundsSaved += lockedRoundsSaved;
}

void tst_SpotsStoreCrashSafety::cleanupTestCase()
{
    qInfo("%d kills, %d survived with a readable store: %d found the last reported state, %d the save under "
          "way; %d came with a store file open, %d with the store's lock held; %d of %d writers that found "
          "such a lock saved past it; %d files left beside the store, each removed by the next write",
          m_kills, m_survived, m_oldState, m_newState, m_killedWriting, m_killedHoldingLock, m_lockedRoundsSaved,
          m_lockedRounds, m_leftFiles);
}

QTEST_GUILESS_MAIN(tst_SpotsStoreCrashSafety)
#include "tst_SpotsStoreCrashSafety.moc"
