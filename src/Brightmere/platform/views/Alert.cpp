#include "Alert.h"

#include "FocusRing.h"
#include <Brightmere/core/BMLogger.h>
#include <Brightmere/platform/views/ColorContrast.h>
#include <Brightmere/ui/BrightmereView.h>

#include <QApplication>
#include <QBoxLayout>
#include <QChildEvent>
#include <QKeyEvent>
#include <QLabel>
#include <QPainter>
#include <QPainterPath>
#include <QPushButton>

#include <algorithm>

namespace Brightmere {

namespace {

const QString kModule = QStringLiteral("Alert");

constexpr int kWindowMargin = 16;
constexpr int kCornerRadius = 14;
constexpr int kButtonHeight = 44;
// Text sizes in points.
constexpr qreal kTitlePoints = 17;
constexpr qreal kMessagePoints = 13;
constexpr qreal kButtonPoints = 17;
const QColor kDimColor(0, 0, 0, 102);
const QColor kCardColor(248, 248, 248);
const QColor kSeparatorColor(60, 60, 67, 75);
const QColor kTextColor(0, 0, 0);
const QColor kActionColor(0x00, 0x7a, 0xff);
const QColor kDestructiveColor(0xff, 0x3b, 0x30);

QString buttonStyleSheet(AlertAction::Style style)
{
    // The platform's action blue and destructive red, darkened to read on the card.
    const QColor color = Color::withContrast(style == AlertAction::Style::Destructive ? kDestructiveColor : kActionColor,
                                             kCardColor, Color::kTextContrast);
    return QStringLiteral("QPushButton { border: none; background: transparent; color: %1;"
                          " font-size: %4px; font-weight: %2; min-height: %3px; padding: 0px 8px; }"
                          "QPushButton:pressed { background: rgba(0, 0, 0, 20); }")
               .arg(color.name())
               .arg(style == AlertAction::Style::Cancel ? 600 : 400)
               .arg(kButtonHeight)
               .arg(View::fontOfSize(kButtonPoints).pixelSize())
           + FocusRing::styleSheetRule(QStringLiteral("QPushButton"), kActionColor);
}

} // namespace

Alert::Alert(const QString &title, const QString &message, QWidget *parent)
    : QWidget(parent)
    , m_titleText(title)
    , m_messageText(message)
{
    setObjectName(QStringLiteral("alert"));
    setAttribute(Qt::WA_NoMousePropagation);
    setFocusPolicy(Qt::StrongFocus);
    hide();

    m_card = new QWidget(this);
    m_card->setObjectName(QStringLiteral("alertCard"));
    auto *cardLayout = new QVBoxLayout(m_card);
    cardLayout->setContentsMargins(0, 0, 0, 0);
    cardLayout->setSpacing(0);

    auto *textBlock = new QWidget(m_card);
    auto *textLayout = new QVBoxLayout(textBlock);
    textLayout->setContentsMargins(16, 19, 16, 19);
    textLayout->setSpacing(4);

    QPalette textPalette = palette();
    textPalette.setColor(QPalette::WindowText, kTextColor);

    m_titleLabel = new QLabel(textBlock);
    m_titleLabel->setObjectName(QStringLiteral("alertTitle"));
    m_titleLabel->setFont(View::fontOfSize(kTitlePoints, QFont::Bold));
    m_titleLabel->setPalette(textPalette);
    m_titleLabel->setAlignment(Qt::AlignCenter);
    m_titleLabel->setWordWrap(true);
    m_titleLabel->setTextFormat(Qt::PlainText);
    textLayout->addWidget(m_titleLabel);

    m_messageLabel = new QLabel(textBlock);
    m_messageLabel->setObjectName(QStringLiteral("alertMessage"));
    m_messageLabel->setFont(View::fontOfSize(kMessagePoints));
    m_messageLabel->setPalette(textPalette);
    m_messageLabel->setAlignment(Qt::AlignCenter);
    m_messageLabel->setWordWrap(true);
    m_messageLabel->setTextInteractionFlags(Qt::NoTextInteraction);
    textLayout->addWidget(m_messageLabel);

    cardLayout->addWidget(textBlock);

    setTitle(title);
    setMessage(message);
    rebuildButtons();
}

Alert::~Alert()
{
    if (m_host)
        m_host->removeEventFilter(this);
}

void Alert::setTitle(const QString &title)
{
    m_titleText = title;
    m_titleLabel->setText(title);
    m_titleLabel->setVisible(!title.isEmpty());
    layoutCard();
}

void Alert::setMessage(const QString &message, Qt::TextFormat format)
{
    m_messageText = message;
    m_messageFormat = format;
    m_messageLabel->setTextFormat(format);
    m_messageLabel->setText(message);
    m_messageLabel->setVisible(!message.isEmpty());
    layoutCard();
}

void Alert::addAction(const AlertAction &action)
{
    if (m_dismissed) {
        BMLogger::sharedInstance().logFromModule(kModule, 2, "button '%@' added to the closed alert '%@'",
                                                 action.title(), m_titleText);
        return;
    }
    m_actions.append(action);
    rebuildButtons();
}

QStringList Alert::buttonTitles() const
{
    QStringList titles;
    for (const AlertAction &action : m_actions)
        titles.append(action.title());
    return titles;
}

void Alert::showOver(QWidget *window, bool animated)
{
    Q_UNUSED(animated)
    if (m_dismissed || m_presented) {
        BMLogger::sharedInstance().logFromModule(kModule, 2, "the alert '%@' cannot be shown twice", m_titleText);
        return;
    }
    if (!window) {
        BMLogger::sharedInstance().logFromModule(kModule, 3, "the alert '%@' has no window to show in",
                                                 m_titleText);
        return;
    }
    m_host = window;
    m_presented = true;
    m_focusReturn.remember(window);

    setParent(window);
    setGeometry(window->rect());
    window->installEventFilter(this);
    show();
    raise();
    layoutCard();
    if (!m_buttons.isEmpty())
        m_buttons.first()->setFocus(Qt::OtherFocusReason);
    else
        setFocus(Qt::OtherFocusReason);
}

void Alert::dismiss(bool animated, std::function<void()> completion)
{
    Q_UNUSED(animated)
    if (m_dismissed) {
        BMLogger::sharedInstance().logFromModule(kModule, 1, "the alert '%@' is already closed", m_titleText);
        return;
    }
    m_dismissed = true;
    if (m_host)
        m_host->removeEventFilter(this);
    hide();
    m_focusReturn.restore();
    Q_EMIT dismissed();
    if (completion)
        completion();
    deleteLater();
}

QRect Alert::cardGeometry() const
{
    return m_card->geometry();
}

bool Alert::pressButtonAt(int index)
{
    if (m_dismissed || index < 0 || index >= m_actions.size())
        return false;
    // Copy first: the alert is on its way out once dismissed.
    const AlertAction::Handler handler = m_actions.at(index).handler();
    dismiss(false);
    if (handler)
        handler();
    return true;
}

bool Alert::pressButtonWithTitle(const QString &title)
{
    const int index = int(buttonTitles().indexOf(title));
    return index >= 0 && pressButtonAt(index);
}

Alert *Alert::shownAlert(QWidget *window)
{
    const QList<QWidget *> roots = window ? QList<QWidget *>{window} : QApplication::topLevelWidgets();
    Alert *found = nullptr;
    for (QWidget *root : roots) {
        for (Alert *alert : root->findChildren<Alert *>()) {
            if (alert->isPresented())
                found = alert;
        }
    }
    return found;
}

bool Alert::eventFilter(QObject *watched, QEvent *event)
{
    if (watched == m_host && !m_dismissed) {
        if (event->type() == QEvent::Resize) {
            setGeometry(m_host->rect());
        } else if (event->type() == QEvent::ChildAdded) {
            // Whatever the window gets later must not cover the alert.
            auto *child = static_cast<QChildEvent *>(event)->child();
            if (child != this && child->isWidgetType())
                raise();
        }
    }
    return QWidget::eventFilter(watched, event);
}

void Alert::paintEvent(QPaintEvent *)
{
    QPainter painter(this);
    painter.fillRect(rect(), kDimColor);

    const QRectF card = m_card->geometry();
    painter.setRenderHint(QPainter::Antialiasing);
    QPainterPath path;
    path.addRoundedRect(card, kCornerRadius, kCornerRadius);
    painter.fillPath(path, kCardColor);

    if (m_buttons.isEmpty())
        return;
    painter.setRenderHint(QPainter::Antialiasing, false);
    painter.setClipPath(path);
    const QPoint areaTopLeft = m_buttonArea->mapTo(this, QPoint(0, 0));
    painter.fillRect(QRect(int(card.left()), areaTopLeft.y(), int(card.width()), 1), kSeparatorColor);
    const bool sideBySide = buttonsSideBySide();
    for (int i = 1; i < m_buttons.size(); ++i) {
        const QPoint topLeft = m_buttons.at(i)->mapTo(this, QPoint(0, 0));
        if (sideBySide)
            painter.fillRect(QRect(topLeft.x(), topLeft.y(), 1, m_buttons.at(i)->height()), kSeparatorColor);
        else
            painter.fillRect(QRect(int(card.left()), topLeft.y(), int(card.width()), 1), kSeparatorColor);
    }
}

void Alert::resizeEvent(QResizeEvent *)
{
    layoutCard();
}

void Alert::mousePressEvent(QMouseEvent *event)
{
    event->accept();
}

void Alert::mouseReleaseEvent(QMouseEvent *event)
{
    event->accept();
}

void Alert::mouseDoubleClickEvent(QMouseEvent *event)
{
    event->accept();
}

void Alert::wheelEvent(QWheelEvent *event)
{
    event->accept();
}

void Alert::keyPressEvent(QKeyEvent *event)
{
    if (event->key() == Qt::Key_Escape) {
        // Escape is the cancel button where there is one; otherwise it
        // closes the alert and runs no button's handler.
        bool pressed = false;
        for (int i = 0; i < m_actions.size() && !pressed; ++i) {
            if (m_actions.at(i).style() == AlertAction::Style::Cancel)
                pressed = pressButtonAt(i);
        }
        if (!pressed && !m_dismissed)
            dismiss(false);
    } else if (event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter) {
        const int focused = int(m_buttons.indexOf(qobject_cast<QPushButton *>(QApplication::focusWidget())));
        if (focused >= 0)
            pressButtonAt(focused);
    }
    // Keys stop here: the window under the alert does not get them.
    event->accept();
}

bool Alert::focusNextPrevChild(bool next)
{
    // Tab moves among the alert's buttons only.
    if (m_buttons.isEmpty())
        return true;
    int current = -1;
    for (int i = 0; i < m_buttons.size(); ++i) {
        if (m_buttons.at(i)->hasFocus())
            current = i;
    }
    const int count = int(m_buttons.size());
    const int target = current < 0 ? 0 : (current + (next ? 1 : count - 1)) % count;
    m_buttons.at(target)->setFocus(next ? Qt::TabFocusReason : Qt::BacktabFocusReason);
    return true;
}

bool Alert::buttonsSideBySide() const
{
    if (m_actions.size() != 2)
        return false;
    // Two buttons share a row when both titles fit in half the card.
    const QFontMetrics metrics(View::fontOfSize(kButtonPoints, QFont::Bold));
    const int half = kCardWidth / 2 - 16;
    return std::all_of(m_actions.cbegin(), m_actions.cend(), [&](const AlertAction &action) {
        return metrics.horizontalAdvance(action.title()) <= half;
    });
}

void Alert::rebuildButtons()
{
    // A button's own click may be what led here: let old buttons go later.
    if (m_buttonArea) {
        m_buttonArea->hide();
        m_buttonArea->deleteLater();
        m_buttonArea = nullptr;
    }
    m_buttons.clear();
    if (m_actions.isEmpty()) {
        layoutCard();
        return;
    }

    m_buttonArea = new QWidget(m_card);
    QBoxLayout *layout = buttonsSideBySide() ? static_cast<QBoxLayout *>(new QHBoxLayout(m_buttonArea))
                                             : static_cast<QBoxLayout *>(new QVBoxLayout(m_buttonArea));
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(0);
    for (int i = 0; i < m_actions.size(); ++i) {
        const AlertAction &action = m_actions.at(i);
        // Titles show as written: a "&" is no shortcut.
        auto *button = new QPushButton(QString(action.title()).replace(QLatin1Char('&'), QStringLiteral("&&")),
                                       m_buttonArea);
        button->setObjectName(QStringLiteral("alertButton%1").arg(i));
        button->setFlat(true);
        button->setAutoDefault(false);
        button->setFocusPolicy(Qt::TabFocus);
        button->setCursor(Qt::PointingHandCursor);
        button->setStyleSheet(buttonStyleSheet(action.style()));
        button->setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Fixed);
        connect(button, &QPushButton::clicked, this, [this, i] { pressButtonAt(i); });
        layout->addWidget(button);
        m_buttons.append(button);
    }
    static_cast<QBoxLayout *>(m_card->layout())->addWidget(m_buttonArea);
    m_buttonArea->show();
    layoutCard();
}

void Alert::layoutCard()
{
    if (!m_card)
        return;
    const int w = std::min(kCardWidth, std::max(120, width() - 2 * kWindowMargin));
    int h = m_card->heightForWidth(w);
    if (h < 0)
        h = m_card->sizeHint().height();
    if (height() > 2 * kWindowMargin)
        h = std::min(h, height() - 2 * kWindowMargin);
    m_card->setGeometry((width() - w) / 2, (height() - h) / 2, w, h);
    update();
}

} // namespace Brightmere
