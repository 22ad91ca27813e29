#include "DemoOptions.h"
#include "DemoWalkthrough.h"
#include "DemoWindow.h"
#include "LayoutChecks.h"
#include "storyboard/BMSDKUIStoryboard.h"

#include <QApplication>
#include <QFontDatabase>
#include <QTemporaryDir>
#include <QTest>

// The demo's tour with the application font 1.5 times the system's, as a
// user who asked for larger text has it, in the phone-sized window: at each
// screen state (a picture of the tour, or a moment it hands over) the kit's
// text has grown and still fits, no text over another.
class tst_LargeText : public QObject
{
    Q_OBJECT
    QHash<QString, QStringList> m_faults;

private slots:
    void initTestCase()
    {
        QFont font = QFontDatabase::systemFont(QFontDatabase::GeneralFont);
        font.setPointSizeF(font.pointSizeF() * 1.5);
        QApplication::setFont(font);
        QCOMPARE(Brightmere::View::fontOfSize(20).pixelSize(), 30);
        QTemporaryDir folder;
        QTextStream out(stderr); // the tour's progress, a line a step
        DemoWalkthrough walkthrough(folder.path(), out);
        BMSDKUIStoryboard::registerSegues();
        DemoWindow window{DemoOptions()}; // 375 wide, as a phone
        walkthrough.setPictureHook([this](QWidget *shown, const QString &state) {
            m_faults.insert(state, LayoutChecks::faults(shown, LayoutChecks::Texts));
        });
        QVERIFY(walkthrough.run(&window, DemoOptions()));
    }
    void screenFits_data()
    {
        QTest::addColumn<QString>("state");
        for (const char *state : {"01-tutorial", "02-preparing", "03-testing", "recording", "04-four-spots", "05-rename",
                                  "06-re-record", "07-replaced", "swiped-row", "09-save-ground-floor", "11-saved-list",
                                  "compare-picking", "12-set-sorted", "13-set-csv", "14-compare",
                                  "17-share-without-mail", "19-restore", "21-host-menu", "22-confirmation-settings",
                                  "23-spot-name-settings", "24-spanish"})
            QTest::newRow(state) << QString::fromLatin1(state);
    }
    void screenFits()
    {
        QFETCH(QString, state);
        QCOMPARE(m_faults.value(state, {"the tour did not reach this state"}).join(QStringLiteral("; ")), QString());
    }
};

QTEST_MAIN(tst_LargeText)
#include "tst_LargeText.moc"
