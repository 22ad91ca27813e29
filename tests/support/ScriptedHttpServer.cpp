#include "ScriptedHttpServer.h"

#include <QTcpSocket>
#include <QTimer>

#ifdef Q_OS_UNIX
#include <sys/socket.h>
#endif

#include <memory>

namespace {

// Long enough for the bytes already written to reach the client before the reset.
constexpr int kResetDelayMs = 30;

} // namespace

QByteArray ScriptedHttpServer::http(int status, const QByteArray &body, qint64 declaredLength)
{
    const qint64 length = declaredLength >= 0 ? declaredLength : body.size();
    return "HTTP/1.1 " + QByteArray::number(status) + " Status\r\nContent-Type: application/json\r\n"
           "Content-Length: " + QByteArray::number(length) + "\r\nConnection: close\r\n\r\n" + body;
}

QByteArray ScriptedHttpServer::httpUntilClose(int status, const QByteArray &body)
{
    return "HTTP/1.1 " + QByteArray::number(status) + " Status\r\nContent-Type: application/json\r\n"
           "Connection: close\r\n\r\n" + body;
}

QByteArray ScriptedHttpServer::redirect(const QString &location)
{
    return "HTTP/1.1 302 Found\r\nLocation: " + location.toUtf8()
        + "\r\nContent-Length: 0\r\nConnection: close\r\n\r\n";
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

void ScriptedHttpServer::setAnswer(const QString &path, const QByteArray &answer, Ending ending,
                                   int dripIntervalMs)
{
    m_answers.insert(path, Answer{answer, ending, dripIntervalMs});
}

void ScriptedHttpServer::setFallbackAnswer(const QByteArray &answer, Ending ending)
{
    m_fallback = Answer{answer, ending, 0};
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
    if (answer.dripIntervalMs > 0) {
        const qsizetype bodyStart = answer.bytes.indexOf("\r\n\r\n");
        const qsizetype split = bodyStart < 0 ? answer.bytes.size() : bodyStart + 4;
        socket->write(answer.bytes.first(split));
        drip(socket, answer.bytes.sliced(split), answer.ending, answer.dripIntervalMs);
        return;
    }
    socket->write(answer.bytes);
    finish(socket, answer.ending);
}

void ScriptedHttpServer::drip(QTcpSocket *socket, const QByteArray &body, Ending ending, int intervalMs)
{
    auto *timer = new QTimer(socket);
    auto sent = std::make_shared<qsizetype>(0);
    QObject::connect(timer, &QTimer::timeout, socket, [socket, timer, body, ending, sent] {
        if (*sent >= body.size()) {
            timer->stop();
            finish(socket, ending);
            return;
        }
        socket->write(body.sliced((*sent)++, 1));
    });
    timer->start(intervalMs);
}

void ScriptedHttpServer::finish(QTcpSocket *socket, Ending ending)
{
    switch (ending) {
    case Ending::Close:
        socket->disconnectFromHost();
        break;
    case Ending::KeepOpen:
        break;
    case Ending::Reset:
        socket->flush();
        QTimer::singleShot(kResetDelayMs, socket, [socket] {
#ifdef Q_OS_UNIX
            // A zero linger time makes the close send RST instead of FIN.
            const struct linger immediate{1, 0};
            ::setsockopt(int(socket->socketDescriptor()), SOL_SOCKET, SO_LINGER, &immediate, sizeof immediate);
#endif
            socket->abort();
        });
        break;
    }
}
