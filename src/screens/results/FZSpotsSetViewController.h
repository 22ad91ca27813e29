#pragma once

#include "model/BMWifiScanVCEditSpotsSetSetter.h"
#include "model/FZHistoricalResultSpotsSet.h"
#include "ui/BMSDKUIBaseViewController.h"

#include <QPointer>

// One saved set as a grid: each spot's name and date, and its speed with the
// network it was measured on; sortable, and able to hand the set back to the
// test screen to go on recording.
class FZSpotsSetViewController : public BMSDKUIBaseViewController
{
    Q_OBJECT
    // The test screen (a BMWifiScanVCEditSpotsSetSetter), held weakly.
    Q_PROPERTY(QObject *editSpotsSetSetter READ editSpotsSetSetterObject WRITE setEditSpotsSetSetterObject)

public:
    explicit FZSpotsSetViewController(QWidget *parent = nullptr);

    FZHistoricalResultSpotsSet::Ptr spotsSet() const { return m_spotsSet; }
    void setSpotsSet(const FZHistoricalResultSpotsSet::Ptr &spotsSet) { m_spotsSet = spotsSet; }

    // Null when none was given or it is gone.
    BMWifiScanVCEditSpotsSetSetter *editSpotsSetSetter() const;
    QObject *editSpotsSetSetterObject() const { return m_editSpotsSetSetter.data(); }
    void setEditSpotsSetSetterObject(QObject *setter) { m_editSpotsSetSetter = setter; }

private:
    FZHistoricalResultSpotsSet::Ptr m_spotsSet;
    QPointer<QObject> m_editSpotsSetSetter;
};
