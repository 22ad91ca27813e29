#include "LogCapture.h"
#include "RecordingViewController.h"
#include "TestEnvironment.h"
#include "platform/views/BarButtonItem.h"
#include "platform/views/NavigationBar.h"
#include "platform/views/NavigationItem.h"
#include "platform/views/Storyboard.h"

#include <QLabel>
#include <QMap>
#include <QPointer>
#include <QTest>
#include <QToolButton>

using namespace Brightmere;

class tst_NavigationController : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup()
    {
        m_nav.reset();
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
        m_env.reset();
    }
    void lifecycleOrder_data();
    void lifecycleOrder();
    void prepareForSegueSeesTheDestinationFirst();
    void poppedScreensLeaveAndAreReleased();
    void pushFromInsideATransitionWaitsForIt();
    void backButton_data();
    void backButton();
    void barFollowsTheTopItem();

private:
    RecordingViewController *make(const QString &name);
    void run(const QStringList &script);

    std::unique_ptr<TestEnvironment> m_env;
    RecordingViewController::Journal m_journal;
    std::unique_ptr<Storyboard> m_board;
    std::unique_ptr<NavigationController> m_nav;
    QMap<QString, QPointer<RecordingViewController>> m_screens;
};

void tst_NavigationController::init()
{
    m_env = std::make_unique<TestEnvironment>();
    m_journal = std::make_shared<QStringList>();
    m_screens.clear();
    m_board = std::make_unique<Storyboard>();
    // Segue "toX" makes screen X; only this test's storyboard knows them.
    for (const QString name : {"B", "C"})
        m_board->registerSegue("to" + name, [this, name] { return make(name); });
    m_nav = std::make_unique<NavigationController>(make("A"));
    m_nav->resize(390, 600);
}

RecordingViewController *tst_NavigationController::make(const QString &name)
{
    auto *screen = new RecordingViewController(name, m_journal);
    screen->setStoryboard(m_board.get());
    m_screens.insert(name, screen);
    return screen;
}

// Steps: "show", "hide", "push X", "pop", "popToRoot", "popTo X",
// "segue <identifier>" from the top screen, and "mark", which empties the
// journal.
void tst_NavigationController::run(const QStringList &script)
{
    for (const QString &step : script) {
        const QString verb = step.section(' ', 0, 0);
        const QString name = step.section(' ', 1, 1);
        if (verb == "show")
            m_nav->show();
        else if (verb == "hide")
            m_nav->hide();
        else if (verb == "push")
            m_nav->pushViewController(make(name), true);
        else if (verb == "pop")
            m_nav->popViewControllerAnimated(true);
        else if (verb == "popToRoot")
            m_nav->popToRootViewControllerAnimated(false);
        else if (verb == "popTo")
            m_nav->popToViewController(m_screens.value(name), true);
        else if (verb == "segue")
            m_nav->topViewController()->performSegueWithIdentifier(name, nullptr);
        else if (verb == "mark")
            m_journal->clear();
    }
}

void tst_NavigationController::lifecycleOrder_data()
{
    QTest::addColumn<QStringList>("script");
    QTest::addColumn<QStringList>("expected");
    QTest::addColumn<QString>("stack");
    const QStringList pushB{"B.didLoad", "A.willDisappear", "B.willAppear", "A.didDisappear", "B.didAppear"};

    QTest::newRow("showing loads and shows the root")
        << QStringList{"show"} << QStringList{"A.didLoad", "A.willAppear", "A.didAppear"} << "A";
    QTest::newRow("push: load, old will go, new will come, old gone, new there")
        << QStringList{"show", "mark", "push B"} << pushB << "AB";
    QTest::newRow("pop mirrors push")
        << QStringList{"show", "push B", "mark", "pop"}
        << QStringList{"B.willDisappear", "A.willAppear", "B.didDisappear", "A.didAppear"} << "A";
    QTest::newRow("pop to root tells only the top and the root")
        << QStringList{"show", "push B", "push C", "push D", "mark", "popToRoot"}
        << QStringList{"D.willDisappear", "A.willAppear", "D.didDisappear", "A.didAppear"} << "A";
    QTest::newRow("pop to a middle screen tells only the top and it")
        << QStringList{"show", "push B", "push C", "push D", "mark", "popTo B"}
        << QStringList{"D.willDisappear", "B.willAppear", "D.didDisappear", "B.didAppear"} << "AB";
    QTest::newRow("pop at the root does nothing") << QStringList{"show", "mark", "pop"} << QStringList{} << "A";
    QTest::newRow("push before showing only loads; showing shows the top only")
        << QStringList{"push B", "show"} << QStringList{"B.didLoad", "B.willAppear", "B.didAppear"} << "AB";
    QTest::newRow("hiding and showing again sends the top away and back")
        << QStringList{"show", "push B", "mark", "hide", "show"}
        << QStringList{"B.willDisappear", "B.didDisappear", "B.willAppear", "B.didAppear"} << "AB";
    QTest::newRow("a pop while hidden is silent until shown again")
        << QStringList{"show", "push B", "hide", "mark", "pop", "show"} << QStringList{"A.willAppear", "A.didAppear"}
        << "A";
    QTest::newRow("segue: the source prepares, then the push lifecycle")
        << QStringList{"show", "mark", "segue toB"} << QStringList{"A.prepare:toB"} + pushB << "AB";
    QTest::newRow("segue from a destination: it shares its source's storyboard")
        << QStringList{"show", "segue toB", "mark", "segue toC"}
        << QStringList{"B.prepare:toC", "C.didLoad", "B.willDisappear", "C.willAppear", "B.didDisappear",
                       "C.didAppear"}
        << "ABC";
    QTest::newRow("unknown segue does nothing") << QStringList{"show", "mark", "segue toZ"} << QStringList{} << "A";
}

void tst_NavigationController::lifecycleOrder()
{
    QFETCH(QStringList, script);
    QFETCH(QStringList, expected);
    QFETCH(QString, stack);

    LogCapture log;
    run(script);
    QCOMPARE(*m_journal, expected);
    QString names;
    for (ViewController *screen : m_nav->viewControllers()) {
        names += screen->title();
        QCOMPARE(screen->navigationController(), m_nav.get());
    }
    QCOMPARE(names, stack);
    if (script.last().startsWith("segue") && expected.isEmpty())
        QVERIFY(log.contains("no segue with identifier"));
}

void tst_NavigationController::prepareForSegueSeesTheDestinationFirst()
{
    run({"show"});
    QObject button;
    bool prepared = false;
    m_screens.value("A")->onPrepare = [&](StoryboardSegue &segue, QObject *sender) {
        prepared = true;
        QCOMPARE(segue.identifier(), QStringLiteral("toB"));
        QCOMPARE(segue.sourceViewController(), m_screens.value("A").data());
        QCOMPARE(sender, &button);
        QVERIFY(segue.destinationViewController() && !segue.destinationViewController()->isViewLoaded());
        segue.destinationViewController()->setTitle("Prepared");
    };
    m_screens.value("A")->performSegueWithIdentifier("toB", &button);
    QVERIFY(prepared);
    QCOMPARE(m_nav->topViewController()->title(), QStringLiteral("Prepared"));

    // Outside any navigation controller nothing is made, nothing happens.
    RecordingViewController loose("L", m_journal);
    loose.setStoryboard(m_board.get());
    const int screens = int(m_screens.size());
    LogCapture log;
    loose.performSegueWithIdentifier("toC", nullptr);
    QVERIFY(log.contains("needs a navigation controller"));
    QCOMPARE(m_screens.size(), screens);
}

void tst_NavigationController::poppedScreensLeaveAndAreReleased()
{
    run({"show", "push B", "push C", "push D"});
    QVERIFY(m_screens.value("D")->hadNavigationControllerAtLoad);
    QPointer<RecordingViewController> d = m_screens.value("D");
    QCOMPARE(m_nav->popViewControllerAnimated(true), d.data());
    QCOMPARE(m_nav->popToRootViewControllerAnimated(true),
             (QList<ViewController *>{m_screens.value("B"), m_screens.value("C")}));
    // Still there for whoever holds them, no longer in the stack...
    QVERIFY(d && m_screens.value("B"));
    QCOMPARE(d->navigationController(), nullptr);
    // ...and gone once the event loop has had its turn.
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    QVERIFY(!d && !m_screens.value("B") && !m_screens.value("C") && m_screens.value("A"));

    LogCapture log;
    m_nav->pushViewController(m_screens.value("A"), true);
    QVERIFY(log.contains("already in a navigation stack"));
    QCOMPARE(m_nav->viewControllers().size(), 1);
}

void tst_NavigationController::pushFromInsideATransitionWaitsForIt()
{
    run({"show"});
    RecordingViewController *b = make("B");
    b->onDidAppear = [this] { m_nav->pushViewController(make("C"), true); };
    run({"mark"});
    m_nav->pushViewController(b, true);
    QCOMPARE(*m_journal,
             (QStringList{"B.didLoad", "A.willDisappear", "B.willAppear", "A.didDisappear", "B.didAppear",
                          "C.didLoad", "B.willDisappear", "C.willAppear", "B.didDisappear", "C.didAppear"}));
}

void tst_NavigationController::backButton_data()
{
    QTest::addColumn<QStringList>("script");
    QTest::addColumn<bool>("leftItem");
    QTest::addColumn<bool>("hidesBack");
    QTest::addColumn<QString>("back"); // its text; null when not shown
    QTest::newRow("root alone: no back") << QStringList{"show"} << false << false << QString();
    QTest::newRow("second screen: back to the root") << QStringList{"show", "push B"} << false << false << "A";
    QTest::newRow("third screen: back to the second")
        << QStringList{"show", "push B", "push C"} << false << false << "B";
    QTest::newRow("a left button takes its place") << QStringList{"show", "push B"} << true << false << QString();
    QTest::newRow("the top item hides it") << QStringList{"show", "push B"} << false << true << QString();
}

void tst_NavigationController::backButton()
{
    QFETCH(QStringList, script);
    QFETCH(bool, leftItem);
    QFETCH(bool, hidesBack);
    QFETCH(QString, back);
    run(script);
    NavigationItem *item = m_nav->topViewController()->navigationItem();
    if (leftItem)
        item->setLeftBarButtonItem(new BarButtonItem("Edit", BarButtonItem::Style::Plain, {}));
    item->setHidesBackButton(hidesBack);

    NavigationBar *bar = m_nav->navigationBar();
    QCOMPARE(bar->isBackButtonShown(), !back.isNull());
    QCOMPARE(bar->leftButton() != nullptr, leftItem);
    if (back.isNull())
        return;
    QCOMPARE(bar->backButton()->text(), back);
    const int depth = int(m_nav->viewControllers().size());
    run({"mark"});
    QTest::mouseClick(bar->backButton(), Qt::LeftButton);
    QCOMPARE(m_nav->viewControllers().size(), depth - 1);
    QCOMPARE(m_journal->value(0), script.last().section(' ', 1) + ".willDisappear");
}

void tst_NavigationController::barFollowsTheTopItem()
{
    run({"show", "push B"});
    NavigationBar *bar = m_nav->navigationBar();
    m_screens.value("B")->setTitle("Renamed");
    QCOMPARE(bar->titleLabel()->text(), QStringLiteral("Renamed"));
    QVERIFY(qAbs(bar->titleLabel()->geometry().center().x() - bar->width() / 2) <= 1);

    // Buttons: the first right item is the rightmost; taps run the actions.
    QStringList taps;
    NavigationItem *item = m_screens.value("B")->navigationItem();
    item->setRightBarButtonItems({new BarButtonItem("Share", BarButtonItem::Style::Done, [&] { taps << "Share"; }),
                                  new BarButtonItem("Add", BarButtonItem::Style::Plain, [&] { taps << "Add"; })});
    const QList<QToolButton *> right = bar->rightButtons();
    QVERIFY(right.at(0)->geometry().left() > right.at(1)->geometry().right());
    QTest::mouseClick(right.at(1), Qt::LeftButton);
    item->rightBarButtonItem()->setEnabled(false);
    QTest::mouseClick(bar->rightButtons().at(0), Qt::LeftButton);
    QCOMPARE(taps, QStringList{"Add"});

    // A custom title view stands in for the label while its screen is on top.
    auto *header = new QWidget;
    header->resize(200, 44);
    m_screens.value("A")->navigationItem()->setTitleView(header);
    QVERIFY(header->isHidden());
    m_nav->popViewControllerAnimated(true);
    QCOMPARE(bar->shownTitleWidget(), header);
    QCOMPARE(header->geometry(), QRect((390 - 200) / 2, 0, 200, 44));
    m_screens.value("B")->setTitle("Gone"); // popped: the bar no longer listens
    QVERIFY(bar->titleLabel()->isHidden());
}

QTEST_MAIN(tst_NavigationController)
#include "tst_NavigationController.moc"
