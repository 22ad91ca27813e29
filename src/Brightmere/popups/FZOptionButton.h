#pragma once

#include <QPushButton>

// One option of a popup's card: its text at a size in points, shrunk to fit
// the button's width but never under the kit's smallest text, and ended with
// an ellipsis when it is longer still. The text itself stays whole (for
// text(), the accessibility name and the tooltip); only the drawing is cut.
class FZOptionButton : public QPushButton
{
    Q_OBJECT

public:
    FZOptionButton(const QString &text, qreal points, QWidget *parent = nullptr);

    // The width that shows the whole text at the smallest size, padding included.
    int widthForWholeTextAtSmallestSize() const;

protected:
    void resizeEvent(QResizeEvent *event) override;
    void paintEvent(QPaintEvent *event) override;

private:
    // The room the style leaves for the text in a button of that width.
    int textRoom(int buttonWidth) const;
    void fitFont();

    qreal m_points = 0.0;
};
