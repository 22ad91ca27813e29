#pragma once

#include <Brightmere/SDKExport.h>

#include "BMError.h"
#include "BMSDKRestRequestTask.h"

#include <QObject>
#include <QString>
#include <QVariantMap>

#include <functional>
#include <memory>
#include <optional>

class QThread;

/// The HTTP client of the core library. Requests run on one network thread
/// shared by the whole process, where the one QNetworkAccessManager lives;
/// requests may be started from any thread, and their handlers run on the
/// network thread, each request's exactly once. Callers that touch the UI
/// from a handler move to the main thread first.
///
/// A reply is handled in a fixed order: transport error or timeout, HTTP
/// status (non-2xx fails with the status as code), size cap (checked against
/// Content-Length as soon as the headers arrive and again while the body is
/// read, aborting the transfer when exceeded), parse (the body must be a JSON
/// object), then the success handler gets the object as a map.
///
/// The network thread is shut down when the application object goes away;
/// requests still running then are dropped without calling their handlers.
class BRIGHTMERE_SDK_EXPORT BMSDKHTTPSessionManager : public QObject
{
    Q_OBJECT

public:
    /// Called on the network thread with the task and the answer's JSON object.
    using SuccessBlock = std::function<void(const BMSDKRestRequestTask &task, const QVariantMap &response)>;
    /// Called on the network thread with the task (when one was sent) and why it failed.
    using FailureBlock = std::function<void(const std::optional<BMSDKRestRequestTask> &task, const BMError &error)>;

    /// Seconds a request may take when no other timeout is set.
    static constexpr double kDefaultTimeoutInterval = 30.0;
    /// Largest body, in bytes, accepted when no other cap is set.
    static constexpr qint64 kDefaultMaximumResponseSize = 4 * 1024 * 1024;

    /// An HTTP client on the shared network thread.
    explicit BMSDKHTTPSessionManager(QObject *parent = nullptr);
    ~BMSDKHTTPSessionManager() override;

    /// GET url with parameters added to its query. Sends the authorisation
    /// token when one is held; an answer 401 to a request that carried the
    /// token drops it, so the next token request fetches a fresh one. With
    /// postConnectivityError, a failure for lack of connectivity also posts
    /// kRestServiceConnectivityErrorNotification (before the failure handler).
    void GET(const QString &url, const QVariantMap &parameters, SuccessBlock success, FailureBlock failure,
             bool postConnectivityError);

    /// Seconds from the start of a request to its end; 0 or less restores the
    /// default.
    double timeoutInterval() const;
    /// Sets the timeout of later requests.
    void setTimeoutInterval(double seconds);

    /// Largest body accepted, in bytes; 0 or less restores the default.
    qint64 maximumResponseSize() const;
    /// Sets the size cap of later answers.
    void setMaximumResponseSize(qint64 bytes);

    /// Sent as "Authorization: Bearer <token>"; kept in memory only.
    bool hasAuthorizationToken() const;
    /// Holds the token sent with later requests.
    void setAuthorizationToken(const QString &token);
    /// Forgets the token; later requests go without it.
    void clearAuthorizationToken();

    /// True for failures that say the service could not be reached.
    static bool isConnectivityError(const BMError &error);

    /// The parse step of every answer: the body must be one JSON object. The
    /// object as a map, or std::nullopt with the reason in *problem ("not JSON
    /// (...)"). Public so that the fuzz targets feed raw bytes through the
    /// very step a reply takes.
    static std::optional<QVariantMap> responseFromBody(const QByteArray &body, QString *problem = nullptr);

    /// The shared network thread (started on first use); null before that or
    /// without an application object.
    static QThread *networkThread();

    /// Runs task on the network thread, after the work already queued there.
    /// Returns false (and drops the task) when there is no application object.
    static bool performOnNetworkThread(std::function<void()> task);

private:
    friend class BMSDKRestServiceManager;

    struct Shared;
    class Request;

    void startRequest(const QString &url, const QVariantMap &parameters, SuccessBlock success,
                      FailureBlock failure, bool postConnectivityError, bool authorize);
    // For a token request that may outlive this object.
    static void storeToken(const std::shared_ptr<Shared> &shared, const QString &token);

    std::shared_ptr<Shared> m_shared;
};
