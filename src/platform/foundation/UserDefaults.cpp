#include "UserDefaults.h"

#include <QDateTime>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QLoggingCategory>
#include <QSettings>
#include <QStandardPaths>
#include <QThread>

#include <algorithm>

namespace Brightmere {

Q_LOGGING_CATEGORY(lcDefaults, "brightmere.defaults")

namespace {

// QSettings' INI format keeps strings as text and other values as typed
// variants, with two exceptions that would change what callers read back: a
// one-element string list comes back as a plain string, and an empty list as
// nothing. Lists are therefore wrapped in a map that carries the list whole.
const QString kListMarker = QStringLiteral("__BrightmereList__");

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

// QSettings guards each write with "<file>.lock" (a QLockFile). A writer
// killed between creating that file and writing its process id into it
// leaves it empty, and QLockFile, unable to tell whose it is, waits until it
// is 30 s old: the next save would hold up its thread that long. A live
// writer fills the file at once, so one still empty a second after it was
// made has no owner left.
constexpr qint64 kAbandonedLockMs = 1000;

void removeAbandonedLock(const QString &filePath)
{
    const QString lockPath = filePath + QStringLiteral(".lock");
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

std::unique_ptr<QSettings> openSettings(const QString &filePath)
{
    const QFileInfo info(filePath);
    if (!QDir().mkpath(info.absolutePath()))
        qCWarning(lcDefaults) << "cannot create the folder of" << filePath;
    return std::make_unique<QSettings>(filePath, QSettings::IniFormat);
}

} // namespace

UserDefaults::UserDefaults(const QString &filePath)
    : m_settings(openSettings(filePath))
{
}

UserDefaults::~UserDefaults()
{
    QMutexLocker lock(&m_mutex);
    m_settings->sync();
}

QString UserDefaults::defaultStandardFilePath()
{
    return QStandardPaths::writableLocation(QStandardPaths::AppConfigLocation)
        + QStringLiteral("/BrightmereDefaults.ini");
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

QString UserDefaults::filePath() const
{
    QMutexLocker lock(&m_mutex);
    return m_settings->fileName();
}

void UserDefaults::setFilePath(const QString &filePath)
{
    QMutexLocker lock(&m_mutex);
    if (m_settings->fileName() == QFileInfo(filePath).absoluteFilePath())
        return;
    m_settings->sync();
    m_settings = openSettings(filePath);
}

QVariant UserDefaults::objectForKey(const QString &key) const
{
    QMutexLocker lock(&m_mutex);
    return fromStored(m_settings->value(key));
}

void UserDefaults::setObject(const QVariant &value, const QString &key)
{
    if (!value.isValid()) {
        removeObjectForKey(key);
        return;
    }
    QMutexLocker lock(&m_mutex);
    m_settings->setValue(key, toStored(value));
}

void UserDefaults::removeObjectForKey(const QString &key)
{
    QMutexLocker lock(&m_mutex);
    m_settings->remove(key);
}

bool UserDefaults::contains(const QString &key) const
{
    QMutexLocker lock(&m_mutex);
    return m_settings->contains(key);
}

QStringList UserDefaults::allKeys() const
{
    QMutexLocker lock(&m_mutex);
    return m_settings->allKeys();
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

QVariantMap UserDefaults::dictionaryForKey(const QString &key) const
{
    const QVariant value = objectForKey(key);
    return value.typeId() == QMetaType::QVariantMap ? value.toMap() : QVariantMap();
}

bool UserDefaults::synchronize()
{
    QMutexLocker lock(&m_mutex);
    removeAbandonedLock(m_settings->fileName());
    m_settings->sync();
    if (m_settings->status() != QSettings::NoError) {
        qCWarning(lcDefaults) << "synchronising" << m_settings->fileName() << "failed with status"
                              << m_settings->status();
        return false;
    }
    return true;
}

} // namespace Brightmere
