#pragma once

#include <Brightmere/core/BMLogger.h>

#include <QList>
#include <QMutex>
#include <QStringList>

#include <algorithm>
#include <memory>

// Collects every line written through BMLogger while it lives.
class LogCapture
{
public:
    struct Line
    {
        QString module;
        int level = 0;
        QString message;
    };

    LogCapture()
        : m_observerId(BMLogger::sharedInstance().addObserver([store = m_store](const QString &module, int level, const QString &message) {
            QMutexLocker lock(&store->mutex);
            store->lines.append(Line{module, level, message});
        }))
    {
    }
    ~LogCapture() { BMLogger::sharedInstance().removeObserver(m_observerId); }
    LogCapture(const LogCapture &) = delete;
    LogCapture &operator=(const LogCapture &) = delete;

    QList<Line> lines() const
    {
        QMutexLocker lock(&m_store->mutex);
        return m_store->lines;
    }
    // All lines as one text, "module [level] message" a line.
    QString text() const
    {
        QString result;
        for (const Line &line : lines())
            result += QStringLiteral("%1 [%2] %3\n").arg(line.module).arg(line.level).arg(line.message);
        return result;
    }
    bool contains(const QString &fragment) const
    {
        const QList<Line> all = lines();
        return std::any_of(all.cbegin(), all.cend(), [&fragment](const Line &line) { return line.message.contains(fragment); });
    }

private:
    struct Store
    {
        QMutex mutex;
        QList<Line> lines;
    };
    std::shared_ptr<Store> m_store = std::make_shared<Store>();
    int m_observerId = 0;
};
