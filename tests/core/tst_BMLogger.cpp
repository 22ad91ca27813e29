#include "core/BMError.h"
#include "core/BMLogger.h"

#include "LogCapture.h"

#include <QtTest>

class tst_BMLogger : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void levelsGoToTheirMessageTypes_data();
    void levelsGoToTheirMessageTypes();
    void observersGetFormattedLines();
    void categoryPerModule();
};

void tst_BMLogger::levelsGoToTheirMessageTypes_data()
{
    QTest::addColumn<int>("level");
    QTest::addColumn<int>("type");
    QTest::newRow("1 is detail") << 1 << int(QtDebugMsg);
    QTest::newRow("2 is information") << 2 << int(QtInfoMsg);
    QTest::newRow("3 is an error") << 3 << int(QtWarningMsg);
    QTest::newRow("above 3 is an error") << 7 << int(QtWarningMsg);
}

void tst_BMLogger::levelsGoToTheirMessageTypes()
{
    QFETCH(int, level);
    QFETCH(int, type);
    QLoggingCategory::setFilterRules(QStringLiteral("brightmere.*=true"));
    QTest::ignoreMessage(QtMsgType(type), qPrintable(QStringLiteral("[%1] BMWifiScanVC: appDidBecomeActive").arg(level)));
    BMLogger::sharedInstance().logFromModule(QStringLiteral("BMWifiScanVC"), level, QStringLiteral("appDidBecomeActive"));
    QLoggingCategory::setFilterRules(QString());
}

void tst_BMLogger::observersGetFormattedLines()
{
    LogCapture capture;
    QLoggingCategory::setFilterRules(QStringLiteral("brightmere.*=false"));
    BMLogger::sharedInstance().logFromModule(QStringLiteral("BMI18NManager"), 3, QStringLiteral("requestBundleDataError %@"),
                                             QVariant::fromValue(BMError(QStringLiteral("net"), 5, QStringLiteral("refused"))));
    BMLogger::sharedInstance().logFromModule(QStringLiteral("PlotItem"), 2, QStringLiteral("Added plot %lu"), std::size_t(3));
    QLoggingCategory::setFilterRules(QString());
    // Observers see lines even where the logging rules silence them.
    const auto lines = capture.lines();
    QCOMPARE(lines.size(), 2);
    QCOMPARE(lines.at(0).module, QStringLiteral("BMI18NManager"));
    QCOMPARE(lines.at(0).level, 3);
    QCOMPARE(lines.at(0).message, QStringLiteral("requestBundleDataError Error Domain=net Code=5 \"refused\""));
    QCOMPARE(lines.at(1).message, QStringLiteral("Added plot 3"));
}

void tst_BMLogger::categoryPerModule()
{
    BMLogger &logger = BMLogger::sharedInstance();
    QCOMPARE(QByteArray(logger.category(QStringLiteral("BMSpeedRecordCell")).categoryName()),
             QByteArray("brightmere.BMSpeedRecordCell"));
    QCOMPARE(&logger.category(QStringLiteral("BMSpeedRecordCell")), &logger.category(QStringLiteral("BMSpeedRecordCell")));
    QVERIFY(&logger.category(QStringLiteral("A")) != &logger.category(QStringLiteral("B")));
}

QTEST_GUILESS_MAIN(tst_BMLogger)
#include "tst_BMLogger.moc"
