#include "core/BMSDKGeneralUtilities.h"

#include "TestEnvironment.h"

#include <QLocale>
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
        // A fixed local zone two hours east of UTC without summer time, so
        // that "local time" rows mean the same on every machine.
        qputenv("TZ", "BMT-2");
        tzset();
    }
    void init() { m_env = std::make_unique<TestEnvironment>(); }
    void cleanup()
    {
        BMSDKGeneralUtilities::setOSLanguageOverride(QString());
        BMSDKGeneralUtilities::setLanguage(QString());
        m_env.reset();
    }

    void urlEncode_data()
    {
        QTest::addColumn<QString>("text");
        QTest::addColumn<QString>("expected");

        QTest::newRow("a plain address is unchanged")
            << "http://127.0.0.1:8787/api/v2/message/info" << "http://127.0.0.1:8787/api/v2/message/info";
        QTest::newRow("reserved characters are kept") << ":/?#[]@!$&'()*+,;=" << ":/?#[]@!$&'()*+,;=";
        QTest::newRow("unreserved characters are kept") << "AZaz09-._~" << "AZaz09-._~";
        QTest::newRow("percent is kept so encoded text stays as it is") << "a%20b%" << "a%20b%";
        QTest::newRow("a space becomes %20") << "pt BR" << "pt%20BR";
        QTest::newRow("double quote and angle brackets") << "a\"<b>" << "a%22%3Cb%3E";
        QTest::newRow("backslash, caret, backtick, braces, bar") << "\\^`{|}" << "%5C%5E%60%7B%7C%7D";
        QTest::newRow("controls") << "a\tb\n" << "a%09b%0A";
        QTest::newRow("non-ASCII as UTF-8 bytes") << "café/日本" << "caf%C3%A9/%E6%97%A5%E6%9C%AC";
        QTest::newRow("query keeps its shape") << "info?lang=es&q=a b" << "info?lang=es&q=a%20b";
    }

    void urlEncode()
    {
        QFETCH(QString, text);
        QFETCH(QString, expected);
        QCOMPARE(BMSDKGeneralUtilities::urlEncode(text), expected);
    }

    void urlEncodeWithFormat_data()
    {
        QTest::addColumn<QString>("base");
        QTest::addColumn<QString>("language");
        QTest::addColumn<QString>("expected");

        QTest::newRow("bundle address for es")
            << "http://127.0.0.1:8787" << "es" << "http://127.0.0.1:8787/api/v2/message/bundle/es";
        QTest::newRow("a base with a path keeps its slashes")
            << "https://service.invalid/root" << "en" << "https://service.invalid/root/api/v2/message/bundle/en";
        QTest::newRow("a code with a blank is encoded")
            << "http://127.0.0.1:8787" << "pt BR" << "http://127.0.0.1:8787/api/v2/message/bundle/pt%20BR";
    }

    void urlEncodeWithFormat()
    {
        QFETCH(QString, base);
        QFETCH(QString, language);
        QFETCH(QString, expected);
        QCOMPARE(BMSDKGeneralUtilities::urlEncodeWithFormat(QStringLiteral("%@/%@/%@/message/bundle/%@"), base,
                                                            "api", "v2", language),
                 expected);
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
        QTest::newRow("seconds are dropped, not rounded")
            << QDateTime(QDate(2030, 12, 31), QTime(10, 59, 59, 999), Qt::LocalTime) << "30/12/31 10:59";
        QTest::newRow("24-hour clock") << QDateTime(QDate(2000, 6, 15), QTime(23, 1), Qt::LocalTime)
                                       << "00/06/15 23:01";
        QTest::newRow("reference date seconds") << QDateTime::fromSecsSinceEpoch(978307200, Qt::UTC)
                                                << "01/01/01 02:00";
        QTest::newRow("an invalid date gives an empty text") << QDateTime() << "";
    }

    void dateText()
    {
        QFETCH(QDateTime, date);
        QFETCH(QString, expected);
        QCOMPARE(BMSDKGeneralUtilities::stringWithYYMMDDHMMFormatFromDate(date), expected);
    }

    void languages_data()
    {
        QTest::addColumn<QString>("osOverride");
        QTest::addColumn<QString>("setLanguage");
        QTest::addColumn<QString>("expectedOS");
        QTest::addColumn<QString>("expectedLanguage");

        QTest::newRow("device language with its region; in use without it")
            << "pt-BR" << "" << "pt-BR" << "pt";
        QTest::newRow("the language told wins") << "pt-BR" << "es" << "pt-BR" << "es";
        QTest::newRow("a told language keeps its region") << "en-US" << "en-GB" << "en-US" << "en-GB";
    }

    void languages()
    {
        QFETCH(QString, osOverride);
        QFETCH(QString, setLanguage);
        QFETCH(QString, expectedOS);
        QFETCH(QString, expectedLanguage);

        BMSDKGeneralUtilities::setOSLanguageOverride(osOverride);
        BMSDKGeneralUtilities::setLanguage(setLanguage);
        QCOMPARE(BMSDKGeneralUtilities::getOSLanguage(), expectedOS);
        QCOMPARE(BMSDKGeneralUtilities::language(), expectedLanguage);
    }

    void deviceLanguageHasTheRegionForm()
    {
        const QString language = BMSDKGeneralUtilities::getOSLanguage();
        QVERIFY(!language.isEmpty());
        QVERIFY2(!language.contains(u'_'), qPrintable(language));
        const QStringList system = QLocale::system().uiLanguages();
        if (system.isEmpty() || system.first() == u"C")
            QCOMPARE(language, QStringLiteral("en-US"));
        else
            QCOMPARE(language, QString(system.first()).replace(u'_', u'-'));
    }

private:
    std::unique_ptr<TestEnvironment> m_env;
};

QTEST_GUILESS_MAIN(tst_BMSDKGeneralUtilities)
#include "tst_BMSDKGeneralUtilities.moc"
