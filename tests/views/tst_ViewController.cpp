#include "LogCapture.h"
#include "RecordingViewController.h"
#include "TestEnvironment.h"
#include "platform/views/Alert.h"
#include "platform/views/NavigationItem.h"

#include <QLabel>
#include <QPointer>
#include <QTest>
#include <QVBoxLayout>

using namespace Brightmere;

namespace {

// Asks for its own view from inside viewDidLoad, as a screen that calls a
// helper which loads "if needed" would.
class ReentrantController : public ViewController
{
public:
    int loads = 0;
    bool loadedFlagInside = false;

protected:
    void viewDidLoad() override
    {
        ++loads;
        loadedFlagInside = isViewLoaded();
        loadViewIfNeeded();
    }
};

} // namespace

class tst_ViewController : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();

    void viewDidLoadRunsOnce_data();
    void viewDidLoadRunsOnce();
    void viewDidLoadMayAskForTheViewAgain();
    void aWindowOfItsOwnAppearsWhenShown();
    void appearanceCallsAreNeverDoubled();
    void layoutPasses_data();
    void layoutPasses();
    void titleReachesTheNavigationItem();
    void presentsOneAlertAtATime();

private:
    std::unique_ptr<TestEnvironment> m_env;
    RecordingViewController::Journal m_journal;
};

void tst_ViewController::init()
{
    m_env = std::make_unique<TestEnvironment>();
    m_journal = std::make_shared<QStringList>();
}

void tst_ViewController::cleanup()
{
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    m_env.reset();
}

void tst_ViewController::viewDidLoadRunsOnce_data()
{
    QTest::addColumn<QStringList>("steps");
    QTest::addColumn<int>("loads");
    QTest::newRow("never asked") << QStringList{} << 0;
    QTest::newRow("load if needed, twice") << QStringList{"load", "load"} << 1;
    QTest::newRow("shown, hidden, shown") << QStringList{"show", "hide", "show"} << 1;
    QTest::newRow("loaded, then shown") << QStringList{"load", "show"} << 1;
    QTest::newRow("appearance transitions only") << QStringList{"appear", "disappear", "appear"} << 1;
}

void tst_ViewController::viewDidLoadRunsOnce()
{
    QFETCH(QStringList, steps);
    QFETCH(int, loads);
    RecordingViewController screen("A", m_journal);
    for (const QString &step : steps) {
        if (step == "load")
            screen.loadViewIfNeeded();
        else if (step == "show")
            screen.show();
        else if (step == "hide")
            screen.hide();
        else if (step == "appear" || step == "disappear") {
            screen.beginAppearanceTransition(step == "appear", false);
            screen.endAppearanceTransition();
        }
    }
    QCOMPARE(screen.loadCount, loads);
    QCOMPARE(screen.isViewLoaded(), loads > 0);
    // Loading always comes before the first appearance.
    if (m_journal->contains("A.willAppear"))
        QVERIFY(m_journal->indexOf("A.didLoad") < m_journal->indexOf("A.willAppear"));
}

void tst_ViewController::viewDidLoadMayAskForTheViewAgain()
{
    ReentrantController screen;
    screen.loadViewIfNeeded();
    QCOMPARE(screen.loads, 1);
    QVERIFY(screen.loadedFlagInside);
}

void tst_ViewController::aWindowOfItsOwnAppearsWhenShown()
{
    RecordingViewController screen("A", m_journal);
    screen.show();
    screen.hide();
    QCOMPARE(*m_journal,
             (QStringList{"A.didLoad", "A.willAppear", "A.didAppear", "A.willDisappear", "A.didDisappear"}));
}

void tst_ViewController::appearanceCallsAreNeverDoubled()
{
    RecordingViewController screen("A", m_journal);
    screen.beginAppearanceTransition(true, true);
    screen.beginAppearanceTransition(true, true);
    screen.endAppearanceTransition();
    screen.endAppearanceTransition();
    screen.beginAppearanceTransition(false, true);
    screen.endAppearanceTransition();
    screen.beginAppearanceTransition(false, true);
    screen.endAppearanceTransition();
    QCOMPARE(*m_journal,
             (QStringList{"A.didLoad", "A.willAppear", "A.didAppear", "A.willDisappear", "A.didDisappear"}));
    QCOMPARE(screen.appearance(), ViewController::Appearance::Disappeared);
}

void tst_ViewController::layoutPasses_data()
{
    QTest::addColumn<bool>("loaded");
    QTest::addColumn<QString>("trigger");
    QTest::addColumn<int>("passes");
    QTest::newRow("a resize is a pass") << true << "resize" << 1;
    QTest::newRow("a layout request is a pass") << true << "request" << 1;
    QTest::newRow("a child's new size hint leads to a pass") << true << "child" << 1;
    QTest::newRow("a pass that resizes the view does not recurse") << true << "self-resize" << 1;
    QTest::newRow("no pass before the view has loaded") << false << "resize" << 0;
}

void tst_ViewController::layoutPasses()
{
    QFETCH(bool, loaded);
    QFETCH(QString, trigger);
    QFETCH(int, passes);

    RecordingViewController screen("A", m_journal);
    auto *layout = new QVBoxLayout(&screen);
    auto *label = new QLabel("short", &screen);
    layout->addWidget(label);
    screen.resize(200, 200);
    if (loaded) {
        screen.show();
        QVERIFY(QTest::qWaitForWindowExposed(&screen));
    }
    QCoreApplication::processEvents();
    screen.layoutCount = 0;

    if (trigger == "self-resize")
        screen.onLayout = [&screen] { screen.resize(screen.width() + 10, screen.height()); };

    if (trigger == "resize" || trigger == "self-resize") {
        screen.resize(300, 240);
    } else if (trigger == "request") {
        QEvent request(QEvent::LayoutRequest);
        QCoreApplication::sendEvent(&screen, &request);
    } else if (trigger == "child") {
        label->setText("a longer text");
        QCoreApplication::sendPostedEvents(&screen, QEvent::LayoutRequest);
    }
    QCOMPARE(screen.layoutCount, passes);
}

void tst_ViewController::titleReachesTheNavigationItem()
{
    RecordingViewController screen("A", m_journal);
    screen.setTitle("Saved sets");
    QCOMPARE(screen.title(), QStringLiteral("Saved sets"));
    QCOMPARE(screen.navigationItem()->title(), QStringLiteral("Saved sets"));
}

void tst_ViewController::presentsOneAlertAtATime()
{
    QWidget window;
    window.resize(390, 600);
    auto *screen = new RecordingViewController("A", m_journal, &window);
    window.show();

    int completions = 0;
    QPointer<Alert> first = new Alert("First");
    screen->presentAlert(first, false, [&] { ++completions; });
    QCOMPARE(completions, 1);
    QCOMPARE(screen->presentedAlert(), first.data());
    QCOMPARE(first->parentWidget(), &window);
    QCOMPARE(first->geometry(), window.rect());

    LogCapture log;
    QPointer<Alert> second = new Alert("Second");
    screen->presentAlert(second, false, [&] { ++completions; });
    QVERIFY(log.contains("already presents the alert 'First'"));
    QCOMPARE(completions, 1);
    QCOMPARE(Alert::shownAlert(&window), first.data());
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    QVERIFY(!second);

    first->dismiss(false);
    QCOMPARE(screen->presentedAlert(), nullptr);
    QPointer<Alert> third = new Alert("Third");
    screen->presentAlert(third, false);
    QCOMPARE(screen->presentedAlert(), third.data());
}

QTEST_MAIN(tst_ViewController)
#include "tst_ViewController.moc"
