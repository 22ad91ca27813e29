// Screens on their own and in a navigation controller: the lifecycle,
// segues, the back button and the bar.
#include "LogCapture.h"
#include "TestEnvironment.h"
#include "platform/views/BarButtonItem.h"
#include "platform/views/NavigationBar.h"
#include "platform/views/NavigationController.h"
#include "platform/views/NavigationItem.h"
#include "platform/views/Storyboard.h"
#include "platform/views/StoryboardSegue.h"
#include "platform/views/ViewController.h"

#include <QLabel>
#include <QMap>
#include <QPointer>
#include <QTest>
#include <QToolButton>
#include <QVBoxLayout>

using namespace Brightmere;

namespace {

using Journal = std::shared_ptr<QStringList>;

// Writes each lifecycle call into a journal shared by all screens of a test,
// as "<name>.<call>", so whole sequences can be compared.
class Recording : public ViewController
{
public:
    Recording(const QString &name, Journal journal, QWidget *parent = nullptr)
        : ViewController(parent), m_name(name), m_journal(std::move(journal))
    {
        setTitle(name);
    }

    int layoutCount = 0;
    bool hadNavigationControllerAtLoad = false;
    std::function<void()> onLoad, onDidAppear, onLayout;
    std::function<void(StoryboardSegue &, QObject *)> onPrepare;

protected:
    void viewDidLoad() override
    {
        hadNavigationControllerAtLoad = navigationController() != nullptr;
        record("didLoad");
        if (onLoad)
            onLoad();
    }
    void viewWillAppear(bool) override { record("willAppear"); }
    void viewDidAppear(bool) override
    {
        record("didAppear");
        if (onDidAppear)
            onDidAppear();
    }
    void viewWillDisappear(bool) override { record("willDisappear"); }
    void viewDidDisappear(bool) override { record("didDisappear"); }
    void viewWillLayoutSubviews() override
    {
        ++layoutCount;
        if (onLayout)
            onLayout();
    }
    void prepareForSegue(StoryboardSegue &segue, QObject *sender) override
    {
        record("prepare:" + segue.identifier());
        if (onPrepare)
            onPrepare(segue, sender);
    }

private:
    void record(const QString &call) { m_journal->append(m_name + '.' + call); }

    QString m_name;
    Journal m_journal;
};

} // namespace

class tst_NavigationController : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init()
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

    void cleanup()
    {
        m_nav.reset();
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
        m_env.reset();
    }

    void lifecycleOfAScreenOfItsOwn()
    {
        Recording screen("L", m_journal);
        QVERIFY(m_journal->isEmpty()); // nothing until it is asked
        // Loaded once, even when asked again inside viewDidLoad.
        screen.onLoad = [&screen] { screen.loadViewIfNeeded(); };
        screen.loadViewIfNeeded();
        screen.loadViewIfNeeded();
        // Asked to disappear when not shown: nothing; to appear twice: once.
        for (const bool appearing : {false, true, true}) {
            screen.beginAppearanceTransition(appearing, false);
            screen.endAppearanceTransition();
        }
        QCOMPARE(*m_journal, (QStringList{"L.didLoad", "L.willAppear", "L.didAppear"}));
        // Shown as a window, hidden, shown: one load.
        m_journal->clear();
        Recording window("W", m_journal);
        for (const bool visible : {true, false, true})
            window.setVisible(visible);
        QCOMPARE(*m_journal, (QStringList{"W.didLoad", "W.willAppear", "W.didAppear", "W.willDisappear",
                                          "W.didDisappear", "W.willAppear", "W.didAppear"}));
    }

    void layoutPasses()
    {
        Recording screen("L", m_journal);
        auto *label = new QLabel("short", &screen);
        (new QVBoxLayout(&screen))->addWidget(label);
        screen.resize(200, 200);
        QCoreApplication::processEvents();
        QCOMPARE(screen.layoutCount, 0); // none before the view has loaded
        screen.show();
        QVERIFY(QTest::qWaitForWindowExposed(&screen));
        QCoreApplication::processEvents();
        // A resize, a layout request, a child's new size hint: one pass each.
        const auto passes = [&screen](const std::function<void()> &trigger) {
            screen.layoutCount = 0;
            trigger();
            return screen.layoutCount;
        };
        QCOMPARE(passes([&] { screen.resize(300, 240); }), 1);
        QCOMPARE(passes([&] {
                     QEvent request(QEvent::LayoutRequest);
                     QCoreApplication::sendEvent(&screen, &request);
                 }),
                 1);
        QCOMPARE(passes([&] {
                     label->setText("a longer text");
                     QCoreApplication::sendPostedEvents(&screen, QEvent::LayoutRequest);
                 }),
                 1);
        // A pass that resizes the view does not recurse.
        screen.onLayout = [&screen] { screen.resize(screen.width() + 10, screen.height()); };
        QCOMPARE(passes([&] { screen.resize(320, 240); }), 1);
    }

    void lifecycleInAStack_data()
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
            << QStringList{"show", "push B", "hide", "mark", "pop", "show"}
            << QStringList{"A.willAppear", "A.didAppear"} << "A";
        QTest::newRow("segue: the source prepares, then the push lifecycle")
            << QStringList{"show", "mark", "segue toB"} << QStringList{"A.prepare:toB"} + pushB << "AB";
        QTest::newRow("segue from a destination: it shares its source's storyboard")
            << QStringList{"show", "segue toB", "mark", "segue toC"}
            << QStringList{"B.prepare:toC", "C.didLoad", "B.willDisappear", "C.willAppear", "B.didDisappear",
                           "C.didAppear"}
            << "ABC";
        QTest::newRow("unknown segue does nothing") << QStringList{"show", "mark", "segue toZ"} << QStringList{}
                                                    << "A";
    }

    void lifecycleInAStack()
    {
        QFETCH(QStringList, script);
        QFETCH(QStringList, expected);
        QFETCH(QString, stack);
        run(script);
        QCOMPARE(*m_journal, expected);
        QString names;
        for (ViewController *screen : m_nav->viewControllers()) {
            names += screen->title();
            QCOMPARE(screen->navigationController(), m_nav.get());
        }
        QCOMPARE(names, stack);
    }

    void prepareForSegueSeesTheDestinationFirst()
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
        Recording loose("L", m_journal);
        loose.setStoryboard(m_board.get());
        const qsizetype screens = m_screens.size();
        loose.performSegueWithIdentifier("toC", nullptr);
        QCOMPARE(m_screens.size(), screens);
    }

    void poppedScreensLeaveAndAreReleased()
    {
        run({"show", "push B", "push C", "push D"});
        QVERIFY(m_screens.value("D")->hadNavigationControllerAtLoad);
        QPointer<Recording> d = m_screens.value("D");
        QCOMPARE(m_nav->popViewControllerAnimated(true), d.data());
        QCOMPARE(m_nav->popToRootViewControllerAnimated(true),
                 (QList<ViewController *>{m_screens.value("B"), m_screens.value("C")}));
        // Still there for whoever holds them, no longer in the stack...
        QVERIFY(d && m_screens.value("B"));
        QCOMPARE(d->navigationController(), nullptr);
        // ...and gone once the event loop has had its turn.
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
        QVERIFY(!d && !m_screens.value("B") && !m_screens.value("C") && m_screens.value("A"));
        // A screen already in the stack is not pushed again.
        m_nav->pushViewController(m_screens.value("A"), true);
        QCOMPARE(m_nav->viewControllers().size(), 1);
    }

    void pushFromInsideATransitionWaitsForIt()
    {
        run({"show"});
        Recording *b = make("B");
        b->onDidAppear = [this] { m_nav->pushViewController(make("C"), true); };
        run({"mark"});
        m_nav->pushViewController(b, true);
        QCOMPARE(*m_journal,
                 (QStringList{"B.didLoad", "A.willDisappear", "B.willAppear", "A.didDisappear", "B.didAppear",
                              "C.didLoad", "B.willDisappear", "C.willAppear", "B.didDisappear", "C.didAppear"}));
    }

    void backButton_data()
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

    void backButton()
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
        const qsizetype depth = m_nav->viewControllers().size();
        run({"mark"});
        QTest::mouseClick(bar->backButton(), Qt::LeftButton);
        QCOMPARE(m_nav->viewControllers().size(), depth - 1);
        QCOMPARE(m_journal->value(0), script.last().section(' ', 1) + ".willDisappear");
    }

    void barFollowsTheTopItem()
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

private:
    Recording *make(const QString &name)
    {
        auto *screen = new Recording(name, m_journal);
        screen->setStoryboard(m_board.get());
        m_screens.insert(name, screen);
        return screen;
    }

    // Steps: "show", "hide", "push X", "pop", "popToRoot", "popTo X",
    // "segue <identifier>" from the top screen, and "mark", which empties
    // the journal.
    void run(const QStringList &script)
    {
        for (const QString &step : script) {
            const QString verb = step.section(' ', 0, 0);
            const QString name = step.section(' ', 1, 1);
            if (verb == "show" || verb == "hide")
                m_nav->setVisible(verb == "show");
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

    std::unique_ptr<TestEnvironment> m_env;
    Journal m_journal;
    std::unique_ptr<Storyboard> m_board;
    std::unique_ptr<NavigationController> m_nav;
    QMap<QString, QPointer<Recording>> m_screens;
};

QTEST_MAIN(tst_NavigationController)
#include "tst_NavigationController.moc"
