#pragma once

#include <Brightmere/SDKExport.h>

#include "BMBaseTesterDelegate.h"
#include "BMError.h"
#include "WifiTestResult.h"

#include <optional>

class BMWiFiTester;

/// Receives what a Wi-Fi tester measures, always on the thread that owns the
/// tester, in this order for one test: setup finished, then results, then
/// (only when the test ends by itself) finished. A delegate may stop, restart
/// or delete the tester from inside any of these calls.
class BRIGHTMERE_SDK_EXPORT BMWiFiTesterDelegate : public BMBaseTesterDelegate
{
public:
    /// The tester is ready to measure; an error means it never will in this
    /// test, and a finish with the same error follows.
    virtual void wiFiTesterDidFinishSetupWithError(BMWiFiTester *tester, const std::optional<BMError> &error)
    {
    }

    /// One fresh measurement; the delegate may keep and change it.
    virtual void wiFiTesterDidUpdateWithTestResult(BMWiFiTester *tester, const WifiTestResult::Ptr &result)
    {
    }

    /// The test ended without being asked to (an explicit stop() reports
    /// nothing); the tester is already stopped.
    virtual void wiFiTesterDidFinishWithError(BMWiFiTester *tester, const std::optional<BMError> &error)
    {
    }
};
