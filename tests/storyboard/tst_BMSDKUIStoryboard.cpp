#include "platform/views/Storyboard.h"
#include "screens/results/FZCompareSpotsSetsViewController.h"
#include "screens/results/FZSavedSpotsViewController.h"
#include "screens/results/FZSpotsSetViewController.h"
#include "screens/settings/FZMiscellaneousSettingsViewController.h"
#include "screens/settings/FZSpotNamesSettingsViewController.h"
#include "storyboard/BMSDKUIStoryboard.h"

#include <QTest>

#include <memory>

// Each identifier a screen performs leads to the screen that expects it.
class tst_BMSDKUIStoryboard : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void destinations_data()
    {
        QTest::addColumn<QString>("identifier");
        QTest::addColumn<QString>("screen");
        QTest::newRow("test screen to the list") << "showSavedSpotsSegue" << "FZSavedSpotsViewController";
        QTest::newRow("list to one set") << QString(FZSavedSpotsViewController::kViewSpotsSegue)
                                         << "FZSpotsSetViewController";
        QTest::newRow("list to the comparison") << QString(FZSavedSpotsViewController::kCompareSpotsSegue)
                                                << "FZCompareSpotsSetsViewController";
        QTest::newRow("confirmations settings") << "showMiscellaneousSettingsSegue"
                                                << "FZMiscellaneousSettingsViewController";
        QTest::newRow("spot names settings") << "showSpotNamesSettingsSegue" << "FZSpotNamesSettingsViewController";
    }

    void destinations()
    {
        QFETCH(QString, identifier);
        QFETCH(QString, screen);
        Brightmere::Storyboard board;
        BMSDKUIStoryboard::registerSegues(&board);
        BMSDKUIStoryboard::registerSegues(&board); // a second call changes nothing
        QCOMPARE(board.segueIdentifiers().size(), 5);
        std::unique_ptr<Brightmere::ViewController> destination(board.instantiateDestination(identifier));
        QVERIFY(destination);
        QCOMPARE(QString(destination->metaObject()->className()), screen);
    }

    void theSharedStoryboardByDefault()
    {
        BMSDKUIStoryboard::registerSegues();
        QVERIFY(Brightmere::Storyboard::main()->hasSegue("showSavedSpotsSegue"));
    }
};

QTEST_MAIN(tst_BMSDKUIStoryboard)
#include "tst_BMSDKUIStoryboard.moc"
