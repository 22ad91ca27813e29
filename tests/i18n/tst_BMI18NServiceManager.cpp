#include "i18n/BMI18NServiceManager.h"

#include "BMLocalisationService.h"
#include "LogCapture.h"
#include "ScriptedHttpServer.h"
#include "TestEnvironment.h"

#include <QFile>
#include <QFileInfo>
#include <QMutex>
#include <QTest>

#include <atomic>
#include <memory>

namespace {

struct Outcome
{
    bool succeeded = false;
    std::optional<BMSDKRestRequestTask> task;
    QVariantMap response;
    BMError error;
};

// Every handler call, from the network thread.
class Recorder : public std::enable_shared_from_this<Recorder>
{
public:
    BMSDKRestServiceManager::SuccessBlock success()
    {
        return [self = shared_from_this()](const BMSDKRestRequestTask &task, const QVariantMap &response) {
            self->add({true, task, response, {}});
        };
    }
    BMSDKRestServiceManager::FailureBlock failure()
    {
        return [self = shared_from_this()](const std::optional<BMSDKRestRequestTask> &task, const BMError &error) {
            self->add({false, task, {}, error});
        };
    }
    QList<Outcome> outcomes() const
    {
        QMutexLocker lock(&m_mutex);
        return m_outcomes;
    }
    int count() const { return int(outcomes().size()); }

private:
    void add(const Outcome &outcome)
    {
        QMutexLocker lock(&m_mutex);
        m_outcomes.append(outcome);
    }
    mutable QMutex m_mutex;
    QList<Outcome> m_outcomes;
};

// Lets the network thread finish what is queued, then a little more, so a
// handler called twice would have been called by now.
bool settle()
{
    auto reached = std::make_shared<std::atomic<bool>>(false);
    BMSDKHTTPSessionManager::performOnNetworkThread([reached] { *reached = true; });
    const bool ok = QTest::qWaitFor([reached] { return reached->load(); }, 5000);
    QTest::qWait(50);
    return ok;
}

void writeFile(const QString &path, const QByteArray &content)
{
    QFile file(path);
    QVERIFY(file.open(QIODevice::WriteOnly));
    file.write(content);
}

} // namespace

class tst_BMI18NServiceManager : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init()
    {
        m_env = std::make_unique<TestEnvironment>();
        m_service = std::make_unique<BMLocalisationService>();
        m_service->setFolder(m_env->path());
        QVERIFY(m_service->listen() != 0);
        BMSDKRestServiceManager::setBrightmereServerURL(m_service->baseUrl());
        BMI18NServiceManager::sharedInstance()->clearAuthorizationToken();
    }

    void cleanup()
    {
        QVERIFY(settle());
        BMSDKRestServiceManager::setBrightmereServerURL(QString());
        m_service.reset();
        m_env.reset();
    }

    void addresses_data()
    {
        QTest::addColumn<QString>("base");
        QTest::addColumn<QString>("language");
        QTest::addColumn<QString>("info");
        QTest::addColumn<QString>("bundle");

        QTest::newRow("plain base, es") << "http://127.0.0.1:9000" << "es" << "http://127.0.0.1:9000/api/v2/message/info"
                                        << "http://127.0.0.1:9000/api/v2/message/bundle/es";
        QTest::newRow("trailing slash of the base is dropped")
            << "https://i18n.example/root/" << "en" << "https://i18n.example/root/api/v2/message/info"
            << "https://i18n.example/root/api/v2/message/bundle/en";
        QTest::newRow("a language with a blank is encoded")
            << "http://h" << "pt BR" << "http://h/api/v2/message/info" << "http://h/api/v2/message/bundle/pt%20BR";
    }

    void addresses()
    {
        QFETCH(QString, base);
        QFETCH(QString, language);
        BMSDKRestServiceManager::setBrightmereServerURL(base);
        QFETCH(QString, info);
        QCOMPARE(BMI18NServiceManager::bundleInfoUrl(), info);
        QFETCH(QString, bundle);
        QCOMPARE(BMI18NServiceManager::bundleDataUrl(language), bundle);
    }

    void infoAsksForTheTokenFirstAndListsTheFolder()
    {
        writeFile(m_env->filePath("en.json"), R"({"ts": 7, "contents": {"a": "A"}})");
        writeFile(m_env->filePath("es.json"), R"({"contents": {"a": "A"}})");
        writeFile(m_env->filePath("notes.txt"), "not a bundle");
        const qint64 esModified = QFileInfo(m_env->filePath("es.json")).lastModified().toSecsSinceEpoch();

        auto recorder = std::make_shared<Recorder>();
        BMI18NServiceManager::sharedInstance()->requestI18NBundleInfoWithSuccessBlock(recorder->success(),
                                                                                   recorder->failure());
        QTRY_COMPARE(recorder->count(), 1);
        const Outcome outcome = recorder->outcomes().first();
        QVERIFY(outcome.succeeded);
        QCOMPARE(m_service->requestedPaths(),
                 QStringList({"/api/v2/auth/token", "/api/v2/message/info"}));
        QCOMPARE(outcome.response.value("code").toInt(), 200);
        const QVariantList list = outcome.response.value("data").toMap().value("bundleArray").toList();
        QCOMPARE(list.size(), 2);
        QCOMPARE(list.at(0).toMap().value("_id").toString(), QStringLiteral("en"));
        QCOMPARE(list.at(0).toMap().value("ts").toDouble(), 7.0);
        // A file without a time stamp is stamped with its modification time.
        QCOMPARE(list.at(1).toMap().value("_id").toString(), QStringLiteral("es"));
        QCOMPARE(list.at(1).toMap().value("ts").toLongLong(), esModified);

        // The token is held now: a second list request goes straight to the list.
        BMI18NServiceManager::sharedInstance()->requestI18NBundleInfoWithSuccessBlock(recorder->success(),
                                                                                   recorder->failure());
        QTRY_COMPARE(recorder->count(), 2);
        QCOMPARE(m_service->requestedPaths().size(), 3);
    }

    void bundleAnswers_data()
    {
        QTest::addColumn<QByteArray>("file");
        QTest::addColumn<QString>("language");
        QTest::addColumn<int>("code");
        QTest::addColumn<QString>("id");
        QTest::addColumn<QString>("messageFragment");

        const QByteArray bundle = R"({"ts": 3, "contents": {"fairzones_title": "Fairzone"}})";
        QTest::newRow("bundle of a listed language") << bundle << "es" << 200 << "es" << "OK";
        QTest::newRow("unknown language: refused in the envelope") << bundle << "fr" << 404 << "" << "No bundle";
        QTest::newRow("a file that is not JSON: refused") << QByteArray("{\"ts\": 3,") << "es" << 500 << ""
                                                          << "not a JSON object";
        QTest::newRow("not a language code: refused") << bundle << "es.json" << 400 << ""
                                                            << "not a language code";
    }

    void bundleAnswers()
    {
        QFETCH(QByteArray, file);
        QFETCH(QString, language);
        writeFile(m_env->filePath("es.json"), file);

        auto recorder = std::make_shared<Recorder>();
        BMI18NServiceManager::sharedInstance()->requestI18NBundleDataWithSuccessBlock(recorder->success(),
                                                                                   recorder->failure(), language);
        QTRY_COMPARE(recorder->count(), 1);
        const Outcome outcome = recorder->outcomes().first();
        QVERIFY(outcome.succeeded);
        // No token request before a bundle request.
        QCOMPARE(m_service->requestedPaths().size(), 1);
        QFETCH(int, code);
        QCOMPARE(outcome.response.value("code").toInt(), code);
        QFETCH(QString, messageFragment);
        QVERIFY(outcome.response.value("message").toString().contains(messageFragment));
        const QVariantMap data = outcome.response.value("data").toMap();
        QFETCH(QString, id);
        QCOMPARE(data.value("_id").toString(), id);
        if (outcome.response.value("code").toInt() == 200) {
            QCOMPARE(data.value("ts").toDouble(), 3.0);
            QCOMPARE(data.value("contents").toMap().value("fairzones_title").toString(), QStringLiteral("Fairzone"));
        }
    }

    void failedTokenCallsTheFailureHandlerOnceWithoutTask_data()
    {
        QTest::addColumn<QByteArray>("tokenAnswer");
        QTest::newRow("token refused in the envelope")
            << ScriptedHttpServer::http(200, R"({"code":403,"message":"unknown application"})");
        QTest::newRow("token request answered HTTP 500") << ScriptedHttpServer::http(500, "{}");
    }

    void failedTokenCallsTheFailureHandlerOnceWithoutTask()
    {
        ScriptedHttpServer server;
        QFETCH(QByteArray, tokenAnswer);
        server.setAnswer("/api/v2/auth/token", tokenAnswer);
        BMSDKRestServiceManager::setBrightmereServerURL(server.baseUrl());
        LogCapture log;

        auto recorder = std::make_shared<Recorder>();
        BMI18NServiceManager::sharedInstance()->requestI18NBundleInfoWithSuccessBlock(recorder->success(),
                                                                                   recorder->failure());
        QTRY_COMPARE(recorder->count(), 1);
        QVERIFY(settle());
        QCOMPARE(recorder->count(), 1);
        const Outcome outcome = recorder->outcomes().first();
        QVERIFY(!outcome.succeeded);
        QVERIFY(!outcome.task.has_value());
        QCOMPARE(server.requestedPaths(), QStringList{"/api/v2/auth/token"});
        QCOMPARE(log.messages().filter("BMI18NServiceManager::requestI18NBundleInfoWithSuccessBlock error").size(), 1);
    }

    void failedListRequestCarriesItsTask()
    {
        ScriptedHttpServer server;
        server.setAnswer("/api/v2/message/info", ScriptedHttpServer::http(500, "{}"));
        BMSDKRestServiceManager::setBrightmereServerURL(server.baseUrl());

        auto recorder = std::make_shared<Recorder>();
        BMI18NServiceManager::sharedInstance()->requestI18NBundleInfoWithSuccessBlock(recorder->success(),
                                                                                   recorder->failure());
        QTRY_COMPARE(recorder->count(), 1);
        const Outcome outcome = recorder->outcomes().first();
        QVERIFY(!outcome.succeeded);
        QVERIFY(outcome.task.has_value());
        QCOMPARE(outcome.task->statusCode(), 500);
        QCOMPARE(outcome.error.code(), 500);
    }

private:
    std::unique_ptr<TestEnvironment> m_env;
    std::unique_ptr<BMLocalisationService> m_service;
};

QTEST_GUILESS_MAIN(tst_BMI18NServiceManager)
#include "tst_BMI18NServiceManager.moc"
