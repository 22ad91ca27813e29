#include "TestEnvironment.h"
#include "i18n/BMI18NManager.h"
#include "platform/views/Alert.h"
#include "ui/BMSDKUIAlertView.h"

#include <QTest>

#include <memory>

using Brightmere::Alert;
using Brightmere::AlertAction;

class tst_BMSDKUIAlertView : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init() { m_env = std::make_unique<TestEnvironment>(); }
    void cleanup() { m_env.reset(); }
    void buttonsInOrderAndWhatEachRuns_data();
    void buttonsInOrderAndWhatEachRuns();

private:
    std::unique_ptr<TestEnvironment> m_env;
};

void tst_BMSDKUIAlertView::buttonsInOrderAndWhatEachRuns_data()
{
    QTest::addColumn<QString>("builder");
    QTest::addColumn<bool>("withHandler");
    QTest::addColumn<QStringList>("keys");
    QTest::addColumn<int>("runsHandler"); // the button whose press calls the handler, -1 none
    QTest::newRow("cancel builder without handler: ok only") << "cancel" << false << QStringList{"ok"} << -1;
    QTest::newRow("cancel builder: ok closes, cancel calls")
        << "cancel" << true << QStringList{"ok", "cancel"} << 1;
    QTest::newRow("ok builder: ok calls") << "ok" << true << QStringList{"ok"} << 0;
    QTest::newRow("ok builder without handler") << "ok" << false << QStringList{"ok"} << -1;
    QTest::newRow("actions in list order") << "actions" << true << QStringList{"fairzones_replace_confirm", "cancel"}
                                           << 1;
    QTest::newRow("no actions: no buttons") << "actions" << false << QStringList{} << -1;
}

void tst_BMSDKUIAlertView::buttonsInOrderAndWhatEachRuns()
{
    QFETCH(QString, builder);
    QFETCH(bool, withHandler);
    QFETCH(QStringList, keys);
    QFETCH(int, runsHandler);
    int calls = 0;
    BMSDKUIAlertView::Handler handler;
    if (withHandler)
        handler = [&calls] { ++calls; };

    QStringList expected;
    for (const QString &key : keys)
        expected.append(BMI18NManager::stringForCode(key));
    Alert *built = nullptr;
    if (builder == "cancel") {
        built = BMSDKUIAlertView::alertControllerWithTitleOnCancel("Title", "Message", handler);
    } else if (builder == "ok") {
        built = BMSDKUIAlertView::alertControllerWithTitleOnOK("Title", "Message", handler);
    } else {
        QList<AlertAction> actions;
        if (withHandler) {
            actions.append(AlertAction(expected.at(0), AlertAction::Style::Default));
            actions.append(AlertAction(expected.at(1), AlertAction::Style::Default, handler));
        }
        built = BMSDKUIAlertView::alertControllerWithTitle("Title", "Message", actions);
    }
    std::unique_ptr<Alert> alert(built);
    QCOMPARE(alert->title(), QString("Title"));
    QCOMPARE(alert->message(), QString("Message"));
    QCOMPARE(alert->buttonTitles(), expected);
    // No button takes the platform's cancel style, not even "cancel".
    for (const AlertAction &action : alert->actions())
        QCOMPARE(action.style(), AlertAction::Style::Default);
    QVERIFY(!alert->isPresented()); // built, not shown

    for (int i = 0; i < expected.size(); ++i) {
        if (const AlertAction::Handler h = alert->actions().at(i).handler())
            h();
        QCOMPARE(calls, i >= runsHandler && runsHandler >= 0 ? 1 : 0);
    }
}

QTEST_MAIN(tst_BMSDKUIAlertView)
#include "tst_BMSDKUIAlertView.moc"
