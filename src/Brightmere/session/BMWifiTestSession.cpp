#include "BMWifiTestSession.h"

#include "BMWiFiFairzoneTestNotification.h"
#include <Brightmere/core/BMLogger.h>
#include <Brightmere/core/BMReachabilityManager.h>
#include <Brightmere/core/BMSDKBackend.h>
#include <Brightmere/core/BMSDKNetworkUtilities.h>
#include <Brightmere/core/BMTesterFactory.h>
#include <Brightmere/core/BMWiFiTester.h>
#include <Brightmere/i18n/BMI18NManager.h>
#include <Brightmere/model/BMSDKUISettings.h>
#include <Brightmere/model/BMSpeedRecord.h>
#include <Brightmere/platform/foundation/Clock.h>
#include <Brightmere/platform/foundation/StringFormat.h>
#include <Brightmere/platform/views/SystemSound.h>

#include <QCoreApplication>
#include <QPointer>

#include <limits>
#include <utility>

using namespace Brightmere;

namespace {

// The feedback sound: the timer's period, the gap with no usable speed,
// and the longest gap.
constexpr double kSoundTick = 0.01;
constexpr float kSilentGap = 10.0f;
constexpr float kLongestGap = 2.0f;

// What the spot-name text after the first blank is worth: C's atoi, leading
// blanks, an optional sign, digits; saturating instead of overflowing.
qint64 leadingInteger(QStringView text)
{
    qsizetype i = 0;
    while (i < text.size() && (text[i] == u' ' || (text[i] >= u'\t' && text[i] <= u'\r')))
        ++i;
    bool negative = false;
    if (i < text.size() && (text[i] == u'+' || text[i] == u'-'))
        negative = text[i++] == u'-';
    qint64 value = 0;
    constexpr qint64 limit = std::numeric_limits<qint64>::max();
    for (; i < text.size() && text[i] >= u'0' && text[i] <= u'9'; ++i) {
        const int digit = text[i].unicode() - u'0';
        value = value > (limit - digit) / 10 ? limit : value * 10 + digit;
    }
    return negative ? -value : value;
}

} // namespace

BMWifiTestSession::BMWifiTestSession(QObject *parent)
    : QObject(parent)
{
}

BMWifiTestSession::~BMWifiTestSession()
{
    unsubscribeFromReachability();
    stopSound();
    // The tester reports to this object: it goes first.
    if (m_wifiTester) {
        m_wifiTester->setResultDelegate(nullptr);
        m_wifiTester->stop();
        m_wifiTester.reset();
    }
}

void BMWifiTestSession::createTester(const QString &customer, const QString &password)
{
    if (m_wifiTester) {
        log(2, QStringLiteral("The tester is already made; it is kept"));
        return;
    }
    m_wifiTester = BMTesterFactory::createWiFiTesterWithSDKCustomer(customer, password, true);
    m_wifiTester->initializeWithAppId(QCoreApplication::applicationName(), std::nullopt, QString(), {});
    m_wifiTester->setResultDelegate(this);
}

bool BMWifiTestSession::isOnWifi()
{
    return BMReachabilityManager::sharedInstance()->currentStatus() == BMReachabilityManager::kReachableViaWiFi;
}

void BMWifiTestSession::subscribeToReachability()
{
    BMReachabilityManager::sharedInstance()->subscribeToEvents(this, nullptr);
}

void BMWifiTestSession::unsubscribeFromReachability()
{
    BMReachabilityManager::sharedInstance()->unsubscribeFromEvents(this);
}

// ---------------------------------------------------------------------------
// The test

void BMWifiTestSession::startTesting()
{
    m_scanning = true;
    m_preparingWifiTester = true;
    BMWiFiFairzoneTestNotification::postWiFiFairzoneTestStarted();
    if (m_wifiTester)
        m_wifiTester->start();
    Q_EMIT testStarted();
}

void BMWifiTestSession::stopTesting()
{
    if (m_wifiTester)
        m_wifiTester->stop();
    // A spot being recorded is abandoned, not saved.
    stopRecording();
    stopSound();
    m_scanning = false;
    saveSpotsLocally();
    Q_EMIT testStopped();
}

void BMWifiTestSession::wiFiTesterDidFinishSetupWithError(BMWiFiTester *, const std::optional<BMError> &)
{
    Q_EMIT setupFinished();
}

void BMWifiTestSession::wiFiTesterDidUpdateWithTestResult(BMWiFiTester *, const WifiTestResult::Ptr &result)
{
    if (!isOnWifi()) {
        stopTesting();
        Q_EMIT wifiLost();
        return;
    }
    if (!result) {
        log(2, QStringLiteral("The tester reported no result; ignored"));
        return;
    }
    startSound();
    m_preparingWifiTester = false;
    result->setLabel(QString());
    Q_EMIT resultArrived();
    acceptResult(result);
}

void BMWifiTestSession::wiFiTesterDidFinishWithError(BMWiFiTester *, const std::optional<BMError> &)
{
    // With Wi-Fi there, the test stays as it is.
    if (isOnWifi())
        return;
    stopTesting();
    Q_EMIT wifiLost();
}

void BMWifiTestSession::reachabilityHasChanged(int, const QString &, const QString &)
{
    // A loss alone does not stop the test: the next result or the tester's
    // finish does.
    Q_EMIT reachabilityChanged();
}

void BMWifiTestSession::acceptResult(const WifiTestResult::Ptr &result)
{
    if (!result)
        return;
    if (m_wifiTester) {
        if (const auto location = m_wifiTester->location())
            result->setCoordinate(location);
    }
    const double speed = result->speedInMbps();
    if (speed < 0.0)
        return;
    if (!(speed >= 0.0)) {
        log(2, QStringLiteral("A result without a speed was dropped"));
        return;
    }
    double shown = speed;
    m_testedSpeeds.append(result);
    if (m_currentSpeedRecord) {
        m_currentSpeedRecord->addResult(result);
        shown = m_currentSpeedRecord->average();
    }
    Q_EMIT resultAccepted(result, shown);
}

// ---------------------------------------------------------------------------
// Recording

void BMWifiTestSession::startRecording()
{
    m_currentSpeedRecord = std::make_shared<BMSpeedRecord>();
    m_currentSpeedRecord->start();
    // A press shorter than one result still has a value: the one on show.
    if (!m_testedSpeeds.isEmpty())
        m_currentSpeedRecord->addResult(m_testedSpeeds.constLast());
    Q_EMIT recordingChanged(true);
}

void BMWifiTestSession::stopRecording()
{
    if (!isRecording())
        return;
    m_currentSpeedRecord->finish();
    m_currentSpeedRecord.reset();
    Q_EMIT recordingChanged(false);
}

void BMWifiTestSession::saveRecordAndStopRecording()
{
    WifiTestResult::Ptr target = std::exchange(m_wifiRecordBeingEdited, nullptr);
    const bool reRecording = target != nullptr;
    if (reRecording)
        target->setTimeAfterTest(BMSDKBackend::clock().now());
    else if (!m_testedSpeeds.isEmpty())
        target = m_testedSpeeds.constLast();

    // One result never becomes two spots, and without a result there is none.
    const bool isNewSpot = !reRecording && target
                           && (m_recordedSpeeds.isEmpty() || m_recordedSpeeds.constFirst() != target);
    if (reRecording || isNewSpot) {
        target->setSsid(BMSDKNetworkUtilities::currentWifiSSID().value_or(QString()));
        target->setBssid(BMSDKNetworkUtilities::currentWifiBSSID().value_or(QString()));
        if (m_currentSpeedRecord) {
            const bool averaged = m_currentSpeedRecord->isMultiResult();
            target->setDuration(averaged ? m_currentSpeedRecord->duration() : 0.0);
            target->setAverage(averaged);
            target->setSpeedInMbps(m_currentSpeedRecord->average());
        } else {
            // Saved without a recording: the result keeps its own speed.
            log(2, QStringLiteral("A spot was saved without a recording; it keeps its measured speed"));
            target->setDuration(0.0);
            target->setAverage(false);
        }
        if (isNewSpot) {
            QString name = std::exchange(m_nextSpotRecordName, QString());
            if (name.isNull()) {
                name = defaultSpotName(m_speedIndex + 1);
                ++m_speedIndex;
            }
            target->setLabel(name);
            m_recordedSpeeds.prepend(target);
        }
        Q_EMIT spotSaved(target, int(m_recordedSpeeds.indexOf(target)), isNewSpot);
    }
    stopRecording();
}

void BMWifiTestSession::saveRecordAndStopRecordingIfNeeded()
{
    if (isRecording())
        saveRecordAndStopRecording();
}

void BMWifiTestSession::prepareCopyOf(const WifiTestResult::Ptr &spot)
{
    m_nextSpotRecordName = spot->label();
    m_wifiRecordBeingEdited.reset();
}

std::shared_ptr<BMSpeedRecord> BMWifiTestSession::takeSpeedRecord()
{
    std::shared_ptr<BMSpeedRecord> kept = m_currentSpeedRecord;
    stopRecording();
    return kept;
}

void BMWifiTestSession::restoreSpeedRecord(const std::shared_ptr<BMSpeedRecord> &record)
{
    m_currentSpeedRecord = record;
}

// ---------------------------------------------------------------------------
// The run's spots

QString BMWifiTestSession::defaultSpotName(qint64 index) const
{
    return StringFormat::print(BMI18NManager::stringForCode(QStringLiteral("spot")), index);
}

void BMWifiTestSession::updateSpeedIndex()
{
    m_speedIndex = 0;
    for (const WifiTestResult::Ptr &spot : std::as_const(m_recordedSpeeds)) {
        const QString label = spot->label();
        const qsizetype blank = label.indexOf(u' ');
        if (blank >= 0)
            m_speedIndex = qMax(m_speedIndex, leadingInteger(QStringView(label).mid(blank)));
    }
}

void BMWifiTestSession::reset()
{
    m_speedIndex = 0;
    resetWithNewRecordedSpeeds(std::nullopt);
}

void BMWifiTestSession::resetWithNewRecordedSpeeds(const std::optional<WifiTestResult::List> &speeds)
{
    m_recordedSpeeds = speeds.value_or(WifiTestResult::List());
    m_testedSpeeds.clear();
    m_spotsSetName.clear();
    Q_EMIT spotsReset();
}

void BMWifiTestSession::loadSetForEditing(const FZHistoricalResultSpotsSet::Ptr &set)
{
    if (!set)
        return;
    resetWithNewRecordedSpeeds(set->spots());
    // After the reset, which clears the name.
    m_spotsSetName = set->name();
}

void BMWifiTestSession::saveSpotsLocally()
{
    if (m_recordedSpeeds.isEmpty())
        return;
    // Only names the user typed are remembered; of the default names only
    // the highest is recognised, deliberately.
    QStringList names = BMSDKUISettings::sharedInstance().savedSpots();
    const QString defaultName = defaultSpotName(m_speedIndex);
    for (const WifiTestResult::Ptr &spot : std::as_const(m_recordedSpeeds)) {
        const QString label = spot->label();
        if (!names.contains(label) && label != defaultName)
            names.append(label);
    }
    BMSDKUISettings::sharedInstance().setSavedSpots(names);
}

bool BMWifiTestSession::deleteRecord(const WifiTestResult::Ptr &record)
{
    const qsizetype index = m_recordedSpeeds.indexOf(record);
    if (index < 0) {
        log(2, QStringLiteral("A spot to delete is no longer in the list"));
        return false;
    }
    m_recordedSpeeds.removeAt(index);
    Q_EMIT spotDeleted(int(index));
    return true;
}

QString BMWifiTestSession::renameSpot(int row, const QString &typed)
{
    if (row < 0 || row >= m_recordedSpeeds.size())
        return typed;
    const WifiTestResult::Ptr &spot = m_recordedSpeeds.at(row);
    const QString trimmed = typed.trimmed();
    if (!trimmed.isEmpty())
        spot->setLabel(trimmed);
    return spot->label();
}

// ---------------------------------------------------------------------------
// The feedback sound

void BMWifiTestSession::setSoundEnabled(bool enabled)
{
    m_soundEnabled = enabled;
    if (m_wifiTester)
        m_wifiTester->setSoundEnabled(enabled);
}

void BMWifiTestSession::startSound()
{
    if (m_soundTimer != 0)
        return;
    QPointer<BMWifiTestSession> self(this);
    // Stopped on the clock it was started on, whatever is set meanwhile.
    m_soundClock = &BMSDKBackend::clock();
    m_soundTimer = m_soundClock->startRepeating(kSoundTick, [self] {
        if (self)
            self->playSound();
    });
}

void BMWifiTestSession::stopSound()
{
    if (m_soundTimer == 0)
        return;
    m_soundClock->stopRepeating(m_soundTimer);
    m_soundTimer = 0;
    m_soundClock = nullptr;
}

void BMWifiTestSession::playSound()
{
    if (!m_scanning || !m_soundEnabled)
        return;
    // Single precision on purpose: the float cut absorbs the timer's drift,
    // so a 1 s gap is met on the tick at 1 s, not one tick later.
    float gap = kSilentGap;
    if (!m_testedSpeeds.isEmpty() && m_testedSpeeds.constLast()->speedInMbps() > 0.0)
        gap = float(double(kSilentGap) / m_testedSpeeds.constLast()->speedInMbps());
    if (gap > kLongestGap)
        gap = kLongestGap;
    const double now = BMSDKBackend::clock().now();
    const float elapsed = float(now - m_lastPlayTime);
    if (elapsed >= gap) {
        SystemSound::play(m_soundID);
        m_lastPlayTime = now;
    }
}

void BMWifiTestSession::log(int level, const QString &message) const
{
    BMLogger::sharedInstance().log(QString::fromLatin1(metaObject()->className()), level, message);
}
