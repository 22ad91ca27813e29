// Screens on their own and in a navigation controller (the lifecycle,
// segues, the back button and the bar), and what the platform tells screens
// and does for them (keyboard and application notifications, the click
// sound, the mail hand-over).
#include "LogCapture.h"
#include "TestEnvironment.h"
#include <Brightmere/platform/foundation/NotificationCenter.h>
#include <Brightmere/platform/views/ApplicationNotifications.h>
#include <Brightmere/platform/views/BarButtonItem.h>
#include <Brightmere/platform/views/KeyboardNotifications.h>
#include <Brightmere/platform/views/MailComposer.h>
#include <Brightmere/platform/views/NavigationBar.h>
#include <Brightmere/platform/views/NavigationController.h>
#include <Brightmere/platform/views/NavigationItem.h>
#include <Brightmere/platform/views/Storyboard.h>
#include <Brightmere/platform/views/StoryboardSegue.h>
#include <Brightmere/platform/views/ViewController.h>

#include <QAudioDevice>
#include <QFile>
#include <QLabel>
#include <QMap>
#include <QPointer>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <QTest>
#include <QToolButton>

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

    bool hadNavigationControllerAtLoad = false;
    std::function<void()> onLoad, onDidAppear;
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

        m_posted.clear();
        m_frames.clear();
        // Every case starts from a hidden keyboard, before anyone listens.
        QVERIFY(KeyboardNotifications::startWatching());
        KeyboardNotifications::handleInputMethodState(false, QRect());
        const QList<std::pair<QString, QChar>> names{
            {"ApplicationWillResignActiveNotification", 'R'}, {"ApplicationDidEnterBackgroundNotification", 'B'},
            {"ApplicationDidBecomeActiveNotification", 'A'}, {"KeyboardDidShowNotification", 'S'},
            {"KeyboardWillHideNotification", 'H'}};
        for (const auto &[name, letter] : names) {
            NotificationCenter::defaultCenter().addObserver(this, name, [this, letter](const Notification &n) {
                m_posted += letter;
                if (n.name.startsWith("Keyboard")) {
                    // Screens read a QRect under exactly this key.
                    QCOMPARE(n.userInfo.keys(), QStringList{"KeyboardFrameEndUserInfoKey"});
                    QCOMPARE(n.userInfo.value("KeyboardFrameEndUserInfoKey").typeId(), QMetaType::QRect);
                    m_frames.append(n.userInfo.value("KeyboardFrameEndUserInfoKey").toRect());
                }
            });
        }
        m_path = qgetenv("PATH");
    }

    void cleanup()
    {
        NotificationCenter::defaultCenter().removeObserver(this);
        MailComposer::setOpener({});
        qputenv("PATH", m_path);
        m_nav.reset();
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
        m_env.reset();
    }

    void inputMethodReports()
    {
        const QRect low(0, 544, 390, 300), high(0, 500, 390, 344);
        // The same report again posts nothing, a new frame while up posts did-show again, down while down nothing.
        for (const auto &[visible, frame] : {std::pair{true, low}, {true, low}, {true, high}, {false, QRect()},
                                             {false, low}, {true, low}})
            KeyboardNotifications::handleInputMethodState(visible, frame);
        QCOMPARE(m_posted, QStringLiteral("SSHS"));
        QCOMPARE(m_frames, (QList<QRect>{low, high, QRect(), low}));
    }

    void applicationStateChanges()
    {
        const auto posted = [this](const QList<Qt::ApplicationState> &states) {
            // The watcher's path: settle on the first state, then follow the rest.
            ApplicationNotifications::handleApplicationStateChanged(states.first());
            m_posted.clear();
            for (Qt::ApplicationState state : states.mid(1))
                ApplicationNotifications::handleApplicationStateChanged(state);
            return m_posted;
        };
        const auto active = Qt::ApplicationActive, inactive = Qt::ApplicationInactive;
        const auto hidden = Qt::ApplicationHidden, suspended = Qt::ApplicationSuspended;
        QCOMPARE(posted({inactive, hidden}), QStringLiteral("B"));
        QCOMPARE(posted({active, suspended}), QStringLiteral("RB")); // straight there: resign, then background
        // Hidden: in front but not active yet, or still in the background.
        QCOMPARE(posted({hidden, inactive}) + posted({hidden, suspended}), QString());
        // To the background and back, a repeat posting once.
        QCOMPARE(posted({active, inactive, inactive, suspended, inactive, active}), QStringLiteral("RBA"));
    }

    void mailtoEncoding()
    {
        const auto url = [](const QStringList &to, const QString &subject, const QString &body) {
            MailComposer composer;
            composer.setToRecipients(to);
            composer.setSubject(subject);
            composer.setMessageBody(body);
            return composer.mailtoUrl().toEncoded();
        };
        // Ampersand, equals, question, hash, plus and percent stay inside; non-ASCII is UTF-8.
        QCOMPARE(url({}, "A&B Küche", "x=1&y=2?#3+100% 客厅"),
                 QByteArray("mailto:?subject=A%26B%20K%C3%BCche&body=x%3D1%26y%3D2%3F%233%2B100%25%20%E5%AE%A2%E5%8E%85"));
        // Recipients joined by commas, blanks dropped; spaces are %20, never +;
        // a subject keeps to one line, the body's line breaks travel as CRLF.
        QCOMPARE(url({"a@example.com", " ", " b+c@example.org "}, "first\nsecond", "Living Room\nHall\r\nAttic\rCellar"),
                 QByteArray("mailto:a@example.com,b%2Bc@example.org?subject=first%20second"
                            "&body=Living%20Room%0D%0AHall%0D%0AAttic%0D%0ACellar"));
    }

    void presentHandsTheUrlToTheOpener()
    {
        QList<QUrl> opened;
        bool take = true;
        MailComposer::setOpener([&](const QUrl &url) {
            opened.append(url);
            return take;
        });
        MailComposer composer;
        composer.setMessageBody("Kitchen\nHall");
        QSignalSpy finished(&composer, &MailComposer::finished);
        LogCapture log;
        QCOMPARE(composer.present(), MailComposer::Result::Sent);
        take = false;
        QCOMPARE(composer.present(), MailComposer::Result::Failed);
        QCOMPARE(opened, (QList<QUrl>{composer.mailtoUrl(), composer.mailtoUrl()}));
        QCOMPARE(finished.count(), 2);
        QCOMPARE(finished.at(1).at(0).value<MailComposer::Result>(), MailComposer::Result::Failed);
        QVERIFY(!log.text().contains("Kitchen")); // the user's text stays out of the log
    }

    void canSendMailAsksTheDesktop()
    {
#if !defined(Q_OS_LINUX) || defined(Q_OS_ANDROID)
        QSKIP("the desktop is asked on Linux only");
#endif
        // A handler is set; none (an empty answer); no xdg-mime on this system.
        for (const auto &[script, canSend] : {std::pair{"echo mailer.desktop", true}, {"echo", false}, {"", false}}) {
            QTemporaryDir bin;
            QFile tool(bin.filePath("xdg-mime"));
            if (*script) {
                QVERIFY(tool.open(QIODevice::WriteOnly));
                tool.write(QByteArray("#!/bin/sh\n") + script + "\n");
                tool.close();
                tool.setPermissions(QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner);
            }
            qputenv("PATH", bin.path().toLocal8Bit());
            QCOMPARE(MailComposer::canSendMail(), canSend);
        }
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

    void lifecycleInAStack_data()
    {
        QTest::addColumn<QStringList>("script");
        QTest::addColumn<QStringList>("expected");
        QTest::addColumn<QString>("stack");
        const QStringList pushB{"B.didLoad", "A.willDisappear", "B.willAppear", "A.didDisappear", "B.didAppear"};
        QTest::newRow("showing loads and shows the root")
            << QStringList{"show"} << QStringList{"A.didLoad", "A.willAppear", "A.didAppear"} << "A";
        QTest::newRow("pop mirrors push")
            << QStringList{"show", "push B", "mark", "pop"}
            << QStringList{"B.willDisappear", "A.willAppear", "B.didDisappear", "A.didAppear"} << "A";
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
        // A push: load, old will go, new will come, old gone, new there.
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
        run(fetched<QStringList>("script"));
        QTEST(*m_journal, "expected");
        QString names;
        for (ViewController *screen : m_nav->viewControllers()) {
            names += screen->title();
            QCOMPARE(screen->navigationController(), m_nav.get());
        }
        QCOMPARE(names, fetched<QString>("stack"));
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

    void backButton()
    {
        NavigationBar *bar = m_nav->navigationBar();
        run({"show"});
        QVERIFY(!bar->isBackButtonShown()); // the root alone has none
        run({"push B", "push C"});
        QCOMPARE(bar->backButton()->text(), QStringLiteral("B")); // the title of the screen below
        run({"mark"});
        QTest::mouseClick(bar->backButton(), Qt::LeftButton);
        QCOMPARE(m_nav->viewControllers().size(), 2);
        QCOMPARE(m_journal->value(0), QStringLiteral("C.willDisappear"));
        QCOMPARE(bar->backButton()->text(), QStringLiteral("A"));
        // The top item hides it; a left button takes its place.
        NavigationItem *item = m_nav->topViewController()->navigationItem();
        item->setHidesBackButton(true);
        QVERIFY(!bar->isBackButtonShown());
        item->setHidesBackButton(false);
        QVERIFY(bar->isBackButtonShown() && !bar->leftButton());
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

    // Steps: "show", "hide", "push X", "pop", "popTo X",
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
    QString m_posted; // R resign, B background, A active; S keyboard did show, H will hide
    QList<QRect> m_frames;
    QByteArray m_path;
};

QTEST_MAIN(tst_NavigationController)
#include "tst_NavigationController.moc"
