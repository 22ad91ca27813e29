// The reports and backups a host asks for: the CSV of a set and of a
// comparison (with its verdict), the PDF report, and backup and restore of
// the saved sets.
#include <Brightmere/reports/FZComparisonCsvWriter.h>
#include <Brightmere/reports/FZComparisonReportRows.h>
#include <Brightmere/reports/FZReportPdfWriter.h>
#include <Brightmere/reports/FZSpotsSetCsvWriter.h>
#include <Brightmere/reports/FZSpotsSetsBackup.h>

#include "BoundedRun.h"
#include "LogCapture.h"
#include "ReportFixtures.h"
#include "TestEnvironment.h"
#include <Brightmere/i18n/BMI18NManager.h>

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QRegularExpression>
#include <QtTest>

using namespace ReportFixtures;
using Set = FZHistoricalResultSpotsSet;

namespace {

QByteArray fileBytes(const QString &path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

// Page objects of a PDF: "/Type /Page", not the "/Type /Pages" tree.
int pdfPageCount(const QString &path)
{
    static const QRegularExpression page(QStringLiteral("/Type\\s*/Page(?![a-zA-Z])"));
    return int(QString::fromLatin1(fileBytes(path)).count(page));
}

// Spots of the second set measured a day after those of the first.
Set::Ptr dayLater(Set::Ptr set)
{
    for (const auto &s : set->mutableSpots())
        s->setTimeAfterTest(s->timeAfterTest() + 86400.0);
    return set;
}

// A backup holding the sets in this order, titles repeated as they come.
QByteArray backupOf(const Set::List &sets)
{
    QJsonArray all;
    for (const Set::Ptr &set : sets)
        all.append(QJsonDocument::fromJson(FZSpotsSetsBackup::backupJson({{set->name(), set}})).object().value("sets").toArray().first());
    QJsonObject root = QJsonDocument::fromJson(FZSpotsSetsBackup::backupJson({})).object();
    root.insert("sets", all);
    return QJsonDocument(root).toJson();
}

// "Title" is the set makeSet builds; "Title=n" differs from it by one speed.
Set::Ptr setFor(const QString &entry)
{
    const QString variant = entry.section(u'=', 1);
    const double speed = variant.isEmpty() ? 20.0 : variant == "other" ? 99.0 : variant.toDouble();
    return makeSet(entry.section(u'=', 0, 0), {"Kitchen", "Hall"}, {10.0, speed});
}

} // namespace

class tst_Reports : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init() { m_env = std::make_unique<TestEnvironment>(); }
    void cleanup()
    {
        m_env.reset();
        BMI18NManager::resetSharedInstanceForTesting();
    }

    void csvQuoting_data()
    {
        QTest::addColumn<QString>("label");
        QTest::addColumn<QString>("written");
        QTest::newRow("comma") << "Living room, east" << "\"Living room, east\"";
        QTest::newRow("double quotes") << "The \"big\" room" << "\"The \"\"big\"\" room\"";
        QTest::newRow("carriage return and line feed") << "Hall\r\nupstairs" << "\"Hall\r\nupstairs\"";
        QTest::newRow("leading blank kept") << " Porch" << "\" Porch\"";
        // Names from people and neighbours' access points: never a formula.
        QTest::newRow("formula") << "=HYPERLINK(\"http://x\",\"y\")" << "\"'=HYPERLINK(\"\"http://x\"\",\"\"y\"\")\"";
        QTest::newRow("minus") << "-2+3" << "\"'-2+3\"";
        QTest::newRow("at") << "@SUM(A1)" << "\"'@SUM(A1)\"";
        QTest::newRow("tab") << "\t=1" << "\"'\t=1\"";
    }
    void csvQuoting()
    {
        QFETCH(QString, label);
        const QByteArray csv = FZSpotsSetCsvWriter::csvForSet(makeSet(QStringLiteral("Flat"), {label}, {12.5}));
        QVERIFY(csv.startsWith("\xEF\xBB\xBF"));
        QVERIFY2(QString::fromUtf8(csv).contains("\r\n" + fetched<QString>("written") + ",12.50,"), csv.constData());
        const QList<QStringList> records = parseCsv(csv);
        QCOMPARE(records.size(), 2);
        QCOMPARE(records.at(1).size(), 7);
        const bool guarded = !label.isEmpty() && QStringLiteral("=+-@\t\r").contains(label.front());
        QCOMPARE(records.at(1).at(0), guarded ? u'\'' + label : label);
    }

    void csvColumns()
    {
        // Numbers keep their dot where the Spanish screens show a comma.
        BMI18NManager::sharedInstance()->setCurrentLanguage(QStringLiteral("es"));
        auto set = makeSet(QStringLiteral("Flat"), {QStringLiteral("Kitchen")}, {1234.346});
        auto averaged = spot(QStringLiteral("Hall"), 7.0, 763637460.5);
        averaged->setAverage(true);
        averaged->setDuration(5.5);
        averaged->setBssid(QString());
        set->mutableSpots().append(averaged);
        set->setSorting(2); // labels ascending: Hall, recorded last, comes first
        const QList<QStringList> records = parseCsv(FZSpotsSetCsvWriter::csvForSet(set));
        QCOMPARE(records.value(0), (QStringList{"Punto", "Velocidad (Mbps)", "Promediado", "Promedio (s)", "SSID", "BSSID", "Hora"}));
        QCOMPARE(records.value(1), (QStringList{"Hall", "7.00", "true", "5.50", "HomeNet", "", "2025-03-14T09:31:00.500Z"}));
        QCOMPARE(records.value(2), (QStringList{"Kitchen", "1234.35", "false", "0.00", "HomeNet", "a4:2b:b0:5c:17:e2",
                                                "2025-03-14T09:30:00.000Z"}));
    }

    // A side of NaN lacks the label.
    void comparisonChangePerRow_data()
    {
        QTest::addColumn<double>("first");
        QTest::addColumn<double>("second");
        QTest::addColumn<QString>("line");
        QTest::newRow("faster") << 10.0 << 12.5 << "Kitchen,10.00,12.50,2.50,25.00";
        QTest::newRow("slower") << 20.0 << 15.0 << "Kitchen,20.00,15.00,-5.00,-25.00";
        QTest::newRow("first speed 0: no percent") << 0.0 << 8.0 << "Kitchen,0.00,8.00,8.00,";
        QTest::newRow("second side missing") << 10.0 << qQNaN() << "Kitchen,10.00,,,";
        QTest::newRow("first side missing") << qQNaN() << 7.25 << "Kitchen,,7.25,,";
    }
    void comparisonChangePerRow()
    {
        // "Hall" is in both sets so they always pair.
        const auto side = [](const char *name, double speed, int day) {
            return qIsNaN(speed) ? makeSet(name, {"Hall"}, {1.0}, day) : makeSet(name, {"Hall", "Kitchen"}, {1.0, speed}, day);
        };
        FZResultSpotsSetsComparison comparison(side("Before", fetched<double>("first"), 0), dayLater(side("After", fetched<double>("second"), 1)));
        const QList<QStringList> records = parseCsv(FZComparisonCsvWriter::csvForComparison(comparison, true));
        QCOMPARE(records.value(0), (QStringList{"Spot", "Before (Mbps)", "After (Mbps)", "Change (Mbps)", "Change (%)"}));
        QVERIFY2(records.contains(fetched<QString>("line").split(u',')), qPrintable(fetched<QString>("line")));
    }

    // The comparison's order, and the identical pairs hidden only on request.
    void comparisonRowsFollowTheComparison()
    {
        auto first = makeSet("A", {"Spot 2", "Spot 10", "Spot 1"});
        auto second = makeSet("B", {"Spot 1", "Spot 3"}, {}, 1);
        second->mutableSpots().append(first->mutableSpots().at(0)); // the very same measurement in both
        FZResultSpotsSetsComparison comparison(first, second);
        QCOMPARE(firstColumn(FZComparisonCsvWriter::csvForComparison(comparison, true)), (QStringList{"Spot 10", "Spot 3", "Spot 1"}));
        QCOMPARE(firstColumn(FZComparisonCsvWriter::csvForComparison(comparison, false)),
                 (QStringList{"Spot 10", "Spot 3", "Spot 2", "Spot 1"}));
        comparison.toggleSortByName();
        QCOMPARE(firstColumn(FZComparisonCsvWriter::csvForComparison(comparison, false)),
                 (QStringList{"Spot 1", "Spot 2", "Spot 3", "Spot 10"}));
    }

    void comparisonVerdict_data()
    {
        QTest::addColumn<QList<double>>("before");
        QTest::addColumn<QList<double>>("after");
        QTest::addColumn<QString>("language");
        QTest::addColumn<QString>("text");
        QTest::newRow("odd count") << QList<double>{10, 20, 40} << QList<double>{11, 30, 30} << "en"
                                   << "Faster at 2 of 3 spots, median change +10 %";
        QTest::newRow("even count: mean of the middle two") << QList<double>{10, 10, 10, 10} << QList<double>{5, 9, 13, 20}
                                                            << "en" << "Faster at 2 of 4 spots, median change +10 %";
        QTest::newRow("slower everywhere") << QList<double>{10, 10} << QList<double>{8, 9} << "en"
                                           << "Faster at 0 of 2 spots, median change -15 %";
        QTest::newRow("first speeds all 0") << QList<double>{0, 0} << QList<double>{3, 0} << "en" << "Faster at 1 of 2 spots";
        QTest::newRow("nothing paired") << QList<double>{} << QList<double>{} << "en" << "No spot was measured in both sets.";
        QTest::newRow("Spanish") << QList<double>{10, 20, 40} << QList<double>{11, 30, 30} << "es"
                                 << "Más rápido en 2 de 3 puntos, cambio mediano +10 %";
    }
    void comparisonVerdict()
    {
        QFETCH(QList<double>, before);
        BMI18NManager::sharedInstance()->setCurrentLanguage(fetched<QString>("language"));
        QStringList labels;
        for (qsizetype i = 0; i < before.size(); ++i)
            labels.append(QStringLiteral("Spot %1").arg(i + 1));
        auto second = makeSet("After", labels, fetched<QList<double>>("after"), 1);
        second->mutableSpots().append(spot("Garden", 99.0)); // on one side only: counts for nothing
        const FZResultSpotsSetsComparison comparison(makeSet("Before", labels, before), dayLater(second));
        QCOMPARE(FZComparisonReportRows(comparison, true).verdict(), fetched<QString>("text"));
    }

    void pdfPages_data()
    {
        QTest::addColumn<bool>("comparison");
        QTest::addColumn<int>("spots");
        QTest::addColumn<int>("pages");
        // A4: 24 rows under the first page's heading and chart, 40 on each further page.
        QTest::newRow("set, no spots") << false << 0 << 1;
        QTest::newRow("set, 24 spots") << false << 24 << 1;
        QTest::newRow("set, 25 spots") << false << 25 << 2;
        QTest::newRow("set, 200 spots") << false << 200 << 6;
        QTest::newRow("comparison, 200 spots") << true << 200 << 6;
    }
    // Every row once, in order, wholly inside its page above the footer, pages
    // numbered from 0 without a gap; the file has as many pages as the layout.
    void pdfPages()
    {
        QFETCH(int, spots);
        FZReportPdfWriter writer(QLocale(QStringLiteral("es_ES")));
        const QString path = m_env->filePath("report.pdf");
        auto before = numberedSet(QStringLiteral("Flat, 2nd floor"), spots);
        auto after = dayLater(numberedSet(QStringLiteral("After"), spots));
        for (const auto &s : after->mutableSpots())
            s->setSpeedInMbps(s->speedInMbps() * 1.1);
        const FZReportResult result = fetched<bool>("comparison")
            ? writer.writeComparisonReport(FZResultSpotsSetsComparison(before, after), true, path)
            : writer.writeSetReport(before, path);
        QVERIFY2(result.isOk(), qPrintable(result.message()));
        QVERIFY(fileBytes(path).startsWith("%PDF-"));
        const FZReportPdfWriter::Layout &layout = writer.lastLayout();
        QCOMPARE(layout.rows.size(), spots);
        QCOMPARE(layout.pageCount, fetched<int>("pages"));
        QCOMPARE(pdfPageCount(path), layout.pageCount);
        QVERIFY(layout.printableRect.height() > 600);
        for (qsizetype i = 0; i < layout.rows.size(); ++i) {
            const auto &row = layout.rows.at(i);
            QVERIFY2(row.rect.top() >= 0 && row.rect.bottom() <= layout.printableRect.height() - 20 && row.rect.height() > 10,
                     qPrintable(QStringLiteral("row %1 cut at %2").arg(i).arg(row.rect.bottom())));
            const auto *previous = i > 0 ? &layout.rows.at(i - 1) : nullptr;
            QVERIFY(!previous || row.page == previous->page + 1 || (row.page == previous->page && row.rect.top() >= previous->rect.bottom()));
        }
        QVERIFY(layout.rows.isEmpty() || layout.rows.last().page + 1 == layout.pageCount);
    }

    void pdfDrawsAnySpeedBounded_data()
    {
        // What a restored file may hold; none may make the chart's axis endless.
        QTest::addColumn<double>("speed");
        QTest::newRow("1.6e308") << 1.6e308;
        QTest::newRow("the largest double") << std::numeric_limits<double>::max();
    }
    void pdfDrawsAnySpeedBounded()
    {
        const QString path = m_env->filePath("bounded.pdf");
        const auto set = makeSet(QStringLiteral("Odd"), {"Hall", "Desk"}, {fetched<double>("speed"), 20.0});
        // In a child with 1 GB and 5 s, so an endless axis fails the row.
        QVERIFY(runBounded([&] { return FZReportPdfWriter(QLocale(QStringLiteral("en_GB"))).writeSetReport(set, path).isOk(); }));
        QVERIFY(fileBytes(path).startsWith("%PDF-"));
    }

    void writersRefuseWhatTheyCannotWrite()
    {
        using Error = FZReportResult::Error;
        const QString none = m_env->filePath("none");
        QCOMPARE(parseCsv(FZSpotsSetCsvWriter::csvForSet(nullptr)).size(), 1);
        QCOMPARE(FZSpotsSetCsvWriter::writeSet(nullptr, none).error(), Error::InvalidInput);
        FZReportPdfWriter pdf;
        QCOMPARE(pdf.writeSetReport(nullptr, none).error(), Error::InvalidInput);
        QCOMPARE(pdf.writeComparisonReport(FZResultSpotsSetsComparison(numberedSet("Flat", 3), nullptr), true, none).error(),
                 Error::InvalidInput);
        QVERIFY(!QFile::exists(none));
        // A folder in the way: the write fails and says so.
        QVERIFY(QDir(m_env->path()).mkdir("taken"));
        const FZReportResult csv = FZSpotsSetCsvWriter::writeSet(makeSet("Flat", {"Kitchen"}), m_env->filePath("taken"));
        QCOMPARE(csv.error(), Error::FileNotWritten);
        QVERIFY(!csv.message().isEmpty());
        QCOMPARE(pdf.writeSetReport(numberedSet("Flat", 3), m_env->filePath("taken")).error(), Error::FileNotWritten);
    }

    void backupRoundTripGivesTheStoreBack()
    {
        // Every kind of value a spot can hold; one spot has no label, SSID or BSSID at all.
        auto rich = makeSet(QStringLiteral("Casa, planta 1 \"A\" 客厅"), {"Cocina", "Salón"}, {12.345678901234, 0.0});
        auto odd = WifiTestResult::create(qQNaN(), 763637999.125);
        odd->setAverage(true);
        odd->setDuration(7.25);
        odd->setCoordinate(BMLocationCoordinate2D{40.4168, -3.7038});
        rich->mutableSpots().append(odd);
        for (const auto &set : {rich, numberedSet("Office", 30), makeSet("Empty", {})})
            QVERIFY(Set::saveSpotSet(set));
        const Set::Dictionary before = Set::allSpotsSetsDictionary();
        const QString path = m_env->filePath("backup.json");
        QVERIFY(FZSpotsSetsBackup::writeBackup(path).isOk());
        QCOMPARE(QJsonDocument::fromJson(fileBytes(path)).object().value("formatVersion").toInt(), 1);

        Set::deleteAllSpotsSets();
        const FZReportResult result = FZSpotsSetsBackup::restoreBackup(path);
        QVERIFY2(result.isOk(), qPrintable(result.message()));
        QCOMPARE(result.addedTitles().size(), 3);
        const Set::Dictionary after = Set::allSpotsSetsDictionary();
        QCOMPARE(after.keys(), before.keys());
        for (const QString &title : before.keys()) {
            QVERIFY2(FZSpotsSetsBackup::hasSameContent(*after.value(title), *before.value(title)), qPrintable(title));
            QCOMPARE(after.value(title)->name(), title);
        }
        const auto restored = after.value(rich->name())->mutableSpots().last();
        QVERIFY(restored->label().isNull() && qIsNaN(restored->speedInMbps()));
        QCOMPARE(restored->coordinate()->longitude, -3.7038);
        // A backup of the restored store is the very same file.
        QCOMPARE(FZSpotsSetsBackup::backupJsonOfStore(), fileBytes(path));
    }

    void backupRestoreMerges_data()
    {
        QTest::addColumn<QStringList>("storedTitles"); // "Title", or "Title=<speed>" or "Title=other" for other content
        QTest::addColumn<QStringList>("fileTitles");
        QTest::addColumn<QStringList>("added");
        QTest::addColumn<QStringList>("skipped");
        QTest::addColumn<QStringList>("titlesAfter");
        QTest::newRow("identical set skipped") << QStringList{"Home"} << QStringList{"Home", "Office"} << QStringList{"Office"}
                                               << QStringList{"Home"} << QStringList{"Home", "Office"};
        QTest::newRow("next free number") << QStringList{"Home=other", "Home (2)=other"} << QStringList{"Home"}
                                          << QStringList{"Home (3)"} << QStringList{} << QStringList{"Home", "Home (2)", "Home (3)"};
        QTest::newRow("already restored under a new title") << QStringList{"Home=other", "Home (2)"} << QStringList{"Home"}
                                                            << QStringList{} << QStringList{"Home"} << QStringList{"Home", "Home (2)"};
        QTest::newRow("one title many times, numbered on")
            << QStringList{"Home=other"} << QStringList{"Home=1", "Home=2", "Home", "Home=1"}
            << QStringList{"Home (2)", "Home (3)", "Home (4)"} << QStringList{"Home"} << QStringList{"Home", "Home (2)", "Home (3)", "Home (4)"};
        QTest::newRow("a title that reads like a format") << QStringList{"Net 100%2=other"} << QStringList{"Net 100%2"}
            << QStringList{"Net 100%2 (2)"} << QStringList{} << QStringList{"Net 100%2", "Net 100%2 (2)"};
    }
    void backupRestoreMerges()
    {
        QFETCH(QStringList, fileTitles);
        Set::List fileSets;
        for (const QString &entry : fileTitles)
            fileSets.append(setFor(entry));
        for (const QString &entry : fetched<QStringList>("storedTitles"))
            QVERIFY(Set::saveSpotSet(setFor(entry)));
        const Set::Dictionary storedBefore = Set::allSpotsSetsDictionary();
        const QByteArray json = backupOf(fileSets);
        const FZReportResult result = FZSpotsSetsBackup::restoreBackupJson(json);
        QVERIFY2(result.isOk(), qPrintable(result.message()));
        QCOMPARE(result.addedTitles(), fetched<QStringList>("added"));
        QCOMPARE(result.skippedTitles(), fetched<QStringList>("skipped"));
        const Set::Dictionary after = Set::allSpotsSetsDictionary();
        QCOMPARE(after.keys(), fetched<QStringList>("titlesAfter"));
        for (const QString &title : storedBefore.keys()) // nothing stored was replaced
            QVERIFY(FZSpotsSetsBackup::hasSameContent(*after.value(title), *storedBefore.value(title)));
        // Restoring the same file again adds nothing and writes nothing.
        const QByteArray stored = fileBytes(m_env->defaultsFilePath());
        const FZReportResult again = FZSpotsSetsBackup::restoreBackupJson(json);
        QVERIFY(again.isOk() && again.addedTitles().isEmpty());
        QCOMPARE(again.skippedTitles().size(), fileTitles.size());
        QCOMPARE(fileBytes(m_env->defaultsFilePath()), stored);
    }

    void backupRefusedFileLeavesTheStoreAlone_data()
    {
        const QByteArray good = FZSpotsSetsBackup::backupJson({{"Home", makeSet("Home", {"Kitchen"}, {12.5})}});
        const auto edited = [&good](const char *from, const QByteArray &to) {
            Q_ASSERT(good.contains(from));
            return QByteArray(good).replace(from, to);
        };
        QTest::addColumn<QByteArray>("json");
        QTest::addColumn<int>("error");
        QTest::addColumn<bool>("emptyStore");
        using E = FZReportResult::Error;
        QTest::newRow("empty file") << QByteArray() << int(E::Malformed) << false;
        QTest::newRow("truncated, into an empty store") << good.left(good.size() - 3) << int(E::Malformed) << true;
        QTest::newRow("another kind of file") << edited("spots-sets-backup", "notes") << int(E::Malformed) << false;
        QTest::newRow("future version") << edited("\"formatVersion\": 1", "\"formatVersion\": 2") << int(E::FutureVersion) << false;
        QTest::newRow("version as text") << edited("\"formatVersion\": 1", "\"formatVersion\": \"1\"") << int(E::WrongTypes) << false;
        QTest::newRow("spots missing") << edited("\"spots\"", "\"spot\"") << int(E::WrongTypes) << false;
        QTest::newRow("speed as text") << edited("\"speedInMbps\": 12.5", "\"speedInMbps\": \"12.5\"") << int(E::WrongTypes) << false;
        QTest::newRow("coordinate a list") << edited("\"average\": false", "\"average\": false, \"coordinate\": [1, 2]")
                                           << int(E::WrongTypes) << false;
        // Values no measurement can have, and titles no person can type. Other
        // garbage the reports fuzz corpus replays.
        QTest::newRow("speed 1.6e308") << edited("\"speedInMbps\": 12.5", "\"speedInMbps\": 1.6e308") << int(E::WrongTypes) << false;
        QTest::newRow("negative speed") << edited("\"speedInMbps\": 12.5", "\"speedInMbps\": -3") << int(E::WrongTypes) << false;
        QTest::newRow("negative duration") << edited("\"duration\": 0", "\"duration\": -1") << int(E::WrongTypes) << false;
        QTest::newRow("a year-long duration") << edited("\"duration\": 0", "\"duration\": 31536000") << int(E::WrongTypes) << false;
        QTest::newRow("blank title") << edited("\"title\": \"Home\"", "\"title\": \"   \"") << int(E::WrongTypes) << false;
        QTest::newRow("a 10 MB title") << edited("\"title\": \"Home\"", "\"title\": \"" + QByteArray(10 << 20, 'A') + "\"")
                                       << int(E::WrongTypes) << false;
    }
    void backupRefusedFileLeavesTheStoreAlone()
    {
        QFETCH(bool, emptyStore);
        if (!emptyStore) {
            QVERIFY(Set::saveSpotSet(makeSet("Home", {"Kitchen"}, {55.0})));
            QVERIFY(Set::saveSpotSet(numberedSet("Office", 5)));
        }
        const QByteArray defaults = fileBytes(m_env->defaultsFilePath());
        const auto archive = Set::savedSpotsSetsDictionary();
        const QString path = m_env->filePath("backup.json");
        QFile file(path);
        QVERIFY(file.open(QIODevice::WriteOnly) && file.write(fetched<QByteArray>("json")) >= 0);
        file.close();
        LogCapture log;
        const FZReportResult result = FZSpotsSetsBackup::restoreBackup(path);
        QCOMPARE(int(result.error()), fetched<int>("error"));
        QVERIFY(!result.message().isEmpty() && result.addedTitles().isEmpty());
        QVERIFY(!log.lines().isEmpty()); // the refusal is logged
        QCOMPARE(fileBytes(m_env->defaultsFilePath()), defaults);
        QCOMPARE(QFile::exists(m_env->defaultsFilePath()), !emptyStore);
        QCOMPARE(Set::savedSpotsSetsDictionary(), archive);
    }

private:
    std::unique_ptr<TestEnvironment> m_env;
};

QTEST_MAIN(tst_Reports)
#include "tst_Reports.moc"
