#pragma once

#include <Brightmere/model/FZHistoricalResultSpotsSet.h>
#include <Brightmere/model/FZResultSpotsSetsComparison.h>

#include <QDir>
#include <QString>

#include <memory>

// The host's reports and backups, all into one folder it chose: a CSV or PDF
// of a set or a comparison, named after it and the time of the backend's
// clock, a backup of every saved set, and the restore of the newest backup
// found there. Each call answers with an outcome the event log can show; a
// failure is also logged and never throws.
class DemoReports
{
public:
    struct Outcome
    {
        bool ok = false;
        QString path;     // the file written or read; empty when none was
        QString message;  // one line for the event log: what was done, or why not
        // A restore's sets: added, already stored, stored under a new title.
        int added = 0;
        int skipped = 0;
        int renamed = 0;
    };

    // The backup files this host writes and restores: "saved-runs <time>.json".
    static constexpr const char *kBackupPrefix = "saved-runs ";

    explicit DemoReports(const QString &folder);

    // Documents/Brightmere, the folder the interactive host uses.
    static QString defaultFolder();

    Outcome exportSetCsv(const FZHistoricalResultSpotsSet::Ptr &set) const;
    Outcome exportComparisonCsv(const FZResultSpotsSetsComparison &comparison) const;
    Outcome exportSetPdf(const FZHistoricalResultSpotsSet::Ptr &set) const;
    Outcome exportComparisonPdf(const FZResultSpotsSetsComparison &comparison) const;
    Outcome backUp() const;
    // Merges the newest backup of the folder into the store.
    Outcome restoreNewest() const;

    // The newest "saved-runs *.json" of the folder; empty when there is none.
    QString newestBackup() const;
    // "<base> <yyyy-MM-dd HHmmss>.<suffix>" in the folder, characters a file
    // name cannot hold replaced, " (2)"... added when the name is taken.
    QString fileFor(const QString &base, const QString &suffix) const;

private:
    bool ensureFolder(Outcome &outcome) const;
    static QString comparisonTitle(const FZResultSpotsSetsComparison &comparison);

    QDir m_folder;
};
