#include "PointerInput.h"
#include "PopupInput.h"
#include "TestEnvironment.h"
#include <Brightmere/model/FZHistoricalResultSpotsSet.h>
#include <Brightmere/platform/views/BarButtonItem.h>
#include <Brightmere/platform/views/KeyWindow.h>
#include <Brightmere/platform/views/NavigationController.h>
#include <Brightmere/platform/views/NavigationItem.h>
#include <Brightmere/platform/views/Storyboard.h>
#include <Brightmere/platform/views/TableView.h>
#include <Brightmere/screens/results/FZCompareSpotsSetsViewController.h>
#include <Brightmere/screens/results/FZSavedSpotsCell.h>
#include <Brightmere/screens/results/FZSavedSpotsViewController.h>
#include <Brightmere/screens/results/FZSpotsSetViewController.h>
#include <Brightmere/storyboard/BMSDKUIStoryboard.h>
#include <Brightmere/ui/BMLabel.h>

#include <QApplication>
#include <QTest>

using Brightmere::IndexPath;

namespace {

// Stands in for the test screen, which takes a set back.
struct EditSetter : QObject, BMWifiScanVCEditSpotsSetSetter
{
    void setSpotsSetToEdit(const FZHistoricalResultSpotsSet::Ptr &) override {}
};

WifiTestResult::List spots(const QStringList &labels)
{
    WifiTestResult::List list;
    for (const QString &label : labels) {
        auto spot = WifiTestResult::create(20.0);
        spot->setLabel(label);
        list << spot;
    }
    return list;
}

} // namespace

// Four saved sets, newest first: "Ground floor" (Kitchen, Hall), "Upstairs"
// (Bedroom, Hall), "Garden" (Patio: shares nothing) and "Attic" (Kitchen).
class tst_FZSavedSpotsViewController : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init()
    {
        m_env = std::make_unique<TestEnvironment>();
        const QDateTime day(QDate(2025, 3, 14), QTime(9, 30), Qt::UTC);
        FZHistoricalResultSpotsSet::saveSetWithName("Attic", "HomeNet", day, spots({"Kitchen"}));
        FZHistoricalResultSpotsSet::saveSetWithName("Garden", "HomeNet", day.addSecs(60), spots({"Patio"}));
        FZHistoricalResultSpotsSet::saveSetWithName("Upstairs", "HomeNet", day.addSecs(120), spots({"Bedroom", "Hall"}));
        FZHistoricalResultSpotsSet::saveSetWithName("Ground floor", "HomeNet", day.addSecs(180),
                                                    spots({"Kitchen", "Hall"}));
        BMSDKUIStoryboard::registerSegues(&m_board);
        m_screen = new FZSavedSpotsViewController;
        m_screen->setStoryboard(&m_board);
        m_screen->setEditSpotsSetSetterObject(&m_setter);
        m_nav = std::make_unique<Brightmere::NavigationController>(m_screen);
        m_nav->resize(375, 667);
        Brightmere::KeyWindow::makeKeyWindow(m_nav.get());
        m_nav->show();
    }

    void cleanup()
    {
        m_nav.reset();
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
        m_env.reset();
    }

    void picksInCompareMode_data()
    {
        QTest::addColumn<QStringList>("taps");
        QTest::addColumn<QStringList>("listed");
        QTest::addColumn<QStringList>("picked"); // first, then second
        QTest::addColumn<bool>("forward");
        const QStringList all{"Ground floor", "Upstairs", "Garden", "Attic"};
        const QStringList aroundGround{"Ground floor", "Upstairs", "Attic"};
        QTest::newRow("first pick narrows, itself included")
            << QStringList{"Ground floor"} << aroundGround << QStringList{"Ground floor"} << false;
        QTest::newRow("two picks bring the forward button, a third is refused")
            << QStringList{"Ground floor", "Upstairs", "Attic"} << aroundGround
            << QStringList{"Ground floor", "Upstairs"} << true;
        QTest::newRow("unpicking the second keeps the first")
            << QStringList{"Ground floor", "Upstairs", "Upstairs"} << aroundGround << QStringList{"Ground floor"}
            << false;
        QTest::newRow("unpicking the first promotes the second")
            << QStringList{"Ground floor", "Attic", "Ground floor"} << QStringList{"Ground floor", "Attic"}
            << QStringList{"Attic"} << false;
        QTest::newRow("a set sharing nothing cannot be picked")
            << QStringList{"Garden"} << all << QStringList{} << false;
    }

    void picksInCompareMode()
    {
        QFETCH(QStringList, picked);
        QFETCH(bool, forward);
        m_screen->enableCompareSetsMode();
        for (const QString &name : fetched<QStringList>("taps"))
            tap(name);
        QTEST(names(), "listed");
        QCOMPARE(nameOf(m_screen->firstSpotsSetToCompare()), picked.value(0));
        QCOMPARE(nameOf(m_screen->secondSpotsSetToCompre()), picked.value(1));
        QCOMPARE(m_screen->navigationItem()->rightBarButtonItem() == m_screen->forwardButton(), forward);
        QCOMPARE(m_screen->navigationItem()->rightBarButtonItem() != nullptr, forward);
        // The rows that look picked are the picks, whatever the order.
        QStringList shown;
        for (int row = 0; row < m_screen->allSpotsSets().size(); ++row) {
            if (cell(row)->showsSelection())
                shown << cell(row)->nameTextView()->text();
        }
        QStringList expected = picked;
        expected.sort();
        shown.sort();
        QCOMPARE(shown, expected);
    }

    void comparableMarkOnlyInCompareMode()
    {
        const auto marks = [this] {
            QList<bool> shown;
            for (int row = 0; row < 4; ++row)
                shown << cell(row)->comparableIconImageView()->isVisible();
            return shown;
        };
        QCOMPARE(marks(), (QList<bool>{false, false, false, false}));
        m_screen->enableCompareSetsMode();
        QCOMPARE(marks(), (QList<bool>{true, true, false, true}));
    }

    void longNameEndsBeforeTheMark()
    {
        // Rows of the narrowed list come from the reuse pool, set up while hidden.
        const QString name = QStringLiteral("Basement, ground floor and attic after moving the router twice");
        FZHistoricalResultSpotsSet::saveSetWithName(name, "HomeNet", QDateTime(QDate(2025, 3, 13), QTime(8, 0), Qt::UTC),
                                                    spots({"Kitchen"}));
        m_screen->enableCompareSetsMode();
        tap("Ground floor");
        QCoreApplication::processEvents();
        const FZSavedSpotsCell *row = cell(int(names().indexOf(name)));
        QVERIFY(row && row->comparableIconImageView()->isVisible());
        QVERIFY(row->nameTextView()->geometry().right() < row->comparableIconImageView()->geometry().left());
        QVERIFY(row->nameTextView()->text().endsWith(QChar(0x2026)));
    }

    void optionsPopupAndCancel_data()
    {
        QTest::addColumn<int>("choice");
        QTest::addColumn<int>("mode");
        QTest::newRow("compare sets") << 1 << 1;
        QTest::newRow("cancel") << 2 << 0;
    }

    void optionsPopupAndCancel()
    {
        QFETCH(int, mode);
        m_screen->optionsButton()->trigger();
        QVERIFY(PopupInput::choose(PopupInput::shown(m_nav.get()), fetched<int>("choice")));
        QCOMPARE(m_screen->currentUIMode(), mode);
        QCOMPARE(m_screen->canEditRowAtIndexPath(m_screen->tableView(), IndexPath(0, 0)), mode == 0);
        if (mode == 0)
            return;
        QCOMPARE(m_screen->navigationItem()->leftBarButtonItem(), m_screen->cancelCompareButton());
        tap("Ground floor");
        tap("Upstairs");
        m_screen->cancelCompareButton()->trigger();
        QCOMPARE(m_screen->currentUIMode(), 0);
        QVERIFY(!m_screen->firstSpotsSetToCompare() && !m_screen->secondSpotsSetToCompre());
        QCOMPARE(names().size(), 4);
        QCOMPARE(m_screen->navigationItem()->rightBarButtonItem(), m_screen->optionsButton());
        QVERIFY(m_screen->navigationItem()->leftBarButtonItem() != m_screen->cancelCompareButton());
        QVERIFY(!cell(0)->showsSelection() && !cell(1)->showsSelection());
    }

    void deleteBySwipe_data()
    {
        QTest::addColumn<bool>("compare");
        QTest::addColumn<bool>("byKey"); // Delete on the focused row, then Enter on its strip
        QTest::addColumn<QStringList>("left");
        QTest::newRow("normal mode deletes from the store") << false << false
                                                            << QStringList{"Ground floor", "Garden", "Attic"};
        QTest::newRow("the Delete key asks as the swipe does") << false << true
                                                               << QStringList{"Ground floor", "Garden", "Attic"};
        QTest::newRow("compare mode deletes nothing") << true << false
                                                      << QStringList{"Ground floor", "Upstairs", "Garden", "Attic"};
    }

    void deleteBySwipe()
    {
        QFETCH(bool, compare);
        QFETCH(bool, byKey);
        QFETCH(QStringList, left);
        if (compare)
            m_screen->enableCompareSetsMode();
        if (byKey) {
            m_nav->activateWindow();
            QVERIFY(QTest::qWaitForWindowActive(m_nav.get()));
            cell(1)->setFocus(Qt::TabFocusReason);
            QTest::keyClick(cell(1), Qt::Key_Delete);
        } else {
            PointerInput::drag(PointerInput::Kind::Mouse, m_screen->tableView()->viewport(), QPoint(300, 96),
                               QPoint(200, 96));
        }
        QCOMPARE(cell(1)->isEditing(), !compare);
        if (!compare && byKey) // the strip has the focus
            QTest::keyClick(QApplication::focusWidget(), Qt::Key_Return);
        else if (!compare)
            QTest::mouseClick(cell(1)->deleteStrip(), Qt::LeftButton);
        else // even asked directly, compare mode keeps the set
            m_screen->commitEditingStyle(m_screen->tableView(),
                                         Brightmere::TableViewDataSource::EditingStyle::Delete, IndexPath(1, 0));
        QCOMPARE(names(), left);
        QCOMPARE(m_screen->tableView()->numberOfRowsInSection(0), left.size());
        QStringList stored;
        for (const auto &set : FZHistoricalResultSpotsSet::allSpotsSets())
            stored << set->name();
        QCOMPARE(stored, left);
    }

    void openingASetHandsItOver()
    {
        // A real click on the second row.
        PointerInput::press(PointerInput::Kind::Mouse, m_screen->tableView()->viewport(), QPoint(150, 96));
        PointerInput::release(PointerInput::Kind::Mouse, m_screen->tableView()->viewport(), QPoint(150, 96));
        auto *shown = qobject_cast<FZSpotsSetViewController *>(m_nav->topViewController());
        QVERIFY(shown);
        QCOMPARE(shown->spotsSet()->name(), QString("Upstairs"));
        QCOMPARE(shown->editSpotsSetSetterObject(), &m_setter);
        QVERIFY(!cell(1)->showsSelection());
    }

    void comparingHandsOverBothPicksInOrder()
    {
        m_screen->enableCompareSetsMode();
        tap("Upstairs");
        tap("Ground floor");
        m_screen->forwardButton()->trigger();
        auto *shown = qobject_cast<FZCompareSpotsSetsViewController *>(m_nav->topViewController());
        QVERIFY(shown && shown->spotsSetsComparison());
        QCOMPARE(shown->spotsSetsComparison()->firstSet()->name(), QString("Upstairs"));
        QCOMPARE(shown->spotsSetsComparison()->secondSet()->name(), QString("Ground floor"));
        // Back again: the picks and the narrowed list are still there.
        m_nav->popViewControllerAnimated(false);
        QCOMPARE(m_nav->topViewController(), m_screen);
        QCOMPARE(names(), (QStringList{"Ground floor", "Upstairs"}));
        QVERIFY(m_screen->readyToCompareSpotsSets());
        QCOMPARE(m_screen->navigationItem()->rightBarButtonItem(), m_screen->forwardButton());
    }

    // A list first shown on an empty store reads it again when the screen
    // comes back, so a set saved meanwhile shows.
    void anEmptyListReadsTheStoreAgain()
    {
        m_nav.reset();
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
        FZHistoricalResultSpotsSet::deleteAllSpotsSets();
        m_screen = new FZSavedSpotsViewController;
        m_screen->setStoryboard(&m_board);
        m_nav = std::make_unique<Brightmere::NavigationController>(m_screen);
        m_nav->show();
        QCOMPARE(m_screen->tableView()->numberOfRowsInSection(0), 0);
        FZHistoricalResultSpotsSet::saveSetWithName("Cellar", "HomeNet", QDateTime::currentDateTimeUtc(),
                                                    spots({"Hall"}));
        m_nav->pushViewController(new FZSpotsSetViewController, false);
        m_nav->popViewControllerAnimated(false);
        QCOMPARE(m_nav->topViewController(), m_screen);
        QCOMPARE(m_screen->tableView()->numberOfRowsInSection(0), 1);
    }

private:
    FZSavedSpotsCell *cell(int row) const
    {
        return qobject_cast<FZSavedSpotsCell *>(m_screen->tableView()->cellForRowAtIndexPath(IndexPath(row, 0)));
    }
    QStringList names() const
    {
        QStringList list;
        for (const auto &set : m_screen->allSpotsSets())
            list << set->name();
        return list;
    }
    static QString nameOf(const FZHistoricalResultSpotsSet::Ptr &set) { return set ? set->name() : QString(); }
    // A click on the set's row, as a person picks it.
    void tap(const QString &name)
    {
        const int row = int(names().indexOf(name));
        QVERIFY2(row >= 0, qPrintable(name));
        QWidget *viewport = m_screen->tableView()->viewport();
        const QPoint at = cell(row)->mapTo(viewport, QPoint(60, cell(row)->height() / 2));
        PointerInput::press(PointerInput::Kind::Mouse, viewport, at);
        PointerInput::release(PointerInput::Kind::Mouse, viewport, at);
    }
    std::unique_ptr<TestEnvironment> m_env;
    Brightmere::Storyboard m_board;
    EditSetter m_setter;
    std::unique_ptr<Brightmere::NavigationController> m_nav;
    FZSavedSpotsViewController *m_screen = nullptr;
};

QTEST_MAIN(tst_FZSavedSpotsViewController)
#include "tst_FZSavedSpotsViewController.moc"
