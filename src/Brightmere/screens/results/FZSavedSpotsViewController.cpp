#include "FZSavedSpotsViewController.h"

#include "FZCompareSpotsSetsViewController.h"
#include "FZSavedSpotsCell.h"
#include "FZSpotsSetViewController.h"
#include <Brightmere/core/BMLogger.h>
#include <Brightmere/i18n/BMI18NManager.h>
#include <Brightmere/model/FZResultSpotsSetsComparison.h>
#include <Brightmere/platform/views/BarButtonItem.h>
#include <Brightmere/platform/views/NavigationItem.h>
#include <Brightmere/platform/views/StoryboardSegue.h>
#include <Brightmere/platform/views/TableView.h>
#include <Brightmere/popups/FZOptionsPopup.h>
#include <Brightmere/ui/BrightmereColor.h>
#include <Brightmere/ui/BrightmereImage.h>
#include <Brightmere/ui/BrightmereView.h>

#include <QVBoxLayout>

using Brightmere::BarButtonItem;
using Brightmere::IndexPath;
using Brightmere::TableView;

namespace {

const QString kModule = QStringLiteral("FZSavedSpotsViewController");

bool sameSet(const FZHistoricalResultSpotsSet::Ptr &a, const FZHistoricalResultSpotsSet::Ptr &b)
{
    return a && b && *a == *b;
}

QString text(const char *key)
{
    return BMI18NManager::stringForCode(QString::fromLatin1(key));
}

} // namespace

FZSavedSpotsViewController::FZSavedSpotsViewController(QWidget *parent)
    : BMSDKUIBaseViewController(parent)
{
    Brightmere::View::setBackgroundColor(this, Brightmere::Color::system(4));
    m_tableView = new TableView(this);
    m_tableView->setObjectName(QStringLiteral("tableView"));
    m_tableView->setFrameShape(QFrame::NoFrame);
    Brightmere::View::setBackgroundColor(m_tableView->viewport(), Brightmere::Color::system(4));
    auto *layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->addWidget(m_tableView);

    // Kept by this screen and swapped in and out of the bar as the mode changes.
    QPointer<FZSavedSpotsViewController> self(this);
    const auto makeItem = [this, self](const char *image, void (FZSavedSpotsViewController::*action)(QObject *)) {
        auto *item = new BarButtonItem(Brightmere::Image::named(QString::fromLatin1(image)),
                                       BarButtonItem::Style::Plain, {}, this);
        item->setObjectName(QString::fromLatin1(image));
        item->setAction([self, item, action] {
            if (self)
                (self.data()->*action)(item);
        });
        return item;
    };
    m_optionsItem = makeItem("iconSpotsSetsOption", &FZSavedSpotsViewController::showSetsOptions);
    m_cancelItem = makeItem("iconBack", &FZSavedSpotsViewController::cancelCompare);
    m_forwardItem = makeItem("forwardIcon", &FZSavedSpotsViewController::compareSelectedSpotsSets);
}

FZSavedSpotsViewController::~FZSavedSpotsViewController()
{
    // The rows outlive nothing of ours, but the table must stop asking.
    m_tableView->setDataSource(nullptr);
}

BMGAScreenClass FZSavedSpotsViewController::screenNameAndClassForEventTracker() const
{
    return BMGAScreenClass(QStringLiteral("Spots Set Screen"), metaObject());
}

void FZSavedSpotsViewController::refreshUITexts()
{
    if (isViewLoaded())
        updateTitle();
    m_optionsItem->setAccessibleName(text("a11y_options"));
    m_cancelItem->setAccessibleName(text("cancel"));
    m_forwardItem->setAccessibleName(text("fairzones_historical_results_saved_compare_sets"));
}

BMWifiScanVCEditSpotsSetSetter *FZSavedSpotsViewController::editSpotsSetSetter() const
{
    return dynamic_cast<BMWifiScanVCEditSpotsSetSetter *>(m_editSpotsSetSetter.data());
}

void FZSavedSpotsViewController::viewDidLoad()
{
    BMSDKUIBaseViewController::viewDidLoad();
    m_tableView->setAllowsMultipleSelectionDuringEditing(false);
    m_tableView->setRowHeight(FZSavedSpotsCell::height());
    m_tableView->setDataSource(this);
}

void FZSavedSpotsViewController::viewWillAppear(bool animated)
{
    BMSDKUIBaseViewController::viewWillAppear(animated);
    if (!m_isInitialTableLoadDone) {
        m_isInitialTableLoadDone = true;
        updateUIWithCurrentMode();
    } else {
        updateTitle();
    }
    // Read once: later appearances keep the list as deletions and mode
    // changes left it.
    if (m_allSpotsSets.isEmpty()) {
        updateAllSpotsSets();
        m_tableView->reloadData();
    }
}

void FZSavedSpotsViewController::prepareForSegue(Brightmere::StoryboardSegue &segue, QObject *sender)
{
    BMSDKUIBaseViewController::prepareForSegue(segue, sender);
    Brightmere::ViewController *destination = segue.destinationViewController();
    if (segue.identifier() == QLatin1String(kViewSpotsSegue)) {
        auto *spotsSetScreen = qobject_cast<FZSpotsSetViewController *>(destination);
        if (!spotsSetScreen) {
            log(3, QStringLiteral("'%1' leads to no spots set screen; nothing handed over").arg(segue.identifier()));
            return;
        }
        spotsSetScreen->setSpotsSet(m_spotsSetToView);
        spotsSetScreen->setEditSpotsSetSetterObject(m_editSpotsSetSetter.data());
        return;
    }
    auto *compareScreen = qobject_cast<FZCompareSpotsSetsViewController *>(destination);
    if (!compareScreen) {
        log(3, QStringLiteral("'%1' leads to no compare screen; nothing handed over").arg(segue.identifier()));
        return;
    }
    compareScreen->setSpotsSetsComparison(
        FZResultSpotsSetsComparison::comparisonWithFirstSet(m_firstSpotsSetToCompare, m_secondSpotsSetToCompre));
}

// ---------------------------------------------------------------------------
// The list

void FZSavedSpotsViewController::updateAllSpotsSets()
{
    if (!m_firstSpotsSetToCompare) {
        m_allSpotsSets = FZHistoricalResultSpotsSet::allSpotsSets();
        return;
    }
    // The listing marks the sets sharing a label with the pick (the pick
    // among them); only those stay.
    FZHistoricalResultSpotsSet::List narrowed;
    for (const FZHistoricalResultSpotsSet::Ptr &set :
         FZHistoricalResultSpotsSet::allSpotsSetsWithTaretSetToCompare(m_firstSpotsSetToCompare)) {
        if (set && set->isComparable())
            narrowed.append(set);
    }
    m_allSpotsSets = narrowed;
}

FZHistoricalResultSpotsSet::Ptr FZSavedSpotsViewController::spotsSetAtIndex(qsizetype index) const
{
    if (index < 0 || index >= m_allSpotsSets.size()) {
        log(2, QStringLiteral("no set at row %1 of %2").arg(index).arg(m_allSpotsSets.size()));
        return nullptr;
    }
    return m_allSpotsSets.at(index);
}

qsizetype FZSavedSpotsViewController::indexOfSpotsSet(const FZHistoricalResultSpotsSet::Ptr &spotsSet) const
{
    for (qsizetype i = 0; i < m_allSpotsSets.size(); ++i) {
        if (sameSet(m_allSpotsSets.at(i), spotsSet))
            return i;
    }
    return -1;
}

int FZSavedSpotsViewController::numberOfRowsInSection(TableView *, int)
{
    return int(m_allSpotsSets.size());
}

Brightmere::TableViewCell *FZSavedSpotsViewController::cellForRowAtIndexPath(TableView *tableView,
                                                                             const IndexPath &indexPath)
{
    auto *cell = qobject_cast<FZSavedSpotsCell *>(
        tableView->dequeueReusableCellWithIdentifier(QString::fromLatin1(FZSavedSpotsCell::kReuseIdentifier)));
    if (!cell) {
        cell = new FZSavedSpotsCell;
        cell->setOwner(this);
    }
    const FZHistoricalResultSpotsSet::Ptr set = spotsSetAtIndex(indexPath.row());
    cell->setupWithSpotsSet(set, m_currentUIMode);
    cell->setSelected(isPicked(set), false);
    return cell;
}

double FZSavedSpotsViewController::heightForRowAtIndexPath(TableView *, const IndexPath &)
{
    return FZSavedSpotsCell::height();
}

bool FZSavedSpotsViewController::canEditRowAtIndexPath(TableView *, const IndexPath &)
{
    return m_currentUIMode != UIModeCompare;
}

void FZSavedSpotsViewController::commitEditingStyle(TableView *tableView, EditingStyle style,
                                                    const IndexPath &indexPath)
{
    if (style != EditingStyle::Delete)
        return;
    if (m_currentUIMode == UIModeCompare) {
        log(2, QStringLiteral("sets are not deleted while two are being picked"));
        return;
    }
    const FZHistoricalResultSpotsSet::Ptr set = spotsSetAtIndex(indexPath.row());
    if (!set)
        return;
    if (!FZHistoricalResultSpotsSet::deleteSpotsSet(set)) {
        // The store says why; the list shows what it still holds.
        log(3, QStringLiteral("'%1' could not be deleted; the list is read again").arg(set->name()));
        updateAllSpotsSets();
        tableView->reloadData();
        return;
    }
    updateAllSpotsSets();
    tableView->beginUpdates();
    tableView->deleteRowsAtIndexPaths({indexPath}, TableView::RowAnimation::Automatic);
    tableView->endUpdates();
}

void FZSavedSpotsViewController::didSelectRowAtIndexPath(TableView *tableView, const IndexPath &indexPath)
{
    const FZHistoricalResultSpotsSet::Ptr set = spotsSetAtIndex(indexPath.row());
    if (!set)
        return;
    if (m_currentUIMode != UIModeCompare) {
        m_spotsSetToView = set;
        performSegueWithIdentifier(QString::fromLatin1(kViewSpotsSegue), nullptr);
        return;
    }
    if (isPicked(set)) {
        didDeselectRowAtIndexPath(tableView, indexPath);
        return;
    }
    if (!set->isComparable())
        return; // nothing to compare it with: the row stays as it is
    if (setSpotsSetToCompare(set))
        refreshSelection();
}

void FZSavedSpotsViewController::didDeselectRowAtIndexPath(TableView *, const IndexPath &indexPath)
{
    if (const FZHistoricalResultSpotsSet::Ptr set = spotsSetAtIndex(indexPath.row()))
        unsetSpotsSetToCompare(set);
}

bool FZSavedSpotsViewController::isRowSelected(const IndexPath &indexPath) const
{
    if (indexPath.row() < 0 || indexPath.row() >= m_allSpotsSets.size())
        return false;
    return isPicked(m_allSpotsSets.at(indexPath.row()));
}

bool FZSavedSpotsViewController::isPicked(const FZHistoricalResultSpotsSet::Ptr &spotsSet) const
{
    return m_currentUIMode == UIModeCompare
        && (sameSet(spotsSet, m_firstSpotsSetToCompare) || sameSet(spotsSet, m_secondSpotsSetToCompre));
}

void FZSavedSpotsViewController::refreshSelection()
{
    for (Brightmere::TableViewCell *row : m_tableView->visibleCells()) {
        if (auto *cell = qobject_cast<FZSavedSpotsCell *>(row)) {
            const bool picked = isPicked(cell->spotsSet());
            if (picked != cell->showsSelection())
                cell->setSelected(picked, true);
        }
    }
}

// ---------------------------------------------------------------------------
// Picking two sets

bool FZSavedSpotsViewController::setSpotsSetToCompare(const FZHistoricalResultSpotsSet::Ptr &spotsSet)
{
    if (!spotsSet) {
        log(2, QStringLiteral("asked to pick no set; refused"));
        return false;
    }
    if (readyToCompareSpotsSets())
        return false; // two at most
    if (m_firstSpotsSetToCompare) {
        m_secondSpotsSetToCompre = spotsSet;
        updateRightBarButton();
    } else {
        m_firstSpotsSetToCompare = spotsSet;
        updateAllSpotsSets();
        m_tableView->reloadData();
    }
    return true;
}

void FZSavedSpotsViewController::unsetSpotsSetToCompare(const FZHistoricalResultSpotsSet::Ptr &spotsSet)
{
    const bool wasFirst = sameSet(spotsSet, m_firstSpotsSetToCompare);
    const FZHistoricalResultSpotsSet::Ptr oldSecond = m_secondSpotsSetToCompre;
    if (!wasFirst && !sameSet(spotsSet, oldSecond)) {
        log(2, QStringLiteral("'%1' is not picked; nothing to unpick").arg(spotsSet ? spotsSet->name() : QString()));
        return;
    }
    m_secondSpotsSetToCompre.reset();
    if (wasFirst) {
        m_firstSpotsSetToCompare.reset();
        if (oldSecond) {
            // The second becomes the first: the list narrows around it.
            setSpotsSetToCompare(oldSecond);
            const qsizetype row = indexOfSpotsSet(oldSecond);
            if (row < 0)
                log(2, QStringLiteral("'%1' is not in its own narrowed list").arg(oldSecond->name()));
        } else {
            updateAllSpotsSets();
            m_tableView->reloadData();
        }
    }
    refreshSelection();
    updateRightBarButton();
}

void FZSavedSpotsViewController::compareSelectedSpotsSets(QObject *)
{
    if (!readyToCompareSpotsSets()) {
        log(2, QStringLiteral("two sets must be picked to compare them"));
        return;
    }
    performSegueWithIdentifier(QString::fromLatin1(kCompareSpotsSegue), nullptr);
}

void FZSavedSpotsViewController::cancelCompare(QObject *)
{
    if (m_firstSpotsSetToCompare) {
        m_firstSpotsSetToCompare.reset();
        m_secondSpotsSetToCompre.reset();
        updateAllSpotsSets();
    }
    enableNormalMode();
}

// ---------------------------------------------------------------------------
// Modes and the bar

void FZSavedSpotsViewController::showSetsOptions(QObject *)
{
    const QStringList options = QStringList{text("fairzones_historical_results_saved_title"),
                                            text("fairzones_historical_results_saved_compare_sets")}
        + m_hostOptionTitles + QStringList{text("cancel")};
    FZOptionsPopup *popup = FZOptionsPopup::popupWithOptions(options, FZOptionsPopup::Vertical);
    QPointer<FZSavedSpotsViewController> self(this);
    const qsizetype hostCount = m_hostOptionTitles.size();
    popup->setOptionChosenBlock([self, hostCount](int index) {
        if (!self)
            return;
        if (index == 1)
            self->enableCompareSetsMode();
        else if (index >= 2 && index < 2 + hostCount && self->m_hostOptionChosen)
            self->m_hostOptionChosen(index - 2);
    });
    popup->show();
}

void FZSavedSpotsViewController::setHostOptions(const QStringList &titles, HostOptionChosen chosen)
{
    m_hostOptionTitles = titles;
    m_hostOptionChosen = std::move(chosen);
}

void FZSavedSpotsViewController::enableCompareSetsMode()
{
    m_currentUIMode = UIModeCompare;
    updateUIWithCurrentMode();
}

void FZSavedSpotsViewController::enableNormalMode()
{
    m_currentUIMode = UIModeNormal;
    updateUIWithCurrentMode();
}

void FZSavedSpotsViewController::updateUIWithCurrentMode()
{
    if (m_currentUIMode == UIModeCompare) {
        navigationItem()->setLeftBarButtonItem(m_cancelItem);
    } else if (m_backItem) {
        navigationItem()->setLeftBarButtonItem(m_backItem);
    } else {
        replaceNativeBackButton();
        m_backItem = navigationItem()->leftBarButtonItem();
    }
    updateRightBarButton();
    updateTitle();
    m_tableView->reloadData();
}

void FZSavedSpotsViewController::updateTitle()
{
    const QString title = m_currentUIMode == UIModeCompare ? text("fairzones_historical_results_saved_compare_title")
                                                           : text("fairzones_historical_results_saved_title");
    // Texts are read again on every layout pass; the title view is only
    // rebuilt when its text changes.
    if (title == m_shownTitle && navigationItem()->titleView())
        return;
    m_shownTitle = title;
    setTitle(title);
    prepareHeaderViewForTitle(title);
}

void FZSavedSpotsViewController::updateRightBarButton()
{
    if (m_currentUIMode != UIModeCompare)
        navigationItem()->setRightBarButtonItem(m_optionsItem);
    else
        navigationItem()->setRightBarButtonItem(readyToCompareSpotsSets() ? m_forwardItem : nullptr);
}

void FZSavedSpotsViewController::log(int level, const QString &message) const
{
    BMLogger::sharedInstance().logFromModule(kModule, level, "%@", message);
}
