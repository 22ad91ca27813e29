#pragma once

#include <Brightmere/FoundationExport.h>

#include <QMutex>

#include <deque>
#include <functional>

namespace Brightmere {

// Tasks waiting to run on another thread, oldest first.
//
// Work for another thread's event loop goes in two parts: the task into a
// TaskList, then a queued call that carries nothing and runs the list's next
// task, one call per task. Carried inside the queued call itself, a task
// would be handed over under locks inside Qt's library only, which
// ThreadSanitizer cannot see unless Qt is built with it, and every queued
// task would show as a race; the list's own lock makes the hand-over visible.
class BRIGHTMERE_FOUNDATION_EXPORT TaskList
{
public:
    void add(std::function<void()> task);
    // Runs the oldest task, outside the lock; nothing when there is none.
    void runNext();
    // Drops the tasks not run yet (their calls went down with their thread).
    void clear();

private:
    QMutex m_mutex;
    std::deque<std::function<void()>> m_tasks;
};

} // namespace Brightmere
