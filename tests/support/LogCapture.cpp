#include "LogCapture.h"

#include "core/BMLogger.h"

#include <QMutex>

struct LogCapture::Store
{
    mutable QMutex mutex;
    QList<Line> lines;
};

LogCapture::LogCapture()
    : m_store(std::make_unique<Store>())
{
    m_observerId = BMLogger::sharedInstance().addObserver(
        [store = m_store.get()](const QString &module, int level, const QString &message) {
            QMutexLocker lock(&store->mutex);
            store->lines.append(Line{module, level, message});
        });
}

LogCapture::~LogCapture()
{
    BMLogger::sharedInstance().removeObserver(m_observerId);
}

QList<LogCapture::Line> LogCapture::lines() const
{
    QMutexLocker lock(&m_store->mutex);
    return m_store->lines;
}

QStringList LogCapture::messages() const
{
    QStringList result;
    for (const Line &line : lines())
        result.append(line.message);
    return result;
}

QString LogCapture::text() const
{
    QString result;
    for (const Line &line : lines())
        result += QStringLiteral("%1 [%2] %3\n").arg(line.module).arg(line.level).arg(line.message);
    return result;
}

bool LogCapture::contains(const QString &fragment) const
{
    for (const Line &line : lines()) {
        if (line.message.contains(fragment))
            return true;
    }
    return false;
}

void LogCapture::clear()
{
    QMutexLocker lock(&m_store->mutex);
    m_store->lines.clear();
}
