#pragma once

#include <Brightmere/SDKUIExport.h>

#include <Brightmere/core/WifiTestResult.h>

#include <QDataStream>
#include <QDateTime>
#include <QList>
#include <QMap>
#include <QString>
#include <QStringList>

#include <functional>
#include <memory>
#include <optional>

/// One saved run of the Fairzone test (title, SSID, date and the spots in the
/// order they were recorded) and, through its static operations, the store of
/// every saved run: a dictionary from title to set, archived whole into one
/// value of the standard user defaults. Sets are values: a change to a loaded
/// set reaches the store only through saveSpotSet(). They are shared by
/// pointer because a listing marks `comparable` on the very objects it returns.
class BRIGHTMERE_SDKUI_EXPORT FZHistoricalResultSpotsSet
{
public:
    /// A set as shared by the screens and the store.
    using Ptr = std::shared_ptr<FZHistoricalResultSpotsSet>;
    /// A list of shared sets.
    using List = QList<Ptr>;
    /// Title -> set. Ordered by title, so the archive of a store is repeatable.
    using Dictionary = QMap<QString, Ptr>;

    /// User-defaults key of the archived sets.
    static constexpr const char *kSetsDictionaryKey = "kSetsDictionaryKey";
    /// User-defaults key of the kit's data version of the last save.
    static constexpr const char *kLastDataVersionKey = "kLastDataVersionKey";
    /// An unreadable store is kept under this prefix followed by the UTC time
    /// it was set aside ("kSetsDictionaryKey.backup.20250314T093000").
    static constexpr const char *kSetsDictionaryBackupKeyPrefix = "kSetsDictionaryKey.backup.";
    /// The longest title the title prompt takes, and a restored backup too.
    static constexpr int kMaxTitleLength = 200;

    FZHistoricalResultSpotsSet() = default;
    /// A set titled name, measured on ssid at date, holding spots.
    FZHistoricalResultSpotsSet(const QString &name, const QString &ssid, const QDateTime &date,
                               const WifiTestResult::List &spots);
    /// A shared set; see the constructor.
    static Ptr create(const QString &name, const QString &ssid, const QDateTime &date,
                      const WifiTestResult::List &spots);

    /// Whether another saved set shares a spot label with this one; set by the
    /// listings, never stored.
    bool isComparable() const { return m_comparable; }
    /// Marks the set comparable or not.
    void setComparable(bool comparable) { m_comparable = comparable; }
    /// The set's title, unique in the store.
    QString name() const { return m_name; }
    /// Changes the title; the store sees it at the next save.
    void setName(const QString &name) { m_name = name; }
    /// The network the set was measured on.
    QString ssid() const { return m_ssid; }
    /// Changes the network's name.
    void setSsid(const QString &ssid) { m_ssid = ssid; }
    /// When the set was measured.
    QDateTime date() const { return m_date; }
    /// Changes the date.
    void setDate(const QDateTime &date) { m_date = date; }
    /// The order of sortedSpots(): 0 newest measurement first, 1 labels
    /// descending, 2 labels ascending. Not stored: 0 after loading.
    qint64 isSortedAscending() const { return m_sorting; }
    /// Sets the order of sortedSpots().
    void setSorting(qint64 sorting) { m_sorting = sorting; }
    /// The spots, in recording order, to change in place.
    WifiTestResult::List &mutableSpots() { return m_mutableSpots; }
    /// The spots, in recording order.
    const WifiTestResult::List &mutableSpots() const { return m_mutableSpots; }
    /// Replaces the spots.
    void setMutableSpots(const WifiTestResult::List &spots) { m_mutableSpots = spots; }

    /// A copy of the spot list: adding to it leaves the set alone.
    WifiTestResult::List spots() const { return m_mutableSpots; }
    /// How many spots the set holds.
    qsizetype spotsCount() const { return m_mutableSpots.size(); }
    /// The spots in the order isSortedAscending() names.
    WifiTestResult::List sortedSpots() const;
    /// 0 -> 1 -> 2 -> 0.
    void toggleSorting();

    /// Equal when name and SSID are equal; date and spots play no part.
    bool operator==(const FZHistoricalResultSpotsSet &other) const;

    /// Four positional values: name, SSID, date (UTC), and the spots as a
    /// nested archive blob. decode() leaves the set untouched and returns
    /// false when the values or the nested blob cannot be read.
    void encode(QDataStream &stream) const;
    /// Reads a set written by encode().
    bool decode(QDataStream &stream);

    /// The store. Every operation that writes reads the stored dictionary
    /// afresh under the store's lock (so a set another copy of the app saved
    /// meanwhile is kept), changes it and writes it whole; each set's packed
    /// bytes are kept with it, so a write packs only the sets that changed.
    /// Reading skips the decoding when the stored bytes are the very ones last
    /// read or written, and every set returned is a fresh copy. Operations
    /// that write return false when the defaults could not be written (and
    /// log why); the store then reads what the disk holds.
    static bool saveSetWithName(const QString &name, const QString &ssid, const QDateTime &date,
                                const WifiTestResult::List &andWifiTestResults);
    /// Stores the set under its name, replacing any set of that title.
    static bool saveSpotSet(const Ptr &set);
    /// A fresh copy of the stored set titled name; null when none is.
    static Ptr spotsSetWithName(const QString &name);
    /// Removes the stored set of that title; false when the store could not be written.
    static bool deleteSpotsSet(const Ptr &set);
    /// Removes the stored sets; the data version and any set-aside copy stay.
    static void deleteAllSpotsSets();

    /// A change made under the store's lock: the sets to store (by key,
    /// replacing) and the keys to remove.
    using ConstDictionary = QMap<QString, std::shared_ptr<const FZHistoricalResultSpotsSet>>;
    /// What changeStoredSets() stores.
    struct Change
    {
        Dictionary put; ///< sets to store, replacing those of their key
        QStringList remove; ///< keys to remove
    };
    /// Hands the stored sets, read afresh under the store's lock, to change and
    /// stores what it returns before the lock is let go. Nothing is written
    /// when the change is empty. False (logged) when the store could not be
    /// locked or written; change then may not have run.
    static bool changeStoredSets(const std::function<Change(const ConstDictionary &stored)> &change);

    /// Every saved set, newest first, each marked comparable when another set
    /// shares a spot label with it.
    static List allSpotsSets();
    /// Every saved set, newest first, each marked comparable when it shares a
    /// spot label with target (so the target itself counts).
    static List allSpotsSetsWithTaretSetToCompare(const Ptr &target);
    /// The candidates that share a spot label with target, in their order;
    /// with excludeTarget, without those equal to target.
    static List allSpotsSetsWithTaretSetToCompare(const Ptr &target, const List &allSpotsSets, bool excludeTarget);

    /// The stored dictionary. When nothing usable is stored, an empty one that
    /// is written at once; a stored value that cannot be read, or one stored
    /// without a data version, is first copied aside under a backup key.
    static Dictionary allSpotsSetsDictionary();
    /// The stored archive, only when a data version is stored too.
    static std::optional<QByteArray> savedSpotsSetsDictionary();
    /// Stores the whole dictionary with the current data version; false when it could not be written.
    static bool saveAllSpotsSetDicitionary(const Dictionary &dictionary);
    /// The data version stored with the sets; std::nullopt when none is.
    static std::optional<QString> savedDataVersion();
    /// "<short version>.<build>" of the kit's bundle.
    static QString currentDataVersion();

    /// The archive of a whole dictionary, and its reading (of this format and
    /// of the one earlier versions wrote); std::nullopt (with the reason in
    /// *error) when it cannot be read.
    static QByteArray archiveDictionary(const Dictionary &dictionary);
    /// Reads an archive of a whole dictionary; see archiveDictionary().
    static std::optional<Dictionary> unarchiveDictionary(const QByteArray &blob, QString *error = nullptr);

private:
    static List sortedNewestFirst(const Dictionary &dictionary);

    bool m_comparable = false;
    QString m_name;
    QString m_ssid;
    QDateTime m_date;
    qint64 m_sorting = 0;
    WifiTestResult::List m_mutableSpots;
};

BRIGHTMERE_SDKUI_EXPORT size_t qHash(const FZHistoricalResultSpotsSet &set, size_t seed = 0);
