#pragma once

#include "BMHeldKeyRelease.h"

#include <QColor>
#include <QIcon>
#include <QPushButton>

// A button drawn as an image with its title on top (the round controls of
// the test screen). Besides QPushButton's own signals it reports a press as
// a touch screen does: touchDown once, then exactly one of touchUpInside or
// touchUpOutside when the mouse button or the finger is lifted, wherever it
// went in between (a drag out and back in neither ends nor restarts the
// press). A cancelled touch counts as a release outside. A release inside
// also clicks. Disabled, it reports nothing, a press under way is dropped
// without a report, and it draws faded with its disabled title.
//
// The keyboard reaches it with Tab (a click leaves the focus where it was)
// and it then shows a focus ring; Space held down is a press held down:
// touchDown on press, touchUpInside on release, touchUpOutside when the
// focus goes meanwhile (a release counts once no press followed it within
// BMHeldKeyRelease::kRepeatGapSeconds, so unmarked key repeats neither end nor restart the
// hold); Enter is a tap. With exclusive touch on, no other widget of its
// window takes a press (mouse, finger) while it is held, and a second finger
// on it is ignored. Titles show as written ("&" is no shortcut).
class BMImageButton : public QPushButton
{
    Q_OBJECT

public:
    enum class State { Normal, Disabled };

    explicit BMImageButton(QWidget *parent = nullptr);

    QIcon backgroundImage() const { return m_backgroundImage; }
    // A null icon draws the title alone.
    void setBackgroundImage(const QIcon &image);

    // The disabled title falls back to the normal one while it is empty.
    QString titleForState(State state) const;
    void setTitle(const QString &title, State state = State::Normal);

    QColor titleColor() const { return m_titleColor; }
    void setTitleColor(const QColor &color);

    // Pressed and not yet released.
    bool isTracking() const { return m_tracking; }

    bool isExclusiveTouch() const { return m_exclusiveTouch; }
    void setExclusiveTouch(bool exclusive) { m_exclusiveTouch = exclusive; }

Q_SIGNALS:
    void touchDown();
    void touchUpInside();
    void touchUpOutside();

protected:
    bool event(QEvent *event) override;
    bool eventFilter(QObject *watched, QEvent *event) override;
    void mousePressEvent(QMouseEvent *event) override;
    void mouseReleaseEvent(QMouseEvent *event) override;
    void keyPressEvent(QKeyEvent *event) override;
    void keyReleaseEvent(QKeyEvent *event) override;
    void focusOutEvent(QFocusEvent *event) override;
    void changeEvent(QEvent *event) override;
    void paintEvent(QPaintEvent *event) override;

private:
    void finishKeyRelease();
    void begin();
    void end(bool inside);
    void showTitle();

    QIcon m_backgroundImage;
    QString m_normalTitle;
    QString m_disabledTitle;
    QColor m_titleColor;
    bool m_tracking = false;
    bool m_trackingKey = false;
    bool m_exclusiveTouch = false;
    BMHeldKeyRelease m_heldKeyRelease{[this] { finishKeyRelease(); }};
};
