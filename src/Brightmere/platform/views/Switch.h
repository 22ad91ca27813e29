#pragma once

#include <QAbstractButton>

class QVariantAnimation;

namespace Brightmere {

// The platform's on/off switch: a pill with a round knob that slides to the
// right when on. A click toggles it; setOn() changes it from code. It starts
// off.
class Switch : public QAbstractButton
{
    Q_OBJECT

public:
    static constexpr int kWidth = 51;
    static constexpr int kHeight = 31;

    explicit Switch(QWidget *parent = nullptr);

    bool isOn() const { return isChecked(); }
    void setOn(bool on, bool animated = false);

    QSize sizeHint() const override;

    // Where the knob is drawn: 0 at the off end, 1 at the on end.
    qreal knobPosition() const { return m_position; }

    // How long a tap's slide takes, for every switch; 0 makes the knob jump
    // (tests and pictures want the end state at once).
    static int slideDuration();
    static void setSlideDuration(int milliseconds);

protected:
    void paintEvent(QPaintEvent *event) override;
    void checkStateSet() override;
    void nextCheckState() override;

private:
    void moveKnob();

    qreal m_position = 0.0; // 0 off, 1 on
    // The tracks made readable on the page colour they were made for; a
    // paint (many during a slide) makes them again only when it changed.
    QColor m_tracksPage;
    QColor m_offTrack;
    QColor m_onTrack;
    bool m_animateNext = false;
    QVariantAnimation *m_slide = nullptr;
};

} // namespace Brightmere
