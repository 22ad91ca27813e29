#include "BMSimulatedNetwork.h"

namespace {

const QString kDefaultSsid = QStringLiteral("HomeNet");
const QString kDefaultBssid = QStringLiteral("a4:2b:b0:5c:17:e2");

} // namespace

BMSimulatedNetwork::BMSimulatedNetwork()
    : m_ssid(kDefaultSsid)
    , m_bssid(kDefaultBssid)
{
}

BMSimulatedNetwork &BMSimulatedNetwork::shared()
{
    static BMSimulatedNetwork network;
    return network;
}

QString BMSimulatedNetwork::ssid() const
{
    QMutexLocker lock(&m_mutex);
    return m_ssid;
}

QString BMSimulatedNetwork::bssid() const
{
    QMutexLocker lock(&m_mutex);
    return m_bssid;
}

void BMSimulatedNetwork::setNetwork(const QString &ssid, const QString &bssid)
{
    QMutexLocker lock(&m_mutex);
    m_ssid = ssid;
    m_bssid = bssid;
}

int BMSimulatedNetwork::reachabilityStatus() const
{
    QMutexLocker lock(&m_mutex);
    return m_status;
}

void BMSimulatedNetwork::setReachabilityStatus(int status)
{
    {
        QMutexLocker lock(&m_mutex);
        if (m_status == status)
            return;
        m_status = status;
    }
    Q_EMIT reachabilityChanged(status);
}

void BMSimulatedNetwork::reset()
{
    setNetwork(kDefaultSsid, kDefaultBssid);
    setReachabilityStatus(kReachableViaWiFi);
}
