// The HTTP tester against a loopback server that paces its body (a token
// bucket over the server's life, so timer jitter and reconnections leave the
// average rate alone): the mean speed measured beside the rate served, for
// one long download and for short downloads started again and again, on the
// system clock at a quarter-second interval. One JSON line per case. The
// tests check how the figure is made (tst_CoreServices); how close it comes
// to the served rate on a loaded machine is only printed here.
#include <Brightmere/core/BMHttpWiFiTester.h>
#include <Brightmere/core/BMSDKBackend.h>
#include <Brightmere/core/BMWiFiTesterDelegate.h>

#include <QCoreApplication>
#include <QElapsedTimer>
#include <QPointer>
#include <QTcpServer>
#include <QTcpSocket>
#include <QTextStream>
#include <QTimer>

namespace {

class PacedServer : public QTcpServer
{
public:
    PacedServer(qint64 bodyLength, double bytesPerSecond)
        : m_bodyLength(bodyLength)
        , m_bytesPerSecond(bytesPerSecond)
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
    int requests = 0;

private:
    void answer(QTcpSocket *socket)
    {
        const QByteArray request = socket->property("request").toByteArray() + socket->readAll();
        socket->setProperty("request", request.contains("\r\n\r\n") ? QByteArray() : request);
        if (!request.contains("\r\n\r\n"))
            return;
        ++requests;
        socket->write("HTTP/1.1 200 OK\r\nConnection: close\r\nContent-Length: " + QByteArray::number(m_bodyLength)
                      + "\r\n\r\n");
        m_socket = socket;
        m_leftInBody = m_bodyLength;
        if (!m_bucket.isValid())
            m_bucket.start();
    }
    void pace()
    {
        if (!m_socket)
            return;
        const qint64 due = std::min(qint64(m_bytesPerSecond * double(m_bucket.nsecsElapsed()) / 1e9) - m_sent, m_leftInBody);
        if (due > 0) {
            m_socket->write(QByteArray(due, 'x'));
            m_sent += due;
            m_leftInBody -= due;
        }
        if (m_leftInBody == 0) {
            m_socket->disconnectFromHost();
            m_socket = nullptr;
        }
    }

    qint64 m_bodyLength;
    double m_bytesPerSecond;
    QTimer m_pacer;
    QElapsedTimer m_bucket;
    QPointer<QTcpSocket> m_socket;
    qint64 m_sent = 0;
    qint64 m_leftInBody = 0;
};

struct Speeds : BMWiFiTesterDelegate
{
    QList<double> speeds;
    void wiFiTesterDidFinishSetupWithError(BMWiFiTester *, const std::optional<BMError> &) override {}
    void wiFiTesterDidUpdateWithTestResult(BMWiFiTester *, const WifiTestResult::Ptr &result) override
    {
        speeds << result->speedInMbps();
    }
    void wiFiTesterDidFinishWithError(BMWiFiTester *, const std::optional<BMError> &) override {}
};

} // namespace

int main(int argc, char *argv[])
{
    QCoreApplication app(argc, argv);
    BMSDKBackend::setSampleInterval(0.25);
    const struct
    {
        const char *name;
        double mbps;
        qint64 bodyLength;
    } cases[] = {{"one_long_download", 4.0, 100'000'000}, {"short_downloads_restarted", 8.0, 150'000}};
    for (const auto &c : cases) {
        PacedServer server(c.bodyLength, c.mbps * 1e6 / 8.0);
        BMSDKBackend::setSystemDownloadUrl(server.url());
        Speeds delegate;
        BMHttpWiFiTester tester;
        tester.setResultDelegate(&delegate);
        tester.start();
        QElapsedTimer waited;
        waited.start();
        while (delegate.speeds.size() < 12 && waited.elapsed() < 20000)
            QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents, 50);
        tester.stop();
        double sum = 0;
        for (double speed : std::as_const(delegate.speeds))
            sum += speed;
        const double mean = delegate.speeds.isEmpty() ? 0.0 : sum / double(delegate.speeds.size());
        QTextStream(stdout) << QStringLiteral(R"({"bench":"http_tester_speed","case":"%1","served_mbps":%2,"results":%3,"measured_mean_mbps":%4,"off_by_percent":%5,"downloads":%6})")
                                   .arg(QLatin1String(c.name))
                                   .arg(c.mbps)
                                   .arg(delegate.speeds.size())
                                   .arg(mean, 0, 'f', 3)
                                   .arg((mean - c.mbps) / c.mbps * 100.0, 0, 'f', 1)
                                   .arg(server.requests)
                            << '\n';
    }
    return 0;
}
