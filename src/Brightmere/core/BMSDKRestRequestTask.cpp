#include "BMSDKRestRequestTask.h"

BMSDKRestRequestTask::BMSDKRestRequestTask(quint64 taskIdentifier, const QUrl &url, int statusCode)
    : m_taskIdentifier(taskIdentifier)
    , m_url(url)
    , m_statusCode(statusCode)
{
}
