#pragma once

#include <Brightmere/FoundationExport.h>

#include <QByteArray>
#include <QHash>
#include <QMap>
#include <QMutex>
#include <QString>
#include <QStringList>
#include <QVariant>
#include <QVariantMap>

#include <functional>

namespace Brightmere {

/// The user-defaults store: whole values under string keys, kept in an INI
/// file. `standard()` is the process-wide store; its file defaults to
/// "BrightmereDefaults.ini" in the application's config folder and can be
/// moved by the host or a test with setStandardFilePath().
///
/// A binary value larger than kLargeValueBytes lives in a file of its own in
/// the folder "<file>.values" beside the INI, which holds a reference to it;
/// readers get the bytes as before. So the INI stays small: writing or first
/// reading any preference costs the same however large the saved runs grow.
///
/// What is set is seen by this instance at once and reaches the file (and
/// other instances and processes) with synchronize(). A write puts every new
/// large value in a new file first, then replaces the INI whole (a new file
/// renamed over the old one), then removes the value files the INI no longer
/// refers to: a reader after a crash at any moment finds the INI of the last
/// write or of the one before, with every file it refers to. Writers, threads
/// and processes alike, take turns through the lock file "<file>.lock". A
/// file that holds large values inline, as earlier versions wrote them, moves
/// to this layout when it is opened. Safe to use from any thread.
class BRIGHTMERE_FOUNDATION_EXPORT UserDefaults
{
public:
    /// Larger binary values are kept in files of their own.
    static constexpr qsizetype kLargeValueBytes = 4096;

    /// A store kept in filePath.
    explicit UserDefaults(const QString &filePath);
    ~UserDefaults();
    UserDefaults(const UserDefaults &) = delete;
    UserDefaults &operator=(const UserDefaults &) = delete;

    /// The process-wide store.
    static UserDefaults &standard();
    /// Moves the process-wide store's file; call it before the kit first uses the store.
    static void setStandardFilePath(const QString &filePath);
    /// "BrightmereDefaults.ini" in the application's config folder.
    static QString defaultStandardFilePath();
    /// Where the large values of a defaults file live.
    static QString valuesFolderPath(const QString &filePath);
    /// Copies a defaults file and its large values to another path, replacing
    /// what was there: the copy opens as the original does.
    static bool copyFile(const QString &fromFilePath, const QString &toFilePath);

    /// The INI file this store keeps.
    QString filePath() const;
    /// Moves this store to another file; what was not synchronised is written first.
    void setFilePath(const QString &filePath);

    /// An invalid QVariant means the key holds nothing.
    QVariant objectForKey(const QString &key) const;
    /// Sets a value; an invalid QVariant removes the key.
    void setObject(const QVariant &value, const QString &key);
    /// Removes the key and its value.
    void removeObjectForKey(const QString &key);
    /// Whether the key holds a value.
    bool contains(const QString &key) const;
    /// Every key that holds a value.
    QStringList allKeys() const;

    /// The value as a bool; false when the key holds nothing.
    bool boolForKey(const QString &key) const;
    /// Sets a bool.
    void setBool(bool value, const QString &key);
    /// The value as an integer; 0 when the key holds nothing.
    qint64 integerForKey(const QString &key) const;
    /// Sets an integer.
    void setInteger(qint64 value, const QString &key);
    /// The value as a number; 0 when the key holds nothing.
    double doubleForKey(const QString &key) const;
    /// Sets a number.
    void setDouble(double value, const QString &key);
    /// A null QString when the key holds nothing.
    QString stringForKey(const QString &key) const;
    /// The value as a list of texts; empty when the key holds nothing.
    QStringList stringArrayForKey(const QString &key) const;
    /// The value as bytes, wherever they are kept; empty when the key holds nothing.
    QByteArray dataForKey(const QString &key) const;
    /// Sets bytes; a large value goes to a file of its own.
    void setData(const QByteArray &value, const QString &key);
    /// The value as a map; empty when the key holds nothing.
    QVariantMap dictionaryForKey(const QString &key) const;

    /// Writes what was set to the file and reads what others wrote; false (and
    /// a log line) when the file cannot be read or written. A failed write is
    /// not a save: what it would have written is dropped, and this instance
    /// reads what the file holds. A lock file left empty by a writer that died
    /// while taking it is removed (with a log line, after a second's grace)
    /// rather than waited out.
    bool synchronize();

    /// Runs change while no other writer, in this process or another, can
    /// write the file: what others wrote is read first, and what change sets
    /// is written before the lock is let go. False when the lock could not be
    /// had (change does not run), when change returns false, or when the
    /// write fails. change may synchronize itself, and may nest.
    bool modifyExclusively(const std::function<bool()> &change);

private:
    void open(const QString &filePath);
    bool lockForWriting(const QString &filePath);
    void unlockForWriting(const QString &filePath);
    bool loadLocked() const;
    bool synchronizeLocked();
    bool writeLocked(QString *error);
    QVariant valueLocked(const QString &key) const;
    bool readValueFileLocked(const QString &name, qint64 size, QByteArray *bytes) const;
    void removeUnreferencedFilesLocked();

    mutable QMutex m_mutex;
    QString m_filePath;
    // The file as last read or written: its bytes, its values in stored form
    // (large ones as references), and whether it exists but could not be
    // read (then it is never written over). A read may read it again.
    mutable QByteArray m_loadedBytes;
    mutable QMap<QString, QVariant> m_stored;
    mutable bool m_unreadable = false;
    // Set but not yet written; an invalid QVariant removes the key.
    QMap<QString, QVariant> m_pending;
    // Bytes of the value files read or written, by file name.
    mutable QHash<QString, QByteArray> m_valueFiles;
};

} // namespace Brightmere
