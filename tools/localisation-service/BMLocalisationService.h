#pragma once

#include <QHostAddress>
#include <QObject>
#include <QString>
#include <QStringList>

#include <memory>

class QHttpServer;
class QHttpServerRequest;
class QHttpServerResponse;

// A small localisation service for development and tests: it answers the
// three requests the kit makes, in the service's envelope
// {"code": 200, "message": "OK", "data": ...}, from a folder of bundle files.
//
//   GET /api/v2/auth/token?appId=<id>     -> data {"token": "<text>"}
//   GET /api/v2/message/info              -> data {"bundleArray": [{"_id", "ts"}, ...]}
//   GET /api/v2/message/bundle/<lang>     -> data {"_id", "ts", "contents"}
//
// The folder holds one JSON object per language, "<lang>.json" =
// {"ts": 5, "contents": {"key": "text", ...}}. "ts" and "contents" are passed
// on as the file has them, so a hand-written file can give the kit a wrong
// type on purpose; a file without "ts" is stamped with its modification time
// (seconds since the epoch). Files are read on every request, so a test or a
// translator may change them while the service runs. Refusals (no appId, an
// unknown language, a file that is not a JSON object) come as an envelope
// with a non-200 code and a message, with HTTP status 200.
class BMLocalisationService : public QObject
{
    Q_OBJECT

public:
    explicit BMLocalisationService(QObject *parent = nullptr);
    ~BMLocalisationService() override;

    QString folder() const { return m_folder; }
    void setFolder(const QString &folder);

    // The token handed out; "local-token" unless set.
    QString token() const { return m_token; }
    void setToken(const QString &token);

    // Starts listening (port 0 picks a free one); returns the port, 0 on failure.
    quint16 listen(const QHostAddress &address = QHostAddress::LocalHost, quint16 port = 0);
    quint16 port() const { return m_port; }
    // "http://<address>:<port>", the base address the kit is pointed at.
    QString baseUrl() const;

    // The paths requested so far, oldest first ("/api/v2/message/info").
    QStringList requestedPaths() const { return m_requestedPaths; }
    void clearRequestedPaths() { m_requestedPaths.clear(); }

Q_SIGNALS:
    void requestServed(const QString &path);

private:
    QHttpServerResponse token(const QHttpServerRequest &request);
    QHttpServerResponse info();
    QHttpServerResponse bundle(const QString &language);
    void record(const QHttpServerRequest &request);

    std::unique_ptr<QHttpServer> m_server;
    QString m_folder;
    QString m_token = QStringLiteral("local-token");
    QHostAddress m_address;
    quint16 m_port = 0;
    QStringList m_requestedPaths;
};
