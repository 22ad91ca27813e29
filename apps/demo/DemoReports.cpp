#include "DemoReports.h"

#include <Brightmere/core/BMLogger.h>
#include <Brightmere/core/BMSDKBackend.h>
#include <Brightmere/platform/foundation/Clock.h>
#include <Brightmere/reports/FZComparisonCsvWriter.h>
#include <Brightmere/reports/FZReportPdfWriter.h>
#include <Brightmere/reports/FZReportResult.h>
#include <Brightmere/reports/FZSpotsSetCsvWriter.h>
#include <Brightmere/reports/FZSpotsSetsBackup.h>

#include <QDateTime>
#include <QFileInfo>
#include <QRegularExpression>
#include <QStandardPaths>

namespace {
const QString kModule = QStringLiteral("DemoHost");

// What file systems allow for one name, in bytes of UTF-8.
constexpr qsizetype kMaxFileNameBytes = 255;

// The longest start of the text that takes at most that many bytes of
// UTF-8, never cutting a character (a surrogate pair stays whole).
QString utf8Prefix(const QString &text, qsizetype maxBytes)
{
    qsizetype bytes = 0;
    qsizetype i = 0;
    while (i < text.size()) {
        const qsizetype length = text.at(i).isHighSurrogate() && i + 1 < text.size() ? 2 : 1;
        const qsizetype size = QStringView(text).mid(i, length).toUtf8().size();
        if (bytes + size > maxBytes)
            break;
        bytes += size;
        i += length;
    }
    return text.left(i);
}

DemoReports::Outcome fromResult(const FZReportResult &result, const QString &path, const QString &done)
{
    DemoReports::Outcome outcome;
    outcome.ok = result.isOk();
    outcome.path = path;
    outcome.message = result.isOk() ? QStringLiteral("%1: %2").arg(done, QDir::toNativeSeparators(path))
                                    : QStringLiteral("%1 failed: %2").arg(done, result.message());
    return outcome;
}

DemoReports::Outcome refused(const QString &message)
{
    BMLogger::sharedInstance().logFromModule(kModule, 3, "%@", message);
    DemoReports::Outcome outcome;
    outcome.message = message;
    return outcome;
}
} // namespace

DemoReports::DemoReports(const QString &folder)
    : m_folder(folder)
{
}

QString DemoReports::defaultFolder()
{
    return QDir(QStandardPaths::writableLocation(QStandardPaths::DocumentsLocation))
        .filePath(QStringLiteral("Brightmere"));
}

bool DemoReports::ensureFolder(Outcome &outcome) const
{
    if (m_folder.mkpath(QStringLiteral(".")))
        return true;
    outcome = refused(QStringLiteral("cannot create the folder %1").arg(QDir::toNativeSeparators(m_folder.path())));
    return false;
}

QString DemoReports::fileFor(const QString &base, const QString &suffix) const
{
    const QDateTime time = QDateTime::fromSecsSinceEpoch(
        qint64(BMSDKBackend::clock().now() + Brightmere::Clock::kReferenceDateUnixSeconds), Qt::UTC);
    // Titles are the user's: keep them readable but never a path of their own.
    static const QRegularExpression unsafe(QStringLiteral("[/\\\\:*?\"<>|\\x00-\\x1f]"));
    QString name = QString(base).replace(unsafe, QStringLiteral("_")).trimmed();
    if (name.isEmpty() || name.startsWith(QLatin1Char('.')))
        name.prepend(QStringLiteral("report"));
    const QString stamp = QLatin1Char(' ') + time.toString(QStringLiteral("yyyy-MM-dd HHmmss"));
    // A file name holds at most 255 bytes: a long title (CJK, emoji) is
    // cut, between whole characters, so that the date, a " (n)" and the
    // extension still fit.
    const qsizetype room = kMaxFileNameBytes - (stamp + QStringLiteral(" (99).") + suffix).toUtf8().size();
    name = utf8Prefix(name, room).trimmed() + stamp;
    QString path = m_folder.filePath(QStringLiteral("%1.%2").arg(name, suffix));
    for (int n = 2; QFileInfo::exists(path) && n < 100; ++n)
        path = m_folder.filePath(QStringLiteral("%1 (%2).%3").arg(name).arg(n).arg(suffix));
    return path;
}

QString DemoReports::comparisonTitle(const FZResultSpotsSetsComparison &comparison)
{
    const auto first = comparison.firstSet();
    const auto second = comparison.secondSet();
    return QStringLiteral("%1 vs %2").arg(first ? first->name() : QString(), second ? second->name() : QString());
}

DemoReports::Outcome DemoReports::exportSetCsv(const FZHistoricalResultSpotsSet::Ptr &set) const
{
    Outcome outcome;
    if (!set)
        return refused(QStringLiteral("CSV not written: no saved set to export"));
    if (!ensureFolder(outcome))
        return outcome;
    const QString path = fileFor(set->name(), QStringLiteral("csv"));
    return fromResult(FZSpotsSetCsvWriter::writeSet(set, path), path, QStringLiteral("CSV written"));
}

DemoReports::Outcome DemoReports::exportComparisonCsv(const FZResultSpotsSetsComparison &comparison) const
{
    Outcome outcome;
    if (!ensureFolder(outcome))
        return outcome;
    const QString path = fileFor(comparisonTitle(comparison), QStringLiteral("csv"));
    return fromResult(FZComparisonCsvWriter::writeComparison(comparison, comparison.excludeIdenticalMatches(), path),
                      path, QStringLiteral("CSV written"));
}

DemoReports::Outcome DemoReports::exportSetPdf(const FZHistoricalResultSpotsSet::Ptr &set) const
{
    Outcome outcome;
    if (!set)
        return refused(QStringLiteral("PDF not written: no saved set to export"));
    if (!ensureFolder(outcome))
        return outcome;
    const QString path = fileFor(set->name(), QStringLiteral("pdf"));
    FZReportPdfWriter writer;
    return fromResult(writer.writeSetReport(set, path), path, QStringLiteral("PDF report written"));
}

DemoReports::Outcome DemoReports::exportComparisonPdf(const FZResultSpotsSetsComparison &comparison) const
{
    Outcome outcome;
    if (!ensureFolder(outcome))
        return outcome;
    const QString path = fileFor(comparisonTitle(comparison), QStringLiteral("pdf"));
    FZReportPdfWriter writer;
    return fromResult(writer.writeComparisonReport(comparison, comparison.excludeIdenticalMatches(), path), path,
                      QStringLiteral("PDF report written"));
}

DemoReports::Outcome DemoReports::backUp() const
{
    Outcome outcome;
    if (!ensureFolder(outcome))
        return outcome;
    const QString path = fileFor(QString::fromLatin1(kBackupPrefix).trimmed(), QStringLiteral("json"));
    return fromResult(FZSpotsSetsBackup::writeBackup(path), path, QStringLiteral("backup written"));
}

QString DemoReports::newestBackup() const
{
    const QFileInfoList found = m_folder.entryInfoList(
        {QString::fromLatin1(kBackupPrefix) + QStringLiteral("*.json")}, QDir::Files | QDir::Readable, QDir::Name);
    // Newest by when it was written; a copy of the same moment, " (2)", by name.
    QFileInfo newest;
    for (const QFileInfo &file : found) {
        if (!newest.exists() || file.lastModified() > newest.lastModified()
            || (file.lastModified() == newest.lastModified() && file.fileName() > newest.fileName()))
            newest = file;
    }
    return newest.exists() ? newest.filePath() : QString();
}

DemoReports::Outcome DemoReports::restoreNewest() const
{
    const QString path = newestBackup();
    if (path.isEmpty())
        return refused(QStringLiteral("nothing restored: no backup in %1").arg(QDir::toNativeSeparators(m_folder.path())));
    const FZReportResult result = FZSpotsSetsBackup::restoreBackup(path);
    Outcome outcome = fromResult(result, path, QStringLiteral("restored"));
    if (result.isOk()) {
        outcome.added = int(result.addedTitles().size());
        outcome.skipped = int(result.skippedTitles().size());
        outcome.renamed = int(result.renamedTitles().size());
        outcome.message = QStringLiteral("restored %1: %2 added, %3 already there, %4 renamed")
                              .arg(QDir::toNativeSeparators(path))
                              .arg(result.addedTitles().size())
                              .arg(result.skippedTitles().size())
                              .arg(result.renamedTitles().size());
    }
    return outcome;
}
