#include "LogCapture.h"
#include "TestEnvironment.h"
#include "core/BMSDKGeneralUtilities.h"
#include "i18n/BMI18NManager.h"
#include "session/BMFairzoneTutorialPageView.h"
#include "ui/BrightmereColor.h"

#include <QLabel>
#include <QTest>

class tst_BMFairzoneTutorialPageView : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();
    void pictureOnTopTextUnderItOverlapping_data();
    void pictureOnTopTextUnderItOverlapping();

private:
    std::unique_ptr<TestEnvironment> m_env;
};

void tst_BMFairzoneTutorialPageView::init()
{
    m_env = std::make_unique<TestEnvironment>();
    BMSDKGeneralUtilities::setOSLanguageOverride(QStringLiteral("en"));
    BMI18NManager::resetSharedInstanceForTesting();
}

void tst_BMFairzoneTutorialPageView::cleanup()
{
    BMSDKGeneralUtilities::setOSLanguageOverride(QString());
    BMI18NManager::resetSharedInstanceForTesting();
    m_env.reset();
}

void tst_BMFairzoneTutorialPageView::pictureOnTopTextUnderItOverlapping_data()
{
    QTest::addColumn<QString>("image");
    QTest::addColumn<QSize>("page");
    QTest::addColumn<QRect>("picture");
    QTest::addColumn<QRect>("text");
    // The illustrations are 8 by 5: 75 high is 120 wide.
    QTest::newRow("phone page") << "fairzones_scroll_1" << QSize(375, 160) << QRect(127, 10, 120, 75)
                                << QRect(5, 65, 365, 90);
    QTest::newRow("narrow page") << "fairzones_scroll_4" << QSize(100, 150) << QRect(0, 10, 100, 62)
                                 << QRect(5, 52, 90, 93);
    QTest::newRow("a square button image") << "buttonStart" << QSize(375, 160) << QRect(150, 10, 75, 75)
                                           << QRect(5, 65, 365, 90);
    QTest::newRow("no image") << "" << QSize(375, 160) << QRect(187, 10, 0, 0) << QRect(5, -10, 365, 165);
}

void tst_BMFairzoneTutorialPageView::pictureOnTopTextUnderItOverlapping()
{
    QFETCH(QString, image);
    QFETCH(QSize, page);
    QFETCH(QRect, picture);
    QFETCH(QRect, text);
    LogCapture log;
    BMFairzoneTutorialPageView view(QRect(QPoint(40, 0), page));
    QCOMPARE(view.geometry(), QRect(QPoint(40, 0), page));
    view.configureWithImageName(image, QStringLiteral("Hold Record"));
    view.show();
    QCOMPARE(view.imgView()->geometry(), picture);
    QCOMPARE(view.lblText()->geometry(), text);
    QCOMPARE(view.imgView()->pixmap().isNull(), image.isEmpty());
    QCOMPARE(view.lblText()->palette().color(QPalette::WindowText), Brightmere::Color::named("medium_gray"));
    QVERIFY(!log.contains("no image named")); // an empty name is no image, quietly
    // A page made at another size lays itself out again.
    view.resize(page.width() + 40, page.height());
    QCOMPARE(view.lblText()->width(), text.width() + 40);
    QVERIFY(qAbs(2 * view.imgView()->x() + view.imgView()->width() - view.width()) <= 1);
}

QTEST_MAIN(tst_BMFairzoneTutorialPageView)
#include "tst_BMFairzoneTutorialPageView.moc"
