#include "MainQueue.h"

#include "TaskList.h"

#include <QCoreApplication>
#include <QLoggingCategory>
#include <QPointer>
#include <QThread>
#include <QTimer>

#include <cmath>

namespace Brightmere {

Q_LOGGING_CATEGORY(lcMainQueue, "brightmere.mainqueue")

namespace {

const char kDelayedTaskName[] = "Brightmere.MainQueue.delayed";

TaskList &mainThreadTasks()
{
    static TaskList tasks;
    return tasks;
}

QObject *application()
{
    QObject *app = QCoreApplication::instance();
    if (!app)
        qCWarning(lcMainQueue) << "no application object: queued work is dropped";
    return app;
}

void startDelayed(QObject *owner, double delaySeconds, std::function<void()> task)
{
    auto *timer = new QTimer(owner);
    timer->setObjectName(QLatin1String(kDelayedTaskName));
    timer->setSingleShot(true);
    timer->setTimerType(Qt::PreciseTimer);
    QObject::connect(timer, &QTimer::timeout, timer, [timer, task = std::move(task)] {
        timer->setObjectName(QString());
        timer->deleteLater();
        task();
    });
    timer->start(std::max(0, int(std::lround(delaySeconds * 1000.0))));
}

} // namespace

bool MainQueue::isMainThread()
{
    QObject *app = QCoreApplication::instance();
    return app && QThread::currentThread() == app->thread();
}

void MainQueue::async(std::function<void()> task)
{
    QObject *app = application();
    if (!app)
        return;
    mainThreadTasks().add(std::move(task));
    // Captures nothing: the task waits in the list (see TaskList).
    QMetaObject::invokeMethod(app, [] { mainThreadTasks().runNext(); }, Qt::QueuedConnection);
}

void MainQueue::async(QObject *context, std::function<void()> task)
{
    if (!context) {
        async(std::move(task));
        return;
    }
    async([guard = QPointer<QObject>(context), task = std::move(task)] {
        if (guard)
            task();
    });
}

void MainQueue::after(double delaySeconds, std::function<void()> task)
{
    after(nullptr, delaySeconds, std::move(task));
}

void MainQueue::after(QObject *context, double delaySeconds, std::function<void()> task)
{
    if (isMainThread()) {
        QObject *owner = context ? context : application();
        startDelayed(owner, delaySeconds, std::move(task));
        return;
    }
    async([guard = QPointer<QObject>(context), hasContext = context != nullptr, delaySeconds,
           task = std::move(task)]() mutable {
        if (hasContext && !guard)
            return;
        startDelayed(hasContext ? guard.data() : application(), delaySeconds, std::move(task));
    });
}

void MainQueue::cancelAll(QObject *context)
{
    if (!context)
        return;
    const auto timers = context->findChildren<QTimer *>(QLatin1String(kDelayedTaskName),
                                                        Qt::FindDirectChildrenOnly);
    for (QTimer *timer : timers) {
        timer->stop();
        timer->setObjectName(QString());
        timer->deleteLater();
    }
}

int MainQueue::pendingCount(QObject *context)
{
    if (!context)
        return 0;
    return int(context->findChildren<QTimer *>(QLatin1String(kDelayedTaskName),
                                                Qt::FindDirectChildrenOnly).size());
}

} // namespace Brightmere
