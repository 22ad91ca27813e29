#include "NavigationBar.h"

#include "BarButtonItem.h"
#include "FocusRing.h"
#include "NavigationItem.h"
#include <Brightmere/ui/BrightmereView.h>

#include <QLabel>
#include <QPainter>
#include <QPainterPath>
#include <QToolButton>

#include <algorithm>

namespace Brightmere {

namespace {
constexpr char kFullTitleProperty[] = "brightmereFullTitle";

// Titles show as written: a "&" is no shortcut.
QString literalText(QString text)
{
    return text.replace(QLatin1Char('&'), QStringLiteral("&&"));
}
}

namespace {

constexpr int kSideMargin = 8;
constexpr int kButtonSpacing = 8;
constexpr int kBackTitleMaxWidth = 100;
// Text sizes in points.
constexpr qreal kButtonFontPoints = 17;
constexpr qreal kTitleFontPoints = 17;

QIcon backChevron(const QColor &color)
{
    // Drawn rather than bundled, so it takes the bar's tint.
    QPixmap pixmap(QSize(13, 22) * 2);
    pixmap.setDevicePixelRatio(2.0);
    pixmap.fill(Qt::transparent);
    QPainter painter(&pixmap);
    painter.setRenderHint(QPainter::Antialiasing);
    QPen pen(color, 3.0, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin);
    painter.setPen(pen);
    QPainterPath path;
    path.moveTo(10.5, 2.5);
    path.lineTo(2.5, 11.0);
    path.lineTo(10.5, 19.5);
    painter.drawPath(path);
    return QIcon(pixmap);
}

QString buttonStyleSheet(const QColor &tint)
{
    QColor pressed = tint;
    pressed.setAlphaF(0.4f);
    QColor disabled = tint;
    disabled.setAlphaF(0.35f);
    return QStringLiteral("QToolButton { border: none; background: transparent; color: %1;"
                          " padding: 0px 2px; }"
                          "QToolButton:pressed { color: %2; }"
                          "QToolButton:disabled { color: %3; }")
               .arg(tint.name(QColor::HexArgb))
               .arg(pressed.name(QColor::HexArgb), disabled.name(QColor::HexArgb))
           + FocusRing::styleSheetRule(QStringLiteral("QToolButton"), tint);
}

// The buttons' face is set on the widget, not in their style sheet, so that
// it follows the user's text size and the bar can narrow it.
QFont buttonFont(bool bold)
{
    return View::fontOfSize(kButtonFontPoints, bold ? QFont::Bold : QFont::Normal);
}

bool isTextButton(const QToolButton *button)
{
    return button->toolButtonStyle() == Qt::ToolButtonTextOnly && !button->property(kFullTitleProperty).toString().isEmpty();
}

void setPixelSize(QWidget *widget, int pixels)
{
    QFont font = widget->font();
    font.setPixelSize(pixels);
    widget->setFont(font);
}

} // namespace

NavigationBar::NavigationBar(QWidget *parent)
    : QWidget(parent)
{
    setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Fixed);

    m_titleLabel = new QLabel(this);
    m_titleLabel->setObjectName(QStringLiteral("navigationBarTitle"));
    m_titleLabel->setTextFormat(Qt::PlainText);
    m_titleLabel->setAlignment(Qt::AlignCenter);
    m_titleLabel->setFont(View::fontOfSize(kTitleFontPoints, QFont::Bold));

    m_backButton = new QToolButton(this);
    m_backButton->setObjectName(QStringLiteral("navigationBarBack"));
    m_backButton->setToolButtonStyle(Qt::ToolButtonTextBesideIcon);
    m_backButton->setIconSize(QSize(13, 22));
    m_backButton->setFocusPolicy(Qt::TabFocus);
    m_backButton->hide();
    connect(m_backButton, &QToolButton::clicked, this, &NavigationBar::backRequested);

    applyColors();
    refresh();
}

NavigationBar::~NavigationBar()
{
    // The title widget belongs to its item, not to the bar.
    releaseTitleView();
}

void NavigationBar::setTopItem(NavigationItem *topItem, NavigationItem *backItem)
{
    if (m_topItem)
        disconnect(m_topItem, nullptr, this, nullptr);
    if (m_backItem)
        disconnect(m_backItem, nullptr, this, nullptr);
    m_topItem = topItem;
    m_backItem = backItem;
    if (m_topItem)
        connect(m_topItem, &NavigationItem::changed, this, &NavigationBar::refresh);
    if (m_backItem)
        connect(m_backItem, &NavigationItem::changed, this, &NavigationBar::refresh);
    refresh();
}

NavigationItem *NavigationBar::topItem() const
{
    return m_topItem.data();
}

NavigationItem *NavigationBar::backItem() const
{
    return m_backItem.data();
}

void NavigationBar::setBackgroundColor(const QColor &color)
{
    m_backgroundColor = color;
    update();
}

void NavigationBar::setTintColor(const QColor &color)
{
    m_tintColor = color;
    applyColors();
    refresh();
}

void NavigationBar::setTitleColor(const QColor &color)
{
    m_titleColor = color;
    applyColors();
}

void NavigationBar::setTransparent(bool transparent)
{
    if (m_transparent == transparent)
        return;
    m_transparent = transparent;
    update();
    Q_EMIT placementChanged();
}

void NavigationBar::setTranslucent(bool translucent)
{
    if (m_translucent == translucent)
        return;
    m_translucent = translucent;
    update();
    Q_EMIT placementChanged();
}

void NavigationBar::setVisible(bool visible)
{
    const bool wasHidden = isHidden();
    QWidget::setVisible(visible);
    if (wasHidden != isHidden())
        Q_EMIT placementChanged();
}

bool NavigationBar::isBackButtonShown() const
{
    return !m_backButton->isHidden();
}

QWidget *NavigationBar::shownTitleWidget() const
{
    if (m_titleView)
        return m_titleView.data();
    return m_titleLabel->isHidden() ? nullptr : m_titleLabel;
}

QToolButton *NavigationBar::leftButton() const
{
    return m_leftButton;
}

QList<QToolButton *> NavigationBar::rightButtons() const
{
    return m_rightButtons;
}

QSize NavigationBar::sizeHint() const
{
    return QSize(320, kDefaultHeight);
}

QSize NavigationBar::minimumSizeHint() const
{
    return QSize(0, kDefaultHeight);
}

void NavigationBar::paintEvent(QPaintEvent *)
{
    if (m_transparent)
        return;
    QPainter painter(this);
    QColor background = m_backgroundColor;
    if (m_translucent)
        background.setAlphaF(background.alphaF() * 0.92f);
    painter.fillRect(rect(), background);
    // The hairline under the bar.
    painter.fillRect(QRect(0, height() - 1, width(), 1), QColor(0, 0, 0, 70));
}

void NavigationBar::resizeEvent(QResizeEvent *)
{
    relayout();
}

void NavigationBar::applyColors()
{
    QPalette palette = m_titleLabel->palette();
    palette.setColor(QPalette::WindowText, m_titleColor);
    m_titleLabel->setPalette(palette);
    m_backButton->setStyleSheet(buttonStyleSheet(m_tintColor));
    m_backButton->setFont(buttonFont(false));
    m_backButton->setIcon(backChevron(m_tintColor));
}

void NavigationBar::releaseTitleView()
{
    if (QWidget *view = m_titleView.data()) {
        view->hide();
        view->setParent(nullptr);
    }
    m_titleView.clear();
}

QToolButton *NavigationBar::makeButton(BarButtonItem *item)
{
    auto *button = new QToolButton(this);
    // Tab reaches it, a click leaves the focus where it was.
    button->setFocusPolicy(Qt::TabFocus);
    button->setText(literalText(item->title()));
    button->setProperty(kFullTitleProperty, item->title());
    button->setAccessibleName(item->accessibleName().isEmpty() ? item->title() : item->accessibleName());
    button->setIcon(item->icon());
    button->setIconSize(QSize(24, 24));
    button->setEnabled(item->isEnabled());
    if (!item->icon().isNull() && !item->title().isEmpty())
        button->setToolButtonStyle(Qt::ToolButtonTextBesideIcon);
    else if (!item->icon().isNull())
        button->setToolButtonStyle(Qt::ToolButtonIconOnly);
    else
        button->setToolButtonStyle(Qt::ToolButtonTextOnly);
    button->setStyleSheet(buttonStyleSheet(m_tintColor));
    button->setFont(buttonFont(item->style() == BarButtonItem::Style::Done));
    QPointer<BarButtonItem> guard(item);
    connect(button, &QToolButton::clicked, this, [guard] {
        if (guard)
            guard->trigger();
    });
    button->show();
    return button;
}

void NavigationBar::clearButtons()
{
    // A button's own click may have caused this refresh: delete later.
    if (m_leftButton) {
        m_leftButton->hide();
        m_leftButton->deleteLater();
        m_leftButton = nullptr;
    }
    for (QToolButton *button : std::as_const(m_rightButtons)) {
        button->hide();
        button->deleteLater();
    }
    m_rightButtons.clear();
}

void NavigationBar::refresh()
{
    clearButtons();

    NavigationItem *item = m_topItem.data();
    QWidget *wantedTitleView = item ? item->titleView() : nullptr;
    if (m_titleView != wantedTitleView) {
        releaseTitleView();
        if (wantedTitleView) {
            m_titleView = wantedTitleView;
            wantedTitleView->setParent(this);
            wantedTitleView->show();
        }
    }
    m_titleLabel->setVisible(!m_titleView && item);

    if (item) {
        if (BarButtonItem *left = item->leftBarButtonItem())
            m_leftButton = makeButton(left);
        for (BarButtonItem *right : item->rightBarButtonItems())
            m_rightButtons.append(makeButton(right));
    }

    const bool showBack = item && m_backItem && !item->leftBarButtonItem() && !item->hidesBackButton();
    if (showBack) {
        // A title that does not fit whole is left out, as the phone does:
        // the arrow alone (the title in its tooltip), never a cut word.
        const QString backTitle = m_backItem->title();
        const bool fits = m_backButton->fontMetrics().horizontalAdvance(backTitle) <= kBackTitleMaxWidth;
        m_backButton->setText(literalText(fits ? backTitle : QString()));
        m_backButton->setToolTip(fits ? QString() : backTitle);
        m_backButton->setAccessibleName(m_backItem->backAccessibleName().isEmpty() ? backTitle
                                                                                   : m_backItem->backAccessibleName());
        m_backButton->setToolButtonStyle(!fits || backTitle.isEmpty() ? Qt::ToolButtonIconOnly
                                                                      : Qt::ToolButtonTextBesideIcon);
    }
    m_backButton->setVisible(showBack);
    relayout();
    update();
}

int NavigationBar::giveTitlePriority(const QString &title, int room, int titleFloor, int &buttonRoom)
{
    QList<QToolButton *> texts;
    int others = 0;
    for (QToolButton *button : std::as_const(m_rightButtons)) {
        others += kButtonSpacing;
        if (isTextButton(button))
            texts << button;
        else
            others += button->sizeHint().width();
    }
    if (texts.isEmpty())
        return titleFloor;
    // The text buttons' width at a face size: their title and the padding
    // their style adds around it.
    const auto buttonsWidth = [&texts](int pixels) {
        int width = 0;
        for (QToolButton *button : std::as_const(texts)) {
            button->setText(literalText(button->property(kFullTitleProperty).toString()));
            const int padding = button->sizeHint().width() - button->fontMetrics().horizontalAdvance(button->text());
            QFont font = button->font();
            font.setPixelSize(pixels);
            width += padding + QFontMetrics(font).horizontalAdvance(button->property(kFullTitleProperty).toString());
        }
        return width;
    };
    const auto titleWidth = [&title](int pixels) {
        QFont font = View::fontOfSize(kTitleFontPoints, QFont::Bold);
        font.setPixelSize(pixels);
        return QFontMetrics(font).horizontalAdvance(title) + 4;
    };
    // The title keeps priority: the buttons' text gives way first, down to
    // its size at the default text size; then the title, never below the
    // buttons' size; what still does not fit is taken from the buttons
    // (elided), then from the title.
    const int designed = View::fontOfSize(kButtonFontPoints).pixelSize();
    const int buttonFloor = std::min(designed, View::pixelsForPoints(kButtonFontPoints));
    int buttonPixels = designed;
    int titlePixels = View::fontOfSize(kTitleFontPoints, QFont::Bold).pixelSize();
    const auto fits = [&] { return titleWidth(titlePixels) + others + buttonsWidth(buttonPixels) <= room; };
    while (buttonPixels > buttonFloor && !fits())
        --buttonPixels;
    while (titlePixels > std::max(titleFloor, buttonPixels) && !fits())
        --titlePixels;
    for (QToolButton *button : std::as_const(texts))
        setPixelSize(button, buttonPixels);
    // Each text button keeps at least a letter and the ellipsis.
    const int least = QFontMetrics(texts.first()->font()).horizontalAdvance(QStringLiteral("M\u2026")) + 4;
    const int spare = (room - others - titleWidth(titlePixels)) / int(texts.size());
    buttonRoom = std::clamp(spare, least, std::max(least, buttonRoom));
    return titlePixels;
}

int NavigationBar::fitButtonTitle(QToolButton *button, int maximumWidth)
{
    // A long text title (a downloaded translation, say) is cut with an
    // ellipsis rather than clipped on both sides; the title keeps its room.
    const QString full = button->property(kFullTitleProperty).toString();
    if (button->toolButtonStyle() != Qt::ToolButtonTextOnly || full.isEmpty())
        return std::min(button->sizeHint().width(), maximumWidth);
    button->setText(literalText(full));
    const int wanted = button->sizeHint().width();
    if (wanted <= maximumWidth) {
        button->setToolTip(QString());
        return wanted;
    }
    const int padding = wanted - button->fontMetrics().horizontalAdvance(full);
    button->setText(
        literalText(button->fontMetrics().elidedText(full, Qt::ElideRight, std::max(0, maximumWidth - padding))));
    button->setToolTip(full);
    return maximumWidth;
}

void NavigationBar::relayout()
{
    const int w = width();
    const int h = height();

    int leftEdge = kSideMargin;
    QWidget *leftWidget = !m_backButton->isHidden() ? static_cast<QWidget *>(m_backButton)
                                                    : static_cast<QWidget *>(m_leftButton);
    if (leftWidget) {
        const int bw = std::min(leftWidget->sizeHint().width(), std::max(0, w / 3));
        leftWidget->setGeometry(kSideMargin, 0, bw, h);
        leftEdge = kSideMargin + bw + kButtonSpacing;
    }

    int rightEdge = w - kSideMargin;
    // Larger text takes a wider button, up to two fifths of the bar.
    const int iconRoom = std::max(0, std::min(qRound((w / 4) * View::textScale()), w * 2 / 5));
    int buttonRoom = iconRoom;
    const QString title = m_topItem ? m_topItem->title() : QString();
    QFont titleFont = View::fontOfSize(kTitleFontPoints, QFont::Bold);
    // Text larger than designed shrinks to fit, down to 70 % of the design's
    // size, before it is cut.
    int titleFloor = View::textScale() > 1.0 ? View::pixelsForPoints(kTitleFontPoints * 0.7)
                                             : View::pixelsForPoints(kTitleFontPoints);
    if (View::textScale() > 1.0 && !m_titleLabel->isHidden())
        titleFloor = giveTitlePriority(title, w - leftEdge - kSideMargin, titleFloor, buttonRoom);
    for (QToolButton *button : std::as_const(m_rightButtons)) {
        const int bw = fitButtonTitle(button, isTextButton(button) ? buttonRoom : iconRoom);
        rightEdge -= bw;
        button->setGeometry(rightEdge, 0, bw, h);
        rightEdge -= kButtonSpacing;
    }
    if (!m_rightButtons.isEmpty())
        rightEdge += kButtonSpacing - kSideMargin;

    // The title is centred on the bar, and only moves or shrinks to stay
    // clear of the buttons.
    const int available = std::max(0, rightEdge - leftEdge);
    if (QWidget *titleView = m_titleView.data()) {
        QSize size = titleView->sizeHint().isValid() ? titleView->sizeHint() : titleView->size();
        const int tw = std::min(size.width(), available);
        const int th = std::min(size.height() > 0 ? size.height() : h, h);
        const int x = std::clamp((w - tw) / 2, leftEdge, std::max(leftEdge, rightEdge - tw));
        titleView->setGeometry(x, (h - th) / 2, tw, th);
    }
    if (!m_titleLabel->isHidden()) {
        QFont font = titleFont;
        while (font.pixelSize() > titleFloor && QFontMetrics(font).horizontalAdvance(title) + 4 > available)
            font.setPixelSize(font.pixelSize() - 1);
        m_titleLabel->setFont(font);
        const int full = m_titleLabel->fontMetrics().horizontalAdvance(title) + 4;
        const int tw = std::min(full, available);
        m_titleLabel->setText(m_titleLabel->fontMetrics().elidedText(title, Qt::ElideRight, tw));
        const int x = std::clamp((w - tw) / 2, leftEdge, std::max(leftEdge, rightEdge - tw));
        m_titleLabel->setGeometry(x, 0, tw, h);
    }
}

} // namespace Brightmere
