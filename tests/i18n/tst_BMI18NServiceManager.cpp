#include "i18n/BMI18NServiceManager.h"

#include "BMLocalisationService.h"
#include "I18NTestHelpers.h"
#include "LogCapture.h"
#include "ScriptedHttpServer.h"
#include "TestEnvironment.h"

#include <QTcpSocket>

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

    void addresses()
    {
        BMSDKRestServiceManager::setBrightmereServerURL("https://i18n.example/root/"); // the trailing slash goes
        QCOMPARE(BMI18NServiceManager::bundleInfoUrl(), QStringLiteral("https://i18n.example/root/api/v2/message/info"));
        QCOMPARE(BMI18NServiceManager::bundleDataUrl("pt BR"), // a blank is encoded
                 QStringLiteral("https://i18n.example/root/api/v2/message/bundle/pt%20BR"));
    }

    void theListComesAfterTheTokenAndNamesTheFolder()
    {
        writeFile(m_env->filePath("en.json"), R"({"ts": 7, "contents": {"a": "A"}})");
        writeFile(m_env->filePath("es.json"), R"({"contents": {"a": "A"}})");
        writeFile(m_env->filePath("notes.txt"), "not a bundle");
        const qint64 esModified = QFileInfo(m_env->filePath("es.json")).lastModified().toSecsSinceEpoch();

        auto recorder = std::make_shared<HandlerRecorder>();
        BMI18NServiceManager *service = BMI18NServiceManager::sharedInstance();
        service->requestI18NBundleInfoWithSuccessBlock(recorder->success(), recorder->failure());
        QTRY_COMPARE(recorder->count(), 1);
        const HandlerRecorder::Outcome outcome = recorder->outcomes().first();
        QVERIFY(outcome.succeeded);
        QCOMPARE(m_service->requestedPaths(), QStringList({"/api/v2/auth/token", "/api/v2/message/info"}));
        const QVariantList list = outcome.response.value("data").toMap().value("bundleArray").toList();
        QCOMPARE(list.size(), 2);
        QCOMPARE(list.at(0).toMap(), QVariantMap({{"_id", "en"}, {"ts", 7}}));
        // Without a time stamp in the file, its modification time stands in.
        QCOMPARE(list.at(1).toMap().value("ts").toLongLong(), esModified);

        // With the token held, the next list request goes straight to the list.
        service->requestI18NBundleInfoWithSuccessBlock(recorder->success(), recorder->failure());
        QTRY_COMPARE(recorder->count(), 2);
        QCOMPARE(m_service->requestedPaths().size(), 3);
    }

    void failures_data()
    {
        QTest::addColumn<QString>("path");
        QTest::addColumn<QByteArray>("answer");
        QTest::addColumn<int>("requests");
        QTest::addColumn<bool>("withTask");
        QTest::addColumn<int>("tokenLogLines");

        QTest::newRow("token refused in the envelope: no task, one log line")
            << "/api/v2/auth/token" << ScriptedHttpServer::http(200, R"({"code":403,"message":"unknown"})") << 1
            << false << 1;
        QTest::newRow("token request answered HTTP 500: no task, one log line")
            << "/api/v2/auth/token" << ScriptedHttpServer::http(500, "{}") << 1 << false << 1;
        QTest::newRow("the list answered HTTP 500: the list's task")
            << "/api/v2/message/info" << ScriptedHttpServer::http(500, "{}") << 2 << true << 0;
    }

    void failures()
    {
        QFETCH(QString, path);
        QFETCH(QByteArray, answer);
        QFETCH(int, requests);
        QFETCH(bool, withTask);
        QFETCH(int, tokenLogLines);
        ScriptedHttpServer server;
        server.setAnswer(path, answer);
        BMSDKRestServiceManager::setBrightmereServerURL(server.baseUrl());
        LogCapture log;

        auto recorder = std::make_shared<HandlerRecorder>();
        BMI18NServiceManager::sharedInstance()->requestI18NBundleInfoWithSuccessBlock(recorder->success(),
                                                                                   recorder->failure());
        QTRY_COMPARE(recorder->count(), 1);
        QVERIFY(settle());
        QCOMPARE(recorder->count(), 1);
        const HandlerRecorder::Outcome outcome = recorder->outcomes().first();
        QVERIFY(!outcome.succeeded);
        QCOMPARE(outcome.task.has_value(), withTask);
        QCOMPARE(server.requestedPaths().size(), requests);
        QCOMPARE(log.messages().filter("BMI18NServiceManager::requestI18NBundleInfoWithSuccessBlock error").size(),
                 tokenLogLines);
    }

    void theServiceRefusesOversizedRequests_data()
    {
        QTest::addColumn<QByteArray>("request");
        QTest::addColumn<QByteArray>("status");
        const QByteArray get = "GET /api/v2/message/info HTTP/1.1\r\nHost: x\r\n";
        QTest::newRow("a head of 8 MB is refused early") << get + "X-Pad: " + QByteArray(8 << 20, 'a') << QByteArray("431");
        QTest::newRow("a declared body of 2 MB")
            << QByteArray("POST /api/v2/message/info HTTP/1.1\r\nContent-Length: 2097152\r\n\r\n") << QByteArray("413");
        QTest::newRow("a plain request still answered") << get + "\r\n" << QByteArray("200");
    }

    void theServiceRefusesOversizedRequests()
    {
        QFETCH(QByteArray, request);
        QFETCH(QByteArray, status);
        QTcpSocket client;
        client.connectToHost(QHostAddress::LocalHost, QUrl(m_service->baseUrl()).port());
        QVERIFY(client.waitForConnected(5000));
        // Written in pieces, as a client that keeps sending does; the service
        // answers and closes before the end of an oversized one.
        for (qsizetype at = 0; at < request.size() && client.state() == QAbstractSocket::ConnectedState
                               && client.bytesAvailable() == 0;
             at += 65536) {
            client.write(request.mid(at, 65536));
            client.waitForBytesWritten(1000);
            QCoreApplication::processEvents();
        }
        QByteArray answer;
        QTRY_VERIFY((answer += client.readAll()).contains("\r\n"));
        QVERIFY2(answer.startsWith("HTTP/1.1 " + status), answer.left(80).constData());
    }

private:
    std::unique_ptr<TestEnvironment> m_env;
    std::unique_ptr<BMLocalisationService> m_service;
};

QTEST_GUILESS_MAIN(tst_BMI18NServiceManager)
#include "tst_BMI18NServiceManager.moc"
