#include "TestEnvironment.h"
#include <Brightmere/model/BMWifiScanVCEditSpotsSetSetter.h>
#include <Brightmere/platform/foundation/Clock.h>
#include <Brightmere/platform/views/NavigationController.h>
#include <Brightmere/platform/views/Switch.h>
#include <Brightmere/screens/results/FZCompareSpotsSetsViewController.h>
#include <Brightmere/screens/results/FZSpotsSetsCollectionViewCell.h>
#include <Brightmere/screens/results/FZSpotsSetsHeaderCollectionViewCell.h>
#include <Brightmere/screens/results/FZSpotsSetViewController.h>
#include <Brightmere/ui/BMBorderedView.h>
#include <Brightmere/ui/BMLabel.h>
#include <Brightmere/ui/BMMainButton.h>
#include <Brightmere/ui/BrightmereColor.h>

#include <QAccessible>
#include <QApplication>
#include <QLabel>
#include <QPushButton>
#include <QScrollArea>
#include <QScrollBar>
#include <QScroller>
#include <QTest>

#include <memory>

namespace {

WifiTestResult::Ptr spot(const QString &label, double speed, const QString &ssid, const QString &bssid,
                         const QString &isoUtc)
{
    // Stamped in seconds since 1 January 2001, as the tester stamps spots.
    const double stamp = double(QDateTime::fromString(isoUtc, Qt::ISODate).toSecsSinceEpoch())
                         - Brightmere::Clock::kReferenceDateUnixSeconds;
    auto result = WifiTestResult::create(speed, stamp);
    result->setLabel(label);
    result->setSsid(ssid);
    result->setBssid(bssid);
    return result;
}

// Six rooms, measured one minute apart from 09:30 on 14 March 2025.
FZHistoricalResultSpotsSet::Ptr groundFloor()
{
    const QString ap = QStringLiteral("a4:2b:b0:11:22:33");
    return FZHistoricalResultSpotsSet::create(
        QStringLiteral("Ground floor"), "HomeNet", QDateTime(QDate(2025, 3, 14), QTime(9, 40), Qt::UTC),
        {spot("Kitchen", 48.256, "HomeNet", ap, "2025-03-14T09:30:00Z"),
         spot("Living Room", 92.4, "HomeNet", ap, "2025-03-14T09:31:00Z"),
         spot("Hall", 61.005, "HomeNet", ap, "2025-03-14T09:32:00Z"),
         spot("Bedroom 2", 23.999, "HomeNet", ap, "2025-03-14T09:33:00Z"),
         spot("Bedroom 10", 17.5, "HomeNet", ap, "2025-03-14T09:34:00Z"),
         spot("Office", 75.126, "HomeNet", ap, "2025-03-14T09:35:00Z")});
}

// The same house after moving the router: five rooms measured anew, the
// hall taken over unchanged from the first run.
FZHistoricalResultSpotsSet::Ptr afterMovingRouter()
{
    const QString ap = QStringLiteral("a4:2b:b0:44:55:66");
    return FZHistoricalResultSpotsSet::create(
        QStringLiteral("After moving router"), "HomeNet", QDateTime(QDate(2025, 3, 15), QTime(18, 10), Qt::UTC),
        {spot("Kitchen", 71.5, "HomeNet", ap, "2025-03-15T18:00:00Z"),
         spot("Living Room", 88.75, "HomeNet", ap, "2025-03-15T18:01:00Z"), groundFloor()->mutableSpots().at(2),
         spot("Bedroom 2", 55.0, "HomeNet", ap, "2025-03-15T18:03:00Z"),
         spot("Bedroom 10", 44.444, "", ap, "2025-03-15T18:04:00Z"),
         spot("Office", 80.0, "HomeNet", ap, "2025-03-15T18:05:00Z")});
}

// The bottom of the stack, taking a set back as the test screen does.
class RootScreen : public Brightmere::ViewController, public BMWifiScanVCEditSpotsSetSetter
{
public:
    void setSpotsSetToEdit(const FZHistoricalResultSpotsSet::Ptr &spotsSet) override { received << spotsSet; }
    QList<FZHistoricalResultSpotsSet::Ptr> received;
};

} // namespace

// The two grids of saved results: a set's screen (column widths, shading,
// the texts of both columns, the sort arrow, continuing a recording) and the
// compare screen (its layout, crosswise headings, sorting by name, hiding the
// rows measured alike).
class tst_FZBaseCollectionViewController : public QObject
{
    Q_OBJECT

    std::unique_ptr<TestEnvironment> m_env;
    std::unique_ptr<Brightmere::NavigationController> m_navigation;
    RootScreen *m_root = nullptr;

    // On top of a stack of three, as from the test screen through the saved list.
    template<typename Screen>
    Screen *push(Screen *screen, int width = 375, bool withSetter = false)
    {
        m_root = new RootScreen;
        m_navigation = std::make_unique<Brightmere::NavigationController>(m_root);
        m_navigation->resize(width, 667);
        m_navigation->show();
        m_navigation->pushViewController(new Brightmere::ViewController, false);
        if (withSetter)
            screen->setProperty("editSpotsSetSetter", QVariant::fromValue<QObject *>(m_root));
        m_navigation->pushViewController(screen, false);
        QCoreApplication::processEvents();
        return screen;
    }
    FZSpotsSetViewController *open(const FZHistoricalResultSpotsSet::Ptr &set, int width = 375, bool withSetter = false)
    {
        auto *screen = new FZSpotsSetViewController;
        screen->setSpotsSet(set);
        return push(screen, width, withSetter);
    }
    FZCompareSpotsSetsViewController *compare(const FZHistoricalResultSpotsSet::Ptr &second)
    {
        auto *screen = new FZCompareSpotsSetsViewController;
        screen->setSpotsSetsComparison(FZResultSpotsSetsComparison::comparisonWithFirstSet(groundFloor(), second));
        return push(screen);
    }
    // The first line of each column's cell, per grid row, top to bottom, " | " between.
    static QStringList rows(const FZBaseCollectionViewController *screen, int columns)
    {
        QStringList lines;
        for (int row = 0; row < screen->numberOfRows(); ++row) {
            QStringList cells;
            for (int column = 0; column < columns; ++column)
                cells << screen->cellAt(row, column)->plainText().section('\n', 0, 0);
            lines << cells.join(" | ");
        }
        return lines;
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

    void columnWidthsComputedOnceLastTakesRemainder_data()
    {
        QTest::addColumn<int>("windowWidth");
        QTest::addColumn<int>("laterWidth"); // 0: no later resize
        QTest::newRow("odd width: remainder, not 0.6 of it") << 333 << 0;
        QTest::newRow("a later resize keeps the first widths") << 375 << 500;
    }
    void columnWidthsComputedOnceLastTakesRemainder()
    {
        QFETCH(int, windowWidth);
        QFETCH(int, laterWidth);
        FZSpotsSetViewController *screen = open(groundFloor(), windowWidth);
        const double total = screen->totalWidth();
        QCOMPARE(total, double(screen->collectionView()->viewport()->width()));
        QVERIFY(total > windowWidth - 40 && total < windowWidth);
        if (laterWidth) {
            m_navigation->resize(laterWidth, 667);
            QCoreApplication::processEvents();
            screen->reloadData();
        }
        QCOMPARE(screen->totalWidth(), total);
        QCOMPARE(screen->columnWidths(), (QList<double>{0.4 * total, total - 0.4 * total}));
        // Cells tile the first width exactly, without a gap or an overlap.
        const QRect left = screen->cellAt(0, 0)->geometry();
        const QRect right = screen->cellAt(0, 1)->geometry();
        QCOMPARE(left.x(), 0);
        QCOMPARE(right.x(), left.right() + 1);
        QCOMPARE(right.right() + 1, qRound(total));
        QCOMPARE(left.height(), 60);
        QCOMPARE(screen->columnWidthProportionWithIndex(2), 0.0);
    }

    void draggingPastAnEndDoesNotBounce_data()
    {
        QTest::addColumn<bool>("atBottom");
        QTest::newRow("down past the top") << false;
        QTest::newRow("up past the bottom") << true;
    }
    void draggingPastAnEndDoesNotBounce()
    {
        QFETCH(bool, atBottom);
        WifiTestResult::List spots;
        for (int i = 0; i < 40; ++i)
            spots.append(groundFloor()->spots().at(i % 6));
        FZSpotsSetViewController *screen = open(FZHistoricalResultSpotsSet::create("Long", "HomeNet", QDateTime(), spots));
        QScrollBar *bar = screen->collectionView()->verticalScrollBar();
        bar->setValue(atBottom ? bar->maximum() : 0);
        const int end = bar->value();
        QWidget *viewport = screen->collectionView()->viewport();
        const QPoint rest = viewport->pos();
        QScroller *scroller = QScroller::scroller(viewport);
        // The finger first moves the rows away from the end...
        const double away = atBottom ? 1.0 : -1.0;
        QPointF at(100, 300);
        qint64 time = 1000;
        scroller->handleInput(QScroller::InputPress, at, time);
        for (int step = 0; step < 5; ++step)
            scroller->handleInput(QScroller::InputMove, at += QPointF(0, away * 20), time += 20);
        QTRY_VERIFY(bar->value() != end);
        // ...then back in one stroke, 200 pixels past it: the step that
        // stops the rows at the end would also move the grid past it.
        scroller->handleInput(QScroller::InputMove, at -= QPointF(0, away * (qAbs(bar->value() - end) + 200)), time += 20);
        QTRY_COMPARE(bar->value(), end);
        QCOMPARE(viewport->pos(), rest);
        scroller->handleInput(QScroller::InputRelease, at, time += 20);
        scroller->stop();
        QCOMPARE(viewport->pos(), rest);
    }

    void cellTexts_data()
    {
        QTest::addColumn<double>("speed");
        QTest::addColumn<QString>("ssid");
        QTest::addColumn<QString>("right");
        // Rounded, not cut as the test screen does; the grid base's rule,
        // checked here for both grids.
        QTest::newRow("rounded, not cut") << 23.999 << "HomeNet" << "24.00 Mbps\nHomeNet(a4:2b:b0:11:22:33)";
        QTest::newRow("no SSID: BSSID alone in parentheses") << 5.5 << "" << "5.50 Mbps\n(a4:2b:b0:11:22:33)";
    }
    void cellTexts()
    {
        QFETCH(QString, ssid);
        FZSpotsSetViewController *screen = open(FZHistoricalResultSpotsSet::create(
            "One", ssid, QDateTime::currentDateTimeUtc(),
            {spot("Kitchen", fetched<double>("speed"), ssid, "a4:2b:b0:11:22:33", "2025-03-14T09:30:00Z")}));
        QCOMPARE(screen->cellAt(0, 0)->plainText(), QString("Kitchen\n25/03/14 09:30"));
        QTEST(screen->cellAt(0, 1)->plainText(), "right");
        // The compare grid's record text: an empty network line without an SSID.
        const auto other = spot("Kitchen", 9.0, "", "a4:2b:b0:44:55:66", "2025-03-15T18:00:00Z");
        QCOMPARE(FZCompareSpotsSetsViewController::textForRecord(other).string(),
                 QString("9.00 Mbps\n\n(a4:2b:b0:44:55:66)\n25/03/15 18:00"));
        QVERIFY(FZCompareSpotsSetsViewController::textForRecord(nullptr).isEmpty());
    }

    // The arrow is up only while the set's order is 2 (labels ascending).
    void sortArrowFollowsOrder_data()
    {
        QTest::addColumn<int>("taps");
        QTest::addColumn<QString>("arrow");
        QTest::addColumn<QStringList>("firstTwoRows");
        QTest::newRow("as opened: newest first") << 0 << "arrowDownIcon"
                                                 << QStringList{"Office | 75.13 Mbps", "Bedroom 10 | 17.50 Mbps"};
        QTest::newRow("one tap: Z to A, still down") << 1 << "arrowDownIcon"
                                                      << QStringList{"Office | 75.13 Mbps", "Living Room | 92.40 Mbps"};
        QTest::newRow("two taps: A to Z, numbers by value") << 2 << "arrowUpIcon"
                                                            << QStringList{"Bedroom 2 | 24.00 Mbps", "Bedroom 10 | 17.50 Mbps"};
        QTest::newRow("three taps: back to newest first") << 3 << "arrowDownIcon"
                                                          << QStringList{"Office | 75.13 Mbps", "Bedroom 10 | 17.50 Mbps"};
    }
    void sortArrowFollowsOrder()
    {
        QFETCH(int, taps);
        FZSpotsSetViewController *screen = open(groundFloor());
        for (int tap = 0; tap < taps; ++tap)
            QTest::mouseClick(screen->headerCells().at(0)->button(), Qt::LeftButton);
        QTEST(screen->headerCells().at(0)->iconName(), "arrow");
        QTEST(rows(screen, 2).mid(0, 2), "firstTwoRows");
        // Shading follows the row's position, not the spot: sorting keeps it.
        for (int row = 0; row < 6; ++row)
            QCOMPARE(screen->cellAt(row, 1)->backgroundColor(), Brightmere::Color::system(row % 2 ? 4 : 3));
        // The other heading sorts nothing.
        QTest::mouseClick(screen->headerCells().at(1)->button(), Qt::LeftButton);
        QCOMPARE(screen->spotsSet()->isSortedAscending(), qint64(taps % 3));
    }

    // Handing the set over is walked with the keyboard (tst_KeyboardOnly).
    void continueRecordingWithoutASetterStillGoesBack()
    {
        FZSpotsSetViewController *screen = open(groundFloor(), 375, false);
        QTest::mouseClick(screen->continueRecordingButton(), Qt::LeftButton);
        QCoreApplication::processEvents();
        QCOMPARE(m_navigation->viewControllers(), QList<Brightmere::ViewController *>{m_root});
        QVERIFY(m_root->received.isEmpty());
    }

    void emptyGrids_data()
    {
        QTest::addColumn<QString>("what");
        QTest::newRow("set without spots") << "empty";
        QTest::newRow("no set given (logged)") << "none";
        QTest::newRow("two sets with no spot in common") << "compare";
    }
    void emptyGrids()
    {
        QFETCH(QString, what);
        if (what == "compare") {
            FZCompareSpotsSetsViewController *screen = compare(FZHistoricalResultSpotsSet::create(
                "Garden", "HomeNet", QDateTime::currentDateTimeUtc(),
                {spot("Shed", 3.0, "HomeNet", "aa", "2025-03-16T10:00:00Z")}));
            QCOMPARE(screen->visibleCellCount(), 0);
            QCOMPARE(screen->headerCells().size(), 3);
            return;
        }
        FZSpotsSetViewController *screen = open(
            what == "none" ? FZHistoricalResultSpotsSet::Ptr()
                           : FZHistoricalResultSpotsSet::create("Empty", "HomeNet", QDateTime::currentDateTimeUtc(), {}));
        QCOMPARE(screen->visibleCellCount(), 0);
        screen->sortButtonTapped();
        QCOMPARE(screen->sortImageName(), QString("arrowDownIcon"));
    }

    // With A first and B second, column 1 is headed B but holds A's records.
    void compareHeadingsCrosswise()
    {
        FZCompareSpotsSetsViewController *screen = compare(afterMovingRouter());
        QCOMPARE(screen->titleForColumnWithIndex(1).string(), QString("After moving router"));
        QCOMPARE(screen->titleForColumnWithIndex(2).string(), QString("Ground floor"));
        QVERIFY(screen->set1Label()->text().contains("After moving router"));
        QVERIFY(screen->set2Label()->text().contains("Ground floor"));
        const QStringList lines = rows(screen, 3);
        QVERIFY(lines.contains("Kitchen | 48.26 Mbps | 71.50 Mbps"));
        // Three columns tiling the grid, and the switch's room below it.
        QCOMPARE(screen->cellAt(0, 2)->geometry().right() + 1, qRound(screen->totalWidth()));
        const QRect grid(screen->borderedView()->mapTo(screen, QPoint(0, 0)), screen->borderedView()->size());
        QCOMPARE(grid.bottom() + 1, screen->collectionViewMaxY());
    }

    void compareSortsByName_data()
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
        // -1: Space on the heading, then Tab on to the grid and a walk of its cells.
        QTest::newRow("by keys, the grid read cell by cell") << -1 << "arrowUpIcon" << ascending;
    }
    void compareSortsByName()
    {
        FZCompareSpotsSetsViewController *screen = compare(afterMovingRouter());
        for (int tap = 0; tap < fetched<int>("taps"); ++tap)
            QTest::mouseClick(screen->headerCells().at(0)->button(), Qt::LeftButton);
        if (fetched<int>("taps") < 0) {
            const auto focused = [] { return QApplication::focusWidget(); };
            screen->headerCells().at(0)->button()->setFocus(Qt::TabFocusReason);
            QTest::keyClick(focused(), Qt::Key_Space);
            // One tab stop for the grid, whatever cell the arrows leave current;
            // an edge keeps the cell, and a reload keeps the focus on it.
            for (int heading = 0; heading < 3; ++heading)
                QTest::keyClick(focused(), Qt::Key_Tab);
            QCOMPARE(focused(), screen->cellAt(0, 0));
            for (Qt::Key key : {Qt::Key_Up, Qt::Key_Down, Qt::Key_End, Qt::Key_Right, Qt::Key_Left})
                QTest::keyClick(focused(), key);
            QCOMPARE(focused(), screen->cellAt(1, 1));
            QVERIFY(focused()->findChild<QWidget *>("focusRing")->isVisible());
            // Row, the heading shown over the cell (crosswise, as above), the cell's lines.
            QCOMPARE(QAccessible::queryAccessibleInterface(focused())->text(QAccessible::Name),
                     QString("Bedroom 10, After moving router, 17.50 Mbps, HomeNet, (a4:2b:b0:11:22:33), 25/03/14 09:34"));
            screen->reloadData();
            QCOMPARE(focused(), screen->cellAt(1, 1));
            QTest::keyClick(focused(), Qt::Key_Tab);
            QCOMPARE(focused(), screen->hideIdenticalSwitch());
        }
        QTEST(rows(screen, 1), "order");
        QTEST(screen->headerCells().at(0)->iconName(), "arrow");
        // Tapping a set's heading sorts nothing.
        QTest::mouseClick(screen->headerCells().at(2)->button(), Qt::LeftButton);
        QTEST(rows(screen, 1), "order");
    }

    void compareHidesIdenticalRows_data()
    {
        QTest::addColumn<QList<bool>>("events"); // switch state reported by each event
        QTest::addColumn<int>("rows");
        QTest::addColumn<bool>("applied");
        QTest::newRow("as opened: identical hall hidden") << QList<bool>{} << 5 << true;
        QTest::newRow("a click shows the hall") << QList<bool>{false} << 6 << false;
        QTest::newRow("a second click hides it again") << QList<bool>{false, true} << 5 << true;
        QTest::newRow("an unchanged state reported again changes nothing") << QList<bool>{true, true} << 5 << true;
    }
    void compareHidesIdenticalRows()
    {
        QFETCH(int, rows);
        QFETCH(bool, applied);
        FZCompareSpotsSetsViewController *screen = compare(afterMovingRouter());
        Brightmere::Switch *toggle = screen->hideIdenticalSwitch();
        for (bool on : fetched<QList<bool>>("events")) {
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
};

QTEST_MAIN(tst_FZBaseCollectionViewController)
#include "tst_FZBaseCollectionViewController.moc"
