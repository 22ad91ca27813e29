#include "core/BMHttpWiFiTester.h"
#include "core/BMSDKBackend.h"
#include "platform/foundation/ManualClock.h"

#include "TestEnvironment.h"
#include "WiFiTesterRecorder.h"

#include <QElapsedTimer>
#include <QPointer>
#include <QTcpServer>
#include <QTcpSocket>
#include <QTest>
#include <QTimer>

#include <memory>
#include <numeric>

namespace {

// An HTTP server on 127.0.0.1 that writes its answers by hand: a 404, or a
// body paced by a token bucket over the server's whole life (so timer jitter
// and reconnections leave the average rate alone), optionally dropped
// (closed or reset) after some bytes.
class RawHttpServer : public QTcpServer
{
public:
    int status = 200;
    qint64 bodyLength = 0;
    double bytesPerSecond = 0.0;
    qint64 dropAfter = -1;
    bool reset = false;
    int requests = 0;

    RawHttpServer()
    {
        listen(QHostAddress::LocalHost);
        connect(this, &QTcpServer::newConnection, this, [this] {
            while (QTcpSocket *socket = nextPendingConnection()) {
                connect(socket, &QTcpSocket::readyRead, this, [this, socket] { answer(socket); });
                connect(socket, &QTcpSocket::disconnected, socket, &QObject::deleteLater);
            }
        });
        m_pacer.setTimerType(Qt::PreciseTimer);
        connect(&m_pacer, &QTimer::timeout, this, [this] { pace(); });
        m_pacer.start(5);
    }
    QUrl url() const { return QUrl(QStringLiteral("http://127.0.0.1:%1/blob").arg(serverPort())); }

private:
    void answer(QTcpSocket *socket)
    {
        const QByteArray request = socket->property("request").toByteArray() + socket->readAll();
        socket->setProperty("request", request.contains("\r\n\r\n") ? QByteArray() : request);
        if (!request.contains("\r\n\r\n"))
            return;
        ++requests;
        if (status != 200) {
            socket->write("HTTP/1.1 404 Not Found\r\nContent-Length: 9\r\nConnection: close\r\n\r\nnot found");
            socket->disconnectFromHost();
            return;
        }
        socket->write("HTTP/1.1 200 OK\r\nConnection: close\r\nContent-Length: " + QByteArray::number(bodyLength)
                      + "\r\n\r\n");
        m_socket = socket;
        m_leftInBody = bodyLength;
        if (!m_bucket.isValid())
            m_bucket.start();
    }
    void pace()
    {
        if (!m_socket)
            return;
        qint64 due = qint64(bytesPerSecond * double(m_bucket.nsecsElapsed()) / 1e9) - m_sent;
        due = std::min(due, dropAfter >= 0 ? std::min(m_leftInBody, dropAfter - m_sent) : m_leftInBody);
        if (due > 0) {
            m_socket->write(QByteArray(due, 'x'));
            m_sent += due;
            m_leftInBody -= due;
        }
        if (dropAfter >= 0 && m_sent >= dropAfter && reset)
            m_socket->abort();
        else if (m_leftInBody == 0 || (dropAfter >= 0 && m_sent >= dropAfter))
            m_socket->disconnectFromHost();
        else
            return;
        m_socket = nullptr;
    }

    QTimer m_pacer;
    QElapsedTimer m_bucket;
    QPointer<QTcpSocket> m_socket;
    qint64 m_sent = 0;
    qint64 m_leftInBody = 0;
};

constexpr double kInterval = 0.25;

} // namespace

class tst_BMHttpWiFiTester : public QObject
{
    Q_OBJECT

    std::unique_ptr<TestEnvironment> m_env;
    std::unique_ptr<BMHttpWiFiTester> m_tester;
    WiFiTesterRecorder m_recorder;

    void startTester(const QUrl &url)
    {
        BMSDKBackend::setSystemDownloadUrl(url);
        m_tester = std::make_unique<BMHttpWiFiTester>();
        m_tester->setResultDelegate(&m_recorder);
        m_tester->start();
        QVERIFY(m_recorder.events.isEmpty()); // never reported from inside start()
    }

private Q_SLOTS:
    void init()
    {
        m_env = std::make_unique<TestEnvironment>();
        BMSDKBackend::setSampleInterval(kInterval);
        m_recorder = WiFiTesterRecorder();
    }
    void cleanup()
    {
        m_tester.reset();
        m_env.reset();
    }

    void throughputMatchesTheServer_data()
    {
        QTest::addColumn<double>("mbps");
        QTest::addColumn<qint64>("bodyLength");
        QTest::addColumn<bool>("lateTicks");
        QTest::newRow("4 Mbps, one long download") << 4.0 << qint64(100'000'000) << false;
        QTest::newRow("8 Mbps, short downloads restarted") << 8.0 << qint64(150'000) << false;
        // Ticks twice as far apart as the interval: real elapsed time counts.
        QTest::newRow("4 Mbps, late ticks") << 4.0 << qint64(100'000'000) << true;
    }
    void throughputMatchesTheServer()
    {
        QFETCH(double, mbps);
        QFETCH(qint64, bodyLength);
        QFETCH(bool, lateTicks);
        Brightmere::ManualClock lateClock;
        if (lateTicks)
            BMSDKBackend::setClock(&lateClock);
        RawHttpServer server;
        server.bodyLength = bodyLength;
        server.bytesPerSecond = mbps * 1e6 / 8.0;
        startTester(server.url());
        QTRY_VERIFY_WITH_TIMEOUT(!m_recorder.events.isEmpty(), 10000);
        while (lateTicks && m_recorder.results.size() < 3) {
            QTest::qWait(int(kInterval * 2000));
            lateClock.advance(kInterval);
        }
        QTRY_VERIFY_WITH_TIMEOUT(m_recorder.results.size() >= (lateTicks ? 3 : 6), 10000);
        m_tester->stop();
        QCOMPARE(m_recorder.events.first(), QStringLiteral("setup"));
        QVERIFY(!m_recorder.events.contains("finish"));
        const QList<double> speeds = m_recorder.speeds();
        const double mean = std::accumulate(speeds.begin(), speeds.end(), 0.0) / speeds.size();
        QVERIFY2(std::abs(mean - mbps) <= mbps * 0.1, qPrintable(QStringLiteral("measured %1 Mbps").arg(mean)));
        QVERIFY(bodyLength > 1'000'000 || server.requests > 3);
        // Stopped: nothing more arrives.
        const qsizetype count = m_recorder.events.size();
        QTest::qWait(int(kInterval * 2000));
        QCOMPARE(m_recorder.events.size(), count);
    }

    void setupFails_data()
    {
        QTest::addColumn<QString>("address");
        QTest::addColumn<int>("code");
        QTest::newRow("no address configured") << QString() << int(BMWiFiTester::ErrorNoDownloadAddress);
        QTest::newRow("not an http address") << "ftp://127.0.0.1/blob" << int(BMWiFiTester::ErrorNoDownloadAddress);
        QTest::newRow("nothing listens") << "closed" << int(BMWiFiTester::ErrorConnectionFailed);
        QTest::newRow("server answers 404") << "404" << int(BMWiFiTester::ErrorConnectionFailed);
    }
    void setupFails()
    {
        QFETCH(QString, address);
        QFETCH(int, code);
        RawHttpServer server;
        server.status = 404;
        QUrl url(address);
        if (address == u"404") {
            url = server.url();
        } else if (address == u"closed") {
            QTcpServer probe;
            QVERIFY(probe.listen(QHostAddress::LocalHost));
            url = QUrl(QStringLiteral("http://127.0.0.1:%1/blob").arg(probe.serverPort()));
        }
        startTester(url);
        QTRY_VERIFY_WITH_TIMEOUT(m_recorder.events.contains("finish"), 10000);
        QCOMPARE(m_recorder.events, (QStringList{"setup-error", "finish"}));
        QVERIFY(!m_tester->isRunning());
        QCOMPARE(m_recorder.errors.first().code(), code);
        QCOMPARE(m_recorder.errors.first().domain(), BMWiFiTester::kErrorDomain);
    }

    void droppedConnectionFinishesTheTest_data()
    {
        QTest::addColumn<bool>("reset");
        QTest::newRow("closed mid-body") << false;
        QTest::newRow("reset mid-body") << true;
    }
    void droppedConnectionFinishesTheTest()
    {
        QFETCH(bool, reset);
        RawHttpServer server;
        server.bodyLength = 50'000'000;
        server.bytesPerSecond = 250'000.0;
        server.dropAfter = 150'000;
        server.reset = reset;
        startTester(server.url());
        QTRY_VERIFY_WITH_TIMEOUT(m_recorder.events.contains("finish"), 10000);
        QCOMPARE(m_recorder.events.first(), QStringLiteral("setup"));
        QVERIFY(!m_recorder.results.isEmpty());
        QCOMPARE(m_recorder.events.last(), QStringLiteral("finish"));
        QCOMPARE(m_recorder.errors.last().code(), int(BMWiFiTester::ErrorDownloadFailed));
        QVERIFY(!m_tester->isRunning());
        QCOMPARE(server.requests, 1);
    }
};

QTEST_GUILESS_MAIN(tst_BMHttpWiFiTester)
#include "tst_BMHttpWiFiTester.moc"
