#include "BMSDKNetworkUtilities.h"

#include "BMLogger.h"
#include "BMSDKBackend.h"
#include "BMSimulatedNetwork.h"
#include <Brightmere/platform/foundation/Clock.h>

#include <QMutex>
#include <QProcess>
#include <QStringList>

namespace {

const QString kModule = QStringLiteral("BMSDKNetworkUtilities");
const QString kDefaultProgram = QStringLiteral("nmcli");

struct WifiAnswer
{
    std::optional<QString> ssid;
    std::optional<QString> bssid;
};

struct SystemState
{
    QMutex mutex;
    QString program;
    bool cached = false;
    double cachedAt = 0.0;
    WifiAnswer answer;
    // Said once, not on every result.
    bool reportedUnavailable = false;
};

SystemState &systemState()
{
    static SystemState s;
    return s;
}

std::optional<QString> nonEmpty(const QString &text)
{
    if (text.isEmpty())
        return std::nullopt;
    return text;
}

// One line of nmcli's terse output: fields split at ':' except where escaped
// as "\:" (BSSIDs always are); "\\" stands for a backslash.
QStringList splitTerseLine(const QString &line)
{
    QStringList fields;
    QString field;
    for (qsizetype i = 0; i < line.size(); ++i) {
        const QChar c = line.at(i);
        if (c == u'\\' && i + 1 < line.size()) {
            field += line.at(++i);
        } else if (c == u':') {
            fields.append(field);
            field.clear();
        } else {
            field += c;
        }
    }
    fields.append(field);
    return fields;
}

WifiAnswer parseNmcliOutput(const QString &output)
{
    const QStringList lines = output.split(u'\n', Qt::SkipEmptyParts);
    for (QString line : lines) {
        if (line.endsWith(u'\r'))
            line.chop(1);
        const QStringList fields = splitTerseLine(line);
        if (fields.size() < 3 || fields.at(0) != u"yes")
            continue;
        // nmcli shows "--" for a value it does not have.
        const QString ssid = fields.at(1) == u"--" ? QString() : fields.at(1);
        const QString bssid = fields.at(2) == u"--" ? QString() : fields.at(2).toLower();
        return WifiAnswer{nonEmpty(ssid), nonEmpty(bssid)};
    }
    return {};
}

// Runs nmcli; the caller holds the state's mutex.
WifiAnswer askNetworkManager(SystemState &s)
{
    const QString program = s.program.isEmpty() ? kDefaultProgram : s.program;
    QProcess process;
    // The ACTIVE column says "yes" only in the C locale.
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.insert(QStringLiteral("LC_ALL"), QStringLiteral("C"));
    process.setProcessEnvironment(environment);
    // No rescan: a scan can take seconds, and the active access point is
    // known without one.
    process.start(program, {QStringLiteral("-t"), QStringLiteral("-f"), QStringLiteral("ACTIVE,SSID,BSSID"),
                            QStringLiteral("dev"), QStringLiteral("wifi"), QStringLiteral("list"),
                            QStringLiteral("--rescan"), QStringLiteral("no")});
    if (!process.waitForStarted(BMSDKNetworkUtilities::kNmcliTimeoutMs)) {
        if (!s.reportedUnavailable) {
            BMLogger::sharedInstance().logFromModule(kModule, 2, "cannot run %@ (%@): no Wi-Fi network is known",
                                                     program, process.errorString());
            s.reportedUnavailable = true;
        }
        return {};
    }
    if (!process.waitForFinished(BMSDKNetworkUtilities::kNmcliTimeoutMs)) {
        process.kill();
        process.waitForFinished(100);
        BMLogger::sharedInstance().logFromModule(kModule, 2, "%@ did not answer within %@ ms", program,
                                                 BMSDKNetworkUtilities::kNmcliTimeoutMs);
        return {};
    }
    if (process.exitStatus() != QProcess::NormalExit || process.exitCode() != 0) {
        if (!s.reportedUnavailable) {
            BMLogger::sharedInstance().logFromModule(
                kModule, 2, "%@ failed (exit code %@): %@", program, process.exitCode(),
                QString::fromLocal8Bit(process.readAllStandardError()).trimmed());
            s.reportedUnavailable = true;
        }
        return {};
    }
    s.reportedUnavailable = false;
    return parseNmcliOutput(QString::fromUtf8(process.readAllStandardOutput()));
}

WifiAnswer currentAnswer()
{
    if (BMSDKBackend::kind() == BMSDKBackend::Kind::Simulated) {
        const BMSimulatedNetwork &network = BMSimulatedNetwork::shared();
        if (!network.isOnWifi())
            return {};
        return WifiAnswer{nonEmpty(network.ssid()), nonEmpty(network.bssid())};
    }

    SystemState &s = systemState();
    QMutexLocker lock(&s.mutex);
    const double now = BMSDKBackend::clock().now();
    if (s.cached && now >= s.cachedAt && now - s.cachedAt < BMSDKNetworkUtilities::kSystemAnswerLifetime)
        return s.answer;
    s.answer = askNetworkManager(s);
    s.cached = true;
    s.cachedAt = now;
    return s.answer;
}

} // namespace

std::optional<QString> BMSDKNetworkUtilities::currentWifiSSID()
{
    return currentAnswer().ssid;
}

std::optional<QString> BMSDKNetworkUtilities::currentWifiBSSID()
{
    return currentAnswer().bssid;
}

QString BMSDKNetworkUtilities::nmcliProgram()
{
    SystemState &s = systemState();
    QMutexLocker lock(&s.mutex);
    return s.program.isEmpty() ? kDefaultProgram : s.program;
}

void BMSDKNetworkUtilities::setNmcliProgram(const QString &program)
{
    SystemState &s = systemState();
    QMutexLocker lock(&s.mutex);
    s.program = program.trimmed();
    s.cached = false;
    s.reportedUnavailable = false;
}

void BMSDKNetworkUtilities::clearCache()
{
    SystemState &s = systemState();
    QMutexLocker lock(&s.mutex);
    s.cached = false;
}
