#include "BMHttpWiFiTester.h"

#include "BMLogger.h"
#include "BMSDKBackend.h"
#include <Brightmere/platform/foundation/Clock.h>

#include <QNetworkAccessManager>
#include <QNetworkReply>
#include <QNetworkRequest>
#include <QPointer>
#include <QTimer>

namespace {

// A download that ends without a byte is tried again after this pause, so a
// server that answers with empty bodies does not keep us spinning.
constexpr int kEmptyDownloadRetryMs = 100;

} // namespace

BMHttpWiFiTester::BMHttpWiFiTester(QObject *parent)
    : BMWiFiTester(parent)
    , m_manager(new QNetworkAccessManager(this))
{
}

BMHttpWiFiTester::~BMHttpWiFiTester()
{
    stopMeasuring();
}

void BMHttpWiFiTester::startMeasuring()
{
    m_url = BMSDKBackend::systemDownloadUrl();
    m_bytesInInterval = 0;
    const QString scheme = m_url.scheme().toLower();
    if (!m_url.isValid() || m_url.host().isEmpty() || (scheme != u"http" && scheme != u"https")) {
        const QString text = m_url.isEmpty()
            ? QStringLiteral("No download address is configured")
            : QStringLiteral("The download address \"%1\" is not an http(s) address")
                  .arg(m_url.toDisplayString(QUrl::RemoveUserInfo));
        // Reported on the next turn of the event loop, like every other
        // outcome, so the caller of start() is never re-entered.
        const quint64 generation = testGeneration();
        QMetaObject::invokeMethod(
            this,
            [this, generation, text] {
                if (generation == testGeneration())
                    finishWithError(BMError(kErrorDomain, ErrorNoDownloadAddress, text));
            },
            Qt::QueuedConnection);
        return;
    }
    BMLogger::sharedInstance().logFromModule(moduleName(), 1, "Measuring downloads from %@",
                                             m_url.toDisplayString(QUrl::RemoveUserInfo));
    startDownload();
}

void BMHttpWiFiTester::stopMeasuring()
{
    if (m_timerId != 0) {
        clock().stopRepeating(m_timerId);
        m_timerId = 0;
    }
    dropReply();
}

void BMHttpWiFiTester::dropReply()
{
    if (!m_reply)
        return;
    QNetworkReply *reply = m_reply;
    m_reply = nullptr;
    reply->disconnect(this);
    reply->abort();
    reply->deleteLater();
}

void BMHttpWiFiTester::startDownload()
{
    QNetworkRequest request(m_url);
    request.setAttribute(QNetworkRequest::CacheLoadControlAttribute, QNetworkRequest::AlwaysNetwork);
    request.setAttribute(QNetworkRequest::CacheSaveControlAttribute, false);
    // Count the bytes on the wire, not what a decompressor makes of them.
    request.setRawHeader("Accept-Encoding", "identity");
    request.setTransferTimeout(kTransferTimeoutMs);

    m_bytesInDownload = 0;
    QNetworkReply *reply = m_manager->get(request);
    m_reply = reply;
    connect(reply, &QNetworkReply::metaDataChanged, this, [this, reply] { onHeaders(reply); });
    connect(reply, &QIODevice::readyRead, this, [this, reply] { onData(reply); });
    connect(reply, &QNetworkReply::finished, this, [this, reply] { onFinished(reply); });
}

void BMHttpWiFiTester::onHeaders(QNetworkReply *reply)
{
    if (reply != m_reply)
        return;
    const int status = reply->attribute(QNetworkRequest::HttpStatusCodeAttribute).toInt();
    // A redirect's headers are not the answer yet; the manager follows it.
    if (status >= 300 && status < 400)
        return;
    if (status >= 400) {
        fail(isSetupFinished() ? ErrorDownloadFailed : ErrorConnectionFailed,
             QStringLiteral("The server answered %1 %2")
                 .arg(status)
                 .arg(reply->attribute(QNetworkRequest::HttpReasonPhraseAttribute).toString()));
        return;
    }
    if (isSetupFinished())
        return;
    // The interval starts with the first answer: connecting is not measured.
    m_bytesInInterval = 0;
    m_intervalTimer.start();
    m_intervalStartNs = 0;
    m_timerId = clock().startRepeating(BMSDKBackend::sampleInterval(), [this] { onSampleTick(); });
    reportSetupFinished(std::nullopt);
}

void BMHttpWiFiTester::onData(QNetworkReply *reply)
{
    if (reply != m_reply)
        return;
    if (!isSetupFinished()) {
        // Setup reports to the delegate, which may stop or delete us.
        QPointer<BMHttpWiFiTester> self(this);
        onHeaders(reply);
        if (!self || reply != m_reply || !isSetupFinished())
            return;
    }
    // The body is only counted; nothing of it is kept.
    const qint64 received = reply->readAll().size();
    m_bytesInInterval += received;
    m_bytesInDownload += received;
}

void BMHttpWiFiTester::onFinished(QNetworkReply *reply)
{
    if (reply != m_reply) {
        reply->deleteLater();
        return;
    }
    m_reply = nullptr;
    reply->deleteLater();

    const int status = reply->attribute(QNetworkRequest::HttpStatusCodeAttribute).toInt();
    if (reply->error() != QNetworkReply::NoError) {
        fail(isSetupFinished() ? ErrorDownloadFailed : ErrorConnectionFailed,
             QStringLiteral("Download from %1 failed: %2")
                 .arg(m_url.toDisplayString(QUrl::RemoveUserInfo), reply->errorString()));
        return;
    }
    if (status >= 400) {
        fail(isSetupFinished() ? ErrorDownloadFailed : ErrorConnectionFailed,
             QStringLiteral("The server answered %1").arg(status));
        return;
    }
    const qint64 rest = reply->readAll().size();
    m_bytesInInterval += rest;
    m_bytesInDownload += rest;
    if (m_bytesInDownload > 0) {
        startDownload();
        return;
    }
    BMLogger::sharedInstance().logFromModule(moduleName(), 1, "Download ended without a byte; trying again");
    const quint64 generation = testGeneration();
    QTimer::singleShot(kEmptyDownloadRetryMs, this, [this, generation] {
        if (generation == testGeneration() && isRunning() && !m_reply)
            startDownload();
    });
}

void BMHttpWiFiTester::onSampleTick()
{
    // Measured against one running timer, so no time falls between intervals.
    const qint64 nowNs = m_intervalTimer.nsecsElapsed();
    const double seconds = double(nowNs - m_intervalStartNs) / 1e9;
    m_intervalStartNs = nowNs;
    const qint64 bytes = m_bytesInInterval;
    m_bytesInInterval = 0;
    if (seconds <= 0.0)
        return;
    reportResult(double(bytes) * 8.0 / 1e6 / seconds);
}

void BMHttpWiFiTester::fail(int code, const QString &description)
{
    dropReply();
    finishWithError(BMError(kErrorDomain, code, description));
}
