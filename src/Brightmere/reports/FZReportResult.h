#pragma once

#include <Brightmere/SDKUIExport.h>

#include <QString>
#include <QStringList>

/// What a report or backup operation tells its host: success, or which kind
/// of failure with a message for the developer (the same text is logged).
/// A restore also says what it did with each set of the file.
class BRIGHTMERE_SDKUI_EXPORT FZReportResult
{
public:
    /// Kinds of failure.
    enum class Error {
        None, ///< no failure
        InvalidInput,     ///< an absent set or comparison
        FileNotWritten,   ///< the target file could not be written; nothing was left half-written
        FileNotReadable,  ///< the backup file could not be opened or is too large
        Malformed,        ///< not JSON, truncated, or not a backup of saved sets
        FutureVersion,    ///< written by a newer kit
        WrongTypes,       ///< a field is missing or of the wrong type
        StoreNotWritten,  ///< the merged sets could not be stored; the store is as it was
    };

    /// A result without failure.
    static FZReportResult success();
    /// A failure of that kind with a message for the developer.
    static FZReportResult failure(Error error, const QString &message);

    /// Whether the operation succeeded.
    bool isOk() const { return m_error == Error::None; }
    /// The kind of failure; Error::None on success.
    Error error() const { return m_error; }
    /// The developer's message of a failure; empty on success.
    QString message() const { return m_message; }

    /// Restore only: titles as stored, in the file's order.
    QStringList addedTitles() const { return m_addedTitles; }
    /// Sets of the file already stored with the same content.
    QStringList skippedTitles() const { return m_skippedTitles; }
    /// Sets whose title was taken by other content: "Title" -> "Title (2)".
    QStringList renamedTitles() const { return m_renamedTitles; }
    /// Records a set the restore added.
    void addAdded(const QString &title) { m_addedTitles.append(title); }
    /// Records a set the restore skipped.
    void addSkipped(const QString &title) { m_skippedTitles.append(title); }
    /// Records a set the restore stored under a new title.
    void addRenamed(const QString &title) { m_renamedTitles.append(title); }

private:
    Error m_error = Error::None;
    QString m_message;
    QStringList m_addedTitles;
    QStringList m_skippedTitles;
    QStringList m_renamedTitles;
};
