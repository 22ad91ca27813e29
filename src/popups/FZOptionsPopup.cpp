#include "FZOptionsPopup.h"

#include "core/BMLogger.h"
#include "platform/views/FocusRing.h"
#include "platform/views/KeyWindow.h"
#include "ui/BMLabel.h"
#include "ui/BrightmereColor.h"
#include "ui/BrightmereView.h"

#include <QApplication>
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

namespace {

const QString kModule = QStringLiteral("FZOptionsPopup");

constexpr int kButtonFontPixels = 14;
constexpr int kButtonMinimumFontPixels = 9;
constexpr int kButtonInset = 5;
constexpr int kTitleFontPixels = 16;
constexpr int kTitleSideMargin = 10;

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

QString titleStyleSheet(const QString &radii)
{
    return QStringLiteral("QLabel { background: %1; color: %2; %3 }")
        .arg(Brightmere::Color::named(QStringLiteral("medium_blue")).name(QColor::HexArgb),
             Brightmere::Color::colorWithR(255, 255, 255).name(QColor::HexArgb), radii);
}

QString buttonStyleSheet(const QString &radii)
{
    return QStringLiteral("QPushButton { background: %1; color: %2; border: none; padding: %3px; %4 }"
                          "QPushButton:pressed { background: %5; }")
               .arg(Brightmere::Color::system(2).name(QColor::HexArgb),
                    Brightmere::Color::colorFromHex(QStringLiteral("999999")).name(QColor::HexArgb))
               .arg(kButtonInset)
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
    m_slide = new QVariantAnimation(this);
    connect(m_slide, &QVariantAnimation::valueChanged, this, [this](const QVariant &value) {
        m_shownOffset = value.toReal();
        layoutCard();
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
    layoutCard();
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
    layoutCard();
}

FZOptionsPopup::MakeConstraintsBlock FZOptionsPopup::optionsMakeConstraintsBlockWithOrientation(int orientation)
{
    if (orientation == Horizontal) {
        return [this](QWidget *view, QWidget *, QWidget *) {
            if (isFirstOptionView(view))
                m_row.clear();
            m_row.append(view);
        };
    }
    return [this](QWidget *view, QWidget *, QWidget *) {
        const bool separator = m_separators.contains(view);
        stackRow(view, separator ? 1 : kOptionHeight);
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
        QFont font = title->font();
        font.setPixelSize(kTitleFontPixels);
        font.setWeight(QFont::DemiBold);
        title->setFont(font);
        title->baseInit();
        title->setAlignment(Qt::AlignCenter);
        title->setWordWrap(true);
        title->setContentsMargins(kTitleSideMargin, 0, kTitleSideMargin, 0);
        title->setProperty(kTagProperty, 0);
        title->setStyleSheet(titleStyleSheet(cornerRadii(true, true, false, false)));
        stackRow(title, title->heightForWidth(kCardWidth) + kTitleExtraHeight);
        return title;
    }

    auto *button = new QPushButton(Brightmere::View::literalButtonText(option), parentView);
    button->setObjectName(QStringLiteral("option%1").arg(index));
    button->setProperty(kTagProperty, index);
    button->setFlat(true);
    button->setAutoDefault(false);
    // The keyboard reaches it with Tab; a click does not move the focus.
    button->setFocusPolicy(Qt::TabFocus);
    button->setCursor(Qt::PointingHandCursor);
    QFont font = button->font();
    font.setPixelSize(kButtonFontPixels);
    button->setFont(font);
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

void FZOptionsPopup::stackRow(QWidget *view, int height)
{
    m_column.append(Placed{view, height});
    view->show();
}

void FZOptionsPopup::roundOuterCorners()
{
    // Which buttons touch the card's bottom corners: the last one of a
    // stack, the first and last of a row. Nothing to do without buttons.
    if (m_buttons.isEmpty())
        return;
    const bool lastIsButton =
        m_orientation == Horizontal || (!m_column.isEmpty() && m_column.last().view == m_buttons.last());
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

void FZOptionsPopup::layoutCard()
{
    int y = 0;
    for (const Placed &row : std::as_const(m_column)) {
        if (!row.view)
            continue;
        row.view->setGeometry(0, y, kCardWidth, row.height);
        y += row.height;
    }
    if (!m_row.isEmpty()) {
        QWidget *top = viewOnTopOfOptions(m_card);
        const int rowTop = top ? top->geometry().bottom() + 1 : 0;
        int buttons = 0;
        int separators = 0;
        for (const QPointer<QWidget> &view : std::as_const(m_row)) {
            if (m_separators.contains(view))
                ++separators;
            else
                ++buttons;
        }
        // Every button gets the same width; the odd pixels left over go
        // unseen at the right, where the card has the buttons' colour.
        const int buttonWidth = buttons > 0 ? (kCardWidth - separators) / buttons : 0;
        int x = 0;
        for (const QPointer<QWidget> &view : std::as_const(m_row)) {
            const int width = m_separators.contains(view) ? 1 : buttonWidth;
            view->setGeometry(x, rowTop, width, kOptionHeight);
            x += width;
        }
        y = std::max(y, rowTop + kOptionHeight);
    }
    fitButtonFonts();

    const QRectF area = rect();
    const qreal top = area.center().y() - y / 2.0 + m_shownOffset;
    m_card->setGeometry(int(std::lround((area.width() - kCardWidth) / 2.0)), int(std::lround(top)), kCardWidth, y);
    update();
}

void FZOptionsPopup::fitButtonFonts()
{
    for (const QPointer<QPushButton> &button : std::as_const(m_buttons)) {
        if (!button || button->width() <= 0)
            continue;
        const int room = button->width() - 2 * kButtonInset;
        QFont font = button->font();
        font.setPixelSize(kButtonFontPixels);
        while (font.pixelSize() > kButtonMinimumFontPixels
               && QFontMetrics(font).horizontalAdvance(button->text()) > room)
            font.setPixelSize(font.pixelSize() - 1);
        if (font != button->font())
            button->setFont(font);
    }
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
    QWidget *focus = QApplication::focusWidget();
    if (focus && window->isAncestorOf(focus))
        m_previousFocus = focus;
    setParent(window);
    setGeometry(window->rect());
    window->installEventFilter(this);
    QWidget::show();
    raise();
    layoutCard();
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
    if (hadFocus && m_previousFocus && m_previousFocus->isVisible())
        m_previousFocus->setFocus(Qt::OtherFocusReason);
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
    layoutCard();
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
