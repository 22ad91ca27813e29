#include "TaskList.h"

namespace Brightmere {

void TaskList::add(std::function<void()> task)
{
    QMutexLocker lock(&m_mutex);
    m_tasks.push_back(std::move(task));
}

void TaskList::runNext()
{
    std::function<void()> task;
    {
        QMutexLocker lock(&m_mutex);
        if (m_tasks.empty())
            return;
        task = std::move(m_tasks.front());
        m_tasks.pop_front();
    }
    if (task)
        task();
}

void TaskList::clear()
{
    std::deque<std::function<void()>> dropped;
    {
        QMutexLocker lock(&m_mutex);
        dropped.swap(m_tasks);
    }
}

} // namespace Brightmere
