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
    BMSpotsTableController(BMWifiTestSession *session, Brightmere::TableView *table, const QColor &recordingColor,
                           QObject *parent = nullptr);
    ~BMSpotsTableController() override;

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
    void endTableEditing();
    /// The popup asking about a spot goes without an answer, dropping the
    /// measurement it asked about.
    void dismissEditPopup();
    FZConfirmSpotModificationPopup *editPopup() const;
    /// Tab goes from this widget on through the spots' names, in list order.
    void setTabChainStart(QWidget *widget);

    /// A spot's name being typed, the keyboard's size, and how far the list's
    /// bottom moves up to keep its field above the keyboard.
    bool isEditingRecordName() const { return m_isEditingRecordName; }
    QSize keyboardSize() const { return m_keyboardSize; }
    int tblRecordsBottomConstraint() const { return m_tblRecordsBottomConstraint; }
    void keyboardDidShow(const Brightmere::Notification &notification, double adHeight);
    void keyboardWillHide();

    /// The table's data source: one section, a row per spot, all swipeable.
    int numberOfRowsInSection(Brightmere::TableView *tableView, int section) override;
    Brightmere::TableViewCell *cellForRowAtIndexPath(Brightmere::TableView *tableView,
                                                     const Brightmere::IndexPath &indexPath) override;
    double heightForRowAtIndexPath(Brightmere::TableView *tableView, const Brightmere::IndexPath &indexPath) override;
    bool canEditRowAtIndexPath(Brightmere::TableView *tableView, const Brightmere::IndexPath &indexPath) override;
    /// Deleting goes through didEnterInEditMode and its question.
    void commitEditingStyle(Brightmere::TableView *tableView, EditingStyle style,
                            const Brightmere::IndexPath &indexPath) override;

    /// The rows' reports.
    void didBeginEditingSpeedRecord(BMSpeedRecordCell *cell) override;
    void didEndEditingSpeedRecord(BMSpeedRecordCell *cell) override;
    void didStartTapReRecordView(BMSpeedRecordCell *cell) override;
    void didFinishTapReRecordView(BMSpeedRecordCell *cell) override;
    void didCancelTapReRecordView(BMSpeedRecordCell *cell) override;
    void didEnterInEditMode(BMSpeedRecordCell *cell) override;

Q_SIGNALS:
    void nameEditBegan();
    void nameEditEnded();
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
