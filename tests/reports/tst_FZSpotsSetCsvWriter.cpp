#include "reports/FZSpotsSetCsvWriter.h"

#include "LogCapture.h"
#include "ReportFixtures.h"
#include "TestEnvironment.h"
#include "i18n/BMI18NManager.h"

#include <QtTest>

using namespace ReportFixtures;

class tst_FZSpotsSetCsvWriter : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init() { m_env = std::make_unique<TestEnvironment>(); }
    void cleanup()
    {
        m_env.reset();
        BMI18NManager::resetSharedInstanceForTesting();
    }

    void quoting_data();
    void quoting();
    void columns_data();
    void columns();
    void failures();

private:
    std::unique_ptr<TestEnvironment> m_env;
};

void tst_FZSpotsSetCsvWriter::quoting_data()
{
    QTest::addColumn<QString>("label");
    QTest::addColumn<QString>("written");
    QTest::newRow("plain") << "Kitchen" << "Kitchen";
    QTest::newRow("comma") << "Living room, east" << "\"Living room, east\"";
    QTest::newRow("double quotes") << "The \"big\" room" << "\"The \"\"big\"\" room\"";
    QTest::newRow("line feed") << "Hall\nupstairs" << "\"Hall\nupstairs\"";
    QTest::newRow("carriage return and line feed") << "Hall\r\nupstairs" << "\"Hall\r\nupstairs\"";
    QTest::newRow("accented") << "Habitación pequeña" << "Habitación pequeña";
    QTest::newRow("CJK") << "客厅 2" << "客厅 2";
    QTest::newRow("leading blank kept") << " Porch" << "\" Porch\"";
    QTest::newRow("empty") << "" << "";
    // Names from people and neighbours' access points: never a formula.
    QTest::newRow("formula") << "=HYPERLINK(\"http://x\",\"y\")" << "\"'=HYPERLINK(\"\"http://x\"\",\"\"y\"\")\"";
    QTest::newRow("plus") << "+1+2" << "\"'+1+2\"";
    QTest::newRow("minus") << "-2+3" << "\"'-2+3\"";
    QTest::newRow("at") << "@SUM(A1)" << "\"'@SUM(A1)\"";
    QTest::newRow("tab") << "\t=1" << "\"'\t=1\"";
    QTest::newRow("carriage return") << "\r=1" << "\"'\r=1\"";
}

void tst_FZSpotsSetCsvWriter::quoting()
{
    QFETCH(QString, label);
    QFETCH(QString, written);
    const auto set = makeSet(QStringLiteral("Flat"), {label}, {12.5});
    const QByteArray csv = FZSpotsSetCsvWriter::csvForSet(set);

    QVERIFY(csv.startsWith("\xEF\xBB\xBF"));
    const QString text = QString::fromUtf8(csv);
    QVERIFY2(text.contains(QStringLiteral("\r\n") + written + QStringLiteral(",12.50,")), qPrintable(text));
    const QList<QStringList> records = parseCsv(csv);
    QCOMPARE(records.size(), 2);
    QCOMPARE(records.at(1).size(), 7);
    const bool guarded = !label.isEmpty() && QStringLiteral("=+-@\t\r").contains(label.front());
    QCOMPARE(records.at(1).at(0), guarded ? u'\'' + label : label);
}

void tst_FZSpotsSetCsvWriter::columns_data()
{
    QTest::addColumn<QString>("language");
    QTest::addColumn<QStringList>("header");
    QTest::newRow("en") << "en" << QStringList{"Spot", "Speed (Mbps)", "Averaged", "Averaging (s)", "SSID", "BSSID", "Time"};
    // Numbers keep their dot where the screens show a comma.
    QTest::newRow("es") << "es" << QStringList{"Punto", "Velocidad (Mbps)", "Promediado", "Promedio (s)", "SSID", "BSSID", "Hora"};
}

void tst_FZSpotsSetCsvWriter::columns()
{
    QFETCH(QString, language);
    QFETCH(QStringList, header);
    BMI18NManager::sharedInstance()->setCurrentLanguage(language);
    auto set = makeSet(QStringLiteral("Flat"), {QStringLiteral("Kitchen")}, {1234.346});
    auto averaged = spot(QStringLiteral("Hall"), 7.0, 763637460.5);
    averaged->setAverage(true);
    averaged->setDuration(5.5);
    averaged->setBssid(QString());
    set->mutableSpots().append(averaged);
    set->setSorting(2);  // labels ascending: Hall, recorded last, comes first

    const QList<QStringList> records = parseCsv(FZSpotsSetCsvWriter::csvForSet(set));
    QCOMPARE(records.value(0), header);
    QCOMPARE(records.value(1), (QStringList{"Hall", "7.00", "true", "5.50", "HomeNet", "", "2025-03-14T09:31:00.500Z"}));
    QCOMPARE(records.value(2), (QStringList{"Kitchen", "1234.35", "false", "0.00", "HomeNet", "a4:2b:b0:5c:17:e2",
                                            "2025-03-14T09:30:00.000Z"}));
}

void tst_FZSpotsSetCsvWriter::failures()
{
    LogCapture log;
    QCOMPARE(parseCsv(FZSpotsSetCsvWriter::csvForSet(nullptr)).size(), 1);
    const FZReportResult absent = FZSpotsSetCsvWriter::writeSet(nullptr, m_env->filePath("none.csv"));
    QCOMPARE(absent.error(), FZReportResult::Error::InvalidInput);
    QVERIFY(!QFile::exists(m_env->filePath("none.csv")));

    // A folder in the way: the write fails and says so.
    QVERIFY(QDir(m_env->path()).mkdir("taken.csv"));
    const FZReportResult blocked =
        FZSpotsSetCsvWriter::writeSet(makeSet("Flat", {"Kitchen"}), m_env->filePath("taken.csv"));
    QCOMPARE(blocked.error(), FZReportResult::Error::FileNotWritten);
    QVERIFY(!blocked.message().isEmpty());
    QVERIFY(log.contains(QStringLiteral("could not be written")));

}

QTEST_GUILESS_MAIN(tst_FZSpotsSetCsvWriter)
#include "tst_FZSpotsSetCsvWriter.moc"
