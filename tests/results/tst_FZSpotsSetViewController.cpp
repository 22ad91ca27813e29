#include "ResultsFixtures.h"
#include "TestEnvironment.h"
#include "platform/views/NavigationController.h"
#include "screens/results/FZSpotsSetViewController.h"
#include "screens/results/FZSpotsSetsCollectionViewCell.h"
#include "screens/results/FZSpotsSetsHeaderCollectionViewCell.h"
#include "ui/BMMainButton.h"
#include "ui/BrightmereColor.h"

#include <QLabel>
#include <QPushButton>
#include <QScrollArea>
#include <QScrollBar>
#include <QScroller>
#include <QTest>

#include <memory>

using namespace ResultsFixtures;

// The set screen and the grid under it: column widths, shading, the texts of
// both columns, the sort arrow and continuing a recording.
class tst_FZSpotsSetViewController : public QObject
{
    Q_OBJECT

    std::unique_ptr<TestEnvironment> m_env;
    std::unique_ptr<Brightmere::NavigationController> m_navigation;
    RootScreen *m_root = nullptr;

    FZSpotsSetViewController *open(const FZHistoricalResultSpotsSet::Ptr &set, int width = 375, bool withSetter = true)
    {
        m_root = new RootScreen;
        m_navigation = std::make_unique<Brightmere::NavigationController>(m_root);
        m_navigation->resize(width, 667);
        m_navigation->show();
        // The saved list sits between the test screen and this one.
        m_navigation->pushViewController(new Brightmere::ViewController, false);
        auto *screen = new FZSpotsSetViewController;
        screen->setSpotsSet(set);
        if (withSetter)
            screen->setProperty("editSpotsSetSetter", QVariant::fromValue<QObject *>(m_root));
        m_navigation->pushViewController(screen, false);
        QCoreApplication::processEvents();
        return screen;
    }

    // "label | speed line" per grid row, top to bottom.
    static QStringList rows(const FZSpotsSetViewController *screen)
    {
        QStringList lines;
        for (int row = 0; row < screen->numberOfRows(); ++row)
            lines << screen->cellAt(row, 0)->plainText().section('\n', 0, 0) + " | "
                         + screen->cellAt(row, 1)->plainText().section('\n', 0, 0);
        return lines;
    }

private Q_SLOTS:
    void initTestCase() { qputenv("TZ", "UTC"); }
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
        QTest::newRow("phone") << 375 << 0;
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
        const QList<double> expected{0.4 * total, total - 0.4 * total};
        if (laterWidth) {
            m_navigation->resize(laterWidth, 667);
            QCoreApplication::processEvents();
            screen->reloadData();
        }
        QCOMPARE(screen->totalWidth(), total);
        QCOMPARE(screen->columnWidths(), expected);
        QCOMPARE(screen->columnWidths().at(0) + screen->columnWidths().at(1), total);
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

    void rowsShadedAlternately_data()
    {
        QTest::addColumn<int>("row");
        QTest::addColumn<int>("systemSlot");
        QTest::newRow("first row is even") << 0 << 3;
        QTest::newRow("last (sixth) row") << 5 << 4;
    }
    void rowsShadedAlternately()
    {
        QFETCH(int, row);
        QFETCH(int, systemSlot);
        FZSpotsSetViewController *screen = open(groundFloor());
        QCOMPARE(screen->visibleCellCount(), 12);
        for (int column = 0; column < 2; ++column)
            QCOMPARE(screen->cellAt(row, column)->backgroundColor(), Brightmere::Color::system(systemSlot));
        // Shading follows the row position, not the spot: sorting keeps it.
        screen->sortButtonTapped();
        QCOMPARE(screen->cellAt(row, 0)->backgroundColor(), Brightmere::Color::system(systemSlot));
    }

    void cellTexts_data()
    {
        QTest::addColumn<double>("speed");
        QTest::addColumn<QString>("ssid");
        QTest::addColumn<QString>("left");
        QTest::addColumn<QString>("right");
        // Rounded, not cut as the test screen does; the grid base's rule,
        // checked here for both grids.
        QTest::newRow("rounded, not cut") << 23.999 << "HomeNet" << "Kitchen\n25/03/14 09:30"
                                          << "24.00 Mbps\nHomeNet(a4:2b:b0:11:22:33)";
        QTest::newRow("no SSID: BSSID alone in parentheses") << 5.5 << "" << "Kitchen\n25/03/14 09:30"
                                                              << "5.50 Mbps\n(a4:2b:b0:11:22:33)";
    }
    void cellTexts()
    {
        QFETCH(double, speed);
        QFETCH(QString, ssid);
        QFETCH(QString, left);
        QFETCH(QString, right);
        auto set = FZHistoricalResultSpotsSet::create(
            "One", ssid, QDateTime::currentDateTimeUtc(),
            {spot("Kitchen", speed, ssid, "a4:2b:b0:11:22:33", "2025-03-14T09:30:00Z")});
        FZSpotsSetViewController *screen = open(set);
        QCOMPARE(screen->cellAt(0, 0)->plainText(), left);
        QCOMPARE(screen->cellAt(0, 1)->plainText(), right);
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
        QFETCH(QString, arrow);
        QFETCH(QStringList, firstTwoRows);
        FZSpotsSetViewController *screen = open(groundFloor());
        for (int tap = 0; tap < taps; ++tap)
            QTest::mouseClick(screen->headerCells().at(0)->button(), Qt::LeftButton);
        QCOMPARE(screen->sortImageName(), arrow);
        QCOMPARE(screen->headerCells().at(0)->iconName(), arrow);
        QVERIFY(screen->sortImage()->isVisible());
        QCOMPARE(rows(screen).mid(0, 2), firstTwoRows);
        // The other heading sorts nothing.
        QTest::mouseClick(screen->headerCells().at(1)->button(), Qt::LeftButton);
        QCOMPARE(screen->spotsSet()->isSortedAscending(), qint64(taps % 3));
    }

    void continueRecording_data()
    {
        QTest::addColumn<bool>("withSetter");
        QTest::newRow("hands the set to the test screen") << true;
        QTest::newRow("without a setter it still goes back") << false;
    }
    void continueRecording()
    {
        QFETCH(bool, withSetter);
        const auto set = groundFloor();
        FZSpotsSetViewController *screen = open(set, 375, withSetter);
        QCOMPARE(screen->screenNameAndClassForEventTracker().screenName(), QString("Saved Spots Screen"));
        QCOMPARE(screen->editSpotsSetSetter() != nullptr, withSetter);
        QTest::mouseClick(screen->continueRecordingButton(), Qt::LeftButton);
        QCoreApplication::processEvents();
        QCOMPARE(m_navigation->viewControllers().size(), 1);
        QCOMPARE(m_navigation->topViewController(), m_root);
        QCOMPARE(m_root->received.size(), withSetter ? 1 : 0);
        if (withSetter)
            QCOMPARE(m_root->received.first(), set);
    }

    void emptyOrMissingSetShowsEmptyGrid_data()
    {
        QTest::addColumn<bool>("noSet");
        QTest::newRow("set without spots") << false;
        QTest::newRow("no set given (logged)") << true;
    }
    void emptyOrMissingSetShowsEmptyGrid()
    {
        QFETCH(bool, noSet);
        auto set = noSet ? FZHistoricalResultSpotsSet::Ptr()
                         : FZHistoricalResultSpotsSet::create("Empty", "HomeNet", QDateTime::currentDateTimeUtc(), {});
        FZSpotsSetViewController *screen = open(set);
        QCOMPARE(screen->visibleCellCount(), 0);
        screen->sortButtonTapped();
        QCOMPARE(screen->sortImageName(), QString("arrowDownIcon"));
    }

};

QTEST_MAIN(tst_FZSpotsSetViewController)
#include "tst_FZSpotsSetViewController.moc"
