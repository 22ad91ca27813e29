#include "model/BMSDKUISettings.h"

#include "TestEnvironment.h"
#include "platform/foundation/UserDefaults.h"

#include <QtTest>

using Brightmere::UserDefaults;

namespace {
const QString kSavedSpotsKey = QString::fromLatin1(BMSDKUISettings::kSavedSpotsKey);
const QString kMergedKey = QString::fromLatin1(BMSDKUISettings::kPresetSpotsAlreadySavedKey);
const QStringList kPresets{"Living Room", "Kitchen", "Dining Room", "Bedroom 1", "Bedroom 2", "Bathroom 1", "Bathroom 2", "Garage"};
} // namespace

class tst_BMSDKUISettings : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init() { m_env = std::make_unique<TestEnvironment>(); }
    void cleanup() { m_env.reset(); }

    void firstRead_data();
    void firstRead();
    void presetsAreMergedOnceAndNeverAgain();
    void setSavedSpots_data();
    void setSavedSpots();
    void eachSwitchHasItsOwnKey();

private:
    std::unique_ptr<TestEnvironment> m_env;
};

void tst_BMSDKUISettings::firstRead_data()
{
    QTest::addColumn<QVariant>("stored"); // invalid: nothing stored
    QTest::addColumn<bool>("merged");
    QTest::addColumn<QStringList>("expected");
    QTest::newRow("fresh installation") << QVariant() << false << kPresets;
    QTest::newRow("the user's names come first")
        << QVariant(QStringList{"Office", "Kitchen"}) << false
        << QStringList{"Office", "Kitchen", "Living Room", "Dining Room", "Bedroom 1", "Bedroom 2", "Bathroom 1", "Bathroom 2", "Garage"};
    QTest::newRow("stored repeats and empty names are dropped")
        << QVariant(QStringList{"Hall", "", "Hall", "Garage"}) << false
        << QStringList{"Hall", "Garage", "Living Room", "Kitchen", "Dining Room", "Bedroom 1", "Bedroom 2", "Bathroom 1", "Bathroom 2"};
    QTest::newRow("already merged: the list as stored") << QVariant(QStringList{"Hall", "Hall"}) << true << QStringList{"Hall", "Hall"};
    QTest::newRow("already merged, nothing stored") << QVariant() << true << QStringList{};
}

void tst_BMSDKUISettings::firstRead()
{
    QFETCH(QVariant, stored);
    QFETCH(bool, merged);
    UserDefaults::standard().setObject(stored, kSavedSpotsKey);
    if (merged)
        UserDefaults::standard().setBool(true, kMergedKey);
    QVERIFY(UserDefaults::standard().synchronize());
    QTEST(BMSDKUISettings::sharedInstance().savedSpots(), "expected");
    // What the first read returned is what a later session finds on disk.
    UserDefaults reader(m_env->defaultsFilePath());
    QVERIFY(reader.boolForKey(kMergedKey));
    if (!merged)
        QTEST(reader.stringArrayForKey(kSavedSpotsKey), "expected");
}

void tst_BMSDKUISettings::presetsAreMergedOnceAndNeverAgain()
{
    BMSDKUISettings &settings = BMSDKUISettings::sharedInstance();
    QCOMPARE(settings.savedSpots(), kPresets);
    settings.setSavedSpots({"Office"});
    QCOMPARE(settings.savedSpots(), QStringList{"Office"});
    settings.setSavedSpots({});
    QCOMPARE(settings.savedSpots(), QStringList{});
    QCOMPARE(settings.savedSpots(), QStringList{});
}

void tst_BMSDKUISettings::setSavedSpots_data()
{
    QTest::addColumn<QStringList>("given");
    QTest::addColumn<QStringList>("expected");
    QTest::newRow("repeats and empty names") << QStringList{"Hall", "", "Hall"} << QStringList{"Hall"};
    QTest::newRow("order kept, first occurrence wins") << QStringList{"B", "A", "B", "C", "A"} << QStringList{"B", "A", "C"};
    QTest::newRow("no trimming, case counts") << QStringList{"Hall", " Hall", "hall"} << QStringList{"Hall", " Hall", "hall"};
    QTest::newRow("one name survives the store") << QStringList{"Garage", ""} << QStringList{"Garage"};
}

void tst_BMSDKUISettings::setSavedSpots()
{
    QFETCH(QStringList, given);
    UserDefaults::standard().setBool(true, kMergedKey);
    BMSDKUISettings::sharedInstance().setSavedSpots(given);
    QTEST(UserDefaults(m_env->defaultsFilePath()).stringArrayForKey(kSavedSpotsKey), "expected");
}

void tst_BMSDKUISettings::eachSwitchHasItsOwnKey()
{
    BMSDKUISettings &s = BMSDKUISettings::sharedInstance();
    const auto read = [&s] { return QList<bool>{s.alwaysDeleteRecording(), s.alwaysReplaceRecording(), s.alwaysCopyRecording()}; };
    const auto stored = [this] {
        UserDefaults reader(m_env->defaultsFilePath());
        return QList<bool>{reader.boolForKey("kAlwaysDeleteSpotKey"), reader.boolForKey("kAlwaysReplaceSpotKey"),
                           reader.boolForKey("kAlwaysCopySpotKey")};
    };
    QCOMPARE(read(), (QList<bool>{false, false, false}));
    s.setAlwaysReplaceRecording(true);
    QCOMPARE(stored(), (QList<bool>{false, true, false}));
    s.setAlwaysCopyRecording(true);
    s.setAlwaysDeleteRecording(true);
    s.setAlwaysReplaceRecording(false);
    QCOMPARE(stored(), (QList<bool>{true, false, true}));
    QCOMPARE(read(), stored());
}

QTEST_GUILESS_MAIN(tst_BMSDKUISettings)
#include "tst_BMSDKUISettings.moc"
