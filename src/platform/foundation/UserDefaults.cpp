#include "UserDefaults.h"

#include <QDir>
#include <QFileInfo>
#include <QLoggingCategory>
#include <QSettings>
#include <QStandardPaths>

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
    m_settings->sync();
    if (m_settings->status() != QSettings::NoError) {
        qCWarning(lcDefaults) << "synchronising" << m_settings->fileName() << "failed with status"
                              << m_settings->status();
        return false;
    }
    return true;
}

} // namespace Brightmere
