#include "FZOptionsPopup.h"

#include "FZOptionButton.h"

#include <Brightmere/core/BMLogger.h>
#include <Brightmere/platform/views/FocusRing.h>
#include <Brightmere/platform/views/KeyWindow.h>
#include <Brightmere/ui/BMLabel.h>
#include <Brightmere/ui/BrightmereColor.h>
#include <Brightmere/ui/BrightmereView.h>

#include <QApplication>
#include <QBoxLayout>
#include <QEvent>
#include <QKeyEvent>
#include <QMouseEvent>
#include <QPainter>
#include <QPainterPath>
#include <QPushButton>
#include <QVariantAnimation>

#include <algorithm>
#include <cmath>
#include <exception>
#include <utility>

using Brightmere::View::pixelsForPoints;

namespace {

const QString kModule = QStringLiteral("FZOptionsPopup");

// In points.
constexpr qreal kButtonFontPoints = 14;
constexpr int kButtonInset = 5;
constexpr qreal kTitleFontPoints = 16;
constexpr int kTitleSideMargin = 10;
constexpr int kSeparatorThickness = 1;

// Rounds those of a view's corners that lie on the card's corners, so the
// card keeps its rounded outline over the dimmed layer (the card clips).
QString cornerRadii(bool topLeft, bool topRight, bool bottomLeft, bool bottomRight)
{
    const auto radius = [](bool on) { return on ? FZOptionsPopup::kCornerRadius : 0; };
    return QStringLiteral("border-top-left-radius: %1px; border-top-right-radius: %2px;"
                          " border-bottom-left-radius: %3px; border-bottom-right-radius: %4px;")
        .arg(radius(topLeft))
        .arg(radius(topRight))
        .arg(radius(bottomLeft))
        .arg(radius(bottomRight));
}

QColor white()
{
    return Brightmere::Color::colorWithR(255, 255, 255);
}

QString titleStyleSheet(const QString &radii)
{
    return QStringLiteral("QLabel { background: %1; color: %2; %3 }")
        .arg(Brightmere::Color::fixedColor(Brightmere::Color::named(QStringLiteral("medium_blue")), white())
                 .name(QColor::HexArgb),
             white().name(QColor::HexArgb), radii);
}

QString buttonStyleSheet(const QString &radii)
{
    return QStringLiteral("QPushButton { background: %1; color: %2; border: none; padding: %3px; %4 }"
                          "QPushButton:pressed { background: %5; }")
               .arg(Brightmere::Color::system(2).name(QColor::HexArgb),
                    Brightmere::Color::fixedColor(Brightmere::Color::colorFromHex(QStringLiteral("999999")),
                                                  Brightmere::Color::system(2))
                        .name(QColor::HexArgb))
               .arg(pixelsForPoints(kButtonInset))
               .arg(radii, Brightmere::Color::system(4).name(QColor::HexArgb))
           + Brightmere::FocusRing::styleSheetRule(QStringLiteral("QPushButton"),
                                                   Brightmere::Color::named(QStringLiteral("medium_blue")));
}

} // namespace

FZOptionsPopup::FZOptionsPopup(QWidget *parent)
    : QWidget(parent)
{
    setObjectName(QStringLiteral("optionsPopup"));
    setAttribute(Qt::WA_NoMousePropagation);
    // Holds the keyboard while shown; Tab then reaches the buttons.
    setFocusPolicy(Qt::StrongFocus);
    QWidget::hide();
    m_card = new QWidget(this);
    m_card->setObjectName(QStringLiteral("popupContainerView"));
    m_column = new QVBoxLayout(m_card);
    m_column->setContentsMargins(0, 0, 0, 0);
    m_column->setSpacing(0);

    // Stretches on all four sides centre the card; placeCard() sets its
    // width and the margins that move it up or down.
    auto *centre = new QHBoxLayout;
    centre->setSpacing(0);
    centre->addStretch(1);
    centre->addWidget(m_card);
    centre->addStretch(1);
    m_placement = new QVBoxLayout(this);
    m_placement->setSpacing(0);
    // The popup takes the window's size, whatever the card would like.
    m_placement->setSizeConstraint(QLayout::SetNoConstraint);
    m_placement->addStretch(1);
    m_placement->addLayout(centre);
    m_placement->addStretch(1);

    m_slide = new QVariantAnimation(this);
    connect(m_slide, &QVariantAnimation::valueChanged, this, [this](const QVariant &value) {
        m_shownOffset = value.toReal();
        placeCard();
    });
}

FZOptionsPopup::~FZOptionsPopup()
{
    if (m_window)
        m_window->removeEventFilter(this);
}

FZOptionsPopup *FZOptionsPopup::popupWithOptions(const QStringList &options, int orientation)
{
    return build<FZOptionsPopup>(options, orientation);
}

void FZOptionsPopup::initWithPopupOptions(const QStringList &options, int orientation)
{
    addSubviewsWithOptions(options, m_card, orientation);
    roundOuterCorners();
    placeCard();
}

void FZOptionsPopup::setCenterVerticalConstraint(qreal offset, double animationSeconds)
{
    m_centerVerticalConstraint = offset;
    m_slide->stop();
    if (animationSeconds > 0.0) {
        m_slide->setDuration(int(std::lround(animationSeconds * 1000.0)));
        m_slide->setStartValue(m_shownOffset);
        m_slide->setEndValue(offset);
        m_slide->start();
        return;
    }
    m_shownOffset = offset;
    placeCard();
}

FZOptionsPopup::MakeConstraintsBlock FZOptionsPopup::optionsMakeConstraintsBlockWithOrientation(int orientation)
{
    if (orientation == Horizontal) {
        return [this](QWidget *view, QWidget *, QWidget *) {
            // One row under the title (or the extra row), as high as a button.
            if (isFirstOptionView(view) || !m_optionRow) {
                m_optionRow = new QHBoxLayout;
                m_optionRow->setSpacing(0);
                QWidget *top = viewOnTopOfOptions(m_card);
                m_column->insertLayout(top ? m_column->indexOf(top) + 1 : 0, m_optionRow);
            }
            if (m_separators.contains(view))
                view->setFixedWidth(pixelsForPoints(kSeparatorThickness));
            m_optionRow->addWidget(view);
            view->show();
        };
    }
    return [this](QWidget *view, QWidget *, QWidget *) {
        if (m_separators.contains(view))
            view->setFixedHeight(pixelsForPoints(kSeparatorThickness));
        stackRow(view);
    };
}

bool FZOptionsPopup::isFirstOptionView(QWidget *view) const
{
    const QList<QWidget *> children = m_card->findChildren<QWidget *>(Qt::FindDirectChildrenOnly);
    return children.size() == firstOptionViewIndex() + 1 && children.last() == view;
}

QWidget *FZOptionsPopup::viewOnTopOfOptions(QWidget *parentView) const
{
    const QList<QWidget *> children = parentView->findChildren<QWidget *>(Qt::FindDirectChildrenOnly);
    return children.isEmpty() ? nullptr : children.first();
}

void FZOptionsPopup::addSubviewsWithOptions(const QStringList &options, QWidget *parentView, int orientation)
{
    if (orientation != Vertical && orientation != Horizontal) {
        BMLogger::sharedInstance().logFromModule(kModule, 2, "orientation %@ is neither 0 nor 1; the buttons stack",
                                                 orientation);
        orientation = Vertical;
    }
    m_orientation = orientation;
    m_makeConstraints = optionsMakeConstraintsBlockWithOrientation(orientation);

    const int count = int(options.size());
    QWidget *previousView = nullptr;
    QWidget *previousOptionView = nullptr;
    for (int index = 0; index < count; ++index) {
        QWidget *view = addViewWithOption(options.at(index), index, count, parentView, previousView,
                                          previousOptionView);
        previousView = view;
        if (index >= firstOptionViewIndex())
            previousOptionView = view;
        // A separator between buttons, none after the last.
        if (index >= firstOptionViewIndex() && index < count - 1) {
            QWidget *separator = makeSeparator(parentView);
            m_makeConstraints(separator, previousView, previousOptionView);
            previousOptionView = separator;
        }
    }
}

QWidget *FZOptionsPopup::addViewWithOption(const QString &option, int index, int count, QWidget *parentView,
                                           QWidget *previousView, QWidget *previousOptionView)
{
    Q_UNUSED(count)
    if (index == 0) {
        auto *title = new BMLabel(option, parentView);
        title->setObjectName(QStringLiteral("popupTitle"));
        title->setFont(Brightmere::View::fontOfSize(kTitleFontPoints, QFont::DemiBold));
        title->setAlignment(Qt::AlignCenter);
        // A long (translated) title takes more lines, never more width.
        title->setWordWrap(true);
        const int side = pixelsForPoints(kTitleSideMargin);
        const int extra = pixelsForPoints(kTitleExtraHeight);
        title->setContentsMargins(side, extra / 2, side, extra - extra / 2);
        title->setProperty(kTagProperty, 0);
        title->setStyleSheet(titleStyleSheet(cornerRadii(true, true, false, false)));
        stackRow(title);
        return title;
    }

    auto *button = new FZOptionButton(Brightmere::View::literalButtonText(option), kButtonFontPoints, parentView);
    button->setObjectName(QStringLiteral("option%1").arg(index));
    button->setProperty(kTagProperty, index);
    button->setFlat(true);
    button->setAutoDefault(false);
    // The keyboard reaches it with Tab; a click does not move the focus.
    button->setFocusPolicy(Qt::TabFocus);
    button->setCursor(Qt::PointingHandCursor);
    button->setFixedHeight(pixelsForPoints(kOptionHeight));
    button->setStyleSheet(buttonStyleSheet(cornerRadii(false, false, false, false)));
    connect(button, &QPushButton::clicked, this, [this, button] { optionPressed(button); });
    m_buttons.append(button);
    button->show();
    m_makeConstraints(button, previousView, previousOptionView);
    return button;
}

QWidget *FZOptionsPopup::makeSeparator(QWidget *parentView)
{
    auto *separator = new QWidget(parentView);
    separator->setObjectName(QStringLiteral("optionSeparator"));
    Brightmere::View::setBackgroundColor(separator, Brightmere::Color::system(3));
    separator->show();
    m_separators.append(separator);
    return separator;
}

void FZOptionsPopup::stackRow(QWidget *view)
{
    m_column->addWidget(view);
    view->show();
}

void FZOptionsPopup::roundOuterCorners()
{
    // Which buttons touch the card's bottom corners: the last one of a
    // stack, the first and last of a row. Nothing to do without buttons.
    if (m_buttons.isEmpty())
        return;
    QLayoutItem *last = m_column->count() > 0 ? m_column->itemAt(m_column->count() - 1) : nullptr;
    const bool lastIsButton = m_orientation == Horizontal || (last && last->widget() == m_buttons.last());
    if (!lastIsButton)
        return;
    if (m_orientation == Horizontal) {
        const bool single = m_buttons.size() == 1;
        m_buttons.first()->setStyleSheet(buttonStyleSheet(cornerRadii(false, false, true, single)));
        if (!single)
            m_buttons.last()->setStyleSheet(buttonStyleSheet(cornerRadii(false, false, false, true)));
    } else {
        m_buttons.last()->setStyleSheet(buttonStyleSheet(cornerRadii(false, false, true, true)));
    }
}

int FZOptionsPopup::cardWidthForPopupWidth(int popupWidth) const
{
    // Wider only where a button's text would be cut even at the smallest
    // size; a horizontal row gives every button the widest one's share.
    int widest = 0;
    int buttons = 0;
    for (const QPointer<QPushButton> &button : m_buttons) {
        if (const auto *option = qobject_cast<const FZOptionButton *>(button.data())) {
            widest = std::max(widest, option->widthForWholeTextAtSmallestSize());
            ++buttons;
        }
    }
    const int needed = m_orientation == Horizontal
                           ? buttons * widest + (buttons - 1) * pixelsForPoints(kSeparatorThickness)
                           : widest;
    const int width = std::max(pixelsForPoints(kCardWidth), std::min(needed, pixelsForPoints(kCardMaximumWidth)));
    const int room = popupWidth - 2 * pixelsForPoints(kWindowMargin);
    return std::max(1, std::min(width, room));
}

void FZOptionsPopup::placeCard()
{
    const int margin = pixelsForPoints(kWindowMargin);
    // Moving the centre by the offset: twice the offset more margin on the
    // side it moves away from.
    const int shift = int(std::lround(2.0 * m_shownOffset));
    m_placement->setContentsMargins(margin, margin + std::max(0, shift), margin, margin + std::max(0, -shift));

    const int cardWidth = cardWidthForPopupWidth(width());
    m_card->setFixedWidth(cardWidth);
    if (m_optionRow) {
        // Every button of the row as wide as the others; the odd pixels
        // left over stay at the right, where the card has the buttons' colour.
        const QList<QPushButton *> buttons = optionButtons();
        const int separators = int(m_separators.size());
        if (!buttons.isEmpty()) {
            const int share = (cardWidth - separators * pixelsForPoints(kSeparatorThickness)) / int(buttons.size());
            for (QPushButton *button : buttons)
                button->setFixedWidth(std::max(0, share));
        }
    }
    // At once, so the card's frame is right when the popup is read or drawn.
    if (isVisible())
        m_placement->activate();
    update();
}

QList<QPushButton *> FZOptionsPopup::optionButtons() const
{
    QList<QPushButton *> buttons;
    for (const QPointer<QPushButton> &button : m_buttons) {
        if (button)
            buttons.append(button.data());
    }
    return buttons;
}

QList<QWidget *> FZOptionsPopup::separators() const
{
    QList<QWidget *> views;
    for (const QPointer<QWidget> &view : m_separators) {
        if (view)
            views.append(view.data());
    }
    return views;
}

int FZOptionsPopup::tagOf(const QObject *view)
{
    return view ? view->property(kTagProperty).toInt() : 0;
}

void FZOptionsPopup::show()
{
    QWidget *window = Brightmere::KeyWindow::keyWindow();
    if (!window) {
        BMLogger::sharedInstance().logFromModule(kModule, 3, "no key window to show the popup in; it is dropped");
        deleteLater();
        return;
    }
    m_window = window;
    m_focusReturn.remember(window);
    setParent(window);
    setGeometry(window->rect());
    window->installEventFilter(this);
    QWidget::show();
    raise();
    placeCard();
    setFocus(Qt::OtherFocusReason);
}

void FZOptionsPopup::dismiss()
{
    leaveScreen();
    Q_EMIT dismissed();
}

void FZOptionsPopup::optionPressed(QObject *sender)
{
    const int tag = tagOf(sender);
    if (tag == 0)
        return;
    leaveScreen();
    if (!m_optionChosenBlock)
        return;
    // The popup lives on until the event loop runs, so the block can still
    // read it (the confirmation's switch). A throwing block must not unwind
    // through the button's click.
    const OptionChosenBlock block = m_optionChosenBlock;
    try {
        block(tag);
    } catch (const std::exception &e) {
        BMLogger::sharedInstance().logFromModule(kModule, 3, "the chosen-option block threw (%@); dropped", e.what());
    } catch (...) {
        BMLogger::sharedInstance().logFromModule(kModule, 3, "the chosen-option block threw; dropped");
    }
}

void FZOptionsPopup::leaveScreen()
{
    if (m_window)
        m_window->removeEventFilter(this);
    m_window.clear();
    const bool hadFocus = isAncestorOf(QApplication::focusWidget()) || hasFocus();
    QWidget::hide();
    setParent(nullptr);
    // The control that opened it may have gone with the screen its option
    // left; the keyboard then goes on from a control still shown.
    if (hadFocus)
        m_focusReturn.restore();
    deleteLater();
}

QList<QWidget *> FZOptionsPopup::focusableViews() const
{
    QList<QWidget *> views;
    for (QWidget *child : m_card->findChildren<QWidget *>()) {
        if ((child->focusPolicy() & Qt::TabFocus) && child->isVisibleTo(this) && child->isEnabled())
            views.append(child);
    }
    // Reading order: top to bottom, left to right.
    std::stable_sort(views.begin(), views.end(), [this](QWidget *a, QWidget *b) {
        const QPoint pa = a->mapTo(m_card, QPoint(0, 0));
        const QPoint pb = b->mapTo(m_card, QPoint(0, 0));
        return pa.y() != pb.y() ? pa.y() < pb.y() : pa.x() < pb.x();
    });
    return views;
}

bool FZOptionsPopup::focusNextPrevChild(bool next)
{
    // Tab stays inside the popup.
    const QList<QWidget *> views = focusableViews();
    if (views.isEmpty())
        return true;
    const int count = int(views.size());
    const int current = int(views.indexOf(QApplication::focusWidget()));
    const int target = current < 0 ? (next ? 0 : count - 1) : (current + (next ? 1 : count - 1)) % count;
    views.at(target)->setFocus(next ? Qt::TabFocusReason : Qt::BacktabFocusReason);
    return true;
}

void FZOptionsPopup::keyPressEvent(QKeyEvent *event)
{
    switch (event->key()) {
    case Qt::Key_Escape:
        dismiss();
        break;
    case Qt::Key_Return:
    case Qt::Key_Enter: {
        QWidget *focus = QApplication::focusWidget();
        if (auto *button = qobject_cast<QPushButton *>(focus); button && m_buttons.contains(button)) {
            optionPressed(button);
            break;
        }
        const int confirming = confirmingOptionIndex();
        for (const QPointer<QPushButton> &button : std::as_const(m_buttons)) {
            if (confirming > 0 && button && tagOf(button) == confirming) {
                optionPressed(button);
                break;
            }
        }
        break;
    }
    default:
        break;
    }
    // Keys stop here: the screen under the popup does not get them.
    event->accept();
}

bool FZOptionsPopup::eventFilter(QObject *watched, QEvent *event)
{
    if (watched == m_window && event->type() == QEvent::Resize)
        setGeometry(m_window->rect());
    return QWidget::eventFilter(watched, event);
}

void FZOptionsPopup::paintEvent(QPaintEvent *)
{
    QPainter painter(this);
    painter.fillRect(rect(), Brightmere::Color::colorWithR(0, 0, 0, 0.5f));
    painter.setRenderHint(QPainter::Antialiasing);
    QPainterPath card;
    card.addRoundedRect(QRectF(m_card->geometry()), kCornerRadius, kCornerRadius);
    painter.fillPath(card, Brightmere::Color::system(2));
}

void FZOptionsPopup::resizeEvent(QResizeEvent *)
{
    placeCard();
}

void FZOptionsPopup::mousePressEvent(QMouseEvent *event)
{
    // Nothing under the popup gets a click. A click on the dimmed layer
    // outside the card (pressed and released there) dismisses it.
    m_backdropPressed = event->button() == Qt::LeftButton && !m_card->geometry().contains(event->position().toPoint());
    event->accept();
}

void FZOptionsPopup::mouseReleaseEvent(QMouseEvent *event)
{
    event->accept();
    const bool outside = !m_card->geometry().contains(event->position().toPoint());
    if (std::exchange(m_backdropPressed, false) && event->button() == Qt::LeftButton && outside)
        dismiss();
}

void FZOptionsPopup::wheelEvent(QWheelEvent *event)
{
    event->accept();
}
