#include "BMSpeedSource.h"
#include "WiFiTesterRecorder.h"
#include "TestEnvironment.h"
#include <Brightmere/core/BMHttpWiFiTester.h>
#include <Brightmere/core/BMSDKBackend.h>
#include <Brightmere/platform/foundation/ManualClock.h>

#include <QNetworkReply>
#include <QSignalSpy>
#include <QTcpSocket>
#include <QTest>

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

private Q_SLOTS:
    // Every client gets exactly what it asked for, all at the same time; what
    // a device or a stranger may send that is not a measurement is refused.
    void answers_data()
    {
        QTest::addColumn<QByteArray>("request");
        QTest::addColumn<int>("clients"); // 0: one, while an endless client holds the only place
        QTest::addColumn<QByteArray>("status");
        QTest::addColumn<qint64>("bytes");
        const QByteArray ok("HTTP/1.1 200 OK"), bad("HTTP/1.1 400 Bad Request");
        QTest::newRow("one client, 3 MB") << get("/stream?bytes=3000000") << 1 << ok << qint64(3'000'000);
        QTest::newRow("48 clients at once, 300 kB each") << get("/stream?bytes=300000") << 48 << ok << qint64(300'000);
        QTest::newRow("an empty body") << get("/stream?bytes=0") << 2 << ok << qint64(0);
        QTest::newRow("another path") << get("/etc/passwd") << 1 << QByteArray("HTTP/1.1 404 Not Found") << qint64(0);
        QTest::newRow("POST") << QByteArray("POST /stream HTTP/1.1\r\n\r\n") << 1
                              << QByteArray("HTTP/1.1 405 Method Not Allowed") << qint64(0);
        QTest::newRow("negative size") << get("/stream?bytes=-1") << 1 << bad << qint64(0);
        QTest::newRow("not HTTP") << QByteArray("hello\r\n\r\n") << 1 << bad << qint64(0);
        QTest::newRow("endless head") << "GET /stream HTTP/1.1\r\nX: " + QByteArray(40'000, 'a') << 1
                                      << QByteArray("HTTP/1.1 431 Request Header Fields Too Large") << qint64(0);
        QTest::newRow("one client too many") << get("/stream?bytes=1") << 0
                                             << QByteArray("HTTP/1.1 503 Service Unavailable") << qint64(0);
    }
    void answers()
    {
        QFETCH(int, clients);
        QFETCH(QByteArray, status);
        QFETCH(qint64, bytes);
        const bool ok = status == "HTTP/1.1 200 OK";
        BMSpeedSource source;
        if (clients == 0)
            source.setMaxClients(1);
        QVERIFY(source.listen(QHostAddress::LocalHost, 0));
        QSignalSpy finished(&source, &BMSpeedSource::clientFinished);
        std::unique_ptr<RawClient> holder;
        if (clients == 0) {
            holder = std::make_unique<RawClient>(source.port(), get("/stream"));
            QTRY_VERIFY(holder->bodyBytes() > 0);
        }
        std::vector<std::unique_ptr<RawClient>> all;
        for (int i = 0; i < std::max(1, clients); ++i)
            all.push_back(std::make_unique<RawClient>(source.port(), fetched<QByteArray>("request")));
        QTRY_VERIFY_WITH_TIMEOUT(std::all_of(all.begin(), all.end(), [](const auto &c) { return c->closed; }), 20000);
        for (const auto &client : all) {
            QCOMPARE(client->status(), status);
            QCOMPARE(client->bodyBytes(), bytes);
            QVERIFY(!ok || client->data.contains("\r\nContent-Length: " + QByteArray::number(bytes) + "\r\n"));
        }
        if (ok) {
            QCOMPARE(source.bytesSent(), bytes * clients);
            QTRY_COMPARE(finished.size(), clients);
            QCOMPARE(source.clientCount(), 0);
        }
    }

    // A rated body follows the clock to the byte.
    void rateFollowsTheClock()
    {
        Brightmere::ManualClock clock(1000.0);
        BMSpeedSource source;
        source.setClock(&clock);
        source.setBytesPerSecond(100'000.0);
        QVERIFY(source.listen(QHostAddress::LocalHost, 0));
        RawClient client(source.port(), get("/stream"));
        QTRY_VERIFY(client.bodyBytes() == 0);
        for (int step = 1; step <= 8; ++step) {
            clock.advance(0.25);
            QTRY_COMPARE(client.bodyBytes(), qint64(25'000) * step);
        }
        QCOMPARE(source.bytesSent(), qint64(200'000));
    }

    // The system backend's tester, pointed at the source as the README
    // says, measures from it until stopped; the source then lets it go,
    // counting exactly the bytes its clock let through.
    void testerMeasuresThroughIt()
    {
        TestEnvironment env;
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
        // The first tick lets 62,500 bytes out; once some are in, the second measures them.
        auto *download = tester->findChild<QNetworkReply *>();
        QVERIFY(download);
        bool arrived = false;
        connect(download, &QIODevice::readyRead, this, [&arrived] { arrived = true; });
        clock.advance(0.5);
        QTRY_VERIFY_WITH_TIMEOUT(arrived, 10000);
        clock.advance(0.5);
        QCOMPARE(int(recorder.results.size()), 2);
        QVERIFY2(recorder.speeds().constLast() > 0.0, "the second tick saw no byte");
        tester->stop();
        QVERIFY(recorder.errors.isEmpty());
        QTRY_COMPARE_WITH_TIMEOUT(finished.size(), 1, 10000);
        QCOMPARE(finished.first().at(1).toLongLong(), qint64(125'000));
        QCOMPARE(source.clientCount(), 0);
        tester.reset();
        BMSDKBackend::setClock(nullptr);
    }
};

QTEST_GUILESS_MAIN(tst_BMSpeedSource)
#include "tst_BMSpeedSource.moc"
