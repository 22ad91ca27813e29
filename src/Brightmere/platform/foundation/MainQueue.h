#pragma once

#include <Brightmere/FoundationExport.h>

#include <QObject>

#include <functional>

namespace Brightmere {

// The main dispatch queue: work queued from any thread runs later on the
// application's main thread, in the order it was queued. Work tied to a
// context object is dropped when the context is gone by the time it runs, and
// delayed work aimed at a context can be cancelled as a whole (the platform's
// "cancel every delayed perform aimed at this object").
class BRIGHTMERE_FOUNDATION_EXPORT MainQueue
{
public:
    static bool isMainThread();

    // Runs task on the main thread after the current work, also when called
    // from the main thread.
    static void async(std::function<void()> task);
    static void async(QObject *context, std::function<void()> task);

    // Runs task on the main thread after delaySeconds. A context must live on
    // the main thread.
    static void after(double delaySeconds, std::function<void()> task);
    static void after(QObject *context, double delaySeconds, std::function<void()> task);

    // Cancels the delayed work aimed at context that has not run yet.
    static void cancelAll(QObject *context);
    static int pendingCount(QObject *context);
};

} // namespace Brightmere
