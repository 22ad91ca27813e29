// Figures of the localisation lookups that every visible text goes through:
// a key held by the downloaded bundle, a key only the built-in tables hold,
// and a key found nowhere. Median of many batches, one JSON line per figure.
#include <Brightmere/i18n/BMI18NManager.h>

#include <Brightmere/core/BMSDKRestRequestTask.h>
#include <Brightmere/platform/foundation/UserDefaults.h>

#include <QCoreApplication>
#include <QDir>
#include <QElapsedTimer>
#include <QLoggingCategory>
#include <QStandardPaths>
#include <QTemporaryDir>
#include <QTextStream>

#include <algorithm>
#include <vector>

namespace {

constexpr int kBatches = 201;
constexpr int kLookupsPerBatch = 2000;

// Reads the result so the compiler cannot drop a lookup.
qsizetype g_sink = 0;

template<typename Lookup>
void measure(const char *name, Lookup &&lookup)
{
    g_sink += lookup().size();
    std::vector<double> perLookup;
    perLookup.reserve(kBatches);
    QElapsedTimer timer;
    for (int batch = 0; batch < kBatches; ++batch) {
        timer.start();
        for (int i = 0; i < kLookupsPerBatch; ++i)
            g_sink += lookup().size();
        perLookup.push_back(double(timer.nsecsElapsed()) / kLookupsPerBatch);
    }
    std::nth_element(perLookup.begin(), perLookup.begin() + kBatches / 2, perLookup.end());
    QTextStream(stdout) << QStringLiteral(R"({"bench":"%1","batches":%2,"lookups_per_batch":%3,"median_ns":%4})")
                               .arg(QLatin1String(name))
                               .arg(kBatches)
                               .arg(kLookupsPerBatch)
                               .arg(perLookup[kBatches / 2], 0, 'f', 1)
                        << '\n';
}

} // namespace

int main(int argc, char *argv[])
{
    QCoreApplication app(argc, argv);
    QLoggingCategory::setFilterRules(QStringLiteral("brightmere.*=false"));
    // Keep the user's real defaults and caches out of it.
    QStandardPaths::setTestModeEnabled(true);
    QTemporaryDir dir;
    Brightmere::UserDefaults::setStandardFilePath(dir.filePath(QStringLiteral("defaults.ini")));

    BMI18NManager::resetSharedInstanceForTesting();
    BMI18NManager *manager = BMI18NManager::sharedInstance();
    manager->setCurrentLanguage(QStringLiteral("es"));
    QVariantMap contents;
    for (int i = 0; i < 300; ++i)
        contents.insert(QStringLiteral("bench_key_%1").arg(i), QStringLiteral("Texto descargado PH_n %1").arg(i));
    manager->requestBundleDataSuccessBlock()(
        BMSDKRestRequestTask(),
        {{QStringLiteral("code"), 200},
         {QStringLiteral("data"),
          QVariantMap{{QStringLiteral("_id"), QStringLiteral("es")}, {QStringLiteral("ts"), 1},
                      {QStringLiteral("contents"), contents}}}});

    // The first lookup of a key fills the cache of finished texts; these
    // figures are the steady state a screen sees on its every layout pass.
    const QString hit = QStringLiteral("bench_key_150");
    measure("i18n_lookup_downloaded_hit", [&] { return BMI18NManager::stringForCode(hit); });
    // A key of the kit's own tables that no downloaded bundle holds.
    const QString builtIn = QStringLiteral("fairzones_title");
    measure("i18n_lookup_builtin_fallback", [&] { return BMI18NManager::stringForCode(builtIn); });
    const QString nowhere = QStringLiteral("bench_key_nowhere");
    measure("i18n_lookup_miss_everywhere", [&] { return BMI18NManager::stringForCode(nowhere); });
    // What a first lookup after a change of bundle or language pays for the
    // built-in tables (the kit's, then the host's), without the cache.
    const QString es = QStringLiteral("es");
    measure("i18n_builtin_tables_uncached", [&] { return manager->getLocalStringWithCode(builtIn, es, QString()); });

    // Caches of this run go with it.
    QDir(QStandardPaths::writableLocation(QStandardPaths::CacheLocation)).removeRecursively();
    return g_sink == 0 ? 1 : 0;
}
