#include "Switch.h"

#include "FocusRing.h"
#include <Brightmere/platform/views/ColorContrast.h>

#include <QPainter>
#include <QPainterPath>
#include <QVariantAnimation>

namespace Brightmere {

namespace {

const QColor kOnColor(52, 199, 89);
const QColor kOffColor(218, 218, 222);
const QColor kKnobColor(255, 255, 255);
const QColor kKnobShadow(0, 0, 0, 70);
int g_slideMilliseconds = 150;

} // namespace

Switch::Switch(QWidget *parent)
    : QAbstractButton(parent)
{
    setCheckable(true);
    setCursor(Qt::PointingHandCursor);
    // Tab reaches it and Space flips it; a click leaves the focus where it was.
    setFocusPolicy(Qt::TabFocus);
    setSizePolicy(QSizePolicy::Fixed, QSizePolicy::Fixed);
    m_slide = new QVariantAnimation(this);
    connect(m_slide, &QVariantAnimation::valueChanged, this, [this](const QVariant &value) {
        m_position = value.toReal();
        update();
    });
}

void Switch::setOn(bool on, bool animated)
{
    m_animateNext = animated;
    setChecked(on);
    m_animateNext = false;
}

int Switch::slideDuration()
{
    return g_slideMilliseconds;
}

void Switch::setSlideDuration(int milliseconds)
{
    g_slideMilliseconds = qMax(0, milliseconds);
}

QSize Switch::sizeHint() const
{
    return {kWidth, kHeight};
}

void Switch::checkStateSet()
{
    moveKnob();
}

void Switch::nextCheckState()
{
    // A tap slides the knob; a change from code jumps unless asked to slide.
    // A click changes the state with checkStateSet() held back, so the knob
    // is moved here.
    m_animateNext = true;
    QAbstractButton::nextCheckState();
    moveKnob();
    m_animateNext = false;
}

void Switch::moveKnob()
{
    const bool animated = m_animateNext && g_slideMilliseconds > 0;
    const qreal target = isChecked() ? 1.0 : 0.0;
    m_slide->stop();
    if (!animated) {
        m_position = target;
        update();
        return;
    }
    m_slide->setDuration(g_slideMilliseconds);
    m_slide->setStartValue(m_position);
    m_slide->setEndValue(target);
    m_slide->start();
}

void Switch::paintEvent(QPaintEvent *)
{
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    const QRectF track = QRectF(0, 0, kWidth, kHeight).translated((width() - kWidth) / 2.0, (height() - kHeight) / 2.0);
    const qreal radius = track.height() / 2.0;

    // Both tracks stand out from the page behind the switch as a control's
    // parts must: 3:1.
    const QColor page = palette().color(QPalette::Window);
    if (!m_offTrack.isValid() || page != m_tracksPage) {
        m_tracksPage = page;
        m_offTrack = Color::withContrast(kOffColor, page, Color::kLargeContrast);
        m_onTrack = Color::withContrast(kOnColor, page, Color::kLargeContrast);
    }
    const QColor &off = m_offTrack;
    const QColor &on = m_onTrack;
    QColor fill;
    fill.setRgbF(off.redF() + (on.redF() - off.redF()) * m_position, off.greenF() + (on.greenF() - off.greenF()) * m_position,
                 off.blueF() + (on.blueF() - off.blueF()) * m_position);
    if (!isEnabled())
        fill.setAlphaF(0.5f);
    QPainterPath path;
    path.addRoundedRect(track, radius, radius);
    painter.fillPath(path, fill);

    const qreal knob = track.height() - 4.0;
    const qreal x = track.left() + 2.0 + (track.width() - knob - 4.0) * m_position;
    const QRectF knobRect(x, track.top() + 2.0, knob, knob);
    painter.setPen(Qt::NoPen);
    painter.setBrush(kKnobShadow);
    painter.drawEllipse(knobRect.translated(0, 1));
    painter.setBrush(kKnobColor);
    painter.drawEllipse(knobRect);
    if (hasFocus())
        FocusRing::paint(painter, track, radius, FocusRing::color(this));
}

} // namespace Brightmere
