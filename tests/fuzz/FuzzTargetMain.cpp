// The libFuzzer side of every target: fuzz_<name> is this file built with
// BRIGHTMERE_FUZZ_TARGET="<name>", the entry point it feeds. An input that
// breaks what must hold is reported and aborts, which libFuzzer records as a
// crash with its reproducer.
#include "FuzzEntryPoints.h"

#include <QGuiApplication>
#include <QTemporaryDir>

#include <cstdint>
#include <cstdio>
#include <cstdlib>

namespace {

const FuzzEntryPoints::Target kFuzzTarget = [] {
    for (FuzzEntryPoints::Target target : FuzzEntryPoints::allTargets()) {
        if (FuzzEntryPoints::targetName(target) == QLatin1String(BRIGHTMERE_FUZZ_TARGET))
            return target;
    }
    std::abort();
}();

} // namespace

extern "C" int LLVMFuzzerInitialize(int *, char ***)
{
    // Lives as long as the process: the manager keeps its files there.
    static QTemporaryDir folder;
    if (!folder.isValid()) {
        std::fprintf(stderr, "fuzz: no temporary folder: %s\n", qPrintable(folder.errorString()));
        std::abort();
    }
    if (FuzzEntryPoints::needsGui(kFuzzTarget)) {
        // The PDF writer lays out text: an application for fonts, offscreen.
        qputenv("QT_QPA_PLATFORM", "offscreen");
        static int argc = 1;
        static char name[] = "fuzz";
        static char *argv[] = {name, nullptr};
        static QGuiApplication application(argc, argv);
    }
    FuzzEntryPoints::setUp(folder.path());
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    const QString problem = FuzzEntryPoints::run(
        kFuzzTarget, QByteArrayView(reinterpret_cast<const char *>(data), qsizetype(size)));
    if (!problem.isEmpty()) {
        std::fprintf(stderr, "fuzz %s: %s\n", qPrintable(FuzzEntryPoints::targetName(kFuzzTarget)),
                     qPrintable(problem));
        std::abort();
    }
    return 0;
}
