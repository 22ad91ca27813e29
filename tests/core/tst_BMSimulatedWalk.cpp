#include "core/BMSeededRandom.h"
#include "core/BMSimulatedWalk.h"

#include <QTest>

class tst_BMSimulatedWalk : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void attenuation_data()
    {
        QTest::addColumn<double>("distance");
        QTest::addColumn<int>("walls");
        QTest::addColumn<double>("low");
        QTest::addColumn<double>("high");
        QTest::newRow("beside the router") << 0.5 << 0 << 290.0 << 300.0;
        QTest::newRow("same room, five metres") << 5.0 << 0 << 150.0 << 290.0;
        QTest::newRow("far room, one wall") << 12.0 << 1 << 10.0 << 90.0;
        QTest::newRow("behind three walls") << 15.0 << 3 << 1.0 << 10.0;
        QTest::newRow("a negative wall count counts as none") << 5.0 << -2 << 150.0 << 290.0;
    }
    void attenuation()
    {
        QFETCH(double, distance);
        QFETCH(int, walls);
        QFETCH(double, low);
        QFETCH(double, high);
        const double speed = BMSimulatedWalk::expectedSpeedInMbps(distance, walls);
        QVERIFY2(speed >= low && speed <= high, qPrintable(QString::number(speed)));
        // Farther away or behind one more wall is never faster.
        QVERIFY(BMSimulatedWalk::expectedSpeedInMbps(distance + 1.0, walls) <= speed);
        QVERIFY(BMSimulatedWalk::expectedSpeedInMbps(distance, std::max(walls, 0) + 1) < speed);
    }

    void walkStartsAtTheRouterAndMovesAtWalkingPace()
    {
        BMSimulatedWalk walk(5);
        QCOMPARE(walk.roomName(), QStringLiteral("Living Room"));
        QCOMPARE(walk.coordinate().latitude, BMSimulatedWalk::kHome.latitude);
        QStringList rooms;
        for (int i = 0; i < 400; ++i) {
            const double x = walk.x(), y = walk.y();
            walk.walk(0.25);
            QVERIFY(std::hypot(walk.x() - x, walk.y() - y) <= BMSimulatedWalk::kFastestPace * 0.25 + 1e-9);
            if (!rooms.contains(walk.roomName()))
                rooms << walk.roomName();
        }
        // A hundred seconds take the walker through the whole home.
        QCOMPARE(rooms.size(), 7);
    }

    // Fixed figures: they must come out the same on every platform.
    void seededRandomIsPortable()
    {
        BMSeededRandom random(5489);
        QCOMPARE(random.nextRaw(), 3499211612u);
        BMSeededRandom again(5489);
        const double u = again.nextUniform();
        QCOMPARE(u, (double(3499211612u >> 5) * 67108864.0 + double(581869302u >> 6)) / 9007199254740992.0);
        for (int i = 0; i < 10000; ++i) {
            const double v = again.nextUniform(2.0, 3.0);
            QVERIFY(v >= 2.0 && v < 3.0);
            const double n = again.nextNormal(10.0, 2.0);
            QVERIFY(n >= -2.0 && n <= 22.0);
        }
    }
};

QTEST_GUILESS_MAIN(tst_BMSimulatedWalk)
#include "tst_BMSimulatedWalk.moc"
