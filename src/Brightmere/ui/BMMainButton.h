#pragma once

#include <QColor>
#include <QImage>
#include <QPushButton>

// The kit's main button. Its style picks the background for the normal and
// the highlighted (pressed or selected) state, and for some styles the
// border:
//
//   style  border set by setStyle            normal              highlighted
//   0      width 0                            "dark_blue"         "medium_blue"
//   1, 2   left as built                      system slot 4       "medium_blue"
//   3      radius 22, width 2, "norva_red_1"  "fixed_light_gray"  "norva_red_1"
//   4      radius 22, width 2, colour kept    "fixed_light_gray"  "medium_blue"
//   5      radius 22, width 2, green          "fixed_light_gray"  "fixed_action_bar_green"
//   > 5    left as built                      "fixed_light_gray"  "medium_blue"
//
// "medium_blue" is the design's and stays as it is, but with the host's high
// contrast it gives way to Color::fixedColor of itself under the white title,
// read at each press. Styles above 5 are nobody's design; they fall into the light-grey family's
// default branch, as they always have. The title wraps onto as many lines as
// it needs, centred, in the kit's face.
class BMMainButton : public QPushButton
{
    Q_OBJECT

public:
    // As built from its form: radius 10, border width 1 in
    // "fixed_dark_blue", background "dark_blue", style 0.
    explicit BMMainButton(QWidget *parent = nullptr);
    explicit BMMainButton(const QString &title, QWidget *parent = nullptr);

    uint style() const { return m_style; }
    // Stores the style, applies its border and shows its normal background.
    void setStyle(uint style);

    // The background of the style's normal or highlighted column.
    void setColorAccordingTo(bool highlighted);

    // Each recolours first, then changes the state. A press highlights and
    // a release or a cancelled press unhighlights; a checkable button is
    // selected while checked.
    void setHighlighted(bool highlighted);
    bool isHighlighted() const { return m_highlighted; }
    void setSelected(bool selected);
    bool isSelected() const { return m_selected; }

    // Sets the background to the colour and returns the button drawn at the
    // screen's scale, at its opacity.
    QImage imageWithColor(const QColor &color);

    QColor backgroundColor() const { return m_backgroundColor; }
    void setBackgroundColor(const QColor &color);
    qreal cornerRadius() const { return m_cornerRadius; }
    void setCornerRadius(qreal radius);
    qreal borderWidth() const { return m_borderWidth; }
    void setBorderWidth(qreal width);
    QColor borderColor() const { return m_borderColor; }
    void setBorderColor(const QColor &color);
    QColor titleColor() const;

    QSize sizeHint() const override;
    QSize minimumSizeHint() const override;
    bool hasHeightForWidth() const override { return true; }
    int heightForWidth(int width) const override;

protected:
    void paintEvent(QPaintEvent *event) override;

private:
    void build();
    QRect titleRect(const QRect &bounds) const;

    uint m_style = 0;
    bool m_highlighted = false;
    bool m_selected = false;
    QColor m_backgroundColor;
    QColor m_borderColor;
    qreal m_cornerRadius = 10.0;
    qreal m_borderWidth = 1.0;
};
