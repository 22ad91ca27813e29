#pragma once

#include <Brightmere/SDKUIExport.h>

#include <Brightmere/model/BMWifiScanVCEditSpotsSetSetter.h>
#include <Brightmere/model/FZHistoricalResultSpotsSet.h>
#include <Brightmere/platform/views/TableViewDataSource.h>
#include <Brightmere/ui/BMSDKUIBaseViewController.h>

#include <QPointer>
#include <QString>
#include <QStringList>

#include <functional>

namespace Brightmere {
class BarButtonItem;
class TableView;
} // namespace Brightmere

/// Every saved spots set, newest first, one row each. In normal mode a tap
/// opens the set ("viewSpotsSegue") and a swipe deletes it from the store
/// without asking. The options button switches to compare mode, where the
/// user picks two sets: the first pick narrows the list to the sets sharing a
/// spot label with it (itself included), the forward button appears once two
/// are picked and opens their comparison ("compareSpotsSegue"). Unpicking the
/// first while a second is picked makes the second the first.
///
/// The store is read at the first appearance (and whenever the list is still
/// empty); later appearances keep the list as it was, since deletions and
/// mode changes refresh it themselves.
class BRIGHTMERE_SDKUI_EXPORT FZSavedSpotsViewController : public BMSDKUIBaseViewController,
                                                           public Brightmere::TableViewDataSource
{
    Q_OBJECT
    // The test screen (a BMWifiScanVCEditSpotsSetSetter), held weakly and
    // passed on to the screen that shows one set.
    Q_PROPERTY(QObject *editSpotsSetSetter READ editSpotsSetSetterObject WRITE setEditSpotsSetSetterObject)

public:
    /// Opening sets (normal), or picking two to compare.
    enum UIMode { UIModeNormal = 0, UIModeCompare = 1 };

    /// The segue to one set.
    static constexpr const char *kViewSpotsSegue = "viewSpotsSegue";
    /// The segue to two sets compared.
    static constexpr const char *kCompareSpotsSegue = "compareSpotsSegue";

    /// The list of saved sets, read from the store when it loads.
    explicit FZSavedSpotsViewController(QWidget *parent = nullptr);
    ~FZSavedSpotsViewController() override;

    BMGAScreenClass screenNameAndClassForEventTracker() const override;
    void refreshUITexts() override;

    /// The sets listed, newest first.
    const FZHistoricalResultSpotsSet::List &allSpotsSets() const { return m_allSpotsSets; }
    /// The set about to be opened.
    FZHistoricalResultSpotsSet::Ptr spotsSetToView() const { return m_spotsSetToView; }
    /// Whether the list has been filled once.
    bool isInitialTableLoadDone() const { return m_isInitialTableLoadDone; }
    /// The current UIMode.
    int currentUIMode() const { return m_currentUIMode; }
    /// The list.
    Brightmere::TableView *tableView() const { return m_tableView; }
    /// The first set picked to compare; null when none.
    FZHistoricalResultSpotsSet::Ptr firstSpotsSetToCompare() const { return m_firstSpotsSetToCompare; }
    /// The second set picked to compare; null when none.
    FZHistoricalResultSpotsSet::Ptr secondSpotsSetToCompre() const { return m_secondSpotsSetToCompre; }
    /// Whether two sets are picked.
    bool readyToCompareSpotsSets() const { return m_firstSpotsSetToCompare && m_secondSpotsSetToCompre; }

    /// Null when none was given or it is gone.
    BMWifiScanVCEditSpotsSetSetter *editSpotsSetSetter() const;
    /// The test screen a set opened for editing goes back to.
    QObject *editSpotsSetSetterObject() const { return m_editSpotsSetSetter.data(); }
    /// Sets the test screen a set opened for editing goes back to.
    void setEditSpotsSetSetterObject(QObject *setter) { m_editSpotsSetSetter = setter; }

    /// With a first pick, the stored sets sharing a label with it; otherwise
    /// every stored set. The table is not reloaded here.
    void updateAllSpotsSets();
    /// Null (logged) out of range; -1 when the set is not listed. Sets are
    /// found by name and SSID, as the store tells them apart.
    FZHistoricalResultSpotsSet::Ptr spotsSetAtIndex(qsizetype index) const;
    /// The row of a set in the list; -1 when it is not there.
    qsizetype indexOfSpotsSet(const FZHistoricalResultSpotsSet::Ptr &spotsSet) const;

    /// Entries of the host's own in the options popup, between "compare
    /// sets" and "cancel" (a host's backup and restore, say): the screen
    /// owns that popup, so a host cannot add to it otherwise. chosen gets
    /// the entry's index in titles.
    using HostOptionChosen = std::function<void(int index)>;
    /// Sets the host's entries.
    void setHostOptions(const QStringList &titles, HostOptionChosen chosen);
    /// The host's entries.
    QStringList hostOptions() const { return m_hostOptionTitles; }

    /// The bar's actions.
    void showSetsOptions(QObject *sender);
    /// Opens the two picked sets compared.
    void compareSelectedSpotsSets(QObject *sender);
    /// Leaves compare mode.
    void cancelCompare(QObject *sender);

    /// Picking in compare mode. A pick is refused (false) when two sets are
    /// already picked.
    bool setSpotsSetToCompare(const FZHistoricalResultSpotsSet::Ptr &spotsSet);
    /// Unpicks a set.
    void unsetSpotsSetToCompare(const FZHistoricalResultSpotsSet::Ptr &spotsSet);
    /// Enters compare mode.
    void enableCompareSetsMode();
    /// Leaves compare mode for normal mode.
    void enableNormalMode();
    /// Updates the rows and the bar for the current mode.
    void updateUIWithCurrentMode();
    /// Titles the screen for the current mode.
    void updateTitle();
    /// Shows the bar's right control for the current mode.
    void updateRightBarButton();

    /// Whether the row shows as picked; rows are picked only in compare mode.
    bool isRowSelected(const Brightmere::IndexPath &indexPath) const;
    /// A tap on a picked row in compare mode is its deselection.
    void didDeselectRowAtIndexPath(Brightmere::TableView *tableView, const Brightmere::IndexPath &indexPath);

    /// One row per set.
    int numberOfRowsInSection(Brightmere::TableView *tableView, int section) override;
    /// The row of a set.
    Brightmere::TableViewCell *cellForRowAtIndexPath(Brightmere::TableView *tableView,
                                                     const Brightmere::IndexPath &indexPath) override;
    /// The height of a set's row.
    double heightForRowAtIndexPath(Brightmere::TableView *tableView, const Brightmere::IndexPath &indexPath) override;
    /// A row can be swiped to delete its set (normal mode).
    bool canEditRowAtIndexPath(Brightmere::TableView *tableView, const Brightmere::IndexPath &indexPath) override;
    /// Deletes a swiped set from the store.
    void commitEditingStyle(Brightmere::TableView *tableView, EditingStyle style,
                            const Brightmere::IndexPath &indexPath) override;
    /// Opens the set, or picks it in compare mode.
    void didSelectRowAtIndexPath(Brightmere::TableView *tableView, const Brightmere::IndexPath &indexPath) override;

    /// The bar's items, for hosts and tests: the options button (normal
    /// mode), the cancel button and the forward button (compare mode).
    Brightmere::BarButtonItem *optionsButton() const { return m_optionsItem; }
    /// The bar's control that leaves compare mode.
    Brightmere::BarButtonItem *cancelCompareButton() const { return m_cancelItem; }
    /// The bar's control that opens the comparison.
    Brightmere::BarButtonItem *forwardButton() const { return m_forwardItem; }

protected:
    void viewDidLoad() override;
    void viewWillAppear(bool animated) override;
    /// Hands the picked set or comparison to the screen opened.
    void prepareForSegue(Brightmere::StoryboardSegue &segue, QObject *sender) override;

private:
    bool isPicked(const FZHistoricalResultSpotsSet::Ptr &spotsSet) const;
    // Every shown row's look follows the picks.
    void refreshSelection();
    void log(int level, const QString &message) const;

    FZHistoricalResultSpotsSet::List m_allSpotsSets;
    FZHistoricalResultSpotsSet::Ptr m_spotsSetToView;
    FZHistoricalResultSpotsSet::Ptr m_firstSpotsSetToCompare;
    FZHistoricalResultSpotsSet::Ptr m_secondSpotsSetToCompre;
    bool m_isInitialTableLoadDone = false;
    int m_currentUIMode = UIModeNormal;
    QPointer<QObject> m_editSpotsSetSetter;
    QString m_shownTitle;
    QStringList m_hostOptionTitles;
    HostOptionChosen m_hostOptionChosen;

    Brightmere::TableView *m_tableView = nullptr;
    QPointer<Brightmere::BarButtonItem> m_backItem;
    Brightmere::BarButtonItem *m_optionsItem = nullptr;
    Brightmere::BarButtonItem *m_cancelItem = nullptr;
    Brightmere::BarButtonItem *m_forwardItem = nullptr;
};
