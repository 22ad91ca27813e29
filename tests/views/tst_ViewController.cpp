#include "LogCapture.h"
#include "RecordingViewController.h"
#include "TestEnvironment.h"
#include "platform/views/Alert.h"

#include <QLabel>
#include <QPointer>
#include <QTest>
#include <QVBoxLayout>

using namespace Brightmere;

class tst_ViewController : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init() { m_env = std::make_unique<TestEnvironment>(); }
    void cleanup()
    {
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
        m_env.reset();
    }
    void lifecycleOfAScreenOfItsOwn_data();
    void lifecycleOfAScreenOfItsOwn();
    void layoutPasses_data();
    void layoutPasses();
    void presentsOneAlertAtATime();

private:
    std::unique_ptr<TestEnvironment> m_env;
};

void tst_ViewController::lifecycleOfAScreenOfItsOwn_data()
{
    QTest::addColumn<QStringList>("steps");
    QTest::addColumn<QStringList>("expected");
    const QStringList shown{"A.didLoad", "A.willAppear", "A.didAppear"};
    QTest::newRow("never asked: nothing") << QStringList{} << QStringList{};
    QTest::newRow("load if needed twice: loads once") << QStringList{"load", "load"} << QStringList{"A.didLoad"};
    QTest::newRow("asked for again inside viewDidLoad: loads once")
        << QStringList{"reentrant"} << QStringList{"A.didLoad"};
    QTest::newRow("shown as a window: load, then appear") << QStringList{"show"} << shown;
    QTest::newRow("shown, hidden, shown: one load")
        << QStringList{"show", "hide", "show"}
        << shown + QStringList{"A.willDisappear", "A.didDisappear", "A.willAppear", "A.didAppear"};
    QTest::newRow("asked to appear twice: appears once") << QStringList{"appear", "appear"} << shown;
    QTest::newRow("asked to disappear when not shown: nothing") << QStringList{"disappear"} << QStringList{};
}

void tst_ViewController::lifecycleOfAScreenOfItsOwn()
{
    QFETCH(QStringList, steps);
    QFETCH(QStringList, expected);
    auto journal = std::make_shared<QStringList>();
    RecordingViewController screen("A", journal);
    for (const QString &step : steps) {
        if (step == "load")
            screen.loadViewIfNeeded();
        else if (step == "reentrant") {
            screen.onLoad = [&screen] {
                QVERIFY(screen.isViewLoaded());
                screen.loadViewIfNeeded();
            };
            screen.loadViewIfNeeded();
        } else if (step == "show")
            screen.show();
        else if (step == "hide")
            screen.hide();
        else {
            screen.beginAppearanceTransition(step == "appear", false);
            screen.endAppearanceTransition();
        }
    }
    QCOMPARE(*journal, expected);
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

    RecordingViewController screen("A", std::make_shared<QStringList>());
    auto *label = new QLabel("short", &screen);
    (new QVBoxLayout(&screen))->addWidget(label);
    screen.resize(200, 200);
    if (loaded) {
        screen.show();
        QVERIFY(QTest::qWaitForWindowExposed(&screen));
    }
    QCoreApplication::processEvents();
    screen.layoutCount = 0;
    if (trigger == "self-resize")
        screen.onLayout = [&screen] { screen.resize(screen.width() + 10, screen.height()); };

    if (trigger == "request") {
        QEvent request(QEvent::LayoutRequest);
        QCoreApplication::sendEvent(&screen, &request);
    } else if (trigger == "child") {
        label->setText("a longer text");
        QCoreApplication::sendPostedEvents(&screen, QEvent::LayoutRequest);
    } else {
        screen.resize(300, 240);
    }
    QCOMPARE(screen.layoutCount, passes);
}

void tst_ViewController::presentsOneAlertAtATime()
{
    QWidget window;
    window.resize(390, 600);
    auto *screen = new RecordingViewController("A", std::make_shared<QStringList>(), &window);
    window.show();

    int completions = 0;
    QPointer<Alert> first = new Alert("First");
    screen->presentAlert(first, false, [&] { ++completions; });
    QCOMPARE(completions, 1);
    QCOMPARE(screen->presentedAlert(), first.data());
    QCOMPARE(first->geometry(), window.rect()); // over the whole window, not just the screen

    LogCapture log;
    QPointer<Alert> second = new Alert("Second");
    screen->presentAlert(second, false, [&] { ++completions; });
    QVERIFY(log.contains("already presents the alert 'First'"));
    QCOMPARE(completions, 1);
    QCOMPARE(Alert::shownAlert(&window), first.data());

    first->dismiss(false);
    QCOMPARE(screen->presentedAlert(), nullptr);
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    QVERIFY(!second && !first);
}

QTEST_MAIN(tst_ViewController)
#include "tst_ViewController.moc"
