#include "DemoWalkthrough.h"

#include "DemoEventLog.h"
#include "DemoHostDelegate.h"
#include "DemoMenu.h"
#include "DemoOptions.h"
#include "DemoReportActions.h"
#include "DemoReports.h"
#include "BMSpeedSource.h"
#include "DemoWindow.h"
#include <Brightmere/core/BMSDKBackend.h>
#include <Brightmere/core/BMSimulatedNetwork.h>
#include <Brightmere/i18n/BMI18NManager.h>
#include <Brightmere/model/BMSDKUISettings.h>
#include <Brightmere/model/FZResultSpotsSetsComparison.h>
#include <Brightmere/platform/foundation/UserDefaults.h>
#include <Brightmere/platform/views/Alert.h>
#include <Brightmere/platform/views/BarButtonItem.h>
#include <Brightmere/platform/views/KeyWindow.h>
#include <Brightmere/platform/views/NavigationBar.h>
#include <Brightmere/platform/views/NavigationController.h>
#include <Brightmere/platform/views/NavigationItem.h>
#include <Brightmere/platform/views/PageControl.h>
#include <Brightmere/platform/views/ScrollView.h>
#include <Brightmere/platform/views/Switch.h>
#include <Brightmere/platform/views/TableView.h>
#include <Brightmere/popups/FZConfirmSpotModificationPopup.h>
#include <Brightmere/popups/FZOptionsPopup.h>
#include <Brightmere/popups/FZTextViewOptionsPopup.h>
#include <Brightmere/reports/FZSpotsSetsBackup.h>
#include <Brightmere/screens/results/FZCompareSpotsSetsViewController.h>
#include <Brightmere/screens/results/FZSavedSpotsViewController.h>
#include <Brightmere/screens/results/FZSpotsSetViewController.h>
#include <Brightmere/screens/settings/FZMiscellaneousSettingsViewController.h>
#include <Brightmere/screens/settings/FZSpotNamesSettingsViewController.h>
#include <Brightmere/session/BMSpeedRecordCell.h>
#include <Brightmere/session/BMSpotsSetSaveFlow.h>
#include <Brightmere/session/BMSpotsTableController.h>
#include <Brightmere/session/BMWifiScanVC.h>
#include <Brightmere/session/BMWifiScanView.h>

#include <QAbstractAnimation>
#include <QApplication>
#include <QElapsedTimer>
#include <QEventLoop>
#include <QFileInfo>
#include <QLineEdit>
#include <QPushButton>
#include <QTimer>
#include <QToolButton>

namespace {

// The first run's walk: a slow room, a fair one, a good one, a fast one.
const QList<double> kFirstRunTrace{8.0, 12.0, 30.0, 45.0};
// After moving the router every room is faster.
const QList<double> kSecondRunTrace{22.0, 35.0, 48.0, 60.0};
// What the speed source lets through in the walk against it.
constexpr double kSpeedSourceMbps = 24.0;
// Popup options as the kit numbers them (0 is the title).
constexpr int kReplaceOption = 4;
constexpr int kConfirmDeleteOption = 3;
constexpr int kSaveMenuOption = 1;
constexpr int kSavePromptOption = 2;

// What the event loop would do between two user actions: closed popups go
// (by deleteLater) and fades run to their end, so no picture catches a
// half-faded row, whatever the machine's speed.
void settle()
{
    QCoreApplication::sendPostedEvents();
    QCoreApplication::processEvents();
    for (QWidget *window : QApplication::topLevelWidgets()) {
        for (QAbstractAnimation *animation : window->findChildren<QAbstractAnimation *>()) {
            if (animation->state() == QAbstractAnimation::Running && animation->totalDuration() > 0)
                animation->setCurrentTime(animation->totalDuration());
        }
    }
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
}

QString mbps(double speed)
{
    return QString::number(speed, 'f', 1) + QStringLiteral(" Mbps");
}

QStringList setNames(FZSavedSpotsViewController *list)
{
    QStringList names;
    for (const auto &set : list->allSpotsSets())
        names << set->name();
    return names;
}

} // namespace

DemoWalkthrough::DemoWalkthrough(const QString &folder, QTextStream &out)
    : m_folder(folder)
    , m_out(out)
{
    if (!m_home.isValid() || !m_folder.mkpath(QStringLiteral("."))) {
        m_out << "walkthrough: cannot prepare " << (m_home.isValid() ? folder : m_home.path()) << '\n';
        return;
    }
    // Settings, saved sets and text caches all go under the temporary home.
    for (const char *variable : {"XDG_DATA_HOME", "XDG_CONFIG_HOME", "XDG_CACHE_HOME", "XDG_STATE_HOME"}) {
        const QString path = m_home.filePath(QString::fromLatin1(variable).toLower());
        QDir().mkpath(path);
        qputenv(variable, path.toLocal8Bit());
    }
    Brightmere::UserDefaults::setStandardFilePath(m_home.filePath(QStringLiteral("defaults.ini")));
    BMSDKBackend::reset();
    BMSimulatedNetwork::shared().reset();
    BMSDKBackend::setKind(BMSDKBackend::Kind::Simulated);
    BMSDKBackend::setClock(&m_clock);
    BMSDKBackend::setSampleInterval(kInterval);
    BMSDKBackend::setSimulatedTrace(kFirstRunTrace);
    // Scrolls and switches land at once: a picture never catches one half way.
    Brightmere::ScrollView::setAnimationDuration(0);
    Brightmere::Switch::setSlideDuration(0);
    m_ready = true;
}

DemoWalkthrough::~DemoWalkthrough()
{
    BMSDKBackend::setClock(nullptr);
}

void DemoWalkthrough::results(int count)
{
    m_clock.advance(count * kInterval);
    settle();
}

void DemoWalkthrough::recordSpot(int resultsWhileHeld)
{
    m_window->scan()->actRecordResetTouchDown();
    results(resultsWhileHeld);
    moment(QStringLiteral("recording"));
    m_window->scan()->actRecordResetTouchUp(true);
    settle();
}

template<typename T>
T *DemoWalkthrough::top() const
{
    settle();
    return qobject_cast<T *>(m_window->navigation()->topViewController());
}

FZOptionsPopup *DemoWalkthrough::visibleOptionsPopup() const
{
    settle();
    FZOptionsPopup *shown = nullptr;
    for (FZOptionsPopup *popup : m_window->findChildren<FZOptionsPopup *>()) {
        if (popup->isVisible())
            shown = popup;
    }
    return shown;
}

// A tap on the option's button, as a user gives it.
bool DemoWalkthrough::choose(FZOptionsPopup *popup, int index)
{
    if (!popup)
        return false;
    for (QPushButton *button : popup->optionButtons()) {
        if (FZOptionsPopup::tagOf(button) == index) {
            button->click();
            settle();
            return true;
        }
    }
    return false;
}

void DemoWalkthrough::moment(const QString &name)
{
    if (m_pictureHook)
        m_pictureHook(m_window, name);
}

bool DemoWalkthrough::snap(const QString &path)
{
    settle();
    moment(QFileInfo(path).completeBaseName());
    return m_window->grab().save(path);
}

bool DemoWalkthrough::step(const QString &name, const Action &action)
{
    Step done;
    done.name = name;
    const int number = int(m_steps.size()) + 1;
    done.picture = m_folder.filePath(QStringLiteral("%1-%2.png").arg(number, 2, 10, QLatin1Char('0')).arg(name));
    m_picture = done.picture;
    m_pictureTaken = false;
    done.ok = action(done.detail);
    // A step pictures where it ends unless it pictured its key moment itself.
    if (!m_pictureTaken && !snapStep()) {
        done.ok = false;
        done.detail += QStringLiteral(" (picture not saved)");
    }
    m_out << QStringLiteral("[%1] %2 %3: %4").arg(number, 2).arg(done.ok ? u"ok  " : u"FAIL", name, done.detail)
          << Qt::endl;
    m_steps << done;
    return done.ok;
}

bool DemoWalkthrough::snapStep()
{
    m_pictureTaken = snap(m_picture);
    return m_pictureTaken;
}

// Through the history menu and the title prompt, as a user saves a run.
bool DemoWalkthrough::saveRunAs(const QString &title, QString &detail)
{
    BMWifiScanVC *scan = m_window->scan();
    scan->historyButton()->trigger();
    if (!choose(visibleOptionsPopup(), kSaveMenuOption) || !scan->saveFlow()->saveCurrentSpotAlert()) {
        detail = QStringLiteral("the save prompt did not open");
        return false;
    }
    scan->spotNameTextField()->setText(title);
    snapStep(); // the prompt with the title typed
    choose(scan->saveFlow()->saveCurrentSpotAlert(), kSavePromptOption);
    auto *list = top<FZSavedSpotsViewController>();
    if (!list || !setNames(list).contains(title)) {
        detail = QStringLiteral("\"%1\" is not in the saved list").arg(title);
        return false;
    }
    detail = QStringLiteral("saved sets: %1").arg(setNames(list).join(QStringLiteral(", ")));
    return true;
}

// As a user does: a tap on the name, typing, the end of the edit.
// The spot's row, scrolled into sight first as a user would (with larger
// text only a few rows show at once).
BMSpeedRecordCell *DemoWalkthrough::spotRow(int row)
{
    Brightmere::TableView *table = m_window->scan()->tblRecords();
    table->scrollToRowAtIndexPath(Brightmere::IndexPath(row, 0), Brightmere::TableView::ScrollPosition::None, false);
    settle();
    return qobject_cast<BMSpeedRecordCell *>(table->cellForRowAtIndexPath(Brightmere::IndexPath(row, 0)));
}

bool DemoWalkthrough::renameSpot(int row, const QString &name)
{
    BMWifiScanVC *scan = m_window->scan();
    BMSpeedRecordCell *cell = spotRow(row);
    if (!cell)
        return false;
    scan->didBeginEditingSpeedRecord(cell);
    cell->lblArea()->setText(name);
    scan->didEndEditingSpeedRecord(cell);
    settle();
    return scan->session()->recordedSpeeds().value(row) && scan->session()->recordedSpeeds().at(row)->label() == name;
}

bool DemoWalkthrough::tapShareButton()
{
    settle();
    Brightmere::ViewController *screen = m_window->navigation()->topViewController();
    const QList<QToolButton *> buttons = m_window->navigation()->navigationBar()->rightButtons();
    Brightmere::BarButtonItem *item = screen ? screen->navigationItem()->rightBarButtonItem() : nullptr;
    if (!item || item->objectName() != u"demoShareButton" || buttons.isEmpty())
        return false;
    buttons.constFirst()->click();
    settle();
    return true;
}

QString DemoWalkthrough::closeSavedAlert()
{
    settle();
    Brightmere::Alert *alert = Brightmere::Alert::shownAlert(m_window);
    if (!alert)
        return {};
    alert->buttons().constLast()->click(); // OK
    settle();
    return m_lastReport;
}

QString DemoWalkthrough::reportFromScreen(int option, QString &detail)
{
    m_lastReport.clear();
    if (!tapShareButton() || !choose(visibleOptionsPopup(), option)) {
        detail = QStringLiteral("no share button or no such option");
        return {};
    }
    Brightmere::Alert *alert = Brightmere::Alert::shownAlert(m_window);
    detail = alert ? QStringLiteral("\"%1\": %2").arg(alert->title(), QString(alert->message()).replace(u'\n', u' '))
                   : QStringLiteral("no alert after the export");
    snapStep();
    const QString path = closeSavedAlert();
    if (!path.isEmpty()) {
        m_files << path;
        detail += QStringLiteral(" (%1 bytes)").arg(QFileInfo(path).size());
    }
    return alert ? path : QString();
}

void DemoWalkthrough::realTime(double seconds)
{
    QElapsedTimer timer;
    timer.start();
    double followed = 0.0;
    while (followed < seconds) {
        QEventLoop loop;
        QTimer::singleShot(20, &loop, &QEventLoop::quit);
        loop.exec();
        const double now = double(timer.nsecsElapsed()) / 1e9;
        m_clock.advance(now - followed);
        followed = now;
    }
    settle();
}

QString DemoWalkthrough::spotsLine() const
{
    QStringList spots;
    for (const WifiTestResult::Ptr &spot : m_window->scan()->session()->recordedSpeeds())
        spots << QStringLiteral("%1 %2").arg(spot->label(), mbps(spot->speedInMbps()));
    return spots.join(QStringLiteral(", "));
}

// A refresh from the localisation service ends with one of its two
// notifications; without a service there is nothing to wait for.
void DemoWalkthrough::expectTexts()
{
    m_textsAnswer.reset();
}

bool DemoWalkthrough::waitForTexts()
{
    if (!m_withService)
        return true;
    // The answer may already be in: a local service can reply while the
    // request's own step is still handling events.
    if (!m_textsAnswer) {
        QEventLoop loop;
        QObject::connect(m_window->hostDelegate(), &DemoHostDelegate::textBundleRefreshed, &loop,
                         &QEventLoop::quit);
        QTimer::singleShot(10000, &loop, &QEventLoop::quit); // a local service answers in well under that
        loop.exec();
    }
    return m_textsAnswer.value_or(false);
}

bool DemoWalkthrough::run(DemoWindow *window, const DemoOptions &options)
{
    if (!m_ready || !window)
        return false;
    m_window = window;
    m_withService = !options.i18nServiceUrl.isEmpty();
    QObject::connect(window->hostDelegate(), &DemoHostDelegate::textBundleRefreshed, window,
                     [this](bool ok) { m_textsAnswer = ok; });
    // Reports go beside the pictures; share shows its way out where nothing takes mail.
    window->reportActions()->setFolder(m_folder.path());
    window->reportActions()->setMailAvailability([] { return false; });
    QObject::connect(window->reportActions(), &DemoReportActions::done, window,
                     [this](bool, const QString &path) { m_lastReport = path; });
    BMWifiScanVC *scan = window->scan();
    BMSDKUISettings &settings = BMSDKUISettings::sharedInstance();
    // The tour shows every confirmation.
    settings.setAlwaysReplaceRecording(false);
    settings.setAlwaysCopyRecording(false);
    settings.setAlwaysDeleteRecording(false);
    window->show();
    settle();

    const QList<std::pair<QString, Action>> tour{
        {QStringLiteral("tutorial"),
         [&](QString &detail) {
             Brightmere::ScrollView *strip = scan->scrollTutorial();
             if (!strip || !scan->pageResults()) {
                 detail = QStringLiteral("no tutorial on the first start");
                 return false;
             }
             strip->setContentOffset(QPoint(strip->width(), 0), false);
             Q_EMIT strip->didEndDecelerating();
             settle();
             detail = QStringLiteral("page %1 of %2").arg(scan->pageResults()->currentPage() + 1).arg(kTutorialPages);
             return scan->pageResults()->currentPage() == 1
                 && window->hostDelegate()->count(QStringLiteral("delegate: ScanScreenTutorialView")) == 1;
         }},
        {QStringLiteral("preparing"),
         [&](QString &detail) {
             scan->actStartStop();
             settle();
             detail = QStringLiteral("tester setting up");
             return scan->session()->isPreparingWifiTester()
                 && window->hostDelegate()->count(QStringLiteral("notification: kWiFiFairzoneTestStarted")) == 1;
         }},
        {QStringLiteral("testing"),
         [&](QString &detail) {
             results(6);
             detail = QStringLiteral("%1 results, last %2")
                          .arg(scan->session()->testedSpeeds().size())
                          .arg(scan->session()->testedSpeeds().isEmpty() ? QString()
                                                              : mbps(scan->session()->testedSpeeds().constLast()->speedInMbps()));
             return scan->session()->isScanning() && !scan->session()->isPreparingWifiTester() && scan->session()->testedSpeeds().size() >= 5;
         }},
        {QStringLiteral("four-spots"),
         [&](QString &detail) {
             for (int spot = 0; spot < 4; ++spot) {
                 results(1);
                 recordSpot(spot == 3 ? 2 : 0); // the last one averages a few results
             }
             detail = spotsLine();
             m_spotTables << QStringLiteral("four spots: ") + detail;
             return scan->session()->recordedSpeeds().size() == 4;
         }},
        {QStringLiteral("rename"),
         [&](QString &detail) {
             const bool renamed = renameSpot(3, QStringLiteral("Kitchen"));
             detail = spotsLine();
             return renamed && scan->session()->recordedSpeeds().constLast()->label() == u"Kitchen";
         }},
        {QStringLiteral("re-record"),
         [&](QString &detail) {
             BMSpeedRecordCell *row = spotRow(1);
             if (!row)
                 return false;
             scan->didStartTapReRecordView(row);
             results(2);
             scan->didFinishTapReRecordView(row);
             settle();
             detail = scan->spotsTable()->editPopup() ? QStringLiteral("replace popup shown") : QStringLiteral("no replace popup");
             return scan->spotsTable()->editPopup() != nullptr;
         }},
        {QStringLiteral("replaced"),
         [&](QString &detail) {
             choose(scan->spotsTable()->editPopup(), kReplaceOption);
             detail = spotsLine();
             return !scan->spotsTable()->editPopup() && scan->session()->recordedSpeeds().size() == 4;
         }},
        {QStringLiteral("delete"),
         [&](QString &detail) {
             scan->actStartStop(); // stopped, as a user deletes calmly
             BMSpeedRecordCell *row = spotRow(2);
             if (!row)
                 return false;
             const QString gone = scan->session()->recordedSpeeds().at(2)->label();
             row->setEditing(true, true); // as a swipe does
             settle();
             moment(QStringLiteral("swiped-row"));
             if (!choose(scan->spotsTable()->editPopup(), kConfirmDeleteOption)) {
                 detail = QStringLiteral("no delete confirmation");
                 return false;
             }
             settle();
             detail = QStringLiteral("deleted %1; %2").arg(gone, spotsLine());
             m_spotTables << QStringLiteral("first run: ") + spotsLine();
             return scan->session()->recordedSpeeds().size() == 3;
         }},
        {QStringLiteral("save-ground-floor"),
         [&](QString &detail) { return saveRunAs(QStringLiteral("Ground floor"), detail); }},
        {QStringLiteral("save-after-moving-router"),
         [&](QString &detail) {
             window->navigation()->popToRootViewControllerAnimated(false);
             settle();
             scan->actRecordResetTouchDown(); // a press and release while stopped clears the run
             scan->actRecordResetTouchUp(true);
             BMSDKBackend::setSimulatedTrace(kSecondRunTrace);
             scan->actStartStop();
             results(1);
             for (int spot = 0; spot < 3; ++spot) {
                 results(1);
                 recordSpot(0);
             }
             scan->actStartStop();
             renameSpot(2, QStringLiteral("Kitchen")); // the same room as in the first run
             m_spotTables << QStringLiteral("second run: ") + spotsLine();
             return scan->session()->recordedSpeeds().size() == 3 && saveRunAs(QStringLiteral("After moving router"), detail);
         }},
        {QStringLiteral("saved-list"),
         [&](QString &detail) {
             auto *list = top<FZSavedSpotsViewController>();
             detail = list ? setNames(list).join(QStringLiteral(", ")) : QStringLiteral("no saved list");
             return list && setNames(list) == QStringList({QStringLiteral("After moving router"), QStringLiteral("Ground floor")});
         }},
        {QStringLiteral("set-sorted"),
         [&](QString &detail) {
             auto *list = top<FZSavedSpotsViewController>();
             if (!list)
                 return false;
             list->didSelectRowAtIndexPath(list->tableView(), Brightmere::IndexPath(1, 0));
             auto *set = top<FZSpotsSetViewController>();
             if (!set)
                 return false;
             set->sortButtonTapped();
             settle();
             QStringList spots;
             for (const WifiTestResult::Ptr &spot : set->spotsSet()->sortedSpots())
                 spots << QStringLiteral("%1 %2").arg(spot->label(), mbps(spot->speedInMbps()));
             detail = QStringLiteral("%1 sorted: %2").arg(set->spotsSet()->name(), spots.join(QStringLiteral(", ")));
             return set->spotsSet()->name() == u"Ground floor" && set->spotsSet()->isSortedAscending() == 1;
         }},
        // Reports from the screen that shows the data: its share button.
        {QStringLiteral("set-csv"),
         [&](QString &detail) {
             const QString path = reportFromScreen(DemoReportActions::ExportCsv, detail);
             return !path.isEmpty() && path.endsWith(u".csv") && QFileInfo(path).fileName().startsWith(u"Ground floor");
         }},
        {QStringLiteral("compare"),
         [&](QString &detail) {
             window->navigation()->popViewControllerAnimated(false);
             auto *list = top<FZSavedSpotsViewController>();
             if (!list)
                 return false;
             list->enableCompareSetsMode();
             list->didSelectRowAtIndexPath(list->tableView(), Brightmere::IndexPath(1, 0));
             list->didSelectRowAtIndexPath(list->tableView(), Brightmere::IndexPath(0, 0));
             settle();
             moment(QStringLiteral("compare-picking"));
             if (!list->readyToCompareSpotsSets())
                 return false;
             list->forwardButton()->trigger();
             auto *compare = top<FZCompareSpotsSetsViewController>();
             if (!compare || !compare->spotsSetsComparison())
                 return false;
             const auto comparison = compare->spotsSetsComparison();
             const bool hiding = comparison->excludeIdenticalMatches();
             compare->hideIdenticalSwitch()->click();
             settle();
             m_compareTable << QStringLiteral("%1 | %2 | %3").arg(QStringLiteral("spot"), comparison->firstSet()->name(),
                                                                    comparison->secondSet()->name());
             for (qsizetype i = 0; i < comparison->count(); ++i) {
                 const auto first = comparison->firstComparableSpotAtIndex(i);
                 const auto second = comparison->secondComparableSpotAtIndex(i);
                 m_compareTable << QStringLiteral("%1 | %2 | %3")
                                       .arg(comparison->spotNameAtIndex(i), first ? mbps(first->speedInMbps()) : QString(),
                                            second ? mbps(second->speedInMbps()) : QString());
             }
             detail = QStringLiteral("%1 spots in both, hiding identical %2")
                          .arg(comparison->count())
                          .arg(comparison->excludeIdenticalMatches() ? u"on" : u"off");
             return comparison->excludeIdenticalMatches() != hiding && comparison->count() == 2;
         }},
        {QStringLiteral("compare-csv"),
         [&](QString &detail) {
             const QString path = reportFromScreen(DemoReportActions::ExportCsv, detail);
             QFile file(path);
             // The row of the room measured in both runs, as the compare table shows it.
             return !path.isEmpty() && file.open(QIODevice::ReadOnly)
                 && file.readAll().contains("\r\nKitchen,12.00,22.00,10.00,83.33");
         }},
        {QStringLiteral("compare-pdf"),
         [&](QString &detail) {
             const QString path = reportFromScreen(DemoReportActions::ExportPdf, detail);
             return path.endsWith(u".pdf") && QFileInfo(path).fileName().startsWith(u"Ground floor vs After moving router");
         }},
        // Where nothing takes mail, share says so and saves the text instead.
        {QStringLiteral("share-without-mail"),
         [&](QString &detail) {
             if (!tapShareButton() || !choose(visibleOptionsPopup(), DemoReportActions::Share))
                 return false;
             Brightmere::Alert *offer = Brightmere::Alert::shownAlert(window);
             if (!offer) {
                 detail = QStringLiteral("no alert: the share failed silently");
                 return false;
             }
             detail = QStringLiteral("\"%1\": %2").arg(offer->title(), offer->buttonTitles().join(QStringLiteral(", ")));
             snapStep();
             offer->buttons().value(1)->click(); // save to file
             const QString path = window->reportActions()->share() ? window->reportActions()->share()->savedPath() : QString();
             const QString saved = closeSavedAlert();
             m_files << path;
             detail += QStringLiteral("; saved %1").arg(QFileInfo(path).fileName());
             return !path.isEmpty() && saved == path && QFileInfo(path).size() > 0;
         }},
        {QStringLiteral("backup"),
         [&](QString &detail) {
             window->navigation()->popViewControllerAnimated(false);
             auto *list = top<FZSavedSpotsViewController>();
             if (!list)
                 return false;
             list->cancelCompareButton()->trigger();
             list->optionsButton()->trigger();
             if (!choose(visibleOptionsPopup(), DemoReportActions::BackUp))
                 return false;
             snapStep();
             const QString path = closeSavedAlert();
             m_files << path;
             detail = path.isEmpty() ? QStringLiteral("no backup written") : QFileInfo(path).fileName();
             return path.endsWith(u".json");
         }},
        {QStringLiteral("restore"),
         [&](QString &detail) {
             const FZHistoricalResultSpotsSet::List saved = FZHistoricalResultSpotsSet::allSpotsSets();
             FZHistoricalResultSpotsSet::deleteAllSpotsSets();
             if (!FZHistoricalResultSpotsSet::allSpotsSets().isEmpty()) {
                 detail = QStringLiteral("the store could not be emptied");
                 return false;
             }
             auto *list = top<FZSavedSpotsViewController>();
             if (!list)
                 return false;
             list->optionsButton()->trigger();
             choose(visibleOptionsPopup(), DemoReportActions::Restore);
             Brightmere::Alert *alert = Brightmere::Alert::shownAlert(window);
             snapStep();
             int same = 0;
             for (const auto &set : saved) {
                 const auto back = FZHistoricalResultSpotsSet::spotsSetWithName(set->name());
                 same += back && FZSpotsSetsBackup::hasSameContent(*back, *set) ? 1 : 0;
             }
             detail = QStringLiteral("into an empty store: %1 of %2 sets back as saved, %3 listed; \"%4\"")
                          .arg(same)
                          .arg(saved.size())
                          .arg(list->allSpotsSets().size())
                          .arg(alert ? alert->message() : QString());
             if (alert)
                 alert->pressButtonAt(0);
             settle();
             return alert && saved.size() == 2 && same == saved.size() && list->allSpotsSets().size() == saved.size();
         }},
        {QStringLiteral("continue-recording"),
         [&](QString &detail) {
             auto *list = top<FZSavedSpotsViewController>();
             if (!list)
                 return false;
             list->didSelectRowAtIndexPath(list->tableView(), Brightmere::IndexPath(1, 0));
             auto *set = top<FZSpotsSetViewController>();
             if (!set)
                 return false;
             set->editSpotsSet();
             settle();
             detail = QStringLiteral("\"%1\": %2").arg(scan->session()->spotsSetName(), spotsLine());
             return top<BMWifiScanVC>() == scan && scan->session()->spotsSetName() == u"Ground floor"
                 && scan->session()->recordedSpeeds().size() == 3;
         }},
        {QStringLiteral("host-menu"),
         [&](QString &detail) {
             scan->menuButton()->trigger();
             FZOptionsPopup *menu = visibleOptionsPopup();
             detail = menu ? QStringLiteral("%1 options").arg(menu->optionButtons().size()) : QStringLiteral("no menu");
             return menu && window->menu()->popup() == menu;
         }},
        {QStringLiteral("confirmation-settings"),
         [&](QString &detail) {
             choose(window->menu()->popup(), DemoMenu::ConfirmationSettings);
             auto *screen = top<FZMiscellaneousSettingsViewController>();
             detail = screen ? screen->title() : QStringLiteral("not opened");
             return screen != nullptr;
         }},
        {QStringLiteral("spot-name-settings"),
         [&](QString &detail) {
             window->menu()->choose(DemoMenu::SpotNameSettings);
             auto *screen = top<FZSpotNamesSettingsViewController>();
             detail = screen ? QStringLiteral("%1 names").arg(screen->spotNamesAsArray().size())
                             : QStringLiteral("not opened");
             return screen != nullptr;
         }},
        {QStringLiteral("spanish"),
         [&](QString &detail) {
             window->navigation()->popToRootViewControllerAnimated(false);
             const QString english = BMI18NManager::stringForCode(QStringLiteral("fairzones_historical_results_title"));
             window->menu()->show();
             expectTexts();
             choose(window->menu()->popup(), DemoMenu::Spanish);
             const bool refreshed = waitForTexts();
             settle();
             const QString spanish = BMI18NManager::stringForCode(QStringLiteral("fairzones_historical_results_title"));
             detail = QStringLiteral("language %1, \"%2\" is now \"%3\"%4")
                          .arg(BMI18NManager::sharedInstance()->currentLanguage(), english, spanish,
                               m_withService ? (refreshed ? QStringLiteral(", texts from the service")
                                                          : QStringLiteral(", the service did not answer"))
                                             : QString());
             return BMI18NManager::sharedInstance()->currentLanguage() == u"es" && spanish != english
                 && scan->historyButton()->title() == spanish && refreshed;
         }},
        // A short walk measured for real: the speed source on 127.0.0.1, its
        // bytes downloaded by the system tester while the clock follows real
        // time; the network shown stays the simulated one.
        {QStringLiteral("speed-source-walk"),
         [&](QString &detail) {
             BMSpeedSource source;
             source.setClock(&m_clock);
             source.setBytesPerSecond(kSpeedSourceMbps * 1e6 / 8.0);
             if (source.listen(QHostAddress::LocalHost, 0) == 0) {
                 detail = QStringLiteral("the speed source could not listen on 127.0.0.1");
                 return false;
             }
             const QUrl url = source.streamUrls().value(0);
             // The test screen makes its tester when it loads: a window of its own.
             BMSDKBackend::setTesterKind(BMSDKBackend::Kind::System);
             BMSDKBackend::setSystemDownloadUrl(url);
             DemoWindow walker{DemoOptions()};
             DemoWindow *const tour = m_window;
             m_window = &walker;
             walker.show();
             BMWifiScanVC *real = walker.scan();
             real->actStartStop();
             realTime(1.5);
             for (int spot = 0; spot < 2; ++spot) {
                 real->actRecordResetTouchDown();
                 realTime(1.0);
                 real->actRecordResetTouchUp(true);
                 realTime(0.5);
             }
             snapStep();
             real->actStartStop();
             settle();
             BMSDKBackend::setTesterKind(std::nullopt);
             detail = QStringLiteral("%1: %2; the source sent %3 bytes")
                          .arg(url.toString(), spotsLine())
                          .arg(source.bytesSent());
             m_spotTables << QStringLiteral("speed source walk: ") + spotsLine();
             const auto spots = real->session()->recordedSpeeds();
             m_window = tour;
             Brightmere::KeyWindow::makeKeyWindow(tour);
             return spots.size() == 2 && spots.at(0)->speedInMbps() > 0.0 && spots.at(1)->speedInMbps() > 0.0
                 && source.bytesSent() > 0;
         }},
    };

    if (m_withService) {
        // Texts asked for at start arrive before the first picture.
        expectTexts();
        BMI18NManager::sharedInstance()->updateBundleTexts();
        waitForTexts();
    }
    for (const auto &[name, action] : tour) {
        if (!step(name, action)) {
            m_out << "walkthrough stopped at " << name << Qt::endl;
            return false;
        }
    }
    return true;
}

QString DemoWalkthrough::summary() const
{
    QString text;
    QTextStream out(&text);
    int failed = 0;
    out << "== Walkthrough summary ==\n";
    for (const Step &done : m_steps) {
        failed += done.ok ? 0 : 1;
        out << (done.ok ? "  ok    " : "  FAIL  ") << done.name << ": " << done.detail << '\n';
    }
    out << "== Spots ==\n";
    for (const QString &line : m_spotTables)
        out << "  " << line << '\n';
    out << "== Compare ==\n";
    for (const QString &line : m_compareTable)
        out << "  " << line << '\n';
    out << "== Files ==\n";
    for (const QString &path : m_files)
        out << "  " << QFileInfo(path).fileName() << '\n';
    out << QStringLiteral("%1 steps, %2 failed; pictures in %3\n")
               .arg(m_steps.size())
               .arg(failed)
               .arg(QDir::toNativeSeparators(m_folder.absolutePath()));
    return text;
}
