#include "LogCapture.h"
#include "PopupInput.h"
#include "WifiScanHarness.h"
#include <Brightmere/chart/RealTimePlot.h>
#include <Brightmere/chart/XYGraph.h>
#include <Brightmere/core/BMReachabilityManager.h>
#include <Brightmere/core/BMWiFiTester.h>
#include <Brightmere/i18n/BMI18NManager.h>
#include <Brightmere/model/BMSDKUISettings.h>
#include <Brightmere/platform/foundation/Clock.h>
#include <Brightmere/platform/foundation/NotificationCenter.h>
#include <Brightmere/platform/views/BarButtonItem.h>
#include <Brightmere/platform/views/KeyboardNotifications.h>
#include <Brightmere/platform/views/NavigationBar.h>
#include <Brightmere/platform/views/PageControl.h>
#include <Brightmere/platform/views/Switch.h>
#include <Brightmere/popups/FZLabelOptionsPopup.h>
#include <Brightmere/screens/results/FZSavedSpotsViewController.h>
#include <Brightmere/session/BMFairzoneTutorialPageView.h>
#include <Brightmere/session/BMSpeedRecordDelegate.h>
#include <Brightmere/session/BMWiFiFairzoneTestNotification.h>
#include <Brightmere/ui/BMLabel.h>
#include <Brightmere/ui/BrightmereColor.h>

#include <QAbstractItemView>
#include <QAccessible>
#include <QApplication>
#include <QChartView>
#include <QCompleter>
#include <QFile>
#include <QGraphicsTextItem>
#include <QLineEdit>
#include <QTextDocument>
#include <QTextDocumentFragment>
#include <QToolButton>
#include <QValueAxis>

using namespace Brightmere;

// Stands in for the screen as a row's delegate: each call a row makes, in order.
class RowCalls : public QObject, public BMSpeedRecordDelegate
{
public:
    void didBeginEditingSpeedRecord(BMSpeedRecordCell *) override { calls << "begin"; }
    void didEndEditingSpeedRecord(BMSpeedRecordCell *) override { calls << "end"; }
    void didStartTapReRecordView(BMSpeedRecordCell *) override { calls << "start"; }
    void didFinishTapReRecordView(BMSpeedRecordCell *) override { calls << "finish"; }
    void didCancelTapReRecordView(BMSpeedRecordCell *) override { calls << "cancel"; }
    void didEnterInEditMode(BMSpeedRecordCell *) override { calls << "edit"; }
    QStringList calls;
};

// The test screen as a person uses it: what the host hears and when, the
// controls in each state, the SSID line, the tutorial and the layout; spots
// recorded, measured again, deleted and renamed; the run saved as a set.
// The session's own logic (holds, averages, names, the sound's pacing) is
// tested without a screen; here one case per rule shows the screen uses it.
class tst_BMWifiScanVC : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void delegateCallOrder_data()
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
        QTest::newRow("stop") << "start,results:2,mark,startStop" << QStringList{"StopTesting", "ActStop"} << false
                              << false << 2 << 0 << 1;
        QTest::newRow("stop while preparing is ignored")
            << "startStop,mark,startStop" << QStringList{} << false << true << 0 << 0 << 1;
        QTest::newRow("start without Wi-Fi") << "wifiOff,mark,start" << QStringList{"ActStartAndNoWifi"} << true
                                             << false << 0 << 0 << 0;
        QTest::newRow("Wi-Fi lost: stopped and told, results and spots stay")
            << "start,results:2,record,mark,wifiOff,results:1" << QStringList{"StopTesting", "ShowNoWifiPopup"}
            << true << false << 2 << 1 << 1;
        QTest::newRow("background while recording abandons the spot")
            << "start,results:2,press,mark,background" << QStringList{"StopTesting"} << false << false << 2 << 0 << 1;
        QTest::newRow("resign active while recording saves the spot and goes on")
            << "start,results:2,press,mark,resign" << QStringList{"SaveRecord"} << false << true << 2 << 1 << 1;
        QTest::newRow("disappear while testing") << "start,results:1,mark,hide"
                                                 << QStringList{"StopTesting", "ViewWillDisappear"} << false << false
                                                 << 1 << 0 << 1;
        QTest::newRow("an edit load appearance only resets")
            << "hide,edit,mark,show" << QStringList{"ActReset"} << false << false << 0 << 2 << 0;
    }
    void delegateCallOrder()
    {
        QFETCH(QString, steps);
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

        QTEST(h.recorder.sinceMark(), "expected");
        QTEST(h.alert() != nullptr, "alert");
        QTEST(h.screen->session()->isScanning(), "scanning");
        QTEST(int(h.screen->session()->testedSpeeds().size()), "tested");
        QTEST(int(h.screen->session()->recordedSpeeds().size()), "spots");
        QTEST(posts, "startedPosts");
        QCOMPARE(BMWifiScanVC::imageNameOf(h.screen->btnSound()),
                 steps.contains("sound") ? QString("buttonAudioOn") : QString("buttonAudioOff"));
        if (steps.contains("edit")) {
            // No reachability subscription in that appearance either.
            QCOMPARE(reachability->subscriberCount(), subscribersAtMark);
            QVERIFY(h.screen->btnRecordReset()->isEnabled());
            QVERIFY(!h.screen->scrollTutorial());
        }
    }

    void controlsPerState_data()
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
        const QString start = "buttonStart.png:start", stop = "buttonStop.png:stop";
        const QString reset = "buttonReset.png:reset", record = "buttonRecord.png:record";
        QTest::newRow("stopped, nothing measured")
            << "" << true << start << false << reset << false << false << "wifiCounter" << "0.0";
        QTest::newRow("preparing") << "startStop" << false << stop << true << record << true << true << "wifiCounter"
                                   << "0.0";
        QTest::newRow("preparing, setup finished")
            << "start" << true << stop << true << record << true << true << "wifiCounter" << "0.0";
        QTest::newRow("testing: cut to one digit, not rounded")
            << "start,results:1" << true << stop << true << record << true << false << "wifiCounter" << "2.7";
        QTest::newRow("recording shows the running average") << "start,results:1,press,results:1" << true << stop
                                                             << true << record << true << false
                                                             << "wifiCounterRecording" << "11.3";
        QTest::newRow("stopped after results")
            << "start,results:2,startStop" << true << start << true << reset << false << false << "wifiCounter" << "0.0";
    }
    void controlsPerState()
    {
        QFETCH(QString, counter);
        WifiScanHarness h({2.79, 20.0});
        h.run(fetched<QString>("steps"));
        BMWifiScanVC *s = h.screen;
        const auto look = [](BMImageButton *button) {
            const auto state = button->isEnabled() ? BMImageButton::State::Normal : BMImageButton::State::Disabled;
            return BMWifiScanVC::imageNameOf(button) + ":" + button->titleForState(state);
        };
        const auto localised = [](const QString &imageAndKey) {
            return imageAndKey.section(':', 0, 0) + ":" + BMI18NManager::stringForCode(imageAndKey.section(':', 1));
        };
        QTEST(s->btnStartStop()->isEnabled(), "startEnabled");
        QCOMPARE(look(s->btnStartStop()), localised(fetched<QString>("startLook")));
        QTEST(s->btnRecordReset()->isEnabled(), "recordEnabled");
        QFETCH(QString, recordLook);
        QCOMPARE(look(s->btnRecordReset()), localised(recordLook));
        QCOMPARE(s->btnRecordReset()->text(), localised(recordLook).section(':', 1)); // what is drawn
        QTEST(s->lblHoldToAverage()->isVisibleTo(s), "holdShown");
        QTEST(s->lblPreparing()->isVisibleTo(s), "preparingShown");
        QCOMPARE(BMWifiScanVC::imageNameOf(s->wifiCounterBackground()), counter);
        QTEST(s->lblWifiSpeed()->text(), "speed");
        // A reader hears the figure as shown, never more digits, with its unit.
        QAccessibleInterface *face = QAccessible::queryAccessibleInterface(s->wifiCounterBackground());
        if (const QString heard = face->text(QAccessible::Value); !heard.isEmpty())
            QCOMPARE(QString::number(face->valueInterface()->currentValue().toDouble(), 'f', 1) + " Mbps", heard);
        // White on the recording green, and the normal colour back afterwards.
        const QColor speedColour = s->lblWifiSpeed()->palette().color(QPalette::WindowText);
        QCOMPARE(speedColour == Color::colorWithR(255, 255, 255), counter == "wifiCounterRecording");
    }

    void ssidLine_data()
    {
        QTest::addColumn<QString>("ssid");
        QTest::addColumn<QString>("bssid");
        QTest::addColumn<bool>("wifi");
        QTest::addColumn<QString>("shown");
        QTest::newRow("name and BSSID, escaped") << "Loft <5G>" << "02:1a:2b:3c:4d:5e" << true
                                             << "Loft <5G> (02:1a:2b:3c:4d:5e)";
        QTest::newRow("BSSID without a name shows nothing") << "" << "02:1a:2b:3c:4d:5e" << true << "";
        QTest::newRow("off Wi-Fi") << "HomeNet" << "02:1a:2b:3c:4d:5e" << false << "";
    }
    void ssidLine()
    {
        WifiScanHarness h;
        BMSimulatedNetwork::shared().setNetwork(fetched<QString>("ssid"), fetched<QString>("bssid"));
        h.setWifi(fetched<bool>("wifi"));
        h.screen->updateSSID();
        QTEST(QTextDocumentFragment::fromHtml(h.screen->lblSSID()->text()).toPlainText(), "shown");
    }

    void tutorial()
    {
        WifiScanHarness h;
        ScrollView *strip = h.screen->scrollTutorial();
        QVERIFY(strip);
        h.recorder.mark();
        // Where each drag comes to rest, in page widths: the host hears each new page once.
        for (const int page : {1, 3, 3}) {
            strip->setContentOffset(QPoint(page * strip->width(), 0), false);
            Q_EMIT strip->didEndDecelerating();
        }
        QCOMPARE(h.recorder.sinceMark(), (QStringList{"TutorialView:2", "TutorialView:4"}));
        QCOMPARE(h.screen->pageResults()->currentPage(), 3);
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
        // Built anew, whole, on the next appearance; after a test has run, gone for good.
        h.run("hide,show");
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
        strip = h.screen->scrollTutorial();
        QCOMPARE(strip->findChildren<BMFairzoneTutorialPageView *>().size(), kTutorialPages);
        QCOMPARE(strip->contentSize().width(), kTutorialPages * strip->width());
        QVERIFY(h.screen->pageResults()->isVisibleTo(h.screen));
        h.run("start,startStop,hide,show");
        QVERIFY(!h.screen->scrollTutorial() && !h.screen->pageResults());
    }

    void passwordStaysInMemoryOnly()
    {
        LogCapture log;
        {
            WifiScanHarness h;
            h.run("start,results:2,record,startStop"); // a stop writes the remembered spot names
            QVERIFY(h.screen->session()->wifiTester()->hasSdkPassword());
            QFile defaults(h.env.defaultsFilePath());
            QVERIFY(defaults.open(QIODevice::ReadOnly));
            QVERIFY(!defaults.readAll().contains(WifiScanHarness::kPassword));
        }
        QVERIFY(!log.text().isEmpty());
        QVERIFY(!log.contains(WifiScanHarness::kPassword));
    }

    void followsTheWindowWidth_data()
    {
        QTest::addColumn<int>("width");
        QTest::newRow("320") << 320;
        QTest::newRow("1280") << 1280;
    }
    void followsTheWindowWidth()
    {
        QFETCH(int, width);
        // Three-digit speeds: the widest labels of the speed axis.
        WifiScanHarness h({48.0, 131.0, 96.0, 142.0});
        QVERIFY(QTest::qWaitForWindowExposed(h.nav.get()));
        h.run("start,results:6,record");
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
    }

    // Changed while a spot is listed: the note still shows whole and the
    // row's speed takes the language's decimal mark.
    void followsTheLanguage()
    {
        for (const char *language : {"en", "es"}) {
            WifiScanHarness h;
            h.run("start,results:1,record");
            BMI18NManager::sharedInstance()->setCurrentLanguage(language);
            BMLabel *note = h.screen->lblHoldToAverage();
            const QStringList lines = note->linesForWidth(note->contentsRect().width());
            const QString speed = h.row(0)->lblSpeed()->text();
            BMI18NManager::sharedInstance()->setCurrentLanguage("en");
            QVERIFY(lines.size() <= 2);
            QVERIFY2(!lines.join(' ').contains(QChar(0x2026)), qPrintable(lines.join('|')));
            QVERIFY(note->height() >= int(lines.size()) * note->fontMetrics().lineSpacing());
            QVERIFY2(speed.contains(language == QByteArray("es") ? u',' : u'.'), qPrintable(speed));
        }
    }

    // Results arrive at 10, 2.79, 30, 40 ... Mbps, one every half second;
    // one is on show before the steps. A row shows the speed cut (not
    // rounded) to a decimal and an average's seconds rounded up.
    void recordControl_data()
    {
        QTest::addColumn<QString>("steps");
        QTest::addColumn<QStringList>("labels");
        QTest::addColumn<double>("duration"); // over zero: an average
        QTest::addColumn<double>("speed");
        QTest::addColumn<QString>("speedText");
        QTest::addColumn<QString>("note"); // under the speed; empty: hidden
        QTest::newRow("a new result between presses makes a second spot")
            << "press,release,results:1,press,release" << QStringList{"Spot 2", "Spot 1"} << 0.0 << 2.79 << "2.7" << "";
        QTest::newRow("released outside still saves")
            << "press,releaseOut" << QStringList{"Spot 1"} << 0.0 << 10.0 << "10.0" << "";
        QTest::newRow("a finger held over a result, dragged out and released")
            << "seconds:0.1,touchPress,seconds:0.4,touchOut" << QStringList{"Spot 1"} << 0.4 << 6.395 << "6.3"
            << "Averaged over 1 second";
        QTest::newRow("stopped: released inside resets the run")
            << "press,release,startStop,press,release" << QStringList{} << 0.0 << 0.0 << "" << "";
        QTest::newRow("stopped: released outside keeps it")
            << "press,release,startStop,press,releaseOut" << QStringList{"Spot 1"} << 0.0 << 10.0 << "10.0" << "";
    }
    void recordControl()
    {
        QFETCH(QString, steps);
        QFETCH(QStringList, labels);
        QFETCH(double, duration);
        WifiScanHarness h({10.0, 2.79, 30.0, 40.0, 50.0});
        h.run("start,results:1," + steps);
        QCOMPARE(h.labels(), labels);
        QVERIFY(!h.screen->isRecording());
        QCOMPARE(h.recorder.calls.contains("ActReset"), steps.endsWith("startStop,press,release"));
        QCOMPARE(h.recorder.calls.last(), QString("ActResetTouchUpInside"));
        if (labels.isEmpty())
            return;
        const WifiTestResult::Ptr newest = h.screen->session()->recordedSpeeds().constFirst();
        QCOMPARE(newest->isAverage(), duration > 0);
        QCOMPARE(newest->duration(), duration);
        QTEST(newest->speedInMbps(), "speed");
        BMSpeedRecordCell *row = h.row(0);
        QCOMPARE(row->lblArea()->text(), labels.first());
        QTEST(row->lblSpeed()->text(), "speedText");
        QTEST(row->lblAverage()->isVisibleTo(row) ? row->lblAverage()->text() : QString(), "note");
        // An average stands out in the recording colour; plain rows stripe
        // from the top whatever was inserted above them.
        const QColor text = duration > 0 ? BMWifiScanVC::recordingColor() : row->defaultTextColor();
        for (const QLabel *label : {row->lblSpeed(), row->lblUnit(), row->lblAverage()})
            QCOMPARE(label->palette().color(QPalette::WindowText), text);
        for (int i = 0; i < labels.size(); ++i)
            QCOMPARE(h.row(i)->viewBg()->palette().color(QPalette::Window),
                     duration > 0 ? Color::named("fz_average_back") : Color::system(i % 2 == 0 ? 3 : 4));
    }

    void reRecord_data()
    {
        QTest::addColumn<bool>("alwaysReplace");
        QTest::addColumn<bool>("alwaysCopy");
        QTest::addColumn<int>("choice"); // popup option; 0: Escape; -1: no popup expected
        QTest::addColumn<bool>("switchOn");
        QTest::addColumn<QList<double>>("speeds"); // of the spots afterwards, newest first
        QTest::addColumn<QString>("remembered");   // the standing answer afterwards
        // The row held is a 10 Mbps spot; the hold sees 20 (on show), 30 and 40.
        QTest::newRow("replace") << false << false << 4 << false << QList<double>{30.0} << "";
        QTest::newRow("copy") << false << false << 3 << false << QList<double>{30.0, 10.0} << "";
        QTest::newRow("replace, always") << false << false << 4 << true << QList<double>{30.0} << "replace";
        QTest::newRow("cancel with the switch on remembers nothing")
            << false << false << 2 << true << QList<double>{10.0} << "";
        QTest::newRow("always replace asks nothing") << true << false << -1 << false << QList<double>{30.0} << "replace";
        QTest::newRow("both always: copy wins") << true << true << -1 << false << QList<double>{30.0, 10.0} << "both";
        QTest::newRow("Escape drops the measurement") << false << false << 0 << false << QList<double>{10.0} << "";
    }
    void reRecord()
    {
        QFETCH(bool, alwaysCopy);
        QFETCH(int, choice);
        QFETCH(QList<double>, speeds);
        QFETCH(QString, remembered);
        WifiScanHarness h({10.0, 20.0, 30.0, 40.0});
        BMSDKUISettings &settings = BMSDKUISettings::sharedInstance();
        settings.setAlwaysReplaceRecording(fetched<bool>("alwaysReplace"));
        settings.setAlwaysCopyRecording(alwaysCopy);
        h.run("start,results:1,record,results:1");
        h.holdRow(0);
        h.run("results:2");
        h.clock.advance(0.2);
        h.releaseRow(0);

        FZConfirmSpotModificationPopup *popup = h.screen->spotsTable()->editPopup();
        QCOMPARE(popup != nullptr, choice >= 0);
        if (popup) {
            QVERIFY(!h.screen->isRecording()); // stopped while the user decides
            QCOMPARE(popup->optionButtons().size(), 3);
            answer(popup, choice, fetched<bool>("switchOn"));
        }
        QList<double> after;
        for (const WifiTestResult::Ptr &spot : h.screen->session()->recordedSpeeds())
            after << spot->speedInMbps();
        QCOMPARE(after, speeds);
        QCOMPARE(h.labels(), QStringList(speeds.size(), "Spot 1"));
        QVERIFY(!h.screen->isRecording() && !h.screen->session()->wifiRecordBeingEdited()
                && h.screen->session()->nextSpotRecordName().isNull());
        if (choice == 4 || (choice < 0 && !alwaysCopy)) // a replaced spot is stamped anew
            QCOMPARE(h.screen->session()->recordedSpeeds().constFirst()->timeAfterTest(), h.clock.now());
        QCOMPARE(settings.alwaysReplaceRecording(), remembered == "replace" || remembered == "both");
        QCOMPARE(settings.alwaysCopyRecording(), remembered == "copy" || remembered == "both");
    }

    void deleteSpot_data()
    {
        QTest::addColumn<bool>("alwaysDelete");
        QTest::addColumn<int>("choice"); // -1: no popup expected
        QTest::addColumn<bool>("switchOn");
        QTest::addColumn<QStringList>("remaining");
        QTest::addColumn<bool>("byKey"); // Delete on the row's focused speed instead of a swipe
        QTest::newRow("always: at once, no question") << true << -1 << false << QStringList{"Spot 3", "Spot 1"} << false;
        QTest::newRow("confirmed") << false << 3 << false << QStringList{"Spot 3", "Spot 1"} << false;
        QTest::newRow("confirmed, always from now on") << false << 3 << true << QStringList{"Spot 3", "Spot 1"} << false;
        QTest::newRow("cancelled") << false << 2 << true << QStringList{"Spot 3", "Spot 2", "Spot 1"} << false;
        QTest::newRow("the Delete key asks as the swipe does")
            << false << 3 << false << QStringList{"Spot 3", "Spot 1"} << true;
        QTest::newRow("the Delete key, always: at once") << true << -1 << false << QStringList{"Spot 3", "Spot 1"} << true;
    }
    void deleteSpot()
    {
        QFETCH(bool, alwaysDelete);
        QFETCH(int, choice);
        QFETCH(bool, switchOn);
        QFETCH(QStringList, remaining);
        WifiScanHarness h;
        BMSDKUISettings::sharedInstance().setAlwaysDeleteRecording(alwaysDelete);
        h.run("start,results:1,record,results:1,record,results:1,record,startStop,mark");
        if (fetched<bool>("byKey")) {
            h.row(1)->reRecordView()->setFocus(Qt::TabFocusReason);
            QTest::keyClick(h.row(1)->reRecordView(), Qt::Key_Delete);
        } else { // a swipe to the left that begins on the row's speed
            const QPoint from = h.rowSpeedArea(1);
            PointerInput::drag(PointerInput::Kind::Mouse, h.screen->tblRecords()->viewport(), from,
                               from - QPoint(80, 0));
        }
        FZConfirmSpotModificationPopup *popup = h.screen->spotsTable()->editPopup();
        QCOMPARE(popup != nullptr, choice >= 0);
        if (popup) {
            QCOMPARE(PopupInput::title(popup), QString("Spot 2"));
            answer(popup, choice, switchOn);
        } else {
            QCOMPARE(h.labels().size(), 3); // on the next turn of the main queue
            QCoreApplication::processEvents();
        }
        QCOMPARE(h.labels(), remaining);
        for (int i = 0; i < remaining.size(); ++i) {
            QCOMPARE(h.row(i)->lblArea()->text(), remaining.at(i));
            QVERIFY(!h.row(i)->isEditing());
        }
        QVERIFY(!h.screen->tblRecords()->isEditing());
        QCOMPARE(BMSDKUISettings::sharedInstance().alwaysDeleteRecording(), alwaysDelete || (choice == 3 && switchOn));
        QCOMPARE(h.recorder.sinceMark(), QStringList{}); // the host is not told
    }

    void renameSpot_data()
    {
        QTest::addColumn<QString>("typed");
        QTest::addColumn<bool>("endWithRecord"); // else Return
        QTest::addColumn<QString>("label");
        QTest::addColumn<QStringList>("remembered");
        QTest::addColumn<QStringList>("forgotten");
        // Default names are remembered, except the highest.
        QTest::newRow("blank keeps the old label") << "   " << false << "Spot 1" << QStringList{"Spot 1"}
                                                   << QStringList{"Spot 2"};
        QTest::newRow("trimmed and remembered") << "  Hall  " << false << "Hall" << QStringList{"Hall"}
                                                << QStringList{"Spot 2", "Spot 1", "  Hall  "};
        // A desktop keyboard sends no keyboard notifications: what was typed
        // must still reach its spot when Record is pressed and released.
        QTest::newRow("typed, then a spot recorded") << "Kitchen" << true << "Kitchen" << QStringList{"Kitchen"}
                                                     << QStringList{"Spot 3", "Spot 1"};
    }
    void renameSpot()
    {
        QFETCH(bool, endWithRecord);
        QFETCH(QString, label);
        WifiScanHarness h;
        h.screen->setAdHeight(50.0);
        h.run("start,results:1,record,results:1,record");
        const WifiTestResult::Ptr spot = h.screen->session()->recordedSpeeds().at(1);
        BMSpeedRecordCell *row = h.row(1);

        QTest::mouseClick(row->lblArea(), Qt::LeftButton);
        QVERIFY(row->lblArea()->hasFocus());
        QVERIFY(!h.screen->btnStartStop()->isEnabled());
        QVERIFY(h.screen->btnRecordReset()->isEnabled()); // a running test keeps it
        QVERIFY(h.screen->spotsTable()->isEditingRecordName());
        if (!endWithRecord) {
            // A phone's keyboard over the row lifts the table by its height less the ad strip.
            const QRect keyboard(0, h.nav->height() - 300, h.nav->width(), 300);
            KeyboardNotifications::postKeyboardDidShow(keyboard);
            QCOMPARE(h.screen->spotsTable()->keyboardSize(), keyboard.size());
            QCOMPARE(h.screen->spotsTable()->tblRecordsBottomConstraint(), 250);
        }
        QTest::keyClick(row->lblArea(), Qt::Key_A, Qt::ControlModifier);
        QTest::keyClicks(row->lblArea(), fetched<QString>("typed"));
        h.recorder.mark();
        if (endWithRecord) {
            h.run("results:1,record");
            QCOMPARE(h.labels(), (QStringList{"Spot 3", "Spot 2", label}));
        } else {
            QTest::keyClick(row->lblArea(), Qt::Key_Return);
            KeyboardNotifications::postKeyboardWillHide(QRect());
            QCOMPARE(row->lblArea()->text(), label);
            QVERIFY2(row->accessibleName().startsWith(label + ", "), qPrintable(row->accessibleName()));
            QCOMPARE(h.screen->spotsTable()->tblRecordsBottomConstraint(), 0);
        }
        QCOMPARE(spot->label(), label);
        QVERIFY(h.recorder.sinceMark().contains("DidEndEditingSpeedRecord"));
        QVERIFY(h.screen->btnStartStop()->isEnabled());
        QVERIFY(!h.screen->spotsTable()->isEditingRecordName());

        h.run("startStop");
        const QStringList saved = BMSDKUISettings::sharedInstance().savedSpots();
        for (const QString &name : fetched<QStringList>("remembered"))
            QVERIFY2(saved.contains(name), qPrintable(name));
        for (const QString &name : fetched<QStringList>("forgotten"))
            QVERIFY2(!saved.contains(name), qPrintable(name));
    }

    // The row's own gestures are the cell's to tell apart; here, what the
    // screen makes of a hold on a row while a test runs with one spot listed.
    void rowHold_data()
    {
        QTest::addColumn<QString>("steps"); // hold or touchHold on the row, off: dragged off it; else run()'s
        QTest::newRow("held, then dragged off the row") << "hold,off";
        QTest::newRow("held while Record is held") << "press,touchHold,touchRelease,release";
        QTest::newRow("Start pressed while Record is held") << "press,startStop,release";
    }
    void rowHold()
    {
        WifiScanHarness h({10.0, 20.0, 30.0});
        h.run("start,results:1,record,results:1");
        const QColor normal = h.screen->lblWifiSpeed()->palette().color(QPalette::WindowText);
        QWidget *viewport = h.screen->tblRecords()->viewport();
        const QPoint speed = h.rowSpeedArea(0);
        for (const QString &step : fetched<QString>("steps").split(',')) {
            if (step == "hold") {
                h.holdRow(0);
                QVERIFY(h.screen->isRecording());
            } else if (step == "off") {
                PointerInput::move(PointerInput::Kind::Mouse, viewport, speed + QPoint(0, 15));
                PointerInput::move(PointerInput::Kind::Mouse, viewport, speed + QPoint(0, 30));
                h.clock.advance(0.3);
                PointerInput::release(PointerInput::Kind::Mouse, viewport, speed + QPoint(0, 30));
            } else if (step == "touchHold") {
                PointerInput::press(PointerInput::Kind::Touch, viewport, speed);
                h.clock.advance(0.3);
            } else if (step == "touchRelease") {
                PointerInput::release(PointerInput::Kind::Touch, viewport, speed);
            } else {
                h.run(step);
            }
        }
        QVERIFY(!h.screen->spotsTable()->editPopup());
        QVERIFY(!h.screen->isRecording() && !h.screen->session()->wifiRecordBeingEdited());
        QVERIFY(h.screen->session()->isScanning());
        // Back in the normal look, and nothing saved that nobody held: leaving
        // the application (which keeps a spot being recorded) adds none.
        QCOMPARE(BMWifiScanVC::imageNameOf(h.screen->wifiCounterBackground()), QString("wifiCounter"));
        QCOMPARE(h.screen->lblWifiSpeed()->palette().color(QPalette::WindowText), normal);
        const QStringList before = h.labels();
        h.run("resign");
        QCOMPARE(h.labels(), before);
    }

    // A listed row set up again for another spot: a reused row first showed
    // the opposite kind.
    void rowGestures_data()
    {
        QTest::addColumn<PointerInput::Kind>("kind");
        QTest::addColumn<QString>("steps"); // press, wait (past the table's delay), move:x:y, release:x:y
        QTest::addColumn<QStringList>("calls");
        // Points are from the control's left edge, in the middle of the row.
        const auto mouse = PointerInput::Kind::Mouse, touch = PointerInput::Kind::Touch;
        QTest::newRow("a quick click is down and up at once")
            << mouse << "press:60:0,release:61:1" << QStringList{"start", "finish"};
        QTest::newRow("moved off before the delay: nothing") << mouse << "press:2:0,move:-5:0,release:-5:0"
                                                             << QStringList{};
        QTest::newRow("a scroll that begins on it: nothing")
            << mouse << "press:60:0,move:60:-20,move:60:-40,release:60:-40" << QStringList{};
        QTest::newRow("a drag to the right: nothing")
            << mouse << "press:20:0,move:60:0,move:100:0,release:100:0" << QStringList{};
        QTest::newRow("held, then the list scrolls")
            << mouse << "press:60:0,wait,move:60:-40,release:60:-40" << QStringList{"start", "cancel"};
        QTest::newRow("a finger held past the delay")
            << touch << "press:60:0,wait,release:62:2" << QStringList{"start", "finish"};
        QTest::newRow("a finger that scrolls") << touch << "press:60:0,move:60:-20,move:60:-40,release:60:-40"
                                               << QStringList{};
    }
    void rowGestures()
    {
        QFETCH(PointerInput::Kind, kind);
        WifiScanHarness h;
        h.run("start,results:1,record,results:1,record,results:1,record,startStop");
        RowCalls calls;
        BMSpeedRecordCell *cell = h.row(1);
        cell->setDelegate(&calls);
        QWidget *viewport = h.screen->tblRecords()->viewport();
        const QPoint origin = cell->reRecordView()->mapTo(viewport, QPoint(0, cell->height() / 2));
        for (const QString &step : fetched<QString>("steps").split(',')) {
            const QStringList parts = step.split(':');
            const QPoint at = parts.size() == 3 ? origin + QPoint(parts.at(1).toInt(), parts.at(2).toInt()) : QPoint();
            if (parts.first() == "press")
                PointerInput::press(kind, viewport, at);
            else if (parts.first() == "move")
                PointerInput::move(kind, viewport, at);
            else if (parts.first() == "release")
                PointerInput::release(kind, viewport, at);
            else
                h.clock.advance(TableView::kContentTouchDelaySeconds + 0.01);
        }
        // Nothing left waiting: the delay running out later starts nothing.
        h.clock.advance(1.0);
        QTEST(calls.calls, "calls");
        QCOMPARE(cell->gestureStatus(), 0);
        QCOMPARE(h.screen->tblRecords()->panGestureRecognizerState(), TableView::GestureStatePossible);
    }

    // Names are suggested by any part, in any case, in a list with its
    // corners cut round; the list opening is still editing.
    void nameSuggestions()
    {
        WifiScanHarness h;
        h.run("start,results:1,record,startStop");
        QLineEdit *name = h.row(0)->lblArea();
        QTest::mouseClick(name, Qt::LeftButton);
        name->clear();
        QTest::keyClicks(name, "ROO");
        QCompleter *completer = h.row(0)->completer();
        QTRY_VERIFY(completer->popup()->isVisible());
        QCOMPARE(completer->completionModel()->rowCount(), 6); // the presets' rooms
        QVERIFY(!completer->popup()->mask().contains(QPoint(0, 0)));
        QVERIFY(h.screen->spotsTable()->isEditingRecordName());
        // Leaving the field for another control ends the editing, once.
        completer->popup()->hide();
        h.screen->btnSound()->setFocus(Qt::MouseFocusReason);
        QVERIFY(!h.screen->spotsTable()->isEditingRecordName());
        QCOMPARE(h.recorder.calls.count("DidEndEditingSpeedRecord"), 1);
    }

    // Saving the run: the history menu, the title prompt, the blank-title
    // and overwrite popups, and the way to the saved list (the end-to-end
    // test saves through the menu as a person does).
    void historyMenu_data()
    {
        QTest::addColumn<int>("spots");
        QTest::addColumn<int>("choice"); // -1: no menu expected
        QTest::addColumn<QString>("outcome");
        QTest::newRow("no spots: straight to the list") << 0 << -1 << "list";
        QTest::newRow("cancel") << 2 << 3 << "nothing";
    }
    void historyMenu()
    {
        QFETCH(int, spots);
        QFETCH(int, choice);
        QFETCH(QString, outcome);
        WifiScanHarness h({10.0, 30.0});
        h.useStoryboard();
        if (spots)
            h.run("start" + QString(",results:1,record").repeated(spots));
        h.screen->historyButton()->trigger();
        FZOptionsPopup *menu = PopupInput::shown(h.nav.get());
        QCOMPARE(menu != nullptr, choice >= 0);
        if (menu)
            QVERIFY(PopupInput::choose(menu, choice));
        QCOMPARE(listOnTop(h) != nullptr, outcome == "list");
        QCOMPARE(h.screen->saveFlow()->saveCurrentSpotAlert() != nullptr, outcome == "prompt");
        if (FZSavedSpotsViewController *list = listOnTop(h))
            QCOMPARE(list->editSpotsSetSetterObject(), h.screen); // handed over for continuing a set
    }

    void saveTitle_data()
    {
        QTest::addColumn<QString>("typed");
        QTest::addColumn<QString>("outcome");
        QTest::addColumn<QStringList>("stored");
        QTest::newRow("blanks around are trimmed") << "  Ground floor \t" << "list"
                                                   << QStringList{"Ground floor", "Upstairs"};
        QTest::newRow("only blanks count as empty") << "   " << "nil" << QStringList{"Upstairs"};
        QTest::newRow("taken once trimmed asks first") << " Upstairs  " << "exists" << QStringList{"Upstairs"};
    }
    void saveTitle()
    {
        QFETCH(QString, outcome);
        WifiScanHarness h({10.0, 30.0});
        h.useStoryboard();
        storeUpstairs();
        h.run("start,results:1,record,results:1,record");
        openPrompt(h);
        QCOMPARE(h.screen->spotNameTextField()->text(), QString()); // a new run proposes nothing
        typeAndEnter(h, fetched<QString>("typed"));

        QStringList names;
        for (const auto &set : FZHistoricalResultSpotsSet::allSpotsSets())
            names << set->name();
        names.sort();
        QTEST(names, "stored");
        QCOMPARE(listOnTop(h) != nullptr, outcome == "list");
        QCOMPARE(PopupInput::shown<FZLabelOptionsPopup>(h.nav.get()) != nullptr, outcome == "nil");
        if (outcome == "exists")
            QCOMPARE(PopupInput::title(PopupInput::shown(h.nav.get())),
                     "'Upstairs' " + BMI18NManager::stringForCode("fairzones_historical_result_save_already_exist_title"));
        // Only a newly taken title becomes the run's name; the set holds the run, which stays.
        QCOMPARE(h.screen->session()->spotsSetName(), outcome == "list" ? QString("Ground floor") : QString());
        if (outcome != "list")
            return;
        const FZHistoricalResultSpotsSet::Ptr set = FZHistoricalResultSpotsSet::spotsSetWithName("Ground floor");
        QCOMPARE(set->ssid(), QString("HomeNet"));
        QCOMPARE(set->date().toSecsSinceEpoch(), qint64(h.clock.now() + Clock::kReferenceDateUnixSeconds));
        QCOMPARE(h.screen->session()->recordedSpeeds().size(), 2);
    }

    void overwriteConfirmation_data()
    {
        QTest::addColumn<bool>("editing"); // the run is "Upstairs" loaded for editing
        QTest::addColumn<int>("choice");
        QTest::addColumn<QString>("prompted"); // the prompt's text after the choice; none: no prompt
        QTest::addColumn<int>("storedSpots");
        QTest::addColumn<QString>("nameAfter");
        QTest::newRow("cancel, new run: back to an empty prompt") << false << 1 << "" << 1 << "";
        QTest::newRow("confirm, new run: replaced, name unchanged") << false << 2 << QString() << 3 << "";
        QTest::newRow("cancel, edited set: back to its own title") << true << 1 << "Upstairs" << 1 << "Upstairs";
        QTest::newRow("confirm, edited set: replaced") << true << 2 << QString() << 3 << "Upstairs";
    }
    void overwriteConfirmation()
    {
        QFETCH(bool, editing);
        QFETCH(QString, prompted);
        WifiScanHarness h({10.0, 30.0});
        h.useStoryboard();
        storeUpstairs();
        if (editing) {
            h.screen->setSpotsSetToEdit(FZHistoricalResultSpotsSet::spotsSetWithName("Upstairs"));
            h.run("hide,show,start,results:1,record,results:1,record"); // one spot more, three in all
        } else {
            h.run("start,results:1,record,results:1,record,results:1,record");
        }
        openPrompt(h);
        // An edited set proposes its own title, selected: typing replaces it.
        QCOMPARE(h.screen->spotNameTextField()->text(), editing ? QString("Upstairs") : QString());
        typeAndEnter(h, "Upstairs");
        QVERIFY(PopupInput::choose(PopupInput::shown(h.nav.get()), fetched<int>("choice")));

        QTEST(int(FZHistoricalResultSpotsSet::spotsSetWithName("Upstairs")->spotsCount()), "storedSpots");
        QTEST(h.screen->session()->spotsSetName(), "nameAfter");
        QCOMPARE(listOnTop(h) != nullptr, prompted.isNull());
        if (!prompted.isNull()) {
            QVERIFY(h.screen->saveFlow()->saveCurrentSpotAlert());
            QCOMPARE(h.screen->spotNameTextField()->text(), prompted);
            QCOMPARE(h.screen->spotNameTextField()->selectedText(), prompted);
        }
    }

private:
    // Answers a replace or delete question: the switch first if asked, then
    // the option, or Escape for 0.
    static void answer(FZConfirmSpotModificationPopup *popup, int choice, bool switchOn)
    {
        if (switchOn)
            QTest::mouseClick(popup->optionSwitch(), Qt::LeftButton);
        if (choice == 0)
            QTest::keyClick(QApplication::focusWidget(), Qt::Key_Escape);
        else
            QVERIFY(PopupInput::choose(popup, choice));
    }
    static FZSavedSpotsViewController *listOnTop(const WifiScanHarness &h)
    {
        return qobject_cast<FZSavedSpotsViewController *>(h.nav->topViewController());
    }
    // The bar's history control, then "save" in its menu.
    static void openPrompt(WifiScanHarness &h)
    {
        h.screen->historyButton()->trigger();
        QVERIFY(PopupInput::choose(PopupInput::shown(h.nav.get()), 1));
        QVERIFY(h.screen->saveFlow()->saveCurrentSpotAlert());
    }
    // Typed into the window's focus widget, which the prompt opens on the field, then Enter.
    static void typeAndEnter(WifiScanHarness &h, const QString &text)
    {
        QWidget *field = h.nav->focusWidget();
        QCOMPARE(field, h.screen->spotNameTextField());
        QTest::keyClicks(field, text);
        QTest::keyClick(field, Qt::Key_Return);
        QCoreApplication::processEvents();
    }
    static void storeUpstairs()
    {
        auto spot = WifiTestResult::create(12.0);
        spot->setLabel("Landing");
        FZHistoricalResultSpotsSet::saveSetWithName("Upstairs", "HomeNet", QDateTime::currentDateTimeUtc(), {spot});
    }
};

QTEST_MAIN(tst_BMWifiScanVC)
#include "tst_BMWifiScanVC.moc"
