#pragma once

#include <Brightmere/SDKExport.h>

#include <QString>

#include <optional>

// The Wi-Fi network the device is on. With the simulated backend: the
// simulated network's names while it reports Wi-Fi, none otherwise. With the
// system backend: what NetworkManager reports for the active Wi-Fi access
// point (through nmcli), none when nmcli is missing, fails or nothing is
// active. Screens ask on every result, so the system's answer is kept for a
// few seconds (timed by BMSDKBackend::clock()).
class BRIGHTMERE_SDK_EXPORT BMSDKNetworkUtilities
{
public:
    static constexpr double kSystemAnswerLifetime = 3.0; // seconds
    static constexpr int kNmcliTimeoutMs = 1500;

    static std::optional<QString> currentWifiSSID();
    static std::optional<QString> currentWifiBSSID();

    // The program asked for the system's answer; "nmcli" (found on PATH)
    // unless set. An empty text restores the default.
    static QString nmcliProgram();
    static void setNmcliProgram(const QString &program);

    // Forgets the kept system answer, so the next question asks again.
    static void clearCache();
};
