#include "reports/FZSpotsSetCsvWriter.h"

#include "LogCapture.h"
#include "ReportFixtures.h"
#include "TestEnvironment.h"
#include "i18n/BMI18NManager.h"

#include <QtTest>

using namespace ReportFixtures;

namespace {

// A reader as strict as a spreadsheet's: RFC 4180 fields, CRLF between records.
QList<QStringList> parseCsv(const QByteArray &csv)
{
    QString text = QString::fromUtf8(csv);
    if (text.startsWith(QChar(0xFEFF)))
        text.remove(0, 1);
    QList<QStringList> records{{}};
    QString field;
    bool quoted = false;
    for (qsizetype i = 0; i < text.size(); ++i) {
        const QChar c = text.at(i);
        if (quoted) {
            if (c == u'"' && i + 1 < text.size() && text.at(i + 1) == u'"')
                field.append(text.at(++i));
            else if (c == u'"')
                quoted = false;
            else
                field.append(c);
        } else if (c == u'"') {
            quoted = true;
        } else if (c == u',') {
            records.last().append(field);
            field.clear();
        } else if (c == u'\r' && i + 1 < text.size() && text.at(i + 1) == u'\n') {
            records.last().append(field);
            field.clear();
            records.append(QStringList());
            ++i;
        } else {
            field.append(c);
        }
    }
    if (records.last().isEmpty() && field.isEmpty())
        records.removeLast();
    return records;
}

} // namespace

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
    void columns();
    void numbersKeepTheirDotInAnyLanguage();
    void rowsFollowTheSetsOrder_data();
    void rowsFollowTheSetsOrder();
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
    QCOMPARE(records.at(1).at(0), label);
}

void tst_FZSpotsSetCsvWriter::columns()
{
    auto set = makeSet(QStringLiteral("Flat"), {QStringLiteral("Kitchen")}, {12.346});
    auto averaged = spot(QStringLiteral("Hall"), 7.0, 763637460.5);
    averaged->setAverage(true);
    averaged->setDuration(5.5);
    averaged->setBssid(QString());
    set->mutableSpots().append(averaged);
    set->setSorting(2);

    const QList<QStringList> records = parseCsv(FZSpotsSetCsvWriter::csvForSet(set));
    QCOMPARE(records.value(0), (QStringList{"Spot", "Speed (Mbps)", "Averaged", "Averaging (s)", "SSID", "BSSID", "Time"}));
    QCOMPARE(records.value(1),
             (QStringList{"Hall", "7.00", "true", "5.50", "HomeNet", "", "2025-03-14T09:31:00.500Z"}));
    QCOMPARE(records.value(2), (QStringList{"Kitchen", "12.35", "false", "0.00", "HomeNet", "a4:2b:b0:5c:17:e2",
                                            "2025-03-14T09:30:00.000Z"}));
}

void tst_FZSpotsSetCsvWriter::numbersKeepTheirDotInAnyLanguage()
{
    const QLocale before;
    QLocale::setDefault(QLocale(QStringLiteral("es_ES")));
    BMI18NManager::sharedInstance()->setCurrentLanguage(QStringLiteral("es"));
    const QList<QStringList> records =
        parseCsv(FZSpotsSetCsvWriter::csvForSet(makeSet(QStringLiteral("Piso"), {QStringLiteral("Cocina")}, {1234.5})));
    QLocale::setDefault(before);
    QCOMPARE(records.value(0).value(0), QStringLiteral("Punto"));
    QCOMPARE(records.value(1).value(1), QStringLiteral("1234.50"));
}

void tst_FZSpotsSetCsvWriter::rowsFollowTheSetsOrder_data()
{
    QTest::addColumn<qint64>("sorting");
    QTest::addColumn<QStringList>("labels");
    // Recorded in this order, a minute apart.
    QTest::newRow("newest first") << qint64(0) << QStringList{"Spot 1", "Spot 10", "Spot 2"};
    QTest::newRow("labels descending") << qint64(1) << QStringList{"Spot 10", "Spot 2", "Spot 1"};
    QTest::newRow("labels ascending") << qint64(2) << QStringList{"Spot 1", "Spot 2", "Spot 10"};
}

void tst_FZSpotsSetCsvWriter::rowsFollowTheSetsOrder()
{
    QFETCH(qint64, sorting);
    QFETCH(QStringList, labels);
    auto set = makeSet(QStringLiteral("Flat"), {"Spot 2", "Spot 10", "Spot 1"});
    set->setSorting(sorting);
    QStringList written;
    for (const QStringList &record : parseCsv(FZSpotsSetCsvWriter::csvForSet(set)).mid(1))
        written.append(record.value(0));
    QCOMPARE(written, labels);
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

    const QString path = m_env->filePath("flat.csv");
    QVERIFY(FZSpotsSetCsvWriter::writeSet(makeSet("Flat", {"Kitchen"}), path).isOk());
    QFile file(path);
    QVERIFY(file.open(QIODevice::ReadOnly));
    QCOMPARE(file.readAll(), FZSpotsSetCsvWriter::csvForSet(makeSet("Flat", {"Kitchen"})));
}

QTEST_GUILESS_MAIN(tst_FZSpotsSetCsvWriter)
#include "tst_FZSpotsSetCsvWriter.moc"
