#pragma once

#include <QColor>
#include <QWidget>

// A plain view framed by the kit's thin blue border: width 1, colour
// "3498db", corner radius 5. What it holds is up to its user.
class BMBorderedView : public QWidget
{
    Q_OBJECT

public:
    explicit BMBorderedView(QWidget *parent = nullptr);

    // The form registered under "BMBorderedView" (Brightmere::View::
    // registerNib), framed; a plain bordered view, with a log line, when no
    // form is registered or the form is not a bordered view.
    static BMBorderedView *initFromNib(QWidget *parent = nullptr);

    void borderInit();

    qreal borderWidth() const { return m_borderWidth; }
    QColor borderColor() const { return m_borderColor; }
    qreal cornerRadius() const { return m_cornerRadius; }

protected:
    void paintEvent(QPaintEvent *event) override;

private:
    qreal m_borderWidth = 1.0;
    QColor m_borderColor;
    qreal m_cornerRadius = 5.0;
};
