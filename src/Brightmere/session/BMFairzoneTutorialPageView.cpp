#include "BMFairzoneTutorialPageView.h"

#include <Brightmere/ui/BrightmereColor.h>
#include <Brightmere/ui/BrightmereImage.h>
#include <Brightmere/ui/BrightmereView.h>

#include <QBoxLayout>
#include <QLabel>
#include <QStackedLayout>

using Brightmere::View::pixelsForPoints;

namespace {
constexpr int kTextStretch = 10000;
}

BMFairzoneTutorialPageView::BMFairzoneTutorialPageView(const QRect &frame, QWidget *parent)
    : QWidget(parent)
{
    setGeometry(frame);
    initialize();
}

void BMFairzoneTutorialPageView::initialize()
{
    // Two layers over the whole page: the picture, and the text drawn over
    // its lower part.
    auto *picture = new QWidget(this);
    auto *pictureColumn = new QVBoxLayout(picture);
    pictureColumn->setContentsMargins(0, pixelsForPoints(kImageTop), 0, 0);
    m_imgView = new QLabel(picture);
    m_imgView->setAlignment(Qt::AlignCenter);
    pictureColumn->addWidget(m_imgView, 0, Qt::AlignHCenter);
    pictureColumn->addStretch(1);

    auto *words = new QWidget(this);
    m_textArea = new QHBoxLayout(words);
    m_textArea->setSpacing(0);
    m_lblText = new QLabel(words);
    m_lblText->setTextFormat(Qt::PlainText);
    m_lblText->setFont(Brightmere::View::fontOfSize(kTextFontPoints));
    m_lblText->setWordWrap(true);
    m_lblText->setAlignment(Qt::AlignCenter);
    Brightmere::View::followContrast(m_lblText, [label = m_lblText] {
        QPalette palette = label->palette();
        palette.setColor(QPalette::WindowText,
                         Brightmere::Color::fixedColor(Brightmere::Color::named(QStringLiteral("medium_gray")),
                                                       Brightmere::Color::named(QStringLiteral("fz_chart_back"))));
        label->setPalette(palette);
    });
    // Drawn over the picture's base, so it must not cover it with a background.
    m_lblText->setAutoFillBackground(false);
    // The page's size is the scroll view's; no text may widen or heighten
    // it. On a wide page the sentence keeps a readable line length, centred.
    m_lblText->setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Ignored);
    m_lblText->setMaximumWidth(pixelsForPoints(kTextMaximumWidth));
    // Side stretches centre it once it is at its widest; up to then the
    // label's far larger stretch gives it all the width (an alignment would
    // shrink it to its size hint and wrap the text early).
    m_textArea->addStretch(1);
    m_textArea->addWidget(m_lblText, kTextStretch);
    m_textArea->addStretch(1);

    auto *layers = new QStackedLayout(this);
    layers->setStackingMode(QStackedLayout::StackAll);
    // The scroll view sets the page's frame; the picture follows it.
    layers->setSizeConstraint(QLayout::SetNoConstraint);
    layers->addWidget(picture);
    layers->addWidget(words);
    // The current layer is raised: the text over the picture.
    layers->setCurrentWidget(words);
    fitPicture();
}

void BMFairzoneTutorialPageView::configureWithImageName(const QString &imageName, const QString &text)
{
    m_image = Brightmere::Image::named(imageName);
    m_lblText->setText(text);
    fitPicture();
}

void BMFairzoneTutorialPageView::resizeEvent(QResizeEvent *event)
{
    QWidget::resizeEvent(event);
    fitPicture();
}

void BMFairzoneTutorialPageView::fitPicture()
{
    // The picture at its own proportions, no higher than the cap and no
    // wider than the page; drawn for the screen's pixel density so it stays
    // sharp.
    const int inset = pixelsForPoints(kTextInset);
    int cap = pixelsForPoints(kImageMaxHeight);
    // A text that needs more lines than the page leaves it under a whole
    // picture (larger text on a crowded page) takes its room from the
    // picture: the words matter more.
    const int textWidth = qMin(width() - 2 * inset, m_lblText->maximumWidth());
    if (!m_lblText->text().isEmpty() && textWidth > 0) {
        const auto room = [&](int picture) {
            return height() - qMax(0, pixelsForPoints(kImageTop) + picture - pixelsForPoints(kTextOverlap)) - inset;
        };
        QFont font = Brightmere::View::fontOfSize(kTextFontPoints);
        m_lblText->setFont(font);
        cap = qMax(0, cap - qMax(0, m_lblText->heightForWidth(textWidth) - room(cap)));
        // With the picture given up, the words give way too, down to their
        // size at 1x, rather than be cut.
        const int smallest = qRound(font.pixelSize() / Brightmere::View::textScale());
        while (cap == 0 && font.pixelSize() > smallest && m_lblText->heightForWidth(textWidth) > room(0)) {
            font.setPixelSize(font.pixelSize() - 1);
            m_lblText->setFont(font);
        }
    }
    QSize imageSize(0, 0);
    if (!m_image.isNull())
        imageSize = m_image.actualSize(QSize(qMax(0, width()), cap));
    m_imgView->setFixedSize(imageSize);
    m_imgView->setPixmap(m_image.isNull() || imageSize.isEmpty() ? QPixmap()
                                                                 : m_image.pixmap(imageSize, devicePixelRatioF()));
    // The text starts over the picture's base and keeps the inset from the
    // sides and the bottom.
    const int textTop = pixelsForPoints(kImageTop) + imageSize.height() - pixelsForPoints(kTextOverlap);
    m_textArea->setContentsMargins(inset, qMax(0, textTop), inset, inset);
}
