#include "BMSpotsTableController.h"

#include "BMSpeedRecordCell.h"
#include "BMWifiTestSession.h"
#include <Brightmere/core/BMLogger.h>
#include <Brightmere/i18n/BMI18NManager.h>
#include <Brightmere/model/BMSDKUISettings.h>
#include <Brightmere/model/BMSpeedRecord.h>
#include <Brightmere/platform/foundation/MainQueue.h>
#include <Brightmere/platform/foundation/StringFormat.h>
#include <Brightmere/platform/views/KeyboardNotifications.h>
#include <Brightmere/platform/views/TableView.h>
#include <Brightmere/popups/FZConfirmSpotModificationPopup.h>
#include <Brightmere/popups/FZOptionsPopup.h>
#include <Brightmere/ui/BrightmereColor.h>
#include <Brightmere/ui/BrightmereView.h>

#include <QCompleter>
#include <QStringListModel>

using namespace Brightmere;

QString BMSpotsTableController::canBeClearedAttributedStringWithMessageString(const QString &message)
{
    const QString note =
        BMI18NManager::stringForCode(QStringLiteral("fairzones_delete_record_can_be_cleared_in_settings"));
    const QString blue = Color::colorToString(
        Color::fixedColor(Color::colorWithHexString(QStringLiteral("2882c6")), Color::system(2)));
    // Line spacing 0: the two lines sit as close as the fonts allow.
    return QStringLiteral("<div style=\"line-height:100%\">%1<br/><span style=\"color:#%2; font-size:8pt\">%3</span></div>")
        .arg(message.toHtmlEscaped(), blue, note.toHtmlEscaped());
}

BMSpotsTableController::BMSpotsTableController(BMWifiTestSession *session, TableView *table,
                                               const QColor &recordingColor, QObject *parent)
    : QObject(parent)
    , m_session(session)
    , m_table(table)
    , m_recordingColor(recordingColor)
{
    m_table->setRowHeight(BMSpeedRecordCell::height());
    m_table->setDataSource(this);
    m_table->setAllowsSelection(true);
    m_table->setDelaysContentTouches(true);
    m_table->setAllowsMultipleSelectionDuringEditing(false);
    // The table's horizontal pan may begin only on a drag to the right; a
    // drag to the left is a row's swipe to delete.
    m_table->setHorizontalPanShouldBegin([](const QPoint &translation) { return translation.x() > 0; });
    // Rows come and go as the list scrolls: the Tab chain follows them.
    connect(m_table, &TableView::visibleRowsChanged, this, &BMSpotsTableController::updateTabOrder);
}

BMSpotsTableController::~BMSpotsTableController()
{
    MainQueue::cancelAll(this);
    if (m_editPopup)
        m_editPopup->dismiss();
    if (m_table)
        m_table->setDataSource(nullptr);
}

FZConfirmSpotModificationPopup *BMSpotsTableController::editPopup() const
{
    return m_editPopup.data();
}

// ---------------------------------------------------------------------------
// The rows

void BMSpotsTableController::reloadRecords()
{
    // Read once per reload rather than once per row.
    m_completionNames = BMSDKUISettings::sharedInstance().savedSpots();
    m_table->reloadData();
    updateTabOrder();
}

void BMSpotsTableController::showSavedSpot(int row, bool isNew)
{
    m_table->scrollRectToVisible(QRect(0, 0, 1, 1), false);
    if (!isNew) {
        m_table->reloadRowsAtIndexPaths({IndexPath(row, 0)}, TableView::RowAnimation::None);
        return;
    }
    m_table->insertRowsAtIndexPaths({IndexPath(row, 0)}, TableView::RowAnimation::Automatic);
    // The rows under it changed place, so their stripes alternate anew;
    // only those in view exist to be told.
    QList<IndexPath> moved;
    for (TableViewCell *cell : m_table->visibleCells()) {
        const IndexPath path = m_table->indexPathForCell(cell);
        if (path.isValid() && path.row() > row)
            moved << path;
    }
    m_table->reloadRowsAtIndexPaths(moved, TableView::RowAnimation::None);
}

void BMSpotsTableController::removeRow(int row)
{
    m_table->beginUpdates();
    m_table->deleteRowsAtIndexPaths({IndexPath(row, 0)}, TableView::RowAnimation::Fade);
    m_table->setEditing(false, true);
    m_table->endUpdates();
}

void BMSpotsTableController::endTableEditing()
{
    m_table->beginUpdates();
    m_table->setEditing(false, true);
    m_table->endUpdates();
}

void BMSpotsTableController::setTabChainStart(QWidget *widget)
{
    m_tabChainStart = widget;
    updateTabOrder();
}

void BMSpotsTableController::updateTabOrder()
{
    // Rows are reused, so the chain is made anew whenever they change.
    QWidget *previous = m_tabChainStart.data();
    if (!previous)
        return;
    for (TableViewCell *row : m_table->visibleCells()) {
        if (auto *cell = qobject_cast<BMSpeedRecordCell *>(row)) {
            QWidget::setTabOrder(previous, cell->lblArea());
            QWidget::setTabOrder(cell->lblArea(), cell->reRecordView());
            previous = cell->reRecordView();
        }
    }
}

int BMSpotsTableController::numberOfRowsInSection(TableView *, int)
{
    return int(m_session->recordedSpeeds().size());
}

TableViewCell *BMSpotsTableController::cellForRowAtIndexPath(TableView *tableView, const IndexPath &indexPath)
{
    const WifiTestResult::List &spots = m_session->recordedSpeeds();
    if (indexPath.row() < 0 || indexPath.row() >= spots.size())
        return nullptr;
    auto *cell = qobject_cast<BMSpeedRecordCell *>(
        tableView->dequeueReusableCellWithIdentifier(BMTableViewCell::cellIdentifier(BMSpeedRecordCell::staticMetaObject)));
    if (!cell) {
        cell = BMTableViewCell::cell<BMSpeedRecordCell>();
        if (QCompleter *completer = cell->completer()) {
            connect(completer, qOverload<const QString &>(&QCompleter::activated), this,
                    [this](const QString &chosen) { log(2, StringFormat::print("selectedString: %@", chosen)); });
        }
    }
    cell->setRecordingColor(m_recordingColor);
    cell->setDelegate(this);
    if (auto *model = cell->completer() ? qobject_cast<QStringListModel *>(cell->completer()->model()) : nullptr)
        model->setStringList(m_completionNames);
    cell->setupWithRecord(spots.at(indexPath.row()), indexPath.row() % 2 == 0);
    return cell;
}

double BMSpotsTableController::heightForRowAtIndexPath(TableView *, const IndexPath &)
{
    return BMSpeedRecordCell::height();
}

bool BMSpotsTableController::canEditRowAtIndexPath(TableView *, const IndexPath &)
{
    return true;
}

void BMSpotsTableController::commitEditingStyle(TableView *, EditingStyle, const IndexPath &)
{
}

// ---------------------------------------------------------------------------
// Renaming

void BMSpotsTableController::didBeginEditingSpeedRecord(BMSpeedRecordCell *cell)
{
    if (!cell)
        return;
    m_activeSpotTextField = cell->lblArea();
    // A desktop keyboard sends no keyboard notifications: the name is being
    // typed while its field has the focus.
    m_isEditingRecordName = true;
    m_table->scrollToRowAtIndexPath(m_table->indexPathForCell(cell), TableView::ScrollPosition::Top, true);
    Q_EMIT nameEditBegan();
}

void BMSpotsTableController::didEndEditingSpeedRecord(BMSpeedRecordCell *cell)
{
    if (!cell)
        return;
    if (m_activeSpotTextField == cell->lblArea()) {
        m_activeSpotTextField.clear();
        m_isEditingRecordName = false;
    }
    const int row = m_table->indexPathForCell(cell).row();
    if (row < 0 || row >= m_session->recordedSpeeds().size())
        return;
    cell->lblArea()->setText(m_session->renameSpot(row, cell->lblArea()->text()));
    Q_EMIT nameEditEnded();
}

void BMSpotsTableController::keyboardDidShow(const Notification &notification, double adHeight)
{
    m_isEditingRecordName = true;
    m_keyboardSize = KeyboardNotifications::endFrame(notification).size();
    QLineEdit *field = m_activeSpotTextField.data();
    if (!field || !field->window())
        return;
    // The field must stay above the keyboard: if its bottom falls under the
    // keyboard's top, the list's bottom moves up by the keyboard, less the
    // advertisement strip it already clears.
    QWidget *window = field->window();
    const int fieldBottom = field->mapTo(window, QPoint(0, field->height())).y();
    if (fieldBottom > window->height() - m_keyboardSize.height()) {
        m_tblRecordsBottomConstraint = qMax(0, m_keyboardSize.height() - int(adHeight));
        Q_EMIT bottomConstraintChanged();
    }
}

void BMSpotsTableController::keyboardWillHide()
{
    m_tblRecordsBottomConstraint = 0;
    m_isEditingRecordName = false;
    Q_EMIT bottomConstraintChanged();
}

// ---------------------------------------------------------------------------
// Re-recording a held row

void BMSpotsTableController::didStartTapReRecordView(BMSpeedRecordCell *cell)
{
    if (!cell || !m_session->isScanning() || m_isEditingRecordName)
        return;
    if (m_session->isRecording()) {
        log(2, QStringLiteral("A row was held while a spot is being recorded; ignored"));
        return;
    }
    m_session->setWifiRecordBeingEdited(cell->record());
    m_session->startRecording();
}

void BMSpotsTableController::didCancelTapReRecordView(BMSpeedRecordCell *)
{
    // The recording the hold started ends with it, unsaved: a hold dragged
    // off the row or turned into a scroll records nothing.
    const bool holdRecording = m_session->wifiRecordBeingEdited() && m_session->isRecording();
    m_session->setWifiRecordBeingEdited(nullptr);
    dismissEditPopup();
    if (holdRecording)
        m_session->stopRecording();
}

void BMSpotsTableController::didFinishTapReRecordView(BMSpeedRecordCell *)
{
    // Only a hold that really started a re-recording is finished (the test
    // may also have ended during the hold).
    const WifiTestResult::Ptr spot = m_session->wifiRecordBeingEdited();
    if (!m_session->isScanning() || !spot || !m_session->isRecording()) {
        m_session->setWifiRecordBeingEdited(nullptr);
        return;
    }
    BMSDKUISettings &settings = BMSDKUISettings::sharedInstance();
    const bool alwaysCopy = settings.alwaysCopyRecording();
    if (!alwaysCopy && !settings.alwaysReplaceRecording()) {
        showReplaceConfirmation(spot, m_session->takeSpeedRecord());
        return;
    }
    // Copy wins when both standing answers are set.
    if (alwaysCopy)
        m_session->prepareCopyOf(spot);
    m_session->saveRecordAndStopRecordingIfNeeded();
}

void BMSpotsTableController::showReplaceConfirmation(const WifiTestResult::Ptr &spot,
                                                     const std::shared_ptr<BMSpeedRecord> &kept)
{
    const QStringList options{
        spot->label(),
        canBeClearedAttributedStringWithMessageString(BMI18NManager::stringForCode(QStringLiteral("fairzones_replace_record_confirm_always"))),
        BMI18NManager::stringForCode(QStringLiteral("cancel")),
        BMI18NManager::stringForCode(QStringLiteral("fairzones_replace_copy")),
        BMI18NManager::stringForCode(QStringLiteral("fairzones_replace_confirm")),
    };
    enum { kCopy = 3, kReplace = 4 };
    FZConfirmSpotModificationPopup *popup =
        FZConfirmSpotModificationPopup::popupWithOptions(options, FZOptionsPopup::Horizontal, Qt::RichText);
    QPointer<BMSpotsTableController> self(this);
    QPointer<FZConfirmSpotModificationPopup> guard(popup);
    popup->setOptionChosenBlock([self, guard, spot, kept](int index) {
        if (!self)
            return;
        BMWifiTestSession *session = self->m_session;
        if (index != kCopy && index != kReplace) {
            session->setWifiRecordBeingEdited(nullptr);
            return;
        }
        session->setWifiRecordBeingEdited(spot);
        if (index == kCopy)
            session->prepareCopyOf(spot);
        session->restoreSpeedRecord(kept);
        session->saveRecordAndStopRecordingIfNeeded();
        if (guard && guard->isAlwaysSwitchOn()) {
            if (index == kCopy)
                BMSDKUISettings::sharedInstance().setAlwaysCopyRecording(true);
            else
                BMSDKUISettings::sharedInstance().setAlwaysReplaceRecording(true);
        }
    });
    // Escape or a click beside the card drops the new measurement.
    connect(popup, &FZOptionsPopup::dismissed, this, [self] {
        if (self)
            self->m_session->setWifiRecordBeingEdited(nullptr);
    });
    m_editPopup = popup;
    popup->show();
}

// ---------------------------------------------------------------------------
// Deleting a swiped row

void BMSpotsTableController::didEnterInEditMode(BMSpeedRecordCell *cell)
{
    dismissEditPopup();
    // A name still being typed is the spot's before it is asked about.
    if (m_isEditingRecordName)
        View::findAndResignFirstResponder(m_table);
    const WifiTestResult::Ptr spot = cell ? cell->record() : nullptr;
    if (!spot)
        return;
    if (BMSDKUISettings::sharedInstance().alwaysDeleteRecording()) {
        QPointer<BMSpotsTableController> self(this);
        // After the swipe's own handling has finished.
        MainQueue::async(this, [self, spot] {
            if (self)
                self->m_session->deleteRecord(spot);
        });
        return;
    }
    showDeleteConfirmation(spot);
}

void BMSpotsTableController::showDeleteConfirmation(const WifiTestResult::Ptr &spot)
{
    const QStringList options{
        spot->label(),
        canBeClearedAttributedStringWithMessageString(BMI18NManager::stringForCode(QStringLiteral("fairzones_delete_record_confirm_always"))),
        BMI18NManager::stringForCode(QStringLiteral("cancel")),
        BMI18NManager::stringForCode(QStringLiteral("fairzones_delete_confirm")),
    };
    enum { kDelete = 3 };
    FZConfirmSpotModificationPopup *popup =
        FZConfirmSpotModificationPopup::popupWithOptions(options, FZOptionsPopup::Horizontal, Qt::RichText);
    QPointer<BMSpotsTableController> self(this);
    QPointer<FZConfirmSpotModificationPopup> guard(popup);
    popup->setOptionChosenBlock([self, guard, spot](int index) {
        if (!self)
            return;
        if (index != kDelete) {
            self->endTableEditing();
            return;
        }
        self->m_session->deleteRecord(spot);
        if (guard && guard->isAlwaysSwitchOn())
            BMSDKUISettings::sharedInstance().setAlwaysDeleteRecording(true);
    });
    // Escape or a click beside the card keeps the spot, as cancel does.
    connect(popup, &FZOptionsPopup::dismissed, this, [self] {
        if (self)
            self->endTableEditing();
    });
    m_editPopup = popup;
    popup->show();
}

void BMSpotsTableController::dismissEditPopup()
{
    if (FZConfirmSpotModificationPopup *popup = m_editPopup.data()) {
        m_editPopup.clear();
        // Dismissed by the screen, not the user: its dismissal handlers
        // (which end the table's editing) must not run now.
        disconnect(popup, &FZOptionsPopup::dismissed, this, nullptr);
        popup->dismiss();
        m_session->setWifiRecordBeingEdited(nullptr);
    }
}

void BMSpotsTableController::log(int level, const QString &message) const
{
    // The rows' reports are the test screen's, as far as the log goes.
    BMLogger::sharedInstance().log(QStringLiteral("BMWifiScanVC"), level, message);
}
