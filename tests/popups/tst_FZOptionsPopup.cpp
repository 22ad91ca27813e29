#include "LayoutChecks.h"
#include <Brightmere/platform/views/KeyboardNotifications.h>
#include <Brightmere/platform/views/KeyWindow.h>
#include <Brightmere/popups/FZConfirmSpotModificationPopup.h>
#include <Brightmere/popups/FZLabelOptionsPopup.h>
#include <Brightmere/popups/FZTextViewOptionsPopup.h>

#include <Brightmere/ui/BMLabel.h>

#include <QApplication>
#include <QLabel>
#include <QLineEdit>
#include <QSignalSpy>
#include <QPointer>
#include <QPushButton>
#include <QTest>

#include <memory>

using Brightmere::KeyboardNotifications;

// The popup family: what a press reports, how the card is laid out on
// windows from 320 to 1280 wide, and how the text popup follows the keyboard.
class tst_FZOptionsPopup : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();
    void withoutKeyWindowItIsLetGo();
    void cardLayout_data();
    void cardLayout();
    void textPopupConfiguresItsFieldAndFollowsTheKeyboard();
    void pressKeysAndBackdrop_data();
    void pressKeysAndBackdrop();
    void textsShowAsWritten();

private:
    FZOptionsPopup *make(const QString &kind, const QStringList &options, int orientation);
    std::unique_ptr<QWidget> m_window;
};

void tst_FZOptionsPopup::init()
{
    m_window = std::make_unique<QWidget>();
    m_window->resize(375, 667);
    m_window->show();
    QVERIFY(QTest::qWaitForWindowExposed(m_window.get()));
    Brightmere::KeyWindow::makeKeyWindow(m_window.get());
}

void tst_FZOptionsPopup::cleanup()
{
    m_window.reset();
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
}

FZOptionsPopup *tst_FZOptionsPopup::make(const QString &kind, const QStringList &options, int orientation)
{
    if (kind == "text")
        return FZTextViewOptionsPopup::popupWithOptions(options, orientation);
    if (kind == "label")
        return FZLabelOptionsPopup::popupWithOptions(options, orientation);
    if (kind == "confirm")
        return FZConfirmSpotModificationPopup::popupWithOptions(options, orientation);
    return FZOptionsPopup::popupWithOptions(options, orientation);
}

void tst_FZOptionsPopup::withoutKeyWindowItIsLetGo()
{
    m_window->hide();
    QPointer<FZOptionsPopup> lost = FZOptionsPopup::popupWithOptions({"Title", "ok"});
    lost->show();
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    QVERIFY(!lost);
}

void tst_FZOptionsPopup::cardLayout_data()
{
    QTest::addColumn<QString>("kind");
    QTest::addColumn<int>("orientation");
    QTest::addColumn<int>("buttons");
    QTest::addColumn<int>("windowWidth");
    for (int width : {320, 375, 800, 1280}) {
        const QByteArray at = " at " + QByteArray::number(width);
        QTest::newRow("base vertical, three buttons" + at) << "base" << 0 << 3 << width;
        QTest::newRow("base horizontal, three buttons" + at) << "base" << 1 << 3 << width;
        QTest::newRow("text horizontal, four buttons" + at) << "text" << 1 << 4 << width;
        QTest::newRow("confirm horizontal, two buttons" + at) << "confirm" << 1 << 2 << width;
        QTest::newRow("label vertical, one button" + at) << "label" << 0 << 1 << width;
    }
    QTest::newRow("title only: no button") << "base" << 0 << 0 << 375;
}

void tst_FZOptionsPopup::cardLayout()
{
    QFETCH(QString, kind);
    QFETCH(int, orientation);
    QFETCH(int, buttons);
    QFETCH(int, windowWidth);
    m_window->resize(windowWidth, 667);
    // A translated title too long for one line wraps; it is never cut.
    QStringList options{"A title long enough to wrap onto a second line of the card, and on to a third"};
    if (kind != "base")
        options.append("A note of two lines at the most, however long the translation of it turns out to be");
    for (int i = 0; i < buttons; ++i)
        options.append(QString("Pick %1").arg(i));
    FZOptionsPopup *popup = make(kind, options, orientation);
    popup->show();
    QWidget *card = popup->popupContainerView();
    QCOMPARE(card->width(), FZOptionsPopup::kCardWidth);
    QVERIFY(qAbs(card->geometry().center().y() - popup->rect().center().y()) <= 1);
    QVERIFY(qAbs(card->geometry().center().x() - popup->rect().center().x()) <= 1);
    QCOMPARE(LayoutChecks::faults(popup).join("; "), QString());
    QCOMPARE(popup->separators().size(), std::max(0, buttons - 1));

    const QList<QPushButton *> list = popup->optionButtons();
    QCOMPARE(list.size(), buttons);
    int bottom = 0;
    for (int i = 0; i < list.size(); ++i) {
        const QRect r = list.at(i)->geometry();
        QCOMPARE(r.height(), FZOptionsPopup::kOptionHeight);
        bottom = std::max(bottom, r.bottom());
        if (i == 0)
            continue;
        const QRect previous = list.at(i - 1)->geometry();
        if (orientation == 1) {
            QCOMPARE(r.width(), previous.width());
            QCOMPARE(r.top(), previous.top());
            QCOMPARE(r.left(), previous.right() + 2); // one separator between
        } else {
            QCOMPARE(r.width(), FZOptionsPopup::kCardWidth);
            QCOMPARE(r.top(), previous.bottom() + 2);
        }
    }
    if (buttons > 0)
        QCOMPARE(bottom, card->height() - 1); // the last row closes the card
}

void tst_FZOptionsPopup::textPopupConfiguresItsFieldAndFollowsTheKeyboard()
{
    int configured = 0;
    auto *popup = FZTextViewOptionsPopup::popupWithOptions(
        {"Save run", "Give it a name", "cancel", "save"},
        [&](QLineEdit *field) {
            ++configured;
            field->setPlaceholderText("Run name");
        },
        1);
    QCOMPARE(configured, 1);
    QCOMPARE(popup->textField()->placeholderText(), QString("Run name"));
    popup->show();
    QWidget *card = popup->popupContainerView();
    const QRect centred = card->geometry();

    // A 260-point keyboard: the card moves to the middle of the 407 points left.
    // Its middle to the pixel, whichever way the layout rounds a half.
    const auto middleAt = [card](int y) { return qAbs(card->geometry().center().y() - y) <= 1; };
    KeyboardNotifications::postKeyboardDidShow(QRect(0, 407, 375, 260));
    QTRY_VERIFY(middleAt(407 / 2));
    // The suggestions bar grows the keyboard: moved again, from where it was unshifted.
    KeyboardNotifications::postKeyboardDidShow(QRect(0, 367, 375, 300));
    QTRY_VERIFY(middleAt(367 / 2));
    // Hiding leaves the card where it is.
    KeyboardNotifications::postKeyboardWillHide(QRect(0, 667, 375, 300));
    QVERIFY(middleAt(367 / 2));
    QVERIFY(card->geometry() != centred);

    // Gone popups hear nothing.
    popup->dismiss();
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    KeyboardNotifications::postKeyboardDidShow(QRect(0, 407, 375, 260));
}

void tst_FZOptionsPopup::pressKeysAndBackdrop_data()
{
    QTest::addColumn<QString>("kind");
    QTest::addColumn<QString>("steps");
    QTest::addColumn<int>("chosen"); // 0: none
    QTest::addColumn<bool>("dismissed");
    QTest::newRow("a click reports the option's index") << "base" << "click:0" << 1 << false;
    QTest::newRow("a text popup counts from 2") << "text" << "click:0" << 2 << false;
    QTest::newRow("confirm popup in a row, delete is 3") << "confirm row" << "click:1" << 3 << false;
    QTest::newRow("Escape is a dismissal") << "base" << "Escape" << 0 << true;
    QTest::newRow("Space reaches no button under the popup") << "base" << "Space" << 0 << false;
    QTest::newRow("Tab, then Space presses the first button") << "base" << "Tab,Space" << 1 << false;
    QTest::newRow("Shift+Tab goes round to the last one") << "base" << "Backtab,Space" << 3 << false;
    QTest::newRow("Tab twice, then Enter presses the second") << "base" << "Tab,Tab,Enter" << 2 << false;
    QTest::newRow("Enter in the field is the confirming option") << "text" << "type,Enter" << 2 << false;
    QTest::newRow("Enter with no field and no focus does nothing") << "base" << "Enter" << 0 << false;
    QTest::newRow("a click on the dimmed layer is a dismissal") << "base" << "clickOutside" << 0 << true;
    QTest::newRow("a click on the card's title is not") << "confirm" << "clickTitle" << 0 << false;
}

void tst_FZOptionsPopup::pressKeysAndBackdrop()
{
    QFETCH(QString, kind);
    QFETCH(QString, steps);
    QFETCH(int, chosen);
    QFETCH(bool, dismissed);
    // A control with the focus under the popup, as the screen's start button.
    auto *under = new QPushButton("under", m_window.get());
    under->setGeometry(10, 10, 80, 30);
    under->show();
    under->setFocus();
    QSignalSpy underClicks(under, &QPushButton::clicked);

    QStringList options{"Title"};
    if (kind != "base")
        options.append("Note");
    options << "one" << "two" << "three";
    QPointer<FZOptionsPopup> popup = make(kind.section(' ', 0, 0), options, kind.endsWith("row") ? 1 : 0);
    QList<int> reported;
    popup->setOptionChosenBlock([&](int index) {
        reported.append(index);
        QVERIFY(!popup->isVisible() && popup->parentWidget() != m_window.get()); // off the screen first
    });
    QSignalSpy dismissals(popup.data(), &FZOptionsPopup::dismissed);
    popup->show();
    QCOMPARE(popup->parentWidget(), m_window.get());
    QCOMPARE(popup->geometry(), m_window->rect());
    QVERIFY(popup->isAncestorOf(QApplication::focusWidget()) || popup->hasFocus());
    if (auto *text = qobject_cast<FZTextViewOptionsPopup *>(popup.data()))
        text->textField()->setFocus();

    for (const QString &step : steps.split(',')) {
        QWidget *focus = QApplication::focusWidget();
        if (step == "Escape" || step == "Space" || step == "Enter" || step == "Tab")
            QTest::keyClick(focus, step == "Escape" ? Qt::Key_Escape
                                   : step == "Space" ? Qt::Key_Space
                                   : step == "Enter" ? Qt::Key_Return
                                                     : Qt::Key_Tab);
        else if (step == "Backtab")
            QTest::keyClick(focus, Qt::Key_Tab, Qt::ShiftModifier);
        else if (step == "type")
            QTest::keyClicks(focus, "Garden");
        else if (step == "clickOutside")
            QTest::mouseClick(popup, Qt::LeftButton, {}, QPoint(5, 5));
        else if (step == "clickTitle")
            QTest::mouseClick(popup->popupContainerView()->findChild<QWidget *>("popupTitle"), Qt::LeftButton);
        else if (step.startsWith("click:"))
            QTest::mouseClick(popup->optionButtons().at(step.mid(6).toInt()), Qt::LeftButton);
    }
    QCOMPARE(reported, chosen ? QList<int>{chosen} : QList<int>{});
    QCOMPARE(dismissals.size(), dismissed ? 1 : 0);
    QCOMPARE(underClicks.size(), 0);
    const bool gone = chosen || dismissed;
    QCOMPARE(popup && popup->isVisible(), !gone);
    // Gone, it hands the focus back, and it is not reused.
    if (gone) {
        QCOMPARE(QApplication::focusWidget(), under);
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
        QVERIFY(!popup);
    }
}

void tst_FZOptionsPopup::textsShowAsWritten()
{
    const QString longNote = "Every spot you record here is kept on this device until you delete it, and a "
                             "saved set can be opened, continued and compared with another one later.";
    auto *popup = FZLabelOptionsPopup::popupWithOptions({"<b>Kitchen</b> & hall", longNote, "Save & close"}, 0);
    popup->show();
    auto *title = popup->popupContainerView()->findChild<QLabel *>("popupTitle");
    QCOMPARE(title->textFormat(), Qt::PlainText);
    QCOMPARE(title->text(), QString("<b>Kitchen</b> & hall"));
    QPushButton *button = popup->optionButtons().constFirst();
    QVERIFY(button->shortcut().isEmpty());
    QCOMPARE(button->text().replace("&&", "&"), QString("Save & close"));
    // The note: two lines at the most, the second ending in an ellipsis,
    // and its row tall enough for both.
    auto *note = popup->popupContainerView()->findChild<BMLabel *>("labelNote");
    const QStringList lines = note->linesForWidth(note->contentsRect().width());
    QCOMPARE(lines.size(), 2);
    QVERIFY(lines.last().endsWith(QChar(0x2026)));
    QVERIFY(note->height() >= 2 * note->fontMetrics().lineSpacing());
    popup->dismiss();
}

QTEST_MAIN(tst_FZOptionsPopup)
#include "tst_FZOptionsPopup.moc"
