#include "DemoReportActions.h"

#include "DemoEventLog.h"
#include "DemoReports.h"
#include <Brightmere/core/BMLogger.h>
#include <Brightmere/i18n/BMI18NManager.h>
#include <Brightmere/platform/foundation/StringFormat.h>
#include <Brightmere/platform/views/BarButtonItem.h>
#include <Brightmere/platform/views/NavigationItem.h>
#include <Brightmere/platform/views/Storyboard.h>
#include <Brightmere/platform/views/TableView.h>
#include <Brightmere/reports/FZComparisonReportRows.h>
#include <Brightmere/screens/results/FZCompareSpotsSetsViewController.h>
#include <Brightmere/screens/results/FZSavedSpotsViewController.h>
#include <Brightmere/screens/results/FZSpotsSetViewController.h>
#include <Brightmere/session/BMWifiScanVC.h>
#include <Brightmere/storyboard/BMSDKUIStoryboard.h>
#include <Brightmere/ui/BMSDKUIAlertView.h>

#include <QDir>
#include <QFileInfo>
#include <QMetaEnum>

namespace {

const QString kModule = QStringLiteral("DemoHost");

QString text(const char *key)
{
    return BMI18NManager::stringForCode(QString::fromLatin1(key));
}

QString speed(const WifiTestResult::Ptr &spot)
{
    return spot ? BMI18NManager::formatNumber(spot->speedInMbps(), 1) : QStringLiteral("-");
}

const char *const kWrapped[] = {BMSDKUIStoryboard::kShowSavedSpotsSegue, BMSDKUIStoryboard::kViewSpotsSegue,
                                BMSDKUIStoryboard::kCompareSpotsSegue};

} // namespace

DemoReportActions::DemoReportActions(DemoEventLog *log, QObject *parent)
    : QObject(parent)
    , m_log(log)
    , m_folder(DemoReports::defaultFolder())
{
}

DemoReportActions::~DemoReportActions()
{
    // The storyboard outlives the host's window: it makes the kit's screens again.
    if (m_storyboard)
        BMSDKUIStoryboard::registerSegues(m_storyboard);
}

void DemoReportActions::registerOn(Brightmere::Storyboard *storyboard)
{
    if (!storyboard)
        return;
    m_storyboard = storyboard;
    if (!m_kitScreens) {
        m_kitScreens = new Brightmere::Storyboard(this);
        BMSDKUIStoryboard::registerSegues(m_kitScreens);
    }
    QPointer<DemoReportActions> self(this);
    for (const char *identifier : kWrapped) {
        const QString id = QString::fromLatin1(identifier);
        storyboard->registerSegue(id, [self, id]() -> Brightmere::ViewController * {
            if (!self)
                return nullptr;
            Brightmere::ViewController *screen = self->m_kitScreens->instantiateDestination(id);
            self->attach(screen);
            return screen;
        });
    }
}

void DemoReportActions::attach(Brightmere::ViewController *screen)
{
    QPointer<DemoReportActions> self(this);
    if (auto *list = qobject_cast<FZSavedSpotsViewController *>(screen)) {
        QPointer<FZSavedSpotsViewController> guard(list);
        list->setHostOptions({text("demo_back_up_saved_runs"), text("demo_restore_saved_runs")}, [self, guard](int index) {
            if (self && guard)
                self->chooseForSavedList(guard, kFirstSavedListOption + index);
        });
        return;
    }
    if (!qobject_cast<FZSpotsSetViewController *>(screen) && !qobject_cast<FZCompareSpotsSetsViewController *>(screen))
        return;
    QPointer<Brightmere::ViewController> guard(screen);
    auto *item = new Brightmere::BarButtonItem(BMWifiScanVC::imageNamed(QStringLiteral("iconShare")),
                                               Brightmere::BarButtonItem::Style::Plain, {}, screen);
    item->setObjectName(QStringLiteral("demoShareButton"));
    item->setAction([self, guard] {
        if (self && guard)
            self->showPopup(guard);
    });
    screen->navigationItem()->setRightBarButtonItem(item);
}

void DemoReportActions::showPopup(Brightmere::ViewController *screen)
{
    QString title;
    shareText(screen, title);
    FZOptionsPopup *popup = FZOptionsPopup::popupWithOptions(
        {title, text("demo_export_csv"), text("demo_export_pdf"), text("demo_share"), text("cancel")});
    QPointer<DemoReportActions> self(this);
    QPointer<Brightmere::ViewController> guard(screen);
    popup->setOptionChosenBlock([self, guard](int index) {
        if (self && guard)
            self->choose(guard, index);
    });
    m_popup = popup;
    popup->show();
}

bool DemoReportActions::choose(Brightmere::ViewController *screen, int option)
{
    auto *setScreen = qobject_cast<FZSpotsSetViewController *>(screen);
    auto *compare = qobject_cast<FZCompareSpotsSetsViewController *>(screen);
    const auto comparison = compare ? compare->spotsSetsComparison() : nullptr;
    if ((!setScreen || !setScreen->spotsSet()) && !comparison) {
        BMLogger::sharedInstance().logFromModule(kModule, 3, "no set or comparison on screen; nothing exported");
        return false;
    }
    const DemoReports reports(m_folder);
    switch (option) {
    case ExportCsv:
    case ExportPdf: {
        const bool pdf = option == ExportPdf;
        const DemoReports::Outcome outcome = comparison
            ? (pdf ? reports.exportComparisonPdf(*comparison) : reports.exportComparisonCsv(*comparison))
            : (pdf ? reports.exportSetPdf(setScreen->spotsSet()) : reports.exportSetCsv(setScreen->spotsSet()));
        return report(screen, outcome.ok, outcome.path, outcome.message);
    }
    case Share: {
        QString title;
        const QString body = shareText(screen, title);
        auto *share = new FZShareController(this);
        share->setSubject(title);
        share->setBody(body);
        share->setSaveFolder(m_folder);
        share->setFileName(QFileInfo(reports.fileFor(title, QStringLiteral("txt"))).completeBaseName());
        share->setMailAvailability(m_mailAvailability);
        QPointer<DemoReportActions> self(this);
        connect(share, &FZShareController::finished, this,
                [self, share](FZShareController::Outcome outcome, const QString &path) {
                    const QString how = QString::fromLatin1(
                        QMetaEnum::fromType<FZShareController::Outcome>().valueToKey(int(outcome)));
                    const QString where = path.isEmpty() ? QString() : QStringLiteral(": ") + QDir::toNativeSeparators(path);
                    if (self && self->m_log)
                        self->m_log->append(QStringLiteral("host: share %1%2").arg(how.toLower(), where));
                    if (self)
                        Q_EMIT self->done(outcome != FZShareController::Outcome::Failed && outcome != FZShareController::Outcome::Cancelled, path);
                    share->deleteLater();
                });
        m_share = share;
        share->share(screen);
        return true;
    }
    case Cancel:
        return true;
    default:
        BMLogger::sharedInstance().logFromModule(kModule, 3, "no report option %d; nothing done", option);
        return false;
    }
}

bool DemoReportActions::chooseForSavedList(FZSavedSpotsViewController *list, int option)
{
    const DemoReports reports(m_folder);
    if (option == BackUp) {
        const DemoReports::Outcome outcome = reports.backUp();
        return report(list, outcome.ok, outcome.path, outcome.message);
    }
    if (option != Restore) {
        BMLogger::sharedInstance().logFromModule(kModule, 3, "no saved-list option %d; nothing done", option);
        return false;
    }
    const DemoReports::Outcome outcome = reports.restoreNewest();
    if (m_log)
        m_log->append(QStringLiteral("host: ") + outcome.message);
    if (outcome.ok && list) {
        // The list read the store when it appeared; what came back shows now.
        list->updateAllSpotsSets();
        list->tableView()->reloadData();
    }
    if (list) {
        list->presentAlert(outcome.ok ? BMSDKUIAlertView::alertControllerWithTitleOnOK(
                                            text("demo_restored_title"),
                                            Brightmere::StringFormat::print(text("demo_restored_message"), outcome.added,
                                                                            outcome.skipped, outcome.renamed),
                                            {})
                                      : BMSDKUIAlertView::alertControllerWithTitleOnOK(text("demo_not_restored_title"),
                                                                                       outcome.message, {}),
                           false);
    }
    Q_EMIT done(outcome.ok, outcome.path);
    return outcome.ok;
}

bool DemoReportActions::report(Brightmere::ViewController *screen, bool ok, const QString &path, const QString &message)
{
    if (m_log)
        m_log->append(QStringLiteral("host: ") + message);
    if (screen) {
        screen->presentAlert(ok ? FZShareController::fileSavedAlert(path)
                                : BMSDKUIAlertView::alertControllerWithTitleOnOK(text("fairzones_file_not_saved_title"),
                                                                                 message, {}),
                             false);
    }
    Q_EMIT done(ok, ok ? path : QString());
    return ok;
}

QString DemoReportActions::shareText(Brightmere::ViewController *screen, QString &title)
{
    QStringList lines;
    if (auto *setScreen = qobject_cast<FZSpotsSetViewController *>(screen); setScreen && setScreen->spotsSet()) {
        const auto set = setScreen->spotsSet();
        title = set->name();
        lines << title;
        for (const WifiTestResult::Ptr &spot : set->sortedSpots())
            lines << QStringLiteral("%1: %2 Mbps").arg(spot->label(), speed(spot));
    } else if (auto *compare = qobject_cast<FZCompareSpotsSetsViewController *>(screen);
               compare && compare->spotsSetsComparison()) {
        const FZResultSpotsSetsComparison &comparison = *compare->spotsSetsComparison();
        const auto first = comparison.firstSet();
        const auto second = comparison.secondSet();
        title = QStringLiteral("%1 vs %2").arg(first ? first->name() : QString(), second ? second->name() : QString());
        const FZComparisonReportRows rows(comparison, comparison.excludeIdenticalMatches());
        lines << title << rows.verdict();
        for (const FZComparisonReportRows::Row &row : rows.rows())
            lines << QStringLiteral("%1: %2 → %3 Mbps").arg(row.label, speed(row.first), speed(row.second));
    }
    return lines.join(u'\n');
}
