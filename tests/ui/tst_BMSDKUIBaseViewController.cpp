#include "LogCapture.h"
#include "TestEnvironment.h"
#include "core/BMSimulatedNetwork.h"
#include "i18n/BMI18NManager.h"
#include "platform/foundation/ManualClock.h"
#include "platform/views/Alert.h"
#include "platform/views/BarButtonItem.h"
#include "platform/views/NavigationBar.h"
#include "platform/views/NavigationController.h"
#include "platform/views/NavigationItem.h"
#include "ui/BMScreenChangeNotification.h"
#include "ui/BMSDKUIBaseViewController.h"

#include <QLabel>
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
    BMGAScreenClass screenNameAndClassForEventTracker() const override
    {
        return m_name.isEmpty() ? BMSDKUIBaseViewController::screenNameAndClassForEventTracker()
                                : BMGAScreenClass(m_name, metaObject());
    }
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

} // namespace

class tst_BMSDKUIBaseViewController : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();
    void screenChangeOncePerAppearanceBeforeOwnWork_data();
    void screenChangeOncePerAppearanceBeforeOwnWork();
    void textsRefreshOnAppearanceAndLayout();
    void findViewControllerOfClassReturnsTheUpperMatch_data();
    void findViewControllerOfClassReturnsTheUpperMatch();
    void alertHelpersQueueAndSkipAGoneScreen_data();
    void alertHelpersQueueAndSkipAGoneScreen();
    void timedAlertClosesThenRunsItsHandler();
    void noConnectivityOnlyWhenUnreachable_data();
    void noConnectivityOnlyWhenUnreachable();
    void barDecorationsAndBack();

private:
    Screen *push(const QString &name, bool other = false);

    std::unique_ptr<TestEnvironment> m_env;
    Journal m_journal;
    std::unique_ptr<NavigationController> m_navigation;
};

void tst_BMSDKUIBaseViewController::init()
{
    m_env = std::make_unique<TestEnvironment>();
    m_journal = std::make_shared<QStringList>();
    m_navigation = std::make_unique<NavigationController>(new Screen("Root", m_journal));
    m_navigation->resize(375, 667);
}

void tst_BMSDKUIBaseViewController::cleanup()
{
    m_navigation.reset();
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    m_env.reset();
}

Screen *tst_BMSDKUIBaseViewController::push(const QString &name, bool other)
{
    Screen *screen = other ? new OtherScreen(name, m_journal) : new Screen(name, m_journal);
    m_navigation->pushViewController(screen, false);
    return screen;
}

void tst_BMSDKUIBaseViewController::screenChangeOncePerAppearanceBeforeOwnWork_data()
{
    QTest::addColumn<QString>("steps");
    QTest::addColumn<QStringList>("expected");
    QTest::newRow("first appearance")
        << "" << QStringList{"change:Root", "Root.ownWork"};
    QTest::newRow("push") << "push" << QStringList{"change:Root", "Root.ownWork", "change:Next", "Next.ownWork"};
    QTest::newRow("pop shows the root again")
        << "push,pop"
        << QStringList{"change:Root", "Root.ownWork", "change:Next", "Next.ownWork", "change:Root", "Root.ownWork"};
    QTest::newRow("hide and show again")
        << "hide,show" << QStringList{"change:Root", "Root.ownWork", "change:Root", "Root.ownWork"};
}

void tst_BMSDKUIBaseViewController::screenChangeOncePerAppearanceBeforeOwnWork()
{
    QFETCH(QString, steps);
    QFETCH(QStringList, expected);
    Recorder recorder(m_journal);
    m_navigation->show();
    for (const QString &step : steps.split(',', Qt::SkipEmptyParts)) {
        if (step == "push")
            push("Next", true);
        else if (step == "pop")
            m_navigation->popViewControllerAnimated(false);
        else if (step == "hide")
            m_navigation->hide();
        else
            m_navigation->show();
    }
    QCOMPARE(*m_journal, expected);
    QCOMPARE(recorder.classes.first(), &Screen::staticMetaObject);
    if (steps.startsWith("push"))
        QCOMPARE(recorder.classes.at(1), &OtherScreen::staticMetaObject);
    QCOMPARE(recorder.keys, (QStringList{"1", "2"}));
}

void tst_BMSDKUIBaseViewController::textsRefreshOnAppearanceAndLayout()
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
    // The base screen's own name, when a screen gives none.
    Screen unnamed("", m_journal);
    QCOMPARE(unnamed.screenNameAndClassForEventTracker().screenName(), QString("BMBaseViewController"));
}

void tst_BMSDKUIBaseViewController::findViewControllerOfClassReturnsTheUpperMatch_data()
{
    QTest::addColumn<QStringList>("stack"); // pushed over the root; "o:" marks an OtherScreen
    QTest::addColumn<QString>("cls");
    QTest::addColumn<QString>("found");
    QTest::newRow("two of the class: the upper") << QStringList{"o:A", "o:B", "C"} << "other" << "B";
    QTest::newRow("a subclass counts") << QStringList{"C", "o:A"} << "screen" << "A";
    QTest::newRow("only the root matches") << QStringList{"C"} << "other" << "";
    QTest::newRow("base class finds the top") << QStringList{"o:A"} << "base" << "A";
}

void tst_BMSDKUIBaseViewController::findViewControllerOfClassReturnsTheUpperMatch()
{
    QFETCH(QStringList, stack);
    QFETCH(QString, cls);
    QFETCH(QString, found);
    for (const QString &entry : stack)
        push(entry.section(':', -1), entry.startsWith("o:"));
    auto *top = static_cast<Screen *>(m_navigation->topViewController());
    const QMetaObject &meta = cls == "other" ? OtherScreen::staticMetaObject
                              : cls == "screen" ? Screen::staticMetaObject
                                                : BMSDKUIBaseViewController::staticMetaObject;
    ViewController *match = top->findViewControllerOfClass(meta);
    QCOMPARE(match ? match->objectName() : QString(), found);
    Screen outside("Outside", m_journal);
    QVERIFY(!outside.findViewControllerOfClass(BMSDKUIBaseViewController::staticMetaObject));
}

void tst_BMSDKUIBaseViewController::alertHelpersQueueAndSkipAGoneScreen_data()
{
    QTest::addColumn<QString>("helper");
    QTest::addColumn<bool>("screenGone");
    QTest::addColumn<bool>("fromThread");
    QTest::addColumn<QStringList>("buttons");
    QTest::newRow("plain: ok only") << "plain" << false << false << QStringList{"OK"};
    QTest::newRow("on cancel") << "cancel" << false << false << QStringList{"OK", "Cancel"};
    QTest::newRow("on ok") << "ok" << false << false << QStringList{"OK"};
    QTest::newRow("actions") << "actions" << false << false << QStringList{"A", "B"};
    QTest::newRow("from a worker thread") << "cancel" << false << true << QStringList{"OK", "Cancel"};
    QTest::newRow("screen gone before the queue runs") << "cancel" << true << false << QStringList{};
}

void tst_BMSDKUIBaseViewController::alertHelpersQueueAndSkipAGoneScreen()
{
    QFETCH(QString, helper);
    QFETCH(bool, screenGone);
    QFETCH(bool, fromThread);
    QFETCH(QStringList, buttons);
    m_navigation->show();
    QPointer<Screen> screen = push("Next");
    int handled = 0;
    const auto ask = [&] {
        const auto handler = [&handled] { ++handled; };
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
    Alert *alert = Alert::shownAlert(m_navigation.get());
    QCOMPARE(alert ? alert->buttonTitles() : QStringList{}, buttons);
    if (alert && buttons.size() > 1) {
        QVERIFY(alert->pressButtonAt(helper == "actions" ? 0 : 1));
        QCOMPARE(handled, 1);
    }
    QCOMPARE(handled, buttons.size() > 1 ? 1 : 0);
}

void tst_BMSDKUIBaseViewController::timedAlertClosesThenRunsItsHandler()
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
    QVERIFY(alert);
    QVERIFY(alert->buttonTitles().isEmpty());
    clock.advance(1.49);
    QCOMPARE(finished, 0);
    QVERIFY(alert->isPresented());
    clock.advance(0.02);
    QCOMPARE(finished, 1);
    QVERIFY(goneWhenFinished);
    clock.advance(5.0);
    QCOMPARE(finished, 1);
}

void tst_BMSDKUIBaseViewController::noConnectivityOnlyWhenUnreachable_data()
{
    QTest::addColumn<int>("status");
    QTest::addColumn<bool>("shown");
    QTest::newRow("not reachable") << 0 << true;
    QTest::newRow("wi-fi") << 1 << false;
    QTest::newRow("other medium counts as reachable here") << 2 << false;
}

void tst_BMSDKUIBaseViewController::noConnectivityOnlyWhenUnreachable()
{
    QFETCH(int, status);
    QFETCH(bool, shown);
    m_navigation->show();
    BMSimulatedNetwork::shared().setReachabilityStatus(status);
    auto *root = static_cast<Screen *>(m_navigation->topViewController());
    QCOMPARE(root->showNoConnectivity(), shown);
    QCoreApplication::processEvents();
    Alert *alert = Alert::shownAlert(m_navigation.get());
    QCOMPARE(alert != nullptr, shown);
    if (alert) {
        QCOMPARE(alert->title(), BMI18NManager::stringForCode("bmOops"));
        QCOMPARE(alert->message(), BMI18NManager::stringForCode("connection_error_message"));
    }
}

void tst_BMSDKUIBaseViewController::barDecorationsAndBack()
{
    m_navigation->show();
    Screen *screen = push("Next");
    NavigationBar *bar = m_navigation->navigationBar();

    screen->prepareHeaderViewForTitle("Fairzone Test");
    QWidget *titleView = screen->navigationItem()->titleView();
    QVERIFY(titleView);
    QCOMPARE(titleView->size(), QSize(200, 44));
    auto *label = titleView->findChild<QLabel *>();
    QCOMPARE(label->geometry(), QRect(0, 2, 200, 44));
    QCOMPARE(label->text(), QString("Fairzone Test"));
    QVERIFY(label->font().bold());

    screen->setNavigationBarTransparent();
    QVERIFY(bar->isTransparent() && bar->isTranslucent());
    QCOMPARE(bar->backgroundColor().alpha(), 0);
    screen->resetNavigationBarToDefault();
    QVERIFY(!bar->isTransparent() && !bar->isTranslucent());
    QCOMPARE(bar->backgroundColor().alpha(), 0); // colours stay as they were

    LogCapture log;
    screen->setScreenBackground(true);
    QVERIFY(log.contains("BMSDKUIBaseViewController::setScreenBackground - Set image Backgound"));

    screen->replaceNativeBackButton();
    BarButtonItem *back = screen->navigationItem()->leftBarButtonItem();
    QVERIFY(back && !back->icon().isNull());
    QVERIFY(!bar->isBackButtonShown());
    back->trigger();
    QCOMPARE(m_navigation->viewControllers().size(), 1);
}

QTEST_MAIN(tst_BMSDKUIBaseViewController)
#include "tst_BMSDKUIBaseViewController.moc"
