#include "core/WifiTestResult.h"

#include <QtTest>

using Brightmere::Archive;

class tst_WifiTestResult : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void listRoundTripKeepsEveryField();
    void sharedSpotIsArchivedOncePerEntry();
    void badListBlobs_data();
    void badListBlobs();
};

namespace {

WifiTestResult::Ptr kitchen()
{
    auto spot = WifiTestResult::create(48.25, 754000000.5);
    spot->setLabel(QStringLiteral("Kitchen"));
    spot->setSsid(QStringLiteral("HomeNet"));
    spot->setBssid(QStringLiteral("a4:2b:b0:5c:17:e2"));
    spot->setDuration(3.5);
    spot->setAverage(true);
    spot->setCoordinate(BMLocationCoordinate2D{40.4168, -3.7038});
    return spot;
}

} // namespace

void tst_WifiTestResult::listRoundTripKeepsEveryField()
{
    auto bare = WifiTestResult::create(0.0);
    const WifiTestResult::List spots{kitchen(), bare};
    const auto read = WifiTestResult::unarchiveList(WifiTestResult::archiveList(spots));
    QVERIFY(read.has_value());
    QCOMPARE(read->size(), 2);
    QVERIFY(read->at(0)->hasSameValues(*spots.at(0)));
    QVERIFY(read->at(1)->hasSameValues(*bare));
    QVERIFY(!read->at(1)->coordinate().has_value());
    QVERIFY(read->at(0) != spots.at(0)); // new objects, same values
}

void tst_WifiTestResult::sharedSpotIsArchivedOncePerEntry()
{
    // The same object in two places reads back as two equal objects.
    auto spot = kitchen();
    const auto read = WifiTestResult::unarchiveList(WifiTestResult::archiveList({spot, spot}));
    QVERIFY(read.has_value());
    QCOMPARE(read->size(), 2);
    QVERIFY(read->at(0)->hasSameValues(*read->at(1)));
}

void tst_WifiTestResult::badListBlobs_data()
{
    QTest::addColumn<QByteArray>("blob");
    QTest::addColumn<int>("expected");

    const QByteArray good = WifiTestResult::archiveList({kitchen(), kitchen()});
    QTest::newRow("cut in the middle") << good.left(good.size() / 2) << int(Archive::Error::Truncated);
    QTest::newRow("not an archive") << QByteArray("bplist00\x01\x02", 10) << int(Archive::Error::Foreign);
    QTest::newRow("count larger than the body") << Archive::write([](QDataStream &s) { s << quint32(1000000); })
                                                << int(Archive::Error::Corrupt);
    QTest::newRow("one result missing") << Archive::write([](QDataStream &s) {
        s << quint32(2);
        kitchen()->encode(s);
    }) << int(Archive::Error::Corrupt);
    QTest::newRow("result of a newer field version") << Archive::write([](QDataStream &s) {
        s << quint32(1) << quint16(WifiTestResult::kFieldVersion + 1);
        kitchen()->encode(s);
    }) << int(Archive::Error::Corrupt);
    QTest::newRow("other archived value") << Archive::archive(QStringLiteral("Kitchen")) << int(Archive::Error::Corrupt);
}

void tst_WifiTestResult::badListBlobs()
{
    QFETCH(QByteArray, blob);
    QFETCH(int, expected);
    Archive::Error error = Archive::Error::None;
    QVERIFY(!WifiTestResult::unarchiveList(blob, &error).has_value());
    QCOMPARE(int(error), expected);
}

QTEST_GUILESS_MAIN(tst_WifiTestResult)
#include "tst_WifiTestResult.moc"
