#include "DemoEventLog.h"
#include "DemoHostDelegate.h"
#include "DemoMenu.h"
#include "DemoOptions.h"
#include "DemoReports.h"
#include "DemoWalkthrough.h"
#include "DemoWindow.h"
#include "../reports/ReportFixtures.h"
#include "LogCapture.h"
#include "TestEnvironment.h"
#include "core/BMSDKBackend.h"
#include "i18n/BMI18NManager.h"
#include "platform/foundation/ManualClock.h"
#include "platform/views/BarButtonItem.h"
#include "platform/views/NavigationController.h"
#include "platform/views/Storyboard.h"
#include "popups/FZOptionsPopup.h"
#include "reports/FZSpotsSetsBackup.h"
#include "screens/results/FZSpotsSetViewController.h"
#include "session/BMWifiScanVC.h"
#include "storyboard/BMSDKUIStoryboard.h"
#include "ui/BMScreenChangeNotification.h"

#include <QDir>
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

    // What the menu's report entries write into the host's folder, and what
    // the event log then says. "shown" puts the spots set screen of that set
    // on top; otherwise the newest set is the one exported.
    void menuReports_data()
    {
        QTest::addColumn<QList<int>>("options");
        QTest::addColumn<bool>("withSets");
        QTest::addColumn<QString>("shown");
        QTest::addColumn<bool>("ok");          // of the last option
        QTest::addColumn<QString>("file");     // a file the folder must hold, by prefix and suffix
        QTest::addColumn<QString>("logLine");  // part of the last event log line
        const int csv = DemoMenu::ExportCsv, pdf = DemoMenu::ExportPdf, backUp = DemoMenu::BackUp,
                  restore = DemoMenu::Restore;
        QTest::newRow("CSV of the newest set") << QList<int>{csv} << true << "" << true << "Upstairs *.csv"
                                               << "CSV written";
        QTest::newRow("PDF of the set shown") << QList<int>{pdf} << true << "Flat, 2/3" << true << "Flat, 2_3 *.pdf"
                                              << "PDF report written";
        QTest::newRow("CSV with nothing saved") << QList<int>{csv} << false << "" << false << "" << "no saved set";
        QTest::newRow("backup") << QList<int>{backUp} << true << "" << true << "saved-runs *.json" << "backup written";
        QTest::newRow("restore without a backup") << QList<int>{restore} << true << "" << false << ""
                                                  << "no backup";
        QTest::newRow("restore over the same sets adds nothing")
            << QList<int>{backUp, restore} << true << "" << true << "saved-runs *.json"
            << "0 added, 2 already there, 0 renamed";
    }
    void menuReports()
    {
        QFETCH(QList<int>, options);
        QFETCH(bool, withSets);
        QFETCH(QString, shown);
        QFETCH(QString, file);
        QTemporaryDir folder;
        if (withSets) {
            QVERIFY(FZHistoricalResultSpotsSet::saveSpotSet(ReportFixtures::makeSet("Flat, 2/3", {"Hall", "Desk"})));
            QVERIFY(FZHistoricalResultSpotsSet::saveSpotSet(
                ReportFixtures::makeSet("Upstairs", {"Hall", "Bed"}, {}, 1)));
        }
        auto window = makeWindow(DemoOptions());
        window->show();
        window->menu()->setReportsFolder(folder.filePath("reports"));
        if (!shown.isEmpty()) {
            auto *screen = new FZSpotsSetViewController;
            screen->setSpotsSet(FZHistoricalResultSpotsSet::spotsSetWithName(shown));
            window->navigation()->pushViewController(screen, false);
        }
        bool done = false;
        for (int option : options)
            done = window->menu()->choose(option);
        QTEST(done, "ok");
        QFETCH(QString, logLine);
        QVERIFY(!window->eventLog()->lines().isEmpty());
        QVERIFY2(window->eventLog()->lines().constLast().contains(logLine),
                 qPrintable(window->eventLog()->lines().constLast()));
        const QStringList written = QDir(folder.filePath("reports")).entryList(QDir::Files);
        QCOMPARE(written.size(), file.isEmpty() ? 0 : 1);
        QVERIFY2(file.isEmpty() || filesLike(folder.filePath("reports"), file).size() == 1, qPrintable(written.join(", ")));
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

    // The whole tour in process: what the summary tells must match what was
    // done, and the password given never shows.
    void walkthroughSummary()
    {
        LogCapture capture;
        QString text;
        QTextStream out(&text);
        QTemporaryDir folder;
        DemoWalkthrough walk(folder.path(), out);
        QVERIFY(walk.isReady());
        DemoOptions options;
        options.password = QString::fromLatin1(kPassword);
        auto window = makeWindow(options);
        QVERIFY(walk.run(window.get(), options));
        const QString summary = walk.summary();
        QCOMPARE(walk.steps().size(), 22);
        for (const DemoWalkthrough::Step &step : walk.steps())
            QVERIFY2(QFileInfo(step.picture).size() > 10000, qPrintable(step.picture));
        QVERIFY(QFileInfo::exists(folder.filePath("09-save-ground-floor.png")));
        // Rows of the compare table: first set, then second, as measured.
        QVERIFY(summary.contains("spot | Ground floor | After moving router"));
        QVERIFY(summary.contains("Kitchen | 12.0 Mbps | 22.0 Mbps"));
        QVERIFY(summary.contains("first run: Spot 4 16.7 Mbps, Spot 3 23.2 Mbps, Kitchen 12.0 Mbps"));
        // Reports and a backup beside the pictures; the backup came back whole.
        for (const char *pattern : {"Ground floor 2*.csv", "Ground floor vs After moving router *.csv",
                                       "Ground floor vs After moving router *.pdf", "saved-runs *.json"}) {
            const QStringList found = filesLike(folder.path(), QString::fromUtf8(pattern));
            QVERIFY2(found.size() == 1 && QFileInfo(folder.filePath(found.constFirst())).size() > 100, pattern);
        }
        QFile pairs(folder.filePath(filesLike(folder.path(), "Ground floor vs * *.csv").value(0)));
        QVERIFY(pairs.open(QIODevice::ReadOnly));
        QVERIFY(pairs.readAll().contains("\r\nKitchen,12.00,22.00,10.00,83.33"));
        QVERIFY(summary.contains("ok    restore: into an empty store: 2 of 2 sets back as saved, 2 stored"));
        QVERIFY(summary.contains("22 steps, 0 failed"));
        QCOMPARE(text.count(QStringLiteral("] ok  ")), 22);
        QVERIFY(!text.contains(QString::fromLatin1(kPassword)) && !summary.contains(QString::fromLatin1(kPassword)));
        for (const LogCapture::Line &line : capture.lines())
            QVERIFY2(!line.message.contains(QString::fromLatin1(kPassword)), qPrintable(line.message));
        window.reset();
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
