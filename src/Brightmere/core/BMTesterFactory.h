#pragma once

#include <Brightmere/SDKExport.h>

#include "BMWiFiTester.h"

#include <QString>

#include <memory>

/// Makes the testers of the core library, of the backend BMSDKBackend::kind()
/// chooses. The customer's password is handed to the tester and kept in its
/// memory for its lifetime only: it is never written to a file or a log.
class BRIGHTMERE_SDK_EXPORT BMTesterFactory
{
public:
    BMTesterFactory() = delete;

    /// A tester for the customer's account, not yet started; the password is kept in its memory only.
    static std::unique_ptr<BMWiFiTester> createWiFiTesterWithSDKCustomer(const QString &customer,
                                                                         const QString &password,
                                                                         bool useProductionServer);
};
