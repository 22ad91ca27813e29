// The controls people drag, swipe, click and type at: the table of rows, the
// paged scroll view with its page indicator, the switch, the alert. Each
// gesture is driven by the mouse, and once by a finger.
#include "PointerInput.h"
#include "TestEnvironment.h"
#include <Brightmere/platform/views/Alert.h>
#include <Brightmere/platform/views/ColorContrast.h>
#include <Brightmere/platform/views/PageControl.h>
#include <Brightmere/platform/views/ScrollAnimator.h>
#include <Brightmere/platform/views/ScrollView.h>
#include <Brightmere/platform/views/Switch.h>
#include <Brightmere/platform/views/TableView.h>
#include <Brightmere/platform/views/TableViewCell.h>
#include <Brightmere/platform/views/TableViewDataSource.h>
#include <Brightmere/platform/views/ViewController.h>

#include <QAbstractAnimation>
#include <QApplication>
#include <QLabel>
#include <QPointer>
#include <QPushButton>
#include <QSignalSpy>
#include <QTest>

using namespace Brightmere;
using PointerInput::Kind;
using Style = AlertAction::Style;

namespace {

// A caption (which lets clicks through) and a button (which takes them).
class CaptionRow : public TableViewCell
{
public:
    CaptionRow()
    {
        setReuseIdentifier(QStringLiteral("caption"));
        button->setGeometry(0, 0, 60, 40);
    }
    void resizeEvent(QResizeEvent *event) override
    {
        TableViewCell::resizeEvent(event);
        caption->setGeometry(60, 0, width() - 60, height());
    }
    QLabel *caption = new QLabel(this);
    QPushButton *button = new QPushButton(QStringLiteral("Go"), this);
};

class Source : public TableViewDataSource
{
public:
    int numberOfRowsInSection(TableView *, int) override { return int(items.size()); }
    TableViewCell *cellForRowAtIndexPath(TableView *table, const IndexPath &index) override
    {
        auto *row = static_cast<CaptionRow *>(table->dequeueReusableCellWithIdentifier(QStringLiteral("caption")));
        if (!row)
            row = new CaptionRow;
        row->caption->setText(items.at(index.row()));
        return row;
    }
    bool canEditRowAtIndexPath(TableView *, const IndexPath &) override { return true; }
    void didSelectRowAtIndexPath(TableView *, const IndexPath &index) override { selected << index.row(); }

    QStringList items;
    QList<int> selected;
};

struct TableDrag
{
    Kind kind;
    QPoint by;
    int offset;
    bool editing; // row 1, where the drag starts
};

struct PageDrag
{
    Kind kind;
    bool paging, scrolls;
    int dx, offset; // where it comes to rest
};

// Nothing more can come from the view: its animations have stopped and the
// events queued before now have been handled.
bool quiet(QObject *view)
{
    const auto stopped = [view] {
        for (const QAbstractAnimation *animation : view->findChildren<QAbstractAnimation *>()) {
            if (animation->state() == QAbstractAnimation::Running)
                return false;
        }
        return true;
    };
    bool reached = false;
    QMetaObject::invokeMethod(view, [&reached] { reached = true; }, Qt::QueuedConnection);
    return QTest::qWaitFor([&] { return reached && stopped(); }, 5000);
}

} // namespace

class tst_Controls : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    // Ten rows of 40 in a table 200 high; four label pages of 300 x 150; a
    // window covered by a button, where alerts show, active.
    void init()
    {
        m_env = std::make_unique<TestEnvironment>();
        ScrollAnimator::setDuration(0);
        m_source = Source();
        for (int i = 0; i < 10; ++i)
            m_source.items << QStringLiteral("Spot %1").arg(i + 1);
        m_table = std::make_unique<TableView>();
        m_table->setRowHeight(40);
        m_table->setDataSource(&m_source);
        m_table->resize(375, 200);
        m_table->show();
        QVERIFY(QTest::qWaitForWindowExposed(m_table.get()));
        m_table->reloadData();

        m_pages = std::make_unique<ScrollView>();
        m_pages->resize(300, 150);
        for (int i = 0; i < 4; ++i) {
            auto *page = new QLabel(QStringLiteral("Page %1").arg(i + 1));
            page->setGeometry(i * 300, 0, 300, 150);
            m_pages->addSubview(page);
        }
        m_pages->setContentSize(QSize(1200, 150));
        m_pages->show();
        QVERIFY(QTest::qWaitForWindowExposed(m_pages.get()));

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
        m_table.reset();
        m_pages.reset();
        m_window.reset();
        Switch::setSlideDuration(150);
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
        m_env.reset();
    }

    void tableDragsScrollOrSwipe_data()
    {
        QTest::addColumn<TableDrag>("drag");
        QTest::newRow("up scrolls") << TableDrag{Kind::Mouse, {5, -110}, 110, false};
        QTest::newRow("far up stops at the end") << TableDrag{Kind::Mouse, {0, -900}, 200, false};
        QTest::newRow("25 left is too short") << TableDrag{Kind::Mouse, {-25, 0}, 0, false};
        QTest::newRow("60 right") << TableDrag{Kind::Mouse, {60, 0}, 0, false};
        // A mouse swipe, and one refused, are driven on the saved list and the test screen.
        QTest::newRow("touch: 60 left opens the delete strip") << TableDrag{Kind::Touch, {-60, 4}, 0, true};
    }

    void tableDragsScrollOrSwipe()
    {
        QFETCH(TableDrag, drag);
        const QPoint from(150, 60);
        const bool scrolls = qAbs(drag.by.y()) > qAbs(drag.by.x());
        PointerInput::press(drag.kind, m_table->viewport(), from);
        QCOMPARE(m_table->panGestureRecognizerState(), TableView::GestureStatePossible);
        PointerInput::move(drag.kind, m_table->viewport(), from + drag.by / 2);
        QCOMPARE(m_table->panGestureRecognizerState(),
                 scrolls ? TableView::GestureStateChanged : TableView::GestureStatePossible);
        PointerInput::move(drag.kind, m_table->viewport(), from + drag.by);
        PointerInput::release(drag.kind, m_table->viewport(), from + drag.by);
        QCOMPARE(m_table->panGestureRecognizerState(), TableView::GestureStatePossible);
        QCOMPARE(m_table->contentOffset(), QPoint(0, drag.offset));
        QCOMPARE(row(1) && row(1)->isEditing(), drag.editing);
        QCOMPARE(row(1) && row(1)->deleteStrip() && row(1)->deleteStrip()->isVisible(), drag.editing);
        for (TableViewCell *cell : m_table->visibleCells())
            QVERIFY(cell == row(1) || !cell->isEditing());
        QVERIFY(m_source.selected.isEmpty());
    }

    void tableScrollTargets()
    {
        // Row 3 to the top; a rectangle already seen stays; one below comes
        // up to the bottom; one above comes down to the top.
        for (const bool animated : {false, true}) {
            m_table->scrollToRowAtIndexPath(IndexPath(3, 0), TableView::ScrollPosition::Top, animated);
            QCOMPARE(m_table->contentOffset(), QPoint(0, 120));
            m_table->scrollRectToVisible(QRect(0, 200, 1, 40), animated);
            QCOMPARE(m_table->contentOffset(), QPoint(0, 120));
            m_table->scrollRectToVisible(QRect(0, 350, 1, 40), animated);
            QCOMPARE(m_table->contentOffset(), QPoint(0, 190));
            m_table->scrollRectToVisible(QRect(0, 0, 1, 40), animated);
            QCOMPARE(m_table->contentOffset(), QPoint(0, 0));
        }
    }

    void aPageDragComesToRestOnTheNearestPage_data()
    {
        QTest::addColumn<PageDrag>("drag"); // from page 2
        QTest::newRow("a short drag springs back") << PageDrag{Kind::Mouse, true, true, -140, 300};
        QTest::newRow("past half a page, the next") << PageDrag{Kind::Mouse, true, true, -160, 600};
        QTest::newRow("beyond the last page") << PageDrag{Kind::Mouse, true, true, -900, 900};
        QTest::newRow("without paging, where it ends") << PageDrag{Kind::Mouse, false, true, -130, 430};
        QTest::newRow("scrolling off") << PageDrag{Kind::Mouse, true, false, -160, 300};
        QTest::newRow("touch: past half a page, the next") << PageDrag{Kind::Touch, true, true, -160, 600};
    }

    void aPageDragComesToRestOnTheNearestPage()
    {
        QFETCH(PageDrag, drag);
        m_pages->setPagingEnabled(drag.paging);
        m_pages->setScrollEnabled(drag.scrolls);
        m_pages->setContentOffset(QPoint(300, 0), false);
        QSignalSpy rested(m_pages.get(), &ScrollView::didEndDecelerating);
        QSignalSpy animated(m_pages.get(), &ScrollView::didEndScrollingAnimation);
        PointerInput::drag(drag.kind, m_pages->viewport(), QPoint(150, 70), QPoint(150 + drag.dx, 75));
        if (drag.scrolls)
            QTRY_COMPARE(rested.size(), 1);
        QCOMPARE(m_pages->contentOffset(), QPoint(drag.offset, 0));
        QVERIFY(quiet(m_pages.get()));
        QCOMPARE(rested.size(), drag.scrolls ? 1 : 0);
        QCOMPARE(animated.size(), 0);
    }

    // A move replaced before it ends reports only the second, never before
    // the event loop turns; a move without animation reports nothing.
    void animatedPageMovesReportTheirEndOnce()
    {
        ScrollView::setAnimationDuration(0);
        m_pages->setContentOffset(QPoint(0, 0), false);
        QSignalSpy ended(m_pages.get(), &ScrollView::didEndScrollingAnimation);
        m_pages->setContentOffset(QPoint(300, 0), true);
        m_pages->scrollRectToVisible(QRect(600, 0, 300, 150), true);
        QCOMPARE(ended.size(), 0);
        QTRY_COMPARE(ended.size(), 1);
        QCOMPARE(m_pages->contentOffset(), QPoint(600, 0));
        m_pages->setContentOffset(QPoint(0, 0), false);
        QVERIFY(quiet(m_pages.get()));
        QCOMPARE(ended.size(), 1);
    }

    void aClickBesideTheCurrentDotMovesOnePage()
    {
        // From page, click this far from its dot's centre, to page.
        for (const auto &[current, clickX, page] : {std::tuple{1, 60, 2}, {0, -20, 0}, {2, 1, 2}, {2, -5, 1}}) {
            PageControl control;
            control.setNumberOfPages(4);
            control.setCurrentPage(current);
            control.resize(200, 20);
            control.show();
            QVERIFY(QTest::qWaitForWindowExposed(&control));
            QSignalSpy changed(&control, &PageControl::valueChanged);
            QTest::mouseClick(&control, Qt::LeftButton, {}, control.dotCentre(current).toPoint() + QPoint(clickX, 0));
            QCOMPARE(control.currentPage(), page);
            QCOMPARE(changed.size(), page == current ? 0 : 1);
        }
    }

    // Without the caller's tints the dots take the widget's palette: made to
    // stand out from the page where its grey does not, kept where it does,
    // and following a change of it.
    void untintedDotsStandOutFromThePage()
    {
        PageControl control;
        control.setAutoFillBackground(true);
        control.setNumberOfPages(3);
        control.setCurrentPage(1);
        control.resize(100, 20);
        for (const auto &[page, mid] : {std::pair{QColor(Qt::white), QColor(0xfa, 0xfa, 0xfa)},
                                        {QColor(0x20, 0x20, 0x20), QColor(Qt::red)}}) {
            QPalette palette = control.palette();
            palette.setColor(QPalette::Window, page);
            palette.setColor(QPalette::Mid, mid);
            control.setPalette(palette);
            const QImage image = control.grab().toImage();
            const QColor dot = image.pixelColor(control.dotCentre(0).toPoint());
            const QColor current = image.pixelColor(control.dotCentre(1).toPoint());
            QVERIFY2(Color::contrastRatio(dot, page) >= Color::kLargeContrast, qPrintable(dot.name()));
            QVERIFY2(Color::contrastRatio(current, page) >= Color::kLargeContrast, qPrintable(current.name()));
            QVERIFY(current != dot);
            if (Color::contrastRatio(mid, page) >= Color::kLargeContrast)
                QCOMPARE(dot, mid);
        }
    }

    // The knob ends where the state is, whichever way the state changed: a
    // user's click (which Qt applies with the button's refresh held back),
    // a key, a change from code, animated or not.
    void switchKnobFollowsState()
    {
        Switch::setSlideDuration(0);
        for (const auto &[startOn, how] : {std::pair{false, "click"}, {true, "click"}, {false, "key"},
                                           {false, "code"}, {true, "code animated"}}) {
            Switch control;
            control.resize(control.sizeHint());
            control.setOn(startOn);
            QCOMPARE(control.knobPosition(), startOn ? 1.0 : 0.0);
            QSignalSpy toggled(&control, &Switch::toggled);
            if (QByteArray(how) == "click")
                QTest::mouseClick(&control, Qt::LeftButton);
            else if (QByteArray(how) == "key")
                QTest::keyClick(&control, Qt::Key_Space);
            else
                control.setOn(!startOn, QByteArray(how).endsWith("animated"));
            QVERIFY2(control.isOn() == !startOn && control.knobPosition() == (startOn ? 0.0 : 1.0), how);
            QCOMPARE(toggled.size(), 1);
        }
        // A slide with length runs on the event loop: the knob has not arrived
        // yet, and a change from code then jumps straight to its end.
        Switch::setSlideDuration(150);
        Switch control;
        control.resize(control.sizeHint());
        QTest::mouseClick(&control, Qt::LeftButton);
        QVERIFY(control.isOn() && control.knobPosition() < 1.0);
        control.setOn(false);
        QCOMPARE(control.knobPosition(), 0.0);
    }

    void buttonsKeepTheOrderAdded()
    {
        // Two short buttons share a row, cancel staying where added; two long ones, or three, stack in order.
        for (const auto &[titles, styles, sideBySide] :
             {std::tuple{QStringList{"OK", "Cancel"}, QList<Style>{Style::Default, Style::Cancel}, true},
              {QStringList{"Replace the old spot", "Keep both spots"}, QList<Style>{Style::Destructive, Style::Default},
               false},
              {QStringList{"Delete", "Copy", "Cancel"},
               QList<Style>{Style::Destructive, Style::Default, Style::Cancel}, false}}) {
            m_window->resize(390, 700);
            QPointer<Alert> alert = present(titles, styles);
            QCOMPARE(alert->buttonTitles(), titles);
            const QList<QPushButton *> buttons = alert->buttons();
            for (int i = 0; i < buttons.size(); ++i) {
                QCOMPARE(buttons.at(i)->text(), titles.at(i));
                QCOMPARE(alert->actions().at(i).style(), styles.at(i));
                QVERIFY(alert->cardGeometry().contains(buttons.at(i)->mapTo(alert, buttons.at(i)->rect().center())));
                const QPoint previous = buttons.at(qMax(i - 1, 0))->mapTo(alert, QPoint(0, 0));
                const QPoint current = buttons.at(i)->mapTo(alert, QPoint(0, 0));
                QVERIFY(i == 0 || (sideBySide ? current.y() == previous.y() && current.x() > previous.x()
                                              : current.y() > previous.y()));
            }
            // The card sits in the middle of the window, and stays there.
            QVERIFY((alert->cardGeometry().center() - m_window->rect().center()).manhattanLength() <= 2);
            m_window->resize(600, 400);
            QCOMPARE(alert->geometry(), m_window->rect());
            QVERIFY((alert->cardGeometry().center() - QPoint(300, 200)).manhattanLength() <= 2);
            alert->dismiss(false);
        }
    }

    void pressingClosesThenRunsTheHandlerOnce_data()
    {
        QTest::addColumn<QString>("how");
        QTest::addColumn<int>("expected");
        QTest::newRow("by a real click") << "click" << 0;
        QTest::newRow("Tab to the second, Enter") << "tabEnter" << 1;
        QTest::newRow("Escape closes it, pressing nothing") << "escape" << -1;
        QTest::newRow("Escape after the row it came from was removed") << "escape, opener gone" << -1;
    }

    void pressingClosesThenRunsTheHandlerOnce()
    {
        QFETCH(QString, how);
        QFETCH(int, expected);
        QList<int> pressed;
        bool goneWhenHandled = false;
        // The keyboard was on a row's control when the alert came.
        QPointer<QPushButton> opener = new QPushButton("Row", m_window.get());
        opener->show();
        opener->setFocus();
        QPointer<Alert> alert = present({"OK", "Copy", "Cancel"}, {}, [&](int i) {
            pressed.append(i);
            goneWhenHandled = Alert::shownAlert(m_window.get()) == nullptr;
        });
        QSignalSpy dismissed(alert.data(), &Alert::dismissed);
        QCOMPARE(Alert::shownAlert(m_window.get()), alert.data());
        if (how == "click") {
            QTest::mouseClick(alert->buttons().at(0), Qt::LeftButton);
        } else {
            // The keyboard is the alert's while it is up.
            QCOMPARE(QApplication::focusWidget(), alert->buttons().at(0));
            if (how == "tabEnter") {
                QTest::keyClick(QApplication::focusWidget(), Qt::Key_Tab);
                QTest::keyClick(QApplication::focusWidget(), Qt::Key_Return);
            } else {
                if (how.endsWith("opener gone"))
                    delete opener;
                QTest::keyClick(QApplication::focusWidget(), Qt::Key_Escape);
            }
        }
        // Back on the row's control, or, gone, on the screen's first one.
        QCOMPARE(QApplication::focusWidget(), opener ? static_cast<QWidget *>(opener) : m_under);
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

    CaptionRow *row(int i) const { return static_cast<CaptionRow *>(m_table->cellForRowAtIndexPath(IndexPath(i, 0))); }

    std::unique_ptr<TestEnvironment> m_env;
    std::unique_ptr<TableView> m_table;
    std::unique_ptr<ScrollView> m_pages;
    Source m_source;
    std::unique_ptr<QWidget> m_window;
    QPushButton *m_under = nullptr;
};

QTEST_MAIN(tst_Controls)
#include "tst_Controls.moc"
