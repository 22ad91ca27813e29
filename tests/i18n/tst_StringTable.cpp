#include "platform/foundation/LocalizedBundle.h"
#include "platform/foundation/StringTable.h"

#include "TestEnvironment.h"

#include <QDir>
#include <QFile>
#include <QStringEncoder>
#include <QtTest>

#include <atomic>
#include <memory>
#include <thread>
#include <vector>

using Brightmere::LocalizedBundle;
using Brightmere::StringTable;

using Entries = QMap<QString, QString>;

namespace {

Entries entriesOf(const StringTable &table)
{
    Entries entries;
    for (const QString &key : table.keys())
        entries.insert(key, table.value(key));
    return entries;
}

int errorLine(const QString &error)
{
    static const QRegularExpression pattern(QStringLiteral("^line (\\d+): "));
    const QRegularExpressionMatch match = pattern.match(error);
    return match.hasMatch() ? match.captured(1).toInt() : 0;
}

QByteArray utf16(const QString &text, QStringConverter::Encoding encoding)
{
    QStringEncoder encoder(encoding, QStringConverter::Flag::WriteBom);
    return encoder.encode(text);
}

void writeFile(const QString &path, const QByteArray &data)
{
    QDir().mkpath(QFileInfo(path).absolutePath());
    QFile file(path);
    QVERIFY(file.open(QIODevice::WriteOnly | QIODevice::Truncate));
    file.write(data);
}

} // namespace

class tst_StringTable : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();

    void parse_data();
    void parse();
    void emptyTextIsPresentNotAbsent();
    void garbageGivesAnErrorNotACrash_data();
    void garbageGivesAnErrorNotACrash();
    void loadLogsAndFallsBack();

    void pathForLocalization_data();
    void pathForLocalization();
    void localizedString_data();
    void localizedString();
    void localizations();
    void hostTablesLiveUnderMain();
    void setRootClearsWhatWasRead();
    void concurrentLookups();

private:
    void writeTable(const QString &root, const QString &lang, const QByteArray &data);

    std::unique_ptr<TestEnvironment> m_env;
};

void tst_StringTable::init()
{
    m_env = std::make_unique<TestEnvironment>();
}

void tst_StringTable::cleanup()
{
    m_env.reset();
}

void tst_StringTable::writeTable(const QString &root, const QString &lang, const QByteArray &data)
{
    writeFile(root + u'/' + lang + QStringLiteral(".lproj/Localizable.strings"), data);
}

void tst_StringTable::parse_data()
{
    QTest::addColumn<QByteArray>("data");
    QTest::addColumn<Entries>("expected");
    QTest::addColumn<int>("expectedErrorLine"); // 0: well formed

    QTest::newRow("escapes")
        << QByteArray(R"("a" = "q\"b\\c\nd\te\u00e9\U00E8";)")
        << Entries{{"a", QStringLiteral("q\"b\\c\nd\te\u00e9\u00e8")}} << 0;
    QTest::newRow("surrogate pair from two escapes")
        << QByteArray(R"("smile" = "\uD83D\uDE00";)")
        << Entries{{"smile", QStringLiteral("\U0001F600")}} << 0;
    QTest::newRow("= and ; inside quotes")
        << QByteArray(R"("k=1;" = "a = b; c";)") << Entries{{"k=1;", "a = b; c"}} << 0;
    QTest::newRow("comment markers inside quotes are text")
        << QByteArray(R"("url" = "http://example.test/*x*/";)")
        << Entries{{"url", "http://example.test/*x*/"}} << 0;
    QTest::newRow("line and block comments")
        << QByteArray("// heading\n/* a\n   block */ \"a\" = /* inline */ \"1\"; // tail\n\"b\"=\"2\";")
        << Entries{{"a", "1"}, {"b", "2"}} << 0;
    QTest::newRow("blank lines and CRLF")
        << QByteArray("\r\n\r\n\"a\" = \"1\";\r\n\r\n\"b\" = \"2\";\r\n")
        << Entries{{"a", "1"}, {"b", "2"}} << 0;
    QTest::newRow("line break inside quotes kept")
        << QByteArray("\"a\" = \"one\ntwo\";") << Entries{{"a", "one\ntwo"}} << 0;
    QTest::newRow("duplicate key: later wins")
        << QByteArray("\"a\" = \"old\";\n\"a\" = \"new\";") << Entries{{"a", "new"}} << 0;
    QTest::newRow("unquoted key and text")
        << QByteArray("plain_key = plain.value-1;") << Entries{{"plain_key", "plain.value-1"}} << 0;
    QTest::newRow("key alone maps to itself")
        << QByteArray("\"OK\";") << Entries{{"OK", "OK"}} << 0;
    QTest::newRow("UTF-8 with byte-order mark")
        << QByteArray("\xEF\xBB\xBF\"a\" = \"Espa\xC3\xB1ol\";") << Entries{{"a", QStringLiteral("Español")}} << 0;
    QTest::newRow("UTF-16 little endian with byte-order mark")
        << utf16(QStringLiteral("/* c */\n\"a\" = \"Espa\u00f1ol \U0001F600\";\n"), QStringConverter::Utf16LE)
        << Entries{{"a", QStringLiteral("Español \U0001F600")}} << 0;
    QTest::newRow("UTF-16 big endian with byte-order mark")
        << utf16(QStringLiteral("\"a\" = \"1\";"), QStringConverter::Utf16BE) << Entries{{"a", "1"}} << 0;
    QTest::newRow("empty file") << QByteArray() << Entries{} << 0;
    QTest::newRow("only comments and blanks") << QByteArray("// nothing\n/* here */\n\n") << Entries{} << 0;

    QTest::newRow("missing '=': earlier entries kept")
        << QByteArray("\"a\" = \"1\";\n\"b\" = \"2\";\n\"c\" \"3\";\n\"d\" = \"4\";")
        << Entries{{"a", "1"}, {"b", "2"}} << 3;
    QTest::newRow("missing ';' reported on its own line")
        << QByteArray("\"a\" = \"1\"\n\n\"b\" = \"2\";") << Entries{} << 1;
    QTest::newRow("stray character between entries")
        << QByteArray("\"a\" = \"1\";\n@\n\"b\" = \"2\";") << Entries{{"a", "1"}} << 2;
    QTest::newRow("truncated inside a text")
        << QByteArray("\"a\" = \"1\";\n\"b\" = \"tru") << Entries{{"a", "1"}} << 2;
    QTest::newRow("truncated after '='")
        << QByteArray("\"a\" = \"1\";\n\n\"b\" =") << Entries{{"a", "1"}} << 3;
    QTest::newRow("block comment never closed")
        << QByteArray("\"a\" = \"1\";\n/* open\n\"b\" = \"2\";") << Entries{{"a", "1"}} << 2;
    QTest::newRow("short \\u escape")
        << QByteArray("\"a\" = \"1\";\n\"b\" = \"\\u12G4\";") << Entries{{"a", "1"}} << 2;
    QTest::newRow("invalid UTF-8 stops at its line")
        << QByteArray("\"a\" = \"1\";\n\"b\" = \"\xC3\x28\";\n\"c\" = \"3\";") << Entries{{"a", "1"}} << 2;
    QTest::newRow("invalid UTF-8 after the last entry")
        << QByteArray("\"a\" = \"1\";\n\n\xFF") << Entries{{"a", "1"}} << 3;
}

void tst_StringTable::parse()
{
    QFETCH(QByteArray, data);
    QFETCH(Entries, expected);
    QFETCH(int, expectedErrorLine);

    QString error = QStringLiteral("stale");
    const StringTable table = StringTable::parse(data, &error);
    QCOMPARE(entriesOf(table), expected);
    QCOMPARE(table.size(), expected.size());
    QCOMPARE(table.isEmpty(), expected.isEmpty());
    if (expectedErrorLine == 0) {
        QVERIFY2(error.isEmpty(), qPrintable(error));
    } else {
        QVERIFY2(errorLine(error) == expectedErrorLine, qPrintable(error));
    }
}

void tst_StringTable::emptyTextIsPresentNotAbsent()
{
    const StringTable table = StringTable::parse("\"empty\" = \"\";");
    QVERIFY(table.contains(QStringLiteral("empty")));
    QVERIFY(table.value(QStringLiteral("empty")).isEmpty());
    QVERIFY(!table.value(QStringLiteral("empty")).isNull());
    QVERIFY(table.value(QStringLiteral("absent")).isNull());
    QVERIFY(!table.contains(QStringLiteral("absent")));
}

void tst_StringTable::garbageGivesAnErrorNotACrash_data()
{
    QTest::addColumn<QByteArray>("data");

    QByteArray allBytes;
    for (int i = 0; i < 256; ++i)
        allBytes.append(char(i));
    QByteArray noise;
    quint32 state = 12345;
    for (int i = 0; i < 4096; ++i) {
        state = state * 1103515245u + 12345u;
        noise.append(char(state >> 24));
    }

    QTest::newRow("every byte value") << allBytes;
    QTest::newRow("pseudo-random bytes") << noise;
    QTest::newRow("an image header") << QByteArray("\x89PNG\r\n\x1A\n\0\0\0\rIHDR", 16);
    QTest::newRow("UTF-16 with an odd byte count") << QByteArray("\xFF\xFE\"\0a\0\"\0=", 9);
    QTest::newRow("quote then NUL") << QByteArray("\"a\0", 3);
}

void tst_StringTable::garbageGivesAnErrorNotACrash()
{
    QFETCH(QByteArray, data);
    QString error;
    const StringTable table = StringTable::parse(data, &error);
    QVERIFY(!error.isEmpty());
    QVERIFY(errorLine(error) >= 1);
    QCOMPARE(table.keys().size(), table.size());
}

void tst_StringTable::loadLogsAndFallsBack()
{
    QString error;
    QTest::ignoreMessage(QtWarningMsg, QRegularExpression(QStringLiteral("StringTable: cannot read .*missing.strings")));
    QVERIFY(StringTable::load(m_env->filePath(QStringLiteral("missing.strings")), &error).isEmpty());
    QVERIFY(error.contains(QStringLiteral("missing.strings")));

    const QString broken = m_env->filePath(QStringLiteral("broken.strings"));
    writeFile(broken, "\"a\" = \"1\";\n\"b\" = ;\n");
    QTest::ignoreMessage(QtWarningMsg, QRegularExpression(QStringLiteral("broken.strings line 2: .* kept 1 entries")));
    const StringTable table = StringTable::load(broken, &error);
    QCOMPARE(table.value(QStringLiteral("a")), QStringLiteral("1"));
    QVERIFY2(error.contains(QStringLiteral("line 2")), qPrintable(error));
}

void tst_StringTable::pathForLocalization_data()
{
    QTest::addColumn<QString>("lang");
    QTest::addColumn<bool>("found");

    QTest::newRow("English folder") << "en" << true;
    QTest::newRow("Spanish folder without a table") << "es" << true;
    QTest::newRow("no folder") << "fr" << false;
    QTest::newRow("empty language") << "" << false;
    QTest::newRow("a file, not a folder") << "pt" << false;
    QTest::newRow("path out of the root") << "../outside" << false;
    QTest::newRow("nested path") << "en.lproj/x" << false;
}

void tst_StringTable::pathForLocalization()
{
    QFETCH(QString, lang);
    QFETCH(bool, found);

    const QString root = m_env->filePath(QStringLiteral("bundle"));
    writeTable(root, QStringLiteral("en"), "\"a\" = \"1\";");
    QVERIFY(QDir().mkpath(root + QStringLiteral("/es.lproj")));
    QVERIFY(QDir().mkpath(root + QStringLiteral("/en.lproj/x.lproj")));
    QVERIFY(QDir().mkpath(m_env->filePath(QStringLiteral("outside.lproj"))));
    writeFile(root + QStringLiteral("/pt.lproj"), "not a folder");

    const LocalizedBundle bundle(root);
    const QString path = bundle.pathForLocalization(lang);
    if (found)
        QCOMPARE(path, root + u'/' + lang + QStringLiteral(".lproj"));
    else
        QVERIFY2(path.isNull(), qPrintable(path));
    // A second answer comes from what was read and must be the same.
    QCOMPARE(bundle.pathForLocalization(lang), path);
}

void tst_StringTable::localizedString_data()
{
    QTest::addColumn<QString>("key");
    QTest::addColumn<QString>("value");
    QTest::addColumn<QString>("lang");
    QTest::addColumn<QString>("expected");

    QTest::newRow("table text wins over the value") << "start" << "Fallback" << "es" << "Iniciar";
    QTest::newRow("absent key gives the value") << "absent" << "Fallback" << "es" << "Fallback";
    QTest::newRow("absent key, empty value gives the key") << "absent" << "" << "es" << "absent";
    QTest::newRow("absent key, null value gives the key") << "absent" << QString() << "es" << "absent";
    QTest::newRow("an empty text is an answer") << "blank" << "Fallback" << "es" << "";
    QTest::newRow("folder without a table gives the value") << "start" << "Fallback" << "fr" << "Fallback";
    QTest::newRow("no folder, no value gives the key") << "start" << "" << "missing" << "start";
}

void tst_StringTable::localizedString()
{
    QFETCH(QString, key);
    QFETCH(QString, value);
    QFETCH(QString, lang);
    QFETCH(QString, expected);

    const QString root = m_env->filePath(QStringLiteral("bundle"));
    writeTable(root, QStringLiteral("es"), "\"start\" = \"Iniciar\";\n\"blank\" = \"\";");
    QVERIFY(QDir().mkpath(root + QStringLiteral("/fr.lproj")));

    const LocalizedBundle bundle(root);
    const QString path = bundle.pathForLocalization(lang);
    const QString text = bundle.localizedString(key, value, path);
    QCOMPARE(text, expected);
    QCOMPARE(text.isNull(), false);
}

void tst_StringTable::localizations()
{
    const QString root = m_env->filePath(QStringLiteral("bundle"));
    writeTable(root, QStringLiteral("es"), "");
    writeTable(root, QStringLiteral("en"), "");
    QVERIFY(QDir().mkpath(root + QStringLiteral("/pt-BR.lproj")));
    QVERIFY(QDir().mkpath(root + QStringLiteral("/Base")));
    writeFile(root + QStringLiteral("/de.lproj"), "a file");

    QCOMPARE(LocalizedBundle(root).localizations(), (QStringList{"en", "es", "pt-BR"}));
    QVERIFY(LocalizedBundle(m_env->filePath(QStringLiteral("nowhere"))).localizations().isEmpty());
}

void tst_StringTable::hostTablesLiveUnderMain()
{
    // This test compiles a host table into itself under ":/main", as a host
    // application does; the kit's own tables are not linked here.
    QCOMPARE(LocalizedBundle::main().root(), QStringLiteral(":/main/lproj"));
    QCOMPARE(LocalizedBundle::framework().root(), QStringLiteral(":/lproj"));
    QCOMPARE(&LocalizedBundle::main(), &LocalizedBundle::main());

    LocalizedBundle &host = LocalizedBundle::main();
    const QString en = host.pathForLocalization(QStringLiteral("en"));
    QCOMPARE(en, QStringLiteral(":/main/lproj/en.lproj"));
    QCOMPARE(host.localizedString(QStringLiteral("host_greeting"), QString(), en),
             QStringLiteral("Hello from the host"));
    QCOMPARE(host.localizations(), QStringList{"en"});

    LocalizedBundle &kit = LocalizedBundle::framework();
    QVERIFY(kit.pathForLocalization(QStringLiteral("en")).isNull());
    QCOMPARE(kit.localizedString(QStringLiteral("host_greeting"), QString(), kit.pathForLocalization(QStringLiteral("en"))),
             QStringLiteral("host_greeting"));

    // Moved for a test and back.
    const QString root = m_env->filePath(QStringLiteral("bundle"));
    writeTable(root, QStringLiteral("en"), "\"host_greeting\" = \"Moved\";");
    host.setRoot(root);
    QCOMPARE(host.localizedString(QStringLiteral("host_greeting"), QString(), host.pathForLocalization(QStringLiteral("en"))),
             QStringLiteral("Moved"));
    host.setRoot(QStringLiteral(":/main/lproj"));
    QCOMPARE(host.localizedString(QStringLiteral("host_greeting"), QString(), host.pathForLocalization(QStringLiteral("en"))),
             QStringLiteral("Hello from the host"));
}

void tst_StringTable::setRootClearsWhatWasRead()
{
    const QString root = m_env->filePath(QStringLiteral("bundle"));
    writeTable(root, QStringLiteral("en"), "\"a\" = \"first\";");
    LocalizedBundle bundle(root);
    const auto lookup = [&bundle](const QString &lang) {
        return bundle.localizedString(QStringLiteral("a"), QString(), bundle.pathForLocalization(lang));
    };
    QCOMPARE(lookup(QStringLiteral("en")), QStringLiteral("first"));
    QCOMPARE(lookup(QStringLiteral("es")), QStringLiteral("a"));

    // Tables and folders are read once: changes on disk are not seen...
    writeTable(root, QStringLiteral("en"), "\"a\" = \"second\";");
    writeTable(root, QStringLiteral("es"), "\"a\" = \"segundo\";");
    QCOMPARE(lookup(QStringLiteral("en")), QStringLiteral("first"));
    QCOMPARE(lookup(QStringLiteral("es")), QStringLiteral("a"));
    const std::shared_ptr<const StringTable> before = bundle.table(bundle.pathForLocalization(QStringLiteral("en")));

    // ...until the root is set again, even to the same folder.
    bundle.setRoot(root);
    QCOMPARE(bundle.root(), root);
    QCOMPARE(lookup(QStringLiteral("en")), QStringLiteral("second"));
    QCOMPARE(lookup(QStringLiteral("es")), QStringLiteral("segundo"));
    // A table handed out earlier is unchanged by the re-read.
    QCOMPARE(before->value(QStringLiteral("a")), QStringLiteral("first"));
}

void tst_StringTable::concurrentLookups()
{
    // Two roots with the same texts: lookups from many threads, while the
    // root keeps changing, must always find the right text.
    const QStringList langs{"en", "es", "fr"};
    const int keyCount = 50;
    const auto textFor = [](const QString &lang, int i) {
        return QStringLiteral("%1 text %2").arg(lang).arg(i);
    };
    QStringList roots{m_env->filePath(QStringLiteral("one")), m_env->filePath(QStringLiteral("two"))};
    for (const QString &root : roots) {
        for (const QString &lang : langs) {
            QByteArray data;
            for (int i = 0; i < keyCount; ++i)
                data += QStringLiteral("\"key%1\" = \"%2\";\n").arg(i).arg(textFor(lang, i)).toUtf8();
            writeTable(root, lang, data);
        }
    }

    LocalizedBundle bundle(roots[0]);
    std::atomic<int> wrong{0};
    std::atomic<bool> running{true};
    std::vector<std::thread> readers;
    for (int t = 0; t < 8; ++t) {
        readers.emplace_back([&, t] {
            for (int n = 0; n < 3000; ++n) {
                const QString &lang = langs[(n + t) % langs.size()];
                const int i = (n * 7 + t) % keyCount;
                const QString text = bundle.localizedString(QStringLiteral("key%1").arg(i), QString(),
                                                            bundle.pathForLocalization(lang));
                if (text != textFor(lang, i))
                    ++wrong;
            }
        });
    }
    std::thread switcher([&] {
        int n = 0;
        while (running)
            bundle.setRoot(roots[++n % 2]);
    });
    for (std::thread &reader : readers)
        reader.join();
    running = false;
    switcher.join();
    QCOMPARE(wrong.load(), 0);
}

QTEST_GUILESS_MAIN(tst_StringTable)
#include "tst_StringTable.moc"
