#include "platform/foundation/UserDefaults.h"

#include "TestEnvironment.h"

#include <QtTest>

#include <memory>
#include <thread>

using Brightmere::UserDefaults;

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

// The lock left by a killed writer is tested from a fresh process with the
// saved sets, in tst_SpotsStoreCrashSafety; the earlier file layout with the
// store's own fixture, a value of another kind and a removed key with the
// store, in tst_FZHistoricalResultSpotsSet. Every test moves the standard
// store to a file of its own (TestEnvironment).
class tst_UserDefaults : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init() { m_env = std::make_unique<TestEnvironment>(); }
    void cleanup() { m_env.reset(); }

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

    void failedWriteIsNotASave_data()
    {
        // Tests run as root, for whom no permission fails: a regular file where
        // a folder must be, or a folder where the file must be, does.
        QTest::addColumn<QString>("file");
        QTest::addColumn<QString>("blocked");
        QTest::addColumn<bool>("blockedByFolder");
        QTest::addColumn<bool>("savedBefore");
        QTest::newRow("the values folder is a file") << "store.ini" << "store.ini.values" << false << true;
        QTest::newRow("the store's folder is a file") << "box/store.ini" << "box" << false << false;
        QTest::newRow("the INI is a folder") << "store.ini" << "store.ini" << true << false;
    }
    void failedWriteIsNotASave()
    {
        QFETCH(bool, blockedByFolder);
        QFETCH(bool, savedBefore);
        const QString path = m_env->filePath(fetched<QString>("file"));
        const QString block = m_env->filePath(fetched<QString>("blocked"));
        UserDefaults defaults(path);
        const auto set = [&defaults](char blob, int small) {
            defaults.setObject(large(blob), QStringLiteral("blob"));
            defaults.setObject(small, QStringLiteral("small"));
        };
        set('1', 1);
        if (savedBefore)
            QVERIFY(defaults.synchronize());
        QDir(block).removeRecursively();
        QVERIFY(blockedByFolder ? QDir().mkpath(block) : QFile(block).open(QIODevice::WriteOnly));
        set('2', 2);
        QTest::ignoreMessage(QtWarningMsg, QRegularExpression(QStringLiteral("synchronising .* failed")));
        QVERIFY(!defaults.synchronize());
        // Nothing of the failed write is read back: only what the disk holds.
        QCOMPARE(defaults.integerForKey(QStringLiteral("small")), savedBefore ? 1 : 0);
        QCOMPARE(defaults.dataForKey(QStringLiteral("blob")), savedBefore ? large('1') : QByteArray());
        // Once the way is clear again, the user's retry is saved.
        QVERIFY(blockedByFolder ? QDir(block).removeRecursively() : QFile::remove(block));
        QVERIFY(QDir().mkpath(QFileInfo(path).absolutePath()));
        set('3', 3);
        QVERIFY(defaults.synchronize());
        QCOMPARE(UserDefaults(path).dataForKey(QStringLiteral("blob")), large('3'));
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

QTEST_GUILESS_MAIN(tst_UserDefaults)
#include "tst_UserDefaults.moc"
