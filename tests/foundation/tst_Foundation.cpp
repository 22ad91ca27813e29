// The foundation's services: keyed archives, the manual and system clocks,
// the notification centre, the main queue, the format of texts and the user
// defaults. The lock a killed writer leaves is tested from a fresh process
// with the saved sets (tst_SpotsStoreCrashSafety); the earlier file layout
// and writes the disk refuses with the store (tst_FZHistoricalResultSpotsSet).
#include <Brightmere/platform/foundation/Archive.h>
#include <Brightmere/platform/foundation/MainQueue.h>
#include <Brightmere/platform/foundation/ManualClock.h>
#include <Brightmere/platform/foundation/NotificationCenter.h>
#include <Brightmere/platform/foundation/StringFormat.h>
#include <Brightmere/platform/foundation/UserDefaults.h>

#include "BoundedRun.h"
#include "TestEnvironment.h"

#include <QtTest>

#include <memory>
#include <thread>

using namespace Brightmere;

namespace {

QStringList valueFiles(const QString &filePath)
{
    return QDir(UserDefaults::valuesFolderPath(filePath)).entryList(QDir::Files | QDir::Hidden);
}

QByteArray large(char fill)
{
    return QByteArray(UserDefaults::kLargeValueBytes + 1, fill);
}

} // namespace

Q_DECLARE_METATYPE(Archive::Error)

class tst_Foundation : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    // Every test moves the standard defaults to a file of its own.
    void init() { m_env = std::make_unique<TestEnvironment>(); }
    void cleanup() { m_env.reset(); }

    void archiveRefusals_data()
    {
        QTest::addColumn<QByteArray>("blob");
        QTest::addColumn<Archive::Error>("expected");
        const QByteArray good = Archive::archive(QVariantMap{{"Home", QStringList{"Kitchen", "Garage"}}});
        QByteArray flipped = good;
        flipped[flipped.size() - 3] = char(flipped.at(flipped.size() - 3) ^ 0x40);
        // A cut or newer store is the store's to set aside (tst_FZHistoricalResultSpotsSet).
        QTest::newRow("the good one") << good << Archive::Error::None;
        QTest::newRow("empty") << QByteArray() << Archive::Error::Empty;
        QTest::newRow("foreign text") << QByteArray("<?xml version=\"1.0\"?><plist/>") << Archive::Error::Foreign;
        QTest::newRow("trailing byte") << good + '\0' << Archive::Error::Corrupt;
        QTest::newRow("body byte flipped") << flipped << Archive::Error::Corrupt;
        // A header that promises a huge body must not make the reader allocate it.
        QTest::newRow("length beyond the blob") << good.left(6) + QByteArray::fromHex("7fffffff") + good.mid(10)
                                                << Archive::Error::Truncated;
    }
    void archiveRefusals()
    {
        QFETCH(Archive::Error, expected);
        Archive::Error error = Archive::Error::Empty;
        const auto value = Archive::unarchive<QVariantMap>(fetched<QByteArray>("blob"), &error);
        QCOMPARE(error, expected);
        QCOMPARE(value.has_value(), expected == Archive::Error::None);
        QVERIFY(!value || value->value("Home").toStringList() == QStringList({"Kitchen", "Garage"}));
    }

    // What a reader refuses, reads past the end of or leaves unread is corrupt.
    void archiveReaderMistakesAreCorrupt()
    {
        const QByteArray one = Archive::write([](QDataStream &s) { s << quint32(3); });
        const QByteArray two = Archive::write([](QDataStream &s) { s << quint32(1) << quint32(2); });
        quint32 n = 0;
        quint64 wide = 0;
        QCOMPARE(Archive::read(one, [&](QDataStream &s) { s >> n; return false; }), Archive::Error::Corrupt);
        QCOMPARE(Archive::read(one, [&](QDataStream &s) { s >> wide; return true; }), Archive::Error::Corrupt);
        QCOMPARE(Archive::read(two, [&](QDataStream &s) { s >> n; return true; }), Archive::Error::Corrupt);
    }

    // Today's dates leave a double few bits for the fraction: thirds of a
    // second added up must still fire every tick.
    void manualClockLosesNoTickAtTodaysDates()
    {
        const double interval = 1.0 / 3.0;
        ManualClock clock(785000000.7);
        int ticks = 0;
        clock.startRepeating(interval, [&] { ++ticks; });
        for (int i = 0; i < 300; ++i)
            clock.advance(interval);
        QCOMPARE(ticks, 300);
    }

    void systemClockCountsFromTheReferenceDate()
    {
        const auto unixNow = [] { return QDateTime::currentDateTimeUtc().toMSecsSinceEpoch() / 1000.0 - 978307200.0; };
        const double before = unixNow(), now = Clock::system().now(), after = unixNow();
        QVERIFY2(now >= before - 0.002 && now <= after + 0.002, qPrintable(QString::number(now - before)));
    }

    void centreFiltersByNameAndSender_data()
    {
        QTest::addColumn<QString>("observedName");
        QTest::addColumn<bool>("restrictToSender");
        QTest::addColumn<QString>("postedName");
        QTest::addColumn<bool>("postFromSender");
        QTest::addColumn<bool>("delivered");
        QTest::newRow("names are case-sensitive") << "kScreenChange" << false << "kscreenchange" << false << false;
        QTest::newRow("empty name observes all") << "" << false << "kAnything" << false << true;
        QTest::newRow("sender matches") << "kScreenChange" << true << "kScreenChange" << true << true;
        QTest::newRow("other sender") << "kScreenChange" << true << "kScreenChange" << false << false;
    }
    void centreFiltersByNameAndSender()
    {
        NotificationCenter center;
        QObject sender, stranger;
        int observer = 0, count = 0;
        center.addObserver(&observer, fetched<QString>("observedName"), [&](const Notification &) { ++count; },
                           fetched<bool>("restrictToSender") ? &sender : nullptr);
        center.postNotificationName(fetched<QString>("postedName"), fetched<bool>("postFromSender") ? &sender : &stranger);
        QCOMPARE(count, fetched<bool>("delivered") ? 1 : 0);
    }

    void centreObserversChangeDuringDelivery_data()
    {
        QTest::addColumn<bool>("removeWholeObserver");
        QTest::newRow("removed from all names") << true;
        QTest::newRow("removed from the posted name") << false;
    }
    void centreObserversChangeDuringDelivery()
    {
        QFETCH(bool, removeWholeObserver);
        NotificationCenter center;
        const QString name = QStringLiteral("kTextBundleAvailable");
        int first = 0, second = 0, third = 0, late = 0, lateCalls = 0;
        QStringList calls;
        center.addObserver(&first, name, [&](const Notification &) {
            calls << "first";
            if (calls.size() > 1)
                return;
            removeWholeObserver ? center.removeObserver(&second) : center.removeObserver(&second, name);
            // Added during a delivery: told from the next post on.
            center.addObserver(&late, name, [&](const Notification &) { ++lateCalls; });
        });
        center.addObserver(&second, name, [&](const Notification &) { calls << "second"; });
        center.postNotificationName(name);
        QCOMPARE(calls, QStringList{"first"});
        QCOMPARE(lateCalls, 0);
        // Removing oneself from inside one's own callback is safe too.
        center.addObserver(&third, name, [&](const Notification &) { calls << "third"; center.removeObserver(&third); });
        center.postNotificationName(name);
        QCOMPARE(calls, (QStringList{"first", "first", "third"}));
        QCOMPARE(lateCalls, 1);
        QCOMPARE(center.observerCount(name), 2);
    }

    void mainQueueRunsLaterInOrderOnTheMainThread()
    {
        QStringList order;
        bool wasMain = false;
        MainQueue::async([&] { order << "1"; });
        std::thread worker([&] {
            wasMain = MainQueue::isMainThread();
            MainQueue::async([&] { order << (MainQueue::isMainThread() ? "worker" : "worker, off the main thread"); });
            MainQueue::after(0.01, [&] { order << "worker after"; });
        });
        worker.join();
        MainQueue::async([&] { order << "2"; });
        order << "now";
        QTRY_COMPARE(order, (QStringList{"now", "1", "worker", "2", "worker after"}));
        QVERIFY(!wasMain);
    }

    // Work tied to a context that is gone, or cancelled, never runs: work
    // with a later deadline that did run proves it.
    void mainQueueDropsWorkOfAContextGoneOrCancelled()
    {
        int ran = 0, otherRuns = 0;
        auto *gone = new QObject;
        MainQueue::async(gone, [&] { ++ran; });
        MainQueue::after(gone, 0.0, [&] { ++ran; });
        delete gone;
        QObject screen, other;
        MainQueue::after(&screen, 0.01, [&] { ++ran; });
        MainQueue::after(&screen, 0.02, [&] { ++ran; });
        MainQueue::after(&other, 0.03, [&] { ++otherRuns; });
        MainQueue::cancelAll(&screen);
        QCOMPARE(MainQueue::pendingCount(&screen), 0);
        QTRY_COMPARE(otherRuns, 1);
        QCOMPARE(ran, 0);
    }

    void format_data()
    {
        QTest::addColumn<QString>("format");
        QTest::addColumn<QVariantList>("arguments");
        QTest::addColumn<QString>("expected");
        QTest::newRow("objects, non-ASCII") << "'%@' – ñ %@" << QVariantList{"Home", "already exists"} << "'Home' – ñ already exists";
        QTest::newRow("precision rounded, and its default") << "%.2f %@ %f" << QVariantList{12.345678, "Mbps", 1.5}
                                                            << "12.35 Mbps 1.500000";
        QTest::newRow("negative") << "%d|%.1f" << QVariantList{-4, -0.25} << "-4|-0.2";
        QTest::newRow("percent") << "100%% %@" << QVariantList{"done"} << "100% done";
        QTest::newRow("missing arguments") << "%@ and %@, n=%d" << QVariantList{"one"} << "one and (null), n=0";
        QTest::newRow("number and map as objects") << "%@ %@" << QVariantList{2.5, QVariantMap{{"code", 200}}}
                                                   << "2.5 {\"code\":200}";
        QTest::newRow("text where a number goes") << "%d" << QVariantList{"7"} << "7";
        QTest::newRow("positional") << "%2$@ %1$@" << QVariantList{"world", "hello"} << "hello world";
        QTest::newRow("width and zero padding") << "[%5d][%-4d][%03d]" << QVariantList{42, 7, 5} << "[   42][7   ][005]";
        QTest::newRow("doubles for unsigned conversions")
            << "%x|%u|%x|%u|%o" << QVariantList{255.9, -1.0, 1e300, qQNaN(), 8.0}
            << "ff|18446744073709551615|ffffffffffffffff|0|10";
        QTest::newRow("unknown conversion and dangling percent kept") << "%k and %@ 50%" << QVariantList{"x"} << "%k and x 50%";
    }
    void format()
    {
        QFETCH(QString, format);
        QFETCH(QVariantList, arguments);
        QFETCH(QString, expected);
        QCOMPARE(StringFormat::format(format, arguments), expected);
    }

    void hostileFormatsStayBounded_data()
    {
        // Formats as a downloaded translation may hold them ("Spot %d" is one);
        // the fuzz corpus replays a huge width of an object.
        QTest::addColumn<QString>("format");
        QTest::addColumn<QVariantList>("arguments");
        QTest::addColumn<qsizetype>("longest");
        const qsizetype field = StringFormat::kMaxFieldLength;
        QTest::newRow("huge width of an integer") << "%999999999d" << QVariantList{7} << field;
        QTest::newRow("huge precision of an integer") << "%.2000000000d" << QVariantList{7} << field;
        QTest::newRow("a width that overflows int") << "%99999999999999999999d" << QVariantList{7} << field;
        QTest::newRow("a width taken from the arguments") << "%*d" << QVariantList{2147483647, 7} << field;
        QTest::newRow("many large fields") << QString("%999@").repeated(20000) << QVariantList{"x"}
                                           << StringFormat::kMaxOutputLength;
    }
    void hostileFormatsStayBounded()
    {
        QFETCH(QString, format);
        QFETCH(QVariantList, arguments);
        QFETCH(qsizetype, longest);
        // In a child with 256 MB and 5 s: a regression fails the row, it does
        // not take the run down.
        QVERIFY(runBounded([&] { return StringFormat::format(format, arguments).size() <= longest; }, 256u << 20));
    }

    void valueSurvivesNewInstance_data()
    {
        QTest::addColumn<QVariant>("value");
        QTest::newRow("string that looks like a setting") << QVariant(QStringLiteral("@Variant(x), a=b; [c]"));
        QTest::newRow("empty string") << QVariant(QString(""));
        QTest::newRow("one-name list") << QVariant(QStringList{QStringLiteral("Garage")});
        QTest::newRow("empty list") << QVariant(QStringList{});
        QTest::newRow("names with commas") << QVariant(QStringList{"a,b", "", "c"});
        QTest::newRow("binary blob") << QVariant(QByteArray("\0\x01\xff\n=[]", 8));
        QTest::newRow("binary blob at the threshold") << QVariant(QByteArray(UserDefaults::kLargeValueBytes, '\0'));
        QTest::newRow("binary blob past it, in a file") << QVariant(large('\n') + "=[]\0");
        QTest::newRow("nested dictionary")
            << QVariant(QVariantMap{{"kI18NTimeStampKey", QVariantMap{{"en", 7}, {"es", 5.5}}}, {"kI18NLanguageKey", "es"}});
    }
    void valueSurvivesNewInstance()
    {
        QFETCH(QVariant, value);
        const QString path = m_env->filePath(QStringLiteral("store.ini"));
        {
            UserDefaults writer(path); // replacing a value held in a file of its own
            writer.setObject(large('a'), QStringLiteral("key"));
            QVERIFY(writer.synchronize());
            writer.setObject(value, QStringLiteral("key"));
            QVERIFY(writer.synchronize());
        }
        UserDefaults reader(path);
        QCOMPARE(reader.objectForKey(QStringLiteral("key")), value);
        QVERIFY(value.typeId() != QMetaType::QStringList || reader.stringArrayForKey("key") == value.toStringList());
        // Only a large value has a file, and the INI only refers to it.
        const bool inFile = value.toByteArray().size() > UserDefaults::kLargeValueBytes;
        QCOMPARE(valueFiles(path).size(), inFile ? 1 : 0);
        QVERIFY(!inFile || QFileInfo(path).size() < UserDefaults::kLargeValueBytes);
    }

    // The saved sets undo a refused write themselves; the other keys rely on
    // the defaults alone, which must not hand the refused value back.
    void refusedWriteIsNotReadBack()
    {
        const QString path = m_env->filePath(QStringLiteral("box/store.ini"));
        UserDefaults defaults(path);
        const QString box = m_env->filePath(QStringLiteral("box"));
        QDir(box).removeRecursively();
        QVERIFY(QFile(box).open(QIODevice::WriteOnly)); // a file where the folder goes
        defaults.setObject(2, QStringLiteral("small"));
        QTest::ignoreMessage(QtWarningMsg, QRegularExpression(QStringLiteral("synchronising .* failed")));
        QVERIFY(!defaults.synchronize());
        QCOMPARE(defaults.integerForKey(QStringLiteral("small")), 0);
    }

    void concurrentWritersLoseNothing()
    {
        UserDefaults &defaults = UserDefaults::standard();
        auto writer = [&defaults](int base) {
            for (int i = 0; i < 200; ++i)
                defaults.setObject(i, QStringLiteral("t%1/%2").arg(base).arg(i));
        };
        std::thread a(writer, 1), b(writer, 2);
        a.join();
        b.join();
        QVERIFY(defaults.synchronize());
        UserDefaults reader(m_env->defaultsFilePath());
        QCOMPARE(reader.allKeys().size(), 400);
        QCOMPARE(reader.integerForKey(QStringLiteral("t2/199")), 199);
    }

private:
    std::unique_ptr<TestEnvironment> m_env;
};

QTEST_GUILESS_MAIN(tst_Foundation)
#include "tst_Foundation.moc"
