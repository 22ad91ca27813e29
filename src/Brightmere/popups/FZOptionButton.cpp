#include "FZOptionButton.h"

#include <Brightmere/ui/BrightmereView.h>

#include <QStyleOptionButton>
#include <QStylePainter>

namespace {

int textWidth(const QFont &font, const QString &text)
{
    // "&&" is how a literal "&" is written in a button's text.
    return QFontMetrics(font).size(Qt::TextShowMnemonic, text).width();
}

} // namespace

FZOptionButton::FZOptionButton(const QString &text, qreal points, QWidget *parent)
    : QPushButton(text, parent)
    , m_points(points)
{
    setFont(Brightmere::View::fontOfSize(points));
    // The card decides the width; a long text must not widen the layout.
    setSizePolicy(QSizePolicy::Ignored, QSizePolicy::Fixed);
}

int FZOptionButton::textRoom(int buttonWidth) const
{
    QStyleOptionButton option;
    initStyleOption(&option);
    option.rect = QRect(0, 0, buttonWidth, qMax(1, height()));
    return style()->subElementRect(QStyle::SE_PushButtonContents, &option, this).width();
}

int FZOptionButton::widthForWholeTextAtSmallestSize() const
{
    constexpr int kProbe = 1000;
    const int padding = kProbe - textRoom(kProbe);
    QFont smallest = font();
    smallest.setPixelSize(Brightmere::View::kMinimumTextPixels);
    // One pixel more: text measured to the pixel is sometimes cut by one.
    return textWidth(smallest, text()) + padding + 1;
}

void FZOptionButton::fitFont()
{
    const int room = textRoom(width());
    QFont font = Brightmere::View::fontOfSize(m_points, QFont::Weight(this->font().weight()));
    while (font.pixelSize() > Brightmere::View::kMinimumTextPixels && textWidth(font, text()) > room)
        font.setPixelSize(font.pixelSize() - 1);
    if (font != this->font())
        setFont(font);
    // Cut short, the whole text is still there to read on hover.
    const bool cut = textWidth(font, text()) > room;
    setToolTip(cut ? QString(text()).replace(QStringLiteral("&&"), QStringLiteral("&")) : QString());
}

void FZOptionButton::resizeEvent(QResizeEvent *event)
{
    QPushButton::resizeEvent(event);
    fitFont();
}

void FZOptionButton::paintEvent(QPaintEvent *)
{
    QStylePainter painter(this);
    QStyleOptionButton option;
    initStyleOption(&option);
    const int room = style()->subElementRect(QStyle::SE_PushButtonContents, &option, this).width();
    option.text = fontMetrics().elidedText(text(), Qt::ElideRight, room, Qt::TextShowMnemonic);
    painter.drawControl(QStyle::CE_PushButton, option);
}
