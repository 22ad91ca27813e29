#include "TestEnvironment.h"

#include <Brightmere/core/BMSDKBackend.h>
#include <Brightmere/core/BMSimulatedNetwork.h>
#include <Brightmere/platform/foundation/UserDefaults.h>

#include <QStandardPaths>

TestEnvironment::TestEnvironment()
{
    QStandardPaths::setTestModeEnabled(true);
    Brightmere::UserDefaults::setStandardFilePath(defaultsFilePath());
    BMSDKBackend::reset();
    BMSimulatedNetwork::shared().reset();
}

TestEnvironment::~TestEnvironment()
{
    Brightmere::UserDefaults::standard().synchronize();
    BMSDKBackend::reset();
    BMSimulatedNetwork::shared().reset();
}
