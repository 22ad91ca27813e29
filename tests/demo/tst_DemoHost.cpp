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
#include "LogCapture.h"
#include "TestEnvironment.h"
#include "core/BMSDKBackend.h"
#include "core/BMSDKRestServiceManager.h"
#include "i18n/BMI18NManager.h"
#include "platform/foundation/ManualClock.h"
#include "platform/views/Alert.h"
#include "platform/views/BarButtonItem.h"
#include "platform/views/NavigationBar.h"
#include "platform/views/NavigationController.h"
#include "platform/views/Storyboard.h"
#include "popups/FZOptionsPopup.h"
#include "reports/FZSpotsSetsBackup.h"
#include "screens/results/FZCompareSpotsSetsViewController.h"
#include "screens/results/FZSavedSpotsViewController.h"
#include "screens/results/FZSpotsSetViewController.h"
#include "platform/views/TableView.h"
#include "session/BMWifiScanVC.h"
#include "storyboard/BMSDKUIStoryboard.h"
#include "ui/BMScreenChangeNotification.h"

#include <QClipboard>
#include <QDir>
#include <QGuiApplication>
#include <QJsonDocument>
#include <QJsonObject>
#include <QLabel>
#include <QToolButton>
#include <QFileInfo>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <QPushButton>
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
        QTest::newRow("nothing: simulated, customer demo") << QStringList{} << QStringList{} << "demo" << "" << "" << ""
                                                            << 0;
        QTest::newRow("environment") << QStringList{}
                                     << QStringList{"BRIGHTMERE_CUSTOMER=acme", "BRIGHTMERE_PASSWORD=s3cret",
                                                    "BRIGHTMERE_DOWNLOAD_URL=http://127.0.0.1:8080/file"}
                                     << "acme" << "s3cret" << "http://127.0.0.1:8080/file" << "" << 0;
        QTest::newRow("command line wins over environment")
            << QStringList{"--customer", "shop", "--tester", "https://example.test/x"}
            << QStringList{"BRIGHTMERE_CUSTOMER=acme", "BRIGHTMERE_DOWNLOAD_URL=http://127.0.0.1/y"} << "shop" << ""
            << "https://example.test/x" << "" << 0;
        QTest::newRow("blank customer keeps demo") << QStringList{"--customer", "  "} << QStringList{} << "demo" << ""
                                                   << "" << "" << 0;
        QTest::newRow("walkthrough") << QStringList{"--walkthrough", "out"} << QStringList{} << "demo" << "" << ""
                                     << "out" << 0;
        QTest::newRow("tester not http") << QStringList{"--tester", "ftp://host/file"} << QStringList{} << "demo" << ""
                                         << "" << "" << 1;
        QTest::newRow("tester without host") << QStringList{"--tester", "http:/file"} << QStringList{} << "demo" << ""
                                             << "" << "" << 1;
        QTest::newRow("walkthrough refuses a real tester")
            << QStringList{"--walkthrough", "out", "--tester", "http://127.0.0.1/f"} << QStringList{} << "demo" << ""
            << "http://127.0.0.1/f" << "out" << 1;
        QTest::newRow("walkthrough and screenshot") << QStringList{"--walkthrough", "out", "--screenshot", "a.png"}
                                                    << QStringList{} << "demo" << "" << "" << "out" << 1;
        QTest::newRow("any link needs a tester") << QStringList{"--any-link"} << QStringList{} << "demo" << "" << ""
                                                 << "" << 1;
        QTest::newRow("unknown option") << QStringList{"--fast"} << QStringList{} << "demo" << "" << "" << "" << 1;
        QTest::newRow("stray argument") << QStringList{"extra"} << QStringList{} << "demo" << "" << "" << "" << 1;
    }
    void options()
    {
        QFETCH(QStringList, arguments);
        QFETCH(QStringList, environment);
        QProcessEnvironment env;
        for (const QString &pair : environment)
            env.insert(pair.section('=', 0, 0), pair.section('=', 1));
        const DemoOptions parsed = DemoOptions::parse(QStringList{"brightmere_demo"} + arguments, env);
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
        QVERIFY(log.isExpanded());
        QCOMPARE(log.height(), DemoEventLog::kExpandedHeight);
    }

    void hostHearsTheKitButNeverThePassword()
    {
        LogCapture capture;
        Brightmere::ManualClock clock(1000.0);
        BMSDKBackend::setClock(&clock);
        BMSDKBackend::setSampleInterval(0.5);
        DemoOptions options;
        options.password = QString::fromLatin1(kPassword);
        auto window = makeWindow(options);
        QSignalSpy menu(window->hostDelegate(), &DemoHostDelegate::menuRequested);
        window->show();
        window->scan()->actStartStop();
        clock.advance(2.0);
        window->scan()->actStartStop();
        window->scan()->menuButton()->trigger();
        window->scan()->leftMenuButton()->trigger();
        QCoreApplication::processEvents();

        const QStringList events = window->hostDelegate()->events();
        for (const QString &expected : QStringList{"delegate: ViewDidLoad", "delegate: ActStart", "delegate: ActStop",
                                                   "notification: kWiFiFairzoneTestStarted",
                                                   "notification: kScreenChange"})
            QVERIFY2(window->hostDelegate()->count(expected) >= 1, qPrintable(expected));
        // Screen change comes before the screen's own appearance call.
        QVERIFY(events.indexOf(QRegularExpression("^notification: kScreenChange.*BMWifiScanVC"))
                < events.indexOf("delegate: ViewWillAppear"));
        QCOMPARE(menu.count(), 2);
        QVERIFY(window->menu()->popup());
        QCOMPARE(window->eventLog()->total(), events.size());
        for (const LogCapture::Line &line : capture.lines())
            QVERIFY2(!line.message.contains(QString::fromLatin1(kPassword)), qPrintable(line.message));
        for (const QString &line : events)
            QVERIFY(!line.contains(QString::fromLatin1(kPassword)));
        window.reset();
        BMSDKBackend::setClock(nullptr);
    }

    void menuLeadsTo_data()
    {
        QTest::addColumn<int>("option");
        QTest::addColumn<QString>("screen"); // the class on top afterwards
        QTest::addColumn<QString>("language");
        QTest::addColumn<bool>("done");
        QTest::newRow("confirmations") << int(DemoMenu::ConfirmationSettings)
                                       << "FZMiscellaneousSettingsViewController" << "en" << true;
        QTest::newRow("spot names") << int(DemoMenu::SpotNameSettings) << "FZSpotNamesSettingsViewController" << "en"
                                    << true;
        QTest::newRow("saved sets") << int(DemoMenu::SavedSets) << "FZSavedSpotsViewController" << "en" << true;
        QTest::newRow("Spanish") << int(DemoMenu::Spanish) << "BMWifiScanVC" << "es" << true;
        QTest::newRow("cancel") << int(DemoMenu::Cancel) << "BMWifiScanVC" << "en" << true;
        QTest::newRow("no such option") << 42 << "BMWifiScanVC" << "en" << false;
    }
    void menuLeadsTo()
    {
        QFETCH(int, option);
        QFETCH(bool, done);
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
        QTEST(BMI18NManager::sharedInstance()->currentLanguage(), "language");
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
        const int csv = DemoReportActions::ExportCsv, pdf = DemoReportActions::ExportPdf,
                  share = DemoReportActions::Share;
        QTest::newRow("set CSV") << "set" << csv << "" << "Saved" << "Flat, 2_3 *.csv";
        QTest::newRow("set PDF") << "set" << pdf << "" << "Saved" << "Flat, 2_3 *.pdf";
        QTest::newRow("comparison CSV") << "compare" << csv << "" << "Saved" << "Upstairs vs Flat, 2_3 *.csv";
        QTest::newRow("comparison PDF") << "compare" << pdf << "" << "Saved" << "Upstairs vs Flat, 2_3 *.pdf";
        QTest::newRow("no mail: say so") << "set" << share << "" << "No mail program" << "";
        QTest::newRow("no mail: save the text") << "compare" << share << "Save to file" << "Saved"
                                                << "Upstairs vs Flat, 2_3 *.txt";
        QTest::newRow("no mail: copy the text") << "set" << share << "Copy text" << "The text is on the clipboard." << "";
        QTest::newRow("a folder that cannot be made") << "set" << csv << "" << "Not saved" << "";
        QTest::newRow("backup") << "list" << int(DemoReportActions::BackUp) << "" << "Saved" << "saved-runs *.json";
        QTest::newRow("restore without a backup") << "list" << int(DemoReportActions::Restore) << "" << "Nothing restored"
                                                  << "";
    }
    void reportsWhereTheDataIs()
    {
        QFETCH(QString, screen);
        QFETCH(int, option);
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
        QVERIFY(clickOption(*window, option));
        if (!press.isEmpty())
            QVERIFY(clickAlertButton(*window, press));
        Brightmere::Alert *alert = Brightmere::Alert::shownAlert(window.get());
        QVERIFY(alert);
        QTEST(alert->title(), "alert");
        const QStringList written = QDir(folder).entryList(QDir::Files);
        QCOMPARE(written.size(), file.isEmpty() ? 0 : 1);
        if (!file.isEmpty()) {
            QVERIFY2(filesLike(folder, file).size() == 1, qPrintable(written.join(", ")));
            // The alert names the file and its folder; the event log says the same.
            QVERIFY(alert->message().contains(written.constFirst()) && alert->message().contains(QDir::toNativeSeparators(folder)));
            QVERIFY(window->eventLog()->lines().join(u'\n').contains(written.constFirst()));
        }
        if (press == u"Copy text")
            QVERIFY(QGuiApplication::clipboard()->text().startsWith("Flat, 2/3\n") && QGuiApplication::clipboard()->text().contains("\nHall: 10 Mbps"));
        if (file.endsWith(u".txt")) {
            QFile text(QDir(folder).filePath(written.constFirst()));
            QVERIFY(text.open(QIODevice::ReadOnly));
            QVERIFY(text.readAll().startsWith("Upstairs vs Flat, 2/3\n"));
        }
        QVERIFY(clickAlertButton(*window, alert->buttonTitles().constLast()));
        QVERIFY(!Brightmere::Alert::shownAlert(window.get()));
        window.reset();
    }

    void longTitlesStillExport_data()
    {
        QTest::addColumn<QString>("title");
        QTest::newRow("100 CJK characters") << QString(100, QChar(0x5BA2));
        QTest::newRow("300 letters") << QString(300, u'a');
        QTest::newRow("70 emoji") << QString::fromUtf8("\xF0\x9F\x8F\xA0").repeated(70);
    }
    void longTitlesStillExport()
    {
        QFETCH(QString, title);
        QTemporaryDir folder;
        const DemoReports reports(folder.path());
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

    // With the localisation service running on the sample bundles, no text
    // on any screen is cut, in either language; the bundles keep the
    // built-in texts' lengths, and the bar's tooltip says where they came from.
    void textsFitOnEveryScreen_data()
    {
        QTest::addColumn<QString>("language");
        QTest::newRow("English") << "en";
        QTest::newRow("Spanish") << "es";
    }
    void textsFitOnEveryScreen()
    {
        QFETCH(QString, language);
        QFile bundleFile(QStringLiteral(BRIGHTMERE_BUNDLES_DIR "/%1.json").arg(language));
        QVERIFY(bundleFile.open(QIODevice::ReadOnly));
        const QVariantMap bundle = QJsonDocument::fromJson(bundleFile.readAll()).object().toVariantMap().value("contents").toMap();
        QVERIFY(!bundle.isEmpty());
        BMI18NManager *i18n = BMI18NManager::sharedInstance();
        for (auto it = bundle.cbegin(); it != bundle.cend(); ++it) {
            const QString builtIn = i18n->getLocalStringWithCode(it.key(), language, QString());
            QVERIFY2(it.value().toString().size() == builtIn.size(),
                     qPrintable(QStringLiteral("%1: \"%2\" against \"%3\"").arg(it.key(), it.value().toString(), builtIn)));
        }

        BMLocalisationService service;
        service.setFolder(QStringLiteral(BRIGHTMERE_BUNDLES_DIR));
        QVERIFY(service.listen() != 0);
        BMSDKRestServiceManager::setBrightmereServerURL(service.baseUrl());
        QVERIFY(FZHistoricalResultSpotsSet::saveSpotSet(ReportFixtures::makeSet("Flat", {"Hall", "Desk"})));
        QVERIFY(FZHistoricalResultSpotsSet::saveSpotSet(ReportFixtures::makeSet("Upstairs", {"Hall", "Bed"}, {}, 1)));
        auto window = makeWindow(DemoOptions());
        window->show();
        QSignalSpy refreshed(window->hostDelegate(), &DemoHostDelegate::textBundleRefreshed);
        i18n->setCurrentLanguage(language);
        i18n->updateBundleTexts();
        QTRY_VERIFY_WITH_TIMEOUT(!refreshed.isEmpty(), 10000);
        QVERIFY(refreshed.constLast().first().toBool());
        QVERIFY2(window->navigation()->navigationBar()->toolTip().contains(" downloaded (service " + service.baseUrl()),
                 qPrintable(window->navigation()->navigationBar()->toolTip()));

        const auto open = [&](const char *segue) {
            window->navigation()->popToRootViewControllerAnimated(false);
            window->scan()->performSegueWithIdentifier(QString::fromLatin1(segue), nullptr);
        };
        QStringList cut;
        const auto look = [&](const QString &where) {
            QCoreApplication::processEvents();
            for (QWidget *widget : window->findChildren<QWidget *>()) {
                if (!widget->isVisible() || widget->objectName().startsWith("demoEventLog"))
                    continue;
                const auto *label = qobject_cast<QLabel *>(widget);
                const auto *button = qobject_cast<QAbstractButton *>(widget);
                const QString text = label ? label->text() : button ? button->text() : QString();
                if (text.contains(QChar(0x2026)))
                    cut << QStringLiteral("%1: \"%2\"").arg(where, text);
            }
        };
        look("test screen");
        open(BMSDKUIStoryboard::kShowMiscellaneousSettingsSegue);
        look("confirmations");
        open(BMSDKUIStoryboard::kShowSpotNamesSettingsSegue);
        look("spot names");
        open(BMSDKUIStoryboard::kShowSavedSpotsSegue);
        auto *list = top<FZSavedSpotsViewController>(*window);
        QVERIFY(list);
        look("saved list");
        list->didSelectRowAtIndexPath(list->tableView(), Brightmere::IndexPath(0, 0));
        look("spots set");
        window->navigation()->popViewControllerAnimated(false);
        list->enableCompareSetsMode();
        look("saved list, comparing");
        list->didSelectRowAtIndexPath(list->tableView(), Brightmere::IndexPath(0, 0));
        list->didSelectRowAtIndexPath(list->tableView(), Brightmere::IndexPath(1, 0));
        list->forwardButton()->trigger();
        QVERIFY(top<FZCompareSpotsSetsViewController>(*window));
        look("compare");
        QVERIFY2(cut.isEmpty(), qPrintable(cut.join(u'\n')));
        window.reset();
        BMSDKRestServiceManager::setBrightmereServerURL(QString());
    }

    // A step that cannot save its picture fails, and the tour stops there.
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
        QVERIFY(walk.steps().at(0).ok);
        QVERIFY(!walk.steps().at(1).ok);
        QVERIFY(walk.summary().contains("FAIL  preparing: tester setting up (picture not saved)"));
        QVERIFY(walk.summary().contains("2 steps, 1 failed"));
        QVERIFY(text.contains("walkthrough stopped at preparing"));
        window.reset();
    }

    void walkthroughNeedsAFolder()
    {
        QString text;
        QTextStream out(&text);
        QTemporaryDir parent;
        QFile file(parent.filePath("taken"));
        QVERIFY(file.open(QIODevice::WriteOnly));
        file.close();
        DemoWalkthrough walk(parent.filePath("taken"), out);
        QVERIFY(!walk.isReady());
        QVERIFY(!walk.run(nullptr, DemoOptions()));
        QVERIFY(text.contains("cannot prepare"));
    }

private:
    static constexpr const char *kPassword = "pw-7Qz!k";

    static QStringList filesLike(const QString &folder, const QString &wildcard)
    {
        const QRegularExpression like(QRegularExpression::wildcardToRegularExpression(wildcard));
        return QDir(folder).entryList(QDir::Files).filter(like);
    }

    template<typename T>
    static T *top(DemoWindow &window)
    {
        QCoreApplication::processEvents();
        return qobject_cast<T *>(window.navigation()->topViewController());
    }

    static bool clickOption(DemoWindow &window, int option)
    {
        QCoreApplication::processEvents();
        for (FZOptionsPopup *popup : window.findChildren<FZOptionsPopup *>()) {
            for (QPushButton *button : popup->optionButtons()) {
                if (popup->isVisible() && FZOptionsPopup::tagOf(button) == option) {
                    QTest::mouseClick(button, Qt::LeftButton);
                    QCoreApplication::processEvents();
                    return true;
                }
            }
        }
        return false;
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
