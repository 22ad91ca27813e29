#include "WifiScanHarness.h"

#include "core/BMSimulatedNetwork.h"
#include "i18n/BMI18NManager.h"
#include "platform/foundation/Clock.h"
#include "platform/views/BarButtonItem.h"
#include "platform/views/Storyboard.h"
#include "popups/FZLabelOptionsPopup.h"
#include "popups/FZOptionsPopup.h"
#include "popups/FZTextViewOptionsPopup.h"
#include "screens/results/FZSavedSpotsViewController.h"
#include "storyboard/BMSDKUIStoryboard.h"

#include <QFile>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>


// Saving the run from the test screen: the history menu, the title prompt,
// the blank-title and overwrite popups, and the way to the saved list.
class tst_BMWifiScanVCSaveRun : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init()
    {
        m_h = std::make_unique<WifiScanHarness>(QList<double>{10.0, 30.0});
        BMSDKUIStoryboard::registerSegues(&m_board);
        m_h->screen->setStoryboard(&m_board);
        BMSimulatedNetwork::shared().setNetwork("HomeNet", "aa:bb:cc:dd:ee:ff");
    }
    void cleanup()
    {
        m_h.reset();
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    }

    void historyMenu_data()
    {
        QTest::addColumn<int>("spots");
        QTest::addColumn<int>("choice"); // -1: no menu expected
        QTest::addColumn<QString>("outcome");
        QTest::newRow("no spots: straight to the list") << 0 << -1 << "list";
        QTest::newRow("save") << 2 << 1 << "prompt";
        QTest::newRow("view saved list") << 2 << 2 << "list";
        QTest::newRow("cancel") << 2 << 3 << "nothing";
    }

    void historyMenu()
    {
        QFETCH(int, spots);
        QFETCH(int, choice);
        QFETCH(QString, outcome);
        recordSpots(spots);
        m_h->screen->historyButton()->trigger();
        FZOptionsPopup *menu = shownPopup<FZOptionsPopup>();
        QCOMPARE(menu != nullptr, choice >= 0);
        if (menu) {
            QCOMPARE(titleOf(menu), BMI18NManager::stringForCode("fairzones_historical_results_title"));
            choose(menu, choice);
        }
        QCOMPARE(listOnTop() != nullptr, outcome == "list");
        QCOMPARE(m_h->screen->saveFlow()->saveCurrentSpotAlert() != nullptr, outcome == "prompt");
        if (FZSavedSpotsViewController *list = listOnTop())
            QCOMPARE(list->editSpotsSetSetterObject(), m_h->screen); // handed over for continuing a set
    }

    void saveTitle_data()
    {
        QTest::addColumn<QString>("typed");
        QTest::addColumn<QString>("outcome");
        QTest::addColumn<QStringList>("stored");
        QTest::newRow("blanks around are trimmed") << "  Ground floor \t" << "list"
                                                   << QStringList{"Ground floor", "Upstairs"};
        QTest::newRow("only blanks count as empty") << "   " << "nil" << QStringList{"Upstairs"};
        QTest::newRow("taken title asks first") << "Upstairs" << "exists" << QStringList{"Upstairs"};
        QTest::newRow("taken once trimmed asks first") << " Upstairs  " << "exists" << QStringList{"Upstairs"};
    }

    void saveTitle()
    {
        QFETCH(QString, typed);
        QFETCH(QString, outcome);
        QFETCH(QStringList, stored);
        storeUpstairs();
        recordSpots(2);
        openPrompt();
        QCOMPARE(m_h->screen->spotNameTextField()->text(), QString()); // a new run proposes nothing
        QCOMPARE(m_h->screen->spotNameTextField()->placeholderText(),
                 BMI18NManager::stringForCode("fairzones_historical_results_save_alert_title_placeholder"));
        QCOMPARE(m_h->nav->focusWidget(), m_h->screen->spotNameTextField()); // the keyboard opens at once
        typeAndEnter(typed);

        QCOMPARE(storedNames(), stored);
        QCOMPARE(listOnTop() != nullptr, outcome == "list");
        QCOMPARE(shownPopup<FZLabelOptionsPopup>() != nullptr, outcome == "nil");
        if (outcome == "exists") {
            FZOptionsPopup *ask = shownPopup<FZOptionsPopup>();
            QVERIFY(ask);
            QCOMPARE(titleOf(ask), "'Upstairs' " + BMI18NManager::stringForCode(
                                                      "fairzones_historical_result_save_already_exist_title"));
        }
        // Only a newly taken title becomes the run's name.
        QCOMPARE(m_h->screen->session()->spotsSetName(), outcome == "list" ? QString("Ground floor") : QString());
    }

    void savedSetHoldsTheRun()
    {
        recordSpots(2);
        save("Ground floor");
        const FZHistoricalResultSpotsSet::Ptr set = FZHistoricalResultSpotsSet::spotsSetWithName("Ground floor");
        QVERIFY(set);
        QCOMPARE(set->ssid(), QString("HomeNet"));
        QCOMPARE(set->date().toSecsSinceEpoch(),
                 qint64(m_h->clock.now() + Brightmere::Clock::kReferenceDateUnixSeconds));
        QStringList labels;
        for (const auto &spot : set->spots())
            labels << spot->label();
        QCOMPARE(labels, m_h->labels()); // newest first, as listed
        QCOMPARE(m_h->screen->session()->recordedSpeeds().size(), 2); // the run stays
    }

    void overwriteConfirmation_data()
    {
        QTest::addColumn<bool>("editing"); // the run is "Upstairs" loaded for editing
        QTest::addColumn<int>("choice");
        QTest::addColumn<QString>("prompted"); // the prompt's text after the choice; none: no prompt
        QTest::addColumn<int>("storedSpots");
        QTest::addColumn<QString>("nameAfter");
        QTest::newRow("cancel, new run: back to an empty prompt") << false << 1 << "" << 1 << "";
        QTest::newRow("confirm, new run: replaced, name unchanged") << false << 2 << QString() << 3 << "";
        QTest::newRow("cancel, edited set: back to its own title") << true << 1 << "Upstairs" << 1 << "Upstairs";
        QTest::newRow("confirm, edited set: replaced") << true << 2 << QString() << 3 << "Upstairs";
    }

    void overwriteConfirmation()
    {
        QFETCH(bool, editing);
        QFETCH(int, choice);
        QFETCH(QString, prompted);
        QFETCH(int, storedSpots);
        QFETCH(QString, nameAfter);
        storeUpstairs();
        if (editing) {
            m_h->screen->setSpotsSetToEdit(FZHistoricalResultSpotsSet::spotsSetWithName("Upstairs"));
            m_h->run("hide,show,start,results:1,record,results:1,record"); // one spot more, three in all
        } else {
            m_h->start();
            m_h->run("results:1,record,results:1,record,results:1,record");
        }
        openPrompt();
        // An edited set proposes its own title, selected: typing replaces it.
        QCOMPARE(m_h->screen->spotNameTextField()->text(), editing ? QString("Upstairs") : QString());
        typeAndEnter("Upstairs");
        choose(shownPopup<FZOptionsPopup>(), choice);

        QCOMPARE(FZHistoricalResultSpotsSet::spotsSetWithName("Upstairs")->spotsCount(), storedSpots);
        QCOMPARE(m_h->screen->session()->spotsSetName(), nameAfter);
        QCOMPARE(listOnTop() != nullptr, prompted.isNull());
        if (!prompted.isNull()) {
            QVERIFY(m_h->screen->saveFlow()->saveCurrentSpotAlert());
            QCOMPARE(m_h->screen->spotNameTextField()->text(), prompted);
            QCOMPARE(m_h->screen->spotNameTextField()->selectedText(), prompted);
        }
    }

private:
    template<typename T>
    T *shownPopup() const
    {
        QCoreApplication::processEvents();
        for (T *popup : m_h->nav->findChildren<T *>()) {
            if (popup->isVisible() && popup->metaObject() == &T::staticMetaObject)
                return popup;
        }
        return nullptr;
    }
    static QString titleOf(FZOptionsPopup *popup)
    {
        auto *title = popup->popupContainerView()->findChild<QLabel *>("popupTitle");
        return title ? title->text() : QString();
    }
    static void choose(FZOptionsPopup *popup, int index)
    {
        QVERIFY(popup);
        for (QPushButton *button : popup->optionButtons()) {
            if (FZOptionsPopup::tagOf(button) == index) {
                QTest::mouseClick(button, Qt::LeftButton);
                QCoreApplication::processEvents();
                return;
            }
        }
        QFAIL("no such option");
    }
    FZSavedSpotsViewController *listOnTop() const
    {
        return qobject_cast<FZSavedSpotsViewController *>(m_h->nav->topViewController());
    }
    void recordSpots(int count)
    {
        if (count == 0)
            return;
        m_h->start();
        for (int i = 0; i < count; ++i)
            m_h->run("results:1,record");
    }
    // The bar's history control, then "save" in its menu.
    void openPrompt()
    {
        m_h->screen->historyButton()->trigger();
        choose(shownPopup<FZOptionsPopup>(), 1);
        QVERIFY(m_h->screen->saveFlow()->saveCurrentSpotAlert());
    }
    // Typed into the window's focus widget (the field), then Enter.
    void typeAndEnter(const QString &text)
    {
        QWidget *field = m_h->nav->focusWidget();
        QCOMPARE(field, m_h->screen->spotNameTextField());
        QTest::keyClicks(field, text);
        QTest::keyClick(field, Qt::Key_Return);
        QCoreApplication::processEvents();
    }
    void save(const QString &title)
    {
        openPrompt();
        typeAndEnter(title);
    }
    static void storeUpstairs()
    {
        auto spot = WifiTestResult::create(12.0);
        spot->setLabel("Landing");
        FZHistoricalResultSpotsSet::saveSetWithName("Upstairs", "HomeNet", QDateTime::currentDateTimeUtc(), {spot});
    }
    static QStringList storedNames()
    {
        QStringList names;
        for (const auto &set : FZHistoricalResultSpotsSet::allSpotsSets())
            names << set->name();
        names.sort();
        return names;
    }

    std::unique_ptr<WifiScanHarness> m_h;
    Brightmere::Storyboard m_board;
};

QTEST_MAIN(tst_BMWifiScanVCSaveRun)
#include "tst_BMWifiScanVCSaveRun.moc"
