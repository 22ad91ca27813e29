#pragma once

#include <QMutex>
#include <QObject>
#include <QString>

// The Wi-Fi world of the simulated backend: one network ("HomeNet" with a
// fixed BSSID) and a reachability status that the demo or a test switches.
// Status values are the core library's: 0 not reachable, 1 reachable over
// Wi-Fi, 2 reachable over another medium (cellular, wired).
class BMSimulatedNetwork : public QObject
{
    Q_OBJECT

public:
    static constexpr int kNotReachable = 0;
    static constexpr int kReachableViaWiFi = 1;
    static constexpr int kReachableViaOther = 2;

    static BMSimulatedNetwork &shared();

    QString ssid() const;
    QString bssid() const;
    void setNetwork(const QString &ssid, const QString &bssid);

    int reachabilityStatus() const;
    bool isOnWifi() const { return reachabilityStatus() == kReachableViaWiFi; }
    // Emits reachabilityChanged when the status really changes.
    void setReachabilityStatus(int status);

    // Back to "HomeNet", its BSSID and Wi-Fi reachable.
    void reset();

Q_SIGNALS:
    void reachabilityChanged(int status);

private:
    BMSimulatedNetwork();

    mutable QMutex m_mutex;
    QString m_ssid;
    QString m_bssid;
    int m_status = kReachableViaWiFi;
};
