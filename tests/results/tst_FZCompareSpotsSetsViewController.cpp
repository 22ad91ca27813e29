#include "ResultsFixtures.h"
#include "TestEnvironment.h"
#include "platform/views/NavigationController.h"
#include "platform/views/Switch.h"
#include "screens/results/FZCompareSpotsSetsViewController.h"
#include "screens/results/FZSpotsSetsCollectionViewCell.h"
#include "screens/results/FZSpotsSetsHeaderCollectionViewCell.h"
#include "ui/BMBorderedView.h"
#include "ui/BMLabel.h"

#include <QLabel>
#include <QPushButton>
#include <QScrollArea>
#include <QTest>

#include <memory>

using namespace ResultsFixtures;

// The compare screen: widths, the crosswise headings, record texts, sorting
// by name and hiding the rows measured alike.
class tst_FZCompareSpotsSetsViewController : public QObject
{
    Q_OBJECT

    std::unique_ptr<TestEnvironment> m_env;
    std::unique_ptr<Brightmere::NavigationController> m_navigation;

    FZCompareSpotsSetsViewController *open(const FZHistoricalResultSpotsSet::Ptr &first,
                                           const FZHistoricalResultSpotsSet::Ptr &second)
    {
        m_navigation = std::make_unique<Brightmere::NavigationController>(new Brightmere::ViewController);
        m_navigation->resize(375, 667);
        m_navigation->show();
        auto *screen = new FZCompareSpotsSetsViewController;
        screen->setSpotsSetsComparison(FZResultSpotsSetsComparison::comparisonWithFirstSet(first, second));
        m_navigation->pushViewController(screen, false);
        QCoreApplication::processEvents();
        return screen;
    }

    static QStringList names(const FZCompareSpotsSetsViewController *screen)
    {
        QStringList list;
        for (int row = 0; row < screen->numberOfRows(); ++row)
            list << screen->cellAt(row, 0)->plainText();
        return list;
    }

private Q_SLOTS:
    void initTestCase()
    {
        qputenv("TZ", "UTC");
        Brightmere::Switch::setSlideDuration(0);
    }
    void init() { m_env = std::make_unique<TestEnvironment>(); }
    void cleanup()
    {
        m_navigation.reset();
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
        m_env.reset();
    }

    void columnWidthsTwentyFortyForty()
    {
        FZCompareSpotsSetsViewController *screen = open(groundFloor(), afterMovingRouter());
        const double total = screen->totalWidth();
        QVERIFY(total > 300);
        QCOMPARE(screen->columnWidths(), (QList<double>{0.2 * total, 0.4 * total, total - (0.2 * total + 0.4 * total)}));
        QCOMPARE(screen->cellAt(0, 2)->geometry().right() + 1, qRound(total));
        QCOMPARE(screen->cellAt(0, 0)->height(), 65);
        // The switch's room below the grid.
        const QRect grid(screen->borderedView()->mapTo(screen, QPoint(0, 0)), screen->borderedView()->size());
        QCOMPARE(grid.bottom() + 1, screen->collectionViewMaxY());
    }

    // With A first and B second, column 1 is headed B but holds A's records.
    void headingsCrosswise()
    {
        FZCompareSpotsSetsViewController *screen = open(groundFloor(), afterMovingRouter());
        QCOMPARE(screen->titleForColumnWithIndex(1).string(), QString("After moving router"));
        QCOMPARE(screen->titleForColumnWithIndex(2).string(), QString("Ground floor"));
        QVERIFY(screen->set1Label()->text().contains("After moving router"));
        QVERIFY(screen->set2Label()->text().contains("Ground floor"));
        const int kitchen = int(names(screen).indexOf("Kitchen"));
        QVERIFY(kitchen >= 0);
        QVERIFY(screen->cellAt(kitchen, 1)->plainText().startsWith("48.26 Mbps\n"));
        QVERIFY(screen->cellAt(kitchen, 2)->plainText().startsWith("71.50 Mbps\n"));
        QCOMPARE(screen->screenNameAndClassForEventTracker().screenName(), QString("Compare Sets Screen"));
    }

    void recordTexts_data()
    {
        QTest::addColumn<double>("speed");
        QTest::addColumn<QString>("ssid");
        QTest::addColumn<QString>("expected");
        QTest::newRow("no SSID: an empty network line") << 9.0 << "" << "9.00 Mbps\n\n(a4:2b:b0:44:55:66)\n25/03/15 18:00";
    }
    void recordTexts()
    {
        QFETCH(double, speed);
        QFETCH(QString, ssid);
        QFETCH(QString, expected);
        const FZAttributedText text = FZCompareSpotsSetsViewController::textForRecord(
            spot("Kitchen", speed, ssid, "a4:2b:b0:44:55:66", "2025-03-15T18:00:00Z"));
        QCOMPARE(text.string(), expected);
        QVERIFY(FZCompareSpotsSetsViewController::textForRecord(nullptr).isEmpty());
    }

    void sortByName_data()
    {
        QTest::addColumn<int>("taps");
        QTest::addColumn<QString>("arrow");
        QTest::addColumn<QStringList>("order");
        // Hall is the same measurement in both sets: hidden at first.
        const QStringList descending{"Office", "Living Room", "Kitchen", "Bedroom 10", "Bedroom 2"};
        QStringList ascending = descending;
        std::reverse(ascending.begin(), ascending.end());
        QTest::newRow("as opened: Z to A, numbers by value") << 0 << "arrowDownIcon" << descending;
        QTest::newRow("one tap: A to Z") << 1 << "arrowUpIcon" << ascending;
        QTest::newRow("two taps: back to the first order and arrow") << 2 << "arrowDownIcon" << descending;
    }
    void sortByName()
    {
        QFETCH(int, taps);
        QFETCH(QString, arrow);
        QFETCH(QStringList, order);
        FZCompareSpotsSetsViewController *screen = open(groundFloor(), afterMovingRouter());
        for (int tap = 0; tap < taps; ++tap)
            QTest::mouseClick(screen->headerCells().at(0)->button(), Qt::LeftButton);
        QCOMPARE(names(screen), order);
        QCOMPARE(screen->headerCells().at(0)->iconName(), arrow);
        // Tapping a set's heading sorts nothing.
        QTest::mouseClick(screen->headerCells().at(2)->button(), Qt::LeftButton);
        QCOMPARE(names(screen), order);
    }

    void hideIdenticalToggle_data()
    {
        QTest::addColumn<QList<bool>>("events"); // switch state reported by each event
        QTest::addColumn<int>("rows");
        QTest::addColumn<bool>("applied");
        QTest::newRow("as opened: identical hall hidden") << QList<bool>{} << 5 << true;
        QTest::newRow("a click shows the hall") << QList<bool>{false} << 6 << false;
        QTest::newRow("a second click hides it again") << QList<bool>{false, true} << 5 << true;
        QTest::newRow("an unchanged state reported again changes nothing") << QList<bool>{true, true} << 5 << true;
    }
    void hideIdenticalToggle()
    {
        QFETCH(QList<bool>, events);
        QFETCH(int, rows);
        QFETCH(bool, applied);
        FZCompareSpotsSetsViewController *screen = open(groundFloor(), afterMovingRouter());
        Brightmere::Switch *toggle = screen->hideIdenticalSwitch();
        QVERIFY(toggle->isOn());
        QCOMPARE(screen->hideIdenticalSwitchIsOn(), true);
        for (bool on : events) {
            if (on != toggle->isOn()) {
                QTest::mouseClick(toggle, Qt::LeftButton);
            } else {
                // The platform may report a switch that did not change.
                QSignalBlocker block(toggle);
                screen->hideIdenticalDataToggled(toggle);
            }
        }
        QCOMPARE(screen->numberOfRows(), rows);
        QCOMPARE(screen->visibleCellCount(), rows * 3);
        QCOMPARE(screen->hideIdenticalSwitchIsOn(), applied);
        QCOMPARE(screen->spotsSetsComparison()->excludeIdenticalMatches(), applied);
    }

    void noCommonSpotsShowsEmptyGrid()
    {
        auto other = FZHistoricalResultSpotsSet::create(
            "Garden", "HomeNet", QDateTime::currentDateTimeUtc(),
            {spot("Shed", 3.0, "HomeNet", "aa", "2025-03-16T10:00:00Z")});
        FZCompareSpotsSetsViewController *screen = open(groundFloor(), other);
        QCOMPARE(screen->visibleCellCount(), 0);
        QCOMPARE(screen->headerCells().size(), 3);
    }

};

QTEST_MAIN(tst_FZCompareSpotsSetsViewController)
#include "tst_FZCompareSpotsSetsViewController.moc"
