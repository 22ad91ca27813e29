#include "BMSDKRestServiceManager.h"

#include "BMBaseNotification.h"
#include "BMLogger.h"
#include "BMSDKGeneralUtilities.h"

#include <QCoreApplication>
#include <QMutex>

#include <algorithm>
#include <exception>
#include <vector>

namespace {

const QString kTokenPath = QStringLiteral("auth/token");
const QString kTokenKey = QStringLiteral("token");
const QString kAppIdParameter = QStringLiteral("appId");
const QString kFallbackApplicationIdentifier = QStringLiteral("BrightmereMobileSDK");

struct ServiceSettings
{
    QMutex mutex;
    QString serverURL;
    QString applicationIdentifier;
};

ServiceSettings &settings()
{
    static ServiceSettings s;
    return s;
}

QString withoutTrailingSlashes(QString url)
{
    url = url.trimmed();
    while (url.endsWith(u'/'))
        url.chop(1);
    return url;
}

template<typename Handler>
void callHandler(const QString &module, Handler &&handler)
{
    try {
        handler();
    } catch (const std::exception &e) {
        BMLogger::sharedInstance().logFromModule(module, 3, "a token handler threw (%@); the exception was dropped",
                                                 e.what());
    } catch (...) {
        BMLogger::sharedInstance().logFromModule(module, 3, "a token handler threw; the exception was dropped");
    }
}

} // namespace

struct BMSDKRestServiceManager::TokenState
{
    struct Waiter
    {
        TokenSuccessBlock success;
        FailureBlock failure;
        bool postConnectivityError = false;
    };

    QMutex mutex;
    bool running = false;
    bool requestPostsConnectivityError = false;
    std::vector<Waiter> waiters;

    // Hands the outcome to every caller that waited for this request.
    void finish(const QString &module, const std::optional<BMSDKRestRequestTask> &task,
                const std::optional<BMError> &error)
    {
        std::vector<Waiter> finished;
        bool alreadyPosted = false;
        {
            QMutexLocker lock(&mutex);
            finished.swap(waiters);
            alreadyPosted = requestPostsConnectivityError;
            running = false;
        }
        if (error && !alreadyPosted && BMSDKHTTPSessionManager::isConnectivityError(*error)) {
            const bool wanted = std::any_of(finished.begin(), finished.end(),
                                            [](const Waiter &w) { return w.postConnectivityError; });
            if (wanted) {
                BMBaseNotification notification(
                    QString::fromLatin1(kRestServiceConnectivityErrorNotification),
                    {{QStringLiteral("url"), task ? BMSDKGeneralUtilities::displayAddress(task->url()) : QString()},
                     {QStringLiteral("code"), error->code()},
                     {QStringLiteral("description"), error->localizedDescription()}});
                notification.post();
            }
        }
        for (const Waiter &waiter : finished) {
            if (error) {
                if (waiter.failure)
                    callHandler(module, [&] { waiter.failure(task, *error); });
            } else if (waiter.success) {
                callHandler(module, [&] { waiter.success(); });
            }
        }
    }
};

BMSDKRestServiceManager::BMSDKRestServiceManager(QObject *parent)
    : QObject(parent)
    , m_manager(new BMSDKHTTPSessionManager(this))
    , m_tokenState(std::make_shared<TokenState>())
{
}

BMSDKRestServiceManager::~BMSDKRestServiceManager() = default;

BMSDKRestServiceManager *BMSDKRestServiceManager::sharedInstance()
{
    static BMSDKRestServiceManager instance;
    return &instance;
}

QString BMSDKRestServiceManager::brightmereServerURL()
{
    ServiceSettings &s = settings();
    {
        QMutexLocker lock(&s.mutex);
        if (!s.serverURL.isEmpty())
            return s.serverURL;
    }
    const QString fromEnvironment = withoutTrailingSlashes(qEnvironmentVariable("BRIGHTMERE_SERVER_URL"));
    if (!fromEnvironment.isEmpty())
        return fromEnvironment;
    return QString::fromLatin1(kDefaultServerURL);
}

void BMSDKRestServiceManager::setBrightmereServerURL(const QString &url)
{
    const QString cleaned = withoutTrailingSlashes(url);
    {
        ServiceSettings &s = settings();
        QMutexLocker lock(&s.mutex);
        s.serverURL = cleaned;
    }
    BMLogger::sharedInstance().logFromModule(QStringLiteral("BMSDKRestServiceManager"), 2,
                                             "service address: %@",
                                             BMSDKGeneralUtilities::displayAddress(brightmereServerURL()));
}

QString BMSDKRestServiceManager::applicationIdentifier()
{
    {
        ServiceSettings &s = settings();
        QMutexLocker lock(&s.mutex);
        if (!s.applicationIdentifier.isEmpty())
            return s.applicationIdentifier;
    }
    const QString name = QCoreApplication::applicationName();
    return name.isEmpty() ? kFallbackApplicationIdentifier : name;
}

void BMSDKRestServiceManager::setApplicationIdentifier(const QString &identifier)
{
    ServiceSettings &s = settings();
    QMutexLocker lock(&s.mutex);
    s.applicationIdentifier = identifier.trimmed();
}

QString BMSDKRestServiceManager::authorizationTokenURL() const
{
    return QStringLiteral("%1/%2/%3/%4")
        .arg(brightmereServerURL(), QLatin1String(kRestServiceManagerAPI), QLatin1String(kRestServiceManagerVersion2),
             kTokenPath);
}

bool BMSDKRestServiceManager::hasAuthorizationToken() const
{
    return m_manager->hasAuthorizationToken();
}

void BMSDKRestServiceManager::clearAuthorizationToken()
{
    m_manager->clearAuthorizationToken();
}

void BMSDKRestServiceManager::startRequestForAppAuthorizationTokenWithSuccessBlock(TokenSuccessBlock success,
                                                                                   FailureBlock andErrorBlock,
                                                                                   bool postConnectivityError)
{
    const QString module = QString::fromLatin1(metaObject()->className());
    if (m_manager->hasAuthorizationToken()) {
        // Still on the network thread, as every other answer of the client.
        const bool queued = BMSDKHTTPSessionManager::performOnNetworkThread([module, success] {
            if (success)
                callHandler(module, [&] { success(); });
        });
        if (!queued && andErrorBlock) {
            const BMError error(QString::fromLatin1(kRestServiceErrorDomain), kRestServiceErrorNoApplication,
                                QStringLiteral("No application object: the token request was not answered"));
            callHandler(module, [&] { andErrorBlock(std::nullopt, error); });
        }
        return;
    }

    const std::shared_ptr<TokenState> state = m_tokenState;
    {
        QMutexLocker lock(&state->mutex);
        state->waiters.push_back({std::move(success), std::move(andErrorBlock), postConnectivityError});
        if (state->running)
            return;
        state->running = true;
        state->requestPostsConnectivityError = postConnectivityError;
    }

    // The handlers hold the shared states, not this object, which may be gone
    // by the time the answer comes.
    const std::shared_ptr<BMSDKHTTPSessionManager::Shared> session = m_manager->m_shared;
    auto onSuccess = [module, state, session](const BMSDKRestRequestTask &task, const QVariantMap &response) {
        const QString domain = QString::fromLatin1(kRestServiceErrorDomain);
        const QVariant code = response.value(QLatin1String(kRestServiceResponseCodeKey));
        if (code.isValid() && code.toInt() != kRestServiceResponseCodeSuccessValue) {
            QString message = response.value(QLatin1String(kRestServiceResponseMessageKey)).toString();
            if (message.isEmpty())
                message = QStringLiteral("The service refused the authorisation token request (code %1)")
                              .arg(code.toInt());
            BMLogger::sharedInstance().logFromModule(module, 2, "token request refused: %@", message);
            state->finish(module, task, BMError(domain, code.toInt(), message));
            return;
        }
        const QVariant token = response.value(QLatin1String(kRestServiceResponseDataKey)).toMap().value(kTokenKey);
        if (token.typeId() != QMetaType::QString || token.toString().isEmpty()) {
            const BMError error(domain, kRestServiceErrorMalformedResponse,
                                QStringLiteral("The token answer of %1 holds no token")
                                    .arg(BMSDKGeneralUtilities::displayAddress(task.url())));
            BMLogger::sharedInstance().logFromModule(module, 2, "%@", error.localizedDescription());
            state->finish(module, task, error);
            return;
        }
        BMSDKHTTPSessionManager::storeToken(session, token.toString());
        BMLogger::sharedInstance().logFromModule(module, 2, "authorisation token received");
        state->finish(module, task, std::nullopt);
    };
    auto onFailure = [module, state](const std::optional<BMSDKRestRequestTask> &task, const BMError &error) {
        BMLogger::sharedInstance().logFromModule(module, 2, "token request failed: %@", error.localizedDescription());
        state->finish(module, task, error);
    };
    m_manager->startRequest(authorizationTokenURL(), {{kAppIdParameter, applicationIdentifier()}},
                            std::move(onSuccess), std::move(onFailure), postConnectivityError, false);
}
