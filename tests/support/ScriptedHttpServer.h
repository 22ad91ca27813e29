#pragma once

#include <QHash>
#include <QStringList>
#include <QTcpServer>

class QTcpSocket;

// A loopback HTTP server that writes hand-made answers, byte for byte, for
// the faults a well-behaved server never produces: a cut body, a status
// error, an answer that never comes, a declared length over the client's
// cap. Answers are chosen by path (any other path gets the fallback, a 404
// unless set); the token request gets a valid token unless told otherwise.
// Lives on the thread that made it (the test's main thread).
class ScriptedHttpServer : public QTcpServer
{
public:
    // Whether the connection is closed once the answer is written; left
    // open, a client waiting for the rest of a declared body waits on.
    enum class Ending { Close, KeepOpen };

    // An answer that is never written: the connection stays open and silent.
    static QByteArray hang() { return QByteArray(); }
    static QByteArray http(int status, const QByteArray &body, qint64 declaredLength = -1);
    // The core library's response envelope around data, with code 200.
    static QByteArray envelope(const QByteArray &data);

    ScriptedHttpServer();

    QString baseUrl() const;
    void setAnswer(const QString &path, const QByteArray &answer, Ending ending = Ending::Close);
    void setFallbackAnswer(const QByteArray &answer, Ending ending = Ending::Close);
    // The paths asked for, in order of arrival.
    QStringList requestedPaths() const { return m_requested; }

private:
    struct Answer
    {
        QByteArray bytes;
        Ending ending = Ending::Close;
    };

    void onReadyRead(QTcpSocket *socket);

    QHash<QString, Answer> m_answers;
    Answer m_fallback;
    QStringList m_requested;
};
