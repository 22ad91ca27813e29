#include "platform/foundation/LocalizedBundle.h"
#include "platform/foundation/StringFormat.h"
#include "platform/foundation/StringTable.h"
#include "resources/FrameworkBundle.h"

#include "LocalizationKeyScan.h"

#include <QFile>
#include <QRegularExpression>
#include <QTemporaryDir>
#include <QtTest>


using Brightmere::StringFormat;
using Brightmere::StringTable;
using namespace LocalizationKeyScan;

// The kit's built-in string tables against each other, the documentation and
// the keys the kit's sources use.
class tst_LocalizationKeys : public QObject
{
    Q_OBJECT

private Q_SLOTS:
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
        QVERIFY2(files > 20, qPrintable(QStringLiteral("only %1 source files under %2").arg(files).arg(BRIGHTMERE_SOURCE_DIR)));
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

    // The scan of the whole tree above is the real check; one case of each
    // kind the scanner must tell apart.
    void keyScanner()
    {
        const QString source =
            "stringForCode(QStringLiteral(\"start\"));\n{\"cancel\", \"ok\"}; // i18n-key\n// stringForCode(\"old\")";
        QTemporaryDir dir;
        QVERIFY(QDir(dir.path()).mkpath("screens"));
        QFile file(dir.filePath("screens/Snippet.cpp"));
        QVERIFY(file.open(QIODevice::WriteOnly));
        file.write(source.toUtf8());
        file.close();
        QStringList found;
        for (const KeyUse &use : keysInTree(dir.path())) {
            found.append(QStringLiteral("%1 %2:%3").arg(use.key, use.file).arg(use.line));
        }
        found.sort();
        QCOMPARE(found, (QStringList{"cancel screens/Snippet.cpp:2", "ok screens/Snippet.cpp:2",
                                     "start screens/Snippet.cpp:1"}));
    }

private:
    QString text(const QString &lang, const QString &key) const { return m_tables.value(lang).value(key); }

    QHash<QString, StringTable> m_tables;
};

QTEST_GUILESS_MAIN(tst_LocalizationKeys)
#include "tst_LocalizationKeys.moc"
