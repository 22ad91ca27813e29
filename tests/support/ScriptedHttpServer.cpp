#include "ScriptedHttpServer.h"

#include <QTcpSocket>

QByteArray ScriptedHttpServer::http(int status, const QByteArray &body, qint64 declaredLength)
{
    const qint64 length = declaredLength >= 0 ? declaredLength : body.size();
    return "HTTP/1.1 " + QByteArray::number(status) + " Status\r\nContent-Type: application/json\r\n"
           "Content-Length: " + QByteArray::number(length) + "\r\nConnection: close\r\n\r\n" + body;
}

QByteArray ScriptedHttpServer::envelope(const QByteArray &data)
{
    return http(200, R"({"code":200,"message":"OK","data":)" + data + '}');
}

ScriptedHttpServer::ScriptedHttpServer()
    : m_fallback{http(404, "{}"), Ending::Close}
{
    // The core library asks for a token before a request that needs one.
    setAnswer(QStringLiteral("/api/v2/auth/token"), envelope(R"({"token":"scripted"})"));
    listen(QHostAddress::LocalHost, 0);
    connect(this, &QTcpServer::newConnection, this, [this] {
        while (QTcpSocket *socket = nextPendingConnection())
            connect(socket, &QTcpSocket::readyRead, socket, [this, socket] { onReadyRead(socket); });
    });
}

QString ScriptedHttpServer::baseUrl() const
{
    return QStringLiteral("http://127.0.0.1:%1").arg(serverPort());
}

void ScriptedHttpServer::setAnswer(const QString &path, const QByteArray &answer, Ending ending)
{
    m_answers.insert(path, Answer{answer, ending});
}

void ScriptedHttpServer::setFallbackAnswer(const QByteArray &answer, Ending ending)
{
    m_fallback = Answer{answer, ending};
}

void ScriptedHttpServer::onReadyRead(QTcpSocket *socket)
{
    // The answer goes out once the whole request head is in, and only once.
    const QByteArray head = socket->property("head").toByteArray() + socket->readAll();
    socket->setProperty("head", head);
    if (!head.contains("\r\n\r\n") || socket->property("answered").toBool())
        return;
    socket->setProperty("answered", true);
    const QByteArray target = head.split(' ').value(1);
    const QString path = QString::fromLatin1(target.split('?').value(0));
    m_requested.append(path);
    const Answer answer = m_answers.value(path, m_fallback);
    if (answer.bytes.isEmpty())
        return;
    socket->write(answer.bytes);
    if (answer.ending == Ending::Close)
        socket->disconnectFromHost();
}
