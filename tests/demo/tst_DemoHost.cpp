#include "DemoEventLog.h"
#include "DemoHostDelegate.h"
#include "DemoMenu.h"
#include "DemoOptions.h"
#include "DemoReportActions.h"
#include "DemoReports.h"
#include "BMLocalisationService.h"
#include "DemoWalkthrough.h"
#include "DemoWindow.h"
#include "../reports/ReportFixtures.h"
#include "PopupInput.h"
#include "TestEnvironment.h"
#include <Brightmere/core/BMSDKRestServiceManager.h>
#include <Brightmere/i18n/BMI18NManager.h>
#include <Brightmere/platform/views/Alert.h>
#include <Brightmere/platform/views/BarButtonItem.h>
#include <Brightmere/platform/views/NavigationBar.h>
#include <Brightmere/platform/views/NavigationController.h>
#include <Brightmere/platform/views/Storyboard.h>
#include <Brightmere/screens/results/FZCompareSpotsSetsViewController.h>
#include <Brightmere/screens/results/FZSavedSpotsViewController.h>
#include <Brightmere/session/BMWifiScanVC.h>
#include <Brightmere/storyboard/BMSDKUIStoryboard.h>

#include <QClipboard>
#include <QDir>
#include <QGuiApplication>
#include <QLabel>
#include <QToolButton>
#include <QFileInfo>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <QTest>

// The demo host's own parts: what its command line means, the event log,
// what the host hears from the kit, and where its menu leads.
class tst_DemoHost : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init() { m_env = std::make_unique<TestEnvironment>(); }
    void cleanup()
    {
        BMI18NManager::sharedInstance()->setCurrentLanguage(QStringLiteral("en"));
        m_env.reset();
    }

    void options_data()
    {
        QTest::addColumn<QStringList>("arguments");
        QTest::addColumn<QStringList>("environment");
        QTest::addColumn<QString>("customer");
        QTest::addColumn<QString>("password");
        QTest::addColumn<QString>("tester");
        QTest::addColumn<QString>("walkthrough");
        QTest::addColumn<int>("errors");
        const QStringList none;
        QTest::newRow("nothing: simulated, customer demo") << none << none << "demo" << "" << "" << "" << 0;
        QTest::newRow("environment") << none
                                     << QStringList{"BRIGHTMERE_CUSTOMER=acme", "BRIGHTMERE_PASSWORD=s3cret",
                                                    "BRIGHTMERE_DOWNLOAD_URL=http://127.0.0.1:8080/file"}
                                     << "acme" << "s3cret" << "http://127.0.0.1:8080/file" << "" << 0;
        QTest::newRow("command line wins over environment")
            << QStringList{"--customer", "shop", "--tester", "https://example.test/x"}
            << QStringList{"BRIGHTMERE_CUSTOMER=acme", "BRIGHTMERE_DOWNLOAD_URL=http://127.0.0.1/y"} << "shop" << ""
            << "https://example.test/x" << "" << 0;
        QTest::newRow("blank customer keeps demo") << QStringList{"--customer", "  "} << none << "demo" << "" << ""
                                                   << "" << 0;
        QTest::newRow("walkthrough") << QStringList{"--walkthrough", "out"} << none << "demo" << "" << "" << "out" << 0;
        QTest::newRow("tester not http") << QStringList{"--tester", "ftp://host/file"} << none << "demo" << "" << ""
                                         << "" << 1;
        QTest::newRow("walkthrough refuses a real tester")
            << QStringList{"--walkthrough", "out", "--tester", "http://127.0.0.1/f"} << none << "demo" << ""
            << "http://127.0.0.1/f" << "out" << 1;
        QTest::newRow("walkthrough and screenshot")
            << QStringList{"--walkthrough", "out", "--screenshot", "a.png"} << none << "demo" << "" << "" << "out" << 1;
        QTest::newRow("any link needs a tester") << QStringList{"--any-link"} << none << "demo" << "" << "" << "" << 1;
        QTest::newRow("unknown option") << QStringList{"--fast"} << none << "demo" << "" << "" << "" << 1;
    }
    void options()
    {
        QProcessEnvironment env;
        for (const QString &pair : fetched<QStringList>("environment"))
            env.insert(pair.section('=', 0, 0), pair.section('=', 1));
        const DemoOptions parsed =
            DemoOptions::parse(QStringList{"brightmere_demo"} + fetched<QStringList>("arguments"), env);
        QTEST(parsed.customer, "customer");
        QTEST(parsed.password, "password");
        QTEST(parsed.testerUrl.toString(), "tester");
        QTEST(parsed.walkthroughDir, "walkthrough");
        QTEST(int(parsed.errors.size()), "errors");
    }

    void eventLogKeepsTheNewestLines()
    {
        DemoEventLog log;
        log.resize(375, DemoEventLog::kCollapsedHeight);
        for (int i = 0; i < DemoEventLog::kCapacity + 5; ++i)
            log.append(QStringLiteral("line %1").arg(i));
        QCOMPARE(log.lines().size(), DemoEventLog::kCapacity);
        QCOMPARE(log.lines().constFirst(), QStringLiteral("line 5"));
        QCOMPARE(log.total(), DemoEventLog::kCapacity + 5);
        QVERIFY(log.header()->text().contains(QStringLiteral("(205)")));
        QCOMPARE(log.height(), DemoEventLog::kCollapsedHeight);
        log.header()->click();
        QVERIFY(log.isExpanded() && log.height() == DemoEventLog::kExpandedHeight);
    }

    // The password never showing is checked where the screen is handed it,
    // and on the whole walkthrough's output (the demo_walkthrough test), which
    // also finds the tutorial's and the test start's lines; here, the screen
    // change before the screen's own appearance, both menu controls, the log.
    void hostHearsTheKit()
    {
        auto window = makeWindow(DemoOptions());
        QSignalSpy menu(window->hostDelegate(), &DemoHostDelegate::menuRequested);
        window->show();
        window->scan()->menuButton()->trigger();
        window->scan()->leftMenuButton()->trigger();
        QCoreApplication::processEvents();
        const QStringList events = window->hostDelegate()->events();
        const qsizetype changed = events.indexOf(QRegularExpression("notification: kScreenChange .*BMWifiScanVC.*"));
        QVERIFY(changed >= 0 && changed < events.indexOf("delegate: ViewWillAppear"));
        QCOMPARE(menu.count(), 2);
        QVERIFY(window->menu()->popup());
        QCOMPARE(window->eventLog()->total(), events.size());
    }

    // The walkthrough goes through the menu's settings and language; here,
    // an option opened twice and one that does not exist.
    void menuLeadsTo_data()
    {
        QTest::addColumn<int>("option");
        QTest::addColumn<QString>("screen"); // the class on top afterwards
        QTest::newRow("saved sets") << int(DemoMenu::SavedSets) << "FZSavedSpotsViewController";
        QTest::newRow("no such option") << 42 << "BMWifiScanVC";
    }
    void menuLeadsTo()
    {
        QFETCH(int, option);
        const bool done = option != 42;
        auto window = makeWindow(DemoOptions());
        window->show();
        QCoreApplication::processEvents();
        // Opened twice: the second replaces the first, the stack stays two deep.
        QCOMPARE(window->menu()->choose(option), done);
        QCOMPARE(window->menu()->choose(option), done);
        QCoreApplication::processEvents();
        Brightmere::ViewController *top = window->navigation()->topViewController();
        QTEST(QString::fromLatin1(top->metaObject()->className()), "screen");
        QVERIFY(window->navigation()->viewControllers().size() <= 2);
    }

    // Reports where the data is, as a person gets them: the share button
    // in the bar, an option of its popup, then the alert that says where the
    // file went (or what to do instead of mail); the saved list's options
    // back up and restore.
    void reportsWhereTheDataIs_data()
    {
        QTest::addColumn<QString>("screen");  // "set", "compare" or "list"
        QTest::addColumn<int>("option");
        QTest::addColumn<QString>("press");   // the alert's button pressed first, if any
        QTest::addColumn<QString>("alert");   // title of the alert left shown
        QTest::addColumn<QString>("file");    // the one file the folder then holds
        // The walkthrough also exports a comparison as PDF and backs up.
        const int csv = DemoReportActions::ExportCsv, share = DemoReportActions::Share;
        QTest::newRow("set CSV") << "set" << csv << "" << "Saved" << "Flat, 2_3 *.csv";
        QTest::newRow("no mail: say so") << "set" << share << "" << "No mail program" << "";
        QTest::newRow("no mail: save the text") << "compare" << share << "Save to file" << "Saved"
                                                << "Upstairs vs Flat, 2_3 *.txt";
        QTest::newRow("no mail: copy the text") << "set" << share << "Copy text" << "The text is on the clipboard." << "";
        QTest::newRow("a folder that cannot be made") << "set" << csv << "" << "Not saved" << "";
        QTest::newRow("restore without a backup") << "list" << int(DemoReportActions::Restore) << "" << "Nothing restored"
                                                  << "";
    }
    void reportsWhereTheDataIs()
    {
        QFETCH(QString, screen);
        QFETCH(QString, press);
        QFETCH(QString, file);
        QTemporaryDir home;
        const QString folder = home.filePath("reports");
        QVERIFY(FZHistoricalResultSpotsSet::saveSpotSet(ReportFixtures::makeSet("Flat, 2/3", {"Hall", "Desk"})));
        QVERIFY(FZHistoricalResultSpotsSet::saveSpotSet(ReportFixtures::makeSet("Upstairs", {"Hall", "Bed"}, {}, 1)));
        if (QByteArray(QTest::currentDataTag()).startsWith("a folder"))
            QVERIFY(QFile(folder).open(QIODevice::WriteOnly)); // a file where the folder should be
        auto window = makeWindow(DemoOptions());
        window->reportActions()->setFolder(folder);
        window->reportActions()->setMailAvailability([] { return false; });
        window->show();
        QVERIFY(QTest::qWaitForWindowExposed(window.get()));

        // Down the storyboard as the test screen goes, so the host's additions come along.
        window->scan()->performSegueWithIdentifier(BMSDKUIStoryboard::kShowSavedSpotsSegue, nullptr);
        auto *list = top<FZSavedSpotsViewController>(*window);
        QVERIFY(list);
        if (screen == u"set") {
            list->didSelectRowAtIndexPath(list->tableView(), Brightmere::IndexPath(1, 0));
        } else if (screen == u"compare") {
            list->enableCompareSetsMode();
            list->didSelectRowAtIndexPath(list->tableView(), Brightmere::IndexPath(0, 0));
            list->didSelectRowAtIndexPath(list->tableView(), Brightmere::IndexPath(1, 0));
            list->forwardButton()->trigger();
        }
        QVERIFY(top<Brightmere::ViewController>(*window) != list || screen == u"list");
        const QList<QToolButton *> bar = window->navigation()->navigationBar()->rightButtons();
        QVERIFY(!bar.isEmpty());
        QTest::mouseClick(bar.constFirst(), Qt::LeftButton); // share button, or the list's options
        QVERIFY(PopupInput::choose(PopupInput::shown(window.get()), fetched<int>("option")));
        if (!press.isEmpty())
            QVERIFY(clickAlertButton(*window, press));
        Brightmere::Alert *alert = Brightmere::Alert::shownAlert(window.get());
        QVERIFY(alert);
        QTEST(alert->title(), "alert");
        const QStringList written = QDir(folder).entryList(QDir::Files);
        QCOMPARE(written.size(), file.isEmpty() ? 0 : 1);
        if (!file.isEmpty()) {
            QVERIFY2(written.constFirst().contains(QRegularExpression(QRegularExpression::wildcardToRegularExpression(file))),
                     qPrintable(written.join(", ")));
            // The alert names the file and its folder; the event log says the same.
            QVERIFY(alert->message().contains(written.constFirst()) && alert->message().contains(QDir::toNativeSeparators(folder)));
            QVERIFY(window->eventLog()->lines().join(u'\n').contains(written.constFirst()));
        }
        if (press == u"Copy text")
            QVERIFY(QGuiApplication::clipboard()->text().startsWith("Flat, 2/3\n") && QGuiApplication::clipboard()->text().contains("\nHall: 10 Mbps"));
        QVERIFY(clickAlertButton(*window, alert->buttonTitles().constLast()));
        QVERIFY(!Brightmere::Alert::shownAlert(window.get()));
    }

    // 100 CJK characters, 70 emoji: titles longer than a file name may be.
    void longTitlesStillExport()
    {
        QTemporaryDir folder;
        const DemoReports reports(folder.path());
        for (const QString &title : {QString(100, QChar(0x5BA2)), QString::fromUtf8("\xF0\x9F\x8F\xA0").repeated(70)}) {
            const auto set = ReportFixtures::makeSet(title, {"Hall"});
            for (const DemoReports::Outcome &outcome : {reports.exportSetCsv(set), reports.exportSetPdf(set)}) {
                QVERIFY2(outcome.ok, qPrintable(outcome.message));
                const QString name = QFileInfo(outcome.path).fileName();
                QVERIFY(name.toUtf8().size() <= 255);
                QVERIFY(name.startsWith(title.left(10)));
                // Cut between whole characters: the name reads back as it was written.
                QCOMPARE(QString::fromUtf8(name.toUtf8()), name);
            }
        }
    }

    // With the localisation service running on the sample bundles, the demo
    // downloads the language asked for and the bar's tooltip says where its
    // texts came from. (That they fit is the accessibility walk's business.)
    void downloadsTheTexts_data()
    {
        QTest::addColumn<QString>("language");
        QTest::newRow("English") << "en";
        QTest::newRow("Spanish") << "es";
    }
    void downloadsTheTexts()
    {
        BMLocalisationService service;
        service.setFolder(QStringLiteral(BRIGHTMERE_BUNDLES_DIR));
        QVERIFY(service.listen() != 0);
        BMSDKRestServiceManager::setBrightmereServerURL(service.baseUrl());
        auto window = makeWindow(DemoOptions());
        window->show();
        QSignalSpy refreshed(window->hostDelegate(), &DemoHostDelegate::textBundleRefreshed);
        BMI18NManager::sharedInstance()->setCurrentLanguage(fetched<QString>("language"));
        BMI18NManager::sharedInstance()->updateBundleTexts();
        QTRY_VERIFY_WITH_TIMEOUT(!refreshed.isEmpty(), 10000);
        QVERIFY(refreshed.constLast().first().toBool());
        QVERIFY2(window->navigation()->navigationBar()->toolTip().contains(" downloaded (service " + service.baseUrl()),
                 qPrintable(window->navigation()->navigationBar()->toolTip()));
        window.reset();
        BMSDKRestServiceManager::setBrightmereServerURL(QString());
    }

    // A step that cannot save its picture fails, and the tour stops there;
    // a folder that cannot be made stops it before the first.
    void walkthroughStopsAtTheFirstFailedStep()
    {
        QString text;
        QTextStream out(&text);
        QTemporaryDir folder;
        QVERIFY(QDir(folder.path()).mkdir("02-preparing.png")); // a folder where the picture should go
        DemoWalkthrough walk(folder.path(), out);
        auto window = makeWindow(DemoOptions());
        QVERIFY(!walk.run(window.get(), DemoOptions()));
        QCOMPARE(walk.steps().size(), 2);
        QVERIFY(walk.steps().at(0).ok && !walk.steps().at(1).ok);
        QVERIFY(walk.summary().contains("FAIL  preparing: tester setting up (picture not saved)"));
        QVERIFY(walk.summary().contains("2 steps, 1 failed"));
        QFile taken(folder.filePath("02-preparing.png/taken"));
        QVERIFY(taken.open(QIODevice::WriteOnly));
        taken.close();
        DemoWalkthrough blocked(taken.fileName(), out);
        QVERIFY(!blocked.isReady());
        QVERIFY(!blocked.run(nullptr, DemoOptions()));
    }

private:
    template<typename T>
    static T *top(DemoWindow &window)
    {
        QCoreApplication::processEvents();
        return qobject_cast<T *>(window.navigation()->topViewController());
    }

    static bool clickAlertButton(DemoWindow &window, const QString &title)
    {
        Brightmere::Alert *alert = Brightmere::Alert::shownAlert(&window);
        const int index = alert ? int(alert->buttonTitles().indexOf(title)) : -1;
        if (index < 0)
            return false;
        QTest::mouseClick(alert->buttons().at(index), Qt::LeftButton);
        QCoreApplication::processEvents();
        return true;
    }

    std::unique_ptr<DemoWindow> makeWindow(const DemoOptions &options)
    {
        BMSDKUIStoryboard::registerSegues(&m_board);
        return std::make_unique<DemoWindow>(options, &m_board);
    }

    std::unique_ptr<TestEnvironment> m_env;
    Brightmere::Storyboard m_board;
};

QTEST_MAIN(tst_DemoHost)
#include "tst_DemoHost.moc"
