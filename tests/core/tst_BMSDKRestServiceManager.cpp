#include "core/BMSDKRestServiceManager.h"

#include "LogCapture.h"
#include "TestEnvironment.h"
#include "core/BMSDKHTTPSessionManager.h"
#include "platform/foundation/NotificationCenter.h"

#include <QHttpServer>
#include <QHttpServerRequest>
#include <QHttpServerResponse>
#include <QJsonArray>
#include <QJsonObject>
#include <QMutex>
#include <QTcpServer>
#include <QTcpSocket>
#include <QTest>
#include <QThread>
#include <QUrlQuery>

#include <atomic>
#include <memory>
#include <set>

namespace {

bool isOnNetworkThread()
{
    QThread *current = QThread::currentThread();
    return current == BMSDKHTTPSessionManager::networkThread() && current != QCoreApplication::instance()->thread();
}

struct Outcome
{
    bool succeeded = false;
    bool onNetworkThread = false;
    std::optional<BMSDKRestRequestTask> task;
    QVariantMap response;
    BMError error;
};

// Every handler call, whichever thread it came on.
class Recorder : public std::enable_shared_from_this<Recorder>
{
public:
    static std::shared_ptr<Recorder> create() { return std::make_shared<Recorder>(); }

    BMSDKHTTPSessionManager::SuccessBlock success()
    {
        return [self = shared_from_this()](const BMSDKRestRequestTask &task, const QVariantMap &response) {
            self->add({true, isOnNetworkThread(), task, response, {}});
        };
    }
    BMSDKHTTPSessionManager::FailureBlock failure()
    {
        return [self = shared_from_this()](const std::optional<BMSDKRestRequestTask> &task, const BMError &error) {
            self->add({false, isOnNetworkThread(), task, {}, error});
        };
    }
    std::function<void()> tokenSuccess()
    {
        return [self = shared_from_this()] { self->add({true, isOnNetworkThread(), std::nullopt, {}, {}}); };
    }

    int count() const
    {
        QMutexLocker lock(&m_mutex);
        return int(m_outcomes.size());
    }
    Outcome at(int i) const
    {
        QMutexLocker lock(&m_mutex);
        return m_outcomes.value(i);
    }
    QList<Outcome> outcomes() const
    {
        QMutexLocker lock(&m_mutex);
        return m_outcomes;
    }

private:
    void add(const Outcome &outcome)
    {
        QMutexLocker lock(&m_mutex);
        m_outcomes.append(outcome);
    }

    mutable QMutex m_mutex;
    QList<Outcome> m_outcomes;
};

// Lets everything already queued on the network thread run, then waits a
// little more, so a handler called twice would have been called by now.
bool settle()
{
    auto reached = std::make_shared<std::atomic<bool>>(false);
    BMSDKHTTPSessionManager::performOnNetworkThread([reached] { *reached = true; });
    const bool ok = QTest::qWaitFor([reached] { return reached->load(); }, 5000);
    QTest::qWait(50);
    return ok;
}

// Faults that a well-behaved HTTP server never produces, written by hand
// once the request's head has arrived.
class RawServer : public QObject
{
public:
    enum class Behaviour { NeverAnswer, HugeContentLength, StreamWithoutLength, CutMidBody };

    explicit RawServer(Behaviour behaviour, QObject *parent = nullptr)
        : QObject(parent)
        , m_behaviour(behaviour)
    {
        m_server.listen(QHostAddress::LocalHost, 0);
        connect(&m_server, &QTcpServer::newConnection, this, [this] {
            while (QTcpSocket *socket = m_server.nextPendingConnection()) {
                socket->setParent(this);
                connect(socket, &QTcpSocket::readyRead, socket, [this, socket] { onReadyRead(socket); });
            }
        });
    }

    QString url(const QString &path = QStringLiteral("/raw")) const
    {
        return QStringLiteral("http://127.0.0.1:%1%2").arg(m_server.serverPort()).arg(path);
    }

private:
    void onReadyRead(QTcpSocket *socket)
    {
        QByteArray &head = m_heads[socket];
        head += socket->readAll();
        if (!head.contains("\r\n\r\n") || m_answered.contains(socket))
            return;
        m_answered.insert(socket);
        switch (m_behaviour) {
        case Behaviour::NeverAnswer:
            break;
        case Behaviour::HugeContentLength:
            // Says 100 MiB and sends one byte: only an early check ends this quickly.
            socket->write("HTTP/1.1 200 OK\r\nContent-Type: application/json\r\nContent-Length: 104857600\r\n\r\n{");
            break;
        case Behaviour::StreamWithoutLength:
            // No length, no end: only a check while reading ends this quickly.
            socket->write("HTTP/1.1 200 OK\r\nContent-Type: application/json\r\nConnection: close\r\n\r\n");
            socket->write(QByteArray(64 * 1024, ' '));
            break;
        case Behaviour::CutMidBody:
            socket->write("HTTP/1.1 200 OK\r\nContent-Type: application/json\r\nContent-Length: 1000\r\n\r\n"
                          "{\"code\":");
            socket->flush();
            socket->disconnectFromHost();
            break;
        }
    }

    Behaviour m_behaviour;
    QTcpServer m_server;
    QHash<QTcpSocket *, QByteArray> m_heads;
    QSet<QTcpSocket *> m_answered;
};

QByteArray headerValue(const QHttpServerRequest &request, const QByteArray &name)
{
    const auto headers = request.headers();
    for (const auto &[key, value] : headers) {
        if (key.compare(name, Qt::CaseInsensitive) == 0)
            return value;
    }
    return {};
}

QHttpServerResponse json(const QJsonObject &object,
                         QHttpServerResponder::StatusCode status = QHttpServerResponder::StatusCode::Ok)
{
    return QHttpServerResponse(object, status);
}

const QString kToken = QStringLiteral("tok-8d1f");

} // namespace

class tst_BMSDKRestServiceManager : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void init();
    void cleanup();
    void cleanupTestCase();

    void tokenThenGetDeliversTheEnvelopeWithTheBearerToken();
    void authorizationHeader_data();
    void authorizationHeader();
    void tokenRequestsShareOneAnswer_data();
    void tokenRequestsShareOneAnswer();
    void tokenFailures_data();
    void tokenFailures();
    void failures_data();
    void failures();
    void parametersJoinTheQuery();
    void badAddresses_data();
    void badAddresses();
    void requestsFromManyThreadsAreEachAnsweredOnce();
    void baseAddress_data();
    void baseAddress();

private:
    QString url(const QString &path) const { return QStringLiteral("http://127.0.0.1:%1%2").arg(m_port).arg(path); }

    std::unique_ptr<TestEnvironment> m_env;
    QHttpServer m_server;
    quint16 m_port = 0;

    // What the service saw and how its token endpoint answers.
    int m_tokenRequests = 0;
    QString m_lastAppId;
    QByteArray m_lastAuthorization;
    QJsonObject m_tokenAnswer;
    QHttpServerResponder::StatusCode m_tokenStatus = QHttpServerResponder::StatusCode::Ok;

    std::shared_ptr<std::atomic<int>> m_connectivityNotifications = std::make_shared<std::atomic<int>>(0);
    int m_observer = 0;
    // Keeps a request running when the application exits.
    RawServer *m_silentAtExit = nullptr;
};

void tst_BMSDKRestServiceManager::initTestCase()
{
    m_server.route("/api/v2/auth/token", [this](const QHttpServerRequest &request) {
        ++m_tokenRequests;
        m_lastAppId = request.query().queryItemValue(QStringLiteral("appId"), QUrl::FullyDecoded);
        return json(m_tokenAnswer, m_tokenStatus);
    });
    m_server.route("/api/v2/message/info", [this](const QHttpServerRequest &request) {
        m_lastAuthorization = headerValue(request, "Authorization");
        return json({{"code", 200},
                     {"message", "OK"},
                     {"data", QJsonObject{{"bundleArray", QJsonArray{QJsonObject{{"_id", "en"}, {"ts", 7}}}}}}});
    });
    m_server.route("/status500", [] {
        return json({{"code", 500}, {"message", "boom"}}, QHttpServerResponder::StatusCode::InternalServerError);
    });
    m_server.route("/unauthorized", [] {
        return json({{"code", 401}}, QHttpServerResponder::StatusCode::Unauthorized);
    });
    m_server.route("/malformed", [] {
        return QHttpServerResponse(QByteArray("application/json"), QByteArray("{\"code\": 200, \"data\": "));
    });
    m_server.route("/array", [] { return QHttpServerResponse(QJsonArray{1, 2, 3}); });
    m_server.route("/big", [] {
        return json({{"code", 200}, {"data", QString(2048, u'x')}});
    });
    m_server.route("/big500", [] {
        return json({{"data", QString(2048, u'x')}}, QHttpServerResponder::StatusCode::InternalServerError);
    });
    m_server.route("/echo", [](const QHttpServerRequest &request) {
        QJsonObject items;
        const auto pairs = request.query().queryItems(QUrl::FullyDecoded);
        for (const auto &[key, value] : pairs) {
            const QString earlier = items.value(key).toString();
            items.insert(key, earlier.isEmpty() ? value : earlier + u',' + value);
        }
        return json(items);
    });
    m_port = m_server.listen(QHostAddress::LocalHost, 0);
    QVERIFY(m_port != 0);

    Brightmere::NotificationCenter::defaultCenter().addObserver(
        &m_observer, QString::fromLatin1(kRestServiceConnectivityErrorNotification),
        [count = m_connectivityNotifications](const Brightmere::Notification &) { ++*count; });
}

void tst_BMSDKRestServiceManager::init()
{
    m_env = std::make_unique<TestEnvironment>();
    BMSDKRestServiceManager::setBrightmereServerURL(url(QString()));
    BMSDKRestServiceManager::setApplicationIdentifier(QString());
    m_tokenRequests = 0;
    m_lastAppId.clear();
    m_lastAuthorization.clear();
    m_tokenAnswer = {{"code", 200}, {"message", "OK"}, {"data", QJsonObject{{"token", kToken}}}};
    m_tokenStatus = QHttpServerResponder::StatusCode::Ok;
    *m_connectivityNotifications = 0;
}

void tst_BMSDKRestServiceManager::cleanup()
{
    QVERIFY(settle());
    BMSDKRestServiceManager::setBrightmereServerURL(QString());
    BMSDKRestServiceManager::setApplicationIdentifier(QString());
    qunsetenv("BRIGHTMERE_SERVER_URL");
    m_env.reset();
}

void tst_BMSDKRestServiceManager::cleanupTestCase()
{
    Brightmere::NotificationCenter::defaultCenter().removeObserver(&m_observer);
    // Left running on purpose: the network thread must still stop at exit
    // without calling the handler and without hanging the process.
    // Never deleted, so its connection stays open until the process ends.
    m_silentAtExit = new RawServer(RawServer::Behaviour::NeverAnswer);
    static BMSDKHTTPSessionManager client;
    client.GET(m_silentAtExit->url(), {}, {}, [](const std::optional<BMSDKRestRequestTask> &, const BMError &) {
        qFatal("a handler ran during application exit");
    }, false);
    QVERIFY(settle());
}

void tst_BMSDKRestServiceManager::tokenThenGetDeliversTheEnvelopeWithTheBearerToken()
{
    BMSDKRestServiceManager::setApplicationIdentifier(QStringLiteral("com.example.host app&co"));
    BMSDKRestServiceManager manager;
    auto token = Recorder::create();
    manager.startRequestForAppAuthorizationTokenWithSuccessBlock(token->tokenSuccess(), token->failure(), false);
    QTRY_COMPARE(token->count(), 1);
    QVERIFY(token->at(0).succeeded);
    QVERIFY(token->at(0).onNetworkThread);
    QCOMPARE(m_lastAppId, QStringLiteral("com.example.host app&co"));
    QVERIFY(manager.hasAuthorizationToken());

    auto get = Recorder::create();
    manager.manager()->GET(url("/api/v2/message/info"), {}, get->success(), get->failure(), false);
    QTRY_COMPARE(get->count(), 1);
    const Outcome outcome = get->at(0);
    QVERIFY(outcome.succeeded);
    QVERIFY(outcome.onNetworkThread);
    QCOMPARE(outcome.task->statusCode(), 200);
    QCOMPARE(outcome.task->url().path(), QStringLiteral("/api/v2/message/info"));
    QCOMPARE(outcome.response.value(kRestServiceResponseCodeKey).toInt(), kRestServiceResponseCodeSuccessValue);
    QCOMPARE(outcome.response.value(kRestServiceResponseMessageKey).toString(), QStringLiteral("OK"));
    const QVariantMap data = outcome.response.value(kRestServiceResponseDataKey).toMap();
    const QVariantList bundles = data.value("bundleArray").toList();
    QCOMPARE(bundles.size(), 1);
    QCOMPARE(bundles.first().toMap().value("_id").toString(), QStringLiteral("en"));
    QCOMPARE(bundles.first().toMap().value("ts").toInt(), 7);
    QCOMPARE(m_lastAuthorization, "Bearer " + kToken.toUtf8());

    QVERIFY(settle());
    QCOMPARE(token->count(), 1);
    QCOMPARE(get->count(), 1);
}

void tst_BMSDKRestServiceManager::authorizationHeader_data()
{
    QTest::addColumn<bool>("obtainToken");
    QTest::addColumn<bool>("answered401");
    QTest::addColumn<QByteArray>("expectedHeader");

    QTest::newRow("no token held sends no header") << false << false << QByteArray();
    QTest::newRow("a held token goes as bearer") << true << false << "Bearer " + kToken.toUtf8();
    QTest::newRow("a token refused with 401 is dropped") << true << true << QByteArray();
}

void tst_BMSDKRestServiceManager::authorizationHeader()
{
    QFETCH(bool, obtainToken);
    QFETCH(bool, answered401);
    QFETCH(QByteArray, expectedHeader);

    BMSDKRestServiceManager manager;
    if (obtainToken) {
        auto token = Recorder::create();
        manager.startRequestForAppAuthorizationTokenWithSuccessBlock(token->tokenSuccess(), token->failure(), false);
        QTRY_COMPARE(token->count(), 1);
    }
    if (answered401) {
        auto refused = Recorder::create();
        manager.manager()->GET(url("/unauthorized"), {}, refused->success(), refused->failure(), false);
        QTRY_COMPARE(refused->count(), 1);
        QCOMPARE(refused->at(0).error.code(), 401);
    }
    m_lastAuthorization = "unset";
    auto get = Recorder::create();
    manager.manager()->GET(url("/api/v2/message/info"), {}, get->success(), get->failure(), false);
    QTRY_COMPARE(get->count(), 1);
    QCOMPARE(m_lastAuthorization, expectedHeader);
    QCOMPARE(manager.hasAuthorizationToken(), !expectedHeader.isEmpty());
}

void tst_BMSDKRestServiceManager::tokenRequestsShareOneAnswer_data()
{
    QTest::addColumn<bool>("secondWhileFirstRuns");

    QTest::newRow("second call after the first was answered") << false;
    QTest::newRow("second call while the first runs") << true;
}

void tst_BMSDKRestServiceManager::tokenRequestsShareOneAnswer()
{
    QFETCH(bool, secondWhileFirstRuns);

    BMSDKRestServiceManager manager;
    auto first = Recorder::create();
    auto second = Recorder::create();
    manager.startRequestForAppAuthorizationTokenWithSuccessBlock(first->tokenSuccess(), first->failure(), false);
    if (!secondWhileFirstRuns)
        QTRY_COMPARE(first->count(), 1);
    manager.startRequestForAppAuthorizationTokenWithSuccessBlock(second->tokenSuccess(), second->failure(), false);
    QTRY_COMPARE(first->count() + second->count(), 2);
    QVERIFY(settle());

    QCOMPARE(m_tokenRequests, 1);
    for (const auto &recorder : {first, second}) {
        QCOMPARE(recorder->count(), 1);
        QVERIFY(recorder->at(0).succeeded);
        QVERIFY(recorder->at(0).onNetworkThread);
    }
}

void tst_BMSDKRestServiceManager::tokenFailures_data()
{
    QTest::addColumn<QJsonObject>("answer");
    QTest::addColumn<int>("httpStatus");
    QTest::addColumn<int>("expectedCode");
    QTest::addColumn<QString>("expectedFragment");

    QTest::newRow("the service refuses with its code and message")
        << QJsonObject{{"code", 403}, {"message", "unknown application"}} << 200 << 403 << "unknown application";
    QTest::newRow("an answer without a token")
        << QJsonObject{{"code", 200}, {"data", QJsonObject{}}} << 200 << int(kRestServiceErrorMalformedResponse)
        << "no token";
    QTest::newRow("a token that is not text")
        << QJsonObject{{"code", 200}, {"data", QJsonObject{{"token", 42}}}} << 200
        << int(kRestServiceErrorMalformedResponse) << "no token";
    QTest::newRow("the token endpoint fails with HTTP 500") << QJsonObject{{"code", 500}} << 500 << 500 << "HTTP 500";
}

void tst_BMSDKRestServiceManager::tokenFailures()
{
    QFETCH(QJsonObject, answer);
    QFETCH(int, httpStatus);
    QFETCH(int, expectedCode);
    QFETCH(QString, expectedFragment);

    m_tokenAnswer = answer;
    m_tokenStatus = QHttpServerResponder::StatusCode(httpStatus);
    BMSDKRestServiceManager manager;
    auto token = Recorder::create();
    manager.startRequestForAppAuthorizationTokenWithSuccessBlock(token->tokenSuccess(), token->failure(), false);
    QTRY_COMPARE(token->count(), 1);
    QVERIFY(settle());
    QCOMPARE(token->count(), 1);
    const Outcome outcome = token->at(0);
    QVERIFY(!outcome.succeeded);
    QVERIFY(outcome.onNetworkThread);
    QCOMPARE(outcome.error.code(), expectedCode);
    QVERIFY2(outcome.error.localizedDescription().contains(expectedFragment), qPrintable(outcome.error.toString()));
    QVERIFY(!manager.hasAuthorizationToken());

    // A failed request must not leave the next caller waiting for it.
    auto again = Recorder::create();
    manager.startRequestForAppAuthorizationTokenWithSuccessBlock(again->tokenSuccess(), again->failure(), false);
    QTRY_COMPARE(again->count(), 1);
    QCOMPARE(m_tokenRequests, 2);
}

void tst_BMSDKRestServiceManager::failures_data()
{
    QTest::addColumn<QString>("source");
    QTest::addColumn<qint64>("sizeCap");
    QTest::addColumn<double>("timeout");
    QTest::addColumn<bool>("announce");
    QTest::addColumn<int>("expectedCode");
    QTest::addColumn<int>("expectedStatus");
    QTest::addColumn<QString>("expectedFragment");
    QTest::addColumn<bool>("connectivity");

    const qint64 defaultCap = BMSDKHTTPSessionManager::kDefaultMaximumResponseSize;
    QTest::newRow("HTTP 500 fails with the status as code")
        << "/status500" << defaultCap << 5.0 << true << 500 << 500 << "HTTP 500" << false;
    QTest::newRow("HTTP 404 for an unknown path")
        << "/nothing-here" << defaultCap << 5.0 << true << 404 << 404 << "HTTP 404" << false;
    QTest::newRow("malformed JSON")
        << "/malformed" << defaultCap << 5.0 << true << int(kRestServiceErrorMalformedResponse) << 200 << "not JSON"
        << false;
    QTest::newRow("a JSON array instead of an object")
        << "/array" << defaultCap << 5.0 << true << int(kRestServiceErrorMalformedResponse) << 200 << "array"
        << false;
    QTest::newRow("body over the cap with Content-Length")
        << "/big" << qint64(1024) << 5.0 << true << int(kRestServiceErrorResponseTooLarge) << 200 << "larger than"
        << false;
    QTest::newRow("the status is reported before the size cap")
        << "/big500" << qint64(1024) << 5.0 << true << 500 << 500 << "HTTP 500" << false;
    QTest::newRow("declared length over the cap is refused before the body")
        << "raw:huge" << qint64(1024) << 10.0 << true << int(kRestServiceErrorResponseTooLarge) << 200
        << "larger than" << false;
    QTest::newRow("body over the cap without Content-Length is cut while reading")
        << "raw:stream" << qint64(1024) << 10.0 << true << int(kRestServiceErrorResponseTooLarge) << 200
        << "larger than" << false;
    QTest::newRow("a server that never answers times out")
        << "raw:never" << defaultCap << 0.3 << true << int(kRestServiceErrorTimedOut) << 0 << "timed out" << true;
    QTest::newRow("a body cut off mid-way")
        << "raw:cut" << defaultCap << 5.0 << true << int(kRestServiceErrorNotConnected) << 200 << "failed" << true;
    QTest::newRow("connection refused")
        << "refused" << defaultCap << 5.0 << true << int(kRestServiceErrorNotConnected) << 0 << "failed" << true;
    QTest::newRow("connection refused without the announcement")
        << "refused" << defaultCap << 5.0 << false << int(kRestServiceErrorNotConnected) << 0 << "failed" << true;
}

void tst_BMSDKRestServiceManager::failures()
{
    QFETCH(QString, source);
    QFETCH(qint64, sizeCap);
    QFETCH(double, timeout);
    QFETCH(bool, announce);
    QFETCH(int, expectedCode);
    QFETCH(int, expectedStatus);
    QFETCH(QString, expectedFragment);
    QFETCH(bool, connectivity);

    std::unique_ptr<RawServer> raw;
    QString address;
    if (source.startsWith(u'/')) {
        address = url(source);
    } else if (source == u"refused") {
        QTcpServer probe;
        QVERIFY(probe.listen(QHostAddress::LocalHost, 0));
        address = QStringLiteral("http://127.0.0.1:%1/gone").arg(probe.serverPort());
    } else {
        static const QHash<QString, RawServer::Behaviour> behaviours{
            {"raw:never", RawServer::Behaviour::NeverAnswer},
            {"raw:huge", RawServer::Behaviour::HugeContentLength},
            {"raw:stream", RawServer::Behaviour::StreamWithoutLength},
            {"raw:cut", RawServer::Behaviour::CutMidBody}};
        raw = std::make_unique<RawServer>(behaviours.value(source));
        address = raw->url();
    }

    BMSDKHTTPSessionManager client;
    client.setMaximumResponseSize(sizeCap);
    client.setTimeoutInterval(timeout);
    auto recorder = Recorder::create();
    client.GET(address, {}, recorder->success(), recorder->failure(), announce);
    QTRY_COMPARE_WITH_TIMEOUT(recorder->count(), 1, 15000);
    QVERIFY(settle());

    QCOMPARE(recorder->count(), 1);
    const Outcome outcome = recorder->at(0);
    QVERIFY(!outcome.succeeded);
    QVERIFY(outcome.onNetworkThread);
    QVERIFY(outcome.task.has_value());
    QCOMPARE(outcome.task->statusCode(), expectedStatus);
    QCOMPARE(outcome.error.domain(), QString::fromLatin1(kRestServiceErrorDomain));
    QCOMPARE(outcome.error.code(), expectedCode);
    QVERIFY2(outcome.error.localizedDescription().contains(expectedFragment), qPrintable(outcome.error.toString()));
    QCOMPARE(BMSDKHTTPSessionManager::isConnectivityError(outcome.error), connectivity);
    QCOMPARE(m_connectivityNotifications->load(), announce && connectivity ? 1 : 0);
}

void tst_BMSDKRestServiceManager::parametersJoinTheQuery()
{
    BMSDKHTTPSessionManager client;
    auto recorder = Recorder::create();
    const QVariantMap parameters{{"q", QStringLiteral("a b&c=d+e/é#f")},
                                 {"n", 3},
                                 {"flag", true},
                                 {"list", QStringList{"x", "y"}}};
    client.GET(url("/echo?fixed=1"), parameters, recorder->success(), recorder->failure(), false);
    QTRY_COMPARE(recorder->count(), 1);
    const QVariantMap echoed = recorder->at(0).response;
    QCOMPARE(echoed.value("fixed").toString(), QStringLiteral("1"));
    QCOMPARE(echoed.value("q").toString(), QStringLiteral("a b&c=d+e/é#f"));
    QCOMPARE(echoed.value("n").toString(), QStringLiteral("3"));
    QCOMPARE(echoed.value("flag").toString(), QStringLiteral("true"));
    QCOMPARE(echoed.value("list").toString(), QStringLiteral("x,y"));
    QCOMPARE(echoed.size(), 5);
}

void tst_BMSDKRestServiceManager::badAddresses_data()
{
    QTest::addColumn<QString>("address");

    QTest::newRow("empty") << QString();
    QTest::newRow("not HTTP") << "ftp://127.0.0.1/file";
    QTest::newRow("no scheme") << "127.0.0.1/api";
    QTest::newRow("no host") << "http:///api";
}

void tst_BMSDKRestServiceManager::badAddresses()
{
    QFETCH(QString, address);

    LogCapture log;
    BMSDKHTTPSessionManager client;
    auto recorder = Recorder::create();
    client.GET(address, {}, recorder->success(), recorder->failure(), true);
    QTRY_COMPARE(recorder->count(), 1);
    QVERIFY(settle());
    QCOMPARE(recorder->count(), 1);
    QVERIFY(!recorder->at(0).succeeded);
    QVERIFY(recorder->at(0).onNetworkThread);
    QVERIFY(!recorder->at(0).task.has_value());
    QCOMPARE(recorder->at(0).error.code(), int(kRestServiceErrorBadURL));
    QCOMPARE(m_connectivityNotifications->load(), 0);
    QVERIFY(log.contains(QStringLiteral("Not an HTTP address")));
}

void tst_BMSDKRestServiceManager::requestsFromManyThreadsAreEachAnsweredOnce()
{
    BMSDKHTTPSessionManager client;
    auto recorder = Recorder::create();
    constexpr int kThreads = 3;
    constexpr int kPerThread = 8;
    const QString echo = url("/echo");
    QList<QThread *> threads;
    for (int t = 0; t < kThreads; ++t) {
        threads.append(QThread::create([&client, recorder, echo, t] {
            for (int i = 0; i < kPerThread; ++i) {
                client.GET(echo, {{"from", QStringLiteral("%1-%2").arg(t).arg(i)}}, recorder->success(),
                           recorder->failure(), false);
            }
        }));
    }
    for (QThread *thread : std::as_const(threads))
        thread->start();
    for (QThread *thread : std::as_const(threads)) {
        QVERIFY(thread->wait(5000));
        delete thread;
    }

    // A handler may start the next request, as the localisation service does.
    auto chained = Recorder::create();
    client.GET(url("/echo"), {{"from", "first"}},
               [&client, chained, this](const BMSDKRestRequestTask &, const QVariantMap &) {
                   client.GET(url("/echo"), {{"from", "second"}}, chained->success(), chained->failure(), false);
               },
               chained->failure(), false);

    QTRY_COMPARE_WITH_TIMEOUT(recorder->count(), kThreads * kPerThread, 15000);
    QTRY_COMPARE(chained->count(), 1);
    QVERIFY(settle());
    QCOMPARE(recorder->count(), kThreads * kPerThread);

    std::set<quint64> identifiers;
    QSet<QString> senders;
    for (const Outcome &outcome : recorder->outcomes()) {
        QVERIFY(outcome.succeeded);
        QVERIFY(outcome.onNetworkThread);
        identifiers.insert(outcome.task->taskIdentifier());
        senders.insert(outcome.response.value("from").toString());
    }
    QCOMPARE(int(identifiers.size()), kThreads * kPerThread);
    QCOMPARE(int(senders.size()), kThreads * kPerThread);
    QCOMPARE(chained->at(0).response.value("from").toString(), QStringLiteral("second"));
}

void tst_BMSDKRestServiceManager::baseAddress_data()
{
    QTest::addColumn<QString>("environment");
    QTest::addColumn<QString>("hostSetting");
    QTest::addColumn<QString>("expected");

    QTest::newRow("default without environment or host setting") << "" << "" << "http://127.0.0.1:8787";
    QTest::newRow("environment, trailing slash dropped")
        << "http://service.invalid:9000/" << "" << "http://service.invalid:9000";
    QTest::newRow("the host's setting wins over the environment")
        << "http://service.invalid" << "http://host.invalid/base//" << "http://host.invalid/base";
}

void tst_BMSDKRestServiceManager::baseAddress()
{
    QFETCH(QString, environment);
    QFETCH(QString, hostSetting);
    QFETCH(QString, expected);

    if (!environment.isEmpty())
        qputenv("BRIGHTMERE_SERVER_URL", environment.toUtf8());
    BMSDKRestServiceManager::setBrightmereServerURL(hostSetting);
    QCOMPARE(BMSDKRestServiceManager::brightmereServerURL(), expected);
    QCOMPARE(BMSDKRestServiceManager().authorizationTokenURL(), expected + QStringLiteral("/api/v2/auth/token"));
}

QTEST_GUILESS_MAIN(tst_BMSDKRestServiceManager)
#include "tst_BMSDKRestServiceManager.moc"
