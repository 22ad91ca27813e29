#pragma once

#include "AlertAction.h"
#include "FocusReturn.h"

#include <QList>
#include <QPointer>
#include <QWidget>

#include <functional>

class QLabel;
class QPushButton;

namespace Brightmere {

// A modal alert inside a window: a dimmed layer over the whole window with a
// centred card holding a title, a message (plain or rich text) and buttons in
// the order their actions were added. While it is shown nothing under it
// gets a click. Pressing a button closes the alert, then runs the action's
// handler, once. An alert without buttons stays until dismiss().
//
// Create alerts with new: once shown the window owns the alert, and after
// dismissal it deletes itself.
class Alert : public QWidget
{
    Q_OBJECT

public:
    static constexpr int kCardWidth = 270;

    explicit Alert(const QString &title, const QString &message = {}, QWidget *parent = nullptr);
    ~Alert() override;

    QString title() const { return m_titleText; }
    void setTitle(const QString &title);
    QString message() const { return m_messageText; }
    Qt::TextFormat messageFormat() const { return m_messageFormat; }
    // Qt::RichText takes the message as HTML.
    void setMessage(const QString &message, Qt::TextFormat format = Qt::PlainText);

    void addAction(const AlertAction &action);
    QList<AlertAction> actions() const { return m_actions; }
    QStringList buttonTitles() const;
    QList<QPushButton *> buttons() const { return m_buttons; }

    // Covers the window (and follows its size) and shows the card.
    void showOver(QWidget *window, bool animated = false);
    // Closes the alert; the completion runs once it is gone. A second
    // dismissal is logged and does nothing.
    void dismiss(bool animated, std::function<void()> completion = {});

    bool isPresented() const { return m_presented && !m_dismissed; }
    bool isDismissed() const { return m_dismissed; }
    QRect cardGeometry() const;

    // As a tap on the button does. False (and nothing happens) when there is
    // no such button or the alert is already closed.
    bool pressButtonAt(int index);
    bool pressButtonWithTitle(const QString &title);

    // The alert shown in the window (any window when null), the newest if
    // there are several; null when none is shown.
    static Alert *shownAlert(QWidget *window = nullptr);

Q_SIGNALS:
    void dismissed();

protected:
    bool eventFilter(QObject *watched, QEvent *event) override;
    void paintEvent(QPaintEvent *event) override;
    void resizeEvent(QResizeEvent *event) override;
    void mousePressEvent(QMouseEvent *event) override;
    void mouseReleaseEvent(QMouseEvent *event) override;
    void mouseDoubleClickEvent(QMouseEvent *event) override;
    void wheelEvent(QWheelEvent *event) override;
    void keyPressEvent(QKeyEvent *event) override;
    bool focusNextPrevChild(bool next) override;

private:
    void rebuildButtons();
    void layoutCard();
    bool buttonsSideBySide() const;

    QString m_titleText;
    QString m_messageText;
    Qt::TextFormat m_messageFormat = Qt::PlainText;
    QList<AlertAction> m_actions;
    QWidget *m_card = nullptr;
    QLabel *m_titleLabel = nullptr;
    QLabel *m_messageLabel = nullptr;
    QWidget *m_buttonArea = nullptr;
    QList<QPushButton *> m_buttons;
    QPointer<QWidget> m_host;
    FocusReturn m_focusReturn;
    bool m_presented = false;
    bool m_dismissed = false;
};

} // namespace Brightmere
