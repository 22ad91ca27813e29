#pragma once

#include <Brightmere/SDKExport.h>

#include "BMError.h"
#include "BMLocationCoordinate2D.h"

#include <QObject>
#include <QString>
#include <QStringList>

#include <atomic>
#include <optional>

class BMWiFiTesterDelegate;

namespace Brightmere {
class Clock;
}

/// A Wi-Fi tester: once started it measures the download speed of the Wi-Fi
/// link over and over and hands each figure to its result delegate as a fresh
/// WifiTestResult, until stop() or a failure ends the test. Backends derive
/// from it; BMTesterFactory chooses one.
///
/// The tester belongs to the thread that created it (the main thread in the
/// kit): its delegate is called there only. start() and stop() called from
/// another thread are forwarded to that thread.
class BRIGHTMERE_SDK_EXPORT BMWiFiTester : public QObject
{
    Q_OBJECT

public:
    /// Domain of the errors a tester reports.
    static const QString kErrorDomain;
    /// Codes of the errors a tester reports, in kErrorDomain.
    enum ErrorCode {
        ErrorNoWiFi = 1, ///< the device is not on a Wi-Fi network
        ErrorNoDownloadAddress = 2, ///< no address to download from was given or found
        ErrorConnectionFailed = 3, ///< the download server could not be reached
        ErrorDownloadFailed = 4, ///< the download broke off
    };

    ~BMWiFiTester() override;

    /// All arguments may be empty. An out-of-range location is dropped with a
    /// log line.
    void initializeWithAppId(const QString &appId, const std::optional<BMLocationCoordinate2D> &location,
                             const QString &pushNotificationToken, const QStringList &labels);
    /// The application identifier given to initializeWithAppId().
    QString appId() const { return m_appId; }
    /// The push notification token given to initializeWithAppId().
    QString pushNotificationToken() const { return m_pushNotificationToken; }
    /// The labels given to initializeWithAppId().
    QStringList labels() const { return m_labels; }

    /// Not owned; may be null (results are then measured and dropped).
    void setResultDelegate(BMWiFiTesterDelegate *delegate);
    /// The delegate results go to; null when none.
    BMWiFiTesterDelegate *resultDelegate() const { return m_delegate; }

    /// start() while running and stop() while stopped do nothing. stop()
    /// calls no delegate method.
    void start();
    /// Ends the test; nothing is reported after it.
    void stop();
    /// Whether a test runs (between start() and stop() or a failure).
    bool isRunning() const { return m_running; }

    /// Records whether the tester may make sound (logged; the test session plays the feedback sound).
    void setSoundEnabled(bool enabled);
    /// Whether the tester may make sound.
    bool isSoundEnabled() const { return m_soundEnabled; }

    /// Where the measurements are taken, if known; results carry it.
    virtual std::optional<BMLocationCoordinate2D> location() const;

    /// The account the tester was made for. The password itself stays inside
    /// the tester, in memory only, and is never handed out.
    QString sdkCustomer() const { return m_sdkCustomer; }
    /// Whether a password was given (it is never handed out).
    bool hasSdkPassword() const { return !m_sdkPassword.isEmpty(); }
    /// Whether the tester talks to the production server rather than the test one.
    bool usesProductionServer() const { return m_useProductionServer; }

protected:
    /// Made only through BMTesterFactory, which sets the credentials.
    explicit BMWiFiTester(QObject *parent = nullptr);

    /// Backends begin and end their measuring here. stopMeasuring() must be
    /// safe to call when nothing runs, and calls no delegate method.
    virtual void startMeasuring() = 0;
    /// Ends the measuring; see startMeasuring().
    virtual void stopMeasuring() = 0;

    /// Names of the network the results are measured on (empty off Wi-Fi).
    QString currentSsid() const;
    /// The BSSID of the network the results are measured on (empty off Wi-Fi).
    QString currentBssid() const;

    /// The clock of the current test (taken when it starts).
    Brightmere::Clock &clock() const { return *m_clock; }
    /// The tester's name in log lines.
    QString moduleName() const;

    /// Reports to the delegate. Each returns whether the backend may go on
    /// with this test: false when the delegate stopped, restarted or deleted
    /// the tester meanwhile, in which case the backend must return at once
    /// without touching its members.
    bool reportSetupFinished(const std::optional<BMError> &error);
    /// Hands one speed to the delegate; see reportSetupFinished().
    bool reportResult(double speedInMbps);
    /// Ends the test (stopMeasuring() first), then tells the delegate. When
    /// setup has not finished yet, the delegate hears of the error as a setup
    /// failure first.
    void finishWithError(const BMError &error);

    /// Whether setup was reported for the current test.
    bool isSetupFinished() const { return m_setupFinished; }
    /// Changes with every start and stop: a queued piece of work compares it
    /// to know whether it still belongs to the current test.
    quint64 testGeneration() const { return m_generation; }

private:
    friend class BMTesterFactory;
    void setCredentials(const QString &customer, const QString &password, bool useProductionServer);

    bool isOnOwnerThread() const;
    void halt();

    BMWiFiTesterDelegate *m_delegate = nullptr;
    Brightmere::Clock *m_clock = nullptr;
    QString m_appId;
    std::optional<BMLocationCoordinate2D> m_location;
    QString m_pushNotificationToken;
    QStringList m_labels;
    QString m_sdkCustomer;
    QString m_sdkPassword;
    bool m_useProductionServer = true;
    std::atomic<bool> m_running = false;
    bool m_soundEnabled = false;
    bool m_setupFinished = false;
    quint64 m_generation = 0;
};
