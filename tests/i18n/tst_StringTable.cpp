#include "platform/foundation/LocalizedBundle.h"
#include "platform/foundation/StringTable.h"

#include "TestEnvironment.h"

#include <QDir>
#include <QFile>
#include <QStringEncoder>
#include <QtTest>

#include <atomic>
#include <thread>
#include <vector>

using Brightmere::LocalizedBundle;
using Brightmere::StringTable;

using Entries = QMap<QString, QString>;

namespace {

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

// Garbage input is the fuzz replay's (tests/fuzz/corpus/string_table).
class tst_StringTable : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init()
    {
        m_env = std::make_unique<TestEnvironment>();
        m_root = m_env->filePath(QStringLiteral("bundle"));
    }
    void cleanup() { m_env.reset(); }

    // Defined below the class: moc loses its way in the raw strings of its rows.
    void parse_data();

    void parse()
    {
        QFETCH(QByteArray, data);
        QFETCH(Entries, expected);
        QFETCH(int, errorLine);
        QString error = QStringLiteral("stale");
        const StringTable table = StringTable::parse(data, &error);
        Entries entries;
        for (const QString &key : table.keys())
            entries.insert(key, table.value(key));
        QCOMPARE(entries, expected);
        QCOMPARE(table.size(), expected.size());
        const QString prefix = errorLine ? QStringLiteral("line %1: ").arg(errorLine) : QString();
        QVERIFY2(errorLine ? error.startsWith(prefix) : error.isEmpty(), qPrintable(error));
    }

    void pathsAndLookups()
    {
        writeTable(QStringLiteral("en"), "\"a\" = \"1\";");
        writeTable(QStringLiteral("es"), "\"start\" = \"Iniciar\";\n\"blank\" = \"\";");
        QVERIFY(QDir().mkpath(m_root + QStringLiteral("/fr.lproj")));
        QVERIFY(QDir().mkpath(m_root + QStringLiteral("/en.lproj/x.lproj")));
        QVERIFY(QDir().mkpath(m_env->filePath(QStringLiteral("outside.lproj"))));
        writeFile(m_root + QStringLiteral("/pt.lproj"), "not a folder");
        const LocalizedBundle bundle(m_root);
        QCOMPARE(bundle.localizations(), (QStringList{"en", "es", "fr"}));
        // A folder with or without a table is found; nothing else is, nor a path out of the root.
        for (const QString lang : {"en", "fr", "de", "", "pt", "../outside", "en.lproj/x"}) {
            const QString path = bundle.pathForLocalization(lang);
            const bool found = lang == "en" || lang == "fr";
            QCOMPARE(path, found ? m_root + u'/' + lang + QStringLiteral(".lproj") : QString());
            QCOMPARE(path.isNull(), !found);
            QCOMPARE(bundle.pathForLocalization(lang), path); // the second answer comes from what was read
        }
        // Key, value, language, text.
        const QList<std::array<QString, 4>> lookups{
            {"start", "Fallback", "es", "Iniciar"},   // the table's text wins over the value
            {"absent", "Fallback", "es", "Fallback"}, // an absent key gives the value...
            {"absent", "", "es", "absent"},           // ...or, with none, the key
            {"blank", "Fallback", "es", ""},          // an empty text is an answer
            {"start", "Fallback", "fr", "Fallback"},  // a folder without a table
            {"start", QString(), "missing", "start"}, // no folder, no value
        };
        for (const auto &[key, value, lang, expected] : lookups) {
            const QString text = bundle.localizedString(key, value, bundle.pathForLocalization(lang));
            QVERIFY2(text == expected && !text.isNull(), qPrintable(key + '/' + lang + ": " + text));
        }
    }

    void hostTablesLiveUnderMain()
    {
        // This test compiles a host table into itself under ":/main", as a host
        // application does; the kit's own tables are not linked here.
        LocalizedBundle &host = LocalizedBundle::main();
        const auto greeting = [](LocalizedBundle &bundle) {
            return bundle.localizedString(QStringLiteral("host_greeting"), QString(),
                                          bundle.pathForLocalization(QStringLiteral("en")));
        };
        QCOMPARE(host.root(), QStringLiteral(":/main/lproj"));
        QCOMPARE(greeting(host), QStringLiteral("Hello from the host"));
        QCOMPARE(greeting(LocalizedBundle::framework()), QStringLiteral("host_greeting"));
    }

    void setRootClearsWhatWasRead()
    {
        writeTable(QStringLiteral("en"), "\"a\" = \"first\";");
        LocalizedBundle bundle(m_root);
        const auto lookup = [&bundle](const QString &lang) {
            return bundle.localizedString(QStringLiteral("a"), QString(), bundle.pathForLocalization(lang));
        };
        QCOMPARE(lookup(QStringLiteral("en")), QStringLiteral("first"));
        QCOMPARE(lookup(QStringLiteral("es")), QStringLiteral("a"));
        // Tables and folders are read once: changes on disk are not seen...
        writeTable(QStringLiteral("en"), "\"a\" = \"second\";");
        writeTable(QStringLiteral("es"), "\"a\" = \"segundo\";");
        QCOMPARE(lookup(QStringLiteral("en")), QStringLiteral("first"));
        const std::shared_ptr<const StringTable> before = bundle.table(bundle.pathForLocalization(QStringLiteral("en")));
        // ...until the root is set again, even to the same folder.
        bundle.setRoot(m_root);
        QCOMPARE(lookup(QStringLiteral("en")), QStringLiteral("second"));
        QCOMPARE(lookup(QStringLiteral("es")), QStringLiteral("segundo"));
        // A table handed out earlier is unchanged by the re-read.
        QCOMPARE(before->value(QStringLiteral("a")), QStringLiteral("first"));
    }

    void concurrentLookups()
    {
        // Two roots with the same texts: lookups from many threads, while the
        // root keeps changing, must always find the right text.
        const QStringList langs{"en", "es", "fr"};
        const auto textFor = [](const QString &lang, int i) { return QStringLiteral("%1 text %2").arg(lang).arg(i); };
        const QStringList roots{m_env->filePath(QStringLiteral("one")), m_env->filePath(QStringLiteral("two"))};
        for (const QString &root : roots) {
            for (const QString &lang : langs) {
                QByteArray data;
                for (int i = 0; i < 50; ++i)
                    data += QStringLiteral("\"key%1\" = \"%2\";\n").arg(i).arg(textFor(lang, i)).toUtf8();
                writeFile(root + u'/' + lang + QStringLiteral(".lproj/Localizable.strings"), data);
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
                    const int i = (n * 7 + t) % 50;
                    if (bundle.localizedString(QStringLiteral("key%1").arg(i), QString(),
                                               bundle.pathForLocalization(lang))
                        != textFor(lang, i))
                        ++wrong;
                }
            });
        }
        std::thread switcher([&] {
            for (int n = 0; running; ++n)
                bundle.setRoot(roots[n % 2]);
        });
        for (std::thread &reader : readers)
            reader.join();
        running = false;
        switcher.join();
        QCOMPARE(wrong.load(), 0);
    }

private:
    void writeTable(const QString &lang, const QByteArray &data)
    {
        writeFile(m_root + u'/' + lang + QStringLiteral(".lproj/Localizable.strings"), data);
    }

    std::unique_ptr<TestEnvironment> m_env;
    QString m_root;
};

void tst_StringTable::parse_data()
{
    QTest::addColumn<QByteArray>("data");
    QTest::addColumn<Entries>("expected");
    QTest::addColumn<int>("errorLine"); // 0: well formed
    QTest::newRow("escapes") << QByteArray(R"("a" = "q\"b\\c\nd\te\u00e9\U00E8";)")
                             << Entries{{"a", QStringLiteral("q\"b\\c\nd\te\u00e9\u00e8")}} << 0;
    QTest::newRow("surrogate pair from two escapes")
        << QByteArray(R"("smile" = "\uD83D\uDE00";)") << Entries{{"smile", QStringLiteral("\U0001F600")}} << 0;
    QTest::newRow("=, ; and comment markers inside quotes")
        << QByteArray(R"("k=1;" = "a = b; /*x*/ c";)") << Entries{{"k=1;", "a = b; /*x*/ c"}} << 0;
    QTest::newRow("comments, CRLF, a line break in a text, a later duplicate")
        << QByteArray("// heading\r\n/* a\n block */ \"a\" = /* in */ \"1\"; // tail\r\n\"b\"=\"x\ny\";\n\"a\" = \"2\";")
        << Entries{{"a", "2"}, {"b", "x\ny"}} << 0;
    QTest::newRow("unquoted key and text; a key alone maps to itself")
        << QByteArray("plain_key = plain.value-1;\n\"OK\";") << Entries{{"OK", "OK"}, {"plain_key", "plain.value-1"}}
        << 0;
    QTest::newRow("UTF-8 with byte-order mark")
        << QByteArray("\xEF\xBB\xBF\"a\" = \"Espa\xC3\xB1ol\";") << Entries{{"a", QStringLiteral("Español")}} << 0;
    QTest::newRow("UTF-16 little endian with byte-order mark")
        << utf16(QStringLiteral("/* c */\n\"a\" = \"Espa\u00f1ol \U0001F600\";\n"), QStringConverter::Utf16LE)
        << Entries{{"a", QStringLiteral("Español \U0001F600")}} << 0;
    QTest::newRow("UTF-16 big endian") << utf16(QStringLiteral("\"a\" = \"1\";"), QStringConverter::Utf16BE)
                                       << Entries{{"a", "1"}} << 0;
    QTest::newRow("empty file") << QByteArray() << Entries{} << 0;
    QTest::newRow("missing '=': earlier entries kept")
        << QByteArray("\"a\" = \"1\";\n\"b\" = \"2\";\n\"c\" \"3\";\n\"d\" = \"4\";")
        << Entries{{"a", "1"}, {"b", "2"}} << 3;
    QTest::newRow("missing ';' reported on its own line")
        << QByteArray("\"a\" = \"1\"\n\n\"b\" = \"2\";") << Entries{} << 1;
    QTest::newRow("truncated after '='") << QByteArray("\"a\" = \"1\";\n\n\"b\" =") << Entries{{"a", "1"}} << 3;
    QTest::newRow("block comment never closed")
        << QByteArray("\"a\" = \"1\";\n/* open\n\"b\" = \"2\";") << Entries{{"a", "1"}} << 2;
    QTest::newRow("invalid UTF-8 stops at its line")
        << QByteArray("\"a\" = \"1\";\n\"b\" = \"\xC3\x28\";\n\"c\" = \"3\";") << Entries{{"a", "1"}} << 2;
}

QTEST_GUILESS_MAIN(tst_StringTable)
#include "tst_StringTable.moc"
