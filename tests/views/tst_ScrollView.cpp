#include "PointerInput.h"
#include "platform/views/PageControl.h"
#include "platform/views/ScrollView.h"
#include "ui/BrightmereColor.h"

#include <QLabel>
#include <QSignalSpy>
#include <QTest>

using namespace Brightmere;
using PointerInput::Kind;

// The paged scroll view and its page indicator.
class tst_ScrollView : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup() { m_view.reset(); }
    void aDragComesToRestOnTheNearestPage_data();
    void aDragComesToRestOnTheNearestPage();
    void animatedMovesReportTheirEndOnce_data();
    void animatedMovesReportTheirEndOnce();
    void aClickBesideTheCurrentDotMovesOnePage_data();
    void aClickBesideTheCurrentDotMovesOnePage();

private:
    std::unique_ptr<ScrollView> m_view;
};

// Four label pages of 300 x 150 (labels let presses through to the view).
void tst_ScrollView::init()
{
    ScrollView::setAnimationDuration(0);
    m_view = std::make_unique<ScrollView>();
    m_view->resize(300, 150);
    for (int i = 0; i < 4; ++i) {
        auto *page = new QLabel(QStringLiteral("Page %1").arg(i + 1));
        page->setGeometry(i * 300, 0, 300, 150);
        m_view->addSubview(page);
    }
    m_view->setContentSize(QSize(1200, 150));
    m_view->setPagingEnabled(true);
    m_view->show();
    QVERIFY(QTest::qWaitForWindowExposed(m_view.get()));
}

void tst_ScrollView::aDragComesToRestOnTheNearestPage_data()
{
    QTest::addColumn<Kind>("kind");
    QTest::addColumn<bool>("paging");
    QTest::addColumn<bool>("scrolls");
    QTest::addColumn<int>("dx");
    QTest::addColumn<int>("offset"); // where it rests; the drag started on page 2
    for (const Kind kind : {Kind::Mouse, Kind::Touch}) {
        const QByteArray k = PointerInput::name(kind);
        QTest::newRow(k + " a short drag springs back") << kind << true << true << -140 << 300;
        QTest::newRow(k + " past half a page, the next") << kind << true << true << -160 << 600;
        QTest::newRow(k + " two pages back, stops at the first") << kind << true << true << 500 << 0;
        QTest::newRow(k + " beyond the last page") << kind << true << true << -900 << 900;
        QTest::newRow(k + " without paging, where it ends") << kind << false << true << -130 << 430;
        QTest::newRow(k + " scrolling off") << kind << true << false << -160 << 300;
    }
}

void tst_ScrollView::aDragComesToRestOnTheNearestPage()
{
    QFETCH(Kind, kind);
    QFETCH(bool, paging);
    QFETCH(bool, scrolls);
    QFETCH(int, dx);
    QFETCH(int, offset);
    m_view->setPagingEnabled(paging);
    m_view->setScrollEnabled(scrolls);
    m_view->setContentOffset(QPoint(300, 0), false);
    QSignalSpy rested(m_view.get(), &ScrollView::didEndDecelerating);
    QSignalSpy animated(m_view.get(), &ScrollView::didEndScrollingAnimation);
    PointerInput::drag(kind, m_view->viewport(), QPoint(150, 70), QPoint(150 + dx, 75));
    if (scrolls)
        QTRY_COMPARE(rested.size(), 1);
    QCOMPARE(m_view->contentOffset(), QPoint(offset, 0));
    QTest::qWait(1);
    QCOMPARE(rested.size(), scrolls ? 1 : 0);
    QCOMPARE(animated.size(), 0);
}

void tst_ScrollView::animatedMovesReportTheirEndOnce_data()
{
    QTest::addColumn<int>("duration");
    QTest::addColumn<bool>("viaRectangle");
    QTest::newRow("at once, offset") << 0 << false;
    QTest::newRow("30 ms, rectangle") << 30 << true;
}

void tst_ScrollView::animatedMovesReportTheirEndOnce()
{
    QFETCH(int, duration);
    QFETCH(bool, viaRectangle);
    ScrollView::setAnimationDuration(duration);
    QSignalSpy ended(m_view.get(), &ScrollView::didEndScrollingAnimation);
    // A move replaced before it ends reports only the second.
    m_view->setContentOffset(QPoint(300, 0), true);
    if (viaRectangle)
        m_view->scrollRectToVisible(QRect(600, 0, 300, 150), true);
    else
        m_view->setContentOffset(QPoint(600, 0), true);
    QCOMPARE(ended.size(), 0); // never before the event loop turns
    QTRY_COMPARE(ended.size(), 1);
    QCOMPARE(m_view->contentOffset(), QPoint(600, 0));
    // A move without animation reports nothing.
    m_view->setContentOffset(QPoint(0, 0), false);
    QTest::qWait(2 * duration + 10);
    QCOMPARE(ended.size(), 1);
}

void tst_ScrollView::aClickBesideTheCurrentDotMovesOnePage_data()
{
    QTest::addColumn<int>("current");
    QTest::addColumn<int>("clickX"); // from the current dot's centre
    QTest::addColumn<int>("page");
    QTest::newRow("right of the first") << 0 << 30 << 1;
    QTest::newRow("far right still one page") << 1 << 60 << 2;
    QTest::newRow("left of the third") << 2 << -5 << 1;
    QTest::newRow("left of the first stays") << 0 << -20 << 0;
    QTest::newRow("right of the last stays") << 3 << 20 << 3;
    QTest::newRow("on the current dot") << 2 << 1 << 2;
}

void tst_ScrollView::aClickBesideTheCurrentDotMovesOnePage()
{
    QFETCH(int, current);
    QFETCH(int, clickX);
    QFETCH(int, page);
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
    // The dots in the kit's colours, the current one highlighted.
    const QImage image = control.grab().toImage();
    for (int dot = 0; dot < 4; ++dot) {
        const QColor expected = Color::named(dot == page ? "medium_blue" : "disable_gray");
        QCOMPARE(image.pixel((control.dotCentre(dot) * image.devicePixelRatio()).toPoint()), expected.rgb());
    }
}

QTEST_MAIN(tst_ScrollView)
#include "tst_ScrollView.moc"
