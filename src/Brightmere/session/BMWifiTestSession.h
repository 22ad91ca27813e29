#pragma once

#include <Brightmere/SDKUIExport.h>

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
class BRIGHTMERE_SDKUI_EXPORT BMWifiTestSession : public QObject,
                                                  public BMWiFiTesterDelegate,
                                                  public BMReachabilityDelegate
{
    Q_OBJECT

public:
    /// A stopped session without a tester; createTester() makes one.
    explicit BMWifiTestSession(QObject *parent = nullptr);
    ~BMWifiTestSession() override;

    /// Makes the tester (production server always on) with the customer's
    /// name and password; the password is handed over and not kept.
    void createTester(const QString &customer, const QString &password);
    /// The tester; null before createTester().
    BMWiFiTester *wifiTester() const { return m_wifiTester.get(); }

    /// Only Wi-Fi will do; another medium counts as none here.
    static bool isOnWifi();
    /// Starts hearing reachability changes.
    void subscribeToReachability();
    /// Stops hearing reachability changes.
    void unsubscribeFromReachability();

    /// The test.
    bool isScanning() const { return m_scanning; }
    /// Whether a test started and has no result yet.
    bool isPreparingWifiTester() const { return m_preparingWifiTester; }
    /// When the current test started, on the backend's clock.
    double startTestTime() const { return m_startTestTime; }
    /// Sets when the current test started.
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
    /// Every result of the run, oldest first.
    const WifiTestResult::List &testedSpeeds() const { return m_testedSpeeds; }
    /// Forgets the run's results (the spots stay).
    void clearTestedSpeeds() { m_testedSpeeds.clear(); }

    /// The run's spots, newest first.
    const WifiTestResult::List &recordedSpeeds() const { return m_recordedSpeeds; }
    /// The highest number of a default spot name in the run.
    qint64 speedIndex() const { return m_speedIndex; }
    /// The title of the set being edited or last saved.
    QString spotsSetName() const { return m_spotsSetName; }
    /// Sets the title of the set being edited.
    void setSpotsSetName(const QString &name) { m_spotsSetName = name; }

    /// Recording: a collector of the results that arrive while it is set.
    bool isRecording() const { return m_currentSpeedRecord != nullptr; }
    /// The collector of the spot being recorded; null when none.
    BMSpeedRecord *currentSpeedRecord() const { return m_currentSpeedRecord.get(); }
    /// Starts collecting the results into a spot.
    void startRecording();
    /// Abandons the spot being recorded; nothing is added.
    void stopRecording();
    /// Keeps the spot recorded: the spot re-recorded, else the last result
    /// as a new spot (never the same result twice), then stops recording.
    void saveRecordAndStopRecording();
    /// The same, only while recording.
    void saveRecordAndStopRecordingIfNeeded();

    /// Re-recording an existing spot: the spot a held row measures anew, and
    /// the name the next new spot takes (a copy of a spot).
    WifiTestResult::Ptr wifiRecordBeingEdited() const { return m_wifiRecordBeingEdited; }
    /// Sets the spot a held row measures anew.
    void setWifiRecordBeingEdited(const WifiTestResult::Ptr &spot) { m_wifiRecordBeingEdited = spot; }
    /// The name the next new spot takes; empty for a default name.
    QString nextSpotRecordName() const { return m_nextSpotRecordName; }
    /// Makes the next new spot a copy of spot, under its label.
    void prepareCopyOf(const WifiTestResult::Ptr &spot);
    /// The collector a confirmation keeps while the user decides.
    std::shared_ptr<BMSpeedRecord> takeSpeedRecord();
    /// Gives back a collector taken with takeSpeedRecord().
    void restoreSpeedRecord(const std::shared_ptr<BMSpeedRecord> &record);

    /// The record/reset control pressed and released while no test runs.
    bool isWaitingResetButtonTouchUp() const { return m_waitingResetButtonTouchUp; }
    /// Sets whether a release of the record/reset control is awaited.
    void setWaitingResetButtonTouchUp(bool waiting) { m_waitingResetButtonTouchUp = waiting; }

    /// A new run: no spots, no results, default names from 1.
    void reset();
    /// A new run holding these spots (none: empty).
    void resetWithNewRecordedSpeeds(const std::optional<WifiTestResult::List> &speeds);
    /// A saved set as the run to go on with.
    void loadSetForEditing(const FZHistoricalResultSpotsSet::Ptr &set);
    /// The highest number of a default name among the spots.
    void updateSpeedIndex();
    /// Remembers the names the user gave the run's spots among the saved spot names.
    void saveSpotsLocally();
    /// The default name of the spot numbered index, in the current language.
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
    /// When the sound last played, on the backend's clock.
    double lastPlayTime() const { return m_lastPlayTime; }
    /// Whether the sound's timer runs.
    bool hasSoundTimer() const { return m_soundTimer != 0; }
    /// Starts the sound's timer.
    void startSound();
    /// Plays the sound once.
    void playSound();

    /// The tester's and reachability's reports.
    void wiFiTesterDidFinishSetupWithError(BMWiFiTester *tester, const std::optional<BMError> &error) override;
    void wiFiTesterDidUpdateWithTestResult(BMWiFiTester *tester, const WifiTestResult::Ptr &result) override;
    void wiFiTesterDidFinishWithError(BMWiFiTester *tester, const std::optional<BMError> &error) override;
    void reachabilityHasChanged(int status, const QString &withBSSID, const QString &withSSID) override;

Q_SIGNALS:
    /// A test started.
    void testStarted();
    /// The test stopped.
    void testStopped();
    /// The tester finished its setup: the start/stop control may be pressed.
    void setupFinished();
    /// A result came on Wi-Fi: the test is no longer preparing.
    void resultArrived();
    /// A result kept: the value to show (the running average while
    /// recording) and the result itself, whose own speed is plotted.
    void resultAccepted(const WifiTestResult::Ptr &result, double shown);
    /// Recording began (true) or ended (false).
    void recordingChanged(bool recording);
    /// A spot kept at that row of the run: a new one at the head, or an
    /// existing one measured again.
    void spotSaved(const WifiTestResult::Ptr &spot, int row, bool isNew);
    /// The spot at that row was taken out of the run.
    void spotDeleted(int row);
    /// The run was replaced (emptied, or the spots of a set loaded).
    void spotsReset();
    /// Wi-Fi was missing at a result or at the tester's finish: the test
    /// has stopped.
    void wifiLost();
    /// The reachability changed; the network's name may be new.
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
