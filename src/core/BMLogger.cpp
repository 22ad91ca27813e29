#include "BMLogger.h"

BMLogger &BMLogger::sharedInstance()
{
    static BMLogger logger;
    return logger;
}

const QLoggingCategory &BMLogger::category(const QString &module)
{
    QMutexLocker lock(&m_mutex);
    auto it = m_categories.find(module);
    if (it == m_categories.end()) {
        // QLoggingCategory keeps the name pointer, so the bytes live beside it.
        QByteArray name = "brightmere." + (module.isEmpty() ? QByteArray("general") : module.toUtf8());
        auto category = std::make_unique<QLoggingCategory>(name.constData());
        it = m_categories.emplace(module, std::make_pair(std::move(name), std::move(category))).first;
    }
    return *it->second.second;
}

void BMLogger::log(const QString &module, int level, const QString &message)
{
    const QLoggingCategory &cat = category(module);
    const QString line = QStringLiteral("[%1] %2: %3").arg(level).arg(module, message);
    if (level >= 3)
        qCWarning(cat).noquote() << line;
    else if (level == 2)
        qCInfo(cat).noquote() << line;
    else
        qCDebug(cat).noquote() << line;

    std::map<int, Observer> observers;
    {
        QMutexLocker lock(&m_mutex);
        observers = m_observers;
    }
    for (const auto &[id, observer] : observers)
        observer(module, level, message);
}

int BMLogger::addObserver(Observer observer)
{
    QMutexLocker lock(&m_mutex);
    const int id = ++m_lastObserverId;
    m_observers.emplace(id, std::move(observer));
    return id;
}

void BMLogger::removeObserver(int id)
{
    QMutexLocker lock(&m_mutex);
    m_observers.erase(id);
}
