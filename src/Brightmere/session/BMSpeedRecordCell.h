#pragma once

#include <Brightmere/core/WifiTestResult.h>
#include <Brightmere/ui/BMHeldKeyRelease.h>
#include <Brightmere/ui/BMTableViewCell.h>

#include <QColor>
#include <QPoint>
#include <QPointer>

class BMSpeedRecordDelegate;
namespace Brightmere {
class Clock;
}
class QCompleter;
class QLabel;
class QLineEdit;
class QStringListModel;

// One spot in the test screen's list: its name (editable in place, with
// completion from the remembered names), its speed in Mbps and, for an
// averaged spot, over how many seconds it was averaged. Holding the row's
// re-record control (the speed area, right of the name) asks the screen to
// measure the spot anew; the row only turns the touches into start / finish
// / cancel calls, one hold at a time, and starts none while its table
// scrolls. Every hold step is logged (module "BMSpeedRecordCell", level 2).
//
// In a table that delays content touches, a press becomes a hold only once
// it has stayed within the drag distance for the table's delay (on the
// backend's clock); a press that moves further first is the table's scroll
// or swipe and starts nothing, and a click released before the delay is a
// touch-down and touch-up at once, as a quick tap is.
class BMSpeedRecordCell : public BMTableViewCell
{
    Q_OBJECT

public:
    explicit BMSpeedRecordCell(QWidget *parent = nullptr);

    // The design's 38 points, taller with larger text.
    static double height();

    // Shows the spot; everything shown before is replaced, as rows are reused.
    void setupWithRecord(const WifiTestResult::Ptr &record, bool isEven);
    WifiTestResult::Ptr record() const { return m_record; }

    BMSpeedRecordDelegate *delegate() const;
    void setDelegate(BMSpeedRecordDelegate *delegate);

    QColor recordingColor() const { return m_recordingColor; }
    void setRecordingColor(const QColor &color) { m_recordingColor = color; }
    QColor defaultTextColor() const { return m_defaultTextColor; }

    // The name field and its completer; the screen fills the completer's
    // model (a QStringListModel) with the remembered spot names.
    QLineEdit *lblArea() const { return m_lblArea; }
    QCompleter *completer() const { return m_completer; }
    QLabel *lblSpeed() const { return m_lblSpeed; }
    QLabel *lblUnit() const { return m_lblUnit; }
    QLabel *lblAverage() const { return m_lblAverage; }
    QWidget *viewTop() const { return m_viewTop; }
    QWidget *viewBg() const { return m_viewBg; }
    QWidget *reRecordView() const { return m_reRecordView; }

    // 0: no hold in progress; 1: a hold has started.
    int gestureStatus() const { return m_gestureStatus; }

    void setEditing(bool editing, bool animated) override;

    // The re-record control's touches: a press is a touch-down, a release
    // inside it a touch-up inside, and a release outside, a move out of it,
    // the table taking the drag over or the control going away a cancel.
    void reRecordViewOnTouchDown();
    void reRecordViewOnTouchUpInside();
    void reRecordViewOnCancel();

    // The name field's editing, as the field reports it to the row; Return
    // ends it.
    void textFieldDidBeginEditing();
    void textFieldDidEndEditing();
    bool textFieldShouldReturn();

protected:
    void resizeEvent(QResizeEvent *event) override;
    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    void awakeFromNib();
    void pressReRecordView();
    void startDelayedPress();
    void dropPendingPress();
    void layoutParts();
    // The row's and its delete control's names, from the name as shown.
    void nameForReaders();
    bool handleReRecordKey(QEvent *event);
    void finishKeyRelease();
    bool handleReRecordEvent(QEvent *event);
    // Ends a hold in progress with the delegate call given; nothing without one.
    void endHold(const QString &message, void (BMSpeedRecordDelegate::*tell)(BMSpeedRecordCell *));
    void log(const QString &message) const;

    QPointer<QObject> m_delegateObject;
    BMSpeedRecordDelegate *m_delegate = nullptr;
    WifiTestResult::Ptr m_record;
    bool m_isEven = false;
    QColor m_recordingColor;
    QColor m_defaultTextColor;
    QLineEdit *m_lblArea = nullptr;
    bool m_keyHold = false;
    BMHeldKeyRelease m_heldKeyRelease{[this] { finishKeyRelease(); }};
    QCompleter *m_completer = nullptr;
    QLabel *m_lblSpeed = nullptr;
    QLabel *m_lblUnit = nullptr;
    QLabel *m_lblAverage = nullptr;
    QWidget *m_viewTop = nullptr;
    QWidget *m_viewBg = nullptr;
    QWidget *m_reRecordView = nullptr;
    int m_gestureStatus = 0;
    // A press on the re-record control is being followed to its end.
    bool m_touchOnReRecordView = false;
    // Pressed, waiting for the table's delay to become a hold.
    int m_pendingPressTimer = 0;
    Brightmere::Clock *m_pendingPressClock = nullptr;
    bool m_editingName = false;
};
