#include "LayoutChecks.h"
#include "TestEnvironment.h"
#include <Brightmere/i18n/BMI18NManager.h>
#include <Brightmere/model/BMSDKUISettings.h>
#include <Brightmere/platform/views/KeyboardNotifications.h>
#include <Brightmere/platform/views/MailComposer.h>
#include <Brightmere/platform/views/NavigationBar.h>
#include <Brightmere/platform/views/NavigationController.h>
#include <Brightmere/screens/settings/FZSpotNamesSettingsViewController.h>

#include <QDir>
#include <QLabel>
#include <QPlainTextEdit>
#include <QPointer>
#include <QRegularExpression>
#include <QTest>
#include <QToolButton>
#include <QUrlQuery>

#include <memory>

using namespace Brightmere;

namespace {

QString code(const char *key)
{
    return BMI18NManager::stringForCode(QString::fromLatin1(key));
}

} // namespace

// The spot names text: view and edit modes, Cancel and Save, the Return
// rewrite, the keyboard inset and sharing by mail.
class tst_FZSpotNamesSettingsViewController : public QObject
{
    Q_OBJECT

    std::unique_ptr<TestEnvironment> m_env;
    std::unique_ptr<NavigationController> m_navigation;

    // Pushed over a root screen, with these names remembered.
    FZSpotNamesSettingsViewController *open(const QStringList &names)
    {
        BMSDKUISettings::sharedInstance().savedSpots(); // the presets' one-time merge
        BMSDKUISettings::sharedInstance().setSavedSpots(names);
        auto *root = new BMSDKUIBaseViewController;
        root->setTitle("Settings");
        m_navigation = std::make_unique<NavigationController>(root);
        m_navigation->resize(375, 667);
        m_navigation->show();
        auto *screen = new FZSpotNamesSettingsViewController;
        m_navigation->pushViewController(screen, false);
        return screen;
    }

    // Saved as a picture; the controls from left to right, "<" for back.
    QStringList look(FZSpotNamesSettingsViewController *screen, const QString &name)
    {
        QCoreApplication::processEvents();
        m_navigation->grab().save(QDir(QCoreApplication::applicationDirPath()).filePath(name + ".png"));
        NavigationBar *bar = m_navigation->navigationBar();
        QStringList seen{bar->titleLabel()->text()};
        if (bar->isBackButtonShown())
            seen << "<";
        for (QToolButton *button : {screen->leftButton(), screen->rightButton()})
            seen << button->text() + (button->icon().isNull() ? "" : "+icon");
        return seen;
    }

private Q_SLOTS:
    void init() { m_env = std::make_unique<TestEnvironment>(); }

    void cleanup()
    {
        MailComposer::setOpener({});
        m_navigation.reset();
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
        m_env.reset();
    }

    void viewAndEditModes_data()
    {
        QTest::addColumn<int>("width");
        QTest::addColumn<bool>("editing");
        for (int width : {320, 375, 800, 1280}) {
            QTest::newRow(QByteArray::number(width) + " wide") << width << false;
            QTest::newRow(QByteArray::number(width) + " wide, editing") << width << true;
        }
    }

    // What each mode offers, on windows from 320 to 1280 wide: nothing cut
    // or covered, and on a wide window a readable column in the middle.
    void viewAndEditModes()
    {
        QFETCH(int, width);
        QFETCH(bool, editing);
        auto *screen = open({"Office", "Kitchen", "Hall"});
        m_navigation->resize(width, 667);
        QCOMPARE(screen->spotNamesTextView()->toPlainText(), QString("Office\nKitchen\nHall"));
        if (editing)
            QTest::mouseClick(screen->leftButton(), Qt::LeftButton);
        QCOMPARE(screen->spotNamesTextView()->isReadOnly(), !editing);
        const QString title = code("fairzones_settings_spot_names");
        const QStringList controls =
            editing ? QStringList{title, code("cancel"), code("fairzones_spot_names_settings_save")}
                    : QStringList{title, "<", code("fairzones_spot_names_settings_edit") + "+icon",
                                  code("fairzones_spot_names_settings_share") + "+icon"};
        QCOMPARE(look(screen, QString("settings-spot-names-%1-%2").arg(editing ? "edit" : "view").arg(width)), controls);
        QCOMPARE(LayoutChecks::faults(m_navigation.get()).join("; "), QString());
        const QRect column = screen->findChild<QWidget *>("spotNamesColumn")->geometry();
        QCOMPARE(column.width(), std::min(width, 600));
        QVERIFY(qAbs(column.center().x() - screen->rect().center().x()) <= 1);
    }

    void cancelAndSave_data()
    {
        QTest::addColumn<QStringList>("rounds"); // each: Edit, type the text, then "save:" or "cancel:"
        QTest::addColumn<QString>("shown");
        QTest::addColumn<QStringList>("stored");
        QTest::newRow("cancel restores the text of Edit") << QStringList{"cancel:Garage\nAttic"}
                                                          << "Office\nKitchen" << QStringList{"Elsewhere"};
        QTest::newRow("cancel after a save restores the saved text")
            << QStringList{"save:Hall\nAttic", "cancel:Porch"} << "Hall\nAttic" << QStringList{"Hall", "Attic"};
        QTest::newRow("unchanged save writes nothing") << QStringList{"save:Office\nKitchen"} << "Office\nKitchen"
                                                       << QStringList{"Elsewhere"};
        QTest::newRow("save drops empty names and repeats, keeps blanks")
            << QStringList{"save:Hall\n\n Hall \nHall\n"} << "Hall\n Hall " << QStringList{"Hall", " Hall "};
        QTest::newRow("back to the opening text is not stored")
            << QStringList{"save:Hall", "save:Office\nKitchen"} << "Hall" << QStringList{"Hall"};
    }

    void cancelAndSave()
    {
        QFETCH(QStringList, rounds);
        QFETCH(QString, shown);
        QFETCH(QStringList, stored);
        auto *screen = open({"Office", "Kitchen"});
        // Changed behind the screen's back: a save that stores nothing leaves it.
        BMSDKUISettings::sharedInstance().setSavedSpots({"Elsewhere"});
        for (const QString &round : rounds) {
            screen->leftButton()->click(); // Edit
            screen->spotNamesTextView()->setPlainText(round.section(':', 1));
            (round.startsWith("save") ? screen->rightButton() : screen->leftButton())->click();
            QVERIFY(!screen->isEditing() && !screen->stringBeforeEdit());
        }
        QCOMPARE(screen->spotNamesTextView()->toPlainText(), shown);
        QCOMPARE(BMSDKUISettings::sharedInstance().savedSpots(), stored);
    }

    void returnRewritesTheText_data()
    {
        QTest::addColumn<QString>("before"); // "|" marks the cursor, "[...]" a selection
        QTest::addColumn<QString>("after");
        QTest::newRow("end of the last line") << "Kitchen\nHall|" << "Kitchen\nHall\n|\n";
        QTest::newRow("blank and white-space lines above and below go")
            << "Kitchen\n\n   \nHall|\n\t\n\nGarage\n " << "Kitchen\nHall\n|\nGarage\n";
        QTest::newRow("inner blanks kept as typed") << "  Living  Room \nBed|room 1"
                                                    << "  Living  Room \nBed\n|\nroom 1\n";
        QTest::newRow("empty text") << "|" << "|\n";
        QTest::newRow("a selection is kept after the cursor") << "Kit[ch]en" << "Kit\n|\nchen\n";
    }

    void returnRewritesTheText()
    {
        QFETCH(QString, before);
        QFETCH(QString, after);
        auto *screen = open({});
        screen->leftButton()->click();
        QPlainTextEdit *view = screen->spotNamesTextView();
        QString text = before;
        const int start = int(text.indexOf(QRegularExpression("[|\\[]")));
        const int end = text.contains(']') ? int(text.indexOf(']')) - 1 : start;
        text.remove(QRegularExpression("[|\\[\\]]"));
        view->setPlainText(text);
        QTextCursor cursor = view->textCursor();
        cursor.setPosition(start);
        cursor.setPosition(end, QTextCursor::KeepAnchor);
        view->setTextCursor(cursor);

        QTest::keyClick(view, Qt::Key_Return);
        QCOMPARE(view->toPlainText().insert(view->textCursor().position(), '|'), after);
        // Typing goes on at the new line; undo takes it and the rewrite back.
        QTest::keyClicks(view, "Attic");
        QCOMPARE(view->toPlainText(), QString(after).replace('|', "Attic"));
        view->undo();
        view->undo();
        QCOMPARE(view->toPlainText(), text);
    }

    void keyboardInsetFollowsTheKeyboard()
    {
        QPointer<FZSpotNamesSettingsViewController> screen = open({"Hall"});
        KeyboardNotifications::postKeyboardDidShow(QRect(0, 407, 375, 260));
        QCOMPARE(screen->contentInset(), QMargins(0, 0, 0, 260));
        QCoreApplication::processEvents();
        const int shownHeight = screen->spotNamesTextView()->viewport()->height();
        KeyboardNotifications::postKeyboardWillHide(QRect(0, 667, 375, 260));
        QCOMPARE(screen->contentInset(), QMargins());
        QCoreApplication::processEvents();
        QCOMPARE(screen->spotNamesTextView()->viewport()->height(), shownHeight + 260);
        // A screen that is gone no longer listens.
        m_navigation->popViewControllerAnimated(false);
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
        QVERIFY(!screen);
        KeyboardNotifications::postKeyboardDidShow(QRect(0, 407, 375, 260));
    }

    void shareByMail_data()
    {
        QTest::addColumn<bool>("canSend");
        QTest::addColumn<int>("opened");
        QTest::newRow("mail program") << true << 1;
        QTest::newRow("no mail program: nothing happens") << false << 0;
    }

    void shareByMail()
    {
        QFETCH(bool, canSend);
        QFETCH(int, opened);
        QList<QUrl> urls;
        MailComposer::setOpener([&](const QUrl &url) {
            urls << url;
            return true;
        });
        auto *screen = open({"Living Room", "Kitchen & Co"});
        screen->setMailAvailability([canSend] { return canSend; });
        screen->rightButton()->click(); // Share
        QCOMPARE(urls.size(), opened);
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
        QVERIFY(!screen->presentedMailComposer() && screen->findChildren<MailComposer *>().isEmpty());
        if (opened) {
            const QUrlQuery query(urls.first());
            QCOMPARE(urls.first().path(), QString()); // no recipient
            QCOMPARE(query.queryItems().size(), 1);   // no subject
            QCOMPARE(query.queryItemValue("body", QUrl::FullyDecoded), QString("Living Room\r\nKitchen & Co"));
        }
    }
};

QTEST_MAIN(tst_FZSpotNamesSettingsViewController)
#include "tst_FZSpotNamesSettingsViewController.moc"
