#include "platform/foundation/LocalizedBundle.h"
#include "platform/foundation/StringFormat.h"
#include "platform/foundation/StringTable.h"
#include "resources/FrameworkBundle.h"

#include "LocalizationKeyScan.h"

#include <QDirIterator>
#include <QFile>
#include <QRegularExpression>
#include <QTemporaryDir>
#include <QtTest>

#include <algorithm>

using Brightmere::LocalizedBundle;
using Brightmere::StringFormat;
using Brightmere::StringTable;

namespace {

const QStringList kLanguages{"en", "es"};

} // namespace

using namespace LocalizationKeyScan;

class tst_LocalizationKeys : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();

    void builtInTablesParse_data();
    void builtInTablesParse();
    void everyLanguageHasTheSameKeys();
    void placeholdersMatchAcrossLanguages();
    void integerFormats_data();
    void integerFormats();
    void defaultSpotNameReadsBackItsNumber_data();
    void defaultSpotNameReadsBackItsNumber();
    void keysDocumentedMatchTheTable();

    void keysUsedInSourceHaveTexts();
    void keyScanner_data();
    void keyScanner();

private:
    QString text(const QString &lang, const QString &key) const { return m_tables.value(lang).value(key); }

    QHash<QString, StringTable> m_tables;
};

void tst_LocalizationKeys::initTestCase()
{
    // The tables are resources of the kit's shared library; naming one of its
    // symbols makes sure it is loaded (and its resources registered).
    const QString en = Brightmere::FrameworkBundle::resourcePath(QStringLiteral("lproj/en.lproj/Localizable.strings"));
    QVERIFY2(QFile::exists(en), qPrintable(en));
    for (const QString &lang : kLanguages) {
        const QString path = LocalizedBundle::framework().pathForLocalization(lang);
        QVERIFY2(!path.isNull(), qPrintable(lang));
        m_tables.insert(lang, *LocalizedBundle::framework().table(path));
    }
}

void tst_LocalizationKeys::builtInTablesParse_data()
{
    QTest::addColumn<QString>("lang");
    for (const QString &lang : kLanguages)
        QTest::newRow(qPrintable(lang)) << lang;
}

void tst_LocalizationKeys::builtInTablesParse()
{
    QFETCH(QString, lang);
    QFile file(QStringLiteral(":/lproj/%1.lproj/Localizable.strings").arg(lang));
    QVERIFY(file.open(QIODevice::ReadOnly));
    QString error;
    const StringTable table = StringTable::parse(file.readAll(), &error);
    QVERIFY2(error.isEmpty(), qPrintable(error));
    QVERIFY(table.size() > 50);
    for (const QString &key : table.keys()) {
        const QString value = table.value(key);
        QVERIFY2(!value.trimmed().isEmpty(), qPrintable(lang + u':' + key));
        // Texts pass through the manager's placeholder rewriting.
        QVERIFY2(!value.contains(QStringLiteral("PH_")), qPrintable(lang + u':' + key));
        if (lang == QLatin1String("en"))
            QVERIFY2(value != key || key == QLatin1String("Mbps"), qPrintable(key));
    }
}

void tst_LocalizationKeys::everyLanguageHasTheSameKeys()
{
    const QStringList reference = m_tables.value(QStringLiteral("en")).keys();
    for (const QString &lang : kLanguages) {
        const QStringList keys = m_tables.value(lang).keys();
        QStringList missing, extra;
        std::set_difference(reference.cbegin(), reference.cend(), keys.cbegin(), keys.cend(), std::back_inserter(missing));
        std::set_difference(keys.cbegin(), keys.cend(), reference.cbegin(), reference.cend(), std::back_inserter(extra));
        QVERIFY2(missing.isEmpty() && extra.isEmpty(),
                 qPrintable(QStringLiteral("%1 lacks: %2; has more: %3")
                                .arg(lang, missing.join(u", "), extra.join(u", "))));
    }
}

void tst_LocalizationKeys::placeholdersMatchAcrossLanguages()
{
    QStringList faults;
    for (const QString &key : m_tables.value(QStringLiteral("en")).keys()) {
        const QStringList reference = placeholders(text(QStringLiteral("en"), key));
        if (reference.contains(QStringLiteral("%?")))
            faults.append(QStringLiteral("en:%1 has a stray '%'").arg(key));
        for (const QString &lang : kLanguages) {
            const QStringList found = placeholders(text(lang, key));
            if (found != reference)
                faults.append(QStringLiteral("%1:%2 has [%3], en has [%4]")
                                  .arg(lang, key, found.join(u' '), reference.join(u' ')));
        }
    }
    QVERIFY2(faults.isEmpty(), qPrintable(faults.join(u'\n')));
}

void tst_LocalizationKeys::integerFormats_data()
{
    QTest::addColumn<QString>("lang");
    QTest::addColumn<QString>("key");
    for (const QString &lang : kLanguages) {
        for (const char *key : {"spot", "fairzones_record_averaged_over_format"})
            QTest::addRow("%s %s", qPrintable(lang), key) << lang << QString::fromLatin1(key);
    }
}

void tst_LocalizationKeys::integerFormats()
{
    // The screens fill these with one integer.
    QFETCH(QString, lang);
    QFETCH(QString, key);
    const QString format = text(lang, key);
    QCOMPARE(placeholders(format), QStringList{"%d"});
    const QString filled = StringFormat::print(format, 37);
    QVERIFY2(filled.contains(QStringLiteral("37")) && !filled.contains(u'%'), qPrintable(filled));
}

void tst_LocalizationKeys::defaultSpotNameReadsBackItsNumber_data()
{
    QTest::addColumn<QString>("lang");
    QTest::addColumn<int>("number");
    for (const QString &lang : kLanguages) {
        for (int number : {1, 8, 12, 105})
            QTest::addRow("%s %d", qPrintable(lang), number) << lang << number;
    }
}

void tst_LocalizationKeys::defaultSpotNameReadsBackItsNumber()
{
    // Reopening a run finds the next default number by reading each spot
    // name from its first blank on; a default name must survive that.
    QFETCH(QString, lang);
    QFETCH(int, number);
    const QString name = StringFormat::print(text(lang, QStringLiteral("spot")), number);
    const qsizetype blank = name.indexOf(u' ');
    QVERIFY2(blank >= 0, qPrintable(name));
    QCOMPARE(atoi(QStringView(name).mid(blank)), number);
}

void tst_LocalizationKeys::keysDocumentedMatchTheTable()
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
    QCOMPARE(documented, m_tables.value(QStringLiteral("en")).keys());
}

void tst_LocalizationKeys::keysUsedInSourceHaveTexts()
{
    int files = 0;
    const QList<KeyUse> uses = keysInTree(QStringLiteral(BRIGHTMERE_SOURCE_DIR), &files);
    QVERIFY2(files > 20, qPrintable(QStringLiteral("only %1 source files under %2").arg(files).arg(BRIGHTMERE_SOURCE_DIR)));

    QStringList missing;
    for (const KeyUse &use : uses) {
        for (const QString &lang : kLanguages) {
            if (!m_tables.value(lang).contains(use.key))
                missing.append(QStringLiteral("\"%1\" in %2 (%3:%4)").arg(use.key, lang, use.file).arg(use.line));
        }
    }
    missing.removeDuplicates();
    QVERIFY2(missing.isEmpty(), qPrintable(QStringLiteral("keys without a built-in text:\n  ") + missing.join(QStringLiteral("\n  "))));
}

void tst_LocalizationKeys::keyScanner_data()
{
    QTest::addColumn<QString>("fileName");
    QTest::addColumn<QString>("source");
    QTest::addColumn<QStringList>("expected");

    const QString cpp = QStringLiteral("screens/Snippet.cpp");
    // One case of each kind the scanner must tell apart; the scan of the
    // whole tree (keysUsedInSourceHaveTexts) is the real check.
    QTest::newRow("a call, a marked table line and a comment")
        << cpp
        << "stringForCode(QStringLiteral(\"start\"));\n{\"cancel\", \"ok\"}; // i18n-key\n// stringForCode(\"old\")"
        << QStringList{"cancel", "ok", "start"};
}

void tst_LocalizationKeys::keyScanner()
{
    QFETCH(QString, fileName);
    QFETCH(QString, source);
    QFETCH(QStringList, expected);

    QTemporaryDir dir;
    QVERIFY(dir.isValid());
    QVERIFY(QDir(dir.path()).mkpath(QFileInfo(dir.filePath(fileName)).path()));
    QFile file(dir.filePath(fileName));
    QVERIFY(file.open(QIODevice::WriteOnly));
    file.write(source.toUtf8());
    file.close();

    QStringList found;
    for (const KeyUse &use : keysInTree(dir.path())) {
        found.append(use.key);
        QCOMPARE(use.file, fileName);
        QVERIFY(use.line >= 1 && use.line <= source.count(u'\n') + 1);
    }
    found.sort();
    found.removeDuplicates();
    QCOMPARE(found, expected);
}

QTEST_GUILESS_MAIN(tst_LocalizationKeys)
#include "tst_LocalizationKeys.moc"
