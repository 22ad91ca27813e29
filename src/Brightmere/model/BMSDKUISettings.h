#pragma once

#include <Brightmere/SDKUIExport.h>

#include <QString>
#include <QStringList>

/// The kit's UI preferences: three "always" switches that skip a confirmation
/// before a recorded spot is deleted, replaced or copied, and the user's list
/// of spot names, into which the preset room names are merged once per
/// installation. Every call reads or writes the standard user defaults at once,
/// and every write is synchronised; only the high-contrast switch lives in
/// memory, since the host follows its system's preference on every start.
class BRIGHTMERE_SDKUI_EXPORT BMSDKUISettings
{
public:
    /// User-defaults key of the "always delete" switch.
    static constexpr const char *kAlwaysDeleteSpotKey = "kAlwaysDeleteSpotKey";
    /// User-defaults key of the "always replace" switch.
    static constexpr const char *kAlwaysReplaceSpotKey = "kAlwaysReplaceSpotKey";
    /// User-defaults key of the "always copy" switch.
    static constexpr const char *kAlwaysCopySpotKey = "kAlwaysCopySpotKey";
    /// User-defaults key of the user's spot names.
    static constexpr const char *kSavedSpotsKey = "kSavedSpotsKey";
    /// User-defaults key that records the presets were merged.
    static constexpr const char *kPresetSpotsAlreadySavedKey = "kPresetSpotsAlreadySavedKey";
    /// Posted through the default notification centre when highContrast
    /// changes; the user info's "highContrast" holds the new value.
    static constexpr const char *kHighContrastChangeNotification = "kHighContrastChange";

    /// The process-wide settings.
    static BMSDKUISettings &sharedInstance();

    BMSDKUISettings(const BMSDKUISettings &) = delete;
    BMSDKUISettings &operator=(const BMSDKUISettings &) = delete;

    /// False when the key holds nothing.
    bool booleanWithKey(const QString &key) const;
    /// Stores a switch under a key and synchronises.
    void setBoolean(bool value, const QString &withKey);

    /// Whether a recorded spot is deleted without asking.
    bool alwaysDeleteRecording() const;
    /// Sets whether a recorded spot is deleted without asking.
    void setAlwaysDeleteRecording(bool always);
    /// Whether a recorded spot is replaced without asking.
    bool alwaysReplaceRecording() const;
    /// Sets whether a recorded spot is replaced without asking.
    void setAlwaysReplaceRecording(bool always);
    /// Whether a recorded spot is copied without asking.
    bool alwaysCopyRecording() const;
    /// Sets whether a recorded spot is copied without asking.
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
    /// Turns high contrast on or off and posts kHighContrastChangeNotification when it changes.
    void setHighContrast(bool on);

private:
    BMSDKUISettings() = default;

    bool m_highContrast = false;
};
