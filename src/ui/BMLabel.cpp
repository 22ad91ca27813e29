#include "BMLabel.h"

#include "BrightmereView.h"

BMLabel::BMLabel(QWidget *parent)
    : QLabel(parent)
{
    baseInit();
}

BMLabel::BMLabel(const QString &text, QWidget *parent)
    : QLabel(text, parent)
{
    baseInit();
}

void BMLabel::baseInit()
{
    Brightmere::View::setupFont(this);
}
