#include "reports/FZReportPdfWriter.h"

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

    void setReportPages_data();
    void setReportPages();
    void comparisonReportPages_data();
    void comparisonReportPages();
    void pageSizeByLocale_data();
    void pageSizeByLocale();
    void failures();

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

void tst_FZReportPdfWriter::setReportPages_data()
{
    QTest::addColumn<int>("spots");
    QTest::addColumn<int>("minPages");
    QTest::addColumn<int>("maxPages");
    QTest::newRow("no spots") << 0 << 1 << 1;
    QTest::newRow("7 spots") << 7 << 1 << 1;
    QTest::newRow("40 spots") << 40 << 2 << 2;
    QTest::newRow("200 spots") << 200 << 5 << 6;
}

void tst_FZReportPdfWriter::setReportPages()
{
    QFETCH(int, spots);
    QFETCH(int, minPages);
    QFETCH(int, maxPages);
    FZReportPdfWriter writer(QLocale(QStringLiteral("es_ES")));
    const QString path = m_env->filePath("set.pdf");
    const FZReportResult result = writer.writeSetReport(numberedSet(QStringLiteral("Flat, 2nd floor"), spots), path);
    QVERIFY2(result.isOk(), qPrintable(result.message()));
    QFile file(path);
    QVERIFY(file.open(QIODevice::ReadOnly));
    QVERIFY(file.read(5) == "%PDF-");
    checkRows(writer, spots, path);
    QVERIFY(writer.lastLayout().pageCount >= minPages);
    QVERIFY(writer.lastLayout().pageCount <= maxPages);
}

void tst_FZReportPdfWriter::comparisonReportPages_data()
{
    QTest::addColumn<int>("spots");
    QTest::addColumn<int>("pages");
    QTest::newRow("7 spots") << 7 << 1;
    QTest::newRow("200 spots") << 200 << 6;
}

void tst_FZReportPdfWriter::comparisonReportPages()
{
    QFETCH(int, spots);
    QFETCH(int, pages);
    auto second = numberedSet(QStringLiteral("After"), spots);
    for (const auto &s : second->mutableSpots()) {
        s->setSpeedInMbps(s->speedInMbps() * 1.1);
        s->setTimeAfterTest(s->timeAfterTest() + 86400.0);
    }
    const FZResultSpotsSetsComparison comparison(numberedSet(QStringLiteral("Before"), spots), second);
    FZReportPdfWriter writer(QLocale(QStringLiteral("en_GB")));
    const QString path = m_env->filePath("comparison.pdf");
    QVERIFY(writer.writeComparisonReport(comparison, true, path).isOk());
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
