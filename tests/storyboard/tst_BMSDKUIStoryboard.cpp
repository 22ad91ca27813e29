#include <Brightmere/platform/views/Storyboard.h>
#include <Brightmere/storyboard/BMSDKUIStoryboard.h>

#include <QTest>

// Where each segue leads is checked by following it on the real screens (the
// test screen's history, the saved list, the demo's walkthrough through its
// menu); here, the storyboard the kit fills when given none.
class tst_BMSDKUIStoryboard : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void theSharedStoryboardByDefault()
    {
        BMSDKUIStoryboard::registerSegues();
        QVERIFY(Brightmere::Storyboard::main()->hasSegue("showSavedSpotsSegue"));
    }
};

QTEST_MAIN(tst_BMSDKUIStoryboard)
#include "tst_BMSDKUIStoryboard.moc"
