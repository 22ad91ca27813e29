#include "TestEnvironment.h"

#include "core/BMSDKBackend.h"
#include "core/BMSimulatedNetwork.h"
#include "platform/foundation/UserDefaults.h"

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
