#include "BMSDKUISettings.h"

#include <Brightmere/core/BMLogger.h>
#include <Brightmere/platform/foundation/NotificationCenter.h>
#include <Brightmere/platform/foundation/UserDefaults.h>

#include <QSet>

using Brightmere::UserDefaults;

namespace {

const QString kModule = QStringLiteral("BMSDKUISettings");

QString key(const char *name)
{
    return QString::fromLatin1(name);
}

void synchronize()
{
    UserDefaults &defaults = UserDefaults::standard();
    if (!defaults.synchronize())
        BMLogger::sharedInstance().logFromModule(kModule, 3, "the settings could not be written to %@",
                                                 defaults.filePath());
}

} // namespace

BMSDKUISettings &BMSDKUISettings::sharedInstance()
{
    static BMSDKUISettings settings;
    return settings;
}

bool BMSDKUISettings::booleanWithKey(const QString &key) const
{
    return UserDefaults::standard().boolForKey(key);
}

void BMSDKUISettings::setBoolean(bool value, const QString &withKey)
{
    UserDefaults::standard().setBool(value, withKey);
    synchronize();
}

bool BMSDKUISettings::alwaysDeleteRecording() const
{
    return booleanWithKey(key(kAlwaysDeleteSpotKey));
}

void BMSDKUISettings::setAlwaysDeleteRecording(bool always)
{
    setBoolean(always, key(kAlwaysDeleteSpotKey));
}

bool BMSDKUISettings::alwaysReplaceRecording() const
{
    return booleanWithKey(key(kAlwaysReplaceSpotKey));
}

void BMSDKUISettings::setAlwaysReplaceRecording(bool always)
{
    setBoolean(always, key(kAlwaysReplaceSpotKey));
}

bool BMSDKUISettings::alwaysCopyRecording() const
{
    return booleanWithKey(key(kAlwaysCopySpotKey));
}

void BMSDKUISettings::setAlwaysCopyRecording(bool always)
{
    setBoolean(always, key(kAlwaysCopySpotKey));
}

const QStringList &BMSDKUISettings::presetSpots()
{
    static const QStringList presets{
        QStringLiteral("Living Room"), QStringLiteral("Kitchen"),    QStringLiteral("Dining Room"),
        QStringLiteral("Bedroom 1"),   QStringLiteral("Bedroom 2"),  QStringLiteral("Bathroom 1"),
        QStringLiteral("Bathroom 2"),  QStringLiteral("Garage"),
    };
    return presets;
}

QStringList BMSDKUISettings::savedSpots()
{
    UserDefaults &defaults = UserDefaults::standard();
    const QStringList stored = defaults.stringArrayForKey(key(kSavedSpotsKey));
    if (defaults.boolForKey(key(kPresetSpotsAlreadySavedKey)))
        return stored;

    QStringList merged = stored;
    for (const QString &preset : presetSpots()) {
        if (!merged.contains(preset))
            merged.append(preset);
    }
    defaults.setBool(true, key(kPresetSpotsAlreadySavedKey));
    setSavedSpots(merged);
    return defaults.stringArrayForKey(key(kSavedSpotsKey));
}

void BMSDKUISettings::setSavedSpots(const QStringList &spots)
{
    QStringList kept;
    QSet<QString> seen;
    for (const QString &name : spots) {
        if (name.isEmpty() || seen.contains(name))
            continue;
        seen.insert(name);
        kept.append(name);
    }
    UserDefaults::standard().setObject(kept, key(kSavedSpotsKey));
    synchronize();
}

bool BMSDKUISettings::highContrast() const
{
    return m_highContrast;
}

void BMSDKUISettings::setHighContrast(bool on)
{
    if (on == m_highContrast)
        return;
    m_highContrast = on;
    Brightmere::NotificationCenter::defaultCenter().postNotificationName(
        QString::fromLatin1(kHighContrastChangeNotification), nullptr, {{QStringLiteral("highContrast"), on}});
}
