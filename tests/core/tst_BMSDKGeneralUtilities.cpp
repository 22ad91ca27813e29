#include "core/BMSDKGeneralUtilities.h"

#include "TestEnvironment.h"

#include <QTest>
#include <QTimeZone>

#include <ctime>
#include <memory>

class tst_BMSDKGeneralUtilities : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase()
    {
        // Two hours east of UTC without summer time, so "local time" rows
        // mean the same on every machine.
        qputenv("TZ", "BMT-2");
        tzset();
    }
    void init() { m_env = std::make_unique<TestEnvironment>(); }
    void cleanup() { m_env.reset(); }

    void urlEncode_data()
    {
        QTest::addColumn<QString>("language");
        QTest::addColumn<QString>("expectedTail");

        // Each language code lands after ".../message/bundle/".
        QTest::newRow("a plain code") << "es" << "es";
        QTest::newRow("reserved characters are kept") << ":/?#[]@!$&'()*+,;=" << ":/?#[]@!$&'()*+,;=";
        QTest::newRow("unreserved characters are kept") << "AZaz09-._~" << "AZaz09-._~";
        QTest::newRow("percent is kept so encoded text stays as it is") << "a%20b%" << "a%20b%";
        QTest::newRow("a space") << "pt BR" << "pt%20BR";
        QTest::newRow("double quote and angle brackets") << "a\"<b>" << "a%22%3Cb%3E";
        QTest::newRow("backslash, caret, backtick, braces, bar") << "\\^`{|}" << "%5C%5E%60%7B%7C%7D";
        QTest::newRow("controls") << "a\tb\n" << "a%09b%0A";
        QTest::newRow("non-ASCII as UTF-8 bytes") << "café/日本" << "caf%C3%A9/%E6%97%A5%E6%9C%AC";
    }

    void urlEncode()
    {
        QFETCH(QString, language);
        QFETCH(QString, expectedTail);
        QCOMPARE(BMSDKGeneralUtilities::urlEncodeWithFormat(QStringLiteral("%@/%@/%@/message/bundle/%@"),
                                                            "http://127.0.0.1:8787", "api", "v2", language),
                 QStringLiteral("http://127.0.0.1:8787/api/v2/message/bundle/") + expectedTail);
    }

    void dateText_data()
    {
        QTest::addColumn<QDateTime>("date");
        QTest::addColumn<QString>("expected");

        QTest::newRow("local time as given, padded")
            << QDateTime(QDate(2009, 1, 2), QTime(9, 5), Qt::LocalTime) << "09/01/02 09:05";
        QTest::newRow("UTC late evening is the next day here")
            << QDateTime(QDate(2021, 3, 4), QTime(22, 30), Qt::UTC) << "21/03/05 00:30";
        QTest::newRow("another zone is converted to local time")
            << QDateTime(QDate(2024, 7, 1), QTime(8, 0), QTimeZone(-5 * 3600)) << "24/07/01 15:00";
        QTest::newRow("seconds are dropped, not rounded; 24-hour clock")
            << QDateTime(QDate(2030, 12, 31), QTime(23, 59, 59, 999), Qt::LocalTime) << "30/12/31 23:59";
        QTest::newRow("an invalid date gives an empty text") << QDateTime() << "";
    }

    void dateText()
    {
        QFETCH(QDateTime, date);
        QFETCH(QString, expected);
        QCOMPARE(BMSDKGeneralUtilities::stringWithYYMMDDHMMFormatFromDate(date), expected);
    }

    void languages()
    {
        QVERIFY(!BMSDKGeneralUtilities::getOSLanguage().contains(u'_'));
        BMSDKGeneralUtilities::setOSLanguageOverride(QStringLiteral("pt-BR"));
        QCOMPARE(BMSDKGeneralUtilities::getOSLanguage(), QStringLiteral("pt-BR"));
        QCOMPARE(BMSDKGeneralUtilities::language(), QStringLiteral("pt")); // none told yet: the device's
        BMSDKGeneralUtilities::setLanguage(QStringLiteral("es"));
        QCOMPARE(BMSDKGeneralUtilities::language(), QStringLiteral("es"));
        BMSDKGeneralUtilities::setLanguage(QString());
        BMSDKGeneralUtilities::setOSLanguageOverride(QString());
    }

private:
    std::unique_ptr<TestEnvironment> m_env;
};

QTEST_GUILESS_MAIN(tst_BMSDKGeneralUtilities)
#include "tst_BMSDKGeneralUtilities.moc"
