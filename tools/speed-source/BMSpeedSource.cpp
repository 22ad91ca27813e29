#include "BMSpeedSource.h"

#include <Brightmere/platform/foundation/Clock.h>

#include <QNetworkInterface>
#include <QTcpSocket>
#include <QUrlQuery>

#include <algorithm>
#include <cmath>
#include <limits>

namespace {

// What is queued for one client before waiting for it to read: enough to
// keep a fast link busy between two turns of the event loop.
constexpr qint64 kHighWaterBytes = 1024 * 1024;
constexpr qsizetype kChunkBytes = 64 * 1024;
// A rated client that fell behind catches up by at most this much time.
constexpr double kMostLagSeconds = 1.0;

const QByteArray &filler()
{
    // Not all one byte, so a proxy that compresses in spite of "identity"
    // still moves roughly what was sent.
    static const QByteArray bytes = [] {
        QByteArray b(kChunkBytes, Qt::Uninitialized);
        quint32 x = 0x9e3779b9u;
        for (char &c : b) {
            x ^= x << 13;
            x ^= x >> 17;
            x ^= x << 5;
            c = char(x & 0xff);
        }
        return b;
    }();
    return bytes;
}

QByteArray page()
{
    return QByteArrayLiteral("Brightmere speed source: GET /stream for an endless stream, "
                             "/stream?bytes=N for N bytes.\n");
}

} // namespace

BMSpeedSource::BMSpeedSource(QObject *parent)
    : QObject(parent)
    , m_clock(&Brightmere::Clock::system())
{
    connect(&m_server, &QTcpServer::newConnection, this, &BMSpeedSource::accept);
}

BMSpeedSource::~BMSpeedSource()
{
    if (m_paceTimer != 0)
        m_clock->stopRepeating(m_paceTimer);
    const auto sockets = m_clients.keys();
    for (QTcpSocket *socket : sockets) {
        socket->disconnect(this);
        socket->abort();
        delete socket;
    }
}

void BMSpeedSource::setClock(Brightmere::Clock *clock)
{
    if (m_paceTimer != 0) {
        m_clock->stopRepeating(m_paceTimer);
        m_paceTimer = 0;
    }
    m_clock = clock ? clock : &Brightmere::Clock::system();
    updatePacing();
}

void BMSpeedSource::setBytesPerSecond(double bytesPerSecond)
{
    m_bytesPerSecond = std::isfinite(bytesPerSecond) && bytesPerSecond > 0.0 ? bytesPerSecond : 0.0;
}

void BMSpeedSource::setMaxClients(int maxClients)
{
    m_maxClients = std::max(1, maxClients);
}

quint16 BMSpeedSource::listen(const QHostAddress &address, quint16 port)
{
    if (!m_server.listen(address, port))
        return 0;
    // Many devices may connect in the same instant.
    m_server.setMaxPendingConnections(m_maxClients + 16);
    return m_server.serverPort();
}

quint16 BMSpeedSource::port() const
{
    return m_server.serverPort();
}

QHostAddress BMSpeedSource::address() const
{
    return m_server.serverAddress();
}

QList<QUrl> BMSpeedSource::streamUrls() const
{
    const auto urlFor = [this](const QHostAddress &host) {
        QUrl url;
        url.setScheme(QStringLiteral("http"));
        url.setHost(host.toString());
        url.setPort(port());
        url.setPath(QStringLiteral("/stream"));
        return url;
    };
    const QHostAddress bound = address();
    if (bound != QHostAddress::Any && bound != QHostAddress::AnyIPv4 && bound != QHostAddress::AnyIPv6)
        return {urlFor(bound)};

    QList<QUrl> network;
    QList<QUrl> loopback;
    for (const QNetworkInterface &interface : QNetworkInterface::allInterfaces()) {
        if (!interface.flags().testFlags(QNetworkInterface::IsUp | QNetworkInterface::IsRunning))
            continue;
        for (const QNetworkAddressEntry &entry : interface.addressEntries()) {
            const QHostAddress ip = entry.ip();
            // A link-local IPv6 address needs its interface named; a device cannot type it.
            if (ip.isLinkLocal())
                continue;
            if (bound == QHostAddress::AnyIPv4 && ip.protocol() != QAbstractSocket::IPv4Protocol)
                continue;
            if (bound == QHostAddress::AnyIPv6 && ip.protocol() != QAbstractSocket::IPv6Protocol)
                continue;
            (ip.isLoopback() ? loopback : network) << urlFor(ip);
        }
    }
    // IPv4 first: what people type.
    std::stable_sort(network.begin(), network.end(), [](const QUrl &a, const QUrl &b) {
        return !a.host().contains(u':') && b.host().contains(u':');
    });
    return network + loopback;
}

void BMSpeedSource::accept()
{
    while (QTcpSocket *socket = m_server.nextPendingConnection()) {
        if (m_clients.size() >= m_maxClients) {
            connect(socket, &QTcpSocket::disconnected, socket, &QObject::deleteLater);
            socket->write("HTTP/1.1 503 Service Unavailable\r\nContent-Length: 0\r\nConnection: close\r\n\r\n");
            socket->disconnectFromHost();
            continue;
        }
        Client client;
        client.peer = socket->peerAddress().toString();
        client.deadline = m_clock->now() + kRequestTimeoutSeconds;
        m_clients.insert(socket, client);
        connect(socket, &QTcpSocket::readyRead, this, [this, socket] { readRequest(socket); });
        connect(socket, &QTcpSocket::bytesWritten, this, [this, socket] { feed(socket); });
        connect(socket, &QTcpSocket::disconnected, this, [this, socket] { finish(socket); });
        updatePacing();
        if (socket->bytesAvailable() > 0)
            readRequest(socket);
    }
}

void BMSpeedSource::readRequest(QTcpSocket *socket)
{
    auto it = m_clients.find(socket);
    if (it == m_clients.end())
        return;
    Client &client = *it;
    if (client.answered) {
        socket->readAll(); // one request a connection; the rest is not read
        return;
    }
    client.head += socket->read(kMaxHeadBytes + 1 - client.head.size());
    const qsizetype end = client.head.indexOf("\r\n\r\n");
    if (end < 0) {
        if (client.head.size() > kMaxHeadBytes)
            refuse(socket, "431 Request Header Fields Too Large");
        return;
    }
    answer(socket, client);
}

void BMSpeedSource::answer(QTcpSocket *socket, Client &client)
{
    const QByteArray line = client.head.left(client.head.indexOf("\r\n"));
    const QList<QByteArray> parts = line.split(' ');
    if (parts.size() != 3 || !parts.at(2).startsWith("HTTP/1.") || !parts.at(1).startsWith('/')) {
        refuse(socket, "400 Bad Request");
        return;
    }
    const QByteArray &method = parts.at(0);
    const bool head = method == "HEAD";
    if (method != "GET" && !head) {
        refuse(socket, "405 Method Not Allowed");
        return;
    }
    const QByteArray &target = parts.at(1);
    const qsizetype mark = target.indexOf('?');
    const QByteArray path = mark < 0 ? target : target.left(mark);
    const QUrlQuery query(mark < 0 ? QString() : QString::fromLatin1(target.mid(mark + 1)));

    QByteArray headers = "HTTP/1.1 200 OK\r\nCache-Control: no-store\r\nConnection: close\r\n";
    client.answered = true;
    client.started = m_clock->now();
    if (path == "/") {
        const QByteArray text = page();
        headers += "Content-Type: text/plain; charset=utf-8\r\nContent-Length: " + QByteArray::number(text.size())
            + "\r\n\r\n";
        socket->write(head ? headers : headers + text);
        socket->disconnectFromHost();
        return;
    }
    if (path != "/stream") {
        refuse(socket, "404 Not Found");
        return;
    }
    headers += "Content-Type: application/octet-stream\r\n";
    if (query.hasQueryItem(QStringLiteral("bytes"))) {
        bool ok = false;
        const qint64 size = query.queryItemValue(QStringLiteral("bytes")).toLongLong(&ok);
        if (!ok || size < 0 || size > kMaxSizedBytes) {
            refuse(socket, "400 Bad Request");
            return;
        }
        headers += "Content-Length: " + QByteArray::number(size) + "\r\n";
        client.bodyLeft = size;
    } else {
        // No length: the body lasts until the client closes.
        client.endless = true;
    }
    socket->write(headers + "\r\n");
    if (head) {
        client.endless = false;
        client.bodyLeft = 0;
    }
    feed(socket);
}

void BMSpeedSource::refuse(QTcpSocket *socket, const QByteArray &status)
{
    auto it = m_clients.find(socket);
    if (it != m_clients.end()) {
        it->answered = true;
        it->endless = false;
        it->bodyLeft = 0;
    }
    socket->write("HTTP/1.1 " + status + "\r\nContent-Length: 0\r\nConnection: close\r\n\r\n");
    socket->disconnectFromHost();
}

void BMSpeedSource::feed(QTcpSocket *socket)
{
    auto it = m_clients.find(socket);
    if (it == m_clients.end() || !it->answered || socket->state() != QAbstractSocket::ConnectedState)
        return;
    Client &client = *it;
    qint64 allowed = client.endless ? std::numeric_limits<qint64>::max() : client.bodyLeft;
    if (m_bytesPerSecond > 0.0) {
        double elapsed = m_clock->now() - client.started;
        // A client that read slowly is not flooded when it catches up.
        if (elapsed - double(client.bodySent) / m_bytesPerSecond > kMostLagSeconds) {
            client.started = m_clock->now() - double(client.bodySent) / m_bytesPerSecond - kMostLagSeconds;
            elapsed = m_clock->now() - client.started;
        }
        allowed = std::min(allowed, qint64(std::floor(m_bytesPerSecond * elapsed)) - client.bodySent);
    }
    const QByteArray &bytes = filler();
    while (allowed > 0 && socket->bytesToWrite() < kHighWaterBytes) {
        const qint64 n = std::min<qint64>(allowed, bytes.size());
        const qint64 written = socket->write(bytes.constData(), n);
        if (written <= 0)
            break;
        allowed -= written;
        client.bodySent += written;
        m_bytesSent += written;
        if (!client.endless)
            client.bodyLeft -= written;
    }
    if (!client.endless && client.bodyLeft == 0)
        socket->disconnectFromHost();
}

void BMSpeedSource::pace()
{
    const double now = m_clock->now();
    const auto sockets = m_clients.keys();
    for (QTcpSocket *socket : sockets) {
        const auto it = m_clients.constFind(socket);
        if (it == m_clients.cend())
            continue;
        if (!it->answered && now >= it->deadline)
            socket->abort(); // finish() runs from disconnected
        else if (m_bytesPerSecond > 0.0)
            feed(socket);
    }
}

void BMSpeedSource::finish(QTcpSocket *socket)
{
    const auto it = m_clients.constFind(socket);
    if (it == m_clients.cend())
        return;
    const Client client = *it;
    m_clients.erase(it);
    socket->disconnect(this);
    socket->deleteLater();
    updatePacing();
    if (client.answered)
        Q_EMIT clientFinished(client.peer, client.bodySent, m_clock->now() - client.started);
}

void BMSpeedSource::updatePacing()
{
    // The clock ticks only while someone is connected.
    if (m_clients.isEmpty() && m_paceTimer != 0) {
        m_clock->stopRepeating(m_paceTimer);
        m_paceTimer = 0;
    } else if (!m_clients.isEmpty() && m_paceTimer == 0) {
        m_paceTimer = m_clock->startRepeating(kPaceSeconds, [this] { pace(); });
    }
}
