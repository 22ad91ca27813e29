#pragma once

#include "RestTestHelpers.h"

#include "core/BMSDKGeneralUtilities.h"
#include "i18n/BMI18NManager.h"
#include "i18n/BMI18NServiceManager.h"
#include "platform/foundation/LocalizedBundle.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>

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
