#include "platform/views/PageControl.h"
#include "ui/BrightmereColor.h"

#include <QSignalSpy>
#include <QTest>

using namespace Brightmere;

class tst_PageControl : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void aClickBesideTheCurrentDotMovesOnePage_data();
    void aClickBesideTheCurrentDotMovesOnePage();
    void pagesSetFromCodeAreClampedAndSilent();
    void dotsAreDrawnInTheirColours_data();
    void dotsAreDrawnInTheirColours();
};

void tst_PageControl::aClickBesideTheCurrentDotMovesOnePage_data()
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

void tst_PageControl::aClickBesideTheCurrentDotMovesOnePage()
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
}

void tst_PageControl::pagesSetFromCodeAreClampedAndSilent()
{
    PageControl control;
    QSignalSpy changed(&control, &PageControl::valueChanged);
    control.setNumberOfPages(4);
    control.setCurrentPage(9);
    QCOMPARE(control.currentPage(), 3);
    control.setNumberOfPages(2);
    QCOMPARE(control.currentPage(), 1);
    control.setCurrentPage(-3);
    QCOMPARE(control.currentPage(), 0);
    QCOMPARE(changed.size(), 0);
}

void tst_PageControl::dotsAreDrawnInTheirColours_data()
{
    QTest::addColumn<QColor>("dot");
    QTest::addColumn<QColor>("current");
    QTest::newRow("defaults") << QColor() << QColor();
    QTest::newRow("set") << Color::named("dark_blue") << Color::named("norva_red_1");
}

void tst_PageControl::dotsAreDrawnInTheirColours()
{
    QFETCH(QColor, dot);
    QFETCH(QColor, current);
    PageControl control;
    control.setNumberOfPages(4);
    control.setCurrentPage(1);
    control.setPageIndicatorTintColor(dot);
    control.setCurrentPageIndicatorTintColor(current);
    control.resize(120, 20);
    const QImage image = control.grab().toImage();
    const auto at = [&](int page) {
        return image.pixelColor((control.dotCentre(page) * image.devicePixelRatio()).toPoint()).rgb();
    };
    const QColor expectedDot = dot.isValid() ? dot : Color::named("disable_gray");
    const QColor expectedCurrent = current.isValid() ? current : Color::named("medium_blue");
    QCOMPARE(at(0), expectedDot.rgb());
    QCOMPARE(at(1), expectedCurrent.rgb());
    QCOMPARE(at(3), expectedDot.rgb());
    // Between the dots, the background.
    QCOMPARE(image.pixel(((control.dotCentre(0) + QPointF(8, 0)) * image.devicePixelRatio()).toPoint()),
             control.palette().color(QPalette::Window).rgb());
}

QTEST_MAIN(tst_PageControl)
#include "tst_PageControl.moc"
