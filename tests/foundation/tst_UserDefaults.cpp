#include "platform/foundation/UserDefaults.h"

#include "TestEnvironment.h"

#include <QElapsedTimer>
#include <QSettings>
#include <QFile>
#include <QLockFile>
#include <QtTest>

#include <memory>
#include <thread>

#include <sys/wait.h>
#include <unistd.h>

using Brightmere::UserDefaults;

class tst_UserDefaults : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init() { m_env = std::make_unique<TestEnvironment>(); }
    void cleanup() { m_env.reset(); }

    void valueSurvivesNewInstance_data();
    void valueSurvivesNewInstance();
    void inlineLargeValuesMoveOutWhenOpened();
    void typedGettersOfMissingKeys();
    void removeAndInvalidValueDeleteTheKey();
    void standardStoreFollowsItsFile();
    void failedWriteIsNotASave_data();
    void failedWriteIsNotASave();
    void concurrentWritersLoseNothing();
    void lockLeftByAKilledWriter_data();
    void lockLeftByAKilledWriter();

private:
    std::unique_ptr<TestEnvironment> m_env;
};

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

void tst_UserDefaults::valueSurvivesNewInstance_data()
{
    QTest::addColumn<QVariant>("value");
    QTest::newRow("plain string") << QVariant(QStringLiteral("Kitchen"));
    QTest::newRow("string that looks like a setting") << QVariant(QStringLiteral("@Variant(x), a=b; [c]"));
    QTest::newRow("empty string") << QVariant(QString(""));
    QTest::newRow("boolean true") << QVariant(true);
    QTest::newRow("one-name list") << QVariant(QStringList{QStringLiteral("Garage")});
    QTest::newRow("empty list") << QVariant(QStringList{});
    QTest::newRow("names with commas") << QVariant(QStringList{QStringLiteral("a,b"), QStringLiteral(""), QStringLiteral("c")});
    QTest::newRow("binary blob") << QVariant(QByteArray("\0\x01\xff\n=[]", 8));
    QTest::newRow("binary blob at the threshold") << QVariant(QByteArray(UserDefaults::kLargeValueBytes, '\0'));
    QTest::newRow("binary blob past it, in a file") << QVariant(large('\n') + "=[]\0");
    QTest::newRow("nested dictionary") << QVariant(QVariantMap{
        {QStringLiteral("kI18NTimeStampKey"), QVariantMap{{QStringLiteral("en"), 7}, {QStringLiteral("es"), 5.5}}},
        {QStringLiteral("kI18NLanguageKey"), QStringLiteral("es")}});
}

void tst_UserDefaults::valueSurvivesNewInstance()
{
    QFETCH(QVariant, value);
    const QString path = m_env->filePath(QStringLiteral("store.ini"));
    {
        // Replacing a value held in a file of its own.
        UserDefaults writer(path);
        writer.setObject(large('a'), QStringLiteral("key"));
        QVERIFY(writer.synchronize());
        writer.setObject(value, QStringLiteral("key"));
        QVERIFY(writer.synchronize());
    }
    UserDefaults reader(path);
    const QVariant read = reader.objectForKey(QStringLiteral("key"));
    if (value.typeId() == QMetaType::Bool)
        QCOMPARE(read.toBool(), value.toBool());
    else
        QCOMPARE(read, value);
    if (value.typeId() == QMetaType::QStringList)
        QCOMPARE(reader.stringArrayForKey(QStringLiteral("key")), value.toStringList());
    // Only a large value has a file, and the INI only refers to it.
    const bool inFile = value.toByteArray().size() > UserDefaults::kLargeValueBytes;
    QCOMPARE(valueFiles(path).size(), inFile ? 1 : 0);
    QVERIFY(!inFile || QFileInfo(path).size() < UserDefaults::kLargeValueBytes);
}

void tst_UserDefaults::inlineLargeValuesMoveOutWhenOpened()
{
    // A file as earlier versions wrote it: every value inline.
    const QString path = m_env->filePath(QStringLiteral("earlier.ini"));
    {
        QSettings earlier(path, QSettings::IniFormat);
        earlier.setValue(QStringLiteral("sets"), large('s'));
        earlier.setValue(QStringLiteral("sets.backup"), large('b'));
        earlier.setValue(QStringLiteral("flag"), true);
    }
    {
        UserDefaults opened(path);
        QCOMPARE(opened.dataForKey(QStringLiteral("sets")), large('s'));
    }
    QVERIFY(QFileInfo(path).size() < UserDefaults::kLargeValueBytes);
    QCOMPARE(valueFiles(path).size(), 2);
    UserDefaults reader(path);
    QCOMPARE(reader.dataForKey(QStringLiteral("sets")), large('s'));
    QCOMPARE(reader.dataForKey(QStringLiteral("sets.backup")), large('b'));
    QVERIFY(reader.boolForKey(QStringLiteral("flag")));
}

void tst_UserDefaults::typedGettersOfMissingKeys()
{
    UserDefaults &defaults = UserDefaults::standard();
    QVERIFY(!defaults.objectForKey(QStringLiteral("nothing")).isValid());
    QCOMPARE(defaults.boolForKey(QStringLiteral("nothing")), false);
    QVERIFY(defaults.stringForKey(QStringLiteral("nothing")).isNull());
    QVERIFY(defaults.stringArrayForKey(QStringLiteral("nothing")).isEmpty());
    QVERIFY(defaults.dataForKey(QStringLiteral("nothing")).isEmpty());
    QVERIFY(defaults.dictionaryForKey(QStringLiteral("nothing")).isEmpty());

    // A value of another kind reads as empty, not as a mangled conversion.
    defaults.setObject(QStringLiteral("text"), QStringLiteral("text"));
    QVERIFY(defaults.dataForKey(QStringLiteral("text")).isEmpty());
    QVERIFY(defaults.stringArrayForKey(QStringLiteral("text")).isEmpty());
    defaults.setBool(false, QStringLiteral("flag"));
    QVERIFY(defaults.contains(QStringLiteral("flag")));
    QCOMPARE(defaults.boolForKey(QStringLiteral("flag")), false);
}

void tst_UserDefaults::removeAndInvalidValueDeleteTheKey()
{
    UserDefaults &defaults = UserDefaults::standard();
    defaults.setObject(1, QStringLiteral("a"));
    defaults.setObject(2, QStringLiteral("b"));
    defaults.removeObjectForKey(QStringLiteral("a"));
    defaults.setObject(QVariant(), QStringLiteral("b"));
    QVERIFY(defaults.synchronize());
    UserDefaults reader(m_env->defaultsFilePath());
    QVERIFY(!reader.contains(QStringLiteral("a")));
    QVERIFY(!reader.contains(QStringLiteral("b")));
}

void tst_UserDefaults::standardStoreFollowsItsFile()
{
    UserDefaults &defaults = UserDefaults::standard();
    QCOMPARE(QFileInfo(defaults.filePath()), QFileInfo(m_env->defaultsFilePath()));
    defaults.setObject(QStringLiteral("first"), QStringLiteral("where"));

    const QString other = m_env->filePath(QStringLiteral("nested/other.ini"));
    UserDefaults::setStandardFilePath(other);
    QVERIFY(!defaults.contains(QStringLiteral("where")));
    defaults.setObject(QStringLiteral("second"), QStringLiteral("where"));
    QVERIFY(defaults.synchronize());

    // What was written before the move reached the first file.
    QCOMPARE(UserDefaults(m_env->defaultsFilePath()).stringForKey(QStringLiteral("where")), QStringLiteral("first"));
    QCOMPARE(UserDefaults(other).stringForKey(QStringLiteral("where")), QStringLiteral("second"));
}

void tst_UserDefaults::failedWriteIsNotASave_data()
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

void tst_UserDefaults::failedWriteIsNotASave()
{
    QFETCH(QString, file);
    QFETCH(QString, blocked);
    QFETCH(bool, blockedByFolder);
    QFETCH(bool, savedBefore);
    const QString path = m_env->filePath(file);
    UserDefaults defaults(path);
    if (savedBefore) {
        defaults.setObject(large('1'), QStringLiteral("blob"));
        defaults.setObject(1, QStringLiteral("small"));
        QVERIFY(defaults.synchronize());
    }
    const QString block = m_env->filePath(blocked);
    QDir(block).removeRecursively();
    QVERIFY(blockedByFolder ? QDir().mkpath(block) : QFile(block).open(QIODevice::WriteOnly));

    defaults.setObject(large('2'), QStringLiteral("blob"));
    defaults.setObject(2, QStringLiteral("small"));
    QVERIFY(defaults.contains(QStringLiteral("small")));
    QTest::ignoreMessage(QtWarningMsg, QRegularExpression(QStringLiteral("synchronising .* failed")));
    QVERIFY(!defaults.synchronize());
    // Nothing of the failed write is read back: only what the disk holds.
    QCOMPARE(defaults.integerForKey(QStringLiteral("small")), savedBefore ? 1 : 0);
    QCOMPARE(defaults.dataForKey(QStringLiteral("blob")), savedBefore ? large('1') : QByteArray());

    // Once the way is clear again, the user's retry is saved.
    QVERIFY(blockedByFolder ? QDir(block).removeRecursively() : QFile::remove(block));
    QVERIFY(QDir().mkpath(QFileInfo(path).absolutePath()));
    defaults.setObject(large('3'), QStringLiteral("blob"));
    QVERIFY(defaults.synchronize());
    QCOMPARE(UserDefaults(path).dataForKey(QStringLiteral("blob")), large('3'));
}

void tst_UserDefaults::concurrentWritersLoseNothing()
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

void tst_UserDefaults::lockLeftByAKilledWriter_data()
{
    // A writer killed while taking the file's lock leaves "<file>.lock"
    // behind: empty when it died before writing its process id into it.
    // One killed while removing such a lock leaves "<file>.lock.rmlock" too.
    QTest::addColumn<bool>("filled");
    QTest::addColumn<int>("ageMs");
    QTest::addColumn<bool>("removing");
    QTest::newRow("empty, left long ago: removed at once") << false << 10000 << false;
    QTest::newRow("empty, left just now: removed after a second") << false << 0 << false;
    QTest::newRow("naming a process that is gone: Qt takes it over") << true << 0 << false;
    QTest::newRow("killed while removing one that names a gone process") << true << 5000 << true;
}

void tst_UserDefaults::lockLeftByAKilledWriter()
{
    QFETCH(bool, filled);
    QFETCH(int, ageMs);
    QFETCH(bool, removing);
    const QString path = m_env->filePath(QStringLiteral("locked.ini"));
    const QString lockPath = path + QStringLiteral(".lock");
    const QString emptyPath = removing ? lockPath + QStringLiteral(".rmlock") : lockPath;
    if (filled) {
        const pid_t child = ::fork();
        if (child == 0) {
            QLockFile held(lockPath);
            ::_exit(held.tryLock() ? 0 : 1);
        }
        int status = 0;
        QCOMPARE(::waitpid(child, &status, 0), child);
        QVERIFY(WIFEXITED(status) && WEXITSTATUS(status) == 0);
        QVERIFY(QFileInfo(lockPath).size() > 0);
    }
    if (filled && !removing) {
        QTest::failOnWarning(QRegularExpression(QStringLiteral("left empty")));
    } else {
        QFile lock(emptyPath);
        QVERIFY(lock.open(QIODevice::WriteOnly));
        QVERIFY(lock.setFileTime(QDateTime::currentDateTime().addMSecs(-ageMs), QFileDevice::FileModificationTime));
        lock.close();
        QTest::ignoreMessage(QtWarningMsg, QRegularExpression(QStringLiteral("removed .*") + QRegularExpression::escape(QFileInfo(emptyPath).fileName()) + QStringLiteral(" left empty")));
    }

    UserDefaults defaults(path);
    defaults.setObject(QStringLiteral("saved"), QStringLiteral("k"));
    QElapsedTimer timer;
    timer.start();
    QVERIFY(defaults.synchronize());
    // Waited out, the lock would have held the save for 20 s and more.
    QVERIFY2(timer.elapsed() < 10000, qPrintable(QString::number(timer.elapsed())));
    QVERIFY(!QFile::exists(lockPath));
    QCOMPARE(UserDefaults(path).stringForKey(QStringLiteral("k")), QStringLiteral("saved"));
}

QTEST_GUILESS_MAIN(tst_UserDefaults)
#include "tst_UserDefaults.moc"
