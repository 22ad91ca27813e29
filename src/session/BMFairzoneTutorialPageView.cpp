#include "BMFairzoneTutorialPageView.h"

#include "resources/FrameworkBundle.h"
#include "ui/BrightmereColor.h"
#include "ui/BrightmereView.h"

#include <QLabel>

BMFairzoneTutorialPageView::BMFairzoneTutorialPageView(const QRect &frame, QWidget *parent)
    : QWidget(parent)
{
    setGeometry(frame);
    initialize();
}

void BMFairzoneTutorialPageView::initialize()
{
    m_imgView = new QLabel(this);
    m_imgView->setAlignment(Qt::AlignCenter);

    m_lblText = new QLabel(this);
    m_lblText->setTextFormat(Qt::PlainText);
    QFont font;
    font.setPixelSize(kTextFontPixels);
    m_lblText->setFont(Brightmere::View::kitFont(font));
    m_lblText->setWordWrap(true);
    m_lblText->setAlignment(Qt::AlignCenter);
    QPalette palette = m_lblText->palette();
    palette.setColor(QPalette::WindowText, Brightmere::Color::named(QStringLiteral("medium_gray")));
    m_lblText->setPalette(palette);
    // Drawn over the picture's base, so it must not cover it with a background.
    m_lblText->setAutoFillBackground(false);
    m_lblText->raise();
    layoutParts();
}

void BMFairzoneTutorialPageView::configureWithImageName(const QString &imageName, const QString &text)
{
    m_image = Brightmere::FrameworkBundle::imageNamed(imageName);
    m_lblText->setText(text);
    layoutParts();
}

void BMFairzoneTutorialPageView::resizeEvent(QResizeEvent *event)
{
    QWidget::resizeEvent(event);
    layoutParts();
}

void BMFairzoneTutorialPageView::layoutParts()
{
    // The picture at its own proportions, no higher than the cap and no
    // wider than the page; drawn for the screen's pixel density so it stays
    // sharp.
    QSize imageSize(0, 0);
    if (!m_image.isNull())
        imageSize = m_image.actualSize(QSize(qMax(0, width()), kImageMaxHeight));
    m_imgView->setGeometry((width() - imageSize.width()) / 2, kImageTop, imageSize.width(), imageSize.height());
    m_imgView->setPixmap(m_image.isNull() || imageSize.isEmpty() ? QPixmap()
                                                                 : m_image.pixmap(imageSize, devicePixelRatioF()));

    const int textTop = kImageTop + imageSize.height() - kTextOverlap;
    m_lblText->setGeometry(kTextInset, textTop, qMax(0, width() - 2 * kTextInset),
                           qMax(0, height() - kTextInset - textTop));
}
