#pragma once

#include <Brightmere/core/BMSDKRestServiceManager.h>

#include <QString>

// The client of the kit's localisation service: the list of string bundles
// the service offers and the download of one bundle. It talks to the core
// library's service address (brightmereServerURL()) through the inherited
// HTTP client, so its handlers run on the core library's network thread.
//
//   GET <base>/api/v2/message/info           -> data.bundleArray [{"_id", "ts"}, ...]
//   GET <base>/api/v2/message/bundle/<lang>  -> data {"_id", "ts", "contents"}
//
// An instance must outlive the requests it starts; the shared one lives until
// the process ends.
class BMI18NServiceManager : public BMSDKRestServiceManager
{
    Q_OBJECT

public:
    explicit BMI18NServiceManager(QObject *parent = nullptr);
    ~BMI18NServiceManager() override;

    // Created once, on first use, from any thread.
    static BMI18NServiceManager *sharedInstance();

    static QString bundleInfoUrl();
    static QString bundleDataUrl(const QString &language);

    // Obtains the application's token first, then asks for the bundle list.
    // Exactly one of the handlers runs; a failed token request calls
    // andErrorBlock without a task.
    void requestI18NBundleInfoWithSuccessBlock(SuccessBlock success, FailureBlock andErrorBlock);

    // Downloads the bundle of one language (no token request before it).
    void requestI18NBundleDataWithSuccessBlock(SuccessBlock success, FailureBlock andErrorBlock,
                                               const QString &forLanguage);
};
