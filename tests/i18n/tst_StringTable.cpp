#include <Brightmere/platform/foundation/LocalizedBundle.h>
#include <Brightmere/platform/foundation/StringFormat.h>
#include <Brightmere/platform/foundation/StringTable.h>
#include <Brightmere/resources/FrameworkBundle.h>

#include "I18NTestHelpers.h"
#include "TestEnvironment.h"

#include <QDir>
#include <QDirIterator>
#include <QFile>
#include <QRegularExpression>
#include <QStringEncoder>
#include <QtTest>

using Brightmere::LocalizedBundle;
using Brightmere::StringFormat;
using Brightmere::StringTable;

using Entries = QMap<QString, QString>;

namespace {

QByteArray utf16(const QString &text, QStringConverter::Encoding encoding)
{
    QStringEncoder encoder(encoding, QStringConverter::Flag::WriteBom);
    return encoder.encode(text);
}

struct KeyUse
{
    QString key;
    QString file;
    int line = 0;
};

// The keys a source file uses: literal first arguments of stringForCode( and
// stringForCodeWithDefault( (bare or in QStringLiteral( and the like), and
// every literal of a line whose comment is "// i18n-key", or
// "// i18n-key N..M" for a "%d" pattern standing for the keys N to M.
// Comments are not read for keys. Defined below the class, as the rows are.
QList<KeyUse> keysInSource(const QString &source, const QString &fileName);
// The same over every .h and .cpp file under root; file names are relative.
QList<KeyUse> keysInTree(const QString &root, int *fileCount = nullptr);
// printf directives of a text, in order ("%%" is not one). A '%' that starts
// no directive is returned as "%?".
QStringList placeholders(const QString &text);

} // namespace

// String tables read from files and bundles, and the kit's built-in tables
// against each other, the documentation and the keys the kit's sources use.
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

    // Which table a lookup reads is the manager's lookup order (tst_BMI18NManager).
    void localizationPaths()
    {
        writeTable(QStringLiteral("en"), "\"a\" = \"1\";");
        writeTable(QStringLiteral("es"), "\"a\" = \"2\";");
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
        QCOMPARE(greeting(host), QStringLiteral("Hello from the host"));
        QCOMPARE(greeting(LocalizedBundle::framework()), QStringLiteral("host_greeting"));
    }

    void initTestCase()
    {
        // The tables are resources of the kit's shared library; naming one of
        // its symbols makes sure it is loaded (and its resources registered).
        QVERIFY(QFile::exists(Brightmere::FrameworkBundle::resourcePath("lproj/en.lproj/Localizable.strings")));
        for (const QString lang : {"en", "es"}) {
            QFile file(QStringLiteral(":/lproj/%1.lproj/Localizable.strings").arg(lang));
            QVERIFY(file.open(QIODevice::ReadOnly));
            QString error;
            m_tables.insert(lang, StringTable::parse(file.readAll(), &error));
            QVERIFY2(error.isEmpty(), qPrintable(error));
            QVERIFY(m_tables.value(lang).size() > 50);
        }
    }

    void everyTextIsThereAndFinished()
    {
        const QStringList reference = m_tables.value("en").keys();
        QStringList faults;
        for (auto table = m_tables.cbegin(); table != m_tables.cend(); ++table) {
            const QString lang = table.key();
            if (table->keys() != reference)
                faults.append(lang + ": not the keys of en");
            for (const QString &key : reference) {
                const QString value = table->value(key);
                // Texts pass through the manager's placeholder rewriting.
                if (value.trimmed().isEmpty() || value.contains("PH_"))
                    faults.append(QStringLiteral("%1:%2 is blank or holds PH_").arg(lang, key));
                if (lang == "en" && value == key && key != "Mbps")
                    faults.append(QStringLiteral("en:%1 is its own key").arg(key));
                if (placeholders(value) != placeholders(text("en", key)) || placeholders(value).contains("%?"))
                    faults.append(QStringLiteral("%1:%2 has [%3], en has [%4]")
                                      .arg(lang, key, placeholders(value).join(u' '),
                                           placeholders(text("en", key)).join(u' ')));
            }
        }
        QVERIFY2(faults.isEmpty(), qPrintable(faults.join(u'\n')));
    }

    void integerFormats()
    {
        for (const QString lang : {"en", "es"}) {
            // The screens fill these with one integer.
            for (const QString key : {"spot", "fairzones_record_averaged_over_format"}) {
                QCOMPARE(placeholders(text(lang, key)), QStringList{"%d"});
                const QString filled = StringFormat::print(text(lang, key), 37);
                QVERIFY2(filled.contains("37") && !filled.contains(u'%'), qPrintable(filled));
            }
            // Reopening a run finds the next default number by reading each
            // spot name from its first blank on; a default name must survive that.
            static const QRegularExpression leadingNumber(QStringLiteral("^\\s*(\\d+)"));
            for (int number : {1, 8, 12, 105}) {
                const QString name = StringFormat::print(text(lang, "spot"), number);
                const qsizetype blank = name.indexOf(u' ');
                QVERIFY2(blank >= 0, qPrintable(name));
                QCOMPARE(leadingNumber.match(name.mid(blank)).captured(1).toInt(), number);
            }
        }
    }

    void keysDocumentedMatchTheTable()
    {
        QFile doc(QStringLiteral(BRIGHTMERE_DOC_DIR "/localisation-keys.md"));
        QVERIFY2(doc.open(QIODevice::ReadOnly), qPrintable(doc.fileName()));
        const QString content = QString::fromUtf8(doc.readAll());
        const qsizetype section = content.indexOf(QStringLiteral("\n## Keys"));
        QVERIFY(section > 0);
        static const QRegularExpression row(QStringLiteral("^\\| `([^`]+)` \\|"), QRegularExpression::MultilineOption);
        QStringList documented;
        for (auto it = row.globalMatch(content, section); it.hasNext();)
            documented.append(it.next().captured(1));
        documented.sort();
        QCOMPARE(documented, m_tables.value("en").keys());
    }

    void keysUsedInSourceHaveTexts()
    {
        int files = 0;
        const QList<KeyUse> uses = keysInTree(QStringLiteral(BRIGHTMERE_SOURCE_DIR), &files);
        // A scanner that finds nothing would pass anything.
        QVERIFY2(files > 20 && uses.size() > 100, qPrintable(QStringLiteral("%1 keys in %2 files").arg(uses.size()).arg(files)));
        QStringList missing;
        for (const KeyUse &use : uses) {
            for (auto table = m_tables.cbegin(); table != m_tables.cend(); ++table) {
                if (!table->contains(use.key))
                    missing.append(QStringLiteral("\"%1\" in %2 (%3:%4)").arg(use.key, table.key(), use.file).arg(use.line));
            }
        }
        missing.removeDuplicates();
        QVERIFY2(missing.isEmpty(), qPrintable("keys without a built-in text:\n  " + missing.join("\n  ")));
    }

private:
    QString text(const QString &lang, const QString &key) const { return m_tables.value(lang).value(key); }
    void writeTable(const QString &lang, const QByteArray &data)
    {
        writeFile(m_root + u'/' + lang + QStringLiteral(".lproj/Localizable.strings"), data);
    }

    std::unique_ptr<TestEnvironment> m_env;
    QString m_root;
    QHash<QString, StringTable> m_tables;
};

void tst_StringTable::parse_data()
{
    QTest::addColumn<QByteArray>("data");
    QTest::addColumn<Entries>("expected");
    QTest::addColumn<int>("errorLine"); // 0: well formed
    QTest::newRow("escapes") << QByteArray(R"("a" = "q\"b\\c\nd\te\u00e9\U00E8";)")
                             << Entries{{"a", QStringLiteral("q\"b\\c\nd\te\u00e9\u00e8")}} << 0;
    QTest::newRow("=, ; and comment markers inside quotes")
        << QByteArray(R"("k=1;" = "a = b; /*x*/ c";)") << Entries{{"k=1;", "a = b; /*x*/ c"}} << 0;
    QTest::newRow("comments, CRLF, a line break in a text, a later duplicate")
        << QByteArray("// heading\r\n/* a\n block */ \"a\" = /* in */ \"1\"; // tail\r\n\"b\"=\"x\ny\";\n\"a\" = \"2\";")
        << Entries{{"a", "2"}, {"b", "x\ny"}} << 0;
    QTest::newRow("UTF-8 with byte-order mark")
        << QByteArray("\xEF\xBB\xBF\"a\" = \"Espa\xC3\xB1ol\";") << Entries{{"a", QStringLiteral("Español")}} << 0;
    QTest::newRow("UTF-16 big endian") << utf16(QStringLiteral("\"a\" = \"1\";"), QStringConverter::Utf16BE)
                                       << Entries{{"a", "1"}} << 0;
    QTest::newRow("empty file") << QByteArray() << Entries{} << 0;
    QTest::newRow("missing '=': earlier entries kept")
        << QByteArray("\"a\" = \"1\";\n\"b\" = \"2\";\n\"c\" \"3\";\n\"d\" = \"4\";")
        << Entries{{"a", "1"}, {"b", "2"}} << 3;
    QTest::newRow("invalid UTF-8 stops at its line")
        << QByteArray("\"a\" = \"1\";\n\"b\" = \"\xC3\x28\";\n\"c\" = \"3\";") << Entries{{"a", "1"}} << 2;
}

namespace {

// The patterns are raw strings, kept out of the class: moc reads this file,
// and it loses its way in a raw string inside a macro argument.
int lineAt(const QString &text, qsizetype pos)
{
    return int(QStringView(text).left(pos).count(u'\n')) + 1;
}

QList<KeyUse> keysInSource(const QString &source, const QString &fileName)
{
    // Literals and comments, whichever starts first: a comment marker inside
    // a literal is text, a quote inside a comment is comment.
    static const QRegularExpression token(QString::fromUtf8(
        R"re("(?:[^"\\\n]|\\.)*"|'(?:[^'\\\n]|\\.)*'|//[^\n]*|/\*[\s\S]*?(?:\*/|$))re"));
    static const QRegularExpression call(QString::fromUtf8(
        R"(\bstringForCode(?:WithDefault)?\s*\(\s*)"
        R"((?:(?:QStringLiteral|QLatin1StringView|QLatin1String|QString::fromUtf8|QString::fromLatin1|QString)\s*\(\s*)?)"
        R"re(u?"((?:[^"\\\n]|\\.)*)")re"));
    static const QRegularExpression marker(QString::fromUtf8(R"(^\s*i18n-key(?:\s+(\d+)\.\.(\d+))?\s*$)"));
    static const QRegularExpression literal(QString::fromUtf8(R"re((?<![A-Za-z0-9_'])(?:u8|u|U|L)?"((?:[^"\\\n]|\\.)*)")re"));

    // The source with comments blanked out (line breaks kept, so positions
    // keep their line numbers), and the text of each line's line comment.
    QString code = source;
    QHash<int, QString> lineComments;
    for (auto it = token.globalMatch(source); it.hasNext();) {
        const QRegularExpressionMatch match = it.next();
        if (!match.captured().startsWith(u'/'))
            continue;
        if (match.captured().startsWith(QLatin1String("//")))
            lineComments.insert(lineAt(source, match.capturedStart()), match.captured().mid(2));
        for (qsizetype i = match.capturedStart(); i < match.capturedEnd(); ++i)
            code[i] = code[i] == u'\n' ? u'\n' : u' ';
    }

    QList<KeyUse> uses;
    for (auto it = call.globalMatch(code); it.hasNext();) {
        const QRegularExpressionMatch match = it.next();
        uses.append({match.captured(1), fileName, lineAt(code, match.capturedStart(1))});
    }
    const QStringList codeLines = code.split(u'\n');
    for (auto comment = lineComments.cbegin(); comment != lineComments.cend(); ++comment) {
        const QRegularExpressionMatch mark = marker.match(comment.value());
        if (!mark.hasMatch())
            continue;
        const bool numbered = mark.hasCaptured(1);
        for (auto it = literal.globalMatch(codeLines[comment.key() - 1]); it.hasNext();) {
            const QString text = it.next().captured(1);
            if (!numbered)
                uses.append({text, fileName, comment.key()});
            for (int number = mark.captured(1).toInt(); numbered && number <= mark.captured(2).toInt(); ++number)
                uses.append({QString(text).replace(QLatin1String("%d"), QString::number(number)), fileName,
                             comment.key()});
        }
    }
    return uses;
}

QList<KeyUse> keysInTree(const QString &root, int *fileCount)
{
    QList<KeyUse> uses;
    int files = 0;
    QDirIterator it(root, {QStringLiteral("*.h"), QStringLiteral("*.cpp")}, QDir::Files, QDirIterator::Subdirectories);
    while (it.hasNext()) {
        QFile file(it.next());
        if (!file.open(QIODevice::ReadOnly))
            continue;
        ++files;
        uses += keysInSource(QString::fromUtf8(file.readAll()), QDir(root).relativeFilePath(file.fileName()));
    }
    if (fileCount)
        *fileCount = files;
    return uses;
}

QStringList placeholders(const QString &text)
{
    static const QRegularExpression directive(QString::fromUtf8(
        R"(%(?:\d+\$)?[-+ #0']*(?:\d+|\*)?(?:\.(?:\d+|\*))?(?:hh|h|ll|l|q|L|z|t|j)?[@dDiuUxXoOfFeEgGcCsSaAp%])"));
    QStringList found;
    qsizetype pos = 0;
    while ((pos = text.indexOf(u'%', pos)) >= 0) {
        const QRegularExpressionMatch match = directive.match(text, pos, QRegularExpression::NormalMatch,
                                                              QRegularExpression::AnchorAtOffsetMatchOption);
        if (match.captured() != QLatin1String("%%"))
            found.append(match.hasMatch() ? match.captured() : QStringLiteral("%?"));
        pos = match.hasMatch() ? match.capturedEnd() : pos + 1;
    }
    return found;
}

} // namespace

QTEST_GUILESS_MAIN(tst_StringTable)
#include "tst_StringTable.moc"
