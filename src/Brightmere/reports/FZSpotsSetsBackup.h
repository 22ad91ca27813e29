#pragma once

#include <Brightmere/SDKUIExport.h>

#include "FZReportResult.h"
#include <Brightmere/model/FZHistoricalResultSpotsSet.h>

#include <QByteArray>
#include <QString>

/// Every saved set as one JSON document, and its merge back into the store.
///
/// A restore reads and checks the whole file before it looks at the store:
/// a file that is not JSON, is cut short, comes from a newer kit or holds a
/// field of the wrong type is refused whole and the store is not touched.
/// Otherwise sets merge by title: a set already stored with the same content
/// (under its title or an earlier "Title (n)") is skipped; a title taken by
/// other content gets the first free "Title (2)", "Title (3)"...; nothing
/// stored is replaced or removed, so restoring a file twice adds nothing. The
/// merge reads and writes the store under its lock, in time linear in the
/// number of sets whatever their titles.
class BRIGHTMERE_SDKUI_EXPORT FZSpotsSetsBackup
{
public:
    /// The "format" field of every backup document.
    static constexpr const char *kFormatName = "brightmere.spots-sets-backup";
    /// Version of the document this kit writes; newer ones are refused.
    static constexpr int kFormatVersion = 1;
    /// Larger files are refused before they are read.
    static constexpr qint64 kMaximumFileSize = 256LL * 1024 * 1024;

    /// The backup document of sets.
    static QByteArray backupJson(const FZHistoricalResultSpotsSet::Dictionary &sets);
    /// The store's sets, as backupJson.
    static QByteArray backupJsonOfStore();
    /// Writes backupJsonOfStore() to path, all or nothing.
    static FZReportResult writeBackup(const QString &path);

    /// The sets of a backup document, in the file's order; nullopt with the
    /// failure in *result when it is refused.
    static std::optional<FZHistoricalResultSpotsSet::List> readBackupJson(const QByteArray &json, FZReportResult *result);
    /// Merges the sets of a backup document into the store; see the class comment.
    static FZReportResult restoreBackupJson(const QByteArray &json);
    /// Reads the file at path and merges it as restoreBackupJson() does.
    static FZReportResult restoreBackup(const QString &path);

    /// Same title, SSID, date and spots (in order, value by value).
    static bool hasSameContent(const FZHistoricalResultSpotsSet &a, const FZHistoricalResultSpotsSet &b);
};
