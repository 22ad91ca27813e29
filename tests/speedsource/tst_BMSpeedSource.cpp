#include "BMSpeedSource.h"
#include "WiFiTesterRecorder.h"
#include "TestEnvironment.h"
#include "core/BMHttpWiFiTester.h"
#include "core/BMSDKBackend.h"
#include "platform/foundation/ManualClock.h"

#include <QSignalSpy>
#include <QTcpSocket>
#include <QTest>

#include <cmath>
#include <memory>

namespace {

// A client on its own connection that keeps every byte of the answer.
struct RawClient
{
    QTcpSocket socket;
    QByteArray data;
    bool closed = false;

    RawClient(quint16 port, const QByteArray &request)
    {
        QObject::connect(&socket, &QTcpSocket::readyRead, &socket, [this] { data += socket.readAll(); });
        QObject::connect(&socket, &QTcpSocket::disconnected, &socket, [this] { closed = true; });
        QObject::connect(&socket, &QTcpSocket::connected, &socket, [this, request] { socket.write(request); });
        socket.connectToHost(QHostAddress::LocalHost, port);
    }
    QByteArray status() const { return data.left(data.indexOf("\r\n")); }
    qint64 bodyBytes() const
    {
        const qsizetype end = data.indexOf("\r\n\r\n");
        return end < 0 ? -1 : data.size() - end - 4;
    }
};

QByteArray get(const QByteArray &target)
{
    return "GET " + target + " HTTP/1.1\r\nHost: 127.0.0.1\r\n\r\n";
}

} // namespace

class tst_BMSpeedSource : public QObject
{
    Q_OBJECT

    std::unique_ptr<TestEnvironment> m_env;

private Q_SLOTS:
    void init() { m_env = std::make_unique<TestEnvironment>(); }
    void cleanup() { m_env.reset(); }

    // Every client gets exactly what it asked for, all at the same time.
    void sizedBodiesToManyClients_data()
    {
        QTest::addColumn<int>("clients");
        QTest::addColumn<qint64>("bytes");
        QTest::newRow("one client, 3 MB") << 1 << qint64(3'000'000);
        QTest::newRow("48 clients at once, 300 kB each") << 48 << qint64(300'000);
        QTest::newRow("an empty body") << 2 << qint64(0);
    }
    void sizedBodiesToManyClients()
    {
        QFETCH(int, clients);
        QFETCH(qint64, bytes);
        BMSpeedSource source;
        QVERIFY(source.listen(QHostAddress::LocalHost, 0));
        QSignalSpy finished(&source, &BMSpeedSource::clientFinished);
        std::vector<std::unique_ptr<RawClient>> all;
        for (int i = 0; i < clients; ++i)
            all.push_back(std::make_unique<RawClient>(source.port(), get("/stream?bytes=" + QByteArray::number(bytes))));
        QTRY_VERIFY_WITH_TIMEOUT(std::all_of(all.begin(), all.end(), [](const auto &c) { return c->closed; }), 20000);
        for (const auto &client : all) {
            QCOMPARE(client->status(), QByteArray("HTTP/1.1 200 OK"));
            QVERIFY(client->data.contains("\r\nContent-Length: " + QByteArray::number(bytes) + "\r\n"));
            QCOMPARE(client->bodyBytes(), bytes);
        }
        QCOMPARE(source.bytesSent(), bytes * clients);
        QTRY_COMPARE(finished.size(), clients);
        QCOMPARE(source.clientCount(), 0);
    }

    // What a device or a stranger may send that is not a measurement.
    void refusals_data()
    {
        QTest::addColumn<QByteArray>("request");
        QTest::addColumn<int>("maxClients");
        QTest::addColumn<QByteArray>("status");
        QTest::newRow("another path") << get("/etc/passwd") << 8 << QByteArray("HTTP/1.1 404 Not Found");
        QTest::newRow("POST") << QByteArray("POST /stream HTTP/1.1\r\n\r\n") << 8
                              << QByteArray("HTTP/1.1 405 Method Not Allowed");
        QTest::newRow("negative size") << get("/stream?bytes=-1") << 8 << QByteArray("HTTP/1.1 400 Bad Request");
        QTest::newRow("size not a number") << get("/stream?bytes=1e9") << 8 << QByteArray("HTTP/1.1 400 Bad Request");
        QTest::newRow("not HTTP") << QByteArray("hello\r\n\r\n") << 8 << QByteArray("HTTP/1.1 400 Bad Request");
        QTest::newRow("endless head") << "GET /stream HTTP/1.1\r\nX: " + QByteArray(40'000, 'a') << 8
                                      << QByteArray("HTTP/1.1 431 Request Header Fields Too Large");
        QTest::newRow("one client too many") << get("/stream?bytes=1") << 0 << QByteArray("HTTP/1.1 503 Service Unavailable");
    }
    void refusals()
    {
        QFETCH(QByteArray, request);
        QFETCH(int, maxClients);
        QFETCH(QByteArray, status);
        BMSpeedSource source;
        source.setMaxClients(std::max(1, maxClients));
        QVERIFY(source.listen(QHostAddress::LocalHost, 0));
        // No room: an endless client holds the only place.
        std::unique_ptr<RawClient> holder;
        if (maxClients == 0) {
            holder = std::make_unique<RawClient>(source.port(), get("/stream"));
            QTRY_VERIFY(holder->bodyBytes() > 0);
        }
        RawClient client(source.port(), request);
        QTRY_VERIFY_WITH_TIMEOUT(client.closed, 10000);
        QCOMPARE(client.status(), status);
        QCOMPARE(client.bodyBytes(), qint64(0));
    }

    // A rated body follows the clock to the byte, and a client that leaves
    // is let go with what it was sent.
    void rateFollowsTheClock()
    {
        Brightmere::ManualClock clock(1000.0);
        BMSpeedSource source;
        source.setClock(&clock);
        source.setBytesPerSecond(100'000.0);
        QVERIFY(source.listen(QHostAddress::LocalHost, 0));
        QSignalSpy finished(&source, &BMSpeedSource::clientFinished);
        auto client = std::make_unique<RawClient>(source.port(), get("/stream"));
        QTRY_VERIFY(client->bodyBytes() == 0);
        for (int step = 1; step <= 8; ++step) {
            clock.advance(0.25);
            QTRY_COMPARE(client->bodyBytes(), qint64(25'000) * step);
        }
        QCOMPARE(source.bytesSent(), qint64(200'000));
        client.reset();
        QTRY_COMPARE(finished.size(), 1);
        QCOMPARE(finished.first().at(1).toLongLong(), qint64(200'000));
        QCOMPARE(source.clientCount(), 0);
    }

    // The system backend's tester, pointed at the source as the README
    // says, measures from it until stopped; the source then counts exactly
    // the bytes its clock let through.
    void testerMeasuresThroughIt()
    {
        Brightmere::ManualClock clock(1000.0);
        BMSDKBackend::setClock(&clock);
        BMSDKBackend::setSampleInterval(0.5);
        BMSpeedSource source;
        source.setClock(&clock);
        source.setBytesPerSecond(125'000.0); // 1 Mbps
        QVERIFY(source.listen(QHostAddress::LocalHost, 0));
        QSignalSpy finished(&source, &BMSpeedSource::clientFinished);
        BMSDKBackend::setSystemDownloadUrl(source.streamUrls().value(0));
        QCOMPARE(source.streamUrls().value(0).toString(), QStringLiteral("http://127.0.0.1:%1/stream").arg(source.port()));

        WiFiTesterRecorder recorder;
        auto tester = std::make_unique<BMHttpWiFiTester>();
        tester->setResultDelegate(&recorder);
        tester->start();
        QTRY_COMPARE_WITH_TIMEOUT(recorder.events.value(0), QStringLiteral("setup"), 10000);
        int ticks = 0;
        // Bytes cross the loopback between two ticks; a few ticks see them.
        while (ticks < 40 && (ticks < 4 || recorder.speeds().constLast() <= 0.0)) {
            clock.advance(0.5);
            ++ticks;
            QCOMPARE(int(recorder.results.size()), ticks);
            QTest::qWait(20);
        }
        QVERIFY2(recorder.speeds().constLast() > 0.0, "no tick saw a byte");
        tester->stop();
        QVERIFY(!recorder.events.contains("finish") || recorder.errors.isEmpty());
        QTRY_COMPARE_WITH_TIMEOUT(finished.size(), 1, 10000);
        QCOMPARE(finished.first().at(1).toLongLong(), qint64(62'500) * ticks);
        QCOMPARE(source.clientCount(), 0);
        tester.reset();
        BMSDKBackend::setClock(nullptr);
    }
};

QTEST_GUILESS_MAIN(tst_BMSpeedSource)
#include "tst_BMSpeedSource.moc"
