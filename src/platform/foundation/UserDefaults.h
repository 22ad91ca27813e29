#pragma once

#include <QByteArray>
#include <QMutex>
#include <QString>
#include <QStringList>
#include <QVariant>
#include <QVariantMap>

#include <memory>

class QSettings;

namespace Brightmere {

// The user-defaults store: whole values under string keys, kept in an INI
// file through QSettings. `standard()` is the process-wide store; its file
// defaults to "BrightmereDefaults.ini" in the application's config folder and
// can be moved by the host or a test with setStandardFilePath(). Instances of
// the same file share what was written, and a value written and synchronised
// is there for every later reader of that file. Safe to use from any thread.
class UserDefaults
{
public:
    explicit UserDefaults(const QString &filePath);
    ~UserDefaults();
    UserDefaults(const UserDefaults &) = delete;
    UserDefaults &operator=(const UserDefaults &) = delete;

    static UserDefaults &standard();
    static void setStandardFilePath(const QString &filePath);
    static QString defaultStandardFilePath();

    QString filePath() const;
    // Moves this store to another file; what was not synchronised is written first.
    void setFilePath(const QString &filePath);

    // An invalid QVariant means the key holds nothing.
    QVariant objectForKey(const QString &key) const;
    void setObject(const QVariant &value, const QString &key);
    void removeObjectForKey(const QString &key);
    bool contains(const QString &key) const;
    QStringList allKeys() const;

    bool boolForKey(const QString &key) const;
    void setBool(bool value, const QString &key);
    qint64 integerForKey(const QString &key) const;
    void setInteger(qint64 value, const QString &key);
    double doubleForKey(const QString &key) const;
    void setDouble(double value, const QString &key);
    // A null QString when the key holds nothing.
    QString stringForKey(const QString &key) const;
    QStringList stringArrayForKey(const QString &key) const;
    QByteArray dataForKey(const QString &key) const;
    QVariantMap dictionaryForKey(const QString &key) const;

    // Writes pending changes to the file and reads changes made by others;
    // false (and a log line) when the file cannot be written or read. A lock
    // file left empty by a writer that died while taking it is removed (with
    // a log line, after a second's grace) rather than waited out for 30 s.
    bool synchronize();

private:
    mutable QMutex m_mutex;
    std::unique_ptr<QSettings> m_settings;
};

} // namespace Brightmere
