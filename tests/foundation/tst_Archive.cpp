#include "platform/foundation/Archive.h"

#include <QtTest>

using Brightmere::Archive;

Q_DECLARE_METATYPE(Archive::Error)

class tst_Archive : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void roundTrip();
    void rejectsBadBlobs_data();
    void rejectsBadBlobs();
    void readerRefusalIsCorrupt();
    void unreadBytesAreCorrupt();
};

namespace {

QByteArray sample()
{
    return Archive::archive(QVariantMap{{QStringLiteral("Home"), QStringList{QStringLiteral("Kitchen"), QStringLiteral("Garage")}}});
}

} // namespace

void tst_Archive::roundTrip()
{
    Archive::Error error = Archive::Error::Corrupt;
    const auto value = Archive::unarchive<QVariantMap>(sample(), &error);
    QCOMPARE(error, Archive::Error::None);
    QVERIFY(value.has_value());
    QCOMPARE(value->value(QStringLiteral("Home")).toStringList(),
             (QStringList{QStringLiteral("Kitchen"), QStringLiteral("Garage")}));
}

void tst_Archive::rejectsBadBlobs_data()
{
    QTest::addColumn<QByteArray>("blob");
    QTest::addColumn<Archive::Error>("expected");

    const QByteArray good = sample();
    QTest::newRow("empty") << QByteArray() << Archive::Error::Empty;
    QTest::newRow("three bytes") << good.left(3) << Archive::Error::Foreign;
    QTest::newRow("foreign text") << QByteArray("<?xml version=\"1.0\"?><plist/>") << Archive::Error::Foreign;
    QTest::newRow("header cut") << good.left(20) << Archive::Error::Truncated;
    QTest::newRow("body cut by one byte") << good.chopped(1) << Archive::Error::Truncated;
    QTest::newRow("trailing byte") << good + '\0' << Archive::Error::Corrupt;

    QByteArray flipped = good;
    flipped[flipped.size() - 3] = char(flipped.at(flipped.size() - 3) ^ 0x40);
    QTest::newRow("body byte flipped") << flipped << Archive::Error::Corrupt;

    QByteArray future = good;
    future[5] = char(Archive::kFormatVersion + 1);
    QTest::newRow("newer format") << future << Archive::Error::FutureVersion;

    // A header that promises a huge body must not make the reader allocate it.
    QByteArray huge = good.left(6);
    huge += QByteArray::fromHex("7fffffff");
    huge += good.mid(10);
    QTest::newRow("length beyond the blob") << huge << Archive::Error::Truncated;

    QByteArray noise(4096, '\0');
    for (int i = 0; i < noise.size(); ++i)
        noise[i] = char((i * 7919 + 13) & 0xff);
    QTest::newRow("noise") << noise << Archive::Error::Foreign;
}

void tst_Archive::rejectsBadBlobs()
{
    QFETCH(QByteArray, blob);
    QFETCH(Archive::Error, expected);
    Archive::Error error = Archive::Error::None;
    const auto value = Archive::unarchive<QVariantMap>(blob, &error);
    QCOMPARE(error, expected);
    QVERIFY(!value.has_value());
}

void tst_Archive::readerRefusalIsCorrupt()
{
    const QByteArray blob = Archive::write([](QDataStream &s) { s << quint32(3); });
    QCOMPARE(Archive::read(blob, [](QDataStream &s) {
                 quint32 n = 0;
                 s >> n;
                 return n == 2;
             }),
             Archive::Error::Corrupt);
    // Reading past the end of a valid body is also a corrupt archive.
    QCOMPARE(Archive::read(blob, [](QDataStream &s) {
                 quint64 n = 0;
                 s >> n;
                 return true;
             }),
             Archive::Error::Corrupt);
}

void tst_Archive::unreadBytesAreCorrupt()
{
    const QByteArray blob = Archive::write([](QDataStream &s) { s << quint32(1) << quint32(2); });
    QCOMPARE(Archive::read(blob, [](QDataStream &s) {
                 quint32 n = 0;
                 s >> n;
                 return true;
             }),
             Archive::Error::Corrupt);
}

QTEST_GUILESS_MAIN(tst_Archive)
#include "tst_Archive.moc"
