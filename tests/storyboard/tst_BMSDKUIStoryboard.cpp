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
    void destinations()
    {
        Brightmere::Storyboard board;
        BMSDKUIStoryboard::registerSegues(&board);
        BMSDKUIStoryboard::registerSegues(&board); // a second call changes nothing
        QCOMPARE(board.segueIdentifiers().size(), 5);
        const QList<std::pair<QString, QString>> segues{
            {"showSavedSpotsSegue", "FZSavedSpotsViewController"}, // the test screen to the list
            {FZSavedSpotsViewController::kViewSpotsSegue, "FZSpotsSetViewController"},
            {FZSavedSpotsViewController::kCompareSpotsSegue, "FZCompareSpotsSetsViewController"},
            {"showMiscellaneousSettingsSegue", "FZMiscellaneousSettingsViewController"},
            {"showSpotNamesSettingsSegue", "FZSpotNamesSettingsViewController"}};
        for (const auto &[identifier, screen] : segues) {
            std::unique_ptr<Brightmere::ViewController> destination(board.instantiateDestination(identifier));
            QVERIFY2(destination, qPrintable(identifier));
            QCOMPARE(QString(destination->metaObject()->className()), screen);
        }
    }

    void theSharedStoryboardByDefault()
    {
        BMSDKUIStoryboard::registerSegues();
        QVERIFY(Brightmere::Storyboard::main()->hasSegue("showSavedSpotsSegue"));
    }
};

QTEST_MAIN(tst_BMSDKUIStoryboard)
#include "tst_BMSDKUIStoryboard.moc"
