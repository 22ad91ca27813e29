#include "FZSpotsSetsBackup.h"

#include "FZReportFile.h"
#include <Brightmere/core/BMLogger.h>

#include <QFile>
#include <QHash>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

#include <cmath>

namespace {

const QString kModule = QStringLiteral("FZSpotsSetsBackup");

// Absent texts stay absent (null) and numbers JSON cannot hold (NaN,
// infinities) are written as null, so every stored set can be backed up.
QJsonValue textValue(const QString &text)
{
    return text.isNull() ? QJsonValue(QJsonValue::Null) : QJsonValue(text);
}

QJsonValue numberValue(double number)
{
    return std::isfinite(number) ? QJsonValue(number) : QJsonValue(QJsonValue::Null);
}

QJsonObject spotObject(const WifiTestResult &spot)
{
    QJsonObject object{{"label", textValue(spot.label())},
                       {"speedInMbps", numberValue(spot.speedInMbps())},
                       {"ssid", textValue(spot.ssid())},
                       {"bssid", textValue(spot.bssid())},
                       {"duration", numberValue(spot.duration())},
                       {"average", spot.isAverage()},
                       {"timeAfterTest", numberValue(spot.timeAfterTest())}};
    if (const auto coordinate = spot.coordinate())
        object.insert("coordinate", QJsonObject{{"latitude", numberValue(coordinate->latitude)},
                                                {"longitude", numberValue(coordinate->longitude)}});
    return object;
}

// Reading: each helper records the first fault and its place.
struct Reader
{
    QString fault;

    void fail(const QString &where, const QString &what)
    {
        if (fault.isEmpty())
            fault = where + QStringLiteral(": ") + what;
    }
    std::optional<QString> text(const QJsonObject &object, const char *key, const QString &where, bool required = true)
    {
        const QJsonValue value = object.value(QLatin1String(key));
        if (value.isString())
            return value.toString();
        if (value.isNull() || (value.isUndefined() && !required))
            return QString();
        fail(where, QStringLiteral("\"%1\" is not a text").arg(QLatin1String(key)));
        return std::nullopt;
    }
    std::optional<double> number(const QJsonObject &object, const char *key, const QString &where)
    {
        const QJsonValue value = object.value(QLatin1String(key));
        if (value.isDouble())
            return value.toDouble();
        if (value.isNull())
            return qQNaN();
        fail(where, QStringLiteral("\"%1\" is not a number").arg(QLatin1String(key)));
        return std::nullopt;
    }
};

std::optional<WifiTestResult::Ptr> readSpot(Reader &reader, const QJsonValue &value, const QString &where)
{
    if (!value.isObject()) {
        reader.fail(where, QStringLiteral("a spot is not an object"));
        return std::nullopt;
    }
    const QJsonObject object = value.toObject();
    const auto label = reader.text(object, "label", where);
    const auto speed = reader.number(object, "speedInMbps", where);
    const auto ssid = reader.text(object, "ssid", where);
    const auto bssid = reader.text(object, "bssid", where);
    const auto duration = reader.number(object, "duration", where);
    const auto time = reader.number(object, "timeAfterTest", where);
    const QJsonValue average = object.value(QLatin1String("average"));
    if (!average.isBool())
        reader.fail(where, QStringLiteral("\"average\" is not true or false"));
    std::optional<BMLocationCoordinate2D> coordinate;
    const QJsonValue place = object.value(QLatin1String("coordinate"));
    if (place.isObject()) {
        const auto latitude = reader.number(place.toObject(), "latitude", where);
        const auto longitude = reader.number(place.toObject(), "longitude", where);
        if (latitude && longitude)
            coordinate = BMLocationCoordinate2D{*latitude, *longitude};
    } else if (!place.isUndefined() && !place.isNull()) {
        reader.fail(where, QStringLiteral("\"coordinate\" is not an object"));
    }
    // What no measurement can be refuses the file whole: nothing drawn or
    // written from a restored set may depend on such a value. A null (a
    // spot stored without a value, as this writer writes it) is no number
    // at all and stays what it was.
    if (speed && !qIsNaN(*speed) && !WifiTestResult::isPlausibleSpeed(*speed))
        reader.fail(where, QStringLiteral("\"speedInMbps\" %1 is no measured speed").arg(*speed));
    if (duration && !qIsNaN(*duration) && !WifiTestResult::isPlausibleDuration(*duration))
        reader.fail(where, QStringLiteral("\"duration\" %1 is no averaging time").arg(*duration));
    if (!reader.fault.isEmpty() || !label || !speed || !ssid || !bssid || !duration || !time)
        return std::nullopt;
    auto spot = WifiTestResult::create(*speed, *time);
    spot->setLabel(*label);
    spot->setSsid(*ssid);
    spot->setBssid(*bssid);
    spot->setDuration(*duration);
    spot->setAverage(average.toBool());
    spot->setCoordinate(coordinate);
    return spot;
}

// As WifiTestResult::hasSameValues, except that a speed stored as not a
// number equals itself: such a set restored twice is still one set.
bool sameNumber(double a, double b)
{
    return a == b || (std::isnan(a) && std::isnan(b));
}

bool sameSpot(const WifiTestResult &a, const WifiTestResult &b)
{
    return a.label() == b.label() && sameNumber(a.speedInMbps(), b.speedInMbps()) && a.ssid() == b.ssid()
        && a.bssid() == b.bssid() && sameNumber(a.duration(), b.duration()) && a.isAverage() == b.isAverage()
        && sameNumber(a.timeAfterTest(), b.timeAfterTest()) && a.coordinate() == b.coordinate();
}

FZReportResult refuse(FZReportResult::Error error, const QString &message)
{
    BMLogger::sharedInstance().log(kModule, 3, QStringLiteral("backup refused, the saved sets are unchanged: ") + message);
    return FZReportResult::failure(error, message);
}

} // namespace

QByteArray FZSpotsSetsBackup::backupJson(const FZHistoricalResultSpotsSet::Dictionary &sets)
{
    QJsonArray array;
    for (auto it = sets.cbegin(); it != sets.cend(); ++it) {
        const FZHistoricalResultSpotsSet::Ptr &set = it.value();
        if (!set)
            continue;
        QJsonArray spots;
        for (const WifiTestResult::Ptr &spot : set->mutableSpots()) {
            if (spot)
                spots.append(spotObject(*spot));
        }
        const QDateTime date = set->date();
        array.append(QJsonObject{
            {"title", it.key()},
            {"ssid", textValue(set->ssid())},
            {"date", date.isValid() ? QJsonValue(date.toUTC().toString(Qt::ISODateWithMs)) : QJsonValue(QJsonValue::Null)},
            {"spots", spots}});
    }
    const QJsonObject root{{"format", QLatin1String(kFormatName)},
                           {"formatVersion", kFormatVersion},
                           {"sets", array}};
    return QJsonDocument(root).toJson(QJsonDocument::Indented);
}

QByteArray FZSpotsSetsBackup::backupJsonOfStore()
{
    return backupJson(FZHistoricalResultSpotsSet::allSpotsSetsDictionary());
}

FZReportResult FZSpotsSetsBackup::writeBackup(const QString &path)
{
    return FZReportFile::writeBytes(path, backupJsonOfStore(), kModule);
}

std::optional<FZHistoricalResultSpotsSet::List> FZSpotsSetsBackup::readBackupJson(const QByteArray &json,
                                                                                 FZReportResult *result)
{
    const auto refused = [result](FZReportResult::Error error, const QString &message) {
        if (result)
            *result = refuse(error, message);
        return std::nullopt;
    };
    QJsonParseError parseError;
    const QJsonDocument document = QJsonDocument::fromJson(json, &parseError);
    if (parseError.error != QJsonParseError::NoError)
        return refused(FZReportResult::Error::Malformed,
                       QStringLiteral("not valid JSON at byte %1 (%2)").arg(parseError.offset).arg(parseError.errorString()));
    const QJsonObject root = document.object();
    if (!document.isObject() || root.value(QLatin1String("format")).toString() != QLatin1String(kFormatName))
        return refused(FZReportResult::Error::Malformed, QStringLiteral("not a backup of saved sets"));
    const QJsonValue version = root.value(QLatin1String("formatVersion"));
    if (!version.isDouble() || version.toDouble() != std::floor(version.toDouble()) || version.toDouble() < 1)
        return refused(FZReportResult::Error::WrongTypes, QStringLiteral("\"formatVersion\" is not a whole number from 1"));
    if (version.toDouble() > kFormatVersion)
        return refused(FZReportResult::Error::FutureVersion,
                       QStringLiteral("format version %1 is newer than this kit reads (%2)")
                           .arg(version.toDouble())
                           .arg(kFormatVersion));
    const QJsonValue setsValue = root.value(QLatin1String("sets"));
    if (!setsValue.isArray())
        return refused(FZReportResult::Error::WrongTypes, QStringLiteral("\"sets\" is not a list"));

    Reader reader;
    FZHistoricalResultSpotsSet::List sets;
    const QJsonArray array = setsValue.toArray();
    for (qsizetype i = 0; i < array.size() && reader.fault.isEmpty(); ++i) {
        const QString where = QStringLiteral("set %1").arg(i + 1);
        if (!array.at(i).isObject()) {
            reader.fail(where, QStringLiteral("not an object"));
            break;
        }
        const QJsonObject object = array.at(i).toObject();
        if (!object.value(QLatin1String("title")).isString()) {
            reader.fail(where, QStringLiteral("\"title\" is not a text"));
            break;
        }
        // Titles as a person may type them: trimmed, not blank, not longer
        // than the title prompt takes.
        const QString title = object.value(QLatin1String("title")).toString().trimmed();
        if (title.isEmpty()) {
            reader.fail(where, QStringLiteral("the title is blank"));
            break;
        }
        if (title.size() > FZHistoricalResultSpotsSet::kMaxTitleLength) {
            reader.fail(where, QStringLiteral("the title is longer than %1 characters")
                                   .arg(FZHistoricalResultSpotsSet::kMaxTitleLength));
            break;
        }
        const auto ssid = reader.text(object, "ssid", where);
        QDateTime date;
        const QJsonValue dateValue = object.value(QLatin1String("date"));
        if (dateValue.isString()) {
            date = QDateTime::fromString(dateValue.toString(), Qt::ISODateWithMs);
            if (!date.isValid())
                reader.fail(where, QStringLiteral("\"date\" is not an ISO 8601 time"));
        } else if (!dateValue.isNull()) {
            reader.fail(where, QStringLiteral("\"date\" is not a text"));
        }
        const QJsonValue spotsValue = object.value(QLatin1String("spots"));
        if (!spotsValue.isArray())
            reader.fail(where, QStringLiteral("\"spots\" is not a list"));
        WifiTestResult::List spots;
        const QJsonArray spotArray = spotsValue.toArray();
        for (qsizetype s = 0; s < spotArray.size() && reader.fault.isEmpty(); ++s) {
            if (const auto spot = readSpot(reader, spotArray.at(s), where + QStringLiteral(", spot %1").arg(s + 1)))
                spots.append(*spot);
        }
        if (reader.fault.isEmpty())
            sets.append(FZHistoricalResultSpotsSet::create(title, ssid.value_or(QString()), date.toUTC(), spots));
    }
    if (!reader.fault.isEmpty())
        return refused(FZReportResult::Error::WrongTypes, reader.fault);
    return sets;
}

bool FZSpotsSetsBackup::hasSameContent(const FZHistoricalResultSpotsSet &a, const FZHistoricalResultSpotsSet &b)
{
    if (a.ssid() != b.ssid() || a.date() != b.date() || a.spotsCount() != b.spotsCount())
        return false;
    for (qsizetype i = 0; i < a.spotsCount(); ++i) {
        const WifiTestResult::Ptr &x = a.mutableSpots().at(i);
        const WifiTestResult::Ptr &y = b.mutableSpots().at(i);
        if (bool(x) != bool(y) || (x && !sameSpot(*x, *y)))
            return false;
    }
    return true;
}

namespace {

// Where each set of a backup goes, in one pass over it: a set goes under its
// title, or under the first free "Title (n)" when the title is taken by other
// content; it is skipped when the same content already stands under its
// title or under a "Title (n)" before that free one. Taken titles and sets by
// content are looked up in hash tables, and each title remembers how far its
// numbers are taken, so a backup of many sets of one title is placed in
// linear time.
class TitlePlacer
{
public:
    using Set = FZHistoricalResultSpotsSet;

    explicit TitlePlacer(const Set::ConstDictionary &stored)
        : m_stored(stored)
    {
        for (auto it = stored.cbegin(); it != stored.cend(); ++it)
            m_byContent[contentHash(*it.value())].append(it.key());
    }

    // The title to store the set under, or a null string to skip it.
    QString place(const Set &set)
    {
        const QString title = set.name();
        int &next = m_nextNumber[title];
        if (next == 0)
            next = 1;
        while (isTaken(titleNumbered(title, next)))
            ++next;
        for (const QString &holder : m_byContent.value(contentHash(set))) {
            const int number = numberOf(holder, title);
            if (number > 0 && number < next && FZSpotsSetsBackup::hasSameContent(*setUnder(holder), set))
                return QString();
        }
        return titleNumbered(title, next);
    }

    void add(const QString &title, const Set::Ptr &set)
    {
        m_added.insert(title, set);
        m_byContent[contentHash(*set)].append(title);
    }

    const Set::Dictionary &added() const { return m_added; }

private:
    static QString titleNumbered(const QString &title, int number)
    {
        return number == 1 ? title : title + QStringLiteral(" (%1)").arg(number);
    }

    // 1 for the title itself, n for "Title (n)", 0 for any other title.
    static int numberOf(const QString &holder, const QString &title)
    {
        if (holder == title)
            return 1;
        const qsizetype prefix = title.size() + 2;
        if (holder.size() <= prefix + 1 || !holder.startsWith(title) || !holder.endsWith(u')')
            || QStringView(holder).mid(title.size(), 2) != QLatin1String(" ("))
            return 0;
        bool ok = false;
        const int number = QStringView(holder).mid(prefix, holder.size() - prefix - 1).toInt(&ok);
        return ok && number >= 2 && titleNumbered(title, number) == holder ? number : 0;
    }

    // Equal for sets hasSameContent calls the same (numbers left out: a
    // speed that is not a number equals itself there).
    static size_t contentHash(const Set &set)
    {
        size_t hash = qHashMulti(0, set.ssid(), set.date().isValid() ? set.date().toMSecsSinceEpoch() : -1,
                                 set.spotsCount());
        for (const WifiTestResult::Ptr &spot : set.mutableSpots()) {
            if (spot)
                hash = qHashMulti(hash, spot->label(), spot->ssid(), spot->bssid(), spot->isAverage());
        }
        return hash;
    }

    bool isTaken(const QString &title) const { return m_stored.contains(title) || m_added.contains(title); }

    std::shared_ptr<const Set> setUnder(const QString &title) const
    {
        const auto stored = m_stored.constFind(title);
        return stored != m_stored.cend() ? stored.value() : m_added.value(title);
    }

    const Set::ConstDictionary &m_stored;
    Set::Dictionary m_added;
    QHash<size_t, QStringList> m_byContent;
    QHash<QString, int> m_nextNumber;
};

} // namespace

FZReportResult FZSpotsSetsBackup::restoreBackupJson(const QByteArray &json)
{
    FZReportResult result;
    const auto sets = readBackupJson(json, &result);
    if (!sets)
        return result;

    // Only a file that was read whole reaches the store, and it merges with
    // the store as it stands under the store's lock: a set another copy of
    // the app saved meanwhile is kept.
    bool merged = false;
    const bool stored = FZHistoricalResultSpotsSet::changeStoredSets(
        [&sets, &result, &merged](const FZHistoricalResultSpotsSet::ConstDictionary &store) {
            merged = true;
            result = FZReportResult();
            TitlePlacer placer(store);
            for (const FZHistoricalResultSpotsSet::Ptr &set : *sets) {
                const QString title = set->name();
                const QString placed = placer.place(*set);
                if (placed.isNull()) {
                    result.addSkipped(title);
                    continue;
                }
                set->setName(placed);
                placer.add(placed, set);
                result.addAdded(placed);
                if (placed != title)
                    result.addRenamed(placed);
            }
            return FZHistoricalResultSpotsSet::Change{placer.added(), {}};
        });
    if (!stored || !merged) {
        const QString message = QStringLiteral("the restored sets could not be stored");
        BMLogger::sharedInstance().log(kModule, 3, message);
        return FZReportResult::failure(FZReportResult::Error::StoreNotWritten, message);
    }
    if (result.addedTitles().isEmpty()) {
        BMLogger::sharedInstance().log(kModule, 2, QStringLiteral("restore: all %1 sets were stored already").arg(sets->size()));
        return result;
    }
    BMLogger::sharedInstance().log(kModule, 2,
                                   QStringLiteral("restore: %1 added (%2 under a new title), %3 already stored")
                                       .arg(result.addedTitles().size())
                                       .arg(result.renamedTitles().size())
                                       .arg(result.skippedTitles().size()));
    return result;
}

FZReportResult FZSpotsSetsBackup::restoreBackup(const QString &path)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        return refuse(FZReportResult::Error::FileNotReadable,
                      QStringLiteral("%1 cannot be opened: %2").arg(path, file.errorString()));
    if (file.size() > kMaximumFileSize)
        return refuse(FZReportResult::Error::FileNotReadable,
                      QStringLiteral("%1 is larger than %2 bytes").arg(path).arg(kMaximumFileSize));
    return restoreBackupJson(file.readAll());
}
