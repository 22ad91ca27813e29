#pragma once

#include "RestTestHelpers.h"

#include <Brightmere/core/BMSDKGeneralUtilities.h>
#include <Brightmere/i18n/BMI18NManager.h>
#include <Brightmere/i18n/BMI18NNotification.h>
#include <Brightmere/i18n/BMI18NServiceManager.h>
#include <Brightmere/i18n/BMLanguageChangeNotification.h>
#include <Brightmere/platform/foundation/LocalizedBundle.h>

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QMutex>
#include <QRegularExpression>
#include <QStandardPaths>
#include <QThread>

#include <stdexcept>

// Every notification call, as "<operation> <main|worker>": what a screen
// hears of refreshes and language changes.
class I18NOutcomes : public BMI18NNotificationSubscriber, public BMLanguageChangeSubscriber
{
public:
    void notifyTextBundleAvailable(BMI18NNotification *) override { record("available"); }
    void notifyTextBundleNotAvailable(BMI18NNotification *) override { record("notAvailable"); }
    void notifyLanguageChange(BMLanguageChangeNotification *) override
    {
        record("languageChange");
        if (throwing)
            throw std::runtime_error("subscriber failure");
    }
    QStringList calls() const
    {
        QMutexLocker lock(&m_mutex);
        return m_calls;
    }
    int count(const QString &operation) const
    {
        return int(calls().filter(QRegularExpression('^' + operation + ' ')).size());
    }
    // The refreshes ended, either way.
    int total() const { return count("available") + count("notAvailable"); }
    void clear()
    {
        QMutexLocker lock(&m_mutex);
        m_calls.clear();
    }

    bool throwing = false;

private:
    void record(const char *operation)
    {
        const bool main = QThread::currentThread() == QCoreApplication::instance()->thread();
        QMutexLocker lock(&m_mutex);
        m_calls.append(QLatin1String(operation) + (main ? QStringLiteral(" main") : QStringLiteral(" worker")));
    }
    mutable QMutex m_mutex;
    QStringList m_calls;
};

// Where the manager caches the bundles.
inline QString i18nCacheFolder()
{
    return QStandardPaths::writableLocation(QStandardPaths::CacheLocation);
}

inline QVariantMap bundleEnvelope(const QString &language, const QVariant &ts, const QVariant &contents)
{
    QVariantMap data{{"_id", language}, {"contents", contents}};
    if (ts.isValid())
        data.insert("ts", ts);
    return {{"code", 200}, {"message", "OK"}, {"data", data}};
}

// Hands a bundle answer to the manager as the service client would.
inline void deliverBundle(const QString &language, const QVariant &ts, const QVariantMap &contents)
{
    BMI18NManager::sharedInstance()->requestBundleDataSuccessBlock()(BMSDKRestRequestTask(),
                                                                      bundleEnvelope(language, ts, contents));
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
