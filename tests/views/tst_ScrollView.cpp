#include "PointerInput.h"
#include "platform/views/ScrollView.h"

#include <QLabel>
#include <QPointer>
#include <QSignalSpy>
#include <QTest>

using namespace Brightmere;
using PointerInput::Kind;

class tst_ScrollView : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup() { m_view.reset(); }
    void pagingComesToRestOnTheNearestPage_data();
    void pagingComesToRestOnTheNearestPage();
    void withoutPagingADragStopsWhereItEnds();
    void disabledScrollingIgnoresDrags();
    void animatedMovesReportTheirEndOnce_data();
    void animatedMovesReportTheirEndOnce();
    void removedSubviewsAreGoneAtOnce();

private:
    std::unique_ptr<ScrollView> m_view;
};

// Four pages of 300 x 150, labels (which let presses through to the view).
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

void tst_ScrollView::pagingComesToRestOnTheNearestPage_data()
{
    QTest::addColumn<Kind>("kind");
    QTest::addColumn<int>("dx");
    QTest::addColumn<int>("page");
    for (const Kind kind : {Kind::Mouse, Kind::Touch}) {
        const QByteArray k = PointerInput::name(kind);
        QTest::newRow(k + " a short drag springs back") << kind << -140 << 1;
        QTest::newRow(k + " past half a page, the next") << kind << -160 << 2;
        QTest::newRow(k + " two pages back") << kind << 500 << 0;
        QTest::newRow(k + " beyond the last page") << kind << -900 << 3;
    }
}

void tst_ScrollView::pagingComesToRestOnTheNearestPage()
{
    QFETCH(Kind, kind);
    QFETCH(int, dx);
    QFETCH(int, page);
    m_view->setContentOffset(QPoint(300, 0), false);
    QSignalSpy rested(m_view.get(), &ScrollView::didEndDecelerating);
    QSignalSpy animated(m_view.get(), &ScrollView::didEndScrollingAnimation);
    PointerInput::drag(kind, m_view->viewport(), QPoint(150, 70), QPoint(150 + dx, 75));
    QTRY_COMPARE(rested.size(), 1);
    QCOMPARE(m_view->contentOffset(), QPoint(300 * page, 0));
    QCOMPARE(animated.size(), 0);
}

void tst_ScrollView::withoutPagingADragStopsWhereItEnds()
{
    m_view->setPagingEnabled(false);
    QSignalSpy rested(m_view.get(), &ScrollView::didEndDecelerating);
    PointerInput::drag(Kind::Mouse, m_view->viewport(), QPoint(200, 70), QPoint(70, 70));
    QCOMPARE(m_view->contentOffset(), QPoint(130, 0));
    QCOMPARE(rested.size(), 1);
}

void tst_ScrollView::disabledScrollingIgnoresDrags()
{
    m_view->setScrollEnabled(false);
    QSignalSpy rested(m_view.get(), &ScrollView::didEndDecelerating);
    PointerInput::drag(Kind::Touch, m_view->viewport(), QPoint(200, 70), QPoint(20, 70));
    QCOMPARE(m_view->contentOffset(), QPoint(0, 0));
    QCOMPARE(rested.size(), 0);
}

void tst_ScrollView::animatedMovesReportTheirEndOnce_data()
{
    QTest::addColumn<int>("duration");
    QTest::addColumn<bool>("viaRectangle");
    QTest::newRow("at once, offset") << 0 << false;
    QTest::newRow("at once, rectangle") << 0 << true;
    QTest::newRow("30 ms, offset") << 30 << false;
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
    QTest::qWait(2 * duration + 10);
    QCOMPARE(ended.size(), 1);
    m_view->setContentOffset(QPoint(0, 0), false);
    QTest::qWait(10);
    QCOMPARE(ended.size(), 1);
}

void tst_ScrollView::removedSubviewsAreGoneAtOnce()
{
    QPointer<QWidget> page = m_view->subviews().first();
    m_view->removeAllSubviews();
    QVERIFY(m_view->subviews().isEmpty());
    QTRY_VERIFY(!page);
}

QTEST_MAIN(tst_ScrollView)
#include "tst_ScrollView.moc"
