#pragma once

#include <Brightmere/SDKExport.h>

#include "BMError.h"
#include "BMSDKHTTPSessionManager.h"

#include <QObject>
#include <QString>

#include <functional>
#include <optional>
#include <memory>

/// Path segments of the service's API and of its version: "<base>/api/v2/...".
inline constexpr char kRestServiceManagerAPI[] = "api";
inline constexpr char kRestServiceManagerVersion2[] = "v2";

/// Keys of the envelope every answer of the service comes in:
/// {"code": 200, "message": "...", "data": {...}}.
inline constexpr char kRestServiceResponseCodeKey[] = "code";
inline constexpr char kRestServiceResponseMessageKey[] = "message";
inline constexpr char kRestServiceResponseDataKey[] = "data";
inline constexpr int kRestServiceResponseCodeSuccessValue = 200;

/// Posted (as a BMBaseNotification) when a request that asked for it failed
/// for lack of connectivity: refused, unreachable, cut off or timed out.
/// Properties: "url" (text), "code" and "description" of the error.
inline constexpr char kRestServiceConnectivityErrorNotification[] = "kRestServiceConnectivityError";

/// Errors of the REST client carry this domain. An answer with a non-2xx HTTP
/// status fails with the status as code, and a refused request of the service
/// with the envelope's code; the failures below have codes of their own.
inline constexpr char kRestServiceErrorDomain[] = "BMSDKRestServiceErrorDomain";
enum BMSDKRestServiceErrorCode {
    kRestServiceErrorNotConnected = -1,      ///< refused, unreachable, cut off, network down
    kRestServiceErrorTimedOut = -2, ///< the request took longer than the timeout
    kRestServiceErrorResponseTooLarge = -3, ///< the body is larger than the size cap
    kRestServiceErrorMalformedResponse = -4, ///< not JSON, not an object, no token
    kRestServiceErrorBadURL = -5, ///< the address is not a valid URL
    kRestServiceErrorNoApplication = -6,     ///< no application object to run the network on
    kRestServiceErrorTransport = -7,         ///< any other transport failure (TLS, protocol, redirects)
};

/// The client of the kit's REST service: where the service is, the
/// application's authorisation token, and the HTTP client (manager()) that
/// sends the requests. Services of the kit derive from it and keep a
/// singleton of their own; sharedInstance() is the base's.
///
/// Every handler runs on the shared network thread (see
/// BMSDKHTTPSessionManager), never on the caller's thread, exactly once.
class BRIGHTMERE_SDK_EXPORT BMSDKRestServiceManager : public QObject
{
    Q_OBJECT

public:
    /// Called on the network thread with the task and the answer's JSON object.
    using SuccessBlock = BMSDKHTTPSessionManager::SuccessBlock;
    /// Called on the network thread with the task (when one was sent) and why it failed.
    using FailureBlock = BMSDKHTTPSessionManager::FailureBlock;
    /// Called on the network thread once the token is held.
    using TokenSuccessBlock = std::function<void()>;

    /// The default base address when neither the host nor the environment
    /// variable BRIGHTMERE_SERVER_URL gives one.
    static constexpr const char *kDefaultServerURL = "http://127.0.0.1:8787";

    /// A client of the service at brightmereServerURL().
    explicit BMSDKRestServiceManager(QObject *parent = nullptr);
    ~BMSDKRestServiceManager() override;

    /// The process-wide client of the service, created on first use.
    static BMSDKRestServiceManager *sharedInstance();

    /// The service's base address, without a trailing slash. Process-wide: the
    /// kit talks to one service. An empty text restores the default.
    static QString brightmereServerURL();
    /// Sets the service's base address for every client of the process.
    static void setBrightmereServerURL(const QString &url);

    /// The identifier the token is asked for ("appId"); the application's
    /// name unless the host sets one. An empty text restores that default.
    static QString applicationIdentifier();
    /// Sets the identifier the token is asked for.
    static void setApplicationIdentifier(const QString &identifier);

    /// The HTTP client that sends this client's requests; owned by it.
    BMSDKHTTPSessionManager *manager() const { return m_manager; }

    /// Makes sure the application's authorisation token is held, then calls
    /// success; the token goes with every later GET of manager(). With a
    /// token already held, success follows at once without a request. Calls
    /// made while a token request runs wait for that same request.
    void startRequestForAppAuthorizationTokenWithSuccessBlock(TokenSuccessBlock success,
                                                              FailureBlock andErrorBlock,
                                                              bool postConnectivityError);

    /// Whether the application's authorisation token is held.
    bool hasAuthorizationToken() const;
    /// Forgets the token, so the next request asks for a fresh one.
    void clearAuthorizationToken();

    /// "<base>/api/v2/auth/token"; the appId goes in the query.
    QString authorizationTokenURL() const;

private:
    // Held by the running token request too, so a manager destroyed while
    // the request runs leaves nothing dangling.
    struct TokenState;

    BMSDKHTTPSessionManager *m_manager = nullptr;
    std::shared_ptr<TokenState> m_tokenState;
};
