#include "BMLocalisationService.h"

#include <QDateTime>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include "BMBoundedTcpServer.h"

#include <QHttpServer>
#include <QHttpServerRequest>
#include <QHttpServerResponse>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QRegularExpression>
#include <QUrlQuery>

namespace {

// Bundle files are small; a bigger one is refused rather than read.
constexpr qint64 kMaximumBundleFileSize = 8 * 1024 * 1024;

// Refusals carry no "data".
QHttpServerResponse envelope(int code, const QString &message, const QJsonValue &data = QJsonValue(QJsonValue::Undefined))
{
    QJsonObject body{{QStringLiteral("code"), code}, {QStringLiteral("message"), message}};
    if (!data.isUndefined())
        body.insert(QStringLiteral("data"), data);
    return QHttpServerResponse(body);
}

bool isLanguageCode(const QString &text)
{
    static const QRegularExpression pattern(QStringLiteral("^[A-Za-z0-9_-]{1,32}$"));
    return pattern.match(text).hasMatch();
}

struct BundleFile
{
    QJsonObject object;
    QString error;
};

BundleFile readBundleFile(const QString &path)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        return {{}, QStringLiteral("cannot read %1").arg(QFileInfo(path).fileName())};
    if (file.size() > kMaximumBundleFileSize)
        return {{}, QStringLiteral("%1 is too large").arg(QFileInfo(path).fileName())};
    QJsonParseError parseError;
    const QJsonDocument document = QJsonDocument::fromJson(file.readAll(), &parseError);
    if (parseError.error != QJsonParseError::NoError || !document.isObject())
        return {{}, QStringLiteral("%1 is not a JSON object").arg(QFileInfo(path).fileName())};
    QJsonObject object = document.object();
    if (!object.contains(QStringLiteral("ts")))
        object.insert(QStringLiteral("ts"), QFileInfo(path).lastModified().toSecsSinceEpoch());
    return {object, {}};
}

} // namespace

BMLocalisationService::BMLocalisationService(QObject *parent)
    : QObject(parent)
    , m_server(std::make_unique<QHttpServer>())
{
    m_server->route(QStringLiteral("/api/v2/auth/token"), [this](const QHttpServerRequest &request) {
        record(request);
        return token(request);
    });
    m_server->route(QStringLiteral("/api/v2/message/info"), [this](const QHttpServerRequest &request) {
        record(request);
        return info();
    });
    m_server->route(QStringLiteral("/api/v2/message/bundle/<arg>"),
                    [this](const QString &language, const QHttpServerRequest &request) {
                        record(request);
                        return bundle(language);
                    });
}

BMLocalisationService::~BMLocalisationService() = default;

void BMLocalisationService::setFolder(const QString &folder)
{
    m_folder = folder;
}

void BMLocalisationService::setToken(const QString &token)
{
    m_token = token;
}

quint16 BMLocalisationService::listen(const QHostAddress &address, quint16 port)
{
    m_address = address;
    // Bound through a server that refuses oversized requests before the
    // HTTP server buffers them.
    auto *tcp = new BMBoundedTcpServer(this);
    if (!tcp->listen(address, port)) {
        delete tcp;
        m_port = 0;
        return 0;
    }
    m_server->bind(tcp);
    m_port = tcp->serverPort();
    return m_port;
}

QString BMLocalisationService::baseUrl() const
{
    const QString host = m_address.protocol() == QAbstractSocket::IPv6Protocol
        ? QStringLiteral("[%1]").arg(m_address.toString())
        : m_address.toString();
    return QStringLiteral("http://%1:%2").arg(host).arg(m_port);
}

void BMLocalisationService::record(const QHttpServerRequest &request)
{
    const QString path = request.url().path();
    m_requestedPaths.append(path);
    Q_EMIT requestServed(path);
}

QHttpServerResponse BMLocalisationService::token(const QHttpServerRequest &request)
{
    const QString appId = request.query().queryItemValue(QStringLiteral("appId"), QUrl::FullyDecoded);
    if (appId.trimmed().isEmpty())
        return envelope(400, QStringLiteral("The token request names no appId"));
    return envelope(200, QStringLiteral("OK"), QJsonObject{{QStringLiteral("token"), m_token}});
}

QHttpServerResponse BMLocalisationService::info()
{
    QJsonArray bundles;
    const QFileInfoList files = QDir(m_folder).entryInfoList({QStringLiteral("*.json")}, QDir::Files, QDir::Name);
    for (const QFileInfo &file : files) {
        const QString language = file.completeBaseName();
        if (!isLanguageCode(language))
            continue;
        const BundleFile bundleFile = readBundleFile(file.filePath());
        if (!bundleFile.error.isEmpty())
            continue;
        bundles.append(QJsonObject{{QStringLiteral("_id"), language},
                                   {QStringLiteral("ts"), bundleFile.object.value(QStringLiteral("ts"))}});
    }
    return envelope(200, QStringLiteral("OK"), QJsonObject{{QStringLiteral("bundleArray"), bundles}});
}

QHttpServerResponse BMLocalisationService::bundle(const QString &language)
{
    if (!isLanguageCode(language))
        return envelope(400, QStringLiteral("\"%1\" is not a language code").arg(language));
    const QString path = QDir(m_folder).filePath(language + QStringLiteral(".json"));
    if (!QFileInfo::exists(path))
        return envelope(404, QStringLiteral("No bundle for language \"%1\"").arg(language));
    const BundleFile bundleFile = readBundleFile(path);
    if (!bundleFile.error.isEmpty())
        return envelope(500, QStringLiteral("The bundle of \"%1\" is unusable: %2").arg(language, bundleFile.error));

    QJsonObject data{{QStringLiteral("_id"), language}, {QStringLiteral("ts"), bundleFile.object.value(QStringLiteral("ts"))}};
    if (bundleFile.object.contains(QStringLiteral("contents")))
        data.insert(QStringLiteral("contents"), bundleFile.object.value(QStringLiteral("contents")));
    return envelope(200, QStringLiteral("OK"), data);
}
