#pragma once

#include <Brightmere/SDKExport.h>

#include <QMetaType>
#include <QUrl>

/// What handlers learn about the request they answer: which request it was
/// (a number unique in the process), the address asked and the HTTP status of
/// the answer (0 when no HTTP answer arrived: refused, timed out, cut off
/// before the headers).
class BRIGHTMERE_SDK_EXPORT BMSDKRestRequestTask
{
public:
    BMSDKRestRequestTask() = default;
    /// The request numbered taskIdentifier to url, answered with statusCode.
    BMSDKRestRequestTask(quint64 taskIdentifier, const QUrl &url, int statusCode = 0);

    /// The request's number, unique in the process.
    quint64 taskIdentifier() const { return m_taskIdentifier; }
    /// The address asked.
    QUrl url() const { return m_url; }
    /// The answer's HTTP status; 0 when none arrived.
    int statusCode() const { return m_statusCode; }

    friend bool operator==(const BMSDKRestRequestTask &, const BMSDKRestRequestTask &) = default;

private:
    quint64 m_taskIdentifier = 0;
    QUrl m_url;
    int m_statusCode = 0;
};

Q_DECLARE_METATYPE(BMSDKRestRequestTask)
