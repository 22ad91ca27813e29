#pragma once

#include "BMSpeedRecordDelegate.h"
#include <Brightmere/core/WifiTestResult.h>
#include <Brightmere/platform/views/TableViewDataSource.h>

#include <QColor>
#include <QLineEdit>
#include <QObject>
#include <QPointer>
#include <QSize>
#include <QStringList>

#include <memory>

class BMSpeedRecord;
class BMWifiTestSession;
class FZConfirmSpotModificationPopup;

namespace Brightmere {
class TableView;
struct Notification;
} // namespace Brightmere

/// The list of the run's spots under the test screen's chart: the table's
/// data source and every row's delegate. It renames a spot in place (with the
/// remembered names as suggestions), re-records a spot while its row is held
/// (asking whether to replace it or make a copy), and deletes a swiped spot
/// (asking first), each question skipped once the user made it a standing
/// answer. A spot saved or deleted changes its own row only, so the cost of
/// a save does not grow with the list.
class BMSpotsTableController : public QObject, public Brightmere::TableViewDataSource, public BMSpeedRecordDelegate
{
    Q_OBJECT

public:
    /// Fills table with session's spots; recordingColor marks a row being measured again.
    BMSpotsTableController(BMWifiTestSession *session, Brightmere::TableView *table, const QColor &recordingColor,
                           QObject *parent = nullptr);
    ~BMSpotsTableController() override;

    /// The table it fills.
    Brightmere::TableView *table() const { return m_table; }

    /// A question's note as rich text: the message, and under it, small and
    /// blue, that the standing answer can be cleared in the settings.
    static QString canBeClearedAttributedStringWithMessageString(const QString &message);

    /// Every row anew (the run was replaced, or the texts changed).
    void reloadRecords();
    /// The row of a spot kept at that row: inserted for a new one, shown
    /// anew for one measured again; the list goes back to its top.
    void showSavedSpot(int row, bool isNew);
    /// The row of a deleted spot fades out; the table leaves editing.
    void removeRow(int row);
    /// Ends a swipe's editing of the table.
    void endTableEditing();
    /// The popup asking about a spot goes without an answer, dropping the
    /// measurement it asked about.
    void dismissEditPopup();
    /// The popup asking about a spot while it is open; null otherwise.
    FZConfirmSpotModificationPopup *editPopup() const;
    /// Tab goes from this widget on through the spots' names, in list order.
    void setTabChainStart(QWidget *widget);

    /// A spot's name being typed, the keyboard's size, and how far the list's
    /// bottom moves up to keep its field above the keyboard.
    bool isEditingRecordName() const { return m_isEditingRecordName; }
    /// The keyboard's size while it is shown.
    QSize keyboardSize() const { return m_keyboardSize; }
    /// How far the list's bottom moves up.
    int tblRecordsBottomConstraint() const { return m_tblRecordsBottomConstraint; }
    /// The keyboard came: the list's bottom moves up (less the host's strip of adHeight).
    void keyboardDidShow(const Brightmere::Notification &notification, double adHeight);
    /// The keyboard goes: the list's bottom goes back.
    void keyboardWillHide();

    /// The table's data source: one section, a row per spot, all swipeable.
    int numberOfRowsInSection(Brightmere::TableView *tableView, int section) override;
    /// The row of a spot.
    Brightmere::TableViewCell *cellForRowAtIndexPath(Brightmere::TableView *tableView,
                                                     const Brightmere::IndexPath &indexPath) override;
    /// The height of a spot's row.
    double heightForRowAtIndexPath(Brightmere::TableView *tableView, const Brightmere::IndexPath &indexPath) override;
    /// Every row can be swiped.
    bool canEditRowAtIndexPath(Brightmere::TableView *tableView, const Brightmere::IndexPath &indexPath) override;
    /// Deleting goes through didEnterInEditMode and its question.
    void commitEditingStyle(Brightmere::TableView *tableView, EditingStyle style,
                            const Brightmere::IndexPath &indexPath) override;

    /// The rows' reports.
    void didBeginEditingSpeedRecord(BMSpeedRecordCell *cell) override;
    /// The name edit ended: the spot takes the typed name.
    void didEndEditingSpeedRecord(BMSpeedRecordCell *cell) override;
    void didStartTapReRecordView(BMSpeedRecordCell *cell) override;
    /// The hold ended on the control: asks whether to replace the spot or make a copy.
    void didFinishTapReRecordView(BMSpeedRecordCell *cell) override;
    /// The hold was let go: nothing changes.
    void didCancelTapReRecordView(BMSpeedRecordCell *cell) override;
    /// A swiped row: asks before deleting the spot.
    void didEnterInEditMode(BMSpeedRecordCell *cell) override;

Q_SIGNALS:
    /// A spot's name is being typed.
    void nameEditBegan();
    /// A spot's name is no longer being typed.
    void nameEditEnded();
    /// tblRecordsBottomConstraint() changed.
    void bottomConstraintChanged();

private:
    void showReplaceConfirmation(const WifiTestResult::Ptr &spot, const std::shared_ptr<BMSpeedRecord> &kept);
    void showDeleteConfirmation(const WifiTestResult::Ptr &spot);
    void updateTabOrder();
    void log(int level, const QString &message) const;

    BMWifiTestSession *m_session = nullptr;
    Brightmere::TableView *m_table = nullptr;
    QColor m_recordingColor;
    QPointer<QWidget> m_tabChainStart;
    QStringList m_completionNames;
    QPointer<FZConfirmSpotModificationPopup> m_editPopup;
    bool m_isEditingRecordName = false;
    QSize m_keyboardSize;
    QPointer<QLineEdit> m_activeSpotTextField;
    int m_tblRecordsBottomConstraint = 0;
};
