#include "TestEnvironment.h"
#include "platform/views/Alert.h"
#include "platform/views/ViewController.h"

#include <QApplication>
#include <QPointer>
#include <QPushButton>
#include <QSignalSpy>
#include <QTest>

using namespace Brightmere;
using Style = AlertAction::Style;

class tst_Alert : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init()
    {
        m_env = std::make_unique<TestEnvironment>();
        m_window = std::make_unique<QWidget>();
        m_window->resize(390, 700);
        m_under = new QPushButton("Under", m_window.get());
        m_under->setGeometry(0, 0, 390, 700);
        m_window->show();
        m_window->activateWindow();
        QVERIFY(QTest::qWaitForWindowActive(m_window.get()));
    }

    void cleanup()
    {
        m_window.reset();
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
        m_env.reset();
    }

    void buttonsKeepTheOrderAdded_data()
    {
        QTest::addColumn<QStringList>("titles");
        QTest::addColumn<QList<Style>>("styles");
        QTest::addColumn<bool>("sideBySide");
        QTest::newRow("two short buttons share a row, cancel stays where added")
            << QStringList{"OK", "Cancel"} << QList<Style>{Style::Default, Style::Cancel} << true;
        QTest::newRow("two long buttons stack")
            << QStringList{"Replace the old spot", "Keep both spots"}
            << QList<Style>{Style::Destructive, Style::Default} << false;
        QTest::newRow("three buttons stack in order")
            << QStringList{"Delete", "Copy", "Cancel"}
            << QList<Style>{Style::Destructive, Style::Default, Style::Cancel} << false;
    }

    void buttonsKeepTheOrderAdded()
    {
        QFETCH(QStringList, titles);
        QFETCH(QList<Style>, styles);
        QFETCH(bool, sideBySide);
        Alert *alert = present(titles, styles);
        QCOMPARE(alert->buttonTitles(), titles);
        const QList<QPushButton *> buttons = alert->buttons();
        for (int i = 0; i < buttons.size(); ++i) {
            QCOMPARE(buttons.at(i)->text(), titles.at(i));
            QCOMPARE(alert->actions().at(i).style(), styles.at(i));
            QVERIFY(alert->cardGeometry().contains(buttons.at(i)->mapTo(alert, buttons.at(i)->rect().center())));
            if (i == 0)
                continue;
            const QPoint previous = buttons.at(i - 1)->mapTo(alert, QPoint(0, 0));
            const QPoint current = buttons.at(i)->mapTo(alert, QPoint(0, 0));
            QVERIFY(sideBySide ? current.y() == previous.y() && current.x() > previous.x()
                               : current.y() > previous.y());
        }
        // The card sits in the middle of the window, and stays there.
        QVERIFY((alert->cardGeometry().center() - m_window->rect().center()).manhattanLength() <= 2);
        m_window->resize(600, 400);
        QCOMPARE(alert->geometry(), m_window->rect());
        QVERIFY((alert->cardGeometry().center() - QPoint(300, 200)).manhattanLength() <= 2);
    }

    void pressingClosesThenRunsTheHandlerOnce_data()
    {
        QTest::addColumn<QString>("how");
        QTest::addColumn<int>("expected");
        QTest::newRow("by title") << "title" << 2;
        QTest::newRow("by a real click") << "click" << 0;
        QTest::newRow("Tab to the second, Enter") << "tabEnter" << 1;
        QTest::newRow("Escape closes it, pressing nothing") << "escape" << -1;
    }

    void pressingClosesThenRunsTheHandlerOnce()
    {
        QFETCH(QString, how);
        QFETCH(int, expected);
        QList<int> pressed;
        bool goneWhenHandled = false;
        QPointer<Alert> alert = present({"OK", "Copy", "Cancel"}, {}, [&](int i) {
            pressed.append(i);
            goneWhenHandled = Alert::shownAlert(m_window.get()) == nullptr;
        });
        QSignalSpy dismissed(alert.data(), &Alert::dismissed);
        QCOMPARE(Alert::shownAlert(m_window.get()), alert.data());
        if (how == "title") {
            QVERIFY(alert->pressButtonWithTitle("Cancel"));
        } else if (how == "click") {
            QTest::mouseClick(alert->buttons().at(0), Qt::LeftButton);
        } else {
            // The keyboard is the alert's while it is up.
            QCOMPARE(QApplication::focusWidget(), alert->buttons().at(0));
            if (how == "tabEnter") {
                QTest::keyClick(QApplication::focusWidget(), Qt::Key_Tab);
                QTest::keyClick(QApplication::focusWidget(), Qt::Key_Return);
            } else {
                QTest::keyClick(QApplication::focusWidget(), Qt::Key_Escape);
            }
        }
        const QList<int> expectedPresses = expected < 0 ? QList<int>{} : QList<int>{expected};
        QCOMPARE(pressed, expectedPresses);
        QVERIFY(goneWhenHandled || expected < 0);
        QCOMPARE(dismissed.count(), 1);
        // A second press of anything finds a closed alert.
        QVERIFY(!alert->pressButtonAt(0));
        QVERIFY(!alert->pressButtonWithTitle("OK"));
        QCOMPARE(pressed, expectedPresses);
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
        QVERIFY(!alert);
    }

    void dismissalCompletionRunsOnceTheAlertIsGone()
    {
        // Without buttons a click does not close it.
        QPointer<Alert> alert = present({});
        QVERIFY(!alert->pressButtonAt(0));
        QTest::mouseClick(m_window->windowHandle(), Qt::LeftButton, {}, alert->cardGeometry().center());
        QCOMPARE(Alert::shownAlert(m_window.get()), alert.data());
        int completions = 0;
        bool goneInCompletion = false;
        alert->dismiss(true, [&] {
            ++completions;
            goneInCompletion = !Alert::shownAlert(m_window.get()) && !Alert::shownAlert();
        });
        alert->dismiss(false, [&] { ++completions; });
        QCOMPARE(completions, 1);
        QVERIFY(goneInCompletion);
    }

    void clicksDoNotReachTheWidgetsUnderneath()
    {
        QSignalSpy clicks(m_under, &QPushButton::clicked);
        QWindow *window = m_window->windowHandle();
        QTest::mouseClick(window, Qt::LeftButton, {}, QPoint(20, 20)); // without an alert it lands
        QCOMPARE(clicks.count(), 1);
        QPointer<Alert> alert = present({"OK"});
        // Also a widget the window gets later must not cover the alert.
        auto *late = new QPushButton("Late", m_window.get());
        late->setGeometry(0, 0, 100, 100);
        late->show();
        QSignalSpy lateClicks(late, &QPushButton::clicked);
        QTest::mouseClick(window, Qt::LeftButton, {}, QPoint(20, 20));
        QTest::mouseClick(window, Qt::LeftButton, {}, QPoint(200, 600));
        QTest::mouseClick(window, Qt::LeftButton, {}, alert->cardGeometry().topLeft() + QPoint(20, 10));
        QCOMPARE(clicks.count() + lateClicks.count(), 1);
        QCOMPARE(Alert::shownAlert(m_window.get()), alert.data());
        alert->pressButtonAt(0);
        QTest::mouseClick(window, Qt::LeftButton, {}, QPoint(200, 600));
        QCOMPARE(clicks.count(), 2);
    }

    void aScreenPresentsOneAlertAtATime()
    {
        auto *screen = new ViewController(m_window.get());
        int completions = 0;
        QPointer<Alert> first = new Alert("First");
        screen->presentAlert(first, false, [&] { ++completions; });
        QCOMPARE(completions, 1);
        QCOMPARE(screen->presentedAlert(), first.data());
        QCOMPARE(first->geometry(), m_window->rect()); // over the whole window, not just the screen
        // A second one while the first is up is dropped; its completion never runs.
        QPointer<Alert> second = new Alert("Second");
        screen->presentAlert(second, false, [&] { ++completions; });
        QCOMPARE(completions, 1);
        QCOMPARE(Alert::shownAlert(m_window.get()), first.data());
        first->dismiss(false);
        QCOMPARE(screen->presentedAlert(), nullptr);
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
        QVERIFY(!second && !first);
    }

private:
    Alert *present(const QStringList &titles, const QList<Style> &styles = {},
                   const std::function<void(int)> &onPress = {})
    {
        auto *alert = new Alert("Title", "Message");
        for (int i = 0; i < titles.size(); ++i) {
            alert->addAction(AlertAction(titles.at(i), styles.value(i, Style::Default), [onPress, i] {
                if (onPress)
                    onPress(i);
            }));
        }
        alert->showOver(m_window.get());
        return alert;
    }

    std::unique_ptr<TestEnvironment> m_env;
    std::unique_ptr<QWidget> m_window;
    QPushButton *m_under = nullptr;
};

QTEST_MAIN(tst_Alert)
#include "tst_Alert.moc"
