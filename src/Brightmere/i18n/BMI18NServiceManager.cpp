#include "BMI18NServiceManager.h"

#include "BMI18NManager.h"
#include <Brightmere/core/BMLogger.h>
#include <Brightmere/core/BMSDKGeneralUtilities.h>

#include <QUrl>

BMI18NServiceManager::BMI18NServiceManager(QObject *parent)
    : BMSDKRestServiceManager(parent)
{
}

BMI18NServiceManager::~BMI18NServiceManager() = default;

BMI18NServiceManager *BMI18NServiceManager::sharedInstance()
{
    static BMI18NServiceManager instance;
    return &instance;
}

QString BMI18NServiceManager::bundleInfoUrl()
{
    return BMSDKGeneralUtilities::urlEncodeWithFormat(QStringLiteral("%@/%@/%@/message/info"),
                                                      sharedInstance()->brightmereServerURL(),
                                                      kRestServiceManagerAPI, kRestServiceManagerVersion2);
}

QString BMI18NServiceManager::bundleDataUrl(const QString &language)
{
    // The code is one segment of the path, whatever it holds.
    return BMSDKGeneralUtilities::urlEncodeWithFormat(QStringLiteral("%@/%@/%@/message/bundle/%@"),
                                                      sharedInstance()->brightmereServerURL(),
                                                      kRestServiceManagerAPI, kRestServiceManagerVersion2,
                                                      QString::fromLatin1(QUrl::toPercentEncoding(language)));
}

void BMI18NServiceManager::requestI18NBundleInfoWithSuccessBlock(SuccessBlock success, FailureBlock andErrorBlock)
{
    const QString module = QString::fromLatin1(metaObject()->className());
    BMSDKHTTPSessionManager *client = manager();
    startRequestForAppAuthorizationTokenWithSuccessBlock(
        [client, success, andErrorBlock] {
            client->GET(bundleInfoUrl(), {}, success, andErrorBlock, false);
        },
        [module, andErrorBlock](const std::optional<BMSDKRestRequestTask> &, const BMError &error) {
            BMLogger::sharedInstance().logFromModule(
                module, 2, "BMI18NServiceManager::requestI18NBundleInfoWithSuccessBlock error %@",
                error.toString());
            if (andErrorBlock)
                andErrorBlock(std::nullopt, error);
        },
        false);
}

void BMI18NServiceManager::requestI18NBundleDataWithSuccessBlock(SuccessBlock success, FailureBlock andErrorBlock,
                                                                 const QString &forLanguage)
{
    if (!BMI18NManager::isLanguageCode(forLanguage)) {
        const BMError error(QString::fromLatin1(kRestServiceErrorDomain), kRestServiceErrorMalformedResponse,
                            QStringLiteral("\"%1\" is no language code; no bundle is asked for").arg(forLanguage.left(64)));
        BMLogger::sharedInstance().logFromModule(QString::fromLatin1(metaObject()->className()), 3, "%@",
                                                 error.localizedDescription());
        if (andErrorBlock)
            andErrorBlock(std::nullopt, error);
        return;
    }
    manager()->GET(bundleDataUrl(forLanguage), {}, std::move(success), std::move(andErrorBlock), false);
}
