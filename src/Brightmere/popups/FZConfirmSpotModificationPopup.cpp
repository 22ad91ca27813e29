#include "FZConfirmSpotModificationPopup.h"

#include <QTextDocumentFragment>

#include <Brightmere/platform/views/Switch.h>
#include <Brightmere/ui/BrightmereColor.h>
#include <Brightmere/ui/BrightmereView.h>

#include <QBoxLayout>
#include <QLabel>

using Brightmere::View::pixelsForPoints;

namespace {

// In points.
constexpr qreal kNoteFontPoints = 13;
constexpr int kSideMargin = 10;
constexpr int kVerticalMargin = 2;
constexpr int kSpacing = 8;
// Air between the note and the title above and the buttons below.
constexpr int kRowPadding = 4;

} // namespace

FZConfirmSpotModificationPopup::FZConfirmSpotModificationPopup(QWidget *parent)
    : FZOptionsPopup(parent)
{
}

FZConfirmSpotModificationPopup *FZConfirmSpotModificationPopup::popupWithOptions(const QStringList &options,
                                                                                 int orientation)
{
    return popupWithOptions(options, orientation, Qt::PlainText);
}

FZConfirmSpotModificationPopup *FZConfirmSpotModificationPopup::popupWithOptions(const QStringList &options,
                                                                                 int orientation,
                                                                                 Qt::TextFormat noteFormat)
{
    return build<FZConfirmSpotModificationPopup>(
        options, orientation,
        [noteFormat](FZConfirmSpotModificationPopup *popup) { popup->m_noteFormat = noteFormat; });
}

bool FZConfirmSpotModificationPopup::isAlwaysSwitchOn() const
{
    return m_optionSwitch && m_optionSwitch->isOn();
}

QWidget *FZConfirmSpotModificationPopup::viewOnTopOfOptions(QWidget *) const
{
    return m_viewOnTopOfOptions.data();
}

QWidget *FZConfirmSpotModificationPopup::addViewWithOption(const QString &option, int index, int count,
                                                           QWidget *parentView, QWidget *previousView,
                                                           QWidget *previousOptionView)
{
    if (index != 1)
        return FZOptionsPopup::addViewWithOption(option, index, count, parentView, previousView, previousOptionView);

    auto *row = new QWidget(parentView);
    row->setObjectName(QStringLiteral("confirmRow"));
    // The card's colour shows through: the row reads as part of the card.
    auto *layout = new QHBoxLayout(row);
    const int side = pixelsForPoints(kSideMargin);
    const int vertical = pixelsForPoints(kVerticalMargin + kRowPadding);
    layout->setContentsMargins(side, vertical, side, vertical);
    layout->setSpacing(pixelsForPoints(kSpacing));

    m_note = new QLabel(row);
    m_note->setObjectName(QStringLiteral("confirmNote"));
    m_note->setFont(Brightmere::View::fontOfSize(kNoteFontPoints));
    m_note->setWordWrap(true);
    m_note->setTextFormat(m_noteFormat == Qt::RichText ? Qt::RichText : Qt::PlainText);
    m_note->setText(option);
    QPalette palette = m_note->palette();
    // System colour 1, not 3: colour 3 on the white card cannot be read.
    // Lines with a colour of their own keep it.
    palette.setColor(QPalette::WindowText,
                     Brightmere::Color::fixedColor(Brightmere::Color::system(1), Brightmere::Color::system(2)));
    m_note->setPalette(palette);
    layout->addWidget(m_note, 1, Qt::AlignVCenter);

    m_optionSwitch = new Brightmere::Switch(row);
    m_optionSwitch->setObjectName(QStringLiteral("optionSwitch"));
    m_optionSwitch->setAccessibleName(
        m_noteFormat == Qt::RichText ? QTextDocumentFragment::fromHtml(option).toPlainText() : option);
    layout->addWidget(m_optionSwitch, 0, Qt::AlignVCenter);

    m_viewOnTopOfOptions = row;
    stackRow(row);
    return row;
}
