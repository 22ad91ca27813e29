#include "FZSpotsSetViewController.h"

// First cut: the screen's hand-over; its grid comes next.

FZSpotsSetViewController::FZSpotsSetViewController(QWidget *parent)
    : BMSDKUIBaseViewController(parent)
{
}

BMWifiScanVCEditSpotsSetSetter *FZSpotsSetViewController::editSpotsSetSetter() const
{
    return dynamic_cast<BMWifiScanVCEditSpotsSetSetter *>(m_editSpotsSetSetter.data());
}
