#include "FZCompareSpotsSetsViewController.h"

// First cut: the comparison it is given; its grid comes next.

FZCompareSpotsSetsViewController::FZCompareSpotsSetsViewController(QWidget *parent)
    : BMSDKUIBaseViewController(parent)
{
}
