#include "LogCapture.h"
#include "RecordingViewController.h"
#include "TestEnvironment.h"
#include "platform/views/NavigationController.h"
#include "platform/views/Storyboard.h"

#include <QPointer>
#include <QTest>

using namespace Brightmere;

class tst_StoryboardSegue : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();

    void performSegue_data();
    void performSegue();
    void prepareSeesTheDestinationBeforeItsLifecycle();
    void destinationInheritsTheStoryboard();
    void registeringAgainReplacesTheFactory();

private:
    std::unique_ptr<TestEnvironment> m_env;
    RecordingViewController::Journal m_journal;
    std::unique_ptr<Storyboard> m_board;
    int m_factoryCalls = 0;
};

void tst_StoryboardSegue::init()
{
    m_env = std::make_unique<TestEnvironment>();
    m_journal = std::make_shared<QStringList>();
    m_board = std::make_unique<Storyboard>();
    m_factoryCalls = 0;
    m_board->registerSegue("showDetailSegue", [this] {
        ++m_factoryCalls;
        return new RecordingViewController("B", m_journal);
    });
}

void tst_StoryboardSegue::cleanup()
{
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    m_board.reset();
    m_env.reset();
}

void tst_StoryboardSegue::performSegue_data()
{
    QTest::addColumn<QString>("identifier");
    QTest::addColumn<bool>("inNavigation");
    QTest::addColumn<QStringList>("expected");
    QTest::addColumn<int>("stackSize");
    QTest::addColumn<QString>("logFragment");

    QTest::newRow("known identifier: prepare, then the push lifecycle")
        << "showDetailSegue" << true
        << QStringList{"A.prepare:showDetailSegue", "B.didLoad", "A.willDisappear", "B.willAppear",
                       "A.didDisappear", "B.didAppear"}
        << 2 << QString();
    QTest::newRow("unknown identifier does nothing")
        << "noSuchSegue" << true << QStringList{} << 1 << "no segue with identifier 'noSuchSegue'";
    QTest::newRow("identifiers are case sensitive")
        << "ShowDetailSegue" << true << QStringList{} << 1 << "no segue with identifier";
    QTest::newRow("source outside any navigation controller does nothing")
        << "showDetailSegue" << false << QStringList{} << 0 << "needs a navigation controller";
}

void tst_StoryboardSegue::performSegue()
{
    QFETCH(QString, identifier);
    QFETCH(bool, inNavigation);
    QFETCH(QStringList, expected);
    QFETCH(int, stackSize);
    QFETCH(QString, logFragment);

    auto *source = new RecordingViewController("A", m_journal);
    source->setStoryboard(m_board.get());
    std::unique_ptr<NavigationController> nav;
    std::unique_ptr<ViewController> loose;
    if (inNavigation) {
        nav = std::make_unique<NavigationController>(source);
        nav->show();
    } else {
        loose.reset(source);
    }
    m_journal->clear();

    LogCapture log;
    source->performSegueWithIdentifier(identifier, nullptr);
    QCOMPARE(*m_journal, expected);
    QCOMPARE(nav ? int(nav->viewControllers().size()) : 0, stackSize);
    QCOMPARE(m_factoryCalls, expected.isEmpty() ? 0 : 1);
    if (!logFragment.isEmpty())
        QVERIFY2(log.contains(logFragment), qPrintable(log.text()));
}

void tst_StoryboardSegue::prepareSeesTheDestinationBeforeItsLifecycle()
{
    auto *source = new RecordingViewController("A", m_journal);
    source->setStoryboard(m_board.get());
    NavigationController nav(source);
    nav.show();

    QObject button;
    bool prepared = false;
    source->onPrepare = [&](StoryboardSegue &segue, QObject *sender) {
        prepared = true;
        QCOMPARE(segue.identifier(), QStringLiteral("showDetailSegue"));
        QCOMPARE(segue.sourceViewController(), source);
        QCOMPARE(sender, &button);
        ViewController *destination = segue.destinationViewController();
        QVERIFY(destination);
        // Handed over before anything of its own has run.
        QVERIFY(!destination->isViewLoaded());
        QCOMPARE(destination->navigationController(), nullptr);
        QCOMPARE(nav.topViewController(), source);
        destination->setTitle("Prepared");
    };
    source->performSegueWithIdentifier("showDetailSegue", &button);
    QVERIFY(prepared);
    QCOMPARE(nav.topViewController()->title(), QStringLiteral("Prepared"));
    QCOMPARE(nav.topViewController()->appearance(), ViewController::Appearance::Appeared);
}

void tst_StoryboardSegue::destinationInheritsTheStoryboard()
{
    // The destination finds the same registry, so a second segue from it
    // works without the shared registry knowing either identifier.
    m_board->registerSegue("deeperSegue", [this] { return new RecordingViewController("C", m_journal); });
    auto *source = new RecordingViewController("A", m_journal);
    source->setStoryboard(m_board.get());
    NavigationController nav(source);
    nav.show();

    source->performSegueWithIdentifier("showDetailSegue", nullptr);
    ViewController *middle = nav.topViewController();
    QCOMPARE(middle->storyboard(), m_board.get());
    middle->performSegueWithIdentifier("deeperSegue", nullptr);
    QCOMPARE(nav.viewControllers().size(), 3);
    QCOMPARE(nav.topViewController()->title(), QStringLiteral("C"));
    QVERIFY(!Storyboard::main()->hasSegue("deeperSegue"));
}

void tst_StoryboardSegue::registeringAgainReplacesTheFactory()
{
    m_board->registerSegue("showDetailSegue", [this] { return new RecordingViewController("Z", m_journal); });
    auto *source = new RecordingViewController("A", m_journal);
    source->setStoryboard(m_board.get());
    NavigationController nav(source);
    source->performSegueWithIdentifier("showDetailSegue", nullptr);
    QCOMPARE(nav.topViewController()->title(), QStringLiteral("Z"));
    QCOMPARE(m_factoryCalls, 0);
    QCOMPARE(m_board->segueIdentifiers(), QStringList{"showDetailSegue"});
}

QTEST_MAIN(tst_StoryboardSegue)
#include "tst_StoryboardSegue.moc"
