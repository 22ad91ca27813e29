#pragma once

#include <QString>
#include <QStringList>

/// The kit's UI preferences: three "always" switches that skip a confirmation
/// before a recorded spot is deleted, replaced or copied, and the user's list
/// of spot names, into which the preset room names are merged once per
/// installation. Every call reads or writes the standard user defaults at once,
/// and every write is synchronised; only the high-contrast switch lives in
/// memory, since the host follows its system's preference on every start.
class BMSDKUISettings
{
public:
    static constexpr const char *kAlwaysDeleteSpotKey = "kAlwaysDeleteSpotKey";
    static constexpr const char *kAlwaysReplaceSpotKey = "kAlwaysReplaceSpotKey";
    static constexpr const char *kAlwaysCopySpotKey = "kAlwaysCopySpotKey";
    static constexpr const char *kSavedSpotsKey = "kSavedSpotsKey";
    static constexpr const char *kPresetSpotsAlreadySavedKey = "kPresetSpotsAlreadySavedKey";
    /// Posted through the default notification centre when highContrast
    /// changes; the user info's "highContrast" holds the new value.
    static constexpr const char *kHighContrastChangeNotification = "kHighContrastChange";

    static BMSDKUISettings &sharedInstance();

    BMSDKUISettings(const BMSDKUISettings &) = delete;
    BMSDKUISettings &operator=(const BMSDKUISettings &) = delete;

    /// False when the key holds nothing.
    bool booleanWithKey(const QString &key) const;
    void setBoolean(bool value, const QString &withKey);

    bool alwaysDeleteRecording() const;
    void setAlwaysDeleteRecording(bool always);
    bool alwaysReplaceRecording() const;
    void setAlwaysReplaceRecording(bool always);
    bool alwaysCopyRecording() const;
    void setAlwaysCopyRecording(bool always);

    /// The user's spot names. The first call of an installation appends the
    /// presets the list lacks and stores the result; later calls return the
    /// stored list as it is (empty when nothing is stored).
    QStringList savedSpots();
    /// Stores the names in order without empty names and without repeats
    /// (the first occurrence stays); names are not trimmed.
    void setSavedSpots(const QStringList &spots);
    /// "Living Room", "Kitchen", "Dining Room", "Bedroom 1", "Bedroom 2",
    /// "Bathroom 1", "Bathroom 2", "Garage".
    static const QStringList &presetSpots();

    /// Off by default. On, the colours the kit's design fixes give way to the
    /// nearest colours of the same hue that are readable on their backgrounds.
    /// A host binds it to its system's high-contrast preference.
    bool highContrast() const;
    void setHighContrast(bool on);

private:
    BMSDKUISettings() = default;

    bool m_highContrast = false;
};
