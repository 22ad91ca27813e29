#include "BMLoadingOverlay.h"

#include "BrightmereColor.h"

#include <QEvent>
#include <QMouseEvent>
#include <QPainter>
#include <QPainterPath>
#include <QVariantAnimation>

namespace {

constexpr int kCardSize = 96;
constexpr int kRingDiameter = 44;
constexpr int kSpinMilliseconds = 900;

} // namespace

BMLoadingOverlay::BMLoadingOverlay(Form form, QWidget *parent)
    : QWidget(parent)
    , m_form(form)
{
    setObjectName(form == Form::Plain ? QStringLiteral("BMLoadingView") : QStringLiteral("BMCircleLoadingView"));
    setAttribute(Qt::WA_NoMousePropagation);
    m_spin = new QVariantAnimation(this);
    m_spin->setStartValue(0.0);
    m_spin->setEndValue(360.0);
    m_spin->setDuration(kSpinMilliseconds);
    m_spin->setLoopCount(-1);
    connect(m_spin, &QVariantAnimation::valueChanged, this, [this](const QVariant &value) {
        m_angle = value.toReal();
        update();
    });
    hide();
}

void BMLoadingOverlay::attachTo(QWidget *window)
{
    if (m_window == window)
        return;
    detach();
    m_window = window;
    if (!window)
        return;
    setParent(window);
    setGeometry(window->rect());
    window->installEventFilter(this);
}

void BMLoadingOverlay::detach()
{
    if (m_window)
        m_window->removeEventFilter(this);
    m_window.clear();
    hide();
    setParent(nullptr);
}

bool BMLoadingOverlay::eventFilter(QObject *watched, QEvent *event)
{
    if (watched == m_window) {
        if (event->type() == QEvent::Resize)
            setGeometry(m_window->rect());
        else if (event->type() == QEvent::ChildAdded && isVisible())
            raise();
    }
    return QWidget::eventFilter(watched, event);
}

void BMLoadingOverlay::paintEvent(QPaintEvent *)
{
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    const bool plain = m_form == Form::Plain;
    painter.fillRect(rect(), Brightmere::Color::colorWithR(0, 0, 0, plain ? 0.35f : 0.2f));

    const QPointF centre = QRectF(rect()).center();
    if (plain) {
        QPainterPath card;
        card.addRoundedRect(QRectF(centre.x() - kCardSize / 2.0, centre.y() - kCardSize / 2.0, kCardSize, kCardSize),
                            14, 14);
        painter.fillPath(card, Brightmere::Color::colorWithR(0, 0, 0, 0.7f));
    } else {
        painter.setPen(Qt::NoPen);
        painter.setBrush(Brightmere::Color::system(2));
        painter.drawEllipse(centre, kRingDiameter / 2.0 + 10, kRingDiameter / 2.0 + 10);
    }

    const QRectF ring(centre.x() - kRingDiameter / 2.0, centre.y() - kRingDiameter / 2.0, kRingDiameter,
                      kRingDiameter);
    const QColor track = plain ? Brightmere::Color::colorWithR(255, 255, 255, 0.25f) : Brightmere::Color::system(3);
    const QColor arc = plain ? Brightmere::Color::colorWithR(255, 255, 255)
                             : Brightmere::Color::named(QStringLiteral("medium_blue"));
    painter.setBrush(Qt::NoBrush);
    painter.setPen(QPen(track, 4.0, Qt::SolidLine, Qt::RoundCap));
    painter.drawEllipse(ring);
    painter.setPen(QPen(arc, 4.0, Qt::SolidLine, Qt::RoundCap));
    // Angles in sixteenths of a degree, counter-clockwise from three o'clock.
    painter.drawArc(ring, int((90.0 - m_angle) * 16), -100 * 16);
}

void BMLoadingOverlay::showEvent(QShowEvent *event)
{
    QWidget::showEvent(event);
    m_spin->start();
}

void BMLoadingOverlay::hideEvent(QHideEvent *event)
{
    QWidget::hideEvent(event);
    m_spin->stop();
    m_angle = 0.0;
}

void BMLoadingOverlay::mousePressEvent(QMouseEvent *event)
{
    event->accept();
}

void BMLoadingOverlay::mouseReleaseEvent(QMouseEvent *event)
{
    event->accept();
}

void BMLoadingOverlay::wheelEvent(QWheelEvent *event)
{
    event->accept();
}
