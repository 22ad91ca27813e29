#pragma once

#include <Brightmere/core/BMSDKHTTPSessionManager.h>
#include <Brightmere/core/BMSDKRestServiceManager.h>

#include <QCoreApplication>
#include <QMutex>
#include <QTest>
#include <QThread>

#include <atomic>
#include <memory>

// Lets the network thread run what is queued there, twice over (work queued
// by that work too), then the main thread: a handler or notification that
// would come twice has come by now. False when the thread does not answer.
inline bool settle()
{
    for (int round = 0; round < 2; ++round) {
        auto reached = std::make_shared<std::atomic<bool>>(false);
        BMSDKHTTPSessionManager::performOnNetworkThread([reached] { *reached = true; });
        if (!QTest::qWaitFor([reached] { return reached->load(); }, 5000))
            return false;
    }
    QCoreApplication::processEvents();
    return true;
}

// Every call of a service client's handlers, from whichever thread.
class HandlerRecorder : public std::enable_shared_from_this<HandlerRecorder>
{
public:
    struct Outcome
    {
        bool succeeded = false;
        std::optional<BMSDKRestRequestTask> task;
        QVariantMap response;
        BMError error;
        bool onNetworkThread = false;
    };

    BMSDKRestServiceManager::SuccessBlock success()
    {
        return [self = shared_from_this()](const BMSDKRestRequestTask &task, const QVariantMap &response) {
            self->add({true, task, response, {}});
        };
    }
    BMSDKRestServiceManager::FailureBlock failure()
    {
        return [self = shared_from_this()](const std::optional<BMSDKRestRequestTask> &task, const BMError &error) {
            self->add({false, task, {}, error});
        };
    }
    std::function<void()> tokenSuccess()
    {
        return [self = shared_from_this()] { self->add({true, std::nullopt, {}, {}}); };
    }
    QList<Outcome> outcomes() const
    {
        QMutexLocker lock(&m_mutex);
        return m_outcomes;
    }
    int count() const { return int(outcomes().size()); }

private:
    void add(Outcome outcome)
    {
        outcome.onNetworkThread = QThread::currentThread() == BMSDKHTTPSessionManager::networkThread()
            && QThread::currentThread() != QCoreApplication::instance()->thread();
        QMutexLocker lock(&m_mutex);
        m_outcomes.append(outcome);
    }
    mutable QMutex m_mutex;
    QList<Outcome> m_outcomes;
};
