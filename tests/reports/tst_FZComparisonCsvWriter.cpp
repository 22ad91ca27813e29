#include "reports/FZComparisonCsvWriter.h"

#include "ReportFixtures.h"
#include "TestEnvironment.h"
#include "i18n/BMI18NManager.h"
#include "reports/FZComparisonReportRows.h"

#include <QtTest>

using namespace ReportFixtures;

class tst_FZComparisonCsvWriter : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init() { m_env = std::make_unique<TestEnvironment>(); }
    void cleanup()
    {
        m_env.reset();
        BMI18NManager::resetSharedInstanceForTesting();
    }

    void changePerRow_data();
    void changePerRow();
    void identicalPairsHiddenOnRequest_data();
    void identicalPairsHiddenOnRequest();
    void rowsFollowTheComparisonsOrder();
    void verdict_data();
    void verdict();

private:
    std::unique_ptr<TestEnvironment> m_env;
};

// A side of NaN lacks the label.
void tst_FZComparisonCsvWriter::changePerRow_data()
{
    QTest::addColumn<double>("first");
    QTest::addColumn<double>("second");
    QTest::addColumn<QString>("line");
    QTest::newRow("faster") << 10.0 << 12.5 << "Kitchen,10.00,12.50,2.50,25.00";
    QTest::newRow("slower") << 20.0 << 15.0 << "Kitchen,20.00,15.00,-5.00,-25.00";
    QTest::newRow("unchanged") << 10.0 << 10.0 << "Kitchen,10.00,10.00,0.00,0.00";
    QTest::newRow("first speed 0: no percent") << 0.0 << 8.0 << "Kitchen,0.00,8.00,8.00,";
    QTest::newRow("both 0") << 0.0 << 0.0 << "Kitchen,0.00,0.00,0.00,";
    QTest::newRow("second side missing") << 10.0 << qQNaN() << "Kitchen,10.00,,,";
    QTest::newRow("first side missing") << qQNaN() << 7.25 << "Kitchen,,7.25,,";
}

void tst_FZComparisonCsvWriter::changePerRow()
{
    QFETCH(double, first);
    QFETCH(double, second);
    QFETCH(QString, line);
    // "Hall" is in both sets so they always pair.
    QStringList firstLabels{"Hall"}, secondLabels{"Hall"};
    QList<double> firstSpeeds{1.0}, secondSpeeds{1.0};
    if (!qIsNaN(first)) {
        firstLabels.append("Kitchen");
        firstSpeeds.append(first);
    }
    if (!qIsNaN(second)) {
        secondLabels.append("Kitchen");
        secondSpeeds.append(second);
    }
    auto secondSet = makeSet("After", secondLabels, secondSpeeds, 1);
    for (const auto &s : secondSet->mutableSpots())
        s->setTimeAfterTest(s->timeAfterTest() + 86400.0);
    FZResultSpotsSetsComparison comparison(makeSet("Before", firstLabels, firstSpeeds), secondSet);

    const QList<QStringList> records = parseCsv(FZComparisonCsvWriter::csvForComparison(comparison, true));
    QCOMPARE(records.value(0), (QStringList{"Spot", "Before (Mbps)", "After (Mbps)", "Change (Mbps)", "Change (%)"}));
    QVERIFY2(records.contains(line.split(u',')), qPrintable(line));
}

void tst_FZComparisonCsvWriter::identicalPairsHiddenOnRequest_data()
{
    QTest::addColumn<bool>("hideIdentical");
    QTest::addColumn<QStringList>("labels");
    QTest::newRow("hidden") << true << QStringList{"Office", "Hall"};
    QTest::newRow("shown") << false << QStringList{"Office", "Kitchen", "Hall"};
}

void tst_FZComparisonCsvWriter::identicalPairsHiddenOnRequest()
{
    QFETCH(bool, hideIdentical);
    QFETCH(QStringList, labels);
    auto first = makeSet("Before", {"Hall", "Kitchen"});
    auto second = makeSet("After", {"Office"}, {}, 1);
    // The very same Kitchen measurement in both; Hall measured again later.
    second->mutableSpots().append(first->mutableSpots().at(1));
    second->mutableSpots().append(spot("Hall", 30.0, 763700000.0));
    FZResultSpotsSetsComparison comparison(first, second);

    QCOMPARE(firstColumn(FZComparisonCsvWriter::csvForComparison(comparison, hideIdentical)), labels);
}

void tst_FZComparisonCsvWriter::rowsFollowTheComparisonsOrder()
{
    FZResultSpotsSetsComparison comparison(makeSet("A", {"Spot 2", "Spot 10", "Spot 1"}),
                                           makeSet("B", {"Spot 1", "Spot 3"}, {}, 1));
    QCOMPARE(firstColumn(FZComparisonCsvWriter::csvForComparison(comparison, false)),
             (QStringList{"Spot 10", "Spot 3", "Spot 2", "Spot 1"}));
    comparison.toggleSortByName();
    QCOMPARE(firstColumn(FZComparisonCsvWriter::csvForComparison(comparison, false)),
             (QStringList{"Spot 1", "Spot 2", "Spot 3", "Spot 10"}));
}

void tst_FZComparisonCsvWriter::verdict_data()
{
    QTest::addColumn<QList<double>>("before");
    QTest::addColumn<QList<double>>("after");
    QTest::addColumn<QString>("language");
    QTest::addColumn<QString>("text");
    QTest::newRow("odd count") << QList<double>{10, 20, 40} << QList<double>{11, 30, 30} << "en"
                               << "Faster at 2 of 3 spots, median change +10 %";
    QTest::newRow("even count: mean of the middle two") << QList<double>{10, 10, 10, 10}
                                                        << QList<double>{5, 9, 13, 20} << "en"
                                                        << "Faster at 2 of 4 spots, median change +10 %";
    QTest::newRow("slower everywhere") << QList<double>{10, 10} << QList<double>{8, 9} << "en"
                                       << "Faster at 0 of 2 spots, median change -15 %";
    QTest::newRow("first speeds all 0") << QList<double>{0, 0} << QList<double>{3, 0} << "en"
                                        << "Faster at 1 of 2 spots";
    QTest::newRow("nothing paired") << QList<double>{} << QList<double>{} << "en"
                                    << "No spot was measured in both sets.";
    QTest::newRow("Spanish") << QList<double>{10, 20, 40} << QList<double>{11, 30, 30} << "es"
                             << "Más rápido en 2 de 3 puntos, cambio mediano +10 %";
}

void tst_FZComparisonCsvWriter::verdict()
{
    QFETCH(QList<double>, before);
    QFETCH(QList<double>, after);
    QFETCH(QString, language);
    QFETCH(QString, text);
    BMI18NManager::sharedInstance()->setCurrentLanguage(language);
    QStringList labels;
    for (qsizetype i = 0; i < before.size(); ++i)
        labels.append(QStringLiteral("Spot %1").arg(i + 1));
    auto second = makeSet("After", labels, after, 1);
    // An extra label on one side only counts for nothing.
    second->mutableSpots().append(spot("Garden", 99.0));
    for (const auto &s : second->mutableSpots())
        s->setTimeAfterTest(s->timeAfterTest() + 86400.0);
    const FZResultSpotsSetsComparison comparison(makeSet("Before", labels, before), second);
    QCOMPARE(FZComparisonReportRows(comparison, true).verdict(), text);
}

QTEST_GUILESS_MAIN(tst_FZComparisonCsvWriter)
#include "tst_FZComparisonCsvWriter.moc"
