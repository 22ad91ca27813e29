#include "ui/BMMainButton.h"
#include "ui/BrightmereColor.h"

#include <QTest>

namespace {
QColor named(const char *key)
{
    return Brightmere::Color::named(QString::fromLatin1(key));
}
} // namespace

class tst_BMMainButton : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void styleSetsBorderAndBothBackgrounds_data();
    void styleSetsBorderAndBothBackgrounds();
    void styleFourAfterThreeKeepsTheRedBorder();
    void pressAndReleaseFollowTheStyle_data();
    void pressAndReleaseFollowTheStyle();
    void imageWithColorRecoloursAndDrawsAtScale();
};

void tst_BMMainButton::styleSetsBorderAndBothBackgrounds_data()
{
    QTest::addColumn<uint>("style");
    QTest::addColumn<qreal>("radius");
    QTest::addColumn<qreal>("width");
    QTest::addColumn<QColor>("border");
    QTest::addColumn<QColor>("normal");
    QTest::addColumn<QColor>("highlighted");
    const QColor built = named("fixed_dark_blue");
    const QColor grey = named("fixed_light_gray");
    QTest::newRow("0 drops the border") << 0u << 10.0 << 0.0 << built << named("dark_blue") << named("medium_blue");
    QTest::newRow("1 keeps the built border")
        << 1u << 10.0 << 1.0 << built << Brightmere::Color::system(4) << named("medium_blue");
    QTest::newRow("2 as 1") << 2u << 10.0 << 1.0 << built << Brightmere::Color::system(4) << named("medium_blue");
    QTest::newRow("3 red pill") << 3u << 22.0 << 2.0 << named("norva_red_1") << grey << named("norva_red_1");
    QTest::newRow("4 pill, border colour kept") << 4u << 22.0 << 2.0 << built << grey << named("medium_blue");
    QTest::newRow("5 green pill") << 5u << 22.0 << 2.0 << named("fixed_action_bar_green") << grey
                                  << named("fixed_action_bar_green");
    QTest::newRow("6 border of 1, fill of 3-5") << 6u << 10.0 << 1.0 << built << grey << named("medium_blue");
    QTest::newRow("large values as 6") << 4000000000u << 10.0 << 1.0 << built << grey << named("medium_blue");
}

void tst_BMMainButton::styleSetsBorderAndBothBackgrounds()
{
    QFETCH(uint, style);
    QFETCH(qreal, radius);
    QFETCH(qreal, width);
    QFETCH(QColor, border);
    QFETCH(QColor, normal);
    QFETCH(QColor, highlighted);
    BMMainButton button("Start");
    QCOMPARE(button.backgroundColor(), named("dark_blue")); // as built, before any style
    button.setStyle(style);
    QCOMPARE(button.style(), style);
    QCOMPARE(button.cornerRadius(), radius);
    QCOMPARE(button.borderWidth(), width);
    QCOMPARE(button.borderColor(), border);
    QCOMPARE(button.backgroundColor(), normal);
    button.setSelected(true);
    QCOMPARE(button.backgroundColor(), highlighted);
    button.setSelected(false);
    QCOMPARE(button.backgroundColor(), normal);
}

void tst_BMMainButton::styleFourAfterThreeKeepsTheRedBorder()
{
    BMMainButton button;
    button.setStyle(3);
    button.setStyle(4);
    QCOMPARE(button.borderColor(), named("norva_red_1"));
    QCOMPARE(button.backgroundColor(), named("fixed_light_gray"));
    button.setHighlighted(true);
    QCOMPARE(button.backgroundColor(), named("medium_blue"));
}

void tst_BMMainButton::pressAndReleaseFollowTheStyle_data()
{
    QTest::addColumn<uint>("style");
    QTest::addColumn<QColor>("pressed");
    QTest::addColumn<QColor>("released");
    QTest::newRow("0") << 0u << named("medium_blue") << named("dark_blue");
    QTest::newRow("3") << 3u << named("norva_red_1") << named("fixed_light_gray");
    QTest::newRow("5") << 5u << named("fixed_action_bar_green") << named("fixed_light_gray");
}

void tst_BMMainButton::pressAndReleaseFollowTheStyle()
{
    QFETCH(uint, style);
    QFETCH(QColor, pressed);
    QFETCH(QColor, released);
    BMMainButton button("Record");
    button.setStyle(style);
    button.resize(200, 44);
    button.show();
    QVERIFY(QTest::qWaitForWindowExposed(&button));
    QTest::mousePress(&button, Qt::LeftButton);
    QCOMPARE(button.backgroundColor(), pressed);
    QVERIFY(button.isHighlighted());
    QTest::mouseRelease(&button, Qt::LeftButton);
    QCOMPARE(button.backgroundColor(), released);
    QVERIFY(!button.isHighlighted());
}

void tst_BMMainButton::imageWithColorRecoloursAndDrawsAtScale()
{
    BMMainButton button("Stop");
    button.setStyle(0);
    button.resize(120, 44);
    const QColor green = named("fixed_action_bar_green");
    const QImage image = button.imageWithColor(green);
    QCOMPARE(button.backgroundColor(), green);
    QCOMPARE(image.size(), QSize(120, 44) * image.devicePixelRatio());
    // The middle of the left edge is fill, not title.
    QCOMPARE(image.pixelColor(QPoint(6, 22) * image.devicePixelRatio()).rgb(), green.rgb());
}

QTEST_MAIN(tst_BMMainButton)
#include "tst_BMMainButton.moc"
