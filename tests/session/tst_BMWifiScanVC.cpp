#include "LogCapture.h"
#include "WifiScanHarness.h"
#include "chart/RealTimePlot.h"
#include "chart/XYGraph.h"
#include "core/BMReachabilityManager.h"
#include "core/BMWiFiTester.h"
#include "i18n/BMI18NManager.h"
#include "platform/foundation/NotificationCenter.h"
#include "platform/views/PageControl.h"
#include "session/BMFairzoneTutorialPageView.h"
#include "session/BMWiFiFairzoneTestNotification.h"
#include "ui/BMLabel.h"
#include "ui/BrightmereColor.h"

#include <QChartView>
#include <QValueAxis>
#include <QDir>
#include <QGraphicsTextItem>
#include <QTextDocument>
#include <QFile>
#include <QLabel>
#include <QTextDocumentFragment>

using namespace Brightmere;

// The test screen's session: what the host hears and when, the controls in
// each state, results on screen, the feedback sound, the SSID line, the
// tutorial, and what a person sees. The session's own logic (spots,
// holds, the sound's pacing) is tested without a screen.
class tst_BMWifiScanVC : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void delegateCallOrder_data();
    void delegateCallOrder();
    void controlsPerState_data();
    void controlsPerState();
    void resultsOnScreen_data();
    void resultsOnScreen();
    void ssidLine_data();
    void ssidLine();
    void tutorialPaging_data();
    void tutorialPaging();
    void tutorialRebuiltThenRemovedForGood();
    void passwordStaysInMemoryOnly();
    void followsTheWindowWidth_data();
    void followsTheWindowWidth();
    void holdNoteShowsWhole_data();
    void holdNoteShowsWhole();
};

void tst_BMWifiScanVC::delegateCallOrder_data()
{
    QTest::addColumn<QString>("steps");
    QTest::addColumn<QStringList>("expected"); // since the last "mark", or since the load without one
    QTest::addColumn<bool>("alert");
    QTest::addColumn<bool>("scanning");
    QTest::addColumn<int>("tested");
    QTest::addColumn<int>("spots");
    QTest::addColumn<int>("startedPosts");

    QTest::newRow("load and appear: a stop before the load")
        << "" << QStringList{"StopTesting", "ViewDidLoad", "ViewWillAppear"} << false << false << 0 << 0 << 0;
    QTest::newRow("sound on") << "mark,sound" << QStringList{"SoundOnOff:1"} << false << false << 0 << 0 << 0;
    QTest::newRow("start") << "mark,start" << QStringList{"StartTesting", "ActStart"} << false << true << 0 << 0 << 1;
    QTest::newRow("stop") << "start,results:2,mark,startStop" << QStringList{"StopTesting", "ActStop"} << false << false
                          << 2 << 0 << 1;
    QTest::newRow("stop while preparing is ignored")
        << "startStop,mark,startStop" << QStringList{} << false << true << 0 << 0 << 1;
    QTest::newRow("start without Wi-Fi") << "wifiOff,mark,start" << QStringList{"ActStartAndNoWifi"} << true << false
                                         << 0 << 0 << 0;
    QTest::newRow("Wi-Fi lost, found at the tester's finish: results and spots stay")
        << "start,results:2,record,mark,wifiOff,results:1" << QStringList{"StopTesting", "ShowNoWifiPopup"} << true
        << false << 2 << 1 << 1;
    QTest::newRow("Wi-Fi lost, found at the next result, which is dropped")
        << "start,results:2,record,mark,wifiOff,resultNoWifi" << QStringList{"StopTesting", "ShowNoWifiPopup"}
        << true << false << 2 << 1 << 1;
    QTest::newRow("background while recording abandons the spot")
        << "start,results:2,press,mark,background" << QStringList{"StopTesting"} << false << false << 2 << 0 << 1;
    QTest::newRow("resign active while recording saves the spot and goes on")
        << "start,results:2,press,mark,resign" << QStringList{"SaveRecord"} << false << true << 2 << 1 << 1;
    QTest::newRow("disappear while testing") << "start,results:1,mark,hide"
                                             << QStringList{"StopTesting", "ViewWillDisappear"} << false << false << 1
                                             << 0 << 1;
    QTest::newRow("an edit load appearance only resets")
        << "hide,edit,mark,show" << QStringList{"ActReset"} << false << false << 0 << 2 << 0;
}

void tst_BMWifiScanVC::delegateCallOrder()
{
    QFETCH(QString, steps);
    QFETCH(QStringList, expected);
    QFETCH(bool, alert);
    QFETCH(bool, scanning);
    QFETCH(int, tested);
    QFETCH(int, spots);
    QFETCH(int, startedPosts);

    WifiScanHarness h;
    int posts = 0;
    NotificationCenter::defaultCenter().addObserver(&posts, QString::fromLatin1(kWiFiFairzoneTestStarted),
                                                    [&posts](const Notification &) { ++posts; });
    int subscribersAtMark = -1;
    const auto reachability = BMReachabilityManager::sharedInstance();
    h.run(steps.section("mark", 0, 0));
    if (steps.contains("mark")) {
        h.recorder.mark();
        subscribersAtMark = reachability->subscriberCount();
        h.run(steps.section("mark", 1));
    }
    NotificationCenter::defaultCenter().removeObserver(&posts);

    QCOMPARE(h.recorder.sinceMark(), expected);
    Alert *shown = h.alert();
    QCOMPARE(shown != nullptr, alert);
    if (shown) {
        QCOMPARE(shown->title(), BMI18NManager::stringForCode("bmOops"));
        QCOMPARE(shown->message(), BMI18NManager::stringForCode("switch_wifi_to_continue"));
    }
    QCOMPARE(h.screen->session()->isScanning(), scanning);
    QCOMPARE(h.screen->session()->testedSpeeds().size(), tested);
    QCOMPARE(h.screen->session()->recordedSpeeds().size(), spots);
    QCOMPARE(posts, startedPosts);
    QCOMPARE(BMWifiScanVC::imageNameOf(h.screen->btnSound()),
             steps.contains("sound") ? QString("buttonAudioOn") : QString("buttonAudioOff"));
    if (steps.contains("edit")) {
        // No reachability subscription in that appearance either.
        QCOMPARE(reachability->subscriberCount(), subscribersAtMark);
        QCOMPARE(h.screen->session()->spotsSetName(), QString("Upstairs"));
        QVERIFY(h.screen->btnRecordReset()->isEnabled());
        QVERIFY(!h.screen->scrollTutorial());
    }
}

void tst_BMWifiScanVC::controlsPerState_data()
{
    QTest::addColumn<QString>("steps");
    QTest::addColumn<bool>("startEnabled");
    QTest::addColumn<QString>("startLook"); // image:title key
    QTest::addColumn<bool>("recordEnabled");
    QTest::addColumn<QString>("recordLook");
    QTest::addColumn<bool>("holdShown");
    QTest::addColumn<bool>("preparingShown");
    QTest::addColumn<QString>("counter");
    QTest::addColumn<QString>("speed");

    QTest::newRow("stopped, nothing measured") << "" << true << "buttonStart.png:start" << false
                                               << "buttonReset.png:reset" << false << false << "wifiCounter" << "0.0";
    QTest::newRow("preparing") << "startStop" << false << "buttonStop.png:stop" << true << "buttonRecord.png:record"
                               << true << true << "wifiCounter" << "0.0";
    QTest::newRow("preparing, setup finished") << "start" << true << "buttonStop.png:stop" << true
                                               << "buttonRecord.png:record" << true << true << "wifiCounter" << "0.0";
    QTest::newRow("testing") << "start,results:1" << true << "buttonStop.png:stop" << true << "buttonRecord.png:record"
                             << true << false << "wifiCounter" << "10.0";
    QTest::newRow("recording shows the running average")
        << "start,results:1,press,results:1" << true << "buttonStop.png:stop" << true << "buttonRecord.png:record"
        << true << false << "wifiCounterRecording" << "15.0";
    QTest::newRow("stopped after results") << "start,results:2,startStop" << true << "buttonStart.png:start" << true
                                           << "buttonReset.png:reset" << false << false << "wifiCounter" << "0.0";
}

void tst_BMWifiScanVC::controlsPerState()
{
    QFETCH(QString, steps);
    QFETCH(bool, startEnabled);
    QFETCH(QString, startLook);
    QFETCH(bool, recordEnabled);
    QFETCH(QString, recordLook);
    QFETCH(bool, holdShown);
    QFETCH(bool, preparingShown);
    QFETCH(QString, counter);
    QFETCH(QString, speed);

    WifiScanHarness h({10.0, 20.0});
    h.run(steps);
    BMWifiScanVC *s = h.screen;
    const auto look = [](BMImageButton *button) {
        const QString key = button->isEnabled() ? button->titleForState(BMImageButton::State::Normal)
                                                : button->titleForState(BMImageButton::State::Disabled);
        return BMWifiScanVC::imageNameOf(button) + ":" + key;
    };
    const auto localised = [](const QString &imageAndKey) {
        return imageAndKey.section(':', 0, 0) + ":" + BMI18NManager::stringForCode(imageAndKey.section(':', 1));
    };
    QCOMPARE(s->btnStartStop()->isEnabled(), startEnabled);
    QCOMPARE(look(s->btnStartStop()), localised(startLook));
    QCOMPARE(s->btnRecordReset()->isEnabled(), recordEnabled);
    QCOMPARE(look(s->btnRecordReset()), localised(recordLook));
    QCOMPARE(s->btnRecordReset()->text(), localised(recordLook).section(':', 1)); // what is drawn
    QCOMPARE(s->lblHoldToAverage()->isVisibleTo(s), holdShown);
    QCOMPARE(s->lblPreparing()->isVisibleTo(s), preparingShown);
    QCOMPARE(BMWifiScanVC::imageNameOf(s->wifiCounterBackground()), counter);
    QCOMPARE(s->lblWifiSpeed()->text(), speed);
    // White on the recording green, and the normal colour back afterwards.
    const QColor speedColour = s->lblWifiSpeed()->palette().color(QPalette::WindowText);
    QCOMPARE(speedColour == Color::colorWithR(255, 255, 255), counter == "wifiCounterRecording");
}

void tst_BMWifiScanVC::resultsOnScreen_data()
{
    QTest::addColumn<QList<double>>("speeds");
    QTest::addColumn<int>("kept");
    QTest::addColumn<QString>("shown");
    QTest::addColumn<double>("lastPlotted");
    QTest::newRow("cut to one digit, not rounded") << QList<double>{2.79} << 1 << "2.7" << 2.79;
    QTest::newRow("zero is kept, shown and plotted") << QList<double>{0.0} << 1 << "0.0" << 0.0;
}

void tst_BMWifiScanVC::resultsOnScreen()
{
    QFETCH(QList<double>, speeds);
    QFETCH(int, kept);
    QFETCH(QString, shown);
    QFETCH(double, lastPlotted);
    WifiScanHarness h;
    h.start();
    WifiTestResult::List results;
    for (double speed : speeds) {
        results << WifiTestResult::create(speed);
        results.last()->setLabel("from the tester");
        h.screen->wiFiTesterDidUpdateWithTestResult(h.screen->session()->wifiTester(), results.last());
    }
    QCOMPARE(h.screen->session()->testedSpeeds().size(), kept);
    QCOMPARE(h.screen->lblWifiSpeed()->text(), shown);
    QCOMPARE(h.screen->charPlot()->lastSpeedAdded(), lastPlotted);
    QVERIFY(!h.screen->session()->isPreparingWifiTester());
    const WifiTestResult::Ptr first = h.screen->session()->testedSpeeds().constFirst();
    QCOMPARE(first->label(), QString()); // labels are the screen's to give
    QCOMPARE(first->coordinate().has_value(), h.screen->session()->wifiTester()->location().has_value());
}

void tst_BMWifiScanVC::ssidLine_data()
{
    QTest::addColumn<QString>("ssid");
    QTest::addColumn<QString>("bssid");
    QTest::addColumn<bool>("wifi");
    QTest::addColumn<QString>("shown");
    QTest::newRow("name and grey BSSID") << "Loft <5G>" << "02:1a:2b:3c:4d:5e" << true << "Loft <5G> (02:1a:2b:3c:4d:5e)";
    QTest::newRow("BSSID without a name shows nothing") << "" << "02:1a:2b:3c:4d:5e" << true << "";
    QTest::newRow("off Wi-Fi") << "HomeNet" << "02:1a:2b:3c:4d:5e" << false << "";
}

void tst_BMWifiScanVC::ssidLine()
{
    QFETCH(QString, ssid);
    QFETCH(QString, bssid);
    QFETCH(bool, wifi);
    QFETCH(QString, shown);
    WifiScanHarness h;
    BMSimulatedNetwork::shared().setNetwork(ssid, bssid);
    h.setWifi(wifi);
    h.screen->updateSSID();
    const QString html = h.screen->lblSSID()->text();
    QCOMPARE(QTextDocumentFragment::fromHtml(html).toPlainText(), shown);
    QCOMPARE(html.contains("color:#999999"), !bssid.isEmpty() && !shown.isEmpty());
    QCOMPARE(h.screen->lblSSID()->palette().color(QPalette::WindowText), Color::colorWithHexString("3593da"));
}

void tst_BMWifiScanVC::tutorialPaging_data()
{
    QTest::addColumn<QList<double>>("restingPages"); // where each drag comes to rest, in page widths
    QTest::addColumn<QStringList>("expected");
    QTest::addColumn<int>("currentPage");
    QTest::newRow("to the second page") << QList<double>{1.0} << QStringList{"TutorialView:2"} << 1;
    QTest::newRow("on and on") << QList<double>{1.0, 3.0, 3.0}
                               << QStringList{"TutorialView:2", "TutorialView:4"} << 3;
}

void tst_BMWifiScanVC::tutorialPaging()
{
    QFETCH(QList<double>, restingPages);
    QFETCH(QStringList, expected);
    QFETCH(int, currentPage);
    WifiScanHarness h;
    ScrollView *strip = h.screen->scrollTutorial();
    QVERIFY(strip);
    h.recorder.mark();
    for (double page : restingPages) {
        strip->setContentOffset(QPoint(int(page * strip->width()), 0), false);
        Q_EMIT strip->didEndDecelerating();
    }
    QCOMPARE(h.recorder.sinceMark(), expected);
    QCOMPARE(h.screen->pageResults()->currentPage(), currentPage);

    // A tap on the dots scrolls there, telling the host nothing.
    h.recorder.mark();
    h.screen->pageResults()->setCurrentPage(2);
    Q_EMIT h.screen->pageResults()->valueChanged();
    QTRY_COMPARE(strip->contentOffset().x(), 2 * strip->width());
    QCOMPARE(h.recorder.sinceMark(), QStringList{});

    // A narrower window: every page as wide as the strip, the same one on show.
    h.nav->resize(320, 640);
    QCoreApplication::processEvents();
    QCOMPARE(strip->width(), 320 - 16);
    for (QWidget *page : strip->subviews())
        QCOMPARE(page->width(), strip->width());
    QCOMPARE(strip->contentOffset().x(), 2 * strip->width());
}

void tst_BMWifiScanVC::tutorialRebuiltThenRemovedForGood()
{
    WifiScanHarness h;
    for (int appearance = 0; appearance < 2; ++appearance, h.run("hide,show")) {
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
        const auto pages = h.screen->scrollTutorial()->findChildren<BMFairzoneTutorialPageView *>();
        QCOMPARE(pages.size(), kTutorialPages);
        QCOMPARE(pages.last()->lblText()->text(), BMI18NManager::stringForCode("fairzones_tutorial_4"));
        QCOMPARE(h.screen->scrollTutorial()->contentSize().width(), kTutorialPages * h.screen->scrollTutorial()->width());
        QVERIFY(h.screen->pageResults()->isVisibleTo(h.screen));
    }
    h.run("start,startStop,hide,show");
    QVERIFY(!h.screen->scrollTutorial() && !h.screen->pageResults());
}

void tst_BMWifiScanVC::passwordStaysInMemoryOnly()
{
    LogCapture log;
    {
        WifiScanHarness h;
        h.run("start,results:2,record,startStop"); // a stop writes the remembered spot names
        QVERIFY(h.screen->session()->wifiTester()->hasSdkPassword());
        QCOMPARE(h.screen->session()->wifiTester()->sdkCustomer(), QString("acme"));
        QVERIFY(h.screen->session()->wifiTester()->usesProductionServer());
        QCOMPARE(h.screen->screenNameAndClassForEventTracker().screenName(), QString("WiFiSpeedScanScreen"));
        QFile defaults(h.env.defaultsFilePath());
        QVERIFY(defaults.open(QIODevice::ReadOnly));
        QVERIFY(!defaults.readAll().contains(WifiScanHarness::kPassword));
    }
    QVERIFY(!log.text().isEmpty());
    QVERIFY(!log.contains(WifiScanHarness::kPassword));
}

void tst_BMWifiScanVC::followsTheWindowWidth_data()
{
    QTest::addColumn<int>("width");
    QTest::newRow("320") << 320;
    QTest::newRow("375") << 375;
    QTest::newRow("1280") << 1280;
}

void tst_BMWifiScanVC::followsTheWindowWidth()
{
    QFETCH(int, width);
    // Three-digit speeds: the widest labels of the speed axis.
    WifiScanHarness h({48.0, 131.0, 96.0, 142.0});
    QVERIFY(QTest::qWaitForWindowExposed(h.nav.get()));
    h.start();
    h.results(6);
    h.recordSpot();
    // Resized while shown, as a person drags the window's edge.
    h.nav->resize(width, 640);
    QCoreApplication::processEvents();
    QWidget *panel = h.screen->viewBordered();
    QCOMPARE(panel->width(), width - 16);
    QCOMPARE(h.screen->tblRecords()->width(), width);
    QCOMPARE(h.row(0)->width(), width);
    // The chart fills its holder, which runs 20 points under the panel's
    // frame on both sides; its axes' labels and titles stay in what shows.
    QWidget *holder = h.screen->viewPlotHolder();
    QCOMPARE(holder->width(), panel->width() + 40);
    auto *chart = holder->findChild<QChartView *>();
    QVERIFY(chart);
    QCOMPARE(chart->width(), holder->width());
    XYGraph *graph = h.screen->charPlot()->graph();
    QCOMPARE(graph->size().width(), qreal(holder->width()));
    QVERIFY(graph->plotArea().right() <= holder->width() - 20);
    // Every label and title is drawn whole in what shows, the top speed and
    // the end of the time axis among them (laid out anew for this width).
    const QRectF shown(20, 0, holder->width() - 40, holder->height());
    QStringList texts;
    for (QGraphicsItem *item : chart->scene()->items()) {
        auto *text = dynamic_cast<QGraphicsTextItem *>(item);
        if (!text || !text->isVisible() || text->toPlainText().isEmpty())
            continue;
        texts << text->toPlainText().trimmed();
        // The glyphs: the item's rectangle less its document's margin.
        const qreal margin = text->document()->documentMargin();
        const QRectF glyphs = text->sceneBoundingRect().adjusted(margin, margin, -margin, -margin);
        QVERIFY2(shown.contains(glyphs), qPrintable(text->toPlainText()));
        if (text->toPlainText() == QString::number(int(graph->xAxis()->max())))
            QVERIFY(qAbs(text->sceneBoundingRect().center().x() - graph->plotArea().right()) < 10);
    }
    for (const QString &wanted : {QString("Mbps"), QString("sec"), QString::number(h.screen->charPlot()->gMax())})
        QVERIFY2(texts.contains(wanted), qPrintable(texts.join(',')));
    // Every control inside the panel, none over another.
    const QList<QWidget *> controls{h.screen->btnStartStop(), h.screen->btnRecordReset(), h.screen->btnSound(),
                                    h.screen->wifiCounterBackground(), h.screen->lblHoldToAverage(),
                                    h.screen->lblSSID()};
    for (int i = 0; i < controls.size(); ++i) {
        QVERIFY2(panel->rect().contains(controls.at(i)->geometry()), qPrintable(controls.at(i)->objectName()));
        for (int j = i + 1; j < controls.size(); ++j)
            QVERIFY2(!controls.at(i)->geometry().intersects(controls.at(j)->geometry()),
                     qPrintable(controls.at(i)->objectName() + " " + controls.at(j)->objectName()));
    }
    const QString path = QCoreApplication::applicationDirPath() + QString("/wifiscan-%1.png").arg(width);
    QVERIFY(h.nav->grab().save(path));
}

void tst_BMWifiScanVC::holdNoteShowsWhole_data()
{
    QTest::addColumn<QString>("language");
    QTest::newRow("en") << "en";
    QTest::newRow("es") << "es";
}

void tst_BMWifiScanVC::holdNoteShowsWhole()
{
    QFETCH(QString, language);
    WifiScanHarness h;
    BMI18NManager::sharedInstance()->setCurrentLanguage(language);
    h.start();
    BMLabel *note = h.screen->lblHoldToAverage();
    const QStringList lines = note->linesForWidth(note->contentsRect().width());
    BMI18NManager::sharedInstance()->setCurrentLanguage("en");
    QVERIFY(lines.size() <= 2);
    QVERIFY2(!lines.join(' ').contains(QChar(0x2026)), qPrintable(lines.join('|')));
    QVERIFY(note->height() >= int(lines.size()) * note->fontMetrics().lineSpacing());
}

QTEST_MAIN(tst_BMWifiScanVC)
#include "tst_BMWifiScanVC.moc"
