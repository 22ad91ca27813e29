#include "BMBoundedTcpServer.h"

#include <QTcpSocket>
#include <QTimer>

#include <algorithm>

namespace {

constexpr int kCloseDelayMs = 500;

} // namespace

BMBoundedTcpServer::BMBoundedTcpServer(QObject *parent)
    : QTcpServer(parent)
{
}

void BMBoundedTcpServer::incomingConnection(qintptr descriptor)
{
    auto *socket = new QTcpSocket(this);
    if (!socket->setSocketDescriptor(descriptor)) {
        delete socket;
        return;
    }
    m_progress.insert(socket, Progress());
    // Connected before the HTTP server's own handler, so this one looks
    // at the bytes first.
    connect(socket, &QTcpSocket::readyRead, this, [this, socket] { inspect(socket); });
    connect(socket, &QObject::destroyed, this, [this, socket] { m_progress.remove(socket); });
    addPendingConnection(socket);
    Q_EMIT newConnection();
}

void BMBoundedTcpServer::inspect(QTcpSocket *socket)
{
    Progress &progress = m_progress[socket];
    // Only looked at, not taken: the HTTP server reads them next.
    QByteArray bytes = socket->peek(socket->bytesAvailable());
    while (!bytes.isEmpty()) {
        if (!progress.headDone) {
            const qsizetype before = progress.head.size();
            progress.head += bytes.left(kMaxHeadBytes + 4 - before);
            const qsizetype end = progress.head.indexOf("\r\n\r\n");
            if (end < 0) {
                if (progress.head.size() > kMaxHeadBytes)
                    return refuse(socket, progress, "431 Request Header Fields Too Large");
                return;
            }
            progress.headDone = true;
            bytes = bytes.mid(end + 4 - before);
            progress.head.truncate(end);
            progress.bodyExpected = 0;
            progress.bodySeen = 0;
            for (const QByteArray &line : progress.head.split('\n')) {
                if (line.trimmed().toLower().startsWith("content-length:"))
                    progress.bodyExpected = line.mid(line.indexOf(':') + 1).trimmed().toLongLong();
            }
            if (progress.bodyExpected > kMaxBodyBytes || progress.bodyExpected < 0)
                return refuse(socket, progress, "413 Content Too Large");
            continue;
        }
        const qint64 take = std::min<qint64>(bytes.size(), progress.bodyExpected - progress.bodySeen);
        progress.bodySeen += take;
        bytes = bytes.mid(take);
        if (progress.bodySeen >= progress.bodyExpected) {
            // That request is whole; what follows is the next one's head.
            progress = Progress();
        } else if (take == 0) {
            // More than the declared body: not HTTP this server answers.
            return refuse(socket, progress, "413 Content Too Large");
        }
    }
}

void BMBoundedTcpServer::refuse(QTcpSocket *socket, Progress &progress, const QByteArray &status)
{
    progress.head.clear();
    // The HTTP server reads inside a transaction, which keeps every byte
    // read: it is let go of the connection, the transaction ended, and
    // what comes is drained and dropped.
    disconnect(socket, &QTcpSocket::readyRead, nullptr, nullptr);
    connect(socket, &QTcpSocket::readyRead, this, [socket] { socket->readAll(); });
    if (socket->isTransactionStarted())
        socket->commitTransaction();
    socket->readAll();
    socket->write("HTTP/1.1 " + status + "\r\nContent-Length: 0\r\nConnection: close\r\n\r\n");
    // Closed a moment later, still draining meanwhile: closing on unread
    // bytes resets the connection, and the client could lose the answer.
    QTimer::singleShot(kCloseDelayMs, socket, [socket] { socket->disconnectFromHost(); });
}
