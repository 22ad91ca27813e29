#include "BMSDKBackend.h"

#include <Brightmere/platform/foundation/Clock.h>

#include <QMutex>

namespace {

// One sample a second: the chart's x axis counts seconds.
constexpr double kDefaultSampleInterval = 1.0;
constexpr quint32 kDefaultSeed = 2001;

struct Settings
{
    BMSDKBackend::Kind kind = BMSDKBackend::Kind::Simulated;
    std::optional<BMSDKBackend::Kind> testerKind;
    Brightmere::Clock *clock = nullptr;
    double sampleInterval = kDefaultSampleInterval;
    QList<double> trace;
    quint32 seed = kDefaultSeed;
    QUrl downloadUrl;
};

QMutex &settingsMutex()
{
    static QMutex mutex;
    return mutex;
}

Settings &settings()
{
    static Settings s;
    return s;
}

} // namespace

BMSDKBackend::Kind BMSDKBackend::kind()
{
    QMutexLocker lock(&settingsMutex());
    return settings().kind;
}

void BMSDKBackend::setKind(Kind kind)
{
    QMutexLocker lock(&settingsMutex());
    settings().kind = kind;
}

BMSDKBackend::Kind BMSDKBackend::testerKind()
{
    QMutexLocker lock(&settingsMutex());
    return settings().testerKind.value_or(settings().kind);
}

void BMSDKBackend::setTesterKind(std::optional<Kind> kind)
{
    QMutexLocker lock(&settingsMutex());
    settings().testerKind = kind;
}

Brightmere::Clock &BMSDKBackend::clock()
{
    QMutexLocker lock(&settingsMutex());
    return settings().clock ? *settings().clock : Brightmere::Clock::system();
}

void BMSDKBackend::setClock(Brightmere::Clock *clock)
{
    QMutexLocker lock(&settingsMutex());
    settings().clock = clock;
}

double BMSDKBackend::sampleInterval()
{
    QMutexLocker lock(&settingsMutex());
    return settings().sampleInterval;
}

void BMSDKBackend::setSampleInterval(double seconds)
{
    QMutexLocker lock(&settingsMutex());
    settings().sampleInterval = seconds > 0.0 ? seconds : kDefaultSampleInterval;
}

QList<double> BMSDKBackend::simulatedTrace()
{
    QMutexLocker lock(&settingsMutex());
    return settings().trace;
}

void BMSDKBackend::setSimulatedTrace(const QList<double> &speedsInMbps)
{
    QMutexLocker lock(&settingsMutex());
    settings().trace = speedsInMbps;
}

quint32 BMSDKBackend::simulatedSeed()
{
    QMutexLocker lock(&settingsMutex());
    return settings().seed;
}

void BMSDKBackend::setSimulatedSeed(quint32 seed)
{
    QMutexLocker lock(&settingsMutex());
    settings().seed = seed;
}

QUrl BMSDKBackend::systemDownloadUrl()
{
    QMutexLocker lock(&settingsMutex());
    return settings().downloadUrl;
}

void BMSDKBackend::setSystemDownloadUrl(const QUrl &url)
{
    QMutexLocker lock(&settingsMutex());
    settings().downloadUrl = url;
}

void BMSDKBackend::reset()
{
    QMutexLocker lock(&settingsMutex());
    settings() = Settings();
}
