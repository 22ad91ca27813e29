#include "BMFairzoneTutorialPageView.h"

#include <QLabel>

// First cut: the two parts; their layout and look come next.

BMFairzoneTutorialPageView::BMFairzoneTutorialPageView(const QRect &frame, QWidget *parent)
    : QWidget(parent)
{
    setGeometry(frame);
    initialize();
}

void BMFairzoneTutorialPageView::initialize()
{
    m_imgView = new QLabel(this);
    m_lblText = new QLabel(this);
}

void BMFairzoneTutorialPageView::configureWithImageName(const QString &imageName, const QString &text)
{
    Q_UNUSED(imageName)
    m_lblText->setText(text);
}
