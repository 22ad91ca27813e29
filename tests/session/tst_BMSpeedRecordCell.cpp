#include "LogCapture.h"
#include "PointerInput.h"
#include "TestEnvironment.h"
#include "core/BMSDKBackend.h"
#include "core/BMSDKGeneralUtilities.h"
#include "i18n/BMI18NManager.h"
#include "platform/foundation/ManualClock.h"
#include "platform/views/TableView.h"
#include "platform/views/TableViewDataSource.h"
#include "session/BMSpeedRecordCell.h"
#include "session/BMSpeedRecordDelegate.h"
#include "ui/BrightmereColor.h"

#include <QAbstractItemView>
#include <QApplication>
#include <QCompleter>
#include <QLabel>
#include <QLineEdit>
#include <QStringListModel>
#include <QTest>

using namespace Brightmere;
using PointerInput::Kind;

namespace {

WifiTestResult::Ptr spot(const QString &label, double speed, bool average, double duration)
{
    auto result = WifiTestResult::create(speed);
    result->setLabel(label);
    result->setAverage(average);
    result->setDuration(duration);
    return result;
}

// The screen's part: rows from the table's pool, set up for their spot, and
// every call a row makes, in order.
class SpotsScreen : public QObject, public TableViewDataSource, public BMSpeedRecordDelegate
{
public:
    int numberOfRowsInSection(TableView *, int) override { return int(spots.size()); }
    TableViewCell *cellForRowAtIndexPath(TableView *table, const IndexPath &index) override
    {
        auto *row = static_cast<BMSpeedRecordCell *>(
            table->dequeueReusableCellWithIdentifier(BMTableViewCell::cellIdentifier(BMSpeedRecordCell::staticMetaObject)));
        if (!row)
            row = BMTableViewCell::cell<BMSpeedRecordCell>();
        row->setRecordingColor(Color::colorFromHex(QStringLiteral("70BE7B")));
        row->setDelegate(this);
        row->setupWithRecord(spots.at(index.row()), index.row() % 2 == 0);
        return row;
    }
    double heightForRowAtIndexPath(TableView *, const IndexPath &) override { return BMSpeedRecordCell::height(); }
    bool canEditRowAtIndexPath(TableView *, const IndexPath &) override { return true; }

    void didBeginEditingSpeedRecord(BMSpeedRecordCell *) override { calls << "begin"; }
    void didEndEditingSpeedRecord(BMSpeedRecordCell *) override { calls << "end"; }
    void didStartTapReRecordView(BMSpeedRecordCell *) override { calls << "start"; }
    void didFinishTapReRecordView(BMSpeedRecordCell *) override { calls << "finish"; }
    void didCancelTapReRecordView(BMSpeedRecordCell *) override { calls << "cancel"; }
    void didEnterInEditMode(BMSpeedRecordCell *) override { calls << "edit"; }

    WifiTestResult::List spots;
    QStringList calls;
};

} // namespace

class tst_BMSpeedRecordCell : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();
    void showsTheSpotAndForgetsTheLastOne_data();
    void showsTheSpotAndForgetsTheLastOne();
    void holdOnTheControl_data();
    void holdOnTheControl();
    void nameEditingIsReportedWithSuggestions();

private:
    BMSpeedRecordCell *row(int i) const
    {
        return static_cast<BMSpeedRecordCell *>(m_table->cellForRowAtIndexPath(IndexPath(i, 0)));
    }

    std::unique_ptr<TestEnvironment> m_env;
    ManualClock m_clock{1000.0};
    std::unique_ptr<QWidget> m_window;
    TableView *m_table = nullptr;
    SpotsScreen m_screen;
};

void tst_BMSpeedRecordCell::init()
{
    m_env = std::make_unique<TestEnvironment>();
    BMSDKBackend::setClock(&m_clock);
    BMSDKGeneralUtilities::setOSLanguageOverride(QStringLiteral("en"));
    BMI18NManager::resetSharedInstanceForTesting();
    m_screen.calls.clear();
    m_screen.spots = {spot("Kitchen", 48.25, true, 4.2), spot("Living Room", 31.07, false, 0),
                      spot("Spot 3", 12.0, true, 0.4), spot("Bedroom upstairs at the back", 7.94, false, 0),
                      spot("Garden", 0.0, false, 0)};
    m_window = std::make_unique<QWidget>();
    m_window->resize(375, 38 * 5);
    m_table = new TableView(m_window.get());
    m_table->setGeometry(0, 0, 375, 38 * 5);
    m_table->setDataSource(&m_screen);
    m_table->reloadData();
    m_window->show();
    m_window->activateWindow();
    QVERIFY(QTest::qWaitForWindowActive(m_window.get()));
    // The window's first focus lands in a name; each case starts from none.
    if (QWidget *focus = QApplication::focusWidget())
        focus->clearFocus();
    m_screen.calls.clear();
}

void tst_BMSpeedRecordCell::cleanup()
{
    m_window.reset();
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    BMSDKGeneralUtilities::setOSLanguageOverride(QString());
    BMI18NManager::resetSharedInstanceForTesting();
    BMSDKBackend::setClock(nullptr);
    m_env.reset();
}

void tst_BMSpeedRecordCell::showsTheSpotAndForgetsTheLastOne_data()
{
    QTest::addColumn<bool>("average");
    QTest::addColumn<bool>("even");
    QTest::addColumn<double>("speed");
    QTest::addColumn<double>("duration");
    QTest::addColumn<QString>("speedText");
    QTest::addColumn<QString>("note"); // empty: hidden
    QTest::addColumn<QColor>("background");
    const QColor averageBack = Color::named("fz_average_back");
    QTest::newRow("averaged over 0.4 s") << true << true << 12.0 << 0.4 << "12.0" << "Averaged over 1 second"
                                         << averageBack;
    QTest::newRow("averaged over 2.1 s, rounded up") << true << false << 4.35 << 2.1 << "4.3"
                                                     << "Averaged over 3 seconds" << averageBack;
    QTest::newRow("plain, even row") << false << true << 2.79 << 3.0 << "2.7" << "" << Color::system(3);
    QTest::newRow("plain, odd row") << false << false << 0.0 << 0.0 << "0.0" << "" << Color::system(4);
}

void tst_BMSpeedRecordCell::showsTheSpotAndForgetsTheLastOne()
{
    QFETCH(bool, average);
    QFETCH(bool, even);
    QFETCH(double, speed);
    QFETCH(double, duration);
    QFETCH(QString, speedText);
    QFETCH(QString, note);
    QFETCH(QColor, background);
    BMSpeedRecordCell *cell = row(0);
    const QColor nameColor = cell->lblArea()->palette().color(QPalette::Text);
    // A reused row first showed the opposite kind of spot.
    cell->setupWithRecord(spot("Before", 99.9, !average, 7.5), !even);
    cell->setupWithRecord(spot("Hall", speed, average, duration), even);

    QCOMPARE(cell->lblArea()->text(), QStringLiteral("Hall"));
    QCOMPARE(cell->lblSpeed()->text(), speedText);
    QCOMPARE(cell->lblUnit()->text(), QStringLiteral("Mbps"));
    QCOMPARE(cell->lblAverage()->isVisibleTo(cell), !note.isEmpty());
    if (!note.isEmpty())
        QCOMPARE(cell->lblAverage()->text(), note);
    QCOMPARE(cell->viewBg()->palette().color(QPalette::Window), background);
    const QColor text = average ? Color::colorFromHex(QStringLiteral("70BE7B")) : cell->defaultTextColor();
    for (const QLabel *label : {cell->lblSpeed(), cell->lblUnit(), cell->lblAverage()})
        QCOMPARE(label->palette().color(QPalette::WindowText), text);
    QCOMPARE(cell->lblArea()->palette().color(QPalette::Text), nameColor);
}

void tst_BMSpeedRecordCell::holdOnTheControl_data()
{
    QTest::addColumn<Kind>("kind");
    QTest::addColumn<QString>("steps"); // press, wait (past the table's delay), move:x:y, release:x:y
    QTest::addColumn<QStringList>("calls");
    // Points are from the control's left edge, in the middle of the row.
    QTest::newRow("held past the delay, released inside")
        << Kind::Mouse << "press:60:0,wait,release:62:2" << QStringList{"start", "finish"};
    QTest::newRow("a quick click is down and up at once")
        << Kind::Mouse << "press:60:0,release:61:1" << QStringList{"start", "finish"};
    QTest::newRow("held, then dragged off the control")
        << Kind::Mouse << "press:2:0,wait,move:-5:0,release:-5:0" << QStringList{"start", "cancel"};
    QTest::newRow("moved off before the delay: nothing")
        << Kind::Mouse << "press:2:0,move:-5:0,release:-5:0" << QStringList{};
    QTest::newRow("a scroll that begins on it: nothing")
        << Kind::Mouse << "press:60:0,move:60:-20,move:60:-40,release:60:-40" << QStringList{};
    QTest::newRow("a swipe that begins on it: the row's editing only")
        << Kind::Mouse << "press:100:0,move:60:0,move:20:0,release:20:0" << QStringList{"edit"};
    QTest::newRow("a drag to the right: nothing")
        << Kind::Mouse << "press:20:0,move:60:0,move:100:0,release:100:0" << QStringList{};
    QTest::newRow("held, then the list scrolls")
        << Kind::Mouse << "press:60:0,wait,move:60:-40,release:60:-40" << QStringList{"start", "cancel"};
    QTest::newRow("on the name edits it instead") << Kind::Mouse << "press:-100:0,release:-100:0"
                                                  << QStringList{"begin"};
    QTest::newRow("a finger held past the delay")
        << Kind::Touch << "press:60:0,wait,release:62:2" << QStringList{"start", "finish"};
    QTest::newRow("a finger that scrolls") << Kind::Touch << "press:60:0,move:60:-20,move:60:-40,release:60:-40"
                                           << QStringList{};
}

void tst_BMSpeedRecordCell::holdOnTheControl()
{
    QFETCH(Kind, kind);
    QFETCH(QString, steps);
    QFETCH(QStringList, calls);
    BMSpeedRecordCell *cell = row(2);
    QWidget *screen = m_table->viewport();
    const QPoint origin = cell->reRecordView()->mapTo(screen, QPoint(0, 19));
    for (const QString &step : steps.split(',')) {
        const QStringList parts = step.split(':');
        const QPoint at = parts.size() == 3 ? origin + QPoint(parts.at(1).toInt(), parts.at(2).toInt()) : QPoint();
        if (parts.first() == "press")
            PointerInput::press(kind, screen, at);
        else if (parts.first() == "move")
            PointerInput::move(kind, screen, at);
        else if (parts.first() == "release")
            PointerInput::release(kind, screen, at);
        else if (parts.first() == "wait")
            m_clock.advance(TableView::kContentTouchDelaySeconds + 0.01);
    }
    // Nothing left waiting: the delay running out later starts nothing.
    m_clock.advance(1.0);
    QCOMPARE(m_screen.calls, calls);
    QCOMPARE(cell->gestureStatus(), 0);
    QCOMPARE(m_table->panGestureRecognizerState(), TableView::GestureStatePossible);
}

void tst_BMSpeedRecordCell::nameEditingIsReportedWithSuggestions()
{
    BMSpeedRecordCell *cell = row(3);
    QCompleter *completer = cell->completer();
    qobject_cast<QStringListModel *>(completer->model())->setStringList({"Kitchen", "Living Room", "Dining room"});
    QTest::mouseClick(cell->lblArea(), Qt::LeftButton);
    QVERIFY(cell->lblArea()->hasFocus());
    cell->lblArea()->clear();
    QTest::keyClicks(cell->lblArea(), "ROO");
    // Suggested by any part, in any case, in a list with its corners cut round;
    // the list opening is still editing.
    QTRY_VERIFY(completer->popup()->isVisible());
    QCOMPARE(completer->completionModel()->rowCount(), 2);
    QVERIFY(!completer->popup()->mask().contains(QPoint(0, 0)));
    QCOMPARE(m_screen.calls, QStringList{"begin"});
    completer->popup()->hide();
    QTest::keyClick(cell->lblArea(), Qt::Key_Return);
    QVERIFY(!cell->lblArea()->hasFocus());
    QCOMPARE(cell->lblArea()->text(), QStringLiteral("ROO"));
    // Leaving the field by another way ends it once too.
    cell->lblArea()->setFocus(Qt::MouseFocusReason);
    row(4)->lblArea()->setFocus(Qt::MouseFocusReason);
    QCOMPARE(m_screen.calls, (QStringList{"begin", "end", "begin", "end", "begin"}));
}

QTEST_MAIN(tst_BMSpeedRecordCell)
#include "tst_BMSpeedRecordCell.moc"
