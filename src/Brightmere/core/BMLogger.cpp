#include "BMLogger.h"

#include <algorithm>

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

namespace {

// Messages quote texts from servers and files: each stays one line (line
// breaks and other control characters are shown escaped, "\n") of a
// readable length.
constexpr qsizetype kMaxMessageLength = 2000;

QString printable(const QString &message)
{
    const bool controls = std::any_of(message.cbegin(), message.cend(),
                                      [](QChar c) { return c.unicode() < 0x20 || c.unicode() == 0x7f; });
    if (!controls && message.size() <= kMaxMessageLength)
        return message;
    QString out;
    out.reserve(std::min(message.size(), kMaxMessageLength) + 32);
    for (qsizetype i = 0; i < message.size() && out.size() < kMaxMessageLength; ++i) {
        const char16_t c = message.at(i).unicode();
        if (c == u'\n')
            out += QStringLiteral("\\n");
        else if (c == u'\r')
            out += QStringLiteral("\\r");
        else if (c == u'\t')
            out += QStringLiteral("\\t");
        else if (c < 0x20 || c == 0x7f)
            out += QStringLiteral("\\x%1").arg(int(c), 2, 16, QLatin1Char('0'));
        else
            out += QChar(c);
    }
    if (out.size() >= kMaxMessageLength && message.size() > kMaxMessageLength)
        out += QStringLiteral("... (%1 characters in all)").arg(message.size());
    return out;
}

} // namespace

void BMLogger::log(const QString &module, int level, const QString &rawMessage)
{
    const QString message = printable(rawMessage);
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
