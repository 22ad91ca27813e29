#include "LogCapture.h"
#include "RecordingViewController.h"
#include "TestEnvironment.h"
#include "platform/views/NavigationBar.h"
#include "platform/views/NavigationController.h"

#include <QMap>
#include <QPointer>
#include <QStackedWidget>
#include <QTest>
#include <QToolButton>

using namespace Brightmere;

class tst_NavigationController : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();

    void lifecycleOrder_data();
    void lifecycleOrder();
    void viewDidLoadOnceAcrossReappearances();
    void controllersLearnTheirNavigationController();
    void poppedControllersAreReleasedAfterDidDisappear();
    void popReturnsWhatLeftTheStack();
    void pushFromInsideATransitionWaitsForIt();
    void badPushesAreLoggedAndIgnored_data();
    void badPushesAreLoggedAndIgnored();
    void backButtonPops();
    void contentPlacementFollowsTheBar_data();
    void contentPlacementFollowsTheBar();

private:
    RecordingViewController *make(const QString &name);
    void run(const QStringList &script);

    std::unique_ptr<TestEnvironment> m_env;
    RecordingViewController::Journal m_journal;
    std::unique_ptr<NavigationController> m_nav;
    QMap<QString, QPointer<RecordingViewController>> m_screens;
};

void tst_NavigationController::init()
{
    m_env = std::make_unique<TestEnvironment>();
    m_journal = std::make_shared<QStringList>();
    m_screens.clear();
    m_nav = std::make_unique<NavigationController>(make(QStringLiteral("A")));
    m_nav->resize(390, 600);
}

void tst_NavigationController::cleanup()
{
    m_nav.reset();
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    m_env.reset();
}

RecordingViewController *tst_NavigationController::make(const QString &name)
{
    auto *screen = new RecordingViewController(name, m_journal);
    m_screens.insert(name, screen);
    return screen;
}

// Runs a small script: "show", "hide", "push X", "pop", "popToRoot",
// "popTo X", and "mark" which empties the journal.
void tst_NavigationController::run(const QStringList &script)
{
    for (const QString &step : script) {
        const QStringList words = step.split(QLatin1Char(' '));
        const QString verb = words.first();
        if (verb == QLatin1String("show"))
            m_nav->show();
        else if (verb == QLatin1String("hide"))
            m_nav->hide();
        else if (verb == QLatin1String("push"))
            m_nav->pushViewController(make(words.at(1)), true);
        else if (verb == QLatin1String("pop"))
            m_nav->popViewControllerAnimated(true);
        else if (verb == QLatin1String("popToRoot"))
            m_nav->popToRootViewControllerAnimated(false);
        else if (verb == QLatin1String("popTo"))
            m_nav->popToViewController(m_screens.value(words.at(1)), true);
        else if (verb == QLatin1String("mark"))
            m_journal->clear();
        else
            QFAIL(qPrintable(QStringLiteral("unknown step ") + step));
    }
}

void tst_NavigationController::lifecycleOrder_data()
{
    QTest::addColumn<QStringList>("script");
    QTest::addColumn<QStringList>("expected");
    QTest::addColumn<QStringList>("stack");

    QTest::newRow("showing loads and shows the root")
        << QStringList{"show"} << QStringList{"A.didLoad", "A.willAppear", "A.didAppear"} << QStringList{"A"};
    QTest::newRow("push: load, old will go, new will come, old gone, new there")
        << QStringList{"show", "mark", "push B"}
        << QStringList{"B.didLoad", "A.willDisappear", "B.willAppear", "A.didDisappear", "B.didAppear"}
        << QStringList{"A", "B"};
    QTest::newRow("pop mirrors push")
        << QStringList{"show", "push B", "mark", "pop"}
        << QStringList{"B.willDisappear", "A.willAppear", "B.didDisappear", "A.didAppear"} << QStringList{"A"};
    QTest::newRow("pop to root tells only the top and the root")
        << QStringList{"show", "push B", "push C", "push D", "mark", "popToRoot"}
        << QStringList{"D.willDisappear", "A.willAppear", "D.didDisappear", "A.didAppear"} << QStringList{"A"};
    QTest::newRow("pop to a middle screen tells only the top and it")
        << QStringList{"show", "push B", "push C", "push D", "mark", "popTo B"}
        << QStringList{"D.willDisappear", "B.willAppear", "D.didDisappear", "B.didAppear"}
        << QStringList{"A", "B"};
    QTest::newRow("pop at the root does nothing")
        << QStringList{"show", "mark", "pop"} << QStringList{} << QStringList{"A"};
    QTest::newRow("pop to the top itself does nothing")
        << QStringList{"show", "push B", "mark", "popTo B"} << QStringList{} << QStringList{"A", "B"};
    QTest::newRow("push before showing only loads; showing shows the top only")
        << QStringList{"push B", "show"} << QStringList{"B.didLoad", "B.willAppear", "B.didAppear"}
        << QStringList{"A", "B"};
    QTest::newRow("hiding and showing again sends the top away and back")
        << QStringList{"show", "push B", "mark", "hide", "show"}
        << QStringList{"B.willDisappear", "B.didDisappear", "B.willAppear", "B.didAppear"}
        << QStringList{"A", "B"};
    QTest::newRow("a pop while hidden is silent until shown again")
        << QStringList{"show", "push B", "hide", "mark", "pop", "show"}
        << QStringList{"A.willAppear", "A.didAppear"} << QStringList{"A"};
    QTest::newRow("push, push, pop: the whole sequence")
        << QStringList{"show", "push B", "push C", "pop"}
        << QStringList{"A.didLoad", "A.willAppear", "A.didAppear",
                       "B.didLoad", "A.willDisappear", "B.willAppear", "A.didDisappear", "B.didAppear",
                       "C.didLoad", "B.willDisappear", "C.willAppear", "B.didDisappear", "C.didAppear",
                       "C.willDisappear", "B.willAppear", "C.didDisappear", "B.didAppear"}
        << QStringList{"A", "B"};
}

void tst_NavigationController::lifecycleOrder()
{
    QFETCH(QStringList, script);
    QFETCH(QStringList, expected);
    QFETCH(QStringList, stack);

    run(script);
    QCOMPARE(*m_journal, expected);
    QStringList names;
    for (ViewController *screen : m_nav->viewControllers())
        names.append(screen->title());
    QCOMPARE(names, stack);
    QCOMPARE(m_nav->topViewController()->title(), stack.last());
}

void tst_NavigationController::viewDidLoadOnceAcrossReappearances()
{
    run({"show", "push B", "push C", "pop", "hide", "show", "push D", "pop", "pop"});
    QCOMPARE(m_screens.value("A")->loadCount, 1);
    QCOMPARE(m_screens.value("B")->loadCount, 1);
    QCOMPARE(m_journal->count("B.didLoad"), 1);
    QCOMPARE(m_journal->count("B.didAppear"), 4);
}

void tst_NavigationController::controllersLearnTheirNavigationController()
{
    run({"show", "push B"});
    RecordingViewController *b = m_screens.value("B");
    QVERIFY(b->hadNavigationControllerAtLoad);
    QCOMPARE(b->navigationController(), m_nav.get());
    QCOMPARE(m_screens.value("A")->navigationController(), m_nav.get());

    m_nav->popViewControllerAnimated(true);
    QVERIFY(b);
    QCOMPARE(b->navigationController(), nullptr);
}

void tst_NavigationController::poppedControllersAreReleasedAfterDidDisappear()
{
    run({"show", "push B", "push C"});
    QPointer<RecordingViewController> b = m_screens.value("B");
    QPointer<RecordingViewController> c = m_screens.value("C");
    m_nav->popToRootViewControllerAnimated(true);
    // Still there right after the transition, for whoever holds them...
    QVERIFY(b && c);
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    // ...and gone once the event loop has had its turn.
    QVERIFY(!b);
    QVERIFY(!c);
    QVERIFY(m_screens.value("A"));
}

void tst_NavigationController::popReturnsWhatLeftTheStack()
{
    run({"show", "push B", "push C", "push D"});
    QCOMPARE(m_nav->popViewControllerAnimated(true), m_screens.value("D").data());
    const QList<ViewController *> popped = m_nav->popToRootViewControllerAnimated(true);
    QCOMPARE(popped, (QList<ViewController *>{m_screens.value("B"), m_screens.value("C")}));
    QCOMPARE(m_nav->popViewControllerAnimated(true), nullptr);
}

void tst_NavigationController::pushFromInsideATransitionWaitsForIt()
{
    run({"show"});
    RecordingViewController *b = make("B");
    b->onDidAppear = [this] {
        // A screen that moves on as soon as it is shown.
        m_nav->pushViewController(make("C"), true);
    };
    run({"mark"});
    m_nav->pushViewController(b, true);
    QCOMPARE(*m_journal,
             (QStringList{"B.didLoad", "A.willDisappear", "B.willAppear", "A.didDisappear", "B.didAppear",
                          "C.didLoad", "B.willDisappear", "C.willAppear", "B.didDisappear", "C.didAppear"}));
    QCOMPARE(m_nav->viewControllers().size(), 3);
}

void tst_NavigationController::badPushesAreLoggedAndIgnored_data()
{
    QTest::addColumn<QString>("which");
    QTest::addColumn<QString>("logFragment");
    QTest::newRow("no screen") << "null" << "asked to push no screen";
    QTest::newRow("the screen already on top") << "top" << "already in a navigation stack";
    QTest::newRow("a screen of another stack") << "foreign" << "already in a navigation stack";
}

void tst_NavigationController::badPushesAreLoggedAndIgnored()
{
    QFETCH(QString, which);
    QFETCH(QString, logFragment);
    run({"show", "push B"});
    NavigationController other(make("X"));
    ViewController *screen = which == "top" ? m_screens.value("B").data()
                           : which == "foreign" ? m_screens.value("X").data()
                                                : nullptr;
    LogCapture log;
    run({"mark"});
    m_nav->pushViewController(screen, true);
    QVERIFY2(log.contains(logFragment), qPrintable(log.text()));
    QCOMPARE(*m_journal, QStringList{});
    QCOMPARE(m_nav->viewControllers().size(), 2);
}

void tst_NavigationController::backButtonPops()
{
    run({"show", "push B", "mark"});
    QToolButton *back = m_nav->navigationBar()->backButton();
    QVERIFY(m_nav->navigationBar()->isBackButtonShown());
    QTest::mouseClick(back, Qt::LeftButton);
    QCOMPARE(*m_journal, (QStringList{"B.willDisappear", "A.willAppear", "B.didDisappear", "A.didAppear"}));
    QCOMPARE(m_nav->topViewController(), m_screens.value("A").data());
    QVERIFY(!m_nav->navigationBar()->isBackButtonShown());
}

void tst_NavigationController::contentPlacementFollowsTheBar_data()
{
    QTest::addColumn<bool>("hidden");
    QTest::addColumn<bool>("translucent");
    QTest::addColumn<int>("contentTop");
    QTest::newRow("opaque bar: content below it") << false << false << 44;
    QTest::newRow("translucent bar: content runs under it") << false << true << 0;
    QTest::newRow("hidden bar: content from the top") << true << false << 0;
}

void tst_NavigationController::contentPlacementFollowsTheBar()
{
    QFETCH(bool, hidden);
    QFETCH(bool, translucent);
    QFETCH(int, contentTop);
    run({"show"});
    m_nav->navigationBar()->setTranslucent(translucent);
    m_nav->setNavigationBarHidden(hidden, false);
    ViewController *top = m_nav->topViewController();
    QCOMPARE(top->mapTo(m_nav.get(), QPoint(0, 0)).y(), contentTop);
    QCOMPARE(m_nav->isNavigationBarHidden(), hidden);
    QCOMPARE(top->width(), 390);
}

QTEST_MAIN(tst_NavigationController)
#include "tst_NavigationController.moc"
