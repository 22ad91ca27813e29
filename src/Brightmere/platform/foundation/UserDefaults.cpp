#include "UserDefaults.h"

#include <QDateTime>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QLockFile>
#include <QLoggingCategory>
#include <QRandomGenerator>
#include <QRecursiveMutex>
#include <QRegularExpression>
#include <QSaveFile>
#include <QSet>
#include <QSettings>
#include <QStandardPaths>
#include <QTemporaryFile>
#include <QThread>

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <map>
#include <memory>

namespace Brightmere {

Q_LOGGING_CATEGORY(lcDefaults, "brightmere.defaults")

namespace {

// The INI format keeps strings as text and other values as typed variants,
// with two exceptions that would change what callers read back: a
// one-element string list comes back as a plain string, and an empty list as
// nothing. Lists are therefore wrapped in a map that carries the list whole.
const QString kListMarker = QStringLiteral("__BrightmereList__");
// A large value's reference: its file's name in the values folder and its size.
const QString kFileMarker = QStringLiteral("__BrightmereValueFile__");
const QString kFileSizeMarker = QStringLiteral("__BrightmereValueBytes__");
// No value of the kit comes near; a reference to a larger file is not followed.
constexpr qint64 kMaximumValueFileBytes = qint64(1) << 30;
// How long a writer waits for another one (a save of thousands of runs, or a
// restore, holds the lock for a second or two at most).
constexpr int kLockWaitMs = 10000;

QVariant toStored(const QVariant &value)
{
    if (value.typeId() == QMetaType::QStringList || value.typeId() == QMetaType::QVariantList)
        return QVariantMap{{kListMarker, value}};
    return value;
}

QVariant fromStored(const QVariant &stored)
{
    if (stored.typeId() == QMetaType::QVariantMap) {
        const QVariantMap map = stored.toMap();
        if (map.size() == 1 && map.contains(kListMarker))
            return map.value(kListMarker);
    }
    return stored;
}

bool isLargeData(const QVariant &value)
{
    return value.typeId() == QMetaType::QByteArray && value.toByteArray().size() > UserDefaults::kLargeValueBytes;
}

// Names come from the file, so only plain names inside the values folder are followed.
bool isValueFileName(const QString &name)
{
    static const QRegularExpression plain(QStringLiteral("^[A-Za-z0-9][A-Za-z0-9._-]{0,159}$"));
    return plain.match(name).hasMatch();
}

struct ValueFile
{
    QString name;
    qint64 size = 0;
};

std::optional<ValueFile> valueFileOf(const QVariant &stored)
{
    if (stored.typeId() != QMetaType::QVariantMap)
        return std::nullopt;
    const QVariantMap map = stored.toMap();
    if (map.size() != 2 || !map.contains(kFileMarker) || !map.contains(kFileSizeMarker))
        return std::nullopt;
    return ValueFile{map.value(kFileMarker).toString(), map.value(kFileSizeMarker).toLongLong()};
}

QVariant referenceTo(const QString &name, qint64 size)
{
    return QVariantMap{{kFileMarker, name}, {kFileSizeMarker, size}};
}

// A new name for each write, so a file is never changed once an INI refers
// to it. The key's plain characters come first, for a person looking in.
QString newValueFileName(const QString &key)
{
    QString readable;
    for (const QChar c : key.left(64)) {
        const bool plain = (c >= u'a' && c <= u'z') || (c >= u'A' && c <= u'Z') || (c >= u'0' && c <= u'9')
            || c == u'.' || c == u'_' || c == u'-';
        readable.append(plain ? c : u'_');
    }
    if (readable.isEmpty() || !readable.at(0).isLetterOrNumber())
        readable.prepend(u'v');
    return readable + u'-' + QString::number(QRandomGenerator::global()->generate64(), 16).rightJustified(16, u'0')
        + QStringLiteral(".value");
}

// A writer killed between creating a lock file and writing its process id
// into it leaves it empty, and QLockFile, unable to tell whose it is, waits
// until it is 30 s old. A live writer fills the file at once, so one still
// empty a second after it was made has no owner left.
constexpr qint64 kAbandonedLockMs = 1000;

void removeAbandonedLock(const QString &lockPath)
{
    QFileInfo info(lockPath);
    if (!info.exists() || info.size() != 0)
        return;
    const qint64 age = std::max<qint64>(0, info.lastModified().msecsTo(QDateTime::currentDateTime()));
    if (age < kAbandonedLockMs) {
        QThread::msleep(kAbandonedLockMs - age);
        info.refresh();
        if (!info.exists() || info.size() != 0)
            return;
    }
    if (QFile::remove(lockPath))
        qCWarning(lcDefaults).noquote() << "removed" << lockPath
                                        << "left empty by a writer that stopped while taking it";
}

// One writer's turn per file in this process; the lock file makes it one per
// machine. Instances of the same file share it, and a thread may take it again.
struct WriterTurn
{
    QRecursiveMutex mutex;
    int depth = 0;
    std::unique_ptr<QLockFile> lockFile;
};

WriterTurn &writerTurnOf(const QString &filePath)
{
    // Never destroyed: the standard store writes what is pending when it is
    // destroyed at exit, possibly after statics made later than it.
    static auto *mutex = new QMutex;
    static auto *turns = new std::map<QString, std::unique_ptr<WriterTurn>>;
    QMutexLocker lock(mutex);
    std::unique_ptr<WriterTurn> &turn = (*turns)[filePath];
    if (!turn)
        turn = std::make_unique<WriterTurn>();
    return *turn;
}

// QSettings keeps one parsed copy of a file per path and reads the file
// again only when its size or time changed, which two writes within a clock
// tick can hide. So the file is parsed from a copy of its bytes under a path
// of its own, and written under a new path that is then renamed over it.
std::optional<QMap<QString, QVariant>> parseIni(const QByteArray &bytes, const QString &filePath)
{
    // A name never used before: QSettings would take a parse it keeps for a path as current.
    QTemporaryFile copy(QDir::tempPath() + QStringLiteral("/brightmere-defaults-")
                        + QString::number(QRandomGenerator::global()->generate64(), 16) + QStringLiteral("-XXXXXX.ini"));
    if (!copy.open() || copy.write(bytes) != bytes.size() || !copy.flush()) {
        qCWarning(lcDefaults) << "cannot read" << filePath << "through a temporary copy:" << copy.errorString();
        return std::nullopt;
    }
    copy.close();
    QMap<QString, QVariant> values;
    QSettings settings(copy.fileName(), QSettings::IniFormat);
    for (const QString &key : settings.allKeys())
        values.insert(key, settings.value(key));
    if (settings.status() != QSettings::NoError)
        qCWarning(lcDefaults) << "parts of" << filePath << "could not be read; the rest is used";
    return values;
}

bool writeIni(const QMap<QString, QVariant> &values, const QString &filePath, const QString &folder,
              QByteArray *written, QString *error)
{
    const QString staged = folder + QStringLiteral("/.defaults-")
        + QString::number(QRandomGenerator::global()->generate64(), 16) + QStringLiteral(".ini");
    {
        QSettings settings(staged, QSettings::IniFormat);
        for (auto it = values.cbegin(); it != values.cend(); ++it)
            settings.setValue(it.key(), it.value());
        settings.sync();
        if (settings.status() != QSettings::NoError) {
            *error = QStringLiteral("the new file could not be written in %1").arg(folder);
            QFile::remove(staged);
            return false;
        }
    }
    QFile file(staged);
    // With no keys at all QSettings writes no file; an empty one says the same.
    if (values.isEmpty() && !file.exists() && file.open(QIODevice::WriteOnly))
        file.close();
    if (!file.open(QIODevice::ReadOnly)) {
        *error = QStringLiteral("the new file could not be read back: %1").arg(file.errorString());
        QFile::remove(staged);
        return false;
    }
    *written = file.readAll();
    file.close();
    // rename() replaces the old file in one step: a reader sees one or the other.
    if (std::rename(QFile::encodeName(staged).constData(), QFile::encodeName(filePath).constData()) != 0) {
        *error = QStringLiteral("the new file could not replace the old one: %1").arg(qt_error_string(errno));
        QFile::remove(staged);
        return false;
    }
    return true;
}

bool hasInlineLargeData(const QMap<QString, QVariant> &stored)
{
    return std::any_of(stored.cbegin(), stored.cend(), isLargeData);
}

} // namespace

UserDefaults::UserDefaults(const QString &filePath)
{
    open(filePath);
}

UserDefaults::~UserDefaults()
{
    bool pending = false;
    {
        QMutexLocker lock(&m_mutex);
        pending = !m_pending.isEmpty();
    }
    if (pending)
        synchronize();
}

QString UserDefaults::defaultStandardFilePath()
{
    return QStandardPaths::writableLocation(QStandardPaths::AppConfigLocation)
        + QStringLiteral("/BrightmereDefaults.ini");
}

QString UserDefaults::valuesFolderPath(const QString &filePath)
{
    return QFileInfo(filePath).absoluteFilePath() + QStringLiteral(".values");
}

UserDefaults &UserDefaults::standard()
{
    static UserDefaults defaults(defaultStandardFilePath());
    return defaults;
}

void UserDefaults::setStandardFilePath(const QString &filePath)
{
    standard().setFilePath(filePath);
}

bool UserDefaults::copyFile(const QString &fromFilePath, const QString &toFilePath)
{
    const QString fromFolder = valuesFolderPath(fromFilePath);
    const QString toFolder = valuesFolderPath(toFilePath);
    QDir(toFolder).removeRecursively();
    QFile::remove(toFilePath);
    if (!QDir().mkpath(toFolder))
        return false;
    for (const QFileInfo &info : QDir(fromFolder).entryInfoList(QDir::Files)) {
        if (!QFile::copy(info.filePath(), toFolder + u'/' + info.fileName()))
            return false;
    }
    return !QFile::exists(fromFilePath) || QFile::copy(fromFilePath, toFilePath);
}

void UserDefaults::open(const QString &filePath)
{
    const QString absolute = QFileInfo(filePath).absoluteFilePath();
    bool migrate = false;
    {
        QMutexLocker lock(&m_mutex);
        m_filePath = absolute;
        m_loadedBytes = QByteArray();
        m_stored.clear();
        m_unreadable = false;
        m_pending.clear();
        m_valueFiles.clear();
        if (!QDir().mkpath(QFileInfo(absolute).absolutePath()))
            qCWarning(lcDefaults) << "cannot create the folder of" << absolute;
        loadLocked();
        migrate = hasInlineLargeData(m_stored);
    }
    // Written by an earlier version, with large values inline: they move out
    // now, so the first preference written does not rewrite them all.
    if (migrate && synchronize())
        qCInfo(lcDefaults) << "moved the large values of" << absolute << "into" << valuesFolderPath(absolute);
}

QString UserDefaults::filePath() const
{
    QMutexLocker lock(&m_mutex);
    return m_filePath;
}

void UserDefaults::setFilePath(const QString &filePath)
{
    bool pending = false;
    {
        QMutexLocker lock(&m_mutex);
        if (m_filePath == QFileInfo(filePath).absoluteFilePath())
            return;
        pending = !m_pending.isEmpty();
    }
    if (pending)
        synchronize();
    open(filePath);
}

bool UserDefaults::lockForWriting(const QString &filePath)
{
    WriterTurn &turn = writerTurnOf(filePath);
    turn.mutex.lock();
    if (turn.depth++ > 0)
        return true;
    const QString lockPath = filePath + QStringLiteral(".lock");
    removeAbandonedLock(lockPath);
    // QLockFile guards the removal of a stale lock with "<lock>.rmlock"; a
    // writer killed while taking that one leaves it empty just the same.
    removeAbandonedLock(lockPath + QStringLiteral(".rmlock"));
    turn.lockFile = std::make_unique<QLockFile>(lockPath);
    if (turn.lockFile->tryLock(kLockWaitMs))
        return true;
    qCWarning(lcDefaults) << "cannot take" << lockPath << "( QLockFile error" << int(turn.lockFile->error()) << ")";
    turn.lockFile.reset();
    --turn.depth;
    turn.mutex.unlock();
    return false;
}

void UserDefaults::unlockForWriting(const QString &filePath)
{
    WriterTurn &turn = writerTurnOf(filePath);
    if (--turn.depth == 0)
        turn.lockFile.reset(); // unlocks
    turn.mutex.unlock();
}

bool UserDefaults::loadLocked() const
{
    QFile file(m_filePath);
    if (!file.exists()) {
        m_stored.clear();
        m_loadedBytes = QByteArray();
        m_unreadable = false;
        return true;
    }
    if (!file.open(QIODevice::ReadOnly)) {
        if (!m_unreadable)
            qCWarning(lcDefaults) << "cannot read" << m_filePath << ":" << file.errorString()
                                  << "; it is not written over until it can be read";
        m_unreadable = true;
        return false;
    }
    const QByteArray bytes = file.readAll();
    if (!m_loadedBytes.isNull() && bytes == m_loadedBytes) {
        m_unreadable = false;
        return true;
    }
    std::optional<QMap<QString, QVariant>> values = parseIni(bytes, m_filePath);
    if (!values) {
        m_unreadable = true;
        return false;
    }
    m_unreadable = false;
    m_stored = std::move(*values);
    m_loadedBytes = bytes;
    // Keep only the bytes of files the file still refers to.
    QSet<QString> referenced;
    for (const QVariant &stored : std::as_const(m_stored)) {
        if (const auto file = valueFileOf(stored))
            referenced.insert(file->name);
    }
    for (auto it = m_valueFiles.begin(); it != m_valueFiles.end();)
        it = referenced.contains(it.key()) ? std::next(it) : m_valueFiles.erase(it);
    return true;
}

bool UserDefaults::readValueFileLocked(const QString &name, qint64 size, QByteArray *bytes) const
{
    const auto cached = m_valueFiles.constFind(name);
    if (cached != m_valueFiles.cend()) {
        *bytes = cached.value();
        return true;
    }
    if (!isValueFileName(name)) {
        qCWarning(lcDefaults) << "a value of" << m_filePath << "refers to" << name << ", not a value file name";
        *bytes = QByteArray();
        return true;
    }
    QFile file(valuesFolderPath(m_filePath) + u'/' + name);
    if (!file.exists())
        return false;
    if (file.size() > kMaximumValueFileBytes || !file.open(QIODevice::ReadOnly)) {
        qCWarning(lcDefaults) << "cannot read the value file" << file.fileName() << "(" << file.size() << "bytes)"
                              << file.errorString();
        *bytes = QByteArray();
        return true;
    }
    *bytes = file.readAll();
    if (bytes->size() != size)
        qCWarning(lcDefaults) << "the value file" << file.fileName() << "holds" << bytes->size()
                              << "bytes where" << size << "were written";
    m_valueFiles.insert(name, *bytes);
    return true;
}

QVariant UserDefaults::valueLocked(const QString &key) const
{
    const auto file = valueFileOf(m_stored.value(key));
    if (!file)
        return fromStored(m_stored.value(key));
    QByteArray bytes;
    if (readValueFileLocked(file->name, file->size, &bytes))
        return bytes;
    // Another writer replaced the value, and the file this instance last
    // read refers to is gone: read the file again.
    loadLocked();
    const QVariant again = m_stored.value(key);
    const auto current = valueFileOf(again);
    if (!current)
        return fromStored(again);
    if (!readValueFileLocked(current->name, current->size, &bytes)) {
        qCWarning(lcDefaults) << "the value of" << key << "in" << m_filePath << "refers to" << current->name
                              << ", which is missing";
        bytes = QByteArray();
    }
    return bytes;
}

QVariant UserDefaults::objectForKey(const QString &key) const
{
    QMutexLocker lock(&m_mutex);
    const auto pending = m_pending.constFind(key);
    if (pending != m_pending.cend())
        return pending.value();
    return valueLocked(key);
}

void UserDefaults::setObject(const QVariant &value, const QString &key)
{
    QMutexLocker lock(&m_mutex);
    m_pending.insert(key, value.isValid() ? value : QVariant());
}

void UserDefaults::removeObjectForKey(const QString &key)
{
    QMutexLocker lock(&m_mutex);
    m_pending.insert(key, QVariant());
}

bool UserDefaults::contains(const QString &key) const
{
    QMutexLocker lock(&m_mutex);
    const auto pending = m_pending.constFind(key);
    if (pending != m_pending.cend())
        return pending.value().isValid();
    return m_stored.contains(key);
}

QStringList UserDefaults::allKeys() const
{
    QMutexLocker lock(&m_mutex);
    QStringList keys;
    for (auto it = m_stored.cbegin(); it != m_stored.cend(); ++it) {
        if (!m_pending.contains(it.key()))
            keys.append(it.key());
    }
    for (auto it = m_pending.cbegin(); it != m_pending.cend(); ++it) {
        if (it.value().isValid())
            keys.append(it.key());
    }
    return keys;
}

bool UserDefaults::boolForKey(const QString &key) const
{
    // INI keeps booleans as the words true and false; QVariant reads both.
    return objectForKey(key).toBool();
}

void UserDefaults::setBool(bool value, const QString &key)
{
    setObject(value, key);
}

qint64 UserDefaults::integerForKey(const QString &key) const
{
    return objectForKey(key).toLongLong();
}

void UserDefaults::setInteger(qint64 value, const QString &key)
{
    setObject(QVariant::fromValue(value), key);
}

double UserDefaults::doubleForKey(const QString &key) const
{
    return objectForKey(key).toDouble();
}

void UserDefaults::setDouble(double value, const QString &key)
{
    setObject(value, key);
}

QString UserDefaults::stringForKey(const QString &key) const
{
    const QVariant value = objectForKey(key);
    if (!value.isValid())
        return QString();
    return value.toString();
}

QStringList UserDefaults::stringArrayForKey(const QString &key) const
{
    const QVariant value = objectForKey(key);
    if (value.typeId() == QMetaType::QStringList || value.typeId() == QMetaType::QVariantList)
        return value.toStringList();
    return {};
}

QByteArray UserDefaults::dataForKey(const QString &key) const
{
    const QVariant value = objectForKey(key);
    return value.typeId() == QMetaType::QByteArray ? value.toByteArray() : QByteArray();
}

void UserDefaults::setData(const QByteArray &value, const QString &key)
{
    setObject(value, key);
}

QVariantMap UserDefaults::dictionaryForKey(const QString &key) const
{
    const QVariant value = objectForKey(key);
    return value.typeId() == QMetaType::QVariantMap ? value.toMap() : QVariantMap();
}

bool UserDefaults::synchronize()
{
    QString path;
    {
        // Nothing to write: reading needs no turn, the file is replaced whole.
        QMutexLocker lock(&m_mutex);
        if (m_pending.isEmpty()) {
            const bool readable = loadLocked();
            if (!hasInlineLargeData(m_stored))
                return readable;
        }
        path = m_filePath;
    }
    if (!lockForWriting(path)) {
        QMutexLocker lock(&m_mutex);
        m_pending.clear();
        qCWarning(lcDefaults) << "synchronising" << path << "failed: its lock file cannot be taken";
        return false;
    }
    bool written = false;
    {
        QMutexLocker lock(&m_mutex);
        written = synchronizeLocked();
    }
    unlockForWriting(path);
    return written;
}

bool UserDefaults::modifyExclusively(const std::function<bool()> &change)
{
    const QString path = filePath();
    if (!lockForWriting(path)) {
        qCWarning(lcDefaults) << "cannot change" << path << ": its lock file cannot be taken";
        return false;
    }
    {
        QMutexLocker lock(&m_mutex);
        loadLocked();
    }
    const bool changed = change();
    const bool written = synchronize();
    unlockForWriting(path);
    return changed && written;
}

bool UserDefaults::synchronizeLocked()
{
    const bool readable = loadLocked();
    if (m_pending.isEmpty() && !hasInlineLargeData(m_stored))
        return readable;
    QString error;
    if (!readable) {
        error = QStringLiteral("it cannot be read, so it is not written over");
    } else if (writeLocked(&error)) {
        return true;
    }
    m_pending.clear();
    qCWarning(lcDefaults).noquote() << "synchronising" << m_filePath << "failed:" << error;
    return false;
}

bool UserDefaults::writeLocked(QString *error)
{
    const QString folder = valuesFolderPath(m_filePath);
    QMap<QString, QVariant> next = m_stored;
    QHash<QString, QByteArray> written;
    const auto removeWritten = [&written, &folder] {
        for (auto it = written.cbegin(); it != written.cend(); ++it)
            QFile::remove(folder + u'/' + it.key());
    };
    const auto writeValueFile = [&](const QString &key, const QByteArray &bytes) {
        if (!QDir().mkpath(folder)) {
            *error = QStringLiteral("cannot create the folder %1").arg(folder);
            return false;
        }
        const QString name = newValueFileName(key);
        QSaveFile file(folder + u'/' + name);
        if (!file.open(QIODevice::WriteOnly) || file.write(bytes) != bytes.size() || !file.commit()) {
            *error = QStringLiteral("the value of %1 could not be written to %2: %3").arg(key, file.fileName(), file.errorString());
            return false;
        }
        written.insert(name, bytes);
        next.insert(key, referenceTo(name, bytes.size()));
        return true;
    };
    for (auto it = m_pending.cbegin(); it != m_pending.cend(); ++it) {
        if (!it.value().isValid())
            next.remove(it.key());
        else if (!isLargeData(it.value()))
            next.insert(it.key(), toStored(it.value()));
    }
    // Large values, new ones and those an earlier version kept inline, go
    // to files of their own before the INI that refers to them.
    const auto large = [this, &next](const QString &key) {
        const auto pending = m_pending.constFind(key);
        return pending != m_pending.cend() ? pending.value() : next.value(key);
    };
    QStringList largeKeys;
    for (auto it = m_pending.cbegin(); it != m_pending.cend(); ++it) {
        if (isLargeData(it.value()))
            largeKeys.append(it.key());
    }
    for (auto it = next.cbegin(); it != next.cend(); ++it) {
        if (isLargeData(it.value()) && !m_pending.contains(it.key()))
            largeKeys.append(it.key());
    }
    for (const QString &key : std::as_const(largeKeys)) {
        if (!writeValueFile(key, large(key).toByteArray())) {
            removeWritten();
            return false;
        }
    }
    QByteArray ini;
    if (!QDir().mkpath(folder)) {
        *error = QStringLiteral("cannot create the folder %1").arg(folder);
        return false;
    }
    if (!writeIni(next, m_filePath, folder, &ini, error)) {
        removeWritten();
        return false;
    }
    m_stored = std::move(next);
    m_loadedBytes = ini;
    m_pending.clear();
    m_valueFiles.insert(written);
    removeUnreferencedFilesLocked();
    return true;
}

void UserDefaults::removeUnreferencedFilesLocked()
{
    // Only a writer holding the lock gets here, and a writer puts files in
    // the folder only while it holds it: a file the INI just written does not
    // refer to is an old value, or what a writer that died left.
    QSet<QString> referenced;
    for (const QVariant &stored : std::as_const(m_stored)) {
        if (const auto file = valueFileOf(stored))
            referenced.insert(file->name);
    }
    QDir folder(valuesFolderPath(m_filePath));
    for (const QString &name : folder.entryList(QDir::Files | QDir::Hidden | QDir::System)) {
        if (!referenced.contains(name) && !folder.remove(name))
            qCWarning(lcDefaults) << "cannot remove the old value file" << folder.filePath(name);
    }
    for (auto it = m_valueFiles.begin(); it != m_valueFiles.end();)
        it = referenced.contains(it.key()) ? std::next(it) : m_valueFiles.erase(it);
}

} // namespace Brightmere
