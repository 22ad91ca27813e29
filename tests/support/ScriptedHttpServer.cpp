#include "ScriptedHttpServer.h"

#include <QTcpSocket>
#include <QTimer>

#include <sys/socket.h>

#include <memory>

namespace {

// Long enough for the bytes already written to reach the client before the reset.
constexpr int kResetDelayMs = 30;

QByteArray head(int status, const QByteArray &fields)
{
    return "HTTP/1.1 " + QByteArray::number(status) + " Status\r\nContent-Type: application/json\r\n" + fields
        + "Connection: close\r\n\r\n";
}

} // namespace

QByteArray ScriptedHttpServer::http(int status, const QByteArray &body, qint64 declaredLength)
{
    return head(status, "Content-Length: " + QByteArray::number(declaredLength >= 0 ? declaredLength : body.size()) + "\r\n")
        + body;
}

QByteArray ScriptedHttpServer::httpUntilClose(int status, const QByteArray &body)
{
    return head(status, QByteArray()) + body;
}

QByteArray ScriptedHttpServer::redirect(const QString &location)
{
    return "HTTP/1.1 302 Found\r\nLocation: " + location.toUtf8() + "\r\nContent-Length: 0\r\nConnection: close\r\n\r\n";
}

QByteArray ScriptedHttpServer::envelope(const QByteArray &data)
{
    return http(200, R"({"code":200,"message":"OK","data":)" + data + '}');
}

ScriptedHttpServer::ScriptedHttpServer(const QHostAddress &address)
    : m_fallback{http(404, "{}"), Ending::Close}
{
    // The core library asks for a token before a request that needs one.
    setAnswer(QStringLiteral("/api/v2/auth/token"), envelope(R"({"token":"scripted"})"));
    listen(address, 0);
    connect(this, &QTcpServer::newConnection, this, [this] {
        while (QTcpSocket *socket = nextPendingConnection())
            connect(socket, &QTcpSocket::readyRead, socket, [this, socket] { onReadyRead(socket); });
    });
}

QString ScriptedHttpServer::baseUrl() const
{
    return QStringLiteral("http://%1:%2").arg(serverAddress().toString()).arg(serverPort());
}

void ScriptedHttpServer::setAnswer(const QString &path, const QByteArray &answer, Ending ending, int dripIntervalMs)
{
    m_answers.insert(path, Answer{answer, ending, dripIntervalMs});
}

void ScriptedHttpServer::setAnswerOnce(const QString &path, const QByteArray &answer, Ending ending)
{
    m_once.insert(path, Answer{answer, ending, 0});
}

void ScriptedHttpServer::endOpenConnections(Ending ending)
{
    for (QTcpSocket *socket : findChildren<QTcpSocket *>()) {
        if (socket->state() == QAbstractSocket::ConnectedState)
            finish(socket, ending);
    }
}

void ScriptedHttpServer::onReadyRead(QTcpSocket *socket)
{
    // The answer goes out once the whole request head is in, and only once.
    const QByteArray request = socket->property("head").toByteArray() + socket->readAll();
    socket->setProperty("head", request);
    if (!request.contains("\r\n\r\n") || socket->property("answered").toBool())
        return;
    socket->setProperty("answered", true);
    const QString path = QString::fromLatin1(request.split(' ').value(1).split('?').value(0));
    m_requested.append(path);
    m_heads.append(request.first(request.indexOf("\r\n\r\n")));
    const Answer answer = m_once.contains(path) ? m_once.take(path) : m_answers.value(path, m_fallback);
    if (answer.bytes.isEmpty())
        return;
    if (answer.dripIntervalMs <= 0) {
        socket->write(answer.bytes);
        return finish(socket, answer.ending);
    }
    // The head at once, then the body a byte per interval.
    const qsizetype bodyStart = answer.bytes.indexOf("\r\n\r\n");
    const qsizetype split = bodyStart < 0 ? answer.bytes.size() : bodyStart + 4;
    socket->write(answer.bytes.first(split));
    auto *timer = new QTimer(socket);
    auto sent = std::make_shared<qsizetype>(split);
    QObject::connect(timer, &QTimer::timeout, socket, [socket, timer, answer, sent] {
        if (*sent < answer.bytes.size())
            return void(socket->write(answer.bytes.sliced((*sent)++, 1)));
        timer->stop();
        finish(socket, answer.ending);
    });
    timer->start(answer.dripIntervalMs);
}

void ScriptedHttpServer::finish(QTcpSocket *socket, Ending ending)
{
    if (ending == Ending::Close)
        socket->disconnectFromHost();
    if (ending != Ending::Reset)
        return;
    socket->flush();
    QTimer::singleShot(kResetDelayMs, socket, [socket] {
        // A zero linger time makes the close send RST instead of FIN.
        const struct linger immediate{1, 0};
        ::setsockopt(int(socket->socketDescriptor()), SOL_SOCKET, SO_LINGER, &immediate, sizeof immediate);
        socket->abort();
    });
}
