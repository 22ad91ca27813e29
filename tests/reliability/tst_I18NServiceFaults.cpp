// Every fault a localisation service can throw at the kit, at every step of
// a refresh (the token, the bundle list, the bundle), against a manager that
// holds downloaded texts: the refresh must end in "kTextBundleNotAvailable",
// the texts held must still be returned, and the cache files and the stored
// record must stay byte for byte as they were.
#include <Brightmere/i18n/BMI18NManager.h>

#include "I18NTestHelpers.h"
#include "LogCapture.h"
#include "ScriptedHttpServer.h"
#include "TestEnvironment.h"
#include <Brightmere/core/BMSDKGeneralUtilities.h>
#include <Brightmere/i18n/BMI18NServiceManager.h>
#include <Brightmere/platform/foundation/UserDefaults.h>

#include <QRegularExpression>
#include <QTest>

namespace {

using S = ScriptedHttpServer;

const QString kTokenPath = QStringLiteral("/api/v2/auth/token");
const QString kInfoPath = QStringLiteral("/api/v2/message/info");
const QString kBundlePath = QStringLiteral("/api/v2/message/bundle/es");

// What a healthy service answers: Spanish is newer than the one held,
// English is not, so a refresh downloads Spanish only.
const QByteArray kTokenBody = R"({"code":200,"message":"OK","data":{"token":"scripted"}})";
const QByteArray kInfoBody = R"({"code":200,"message":"OK","data":{"bundleArray":[{"_id":"es","ts":2},{"_id":"en","ts":1}]}})";
const QByteArray kBundleBody = R"({"code":200,"message":"OK","data":{"_id":"es","ts":2,"contents":{"k_all":"fresh es"}}})";

// Faults that end in a timeout get a short one; every other row a generous
// one, so that a busy machine never turns another fault into a timeout.
constexpr double kShortTimeoutSeconds = 0.3;
constexpr double kTimeoutSeconds = 10.0;
constexpr qint64 kSizeCap = 2048;

QString cacheFile(const QString &name)
{
    return i18nCacheFolder() + u'/' + name;
}

QByteArray storedRecord()
{
    Brightmere::UserDefaults::standard().synchronize();
    return readFile(Brightmere::UserDefaults::standard().filePath());
}

} // namespace

class tst_I18NServiceFaults : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init()
    {
        m_env = std::make_unique<TestEnvironment>();
        QDir(cacheFile(QString())).removeRecursively();
        BMSDKGeneralUtilities::setOSLanguageOverride(QStringLiteral("en-US"));
        // No built-in table holds the keys used here: what shows is what was downloaded.
        Brightmere::LocalizedBundle::framework().setRoot(m_env->filePath("none"));
        Brightmere::LocalizedBundle::main().setRoot(m_env->filePath("none"));
        BMI18NManager::resetSharedInstanceForTesting();
        BMI18NServiceManager::sharedInstance()->clearAuthorizationToken();
        BMI18NServiceManager::sharedInstance()->manager()->setMaximumResponseSize(kSizeCap);
        m_outcomes = std::make_unique<I18NOutcomes>();
        BMI18NNotification::subscribe(m_outcomes.get(), BMNotificationDelivery::MainThread);
    }

    void cleanup()
    {
        QVERIFY(settle());
        BMI18NNotification::unsubscribe(m_outcomes.get());
        QCoreApplication::processEvents();
        restoreLocalisationDefaults();
        QDir(cacheFile(QString())).removeRecursively();
        m_env.reset();
    }

    void faults_data(); // below the class: moc loses its way in its raw strings' braces

    void faults()
    {
        QFETCH(QString, path);
        QFETCH(QString, cause);
        QFETCH(bool, recovers);
        ++m_injected;

        // Texts downloaded earlier, in memory and in the cache files.
        deliverBundle("en", 1, {{"k_all", "held en"}, {"k_en", "held en only"}});
        deliverBundle("es", 1, {{"k_all", "held es"}});
        QCOMPARE(BMI18NManager::stringForCode("k_all"), QStringLiteral("held es"));
        const QByteArray english = readFile(cacheFile("bundle_en"));
        const QByteArray spanish = readFile(cacheFile("bundle_user"));
        const QByteArray record = storedRecord();
        QVERIFY(english.contains("held en only") && spanish.contains("held es"));
        m_outcomes->clear();
        BMI18NServiceManager::sharedInstance()->manager()->setTimeoutInterval(
            cause == u"timed out" ? kShortTimeoutSeconds : kTimeoutSeconds);

        ScriptedHttpServer server;
        server.setAnswer(kTokenPath, S::http(200, kTokenBody));
        server.setAnswer(kInfoPath, S::http(200, kInfoBody));
        server.setAnswer(kBundlePath, S::http(200, kBundleBody));
        server.setAnswer(path, fetched<QByteArray>("answer"), S::Ending(fetched<int>("ending")), fetched<int>("dripMs"));
        BMSDKRestServiceManager::setBrightmereServerURL(server.baseUrl());
        LogCapture log;

        // Waiting in the event loop, so that the server answers at once.
        BMI18NManager::sharedInstance()->updateBundleTexts();
        QTRY_VERIFY_WITH_TIMEOUT(m_outcomes->total() > 0, 20000);
        QVERIFY(settle());
        QCOMPARE(m_outcomes->total(), 1);
        QVERIFY2(log.text().contains(QRegularExpression(cause)), qPrintable(log.text()));
        QCOMPARE(BMI18NManager::stringForCode("k_en"), QStringLiteral("held en only"));
        QCOMPARE(readFile(cacheFile("bundle_en")), english);
        QCOMPARE(m_outcomes->count(recovers ? "available" : "notAvailable"), 1);
        QCOMPARE(BMI18NManager::stringForCode("k_all"), QString(recovers ? "fresh es" : "held es"));
        QVERIFY(recovers || (readFile(cacheFile("bundle_user")) == spanish && storedRecord() == record));
        // A redirect loop is given up (after 50 hops, a few of them retried), not followed for ever.
        const qsizetype requests = server.requestedPaths().count(path);
        QVERIFY2(requests <= 100, qPrintable(QStringLiteral("%1 requests of %2").arg(requests).arg(path)));
        ++m_survived;
    }

    void cleanupTestCase()
    {
        qInfo("%d faults injected, %d survived: no crash, texts and cache files kept", m_injected, m_survived);
    }

private:
    std::unique_ptr<TestEnvironment> m_env;
    std::unique_ptr<I18NOutcomes> m_outcomes;
    int m_injected = 0;
    int m_survived = 0;
};

void tst_I18NServiceFaults::faults_data()
{
    QTest::addColumn<QString>("path");
    QTest::addColumn<QByteArray>("answer");
    QTest::addColumn<int>("ending");
    QTest::addColumn<int>("dripMs");
    // A pattern of the log line that names the cause.
    QTest::addColumn<QString>("cause");
    // The designed exception: a list the manager cannot read makes it
    // download the current language, which the healthy bundle then gives.
    QTest::addColumn<bool>("recovers");

    const int close = int(S::Ending::Close);
    const QByteArray padded = R"({"code":200,"message":"OK","data":{"pad":")" + QByteArray(2 * kSizeCap, 'x') + "\"}}";
    const struct
    {
        const char *name;
        QString path;
        QByteArray body;
    } stages[] = {{"token", kTokenPath, kTokenBody}, {"list", kInfoPath, kInfoBody}, {"bundle", kBundlePath, kBundleBody}};

    for (const auto &stage : stages) {
        const QByteArray healthy = S::http(200, stage.body);
        const qsizetype headLength = healthy.indexOf("\r\n\r\n") + 4;
        const auto row = [&stage](const char *fault) -> QTestData & { return QTest::addRow("%s: %s", stage.name, fault); };

        row("HTTP 500") << stage.path << S::http(500, "{}") << close << 0 << "HTTP 500" << false;
        row("HTTP 404") << stage.path << S::http(404, "{}") << close << 0 << "HTTP 404" << false;
        row("redirect loop") << stage.path << S::redirect(stage.path) << close << 0 << "[Rr]edirect" << false;
        row("body cut mid-way") << stage.path << healthy.first(headLength + stage.body.size() / 2) << close << 0
                                << "failed" << false;
        // Qt reports the reset, or hands over the bytes that came and the JSON step refuses them.
        row("connection reset mid-body") << stage.path << healthy.first(headLength + stage.body.size() / 2)
                                         << int(S::Ending::Reset) << 0 << "failed|not JSON" << false;
        row("connection reset in the head") << stage.path << healthy.first(headLength / 2) << int(S::Ending::Reset)
                                            << 0 << "failed" << false;
        row("very slow body") << stage.path << healthy << close << 50 << "timed out" << false;
        row("never answers") << stage.path << S::hang() << int(S::Ending::KeepOpen) << 0 << "timed out" << false;
        row("body over the cap, declared") << stage.path << S::http(200, padded) << close << 0
                                           << "larger than the limit" << false;
        row("body over the cap, undeclared") << stage.path << S::httpUntilClose(200, padded) << close << 0
                                             << "larger than the limit" << false;
        row("not JSON") << stage.path << S::http(200, "<html>") << close << 0 << "not JSON" << false;
        row("a JSON array") << stage.path << S::http(200, "[1,2]") << close << 0 << "JSON array" << false;
        // The list's envelope code is not read: without a list, the current language is downloaded.
        const bool isList = stage.path == kInfoPath;
        row("refused in the envelope") << stage.path << S::http(200, R"({"code":503,"message":"busy"})") << close
                                       << 0 << (isList ? "no \"bundleArray\"" : "busy") << isList;
    }

    // Valid JSON with the wrong types where the kit reads a value.
    const auto wrong = [close](const char *name, const QString &path, const QByteArray &data, const char *cause,
                               bool recovers) {
        QTest::addRow("%s", name) << path << S::http(200, R"({"code":200,"message":"OK","data":)" + data + "}")
                                  << close << 0 << cause << recovers;
    };
    wrong("token: token is a number", kTokenPath, R"({"token":5})", "holds no token", false);
    wrong("token: data is a list", kTokenPath, R"([{"token":"t"}])", "holds no token", false);
    wrong("list: data is a text", kInfoPath, R"("es")", "no \"bundleArray\"", true);
    wrong("list: bundleArray is an object", kInfoPath, R"({"bundleArray":{"_id":"es","ts":2}})",
          "no \"bundleArray\"", true);
    wrong("list: entries of the wrong types", kInfoPath, R"({"bundleArray":["es",5,null,{"_id":7,"ts":"2"}]})",
          "without a language code", true);
    wrong("bundle: data is a list", kBundlePath, R"([{"_id":"es"}])", "no data object", false);
    wrong("bundle: language code is a number", kBundlePath, R"({"_id":5,"ts":2,"contents":{}})",
          "no language code", false);
    wrong("bundle: contents is a text", kBundlePath, R"({"_id":"es","ts":2,"contents":"k_all=x"})",
          "\"contents\" is not a dictionary", false);
    wrong("bundle: contents is a list", kBundlePath, R"({"_id":"es","ts":2,"contents":[["k_all","x"]]})",
          "\"contents\" is not a dictionary", false);
    QTest::newRow("bundle: code is a text")
        << kBundlePath << S::http(200, R"({"code":"OK","message":"odd","data":{"_id":"es","ts":2,"contents":{}}})")
        << close << 0 << "odd" << false;
}

QTEST_GUILESS_MAIN(tst_I18NServiceFaults)
#include "tst_I18NServiceFaults.moc"
