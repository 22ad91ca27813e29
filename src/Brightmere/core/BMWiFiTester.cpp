#include "BMWiFiTester.h"

#include "BMLogger.h"
#include "BMSDKNetworkUtilities.h"
#include "BMSDKBackend.h"
#include "BMWiFiTesterDelegate.h"
#include "WifiTestResult.h"
#include <Brightmere/platform/foundation/Clock.h>

#include <QPointer>
#include <QThread>

const QString BMWiFiTester::kErrorDomain = QStringLiteral("BMWiFiTesterErrorDomain");

BMWiFiTester::BMWiFiTester(QObject *parent)
    : QObject(parent)
    , m_clock(&BMSDKBackend::clock())
{
}

BMWiFiTester::~BMWiFiTester()
{
    // Leave no copy of the password behind in freed memory we own.
    m_sdkPassword.fill(QChar(0));
}

void BMWiFiTester::initializeWithAppId(const QString &appId, const std::optional<BMLocationCoordinate2D> &location,
                                       const QString &pushNotificationToken, const QStringList &labels)
{
    m_appId = appId;
    m_pushNotificationToken = pushNotificationToken;
    m_labels = labels;
    m_location = location;
    if (location && !location->isValid()) {
        BMLogger::sharedInstance().logFromModule(moduleName(), 3,
                                                 "Ignoring location out of range: latitude %f, longitude %f",
                                                 location->latitude, location->longitude);
        m_location.reset();
    }
    BMLogger::sharedInstance().logFromModule(moduleName(), 2, "Initialized for app \"%@\" with %d label(s)%@",
                                             appId, labels.size(),
                                             m_location ? QStringLiteral(" and a location") : QString());
}

void BMWiFiTester::setResultDelegate(BMWiFiTesterDelegate *delegate)
{
    m_delegate = delegate;
}

void BMWiFiTester::start()
{
    if (!isOnOwnerThread()) {
        QMetaObject::invokeMethod(this, [this] { start(); }, Qt::QueuedConnection);
        return;
    }
    if (m_running) {
        BMLogger::sharedInstance().logFromModule(moduleName(), 1, "start ignored: a test is already running");
        return;
    }
    m_running = true;
    m_setupFinished = false;
    ++m_generation;
    m_clock = &BMSDKBackend::clock();
    BMLogger::sharedInstance().logFromModule(moduleName(), 2, "Test started");
    startMeasuring();
}

void BMWiFiTester::stop()
{
    if (!isOnOwnerThread()) {
        QMetaObject::invokeMethod(this, [this] { stop(); }, Qt::QueuedConnection);
        return;
    }
    if (!m_running) {
        BMLogger::sharedInstance().logFromModule(moduleName(), 1, "stop ignored: no test is running");
        return;
    }
    halt();
    BMLogger::sharedInstance().logFromModule(moduleName(), 2, "Test stopped");
}

void BMWiFiTester::halt()
{
    m_running = false;
    ++m_generation;
    stopMeasuring();
}

void BMWiFiTester::setSoundEnabled(bool enabled)
{
    m_soundEnabled = enabled;
    BMLogger::sharedInstance().logFromModule(moduleName(), 1, "Sound %@", enabled ? "on" : "off");
}

std::optional<BMLocationCoordinate2D> BMWiFiTester::location() const
{
    return m_location;
}

void BMWiFiTester::setCredentials(const QString &customer, const QString &password, bool useProductionServer)
{
    m_sdkCustomer = customer;
    m_sdkPassword = password;
    m_useProductionServer = useProductionServer;
}

QString BMWiFiTester::currentSsid() const
{
    return BMSDKNetworkUtilities::currentWifiSSID().value_or(QString());
}

QString BMWiFiTester::currentBssid() const
{
    return BMSDKNetworkUtilities::currentWifiBSSID().value_or(QString());
}

QString BMWiFiTester::moduleName() const
{
    return QString::fromLatin1(metaObject()->className());
}

bool BMWiFiTester::reportSetupFinished(const std::optional<BMError> &error)
{
    if (!m_running || m_setupFinished)
        return m_running;
    m_setupFinished = true;
    if (error)
        BMLogger::sharedInstance().logFromModule(moduleName(), 3, "Setup failed: %@", error->toString());
    else
        BMLogger::sharedInstance().logFromModule(moduleName(), 1, "Setup finished");

    const quint64 generation = m_generation;
    QPointer<BMWiFiTester> self(this);
    if (m_delegate)
        m_delegate->wiFiTesterDidFinishSetupWithError(this, error);
    return self && m_generation == generation;
}

bool BMWiFiTester::reportResult(double speedInMbps)
{
    if (!m_running)
        return false;
    auto result = WifiTestResult::create(speedInMbps, m_clock->now());
    result->setSsid(currentSsid());
    result->setBssid(currentBssid());
    result->setCoordinate(location());

    const quint64 generation = m_generation;
    QPointer<BMWiFiTester> self(this);
    if (m_delegate)
        m_delegate->wiFiTesterDidUpdateWithTestResult(this, result);
    return self && m_generation == generation;
}

void BMWiFiTester::finishWithError(const BMError &error)
{
    if (!m_running)
        return;
    if (!m_setupFinished && !reportSetupFinished(error))
        return;
    halt();
    BMLogger::sharedInstance().logFromModule(moduleName(), 3, "Test finished: %@", error.toString());
    if (m_delegate)
        m_delegate->wiFiTesterDidFinishWithError(this, error);
}

bool BMWiFiTester::isOnOwnerThread() const
{
    return QThread::currentThread() == thread();
}
