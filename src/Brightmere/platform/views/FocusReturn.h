#pragma once

#include <QList>
#include <QPointer>
#include <QWidget>

namespace Brightmere {

// Where the keyboard goes back to when an overlay that took it (an alert, a
// popup) leaves: the control that had it when the overlay came; or, when
// that control was deleted, hidden or disabled meanwhile (the row it was in
// removed), the first control that takes Tab in the nearest screen around it
// still shown; or, with no such control, that screen itself. Never nowhere:
// a keyboard user and a reader would be left with no place to go on from.
class FocusReturn
{
public:
    // The window's focus widget now, if it has one, and its holders up to
    // and including the window.
    void remember(QWidget *window);
    // Gives the focus back as above; nothing when nothing was remembered.
    void restore() const;

private:
    QPointer<QWidget> m_control;
    // Nearest first, the window last.
    QList<QPointer<QWidget>> m_holders;
};

} // namespace Brightmere
