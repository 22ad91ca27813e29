#include "BMImageButton.h"

#include "BrightmereColor.h"
#include "BrightmereView.h"
#include <Brightmere/platform/views/FocusRing.h>

#include <QApplication>
#include <QKeyEvent>
#include <QMouseEvent>
#include <QPainter>
#include <QTouchEvent>

namespace {

constexpr qreal kTitlePoints = 15;
// Pressed, the image darkens rather than fades, so a white title on it
// stays readable (a fade took Record's title from 4.5:1 to about 2.2:1).
constexpr int kPressedShade = 56; // black's alpha over the image, of 255
constexpr qreal kDisabledOpacity = 0.45;

} // namespace

BMImageButton::BMImageButton(QWidget *parent)
    : QPushButton(parent)
    , m_titleColor(Brightmere::Color::colorWithR(255, 255, 255))
{
    setAttribute(Qt::WA_AcceptTouchEvents);
    setFocusPolicy(Qt::TabFocus);
    setFont(Brightmere::View::fontOfSize(kTitlePoints, QFont::Bold));
}

void BMImageButton::setBackgroundImage(const QIcon &image)
{
    m_backgroundImage = image;
    update();
}

QString BMImageButton::titleForState(State state) const
{
    if (state == State::Disabled && !m_disabledTitle.isEmpty())
        return m_disabledTitle;
    return m_normalTitle;
}

void BMImageButton::setTitle(const QString &title, State state)
{
    (state == State::Normal ? m_normalTitle : m_disabledTitle) = title;
    showTitle();
}

void BMImageButton::setTitleColor(const QColor &color)
{
    m_titleColor = color;
    update();
}

void BMImageButton::showTitle()
{
    // The button draws its title itself; the text (for the accessibility
    // tools) is escaped so a "&" makes no shortcut.
    setText(Brightmere::View::literalButtonText(titleForState(isEnabled() ? State::Normal : State::Disabled)));
    update();
}

void BMImageButton::begin()
{
    m_tracking = true;
    // While held, nothing else in the window takes a press.
    if (m_exclusiveTouch)
        qApp->installEventFilter(this);
    Q_EMIT touchDown();
}

void BMImageButton::end(bool inside)
{
    if (!m_tracking)
        return;
    m_tracking = false;
    m_trackingKey = false;
    qApp->removeEventFilter(this);
    if (inside)
        Q_EMIT touchUpInside();
    else
        Q_EMIT touchUpOutside();
}

bool BMImageButton::event(QEvent *event)
{
    switch (event->type()) {
    case QEvent::TouchBegin:
    case QEvent::TouchUpdate:
    case QEvent::TouchEnd:
    case QEvent::TouchCancel: {
        // Touches are handled here, so no mouse press is made up from them
        // and a finger never counts twice.
        auto *touch = static_cast<QTouchEvent *>(event);
        if (!isEnabled()) {
            event->ignore();
            return true;
        }
        const bool inside =
            !touch->points().isEmpty() && rect().contains(touch->points().constFirst().position().toPoint());
        if (event->type() == QEvent::TouchBegin) {
            // A second finger while one holds it is no second press.
            if (m_tracking) {
                event->accept();
                return true;
            }
            setDown(true);
            begin();
        } else if (event->type() == QEvent::TouchUpdate) {
            setDown(m_tracking && inside);
        } else {
            const bool wasTracking = m_tracking;
            setDown(false);
            end(event->type() == QEvent::TouchEnd && inside);
            if (wasTracking && event->type() == QEvent::TouchEnd && inside)
                Q_EMIT clicked(isChecked());
        }
        event->accept();
        return true;
    }
    default:
        return QPushButton::event(event);
    }
}

bool BMImageButton::eventFilter(QObject *watched, QEvent *event)
{
    // Installed on the application only while an exclusive press is held.
    switch (event->type()) {
    case QEvent::MouseButtonPress:
    case QEvent::MouseButtonDblClick:
    case QEvent::TouchBegin: {
        auto *widget = qobject_cast<QWidget *>(watched);
        if (m_tracking && widget && widget != this && widget->window() == window())
            return true;
        break;
    }
    default:
        break;
    }
    return QPushButton::eventFilter(watched, event);
}

void BMImageButton::mousePressEvent(QMouseEvent *event)
{
    // A disabled widget gets no mouse events; the check guards filters and
    // direct calls all the same.
    if (isEnabled() && event->button() == Qt::LeftButton && !m_tracking)
        begin();
    QPushButton::mousePressEvent(event);
}

void BMImageButton::mouseReleaseEvent(QMouseEvent *event)
{
    if (event->button() == Qt::LeftButton)
        end(rect().contains(event->position().toPoint()));
    QPushButton::mouseReleaseEvent(event);
}

static bool isSpace(const QKeyEvent *event)
{
    return event->key() == Qt::Key_Space && !event->isAutoRepeat();
}

void BMImageButton::keyPressEvent(QKeyEvent *event)
{
    // A press right behind the release is the key's repeat that the window
    // system did not mark: the hold goes on.
    if (isSpace(event) && m_heldKeyRelease.pressSeen()) {
        event->accept();
        return;
    }
    // Enter is a tap: down and up at once, then the click.
    if ((event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter) && event->modifiers() == Qt::NoModifier) {
        if (!event->isAutoRepeat() && isEnabled() && !m_tracking) {
            begin();
            end(true);
            click();
        }
        event->accept();
        return;
    }
    if (isSpace(event) && isEnabled() && !m_tracking) {
        begin();
        m_trackingKey = true;
    }
    QPushButton::keyPressEvent(event);
}

void BMImageButton::keyReleaseEvent(QKeyEvent *event)
{
    // Some window systems send a held key's repeats as releases and presses
    // that are not marked as repeats: the release only counts once no press
    // has followed it within a moment.
    if (isSpace(event) && m_trackingKey) {
        m_heldKeyRelease.releaseSeen();
        event->accept();
        return;
    }
    QPushButton::keyReleaseEvent(event);
}

void BMImageButton::finishKeyRelease()
{
    // Released as a finger is lifted: up inside first, then the click.
    end(true);
    setDown(false);
    click();
}

void BMImageButton::focusOutEvent(QFocusEvent *event)
{
    // Space held while the focus goes elsewhere lets go without acting; a
    // release already seen is the user's.
    if (!m_heldKeyRelease.settleNow() && m_trackingKey)
        end(false);
    QPushButton::focusOutEvent(event);
}

void BMImageButton::changeEvent(QEvent *event)
{
    if (event->type() == QEvent::EnabledChange) {
        if (!isEnabled()) {
            m_tracking = false;
            m_trackingKey = false;
            qApp->removeEventFilter(this);
            setDown(false);
        }
        showTitle();
    }
    QPushButton::changeEvent(event);
}

void BMImageButton::paintEvent(QPaintEvent *)
{
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setRenderHint(QPainter::SmoothPixmapTransform);
    if (!isEnabled())
        painter.setOpacity(kDisabledOpacity);
    if (!m_backgroundImage.isNull() && isEnabled() && isDown()) {
        QPixmap image = m_backgroundImage.pixmap(size(), devicePixelRatioF());
        QPainter shade(&image);
        shade.setCompositionMode(QPainter::CompositionMode_SourceAtop);
        shade.fillRect(image.rect(), QColor(0, 0, 0, kPressedShade));
        shade.end();
        QRect target(QPoint(), image.deviceIndependentSize().toSize());
        target.moveCenter(rect().center());
        painter.drawPixmap(target, image);
    } else if (!m_backgroundImage.isNull())
        m_backgroundImage.paint(&painter, rect(), Qt::AlignCenter);
    if (hasFocus()) {
        painter.setOpacity(1.0);
        // Thick and dark, so it shows on every button colour.
        Brightmere::FocusRing::paint(painter, rect(), -1, Brightmere::Color::named(QStringLiteral("dark_blue")), 3.0);
    }
    const QString title = titleForState(isEnabled() ? State::Normal : State::Disabled);
    if (title.isEmpty())
        return;
    painter.setPen(m_titleColor);
    // A longer translation, or larger text, first shrinks the title (down to
    // 70 % of its designed size, never under the kit's smallest text), and
    // only then is cut with an ellipsis.
    QFont titleFont = font();
    const int room = width() - 8;
    const int largest = titleFont.pixelSize() > 0 ? titleFont.pixelSize()
                                                  : Brightmere::View::fontOfSize(kTitlePoints).pixelSize();
    const qreal scale = Brightmere::View::textScale();
    const int smallest = qMax(Brightmere::View::kMinimumTextPixels, scale > 1.0 ? qRound(largest * 0.7 / scale) : largest * 7 / 10);
    for (int size = largest; size > smallest && QFontMetrics(titleFont).horizontalAdvance(title) > room;)
        titleFont.setPixelSize(--size);
    painter.setFont(titleFont);
    const QString shown = QFontMetrics(titleFont).elidedText(title, Qt::ElideRight, width() - 4);
    painter.drawText(rect(), Qt::AlignCenter, shown);
}
