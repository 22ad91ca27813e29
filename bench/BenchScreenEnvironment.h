#pragma once

#include <Brightmere/core/BMSDKBackend.h>
#include <Brightmere/platform/foundation/ManualClock.h>
#include <Brightmere/platform/foundation/UserDefaults.h>

#include <QLoggingCategory>
#include <QStandardPaths>
#include <QTemporaryDir>

// What a benchmark of the kit's screens sets up once the application
// exists: the kit's logs silenced, settings and saved data in a throwaway
// folder, and a manual clock for the backend (restored on destruction).
// The offscreen platform must be chosen before the application is made.
class BenchScreenEnvironment
{
public:
    BenchScreenEnvironment()
    {
        QLoggingCategory::setFilterRules(QStringLiteral("brightmere.*=false"));
        QStandardPaths::setTestModeEnabled(true);
        Brightmere::UserDefaults::setStandardFilePath(m_home.filePath(QStringLiteral("defaults.ini")));
        BMSDKBackend::setClock(&clock);
    }
    ~BenchScreenEnvironment() { BMSDKBackend::setClock(nullptr); }
    BenchScreenEnvironment(const BenchScreenEnvironment &) = delete;
    BenchScreenEnvironment &operator=(const BenchScreenEnvironment &) = delete;

    Brightmere::ManualClock clock{1000.0};

private:
    QTemporaryDir m_home;
};
