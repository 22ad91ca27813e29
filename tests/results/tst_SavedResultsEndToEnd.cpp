#include "../session/WifiScanHarness.h"
#include "PopupInput.h"

#include "platform/views/BarButtonItem.h"
#include "platform/views/Switch.h"
#include "popups/FZTextViewOptionsPopup.h"
#include "screens/results/FZCompareSpotsSetsViewController.h"
#include "screens/results/FZSavedSpotsViewController.h"
#include "screens/results/FZSpotsSetViewController.h"

#include <QDir>

// The whole way of a saved result on the simulated home network and a
// manual clock: record, save, record again, save again, open the list, open
// a set and sort it, compare the two and hide identical rows, and continue
// recording a set on the test screen. Every screen on the way is drawn to
// e2e-*.png beside this test.
class tst_SavedResultsEndToEnd : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void recordSaveCompareAndContinue()
    {
        WifiScanHarness h({8.0, 12.0, 30.0, 45.0});
        h.useStoryboard();

        // First run: three spots, saved as "Ground floor".
        h.run("start,results:1,record,results:1,record,results:1,record");
        QCOMPARE(h.labels(), (QStringList{"Spot 3", "Spot 2", "Spot 1"}));
        snap(h, "e2e-1-run");
        saveAs(h, "Ground floor", "e2e-2-save-prompt");
        auto *list = top<FZSavedSpotsViewController>(h);
        QVERIFY(list);
        QCOMPARE(names(list), QStringList{"Ground floor"});

        // Second run, after moving the router: faster, two spots of the same names.
        h.nav->popViewControllerAnimated(false);
        QCOMPARE(h.nav->topViewController(), h.screen);
        QVERIFY(!h.screen->session()->isScanning()); // leaving the screen stopped the test
        h.run("press,release");           // reset while stopped
        QVERIFY(h.screen->session()->recordedSpeeds().isEmpty());
        h.run("start,results:2,record,results:2,record");
        saveAs(h, "After moving router", nullptr);
        list = top<FZSavedSpotsViewController>(h);
        QVERIFY(list);
        QCOMPARE(names(list), (QStringList{"After moving router", "Ground floor"}));
        snap(h, "e2e-3-saved-list");

        // One set, sorted by name.
        list->didSelectRowAtIndexPath(list->tableView(), Brightmere::IndexPath(1, 0));
        auto *setScreen = top<FZSpotsSetViewController>(h);
        QVERIFY(setScreen);
        QCOMPARE(setScreen->spotsSet()->name(), QString("Ground floor"));
        setScreen->sortButtonTapped();
        QCOMPARE(setScreen->spotsSet()->isSortedAscending(), 1);
        snap(h, "e2e-4-spots-set");
        h.nav->popViewControllerAnimated(false);

        // The two sets compared, identical rows shown and hidden.
        list->enableCompareSetsMode();
        list->didSelectRowAtIndexPath(list->tableView(), Brightmere::IndexPath(1, 0));
        list->didSelectRowAtIndexPath(list->tableView(), Brightmere::IndexPath(0, 0));
        QVERIFY(list->readyToCompareSpotsSets());
        snap(h, "e2e-5-picked");
        list->forwardButton()->trigger();
        auto *compare = top<FZCompareSpotsSetsViewController>(h);
        QVERIFY(compare && compare->spotsSetsComparison());
        QCOMPARE(compare->spotsSetsComparison()->firstSet()->name(), QString("Ground floor"));
        QCOMPARE(compare->spotsSetsComparison()->count(), 2); // "Spot 1" and "Spot 2" in both
        const bool hiding = compare->spotsSetsComparison()->excludeIdenticalMatches();
        compare->hideIdenticalSwitch()->click();
        QCOMPARE(compare->spotsSetsComparison()->excludeIdenticalMatches(), !hiding);
        snap(h, "e2e-6-compare");
        h.nav->popViewControllerAnimated(false);

        // Continue recording "Ground floor": its spots come back to the test screen.
        list->cancelCompareButton()->trigger();
        list->didSelectRowAtIndexPath(list->tableView(), Brightmere::IndexPath(1, 0));
        setScreen = top<FZSpotsSetViewController>(h);
        QVERIFY(setScreen);
        setScreen->editSpotsSet();
        QCoreApplication::processEvents();
        QCOMPARE(h.nav->topViewController(), h.screen);
        QCOMPARE(h.labels(), (QStringList{"Spot 3", "Spot 2", "Spot 1"}));
        QCOMPARE(h.screen->session()->spotsSetName(), QString("Ground floor"));
        snap(h, "e2e-7-continue");
    }

private:
    template<typename T>
    static T *top(WifiScanHarness &h)
    {
        QCoreApplication::processEvents();
        return qobject_cast<T *>(h.nav->topViewController());
    }
    static QStringList names(FZSavedSpotsViewController *list)
    {
        QStringList result;
        for (const auto &set : list->allSpotsSets())
            result << set->name();
        return result;
    }
    static void snap(WifiScanHarness &h, const char *name)
    {
        QCoreApplication::processEvents();
        const QDir folder(QCoreApplication::applicationDirPath());
        QVERIFY(h.nav->grab().save(folder.filePath(QString::fromLatin1(name) + ".png")));
    }
    // Through the history menu and the title prompt, as a user does.
    static void saveAs(WifiScanHarness &h, const QString &title, const char *snapshot)
    {
        h.screen->historyButton()->trigger();
        QVERIFY(PopupInput::choose(PopupInput::shown(h.nav.get()), 1));
        QVERIFY(h.screen->saveFlow()->saveCurrentSpotAlert());
        h.screen->spotNameTextField()->setText(title);
        if (snapshot)
            snap(h, snapshot);
        QVERIFY(PopupInput::choose(h.screen->saveFlow()->saveCurrentSpotAlert(), 2));
    }
};

QTEST_MAIN(tst_SavedResultsEndToEnd)
#include "tst_SavedResultsEndToEnd.moc"
