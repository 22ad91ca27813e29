#pragma once

#include <QByteArrayView>
#include <QList>
#include <QString>

#include <optional>

// What the fuzz targets feed their inputs to: one entry a target, each
// running the kit's own parsing path on the bytes and then checking what must
// hold for any input (a refused input leaves the held state alone, what was
// read survives being written and read again). Shared by the libFuzzer
// targets (tests/fuzz/fuzz_*.cpp) and by the regular test that replays their
// corpora and crash reproducers, so a reproducer fails the same way in both.
class FuzzEntryPoints
{
public:
    enum class Target {
        BundleFile,  // a cached bundle file of the localisation manager
        StringTable, // a built-in "Localizable.strings" table
        SpotsStore,  // the archive of every saved spots set
        SpotBlob,    // the nested archive of one set's spots
        BundleInfo,  // the service's bundle list, from raw bytes through JSON to the manager
        BundleData,  // one downloaded bundle, likewise
        Format,      // a format text and its arguments, as a translation feeds the format engine
        Reports,     // a backup file, restored and written out by the CSV and PDF writers
    };

    static QList<Target> allTargets();
    // The corpus folder name of a target ("bundle_file").
    static QString targetName(Target target);

    // Once per process, before the first input: the defaults and caches in
    // folder, the localisation service pointed at an address that fails at
    // once without any network traffic, and the kit's log lines kept off
    // the console (they are still counted).
    static void setUp(const QString &folder);

    // Whether the target draws (the PDF writer): it needs a QGuiApplication.
    static bool needsGui(Target target) { return target == Target::Reports; }

    // Runs one input; an empty text when everything held, else what broke.
    static QString run(Target target, QByteArrayView input);

private:
    static QString bundleFile(QByteArrayView input);
    static QString stringTable(QByteArrayView input);
    static QString spotsStore(QByteArrayView input);
    static QString spotBlob(QByteArrayView input);
    static QString bundleAnswer(QByteArrayView input, bool information);
    static QString format(QByteArrayView input);
    static QString reports(QByteArrayView input);
};
