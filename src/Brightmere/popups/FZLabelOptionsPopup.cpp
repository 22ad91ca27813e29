#include "FZLabelOptionsPopup.h"

#include <Brightmere/platform/foundation/NotificationCenter.h>
#include <Brightmere/ui/BMLabel.h>
#include <Brightmere/ui/BrightmereColor.h>
#include <Brightmere/ui/BrightmereView.h>

#include <QLabel>

using Brightmere::View::pixelsForPoints;

namespace {

// In points.
constexpr qreal kNoteFontPoints = 12;
constexpr int kSideMargin = 10;
constexpr int kVerticalMargin = 2;
constexpr int kMinimumRowHeight = 36;

} // namespace

FZLabelOptionsPopup::FZLabelOptionsPopup(QWidget *parent)
    : FZOptionsPopup(parent)
{
}

FZLabelOptionsPopup::~FZLabelOptionsPopup()
{
    // Nothing may reach a popup that is gone.
    Brightmere::NotificationCenter::defaultCenter().removeObserver(this);
}

FZLabelOptionsPopup *FZLabelOptionsPopup::popupWithOptions(const QStringList &options, int orientation)
{
    return build<FZLabelOptionsPopup>(options, orientation);
}

QWidget *FZLabelOptionsPopup::viewOnTopOfOptions(QWidget *) const
{
    return m_viewOnTopOfOptions.data();
}

QWidget *FZLabelOptionsPopup::addViewWithOption(const QString &option, int index, int count, QWidget *parentView,
                                                QWidget *previousView, QWidget *previousOptionView)
{
    if (index != 1)
        return FZOptionsPopup::addViewWithOption(option, index, count, parentView, previousView, previousOptionView);

    auto *note = new BMLabel(option, parentView);
    note->setObjectName(QStringLiteral("labelNote"));
    note->setFont(Brightmere::View::fontOfSize(kNoteFontPoints));
    note->setAlignment(Qt::AlignCenter);
    // Two lines at the most, a longer text ending in an ellipsis.
    note->setMaximumLines(2);
    const int side = pixelsForPoints(kSideMargin);
    const int vertical = pixelsForPoints(kVerticalMargin);
    note->setContentsMargins(side, vertical, side, vertical);
    note->setMinimumHeight(pixelsForPoints(kMinimumRowHeight));
    // The card's own colour: the note reads as part of the card.
    note->setAutoFillBackground(false);
    QPalette palette = note->palette();
    palette.setColor(QPalette::Window, Brightmere::Color::system(2));
    palette.setColor(QPalette::WindowText, Brightmere::Color::fixedColor(Brightmere::Color::colorFromHex(QStringLiteral("999999")),
                                                                         Brightmere::Color::system(2)));
    note->setPalette(palette);
    m_viewOnTopOfOptions = note;
    stackRow(note);
    return note;
}
