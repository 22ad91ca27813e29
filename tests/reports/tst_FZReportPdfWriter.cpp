#include "reports/FZReportPdfWriter.h"

#include "BoundedRun.h"
#include "LogCapture.h"
#include "ReportFixtures.h"
#include "TestEnvironment.h"
#include "i18n/BMI18NManager.h"

#include <QRegularExpression>
#include <QtTest>

using namespace ReportFixtures;

namespace {

// Page objects of a PDF: "/Type /Page", not the "/Type /Pages" tree.
int pdfPageCount(const QString &path)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        return -1;
    static const QRegularExpression page(QStringLiteral("/Type\\s*/Page(?![a-zA-Z])"));
    return int(QString::fromLatin1(file.readAll()).count(page));
}

} // namespace

class tst_FZReportPdfWriter : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init() { m_env = std::make_unique<TestEnvironment>(); }
    void cleanup()
    {
        m_env.reset();
        BMI18NManager::resetSharedInstanceForTesting();
    }

    void pages_data();
    void pages();
    void pageSizeByLocale_data();
    void pageSizeByLocale();
    void failures();
    void anySpeedIsDrawnBounded_data();
    void anySpeedIsDrawnBounded();

private:
    void checkRows(const FZReportPdfWriter &writer, qsizetype rows, const QString &path);
    std::unique_ptr<TestEnvironment> m_env;
};

// Every row once, in order, wholly inside its page above the footer, pages
// numbered from 0 without a gap; the file has as many pages as the layout.
void tst_FZReportPdfWriter::checkRows(const FZReportPdfWriter &writer, qsizetype rows, const QString &path)
{
    const FZReportPdfWriter::Layout &layout = writer.lastLayout();
    QCOMPARE(layout.rows.size(), rows);
    QCOMPARE(pdfPageCount(path), layout.pageCount);
    const QRectF page = layout.printableRect;
    QVERIFY(page.height() > 600);
    for (qsizetype i = 0; i < layout.rows.size(); ++i) {
        const auto &row = layout.rows.at(i);
        QVERIFY2(row.rect.top() >= 0 && row.rect.bottom() <= page.height() - 20,
                 qPrintable(QStringLiteral("row %1 cut at %2").arg(i).arg(row.rect.bottom())));
        QVERIFY(row.rect.height() > 10);
        if (i > 0) {
            const auto &before = layout.rows.at(i - 1);
            QVERIFY(row.page == before.page || row.page == before.page + 1);
            if (row.page == before.page)
                QVERIFY(row.rect.top() >= before.rect.bottom());
        }
    }
    if (!layout.rows.isEmpty())
        QCOMPARE(layout.rows.last().page + 1, layout.pageCount);
}

void tst_FZReportPdfWriter::pages_data()
{
    QTest::addColumn<bool>("comparison");
    QTest::addColumn<int>("spots");
    QTest::addColumn<int>("pages");
    // A4: 24 rows under the first page's heading and chart, 40 on each further page.
    QTest::newRow("set, no spots") << false << 0 << 1;
    QTest::newRow("set, 24 spots") << false << 24 << 1;
    QTest::newRow("set, 25 spots") << false << 25 << 2;
    QTest::newRow("set, 200 spots") << false << 200 << 6;
    QTest::newRow("comparison, 7 spots") << true << 7 << 1;
    QTest::newRow("comparison, 200 spots") << true << 200 << 6;
}

void tst_FZReportPdfWriter::pages()
{
    QFETCH(bool, comparison);
    QFETCH(int, spots);
    QFETCH(int, pages);
    FZReportPdfWriter writer(QLocale(QStringLiteral("es_ES")));
    const QString path = m_env->filePath("report.pdf");
    auto before = numberedSet(QStringLiteral("Flat, 2nd floor"), spots);
    FZReportResult result;
    if (comparison) {
        auto after = numberedSet(QStringLiteral("After"), spots);
        for (const auto &s : after->mutableSpots()) {
            s->setSpeedInMbps(s->speedInMbps() * 1.1);
            s->setTimeAfterTest(s->timeAfterTest() + 86400.0);
        }
        result = writer.writeComparisonReport(FZResultSpotsSetsComparison(before, after), true, path);
    } else {
        result = writer.writeSetReport(before, path);
    }
    QVERIFY2(result.isOk(), qPrintable(result.message()));
    QFile file(path);
    QVERIFY(file.open(QIODevice::ReadOnly) && file.read(5) == "%PDF-");
    checkRows(writer, spots, path);
    QCOMPARE(writer.lastLayout().pageCount, pages);
}

void tst_FZReportPdfWriter::pageSizeByLocale_data()
{
    QTest::addColumn<QString>("locale");
    QTest::addColumn<int>("pageSize");
    QTest::addColumn<qreal>("printableWidth");
    // Printable width: the paper's width in points less two 40 pt margins.
    QTest::newRow("United States: Letter") << "en_US" << int(QPageSize::Letter) << 532.0;
    QTest::newRow("Mexico: Letter") << "es_MX" << int(QPageSize::Letter) << 532.0;
    QTest::newRow("Spain: A4") << "es_ES" << int(QPageSize::A4) << 515.0;
    QTest::newRow("United Kingdom: A4") << "en_GB" << int(QPageSize::A4) << 515.0;
}

void tst_FZReportPdfWriter::pageSizeByLocale()
{
    QFETCH(QString, locale);
    QFETCH(int, pageSize);
    QFETCH(qreal, printableWidth);
    QCOMPARE(int(FZReportPdfWriter::pageSizeForLocale(QLocale(locale))), pageSize);
    FZReportPdfWriter writer{QLocale(locale)};
    QVERIFY(writer.writeSetReport(numberedSet("Flat", 3), m_env->filePath("size.pdf")).isOk());
    QVERIFY(qAbs(writer.lastLayout().printableRect.width() - printableWidth) < 1.5);
}

void tst_FZReportPdfWriter::anySpeedIsDrawnBounded_data()
{
    // What a restored file may hold; none may make the chart's axis endless.
    QTest::addColumn<double>("speed");
    QTest::newRow("1.6e308") << 1.6e308;
    QTest::newRow("the largest double") << std::numeric_limits<double>::max();
}

void tst_FZReportPdfWriter::anySpeedIsDrawnBounded()
{
    QFETCH(double, speed);
    const QString path = m_env->filePath("bounded.pdf");
    const auto set = makeSet(QStringLiteral("Odd"), {"Hall", "Desk"}, {speed, 20.0});
    // In a child with 1 GB and 5 s, so an endless axis fails the row.
    QVERIFY(runBounded([&] { return FZReportPdfWriter(QLocale(QStringLiteral("en_GB"))).writeSetReport(set, path).isOk(); }));
    QFile file(path);
    QVERIFY(file.open(QIODevice::ReadOnly) && file.read(5) == "%PDF-");
}

void tst_FZReportPdfWriter::failures()
{
    LogCapture log;
    FZReportPdfWriter writer;
    const QString path = m_env->filePath("none.pdf");
    QCOMPARE(writer.writeSetReport(nullptr, path).error(), FZReportResult::Error::InvalidInput);
    const FZResultSpotsSetsComparison halfComparison(numberedSet("Flat", 3), nullptr);
    QCOMPARE(writer.writeComparisonReport(halfComparison, true, path).error(), FZReportResult::Error::InvalidInput);
    QVERIFY(!QFile::exists(path));
    QVERIFY(QDir(m_env->path()).mkdir("taken.pdf"));
    QCOMPARE(writer.writeSetReport(numberedSet("Flat", 3), m_env->filePath("taken.pdf")).error(),
             FZReportResult::Error::FileNotWritten);
    QVERIFY(log.contains(QStringLiteral("no set for the report")));
}

QTEST_MAIN(tst_FZReportPdfWriter)
#include "tst_FZReportPdfWriter.moc"
