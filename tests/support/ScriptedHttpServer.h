#pragma once

#include <QHash>
#include <QStringList>
#include <QTcpServer>

class QTcpSocket;

// A loopback HTTP server that writes hand-made answers, byte for byte, for
// the faults a well-behaved server never produces: a cut body, a status
// error, an answer that never comes, a declared length over the client's
// cap, a redirect to itself, a reset connection, a body that drips in. Answers
// are chosen by path (any other path gets a 404);
// the token request gets a valid token unless told otherwise. Lives on the
// thread that made it (the test's main thread).
class ScriptedHttpServer : public QTcpServer
{
public:
    // What happens once the answer is written: the connection is closed;
    // left open (a client waiting for the rest of a declared body waits on);
    // or reset (TCP RST), as by a server that crashed mid-answer.
    enum class Ending { Close, KeepOpen, Reset };

    // An answer that is never written: the connection stays open and silent.
    static QByteArray hang() { return QByteArray(); }
    static QByteArray http(int status, const QByteArray &body, qint64 declaredLength = -1);
    // No Content-Length: the body ends where the connection closes, so a
    // client only learns its size by reading it.
    static QByteArray httpUntilClose(int status, const QByteArray &body);
    // A 302 to location (a path of this server or a full address).
    static QByteArray redirect(const QString &location);
    // The core library's response envelope around data, with code 200.
    static QByteArray envelope(const QByteArray &data);

    explicit ScriptedHttpServer(const QHostAddress &address = QHostAddress::LocalHost);

    QString baseUrl() const;
    // With dripIntervalMs above 0 the head goes out at once and the body one
    // byte per interval: a body that is slower than any sensible timeout.
    void setAnswer(const QString &path, const QByteArray &answer, Ending ending = Ending::Close,
                   int dripIntervalMs = 0);
    // The answer to the next request of path only; later ones get the regular one.
    void setAnswerOnce(const QString &path, const QByteArray &answer, Ending ending = Ending::Close);
    // Ends every connection still open: a server that drops what it was sending.
    void endOpenConnections(Ending ending);
    // The paths asked for, in order of arrival, and the requests' heads.
    QStringList requestedPaths() const { return m_requested; }
    QList<QByteArray> requestHeads() const { return m_heads; }

private:
    struct Answer
    {
        QByteArray bytes;
        Ending ending = Ending::Close;
        int dripIntervalMs = 0;
    };

    void onReadyRead(QTcpSocket *socket);
    static void finish(QTcpSocket *socket, Ending ending);

    QHash<QString, Answer> m_answers;
    QHash<QString, Answer> m_once;
    Answer m_fallback;
    QStringList m_requested;
    QList<QByteArray> m_heads;
};
