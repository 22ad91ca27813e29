#pragma once

#include <QHash>
#include <QStringList>
#include <QTcpServer>
#include <QTcpSocket>

// A loopback HTTP server that writes hand-made answers, byte for byte, for
// the faults a well-behaved server never produces: a cut body, a status
// error, an answer that never comes, a body over the client's cap. Answers
// are chosen by path; the token request gets a valid token unless told
// otherwise. Lives on the thread that made it (the test's main thread).
class ScriptedHttpServer : public QTcpServer
{
public:
    // An answer that is never written: the connection stays open and silent.
    static QByteArray hang() { return QByteArrayLiteral("<hang>"); }

    static QByteArray http(int status, const QByteArray &body, qint64 declaredLength = -1)
    {
        const qint64 length = declaredLength >= 0 ? declaredLength : body.size();
        return "HTTP/1.1 " + QByteArray::number(status) + " Status\r\nContent-Type: application/json\r\n"
               "Content-Length: " + QByteArray::number(length) + "\r\nConnection: close\r\n\r\n" + body;
    }
    static QByteArray envelope(const QByteArray &data)
    {
        return http(200, R"({"code":200,"message":"OK","data":)" + data + '}');
    }

    ScriptedHttpServer()
    {
        m_answers.insert(QStringLiteral("/api/v2/auth/token"), envelope(R"({"token":"scripted"})"));
        listen(QHostAddress::LocalHost, 0);
        connect(this, &QTcpServer::newConnection, this, [this] {
            while (QTcpSocket *socket = nextPendingConnection())
                connect(socket, &QTcpSocket::readyRead, socket, [this, socket] { onReadyRead(socket); });
        });
    }

    QString baseUrl() const { return QStringLiteral("http://127.0.0.1:%1").arg(serverPort()); }
    void setAnswer(const QString &path, const QByteArray &answer) { m_answers.insert(path, answer); }
    QStringList requestedPaths() const { return m_requested; }

private:
    void onReadyRead(QTcpSocket *socket)
    {
        const QByteArray head = socket->property("head").toByteArray() + socket->readAll();
        socket->setProperty("head", head);
        if (!head.contains("\r\n\r\n") || socket->property("answered").toBool())
            return;
        socket->setProperty("answered", true);
        const QByteArray target = head.split(' ').value(1);
        const QString path = QString::fromLatin1(target.split('?').value(0));
        m_requested.append(path);
        const QByteArray answer = m_answers.value(path, http(404, "{}"));
        if (answer == hang())
            return;
        socket->write(answer);
        socket->disconnectFromHost();
    }

    QHash<QString, QByteArray> m_answers;
    QStringList m_requested;
};
