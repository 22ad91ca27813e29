#pragma once

#include <QHash>
#include <QTcpServer>

class QTcpSocket;

// The development service's listening socket, which refuses requests too
// large to be honest before the HTTP server buffers them: a request head
// over kMaxHeadBytes gets 431, a body over kMaxBodyBytes (declared or sent)
// 413, and the connection is closed. Everything else passes through
// untouched to the HTTP server bound to it.
class BMBoundedTcpServer : public QTcpServer
{
    Q_OBJECT

public:
    static constexpr qint64 kMaxHeadBytes = 64 * 1024;
    static constexpr qint64 kMaxBodyBytes = 1024 * 1024;

    explicit BMBoundedTcpServer(QObject *parent = nullptr);

protected:
    void incomingConnection(qintptr descriptor) override;

private:
    // What has been seen of the request under way on one connection.
    struct Progress
    {
        QByteArray head;
        bool headDone = false;
        qint64 bodyExpected = 0;
        qint64 bodySeen = 0;
    };

    void inspect(QTcpSocket *socket);
    void refuse(QTcpSocket *socket, Progress &progress, const QByteArray &status);

    QHash<QTcpSocket *, Progress> m_progress;
};
