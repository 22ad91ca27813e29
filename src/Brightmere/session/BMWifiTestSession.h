#pragma once

#include <Brightmere/core/BMReachabilityDelegate.h>
#include <Brightmere/core/BMWiFiTesterDelegate.h>
#include <Brightmere/core/WifiTestResult.h>
#include <Brightmere/model/FZHistoricalResultSpotsSet.h>

#include <QObject>
#include <QString>

#include <memory>
#include <optional>

class BMSpeedRecord;
class BMWiFiTester;

namespace Brightmere {
class Clock;
}

/// The Fairzone test without its screen: the tester and its results, the
/// run's spots, the recording of a spot, the feedback sound's pacing, and
/// what Wi-Fi reachability and the application's state do to a test. It
/// uses Qt Core only, so it can be driven with a fake clock and no window;
/// the test screen (BMWifiScanVC) is a front over it and turns its signals
/// into what a person sees and what the host hears.
///
/// States: stopped, preparing (started, no result yet), testing, and
/// recording (a spot being collected). A test runs on Wi-Fi only: a result
/// or the tester's finish without it stops the test, keeping what was
/// measured and recorded.
class BMWifiTestSession : public QObject, public BMWiFiTesterDelegate, public BMReachabilityDelegate
{
    Q_OBJECT

public:
    explicit BMWifiTestSession(QObject *parent = nullptr);
    ~BMWifiTestSession() override;

    /// Makes the tester (production server always on) with the customer's
    /// name and password; the password is handed over and not kept.
    void createTester(const QString &customer, const QString &password);
    BMWiFiTester *wifiTester() const { return m_wifiTester.get(); }

    /// Only Wi-Fi will do; another medium counts as none here.
    static bool isOnWifi();
    void subscribeToReachability();
    void unsubscribeFromReachability();

    /// The test.
    bool isScanning() const { return m_scanning; }
    bool isPreparingWifiTester() const { return m_preparingWifiTester; }
    double startTestTime() const { return m_startTestTime; }
    void setStartTestTime(double time) { m_startTestTime = time; }
    /// Posts the test-started notification, then starts the tester.
    void startTesting();
    /// Stops the tester, abandons a spot being recorded and the sound, and
    /// remembers the names the user typed.
    void stopTesting();
    /// One result from the tester: the tester's location is put on it; a
    /// negative speed is dropped; else it is kept, added to a spot being
    /// recorded, and resultAccepted tells what to show.
    void acceptResult(const WifiTestResult::Ptr &result);
    const WifiTestResult::List &testedSpeeds() const { return m_testedSpeeds; }
    void clearTestedSpeeds() { m_testedSpeeds.clear(); }

    /// The run's spots, newest first.
    const WifiTestResult::List &recordedSpeeds() const { return m_recordedSpeeds; }
    qint64 speedIndex() const { return m_speedIndex; }
    /// The title of the set being edited or last saved.
    QString spotsSetName() const { return m_spotsSetName; }
    void setSpotsSetName(const QString &name) { m_spotsSetName = name; }

    /// Recording: a collector of the results that arrive while it is set.
    bool isRecording() const { return m_currentSpeedRecord != nullptr; }
    BMSpeedRecord *currentSpeedRecord() const { return m_currentSpeedRecord.get(); }
    void startRecording();
    /// Abandons the spot being recorded; nothing is added.
    void stopRecording();
    /// Keeps the spot recorded: the spot re-recorded, else the last result
    /// as a new spot (never the same result twice), then stops recording.
    void saveRecordAndStopRecording();
    void saveRecordAndStopRecordingIfNeeded();

    /// Re-recording an existing spot: the spot a held row measures anew, and
    /// the name the next new spot takes (a copy of a spot).
    WifiTestResult::Ptr wifiRecordBeingEdited() const { return m_wifiRecordBeingEdited; }
    void setWifiRecordBeingEdited(const WifiTestResult::Ptr &spot) { m_wifiRecordBeingEdited = spot; }
    QString nextSpotRecordName() const { return m_nextSpotRecordName; }
    void prepareCopyOf(const WifiTestResult::Ptr &spot);
    /// The collector a confirmation keeps while the user decides.
    std::shared_ptr<BMSpeedRecord> takeSpeedRecord();
    void restoreSpeedRecord(const std::shared_ptr<BMSpeedRecord> &record);

    /// The record/reset control pressed and released while no test runs.
    bool isWaitingResetButtonTouchUp() const { return m_waitingResetButtonTouchUp; }
    void setWaitingResetButtonTouchUp(bool waiting) { m_waitingResetButtonTouchUp = waiting; }

    /// A new run: no spots, no results, default names from 1.
    void reset();
    /// A new run holding these spots (none: empty).
    void resetWithNewRecordedSpeeds(const std::optional<WifiTestResult::List> &speeds);
    /// A saved set as the run to go on with.
    void loadSetForEditing(const FZHistoricalResultSpotsSet::Ptr &set);
    /// The highest number of a default name among the spots.
    void updateSpeedIndex();
    void saveSpotsLocally();
    QString defaultSpotName(qint64 index) const;
    /// Takes the spot out of the run; false when it is no longer there.
    bool deleteRecord(const WifiTestResult::Ptr &record);
    /// The name typed for the spot at that row, trimmed; a blank one keeps
    /// the old label. The label the row shows afterwards.
    QString renameSpot(int row, const QString &typed);

    /// The feedback sound: its timer starts with the first kept result and
    /// ticks every 0.01 s on the backend's clock; a tick plays when the gap
    /// the last speed asks for has passed.
    bool isSoundEnabled() const { return m_soundEnabled; }
    /// Also tells the tester.
    void setSoundEnabled(bool enabled);
    double lastPlayTime() const { return m_lastPlayTime; }
    bool hasSoundTimer() const { return m_soundTimer != 0; }
    void startSound();
    void playSound();

    /// The tester's and reachability's reports.
    void wiFiTesterDidFinishSetupWithError(BMWiFiTester *tester, const std::optional<BMError> &error) override;
    void wiFiTesterDidUpdateWithTestResult(BMWiFiTester *tester, const WifiTestResult::Ptr &result) override;
    void wiFiTesterDidFinishWithError(BMWiFiTester *tester, const std::optional<BMError> &error) override;
    void reachabilityHasChanged(int status, const QString &withBSSID, const QString &withSSID) override;

Q_SIGNALS:
    void testStarted();
    void testStopped();
    /// The tester finished its setup: the start/stop control may be pressed.
    void setupFinished();
    /// A result came on Wi-Fi: the test is no longer preparing.
    void resultArrived();
    /// A result kept: the value to show (the running average while
    /// recording) and the result itself, whose own speed is plotted.
    void resultAccepted(const WifiTestResult::Ptr &result, double shown);
    void recordingChanged(bool recording);
    /// A spot kept at that row of the run: a new one at the head, or an
    /// existing one measured again.
    void spotSaved(const WifiTestResult::Ptr &spot, int row, bool isNew);
    void spotDeleted(int row);
    /// The run was replaced (emptied, or the spots of a set loaded).
    void spotsReset();
    /// Wi-Fi was missing at a result or at the tester's finish: the test
    /// has stopped.
    void wifiLost();
    void reachabilityChanged();

private:
    void stopSound();
    void log(int level, const QString &message) const;

    std::unique_ptr<BMWiFiTester> m_wifiTester;
    bool m_scanning = false;
    bool m_preparingWifiTester = false;
    double m_startTestTime = 0.0;
    WifiTestResult::List m_testedSpeeds;
    WifiTestResult::List m_recordedSpeeds;
    // Shared: a confirmation popup keeps the collector of the spot it asks about.
    std::shared_ptr<BMSpeedRecord> m_currentSpeedRecord;
    WifiTestResult::Ptr m_wifiRecordBeingEdited;
    QString m_nextSpotRecordName;
    qint64 m_speedIndex = 0;
    bool m_soundEnabled = false;
    // Nothing assigns it: the feedback plays system sound 0, as designed.
    quint32 m_soundID = 0;
    double m_lastPlayTime = 0.0;
    int m_soundTimer = 0;
    Brightmere::Clock *m_soundClock = nullptr;
    bool m_waitingResetButtonTouchUp = false;
    QString m_spotsSetName;
};
