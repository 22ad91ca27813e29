#include "BMSDKHTTPSessionManager.h"

#include "BMBaseNotification.h"
#include "BMLogger.h"
#include "BMSDKGeneralUtilities.h"
#include "BMSDKRestServiceManager.h"
#include <Brightmere/platform/foundation/TaskList.h>

#include <QCoreApplication>
#include <QDeadlineTimer>
#include <QJsonDocument>
#include <QJsonObject>
#include <QJsonParseError>
#include <QMutex>
#include <QNetworkAccessManager>
#include <QNetworkReply>
#include <QNetworkRequest>
#include <QSet>
#include <QThread>
#include <QTimer>

#include <algorithm>
#include <atomic>
#include <cmath>
#include <exception>

namespace {

const QString kModule = QStringLiteral("BMSDKHTTPSessionManager");

// Bounded so that a handler stuck at exit cannot hang the application.
constexpr int kShutdownWaitMs = 5000;

void logLine(int level, const QString &format, const auto &...arguments)
{
    BMLogger::sharedInstance().logFromModule(kModule, level, format, arguments...);
}

// Host code must not unwind through the network thread's event loop.
template<typename Handler>
void callHandler(const char *what, Handler &&handler)
{
    try {
        handler();
    } catch (const std::exception &e) {
        logLine(3, "the %@ handler threw (%@); the exception was dropped", what, e.what());
    } catch (...) {
        logLine(3, "the %@ handler threw; the exception was dropped", what);
    }
}

// The thread, and the object on it that queued work is aimed at. Guarded by
// the mutex; `closing` stops a new thread from starting while the old one is
// shut down.
struct NetworkRuntime
{
    QMutex mutex;
    QThread *thread = nullptr;
    QObject *context = nullptr;
    bool closing = false;
    // What the queued calls to the context run, one each (see TaskList).
    Brightmere::TaskList tasks;
};

NetworkRuntime &runtime()
{
    static NetworkRuntime r;
    return r;
}

// Touched on the network thread only.
struct NetworkThreadState
{
    QNetworkAccessManager *nam = nullptr;
    QSet<QNetworkReply *> replies;
    bool shuttingDown = false;
};

NetworkThreadState &threadState()
{
    static NetworkThreadState s;
    return s;
}

QNetworkAccessManager *networkAccessManager()
{
    NetworkThreadState &s = threadState();
    if (!s.nam) {
        s.nam = new QNetworkAccessManager();
        s.nam->setAutoDeleteReplies(false);
    }
    return s.nam;
}

void shutDownNetworkThread()
{
    NetworkRuntime &r = runtime();
    QThread *thread = nullptr;
    QObject *context = nullptr;
    {
        QMutexLocker lock(&r.mutex);
        thread = r.thread;
        context = r.context;
        r.thread = nullptr;
        r.context = nullptr;
        r.closing = thread != nullptr;
    }
    if (!thread)
        return;

    r.tasks.add([context] {
        NetworkThreadState &s = threadState();
        s.shuttingDown = true;
        const QSet<QNetworkReply *> replies = s.replies;
        if (!replies.isEmpty())
            logLine(1, "application exit: dropping %@ running request(s)", replies.size());
        for (QNetworkReply *reply : replies)
            reply->abort();
        delete s.nam;
        {
            // Published under the runtime's lock, which the thread waiting
            // for this one takes next: a race check sees the order too.
            QMutexLocker lock(&runtime().mutex);
            s = NetworkThreadState();
        }
        // Deferred deletes are run as the thread finishes.
        context->deleteLater();
        QThread::currentThread()->quit();
    });
    QMetaObject::invokeMethod(context, [] { runtime().tasks.runNext(); }, Qt::QueuedConnection);

    const bool finished = thread->wait(QDeadlineTimer(kShutdownWaitMs));
    if (finished)
        delete thread;
    else
        logLine(3, "the network thread did not stop within %@ ms; it is left running", kShutdownWaitMs);

    QMutexLocker lock(&r.mutex);
    r.tasks.clear();
    r.closing = false;
}

// The object on the network thread, the thread started on first use. The
// caller holds the runtime's mutex.
QObject *networkContext(NetworkRuntime &r)
{
    if (r.context)
        return r.context;
    QCoreApplication *app = QCoreApplication::instance();
    if (!app || r.closing)
        return nullptr;
    auto *thread = new QThread();
    thread->setObjectName(QStringLiteral("BMSDKNetworkThread"));
    auto *context = new QObject();
    context->moveToThread(thread);
    // The thread object itself belongs with the application, which stops it.
    thread->moveToThread(app->thread());
    thread->start();
    qAddPostRoutine(shutDownNetworkThread);
    r.thread = thread;
    r.context = context;
    return context;
}

QString parameterText(const QVariant &value)
{
    if (value.typeId() == QMetaType::Bool)
        return value.toBool() ? QStringLiteral("true") : QStringLiteral("false");
    if (value.typeId() == QMetaType::Double || value.typeId() == QMetaType::Float)
        return QString::number(value.toDouble(), 'g', QLocale::FloatingPointShortest);
    return value.toString();
}

QByteArray encodedPair(const QString &key, const QVariant &value)
{
    return QUrl::toPercentEncoding(key) + '=' + QUrl::toPercentEncoding(parameterText(value));
}

// Parameters join the query already in the address; list values repeat the key.
void addParameters(QUrl &url, const QVariantMap &parameters)
{
    if (parameters.isEmpty())
        return;
    QByteArrayList pairs;
    const QString existing = url.query(QUrl::FullyEncoded);
    if (!existing.isEmpty())
        pairs.append(existing.toLatin1());
    for (auto it = parameters.cbegin(); it != parameters.cend(); ++it) {
        if (it.value().typeId() == QMetaType::QVariantList || it.value().typeId() == QMetaType::QStringList) {
            const QVariantList items = it.value().toList();
            for (const QVariant &item : items)
                pairs.append(encodedPair(it.key(), item));
        } else {
            pairs.append(encodedPair(it.key(), it.value()));
        }
    }
    url.setQuery(QString::fromLatin1(pairs.join('&')), QUrl::StrictMode);
}

bool isConnectivityFailure(QNetworkReply::NetworkError error)
{
    switch (error) {
    case QNetworkReply::ConnectionRefusedError:
    case QNetworkReply::RemoteHostClosedError:
    case QNetworkReply::HostNotFoundError:
    case QNetworkReply::TimeoutError:
    case QNetworkReply::TemporaryNetworkFailureError:
    case QNetworkReply::NetworkSessionFailedError:
    case QNetworkReply::UnknownNetworkError:
    case QNetworkReply::ProxyConnectionRefusedError:
    case QNetworkReply::ProxyConnectionClosedError:
    case QNetworkReply::ProxyNotFoundError:
    case QNetworkReply::ProxyTimeoutError:
    case QNetworkReply::UnknownProxyError:
        return true;
    default:
        return false;
    }
}

// Errors that stand for an HTTP status rather than for the transfer itself.
bool isStatusError(QNetworkReply::NetworkError error)
{
    return error >= QNetworkReply::ContentAccessDenied && error != QNetworkReply::ProtocolUnknownError
        && error != QNetworkReply::ProtocolFailure;
}

std::atomic<quint64> &lastTaskIdentifier()
{
    static std::atomic<quint64> id{0};
    return id;
}

} // namespace

struct BMSDKHTTPSessionManager::Shared
{
    mutable QMutex mutex;
    QString token;
    double timeoutInterval = kDefaultTimeoutInterval;
    qint64 maximumResponseSize = kDefaultMaximumResponseSize;
};

// One GET on the network thread, from the request to its one handler call.
// Held by the reply's connections, so it lives as long as the reply does.
class BMSDKHTTPSessionManager::Request
{
public:
    enum class Abort { None, TimedOut, TooLarge };

    quint64 id = 0;
    QUrl url;
    SuccessBlock success;
    FailureBlock failure;
    bool postConnectivityError = false;
    QString sentToken;
    double timeoutInterval = kDefaultTimeoutInterval;
    qint64 maximumResponseSize = kDefaultMaximumResponseSize;
    std::shared_ptr<Shared> shared;

    static void start(const std::shared_ptr<Request> &request);

private:
    void onMetaDataChanged();
    void onReadyRead();
    void onTimeout();
    void onFinished();
    void stopTooLarge();
    void fail(int statusCode, const BMError &error, bool connectivity);
    QString address() const { return BMSDKGeneralUtilities::displayAddress(url); }
    // Qt's error text, which may quote the address whole.
    QString errorText() const { return BMSDKGeneralUtilities::withoutUserInfo(m_reply->errorString(), url); }
    // What the host is handed: the address without its user information.
    BMSDKRestRequestTask task(int statusCode) const
    {
        return BMSDKRestRequestTask(id, url.adjusted(QUrl::RemoveUserInfo), statusCode);
    }

    QNetworkReply *m_reply = nullptr;
    QTimer *m_timer = nullptr;
    QByteArray m_body;
    Abort m_abort = Abort::None;
    qint64 m_declaredSize = -1;
    bool m_done = false;
};

void BMSDKHTTPSessionManager::Request::start(const std::shared_ptr<Request> &request)
{
    QNetworkRequest networkRequest(request->url);
    networkRequest.setRawHeader("Accept", "application/json");
    // A redirect elsewhere would carry the token (and any user name and
    // password of the address) to another origin: only the same scheme,
    // host and port are followed; anything else fails the request.
    networkRequest.setAttribute(QNetworkRequest::RedirectPolicyAttribute, QNetworkRequest::SameOriginRedirectPolicy);
    if (!request->sentToken.isEmpty())
        networkRequest.setRawHeader("Authorization", "Bearer " + request->sentToken.toUtf8());

    QNetworkReply *reply = networkAccessManager()->get(networkRequest);
    request->m_reply = reply;
    threadState().replies.insert(reply);

    request->m_timer = new QTimer(reply);
    request->m_timer->setSingleShot(true);
    QObject::connect(request->m_timer, &QTimer::timeout, reply, [request] { request->onTimeout(); });
    request->m_timer->start(int(std::min(std::round(request->timeoutInterval * 1000.0), 2147483647.0)));

    QObject::connect(reply, &QNetworkReply::metaDataChanged, reply, [request] { request->onMetaDataChanged(); });
    QObject::connect(reply, &QNetworkReply::readyRead, reply, [request] { request->onReadyRead(); });
    QObject::connect(reply, &QNetworkReply::finished, reply, [request] { request->onFinished(); });
    logLine(1, "GET %@ (request %@)", request->address(), request->id);
}

void BMSDKHTTPSessionManager::Request::onMetaDataChanged()
{
    if (m_abort != Abort::None || m_done)
        return;
    const QVariant length = m_reply->header(QNetworkRequest::ContentLengthHeader);
    if (length.isValid() && length.toLongLong() > maximumResponseSize) {
        // Stop before reading a body that would be refused anyway.
        m_declaredSize = length.toLongLong();
        stopTooLarge();
    }
}

void BMSDKHTTPSessionManager::Request::stopTooLarge()
{
    m_abort = Abort::TooLarge;
    m_body.clear();
    if (m_reply->error() == QNetworkReply::NoError) {
        m_reply->abort();
        return;
    }
    // A reply that already failed with its HTTP status cannot be aborted
    // again; the outcome is known, so finish now and let deleting the reply
    // cancel the transfer.
    onFinished();
}

void BMSDKHTTPSessionManager::Request::onReadyRead()
{
    if (m_abort != Abort::None || m_done)
        return;
    m_body += m_reply->readAll();
    if (m_body.size() > maximumResponseSize)
        stopTooLarge();
}

void BMSDKHTTPSessionManager::Request::onTimeout()
{
    if (m_abort != Abort::None || m_done)
        return;
    m_abort = Abort::TimedOut;
    if (m_reply->error() == QNetworkReply::NoError)
        m_reply->abort();
    else
        onFinished();
}

void BMSDKHTTPSessionManager::Request::onFinished()
{
    if (m_done)
        return;
    m_done = true;
    m_timer->stop();
    m_reply->deleteLater();
    NetworkThreadState &state = threadState();
    state.replies.remove(m_reply);
    if (state.shuttingDown)
        return;

    const QNetworkReply::NetworkError error = m_reply->error();
    const QVariant statusAttribute = m_reply->attribute(QNetworkRequest::HttpStatusCodeAttribute);
    const int status = statusAttribute.isValid() ? statusAttribute.toInt() : 0;
    const QString domain = QString::fromLatin1(kRestServiceErrorDomain);

    // 1. The transfer itself.
    if (m_abort == Abort::TimedOut) {
        fail(status,
             BMError(domain, kRestServiceErrorTimedOut,
                     QStringLiteral("The request to %1 timed out after %2 s").arg(address()).arg(timeoutInterval)),
             true);
        return;
    }
    if (error != QNetworkReply::NoError && m_abort != Abort::TooLarge && (status == 0 || !isStatusError(error))) {
        const bool connectivity = isConnectivityFailure(error);
        fail(status,
             BMError(domain, connectivity ? kRestServiceErrorNotConnected : kRestServiceErrorTransport,
                     QStringLiteral("The request to %1 failed: %2").arg(address(), errorText())),
             connectivity);
        return;
    }

    // 2. The HTTP status.
    if (status < 200 || status > 299) {
        if (status == 401 && !sentToken.isEmpty()) {
            QMutexLocker lock(&shared->mutex);
            if (shared->token == sentToken) {
                shared->token.clear();
                logLine(2, "the service refused the authorisation token; it was dropped");
            }
        }
        const QString reason = m_reply->attribute(QNetworkRequest::HttpReasonPhraseAttribute).toString();
        fail(status,
             BMError(domain, status,
                     QStringLiteral("The server answered HTTP %1%2 to %3")
                         .arg(status)
                         .arg(reason.isEmpty() ? QString() : QStringLiteral(" (%1)").arg(reason), address())),
             false);
        return;
    }

    // 3. The size cap.
    if (m_abort == Abort::None)
        m_body += m_reply->readAll();
    if (m_abort == Abort::TooLarge || m_body.size() > maximumResponseSize) {
        const QString size = m_declaredSize >= 0 ? QStringLiteral("%1 bytes").arg(m_declaredSize)
                                                 : QStringLiteral("more bytes");
        fail(status,
             BMError(domain, kRestServiceErrorResponseTooLarge,
                     QStringLiteral("The answer from %1 was refused: it is larger than the limit of %2 bytes (%3)")
                         .arg(address())
                         .arg(maximumResponseSize)
                         .arg(size)),
             false);
        return;
    }

    // 4. Parse.
    QString problem;
    const std::optional<QVariantMap> response = responseFromBody(m_body, &problem);
    if (!response) {
        fail(status,
             BMError(domain, kRestServiceErrorMalformedResponse,
                     QStringLiteral("The answer from %1 is %2").arg(address(), problem)),
             false);
        return;
    }

    // 5. Use.
    const BMSDKRestRequestTask answered = task(status);
    m_body.clear();
    if (success)
        callHandler("success", [&] { success(answered, *response); });
}

void BMSDKHTTPSessionManager::Request::fail(int statusCode, const BMError &error, bool connectivity)
{
    logLine(2, "%@", error.localizedDescription());
    if (connectivity && postConnectivityError) {
        BMBaseNotification notification(QString::fromLatin1(kRestServiceConnectivityErrorNotification),
                                        {{QStringLiteral("url"), address()},
                                         {QStringLiteral("code"), error.code()},
                                         {QStringLiteral("description"), error.localizedDescription()}});
        notification.post();
    }
    const std::optional<BMSDKRestRequestTask> failed = task(statusCode);
    if (failure)
        callHandler("failure", [&] { failure(failed, error); });
}

std::optional<QVariantMap> BMSDKHTTPSessionManager::responseFromBody(const QByteArray &body, QString *problem)
{
    QJsonParseError parseError;
    const QJsonDocument document = QJsonDocument::fromJson(body, &parseError);
    if (parseError.error != QJsonParseError::NoError) {
        if (problem)
            *problem = QStringLiteral("not JSON (%1 at offset %2)").arg(parseError.errorString()).arg(parseError.offset);
        return std::nullopt;
    }
    if (!document.isObject()) {
        if (problem)
            *problem = QStringLiteral("a JSON array, not an object");
        return std::nullopt;
    }
    return document.object().toVariantMap();
}

BMSDKHTTPSessionManager::BMSDKHTTPSessionManager(QObject *parent)
    : QObject(parent)
    , m_shared(std::make_shared<Shared>())
{
}

BMSDKHTTPSessionManager::~BMSDKHTTPSessionManager() = default;

void BMSDKHTTPSessionManager::GET(const QString &url, const QVariantMap &parameters, SuccessBlock success,
                                  FailureBlock failure, bool postConnectivityError)
{
    startRequest(url, parameters, std::move(success), std::move(failure), postConnectivityError, true);
}

void BMSDKHTTPSessionManager::startRequest(const QString &url, const QVariantMap &parameters,
                                           SuccessBlock success, FailureBlock failure,
                                           bool postConnectivityError, bool authorize)
{
    const QString domain = QString::fromLatin1(kRestServiceErrorDomain);
    QUrl address(url);
    const QString scheme = address.scheme().toLower();
    if (!address.isValid() || address.host().isEmpty() || (scheme != u"http" && scheme != u"https")) {
        const BMError error(domain, kRestServiceErrorBadURL,
                            QStringLiteral("Not an HTTP address: \"%1\"").arg(url));
        logLine(3, "GET: %@", error.localizedDescription());
        const bool queued = performOnNetworkThread([failure, error] {
            if (failure)
                callHandler("failure", [&] { failure(std::nullopt, error); });
        });
        if (!queued && failure)
            callHandler("failure", [&] { failure(std::nullopt, error); });
        return;
    }
    addParameters(address, parameters);

    auto request = std::make_shared<Request>();
    request->id = ++lastTaskIdentifier();
    request->url = address;
    request->success = std::move(success);
    request->failure = std::move(failure);
    request->postConnectivityError = postConnectivityError;
    request->shared = m_shared;
    {
        QMutexLocker lock(&m_shared->mutex);
        request->timeoutInterval = m_shared->timeoutInterval;
        request->maximumResponseSize = m_shared->maximumResponseSize;
        if (authorize)
            request->sentToken = m_shared->token;
    }

    if (!performOnNetworkThread([request] { Request::start(request); })) {
        const BMError error(domain, kRestServiceErrorNoApplication,
                            QStringLiteral("No application object: the request to %1 was not sent")
                                .arg(address.toString(QUrl::RemoveQuery)));
        logLine(3, "GET: %@", error.localizedDescription());
        if (request->failure)
            callHandler("failure", [&] { request->failure(std::nullopt, error); });
    }
}

double BMSDKHTTPSessionManager::timeoutInterval() const
{
    QMutexLocker lock(&m_shared->mutex);
    return m_shared->timeoutInterval;
}

void BMSDKHTTPSessionManager::setTimeoutInterval(double seconds)
{
    if (!(seconds > 0.0) || !std::isfinite(seconds)) {
        logLine(2, "setTimeoutInterval: %@ is not a time span; using %@ s", seconds, kDefaultTimeoutInterval);
        seconds = kDefaultTimeoutInterval;
    }
    QMutexLocker lock(&m_shared->mutex);
    m_shared->timeoutInterval = seconds;
}

qint64 BMSDKHTTPSessionManager::maximumResponseSize() const
{
    QMutexLocker lock(&m_shared->mutex);
    return m_shared->maximumResponseSize;
}

void BMSDKHTTPSessionManager::setMaximumResponseSize(qint64 bytes)
{
    if (bytes <= 0) {
        logLine(2, "setMaximumResponseSize: %@ is not a size; using %@ bytes", bytes, kDefaultMaximumResponseSize);
        bytes = kDefaultMaximumResponseSize;
    }
    QMutexLocker lock(&m_shared->mutex);
    m_shared->maximumResponseSize = bytes;
}

bool BMSDKHTTPSessionManager::hasAuthorizationToken() const
{
    QMutexLocker lock(&m_shared->mutex);
    return !m_shared->token.isEmpty();
}

void BMSDKHTTPSessionManager::setAuthorizationToken(const QString &token)
{
    QMutexLocker lock(&m_shared->mutex);
    m_shared->token = token;
}

void BMSDKHTTPSessionManager::clearAuthorizationToken()
{
    QMutexLocker lock(&m_shared->mutex);
    m_shared->token.clear();
}

void BMSDKHTTPSessionManager::storeToken(const std::shared_ptr<Shared> &shared, const QString &token)
{
    QMutexLocker lock(&shared->mutex);
    shared->token = token;
}

bool BMSDKHTTPSessionManager::isConnectivityError(const BMError &error)
{
    return error.domain() == QLatin1String(kRestServiceErrorDomain)
        && (error.code() == kRestServiceErrorNotConnected || error.code() == kRestServiceErrorTimedOut);
}

QThread *BMSDKHTTPSessionManager::networkThread()
{
    NetworkRuntime &r = runtime();
    QMutexLocker lock(&r.mutex);
    return r.thread;
}

bool BMSDKHTTPSessionManager::performOnNetworkThread(std::function<void()> task)
{
    NetworkRuntime &r = runtime();
    QMutexLocker lock(&r.mutex);
    QObject *context = networkContext(r);
    if (!context)
        return false;
    r.tasks.add(std::move(task));
    // Captures nothing: the task waits in the list (see TaskList).
    QMetaObject::invokeMethod(context, [] { runtime().tasks.runNext(); }, Qt::QueuedConnection);
    return true;
}
