#pragma once

#include <QList>
#include <QString>

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

    LogCapture();
    ~LogCapture();
    LogCapture(const LogCapture &) = delete;
    LogCapture &operator=(const LogCapture &) = delete;

    QList<Line> lines() const;
    QStringList messages() const;
    // All lines as one text, "module [level] message" a line.
    QString text() const;
    bool contains(const QString &fragment) const;
    void clear();

private:
    int m_observerId = 0;
    struct Store;
    std::unique_ptr<Store> m_store;
};
