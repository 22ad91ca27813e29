#include "TestEnvironment.h"
#include "core/BMSimulatedNetwork.h"
#include "i18n/BMI18NManager.h"
#include "platform/foundation/ManualClock.h"
#include "platform/views/Alert.h"
#include "platform/views/BarButtonItem.h"
#include "platform/views/KeyWindow.h"
#include "platform/views/NavigationBar.h"
#include "platform/views/NavigationController.h"
#include "platform/views/NavigationItem.h"
#include "ui/BMScreenChangeNotification.h"
#include "ui/BMLoadingView.h"
#include "ui/BMSDKUIBaseViewController.h"

#include <QLabel>
#include <QToolButton>
#include <QPointer>
#include <QTest>
#include <QThread>

#include <memory>

using namespace Brightmere;

namespace {

using Journal = std::shared_ptr<QStringList>;

// A screen that writes its own appearance work and text refreshes into the
// journal the screen-change subscriber also writes to.
class Screen : public BMSDKUIBaseViewController
{
    Q_OBJECT

public:
    Screen(const QString &name, Journal journal) : m_name(name), m_journal(std::move(journal)) { setObjectName(name); }
    BMGAScreenClass screenNameAndClassForEventTracker() const override { return {m_name, metaObject()}; }
    void refreshUITexts() override { ++refreshes; }
    int refreshes = 0;

protected:
    void viewWillAppear(bool animated) override
    {
        BMSDKUIBaseViewController::viewWillAppear(animated);
        m_journal->append(m_name + ".ownWork");
    }

private:
    QString m_name;
    Journal m_journal;
};

class OtherScreen : public Screen
{
    Q_OBJECT

public:
    using Screen::Screen;
};

class Recorder : public BMScreenChangeSubscriber
{
public:
    explicit Recorder(Journal journal) : m_journal(std::move(journal)) { BMScreenChangeNotification::subscribe(this); }
    ~Recorder() override { BMScreenChangeNotification::unsubscribe(this); }
    void notifyScreenChange(BMScreenChangeNotification *notification) override
    {
        m_journal->append("change:" + notification->screenName());
        classes.append(notification->screenClass());
        keys = notification->properties().keys();
    }
    QList<const QMetaObject *> classes;
    QStringList keys;

private:
    Journal m_journal;
};

// Which helper asks, whether its screen is gone first or it asks from a
// worker, the buttons shown, the one pressed and the handler calls it makes.
struct AlertCase { QString helper; bool screenGone, fromThread; QStringList buttons; int press, handled; };

} // namespace

class tst_BMSDKUIBaseViewController : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init()
    {
        m_env = std::make_unique<TestEnvironment>();
        m_journal = std::make_shared<QStringList>();
        m_navigation = std::make_unique<NavigationController>(new Screen("Root", m_journal));
        m_navigation->resize(375, 667);
    }

    void cleanup()
    {
        BMLoadingView::sharedInstance().hide();
        QCoreApplication::processEvents();
        m_navigation.reset();
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
        m_env.reset();
    }

    void screenChangeOncePerAppearanceBeforeOwnWork()
    {
        Recorder recorder(m_journal);
        const QStringList root{"change:Root", "Root.ownWork"}, next{"change:Next", "Next.ownWork"};
        m_navigation->show();
        QCOMPARE(*m_journal, root);
        push("Next", true);
        QCOMPARE(*m_journal, root + next);
        m_navigation->popViewControllerAnimated(false);
        m_navigation->hide();
        m_navigation->show();
        QCOMPARE(*m_journal, root + next + root + root); // the pop, then hidden and shown again
        const QMetaObject *screen = &Screen::staticMetaObject;
        QCOMPARE(recorder.classes, (QList<const QMetaObject *>{screen, &OtherScreen::staticMetaObject, screen, screen}));
        QCOMPARE(recorder.keys, (QStringList{"1", "2"}));
    }

    void textsRefreshOnAppearanceLayoutAndLanguage()
    {
        auto *root = static_cast<Screen *>(m_navigation->topViewController());
        m_navigation->show();
        const int afterAppearance = root->refreshes;
        QVERIFY(afterAppearance >= 1);
        m_navigation->resize(320, 480);
        QCoreApplication::processEvents();
        QVERIFY(root->refreshes > afterAppearance);
        const int beforeLanguage = root->refreshes;
        BMI18NManager::sharedInstance()->setCurrentLanguage("es");
        QCOMPARE(root->refreshes, beforeLanguage + 1);
        BMI18NManager::sharedInstance()->setCurrentLanguage("en");
    }

    void findViewControllerOfClassReturnsTheUpperMatch()
    {
        const auto found = [this](const QMetaObject &cls) {
            const auto *top = static_cast<Screen *>(m_navigation->topViewController());
            ViewController *match = top->findViewControllerOfClass(cls);
            return match ? match->objectName() : QString();
        };
        push("C");
        QCOMPARE(found(OtherScreen::staticMetaObject), QString());
        push("A", true);
        QCOMPARE(found(Screen::staticMetaObject), QStringLiteral("A")); // a subclass counts
        push("B", true);
        push("D");
        QCOMPARE(found(OtherScreen::staticMetaObject), QStringLiteral("B")); // the upper of two
        Screen outside("Outside", m_journal);
        QVERIFY(!outside.findViewControllerOfClass(BMSDKUIBaseViewController::staticMetaObject));
    }

    void alertHelpersQueueAndSkipAGoneScreen_data()
    {
        QTest::addColumn<AlertCase>("alert");
        const QStringList okCancel{"OK", "Cancel"};
        QTest::newRow("plain: ok only") << AlertCase{"plain", false, false, {"OK"}, 0, 0};
        QTest::newRow("on cancel: ok closes") << AlertCase{"cancel", false, false, okCancel, 0, 0};
        QTest::newRow("on cancel: cancel calls") << AlertCase{"cancel", false, false, okCancel, 1, 1};
        QTest::newRow("on ok: ok calls") << AlertCase{"ok", false, false, {"OK"}, 0, 1};
        QTest::newRow("actions in list order") << AlertCase{"actions", false, false, {"A", "B"}, 0, 1};
        QTest::newRow("from a worker thread") << AlertCase{"cancel", false, true, okCancel, 1, 1};
        QTest::newRow("screen gone before the queue runs") << AlertCase{"cancel", true, false, {}, 0, 0};
    }

    void alertHelpersQueueAndSkipAGoneScreen()
    {
        QFETCH(AlertCase, alert);
        const auto &[helper, screenGone, fromThread, buttons, press, handled] = alert;
        m_navigation->show();
        QPointer<Screen> screen = push("Next");
        int calls = 0;
        const auto ask = [&] {
            const auto handler = [&calls] { ++calls; };
            if (helper == "plain")
                screen->alertControllerWithTitle("T", "M");
            else if (helper == "cancel")
                screen->alertControllerWithTitleOnCancel("T", "M", handler);
            else if (helper == "ok")
                screen->alertControllerWithTitleOnOK("T", "M", handler);
            else
                screen->alertControllerWithTitle("T", "M", {AlertAction("A", AlertAction::Style::Default, handler),
                                                            AlertAction("B", AlertAction::Style::Cancel)});
        };
        if (fromThread) {
            std::unique_ptr<QThread> worker(QThread::create(ask));
            worker->start();
            QVERIFY(worker->wait(5000));
        } else {
            ask();
        }
        QVERIFY(!Alert::shownAlert(m_navigation.get())); // queued, not shown yet
        if (screenGone)
            delete screen.data();
        QCoreApplication::processEvents();
        Alert *shown = Alert::shownAlert(m_navigation.get());
        QCOMPARE(shown ? shown->buttonTitles() : QStringList{}, buttons);
        if (!shown)
            return;
        QCOMPARE(shown->title() + shown->message(), QStringLiteral("TM"));
        // No button of the kit's own takes the platform's cancel style, not even "cancel".
        if (helper != "actions")
            QCOMPARE(shown->actions().constLast().style(), AlertAction::Style::Default);
        QVERIFY(shown->pressButtonAt(press));
        QCOMPARE(calls, handled);
    }

    void timedAlertClosesThenRunsItsHandler()
    {
        m_navigation->show();
        Screen *screen = push("Next");
        ManualClock clock;
        screen->setClock(&clock);
        int finished = 0;
        bool goneWhenFinished = false;
        screen->alertControllerWithTitleForSeconds("Saved", "", 1.5f, [&] {
            ++finished;
            goneWhenFinished = !Alert::shownAlert(m_navigation.get());
        });
        QCoreApplication::processEvents();
        Alert *alert = Alert::shownAlert(m_navigation.get());
        QVERIFY(alert && alert->buttonTitles().isEmpty());
        clock.advance(1.49);
        QCOMPARE(finished, 0);
        QVERIFY(alert->isPresented());
        clock.advance(0.02);
        QCOMPARE(finished, 1);
        QVERIFY(goneWhenFinished);
        clock.advance(5.0);
        QCOMPARE(finished, 1);
    }

    void noConnectivityOnlyWhenUnreachable()
    {
        m_navigation->show();
        auto *root = static_cast<Screen *>(m_navigation->topViewController());
        BMSimulatedNetwork::shared().setReachabilityStatus(2); // another medium counts as reachable here
        QVERIFY(!root->showNoConnectivity());
        BMSimulatedNetwork::shared().setReachabilityStatus(0);
        QVERIFY(root->showNoConnectivity());
        QCoreApplication::processEvents();
        Alert *alert = Alert::shownAlert(m_navigation.get());
        QVERIFY(alert);
        QCOMPARE(alert->title(), BMI18NManager::stringForCode("bmOops"));
        QCOMPARE(alert->message(), BMI18NManager::stringForCode("connection_error_message"));
    }

    void barDecorationsAndBack()
    {
        m_navigation->show();
        Screen *screen = push("Next");
        NavigationBar *bar = m_navigation->navigationBar();
        screen->prepareHeaderViewForTitle("Fairzone Test");
        QWidget *titleView = screen->navigationItem()->titleView();
        QCOMPARE(titleView->size(), QSize(200, 44));
        QCOMPARE(titleView->findChild<QLabel *>()->text(), QString("Fairzone Test"));

        screen->setNavigationBarTransparent();
        QVERIFY(bar->isTransparent() && bar->isTranslucent());
        QCOMPARE(bar->backgroundColor().alpha(), 0);
        screen->resetNavigationBarToDefault();
        QVERIFY(!bar->isTransparent() && !bar->isTranslucent());

        screen->replaceNativeBackButton();
        QVERIFY(!screen->navigationItem()->leftBarButtonItem()->icon().isNull());
        QVERIFY(!bar->isBackButtonShown());
        QTest::mouseClick(bar->leftButton(), Qt::LeftButton);
        QCOMPARE(m_navigation->viewControllers().size(), 1);
    }

    // The shared loading overlay: shown over the key window, once, from any thread.
    void loadingCallsInOrderFromAnyThread()
    {
        QWidget window;
        showKeyWindow(&window);
        BMLoadingView &view = BMLoadingView::sharedInstance();
        // Calls (p show, c showCircle, h hide), whether from a worker; the plain and circle overlays left up.
        for (const auto &[calls, fromThread, plain, circle] :
             {std::tuple{"pp", false, true, false}, {"pc", false, true, true}, {"pch", false, false, false},
              {"pch", true, false, false}, {"c", true, false, true}}) {
            const auto run = [&view, calls] {
                for (const char *call = calls; *call; ++call)
                    *call == 'p' ? view.show() : *call == 'c' ? view.showCircle() : view.hide();
            };
            if (fromThread) {
                std::unique_ptr<QThread> worker(QThread::create(run));
                worker->start();
                QVERIFY(worker->wait(5000));
            } else {
                run();
                QVERIFY(!view.isShown() && !view.isCircleShown()); // queued: nothing before the current work ends
            }
            QCoreApplication::processEvents();
            QCOMPARE(view.isShown(), plain);
            QCOMPARE(view.isCircleShown(), circle);
            QCOMPARE(view.overlay() && view.overlay()->isVisible(), plain);
            QCOMPARE(view.circleOverlay() && view.circleOverlay()->isVisible(), circle);
            QCOMPARE(window.findChildren<QWidget *>(Qt::FindDirectChildrenOnly).size(), int(plain) + int(circle));
            view.hide();
            QCoreApplication::processEvents();
        }
    }

    void loadingFollowsTheWindowAndIsKeptForLaterCalls()
    {
        QWidget window;
        showKeyWindow(&window);
        BMLoadingView &view = BMLoadingView::sharedInstance();
        view.show();
        QCoreApplication::processEvents();
        QWidget *first = view.overlay();
        QCOMPARE(first->geometry(), window.rect());
        window.resize(320, 480);
        QCOMPARE(first->geometry(), QRect(0, 0, 320, 480));
        view.hide();
        QCoreApplication::processEvents();
        QVERIFY(first->parentWidget() != &window);
        view.show();
        QCoreApplication::processEvents();
        QCOMPARE(view.overlay(), first);
        // Without a key window it shows nowhere.
        view.hide();
        window.hide();
        view.showCircle();
        QCoreApplication::processEvents();
        QVERIFY(!view.isCircleShown());
    }

    void loadingShowsAgainInTheNextWindow()
    {
        BMLoadingView &view = BMLoadingView::sharedInstance();
        for (const bool deleteWindow : {false, true}) {
            // Its window closed, or deleted, while it was up.
            auto window = std::make_unique<QWidget>();
            showKeyWindow(window.get());
            view.show();
            QCoreApplication::processEvents();
            QVERIFY(view.overlay() && view.overlay()->isVisible());
            deleteWindow ? window.reset() : void(window->close());
            QWidget next;
            showKeyWindow(&next);
            view.show();
            QCoreApplication::processEvents();
            QVERIFY(view.overlay() && view.overlay()->isVisible());
            QCOMPARE(view.overlay()->window(), &next);
            view.hide();
            QCoreApplication::processEvents();
        }
    }

private:
    Screen *push(const QString &name, bool other = false)
    {
        Screen *screen = other ? new OtherScreen(name, m_journal) : new Screen(name, m_journal);
        m_navigation->pushViewController(screen, false);
        return screen;
    }

    static void showKeyWindow(QWidget *window)
    {
        window->resize(375, 667);
        window->show();
        QVERIFY(QTest::qWaitForWindowExposed(window));
        KeyWindow::makeKeyWindow(window);
    }

    std::unique_ptr<TestEnvironment> m_env;
    Journal m_journal;
    std::unique_ptr<NavigationController> m_navigation;
};

QTEST_MAIN(tst_BMSDKUIBaseViewController)
#include "tst_BMSDKUIBaseViewController.moc"
