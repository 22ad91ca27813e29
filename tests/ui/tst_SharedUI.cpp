// The shared look (colours, the kit's face, forms by class name, focus, the
// framework's images, the main button) and the base screen with its alerts
// and the loading overlay.
#include "TestEnvironment.h"
#include <Brightmere/core/BMSimulatedNetwork.h>
#include <Brightmere/i18n/BMI18NManager.h>
#include <Brightmere/platform/foundation/ManualClock.h>
#include <Brightmere/platform/views/Alert.h>
#include <Brightmere/platform/views/BarButtonItem.h>
#include <Brightmere/platform/views/KeyWindow.h>
#include <Brightmere/platform/views/NavigationBar.h>
#include <Brightmere/platform/views/NavigationController.h>
#include <Brightmere/platform/views/NavigationItem.h>
#include <Brightmere/ui/BMLoadingView.h>
#include <Brightmere/ui/BMMainButton.h>
#include <Brightmere/ui/BMSDKUIBaseViewController.h>
#include <Brightmere/ui/BMScreenChangeNotification.h>
#include <Brightmere/ui/BrightmereColor.h>
#include <Brightmere/ui/BrightmereImage.h>
#include <Brightmere/ui/BrightmereView.h>

#include <QApplication>
#include <QDirIterator>
#include <QFontDatabase>
#include <QFontInfo>
#include <QLabel>
#include <QPointer>
#include <QTest>
#include <QThread>
#include <QToolButton>

#include <memory>

using namespace Brightmere;

namespace {

QColor named(const char *key)
{
    return Color::named(QString::fromLatin1(key));
}

// The styles set in turn; the border they leave; the background shown normally and pressed.
struct ButtonStyle { QList<uint> styles; qreal radius, width; QColor border, normal, pressed; };

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

class tst_SharedUI : public QObject
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
        const auto &[helper, screenGone, fromThread, buttons, press, handled] = fetched<AlertCase>("alert");
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
        QVERIFY(Alert::shownAlert(m_navigation.get()));
    }

    void barDecorationsAndBack()
    {
        m_navigation->show();
        Screen *screen = push("Next");
        NavigationBar *bar = m_navigation->navigationBar();
        screen->prepareHeaderViewForTitle("Fairzone Test");
        QCOMPARE(screen->navigationItem()->titleView()->findChild<QLabel *>()->text(), QString("Fairzone Test"));

        screen->setNavigationBarTransparent();
        QVERIFY(bar->isTransparent() && bar->isTranslucent());
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
            QCOMPARE(view.overlay() && view.overlay()->isVisible(), plain);
            QCOMPARE(view.circleOverlay() && view.circleOverlay()->isVisible(), circle);
            QCOMPARE(window.findChildren<QWidget *>(Qt::FindDirectChildrenOnly).size(), int(plain) + int(circle));
            view.hide();
            QCoreApplication::processEvents();
        }
    }

    void loadingFollowsItsWindowAndMovesToTheNext()
    {
        BMLoadingView &view = BMLoadingView::sharedInstance();
        auto window = std::make_unique<QWidget>();
        showKeyWindow(window.get());
        view.show();
        QCoreApplication::processEvents();
        QWidget *first = view.overlay();
        QCOMPARE(first->geometry(), window->rect());
        window->resize(320, 480);
        QCOMPARE(first->geometry(), QRect(0, 0, 320, 480));
        // Hidden, it leaves the window; shown again, the same overlay comes back.
        view.hide();
        QCoreApplication::processEvents();
        QVERIFY(first->parentWidget() != window.get());
        view.show();
        QCoreApplication::processEvents();
        QCOMPARE(view.overlay(), first);
        // Its window closed, then deleted, while it was up: it shows in the next key window.
        for (const bool deleteWindow : {false, true}) {
            deleteWindow ? window.reset() : void(window->close());
            auto next = std::make_unique<QWidget>();
            showKeyWindow(next.get());
            view.show();
            QCoreApplication::processEvents();
            QVERIFY(view.overlay() && view.overlay()->isVisible());
            QCOMPARE(view.overlay()->window(), next.get());
            window = std::move(next);
        }
        // Without a key window it shows nowhere.
        view.hide();
        window->hide();
        view.showCircle();
        QCoreApplication::processEvents();
        QVERIFY(!view.isCircleShown());
    }

    void namedColours()
    {
        // Keys are exact.
        for (const char *unknown : {"", "FZ_CHART_BACK", "fz_chart_back ", "3593DA"})
            QVERIFY2(!named(unknown).isValid(), unknown);
        // Every key the kit's sources and the demo name is in the table.
        static const QRegularExpression use(
            QStringLiteral("\\b(?:named|colour|hex)\\(\\s*(?:QStringLiteral\\(\\s*)?\"([a-z0-9_]+)\""));
        int uses = 0;
        for (const char *root : {BRIGHTMERE_SOURCE_DIR "/src", BRIGHTMERE_SOURCE_DIR "/apps"}) {
            for (QDirIterator it(root, {"*.cpp", "*.h"}, QDir::Files, QDirIterator::Subdirectories); it.hasNext();) {
                QFile file(it.next());
                QVERIFY(file.open(QIODevice::ReadOnly));
                for (auto match = use.globalMatch(QString::fromUtf8(file.readAll())); match.hasNext(); ++uses) {
                    const QString key = match.next().captured(1);
                    QVERIFY2(Color::named(key).isValid() && Color::namedColorKeys().contains(key),
                             qPrintable(key + " in " + file.fileName()));
                }
            }
        }
        QVERIFY2(uses > 30, qPrintable(QString::number(uses)));
    }

    // One check per conversion, each at the edge where it goes wrong.
    void colourConversions()
    {
        QCOMPARE(Color::colorFromHex("35zzDA"), QColor(0x350000)); // a bad pair stops the reading
        QCOMPARE(Color::colorWithHexString(" \t\n0X23aca3zz"), QColor(0x23ACA3));
        QCOMPARE(Color::colorWithR(256, 0, 1000), QColor(255, 0, 255));
        QCOMPARE(Color::colorToString(QColor::fromRgbF(0.999f, 0.999f, 0.999f)), QStringLiteral("fefefe"));
        QVERIFY(Color::isEqualToColor(QColor::fromCmyk(0, 0, 0, 128), QColor(127, 127, 127)));
        QVERIFY(!Color::isEqualToColor(QColor(0x3593DA), QColor(0x3593DB))); // one 8-bit step apart
    }

    void fontMapsByWeight()
    {
        const QList<std::tuple<int, QString, QFont::Weight>> weights{
            {QFont::Thin, "ProximaNova-Light", QFont::Light}, {301, "ProximaNova-Regular", QFont::Normal},
            {599, "ProximaNova-Regular", QFont::Normal}, {QFont::DemiBold, "ProximaNova-Semibold", QFont::DemiBold},
            {QFont::Black, "ProximaNova-Bold", QFont::Bold}};
        for (const auto &[weight, family, mapped] : weights) {
            QLabel label(QStringLiteral("Kitchen"));
            QFont font(QStringLiteral("Serif"));
            font.setPointSizeF(13.5);
            font.setItalic(true);
            font.setStyleName(QStringLiteral("Light"));
            font.setWeight(QFont::Weight(weight));
            label.setFont(font);
            // Mapping is by weight, so the face chosen once stays on a second call.
            for (int pass = 0; pass < 2; ++pass) {
                View::setupFont(&label);
                QCOMPARE(label.font().families(), QStringList{family});
                QCOMPARE(label.font().weight(), mapped);
                QVERIFY(label.font().pointSizeF() == 13.5 && label.font().italic() && label.font().styleName().isEmpty());
            }
        }
        // Without the kit's face installed, the substitute draws it.
        if (QFontDatabase::hasFamily(QStringLiteral("DejaVu Sans")))
            QCOMPARE(QFontInfo(View::kitFont(QFont())).family(), QStringLiteral("DejaVu Sans"));
    }

    // A user's larger text reaches the kit's fonts, and a change of it at once.
    void fontsFollowTheApplicationFont()
    {
        const QFont system = QFontDatabase::systemFont(QFontDatabase::GeneralFont);
        for (const qreal scale : {1.5, 2.0, 1.0}) { // back to the system's at the end
            QFont font = system;
            font.setPointSizeF(system.pointSizeF() * scale);
            QApplication::setFont(font);
            QCOMPARE(View::fontOfSize(20).pixelSize(), qRound(20 * scale));
        }
    }

    void imagesAreFoundByNameWithOrWithoutAnExtension()
    {
        // Drawn from the vector image at any size: sharp, in proportion, not blank.
        for (const QString name : {"buttonStart", "buttonRecord.png", "wifiCounterRecording", "fairzones_scroll_4"}) {
            const QImage image = Brightmere::Image::named(name).pixmap(QSize(400, 100), 2.0).toImage();
            QCOMPARE(image.height(), 200);
            QCOMPARE(double(image.width()) / image.height(), name.startsWith("fairzones") ? 1.6 : 1.0);
            QVERIFY2(qAlpha(image.pixel(image.width() / 2, image.height() / 3)) > 0, qPrintable(name));
        }
        QVERIFY(Brightmere::Image::named(QStringLiteral("buttonPause.png")).isNull());
    }

    // The border a style sets, and the background a real press and release show.
    void mainButtonStyles_data()
    {
        QTest::addColumn<ButtonStyle>("style");
        const QColor built = named("fixed_dark_blue"), grey = named("fixed_light_gray"), blue = named("medium_blue");
        const QColor red = named("norva_red_1");
        QTest::newRow("1 keeps the built border") << ButtonStyle{{1}, 10, 1, built, Color::system(4), blue};
        QTest::newRow("4 after 3 keeps the red border") << ButtonStyle{{3, 4}, 22, 2, red, grey, blue};
        QTest::newRow("large values as 6") << ButtonStyle{{4000000000u}, 10, 1, built, grey, blue};
    }

    void mainButtonStyles()
    {
        QFETCH(ButtonStyle, style);
        BMMainButton button("Record");
        for (uint each : style.styles)
            button.setStyle(each);
        QCOMPARE(button.cornerRadius(), style.radius);
        QCOMPARE(button.borderWidth(), style.width);
        QCOMPARE(button.borderColor(), style.border);
        QCOMPARE(button.backgroundColor(), style.normal);
        button.resize(200, 44);
        button.show();
        QVERIFY(QTest::qWaitForWindowExposed(&button));
        QTest::mousePress(&button, Qt::LeftButton);
        QCOMPARE(button.backgroundColor(), style.pressed);
        QVERIFY(button.isHighlighted());
        QTest::mouseRelease(&button, Qt::LeftButton);
        QCOMPARE(button.backgroundColor(), style.normal);
        QVERIFY(!button.isHighlighted());
        button.setSelected(true);
        QCOMPARE(button.backgroundColor(), style.pressed);
    }

    void mainButtonImageWithColorRecoloursAndDrawsAtScale()
    {
        BMMainButton button("Stop");
        button.setStyle(0);
        button.resize(120, 44);
        const QColor green = named("fixed_action_bar_green");
        const QImage image = button.imageWithColor(green);
        QCOMPARE(button.backgroundColor(), green);
        QCOMPARE(image.size(), QSize(120, 44) * image.devicePixelRatio());
        // The middle of the left edge is fill, not title.
        QCOMPARE(image.pixelColor(QPoint(6, 22) * image.devicePixelRatio()).rgb(), green.rgb());
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

QTEST_MAIN(tst_SharedUI)
#include "tst_SharedUI.moc"
