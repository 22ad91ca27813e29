#include "FZTextViewOptionsPopup.h"

#include <Brightmere/core/BMLogger.h>
#include <Brightmere/platform/foundation/NotificationCenter.h>
#include <Brightmere/platform/views/FocusRing.h>
#include <Brightmere/platform/views/KeyboardNotifications.h>
#include <Brightmere/ui/BMLabel.h>
#include <Brightmere/ui/BrightmereColor.h>
#include <Brightmere/ui/BrightmereView.h>

#include <QBoxLayout>
#include <QLabel>
#include <QLineEdit>

using Brightmere::KeyboardNotifications;
using Brightmere::NotificationCenter;
using Brightmere::View::pixelsForPoints;

namespace {

// In points.
constexpr qreal kNoteFontPoints = 12;
constexpr int kSideMargin = 10;
constexpr int kVerticalMargin = 2;
constexpr int kFieldHeight = 30;

} // namespace

FZTextViewOptionsPopup::FZTextViewOptionsPopup(QWidget *parent)
    : FZOptionsPopup(parent)
{
}

FZTextViewOptionsPopup::~FZTextViewOptionsPopup()
{
    NotificationCenter::defaultCenter().removeObserver(this);
}

FZTextViewOptionsPopup *FZTextViewOptionsPopup::popupWithOptions(const QStringList &options, int orientation)
{
    return build<FZTextViewOptionsPopup>(options, orientation);
}

FZTextViewOptionsPopup *FZTextViewOptionsPopup::popupWithOptions(
    const QStringList &options, const TextFieldConfigurationHandler &textViewConfigurationHandler, int orientation)
{
    FZTextViewOptionsPopup *popup = build<FZTextViewOptionsPopup>(options, orientation);
    if (textViewConfigurationHandler && popup->m_textField)
        textViewConfigurationHandler(popup->m_textField);
    return popup;
}

QWidget *FZTextViewOptionsPopup::viewOnTopOfOptions(QWidget *) const
{
    return m_viewOnTopOfOptions.data();
}

QWidget *FZTextViewOptionsPopup::addViewWithOption(const QString &option, int index, int count, QWidget *parentView,
                                                   QWidget *previousView, QWidget *previousOptionView)
{
    if (index != 1)
        return FZOptionsPopup::addViewWithOption(option, index, count, parentView, previousView, previousOptionView);

    auto *row = new QWidget(parentView);
    row->setObjectName(QStringLiteral("textViewRow"));
    auto *layout = new QVBoxLayout(row);
    const int side = pixelsForPoints(kSideMargin);
    const int vertical = pixelsForPoints(kVerticalMargin);
    layout->setContentsMargins(side, vertical, side, vertical);
    layout->setSpacing(vertical);

    auto *note = new BMLabel(option, row);
    note->setObjectName(QStringLiteral("textViewNote"));
    note->setFont(Brightmere::View::fontOfSize(kNoteFontPoints));
    note->setAlignment(Qt::AlignCenter);
    // Two lines at the most (more with larger text), a longer text ending
    // in an ellipsis.
    note->setMaximumLines(Brightmere::View::textScale() > 1.0 ? 4 : 2);
    m_note = note;
    layout->addWidget(m_note);

    m_textField = new QLineEdit(row);
    m_textField->setObjectName(QStringLiteral("textField"));
    m_textField->setFixedHeight(Brightmere::View::pixelsForTextPoints(kFieldHeight));
    m_textField->setStyleSheet(QStringLiteral("QLineEdit { border: 1px solid %1; border-radius: 3px;"
                                              " padding: 0px 6px; background: %2; }")
                                   .arg(Brightmere::Color::system(3).name(QColor::HexArgb),
                                        Brightmere::Color::system(2).name(QColor::HexArgb))
                               + Brightmere::FocusRing::styleSheetRule(
                                   QStringLiteral("QLineEdit"), Brightmere::Color::named(QStringLiteral("medium_blue"))));
    layout->addWidget(m_textField);

    m_viewOnTopOfOptions = row;
    stackRow(row);

    NotificationCenter::defaultCenter().addObserver(
        this, QString::fromLatin1(KeyboardNotifications::kKeyboardDidShowNotification),
        [this](const Brightmere::Notification &notification) { keyboardDidShow(notification); });
    return row;
}

void FZTextViewOptionsPopup::keyboardDidShow(const Brightmere::Notification &notification)
{
    if (!isVisible())
        return;
    const QRect keyboard = KeyboardNotifications::endFrame(notification);
    const QRectF windowFrame = window()->rect();
    QRectF visible = windowFrame;
    visible.setHeight(windowFrame.height() - keyboard.height());
    // Measured from where the card sits unshifted (the popup's middle, as
    // the card is centred in it), so a second report (the keyboard growing
    // a suggestions bar) moves the card again rather than undoing the first
    // move, and pixel rounding of the card's frame does not creep in.
    const QRectF unshifted = QRectF(rect()).translated(mapTo(window(), QPoint(0, 0)));
    setCenterVerticalConstraint(visible.center().y() - unshifted.center().y(), kKeyboardAnimationSeconds);
}
