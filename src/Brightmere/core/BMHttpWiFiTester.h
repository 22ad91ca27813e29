#pragma once

#include "BMWiFiTester.h"

#include <QElapsedTimer>
#include <QUrl>

class QNetworkAccessManager;
class QNetworkReply;

// The tester of the system backend: it measures real HTTP download
// throughput from BMSDKBackend::systemDownloadUrl(). A GET of that address is
// kept running (a finished download is started again at once) and the bytes
// of the body are counted as they arrive; at every sample interval the count
// becomes a speed over the real time that passed, and starts again.
//
// Setup finishes when the first response headers arrive; it fails when no
// http(s) address is set, the connection fails or the server answers with an
// error status. A download that fails during the test finishes it.
class BMHttpWiFiTester : public BMWiFiTester
{
    Q_OBJECT

public:
    explicit BMHttpWiFiTester(QObject *parent = nullptr);
    ~BMHttpWiFiTester() override;

    // A download that moves no byte for this long fails.
    static constexpr int kTransferTimeoutMs = 15000;

protected:
    void startMeasuring() override;
    void stopMeasuring() override;

private:
    void startDownload();
    void onHeaders(QNetworkReply *reply);
    void onData(QNetworkReply *reply);
    void onFinished(QNetworkReply *reply);
    void onSampleTick();
    void fail(int code, const QString &description);
    void dropReply();

    QNetworkAccessManager *m_manager = nullptr;
    QNetworkReply *m_reply = nullptr;
    QUrl m_url;
    QElapsedTimer m_intervalTimer;
    qint64 m_intervalStartNs = 0;
    qint64 m_bytesInInterval = 0;
    qint64 m_bytesInDownload = 0;
    int m_timerId = 0;
};
