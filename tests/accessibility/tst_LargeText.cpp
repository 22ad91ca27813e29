#include "DemoOptions.h"
#include "DemoWalkthrough.h"
#include "DemoWindow.h"
#include "LayoutChecks.h"
#include "storyboard/BMSDKUIStoryboard.h"
#include "ui/BrightmereView.h"

#include <QApplication>
#include <QFontDatabase>
#include <QTemporaryDir>
#include <QTest>

// The demo's tour with the application font 1.5 times the system's, as a
// user who asked for larger text has it, in the phone-sized window: at each
// screen state the kit's text has grown and still fits, nothing over another.
class tst_LargeText : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void screenFits_data();
    void screenFits();

private:
    static constexpr qreal kScale = 1.5;
    QHash<QString, QStringList> m_faults;
};

void tst_LargeText::initTestCase()
{
    QFont font = QFontDatabase::systemFont(QFontDatabase::GeneralFont);
    font.setPointSizeF(font.pointSizeF() * kScale);
    QApplication::setFont(font);
    QCOMPARE(Brightmere::View::textScale(), kScale);
    QCOMPARE(Brightmere::View::fontOfSize(20).pixelSize(), 30);
    

    QTemporaryDir folder;
    QString log;
    QTextStream out(&log);
    DemoWalkthrough walkthrough(folder.path(), out);
    QVERIFY(walkthrough.isReady());
    BMSDKUIStoryboard::registerSegues();
    DemoWindow window{DemoOptions()};
    QCOMPARE(window.width(), 375);
    walkthrough.setPictureHook([this](QWidget *shown, const QString &picture) {
        m_faults.insert(picture, LayoutChecks::faults(shown, LayoutChecks::Overlaps::Texts));
    });
    QVERIFY2(walkthrough.run(&window, DemoOptions()), qPrintable(log));
}

void tst_LargeText::screenFits_data()
{
    QTest::addColumn<QString>("state");
    const QList<std::pair<const char *, const char *>> states{
        {"test screen, tutorial", "01-tutorial"},
        {"tester preparing", "02-preparing"},
        {"test running", "03-testing"},
        {"a hold recording", "recording"},
        {"spots recorded", "04-four-spots"},
        {"a spot renamed", "05-rename"},
        {"replace popup", "06-re-record"},
        {"a spot replaced", "07-replaced"},
        {"swiped row, delete popup", "swiped-row"},
        {"save prompt", "09-save-ground-floor"},
        {"saved list", "11-saved-list"},
        {"picking two sets to compare", "compare-picking"},
        {"spots set, sorted", "12-set-sorted"},
        {"saved-file alert", "13-set-csv"},
        {"compare grid", "14-compare"},
        {"share options without mail", "17-share-without-mail"},
        {"restored alert", "19-restore"},
        {"host menu over the test screen", "21-host-menu"},
        {"confirmation settings", "22-confirmation-settings"},
        {"spot name settings", "23-spot-name-settings"},
        {"test screen in Spanish", "24-spanish"},
    };
    for (const auto &[name, state] : states)
        QTest::newRow(name) << QString::fromLatin1(state);
}

void tst_LargeText::screenFits()
{
    QFETCH(QString, state);
    QVERIFY2(m_faults.contains(state), "the tour did not reach this state");
    QCOMPARE(m_faults.value(state).join(QStringLiteral("; ")), QString());
}

QTEST_MAIN(tst_LargeText)
#include "tst_LargeText.moc"
