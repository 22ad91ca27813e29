#pragma once

#include <QHash>
#include <QHostAddress>
#include <QList>
#include <QObject>
#include <QTcpServer>
#include <QUrl>

class QTcpSocket;

namespace Brightmere {
class Clock;
}

// What a walking device downloads from to measure its Wi-Fi: a machine on
// the wired side serves bytes as fast as the link takes them (or at a set
// rate), over plain HTTP, to as many devices as ask at once.
//
//   GET /stream             an endless body; the client ends it by closing
//   GET /stream?bytes=N     exactly N bytes (Content-Length), then close
//   GET /                   a line of text saying the above
//
// HEAD answers the same headers without a body. Everything else is refused
// with a status and the connection closed: another path 404, another method
// 405, a request head over kMaxHeadBytes 431, more clients than the limit
// 503, a request that is not HTTP 400. A client that sends no full request
// head within kRequestTimeoutSeconds is dropped.
//
// A rate (bytes per second, per client; 0 = as fast as possible) paces each
// body by the clock's time since the client's answer began: after t seconds
// a client has been sent exactly floor(rate * t) bytes (less when it reads
// slower), so a test with a ManualClock knows every count beforehand.
class BMSpeedSource : public QObject
{
    Q_OBJECT

public:
    static constexpr qint64 kMaxHeadBytes = 16 * 1024;
    static constexpr int kDefaultMaxClients = 64;
    static constexpr double kRequestTimeoutSeconds = 10.0;
    // Pacing step of a rated body: a power of two, so the clock's sums stay exact.
    static constexpr double kPaceSeconds = 1.0 / 64.0;
    // The most a body asks for: 1 TB.
    static constexpr qint64 kMaxSizedBytes = 1'000'000'000'000;

    // The source's own clock is the system's; a test passes a ManualClock
    // (kept alive by the caller).
    explicit BMSpeedSource(QObject *parent = nullptr);
    ~BMSpeedSource() override;

    void setClock(Brightmere::Clock *clock);
    double bytesPerSecond() const { return m_bytesPerSecond; }
    void setBytesPerSecond(double bytesPerSecond);
    int maxClients() const { return m_maxClients; }
    void setMaxClients(int maxClients);

    // Starts listening (port 0 picks a free one); returns the port, 0 on failure.
    quint16 listen(const QHostAddress &address, quint16 port);
    quint16 port() const;
    QHostAddress address() const;
    // The addresses a device on the network would use, "http://<host>:<port>/stream":
    // the loopback one when listening there, otherwise one per address of an
    // interface that is up (loopback last).
    QList<QUrl> streamUrls() const;

    // Clients being answered now, and bytes of bodies sent so far (to all).
    int clientCount() const { return int(m_clients.size()); }
    qint64 bytesSent() const { return m_bytesSent; }

Q_SIGNALS:
    // A client's connection ended; body is the body bytes it was sent.
    void clientFinished(const QString &peer, qint64 bodyBytes, double seconds);

private:
    struct Client
    {
        QByteArray head;
        QString peer;
        bool answered = false;
        bool endless = false;
        qint64 bodyLeft = 0;
        qint64 bodySent = 0;
        double started = 0.0;
        double deadline = 0.0;
    };

    void accept();
    void readRequest(QTcpSocket *socket);
    void answer(QTcpSocket *socket, Client &client);
    void refuse(QTcpSocket *socket, const QByteArray &status);
    void feed(QTcpSocket *socket);
    void pace();
    void finish(QTcpSocket *socket);
    void updatePacing();

    QTcpServer m_server;
    Brightmere::Clock *m_clock = nullptr;
    int m_paceTimer = 0;
    double m_bytesPerSecond = 0.0;
    int m_maxClients = kDefaultMaxClients;
    qint64 m_bytesSent = 0;
    QHash<QTcpSocket *, Client> m_clients;
};
