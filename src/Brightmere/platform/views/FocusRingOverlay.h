#pragma once

#include <QWidget>

namespace Brightmere {

// The focus ring for a control that paints no ring of its own (a table row,
// a transparent button over a heading, a hold area): a child laid over the
// whole control, shown only while the control has the keyboard focus. It
// takes no input, so a mouse or a finger reaches the control as before.
// Made with the control as its parent; lives as long as it.
class FocusRingOverlay : public QWidget
{
    Q_OBJECT

public:
    explicit FocusRingOverlay(QWidget *control);

protected:
    bool eventFilter(QObject *watched, QEvent *event) override;
    void paintEvent(QPaintEvent *event) override;

private:
    void follow();
};

} // namespace Brightmere
