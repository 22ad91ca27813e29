#pragma once

#include "core/BMSDKGeneralUtilities.h"
#include "core/BMSDKHTTPSessionManager.h"
#include "core/BMSDKRestServiceManager.h"
#include "i18n/BMI18NManager.h"
#include "i18n/BMI18NServiceManager.h"
#include "platform/foundation/LocalizedBundle.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QMutex>
#include <QTest>

#include <atomic>
#include <memory>

// Lets the network thread finish what is queued, then a little more, so a
// handler that would run twice has run by now.
inline bool settle()
{
    auto reached = std::make_shared<std::atomic<bool>>(false);
    BMSDKHTTPSessionManager::performOnNetworkThread([reached] { *reached = true; });
    const bool ok = QTest::qWaitFor([reached] { return reached->load(); }, 5000);
    QTest::qWait(30);
    return ok;
}

// Puts back what a localisation test changed of the process-wide state:
// the manager (dropped, so the next use reads the store anew), the service
// client's limits and address, the device language and the built-in tables.
inline void restoreLocalisationDefaults()
{
    BMI18NManager::resetSharedInstanceForTesting();
    BMSDKHTTPSessionManager *client = BMI18NServiceManager::sharedInstance()->manager();
    client->setTimeoutInterval(0);
    client->setMaximumResponseSize(0);
    BMSDKRestServiceManager::setBrightmereServerURL(QString());
    BMSDKGeneralUtilities::setOSLanguageOverride(QString());
    Brightmere::LocalizedBundle::framework().setRoot(QStringLiteral(":/lproj"));
    Brightmere::LocalizedBundle::main().setRoot(QStringLiteral(":/main/lproj"));
}

inline void writeFile(const QString &path, const QByteArray &content)
{
    QDir().mkpath(QFileInfo(path).absolutePath());
    QFile file(path);
    QVERIFY2(file.open(QIODevice::WriteOnly), qPrintable(path));
    file.write(content);
}

inline QByteArray readFile(const QString &path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray("<none>");
}

// Every call of a service client's handlers, from whichever thread.
class HandlerRecorder : public std::enable_shared_from_this<HandlerRecorder>
{
public:
    struct Outcome
    {
        bool succeeded = false;
        std::optional<BMSDKRestRequestTask> task;
        QVariantMap response;
        BMError error;
    };

    BMSDKRestServiceManager::SuccessBlock success()
    {
        return [self = shared_from_this()](const BMSDKRestRequestTask &task, const QVariantMap &response) {
            self->add({true, task, response, {}});
        };
    }
    BMSDKRestServiceManager::FailureBlock failure()
    {
        return [self = shared_from_this()](const std::optional<BMSDKRestRequestTask> &task, const BMError &error) {
            self->add({false, task, {}, error});
        };
    }
    QList<Outcome> outcomes() const
    {
        QMutexLocker lock(&m_mutex);
        return m_outcomes;
    }
    int count() const { return int(outcomes().size()); }

private:
    void add(const Outcome &outcome)
    {
        QMutexLocker lock(&m_mutex);
        m_outcomes.append(outcome);
    }
    mutable QMutex m_mutex;
    QList<Outcome> m_outcomes;
};
