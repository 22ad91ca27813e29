#pragma once

#include <Brightmere/SDKExport.h>

#include <Brightmere/platform/foundation/StringFormat.h>

#include <QLoggingCategory>
#include <QMutex>
#include <QString>

#include <functional>
#include <map>
#include <memory>

// The core library's logger. Levels are numbers: 1 detail, 2 information,
// 3 error; each line is written through the QLoggingCategory of its module
// ("brightmere.<module>") as debug, info or warning, and handed to every
// observer (tests capture lines that way, whatever the logging rules enable).
class BRIGHTMERE_SDK_EXPORT BMLogger
{
public:
    using Observer = std::function<void(const QString &module, int level, const QString &message)>;

    static BMLogger &sharedInstance();

    template<typename... Args>
    void logFromModule(const QString &module, int level, const QString &format, const Args &...arguments)
    {
        log(module, level, Brightmere::StringFormat::print(format, arguments...));
    }

    void log(const QString &module, int level, const QString &message);

    int addObserver(Observer observer);
    void removeObserver(int id);

    const QLoggingCategory &category(const QString &module);

private:
    BMLogger() = default;

    QMutex m_mutex;
    std::map<QString, std::pair<QByteArray, std::unique_ptr<QLoggingCategory>>> m_categories;
    std::map<int, Observer> m_observers;
    int m_lastObserverId = 0;
};
