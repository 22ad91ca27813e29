#include "../session/WifiScanHarness.h"

#include "PopupInput.h"
#include <Brightmere/model/BMSDKUISettings.h>
#include <Brightmere/platform/views/NavigationBar.h>
#include <Brightmere/platform/views/PageControl.h>
#include <Brightmere/platform/views/Switch.h>
#include <Brightmere/screens/results/FZCompareSpotsSetsViewController.h>
#include <Brightmere/screens/results/FZSavedSpotsCell.h>
#include <Brightmere/screens/results/FZSavedSpotsViewController.h>
#include <Brightmere/screens/results/FZSpotsSetsHeaderCollectionViewCell.h>
#include <Brightmere/screens/results/FZSpotsSetViewController.h>
#include <Brightmere/screens/settings/FZMiscellaneousSettingsViewController.h>

#include <QApplication>
#include <QLineEdit>
#include <QToolButton>

namespace {

// The host's menu, as the demo has it: its left button opens the
// confirmation settings.
class SettingsHost : public ScanDelegateRecorder
{
public:
    void wifiScanVCleftMenuBtnTapped(BMWifiScanVC *vc) override
    {
        vc->performSegueWithIdentifier(QString::fromLatin1(BMSDKUIStoryboard::kShowMiscellaneousSettingsSegue),
                                       nullptr);
    }
};

} // namespace

// The kit used with the keyboard alone: every key goes to the widget that has
// the focus (or the window when none has), as the platform sends it.
class tst_KeyboardOnly : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void wholeFlow()
    {
        WifiScanHarness h({8.0, 12.0, 30.0});
        s_clock = &h.clock;
        auto forget = qScopeGuard([] { s_clock = nullptr; });
        // One set saved before, to compare the new one with.
        const WifiTestResult::Ptr kitchen = WifiTestResult::create(12.0);
        kitchen->setLabel("Kitchen");
        QVERIFY(FZHistoricalResultSpotsSet::saveSetWithName("Upstairs", "HomeNet", QDateTime({2026, 1, 2}, {10, 0}),
                                                            {kitchen}));
        h.useStoryboard();
        SettingsHost host;
        h.screen->setFzDelegate(&host);
        Brightmere::NavigationBar *bar = h.nav->navigationBar();

        // The tutorial's page dots come before Start; the arrows turn pages.
        QVERIFY(tabTo(h.screen->pageResults()));
        key(Qt::Key_Right);
        QCOMPARE(h.screen->pageResults()->currentPage(), 1);

        // Start with Space; it goes off while the tester sets up, and the
        // focus goes on to Record.
        QVERIFY(tabTo(h.screen->btnStartStop()));
        key(Qt::Key_Space);
        QCOMPARE(focus(), h.screen->btnRecordReset());
        h.clock.advance(WifiScanHarness::kInterval);
        QVERIFY(h.screen->session()->isScanning());

        // Space held on Record for three samples; the key's repeats change nothing.
        QTest::keyPress(focus(), Qt::Key_Space);
        for (int sample = 0; sample < 3; ++sample) {
            h.clock.advance(WifiScanHarness::kInterval);
            autoRepeat(Qt::Key_Space);
        }
        QVERIFY(h.screen->session()->isRecording());
        QTest::keyRelease(focus(), Qt::Key_Space);
        h.clock.advance(0.1); // no press followed: the release counts
        QVERIFY(!h.screen->session()->isRecording());

        // One round of Tab from Record: the spot, the bar's buttons left to
        // right, then down the screen.
        QList<QWidget *> round{h.row(0)->lblArea(), h.row(0)->reRecordView(), bar->leftButton(),
                               bar->rightButtons().value(1), bar->rightButtons().value(0), h.screen->btnSound(),
                               h.screen->btnStartStop(), h.screen->btnRecordReset()};
        for (QWidget *expected : round) {
            key(Qt::Key_Tab);
            QCOMPARE(focus(), expected);
        }
        // The spot's name, tabbed into unselected, typed over; Enter ends it.
        QVERIFY(tabTo(h.row(0)->lblArea()) && !h.row(0)->lblArea()->hasSelectedText());
        key(Qt::Key_A, Qt::ControlModifier);
        QTest::keyClicks(focus(), "Kitchen");
        key(Qt::Key_Return);
        QCOMPARE(h.labels(), QStringList{"Kitchen"});

        // Stop, then save under a typed title through the history menu.
        QVERIFY(tabTo(h.screen->btnStartStop()));
        key(Qt::Key_Space);
        QVERIFY(!h.screen->session()->isScanning());
        QVERIFY(tabTo(bar->rightButtons().value(1)));
        key(Qt::Key_Return);
        QVERIFY(pressOption(h, 1));
        QVERIFY(tabTo(h.screen->spotNameTextField()));
        QTest::keyClicks(focus(), "Ground floor");
        key(Qt::Key_Return);
        auto *list = top<FZSavedSpotsViewController>(h);
        QVERIFY(list);

        // The saved set opens with Enter; Escape goes back.
        QVERIFY(tabTo(savedRow(list, "Ground floor")));
        key(Qt::Key_Return);
        auto *setScreen = top<FZSpotsSetViewController>(h);
        QVERIFY(setScreen && setScreen->spotsSet()->name() == "Ground floor");
        key(Qt::Key_Escape);
        QCOMPARE(top<FZSavedSpotsViewController>(h), list);

        // Compare mode from the options; Space picks both sets; on to the
        // comparison, whose name heading sorts with Space.
        QVERIFY(tabTo(bar->rightButtons().value(0)));
        key(Qt::Key_Space);
        QVERIFY(pressOption(h, 1));
        for (const char *name : {"Ground floor", "Upstairs"}) {
            QVERIFY(tabTo(savedRow(list, name)));
            key(Qt::Key_Space);
        }
        QVERIFY(list->readyToCompareSpotsSets());
        QVERIFY(tabTo(bar->rightButtons().value(0)));
        key(Qt::Key_Space);
        auto *compare = top<FZCompareSpotsSetsViewController>(h);
        QVERIFY(compare && compare->spotsSetsComparison());
        const bool ascending = compare->spotsSetsComparison()->isSortedByNameAscending();
        QVERIFY(tabTo(compare->headerCells().value(0)->button()));
        key(Qt::Key_Space);
        QCOMPARE(compare->spotsSetsComparison()->isSortedByNameAscending(), !ascending);

        // Back out: the comparison, compare mode, the list.
        key(Qt::Key_Left, Qt::AltModifier);
        QCOMPARE(top<FZSavedSpotsViewController>(h), list);
        key(Qt::Key_Escape);
        key(Qt::Key_Escape);
        QCOMPARE(top<BMWifiScanVC>(h), h.screen);

        // A setting changed with Space, then back to the test screen.
        QVERIFY(tabTo(bar->leftButton()));
        key(Qt::Key_Space);
        auto *settings = top<FZMiscellaneousSettingsViewController>(h);
        const bool always = BMSDKUISettings::sharedInstance().alwaysReplaceRecording();
        QVERIFY(settings && tabTo(settings->confirmReplacementSwitch()));
        key(Qt::Key_Space);
        QCOMPARE(BMSDKUISettings::sharedInstance().alwaysReplaceRecording(), !always);
        QTest::keyClick(focus(), Qt::Key_Back);
        QCOMPARE(top<BMWifiScanVC>(h), h.screen);

        // The saved set's spots come back to the test screen to go on recording.
        QVERIFY(tabTo(bar->rightButtons().value(1)));
        key(Qt::Key_Space);
        QVERIFY(pressOption(h, 2));
        list = top<FZSavedSpotsViewController>(h);
        QVERIFY(list && tabTo(savedRow(list, "Ground floor")));
        key(Qt::Key_Return);
        setScreen = top<FZSpotsSetViewController>(h);
        QVERIFY(setScreen && tabTo(setScreen->findChild<QWidget *>("continueRecordingButton")));
        key(Qt::Key_Space);
        QCOMPARE(top<BMWifiScanVC>(h), h.screen);
        QCOMPARE(h.screen->session()->spotsSetName(), QString("Ground floor"));
        QCOMPARE(h.labels(), QStringList{"Kitchen"});

        const auto stored = FZHistoricalResultSpotsSet::spotsSetWithName("Ground floor");
        QVERIFY(stored);
        QCOMPARE(stored->spots().size(), 1);
        const WifiTestResult::Ptr spot = stored->spots().constFirst();
        QVERIFY(spot->label() == "Kitchen" && spot->isAverage());
        QCOMPARE(qRound(spot->duration() / WifiScanHarness::kInterval), 3); // three samples held
    }

    // Only the rows in view have widgets; Tab still goes through every row
    // in turn, each scrolled into view as it gets the focus.
    void tabReachesEveryRowOfALongList_data()
    {
        QTest::addColumn<bool>("forward");
        QTest::newRow("Tab, top to bottom") << true;
        QTest::newRow("Shift+Tab, bottom to top") << false;
    }
    void tabReachesEveryRowOfALongList()
    {
        QFETCH(bool, forward);
        TestEnvironment env;
        QStringList expected; // newest first, as the list shows them
        for (int i = 0; i < 30; ++i) {
            expected.prepend(QString("Set %1").arg(i));
            QVERIFY(FZHistoricalResultSpotsSet::saveSetWithName(expected.first(), "HomeNet",
                                                                QDateTime({2026, 1, 1}, {9, i}),
                                                                {WifiTestResult::create(10.0)}));
        }
        if (!forward)
            std::reverse(expected.begin(), expected.end());
        auto *list = new FZSavedSpotsViewController;
        Brightmere::NavigationController nav(list);
        nav.resize(375, 667);
        Brightmere::KeyWindow::makeKeyWindow(&nav);
        nav.show();
        QStringList visited;
        for (int step = 0; step < 40 && visited.size() < expected.size(); ++step) {
            QTest::keyClick(focus(), Qt::Key_Tab, forward ? Qt::NoModifier : Qt::ShiftModifier);
            if (auto *row = qobject_cast<FZSavedSpotsCell *>(focus())) {
                visited << row->spotsSet()->name();
                const QRect shown(row->mapTo(list->tableView()->viewport(), QPoint()), row->size());
                QVERIFY2(list->tableView()->viewport()->rect().contains(shown), qPrintable(visited.last()));
            }
        }
        QCOMPARE(visited, expected);
    }

private:
    // Where the platform sends a key: the open popup, else the focused
    // widget of the active window, else that window. A closed suggestion
    // list hands the activation back, as a window manager does.
    static QWidget *focus()
    {
        QCoreApplication::processEvents();
        QWidget *window = QApplication::activePopupWidget();
        if (!window && (!QApplication::activeWindow() || !QApplication::activeWindow()->isVisible())) {
            Brightmere::KeyWindow::keyWindow()->activateWindow();
            (void)QTest::qWaitForWindowActive(Brightmere::KeyWindow::keyWindow());
        }
        window = window ? window : QApplication::activeWindow();
        QWidget *widget = window ? window->focusWidget() : nullptr;
        return widget ? widget : window;
    }
    // A key pressed and let go; a moment passes on the test's clock after
    // it, so a release is taken as one (no repeat follows).
    static void key(Qt::Key k, Qt::KeyboardModifiers modifiers = Qt::NoModifier)
    {
        QTest::keyClick(focus(), k, modifiers);
        if (s_clock)
            s_clock->advance(0.1);
        QCoreApplication::processEvents();
    }
    static inline Brightmere::ManualClock *s_clock = nullptr;
    // A held key's repeats: a release and a press marked as repeats, and a
    // pair unmarked, as some window systems send them.
    static void autoRepeat(Qt::Key k)
    {
        for (bool marked : {true, false}) {
            for (QEvent::Type type : {QEvent::KeyRelease, QEvent::KeyPress}) {
                QKeyEvent event(type, k, Qt::NoModifier, QString(), marked);
                QApplication::sendEvent(focus(), &event);
            }
        }
    }
    // Tab, as often as it takes (within one round of a screen), until the
    // focus is on that widget.
    static bool tabTo(QWidget *target)
    {
        for (int step = 0; step < 40 && target && focus() != target; ++step)
            QTest::keyClick(focus(), Qt::Key_Tab);
        return focus() == target;
    }
    static bool pressOption(WifiScanHarness &h, int option)
    {
        const FZOptionsPopup *popup = PopupInput::shown(h.nav.get());
        for (QPushButton *button : popup ? popup->optionButtons() : QList<QPushButton *>()) {
            if (FZOptionsPopup::tagOf(button) == option && tabTo(button)) {
                key(Qt::Key_Space);
                return true;
            }
        }
        return false;
    }
    static FZSavedSpotsCell *savedRow(FZSavedSpotsViewController *list, const QString &name)
    {
        int row = 0;
        while (row < list->allSpotsSets().size() && list->allSpotsSets().at(row)->name() != name)
            ++row;
        return qobject_cast<FZSavedSpotsCell *>(list->tableView()->cellForRowAtIndexPath(Brightmere::IndexPath(row, 0)));
    }
    template<typename T>
    static T *top(WifiScanHarness &h)
    {
        QCoreApplication::processEvents();
        return qobject_cast<T *>(h.nav->topViewController());
    }
};

QTEST_MAIN(tst_KeyboardOnly)
#include "tst_KeyboardOnly.moc"
