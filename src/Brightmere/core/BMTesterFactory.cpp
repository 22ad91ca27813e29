#include "BMTesterFactory.h"

#include "BMHttpWiFiTester.h"
#include "BMLogger.h"
#include "BMSDKBackend.h"
#include "BMSimulatedWiFiTester.h"

namespace {

const QString kModule = QStringLiteral("BMTesterFactory");

} // namespace

std::unique_ptr<BMWiFiTester> BMTesterFactory::createWiFiTesterWithSDKCustomer(const QString &customer,
                                                                              const QString &password,
                                                                              bool useProductionServer)
{
    auto &logger = BMLogger::sharedInstance();
    if (customer.trimmed().isEmpty())
        logger.logFromModule(kModule, 3, "No SDK customer name given; the tester is made all the same");
    if (password.isEmpty())
        logger.logFromModule(kModule, 3, "No SDK password given; the tester is made all the same");

    std::unique_ptr<BMWiFiTester> tester;
    const bool simulated = BMSDKBackend::testerKind() == BMSDKBackend::Kind::Simulated;
    if (simulated)
        tester = std::make_unique<BMSimulatedWiFiTester>();
    else
        tester = std::make_unique<BMHttpWiFiTester>();
    tester->setCredentials(customer, password, useProductionServer);

    logger.logFromModule(kModule, 2, "Made a %@ Wi-Fi tester for customer \"%@\" (%@ server)",
                         simulated ? "simulated" : "system", customer,
                         useProductionServer ? "production" : "test");
    return tester;
}
