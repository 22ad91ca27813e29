#include "BMSpeedRecordCell.h"

#include "BMSpeedRecordDelegate.h"

#include <QCompleter>
#include <QLabel>
#include <QLineEdit>
#include <QStringListModel>

// First cut: the row's parts and its delegate; look and gestures come next.

BMSpeedRecordCell::BMSpeedRecordCell(QWidget *parent)
    : BMTableViewCell(parent)
    , m_lblArea(new QLineEdit(this))
    , m_completer(new QCompleter(new QStringListModel(this), this))
    , m_lblSpeed(new QLabel(this))
    , m_lblUnit(new QLabel(this))
    , m_lblAverage(new QLabel(this))
    , m_viewTop(new QWidget(this))
    , m_viewBg(new QWidget(this))
    , m_reRecordView(new QWidget(this))
{
    m_lblArea->setCompleter(m_completer);
}

BMSpeedRecordDelegate *BMSpeedRecordCell::delegate() const
{
    return m_delegateObject ? m_delegate : nullptr;
}

void BMSpeedRecordCell::setDelegate(BMSpeedRecordDelegate *delegate)
{
    m_delegate = delegate;
    m_delegateObject = dynamic_cast<QObject *>(delegate);
}

void BMSpeedRecordCell::setupWithRecord(const WifiTestResult::Ptr &record, bool isEven)
{
    Q_UNUSED(isEven)
    m_record = record;
    m_lblArea->setText(record ? record->label() : QString());
}

void BMSpeedRecordCell::setEditing(bool editing, bool animated)
{
    BMTableViewCell::setEditing(editing, animated);
    if (editing && delegate())
        delegate()->didEnterInEditMode(this);
}

void BMSpeedRecordCell::reRecordViewOnTouchDown()
{
    if (m_gestureStatus == 0 && delegate()) {
        m_gestureStatus = 1;
        delegate()->didStartTapReRecordView(this);
    }
}

void BMSpeedRecordCell::reRecordViewOnTouchUpInside()
{
    if (m_gestureStatus == 1 && delegate()) {
        delegate()->didFinishTapReRecordView(this);
        m_gestureStatus = 0;
    }
}

void BMSpeedRecordCell::reRecordViewOnCancel()
{
    if (m_gestureStatus == 1 && delegate()) {
        delegate()->didCancelTapReRecordView(this);
        m_gestureStatus = 0;
    }
}
