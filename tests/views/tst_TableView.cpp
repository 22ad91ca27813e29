#include "LogCapture.h"
#include "PointerInput.h"
#include "TestEnvironment.h"
#include "platform/views/ScrollAnimator.h"
#include "platform/views/TableView.h"
#include "platform/views/TableViewCell.h"
#include "platform/views/TableViewDataSource.h"

#include <QLabel>
#include <QPushButton>
#include <QSignalSpy>
#include <QTest>

using namespace Brightmere;
using PointerInput::Kind;

namespace {

// A row with a caption (which lets clicks through) and a button (which
// takes them).
class CaptionRow : public TableViewCell
{
public:
    explicit CaptionRow(QWidget *parent = nullptr)
        : TableViewCell(parent)
        , caption(new QLabel(this))
        , button(new QPushButton(QStringLiteral("Go"), this))
    {
        setReuseIdentifier(QStringLiteral("caption"));
    }
    void resizeEvent(QResizeEvent *event) override
    {
        TableViewCell::resizeEvent(event);
        caption->setGeometry(0, 0, width() - 60, height());
        button->setGeometry(width() - 60, 0, 60, height());
    }
    QLabel *caption;
    QPushButton *button;
};

class Source : public TableViewDataSource
{
public:
    int numberOfRowsInSection(TableView *, int) override { return int(items.size()); }
    TableViewCell *cellForRowAtIndexPath(TableView *table, const IndexPath &index) override
    {
        auto *row = static_cast<CaptionRow *>(table->dequeueReusableCellWithIdentifier(QStringLiteral("caption")));
        if (!row) {
            row = new CaptionRow;
            ++made;
        }
        row->caption->setText(items.at(index.row()));
        return row;
    }
    double heightForRowAtIndexPath(TableView *table, const IndexPath &index) override
    {
        return index.row() < heights.size() ? heights.at(index.row()) : table->rowHeight();
    }
    bool canEditRowAtIndexPath(TableView *, const IndexPath &) override { return editable; }
    void commitEditingStyle(TableView *, EditingStyle, const IndexPath &index) override { committed << index.row(); }
    void didSelectRowAtIndexPath(TableView *, const IndexPath &index) override { selected << index.row(); }

    QStringList items;
    QList<double> heights;
    bool editable = true;
    int made = 0;
    QList<int> committed;
    QList<int> selected;
};

QStringList captions(const TableView &table)
{
    QStringList texts;
    for (int i = 0; i < table.numberOfRowsInSection(0); ++i) {
        if (auto *row = static_cast<CaptionRow *>(table.cellForRowAtIndexPath(IndexPath(i, 0))))
            texts << row->caption->text();
    }
    return texts;
}

} // namespace

class tst_TableView : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();
    void rowsSitAtTheirHeightsAcrossTheWidth_data();
    void rowsSitAtTheirHeightsAcrossTheWidth();
    void reloadTakesRowsBackFromThePool();
    void draggingScrollsAndReportsThePan_data();
    void draggingScrollsAndReportsThePan();
    void aDragTakesThePressAwayFromAButton_data();
    void aDragTakesThePressAwayFromAButton();
    void swipeLeftTurnsEditingOn_data();
    void swipeLeftTurnsEditingOn();
    void editingOffAndTheDeleteStrip();
    void deleteKeepsTheOtherRowsInOrder_data();
    void deleteKeepsTheOtherRowsInOrder();
    void deleteTheDataSourceDisagreesWithReloads();
    void clickSelects_data();
    void clickSelects();
    void scrollTargets_data();
    void scrollTargets();

private:
    CaptionRow *row(int i) const { return static_cast<CaptionRow *>(m_table->cellForRowAtIndexPath(IndexPath(i, 0))); }

    std::unique_ptr<TestEnvironment> m_env;
    std::unique_ptr<TableView> m_table;
    Source m_source;
};

void tst_TableView::init()
{
    m_env = std::make_unique<TestEnvironment>();
    ScrollAnimator::setDuration(0);
    m_source = Source();
    for (int i = 0; i < 10; ++i)
        m_source.items << QStringLiteral("Spot %1").arg(i + 1);
    m_table = std::make_unique<TableView>();
    m_table->setRowHeight(40);
    m_table->setDataSource(&m_source);
    m_table->resize(375, 200);
    m_table->show();
    QVERIFY(QTest::qWaitForWindowExposed(m_table.get()));
    m_table->reloadData();
}

void tst_TableView::cleanup()
{
    m_table.reset();
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    m_env.reset();
}

void tst_TableView::rowsSitAtTheirHeightsAcrossTheWidth_data()
{
    QTest::addColumn<QList<double>>("heights");
    QTest::addColumn<QList<int>>("tops");
    QTest::newRow("the table's row height") << QList<double>{} << QList<int>{0, 40, 80, 120};
    QTest::newRow("each its own") << QList<double>{38, 20, 50, 38} << QList<int>{0, 38, 58, 108};
    QTest::newRow("a negative height falls back")
        << QList<double>{38, -5, 38, 38} << QList<int>{0, 38, 78, 116};
}

void tst_TableView::rowsSitAtTheirHeightsAcrossTheWidth()
{
    QFETCH(QList<double>, heights);
    QFETCH(QList<int>, tops);
    m_source.items = m_source.items.mid(0, 4);
    m_source.heights = heights;
    m_table->reloadData();
    for (int i = 0; i < tops.size(); ++i) {
        QCOMPARE(row(i)->y(), tops.at(i));
        QCOMPARE(row(i)->width(), 375);
    }
    m_table->resize(300, 200);
    QCOMPARE(row(3)->width(), 300);
    QCOMPARE(row(3)->button->x(), 240); // the row laid itself out again
}

void tst_TableView::reloadTakesRowsBackFromThePool()
{
    QCOMPARE(m_source.made, 10);
    QList<TableViewCell *> before;
    for (int i = 0; i < 10; ++i)
        before << row(i);
    m_source.items = {QStringLiteral("A"), QStringLiteral("B")};
    m_table->reloadData();
    m_source.items << QStringLiteral("C");
    m_table->reloadData();
    QCOMPARE(m_source.made, 10);
    QCOMPARE(captions(*m_table), (QStringList{"A", "B", "C"}));
    // The rows not shown wait in the pool; another identifier finds none.
    QVERIFY(!m_table->dequeueReusableCellWithIdentifier(QStringLiteral("other")));
    TableViewCell *back = m_table->dequeueReusableCellWithIdentifier(QStringLiteral("caption"));
    QVERIFY(before.contains(back));
    QVERIFY(!back->isVisible());
}

void tst_TableView::draggingScrollsAndReportsThePan_data()
{
    QTest::addColumn<Kind>("kind");
    QTest::newRow("mouse") << Kind::Mouse;
    QTest::newRow("touch") << Kind::Touch;
}

void tst_TableView::draggingScrollsAndReportsThePan()
{
    QFETCH(Kind, kind);
    QWidget *screen = m_table->viewport();
    PointerInput::press(kind, screen, QPoint(20, 190)); // on row 4's caption
    QCOMPARE(m_table->panGestureRecognizerState(), TableView::GestureStatePossible);
    PointerInput::move(kind, screen, QPoint(20, 170));
    QCOMPARE(m_table->panGestureRecognizerState(), TableView::GestureStateChanged);
    QCOMPARE(m_table->contentOffset(), QPoint(0, 20));
    PointerInput::move(kind, screen, QPoint(25, 80));
    QCOMPARE(m_table->contentOffset(), QPoint(0, 110));
    // Past the end, the list stops at its last row.
    PointerInput::move(kind, screen, QPoint(25, -900));
    QCOMPARE(m_table->contentOffset(), QPoint(0, 400 - 200));
    PointerInput::release(kind, screen, QPoint(25, -900));
    QCOMPARE(m_table->panGestureRecognizerState(), TableView::GestureStatePossible);
    QVERIFY(m_source.selected.isEmpty());
}

void tst_TableView::aDragTakesThePressAwayFromAButton_data()
{
    draggingScrollsAndReportsThePan_data();
}

void tst_TableView::aDragTakesThePressAwayFromAButton()
{
    QFETCH(Kind, kind);
    QPushButton *button = row(1)->button;
    QSignalSpy clicks(button, &QPushButton::clicked);
    QSignalSpy releases(button, &QPushButton::released);
    PointerInput::press(kind, m_table->viewport(), QPoint(350, 60));
    QVERIFY(button->isDown());
    PointerInput::move(kind, m_table->viewport(), QPoint(350, 30));
    QVERIFY(!button->isDown());
    PointerInput::release(kind, m_table->viewport(), QPoint(350, 30));
    QCOMPARE(releases.size(), 0);
    QCOMPARE(clicks.size(), 0);
    QCOMPARE(m_table->contentOffset(), QPoint(0, 30));
}

void tst_TableView::swipeLeftTurnsEditingOn_data()
{
    QTest::addColumn<Kind>("kind");
    QTest::addColumn<bool>("editable");
    QTest::addColumn<int>("dx");
    QTest::addColumn<bool>("editing");
    for (const Kind kind : {Kind::Mouse, Kind::Touch}) {
        const QByteArray k = PointerInput::name(kind);
        QTest::newRow(k + " 60 left, editable") << kind << true << -60 << true;
        QTest::newRow(k + " 60 left, not editable") << kind << false << -60 << false;
        QTest::newRow(k + " 25 left is too short") << kind << true << -25 << false;
        QTest::newRow(k + " 60 right") << kind << true << 60 << false;
    }
}

void tst_TableView::swipeLeftTurnsEditingOn()
{
    QFETCH(Kind, kind);
    QFETCH(bool, editable);
    QFETCH(int, dx);
    QFETCH(bool, editing);
    m_source.editable = editable;
    PointerInput::drag(kind, m_table->viewport(), QPoint(150, 60), QPoint(150 + dx, 64));
    QCOMPARE(row(1)->isEditing(), editing);
    QCOMPARE(row(1)->deleteStrip() && row(1)->deleteStrip()->isVisible(), editing);
    QVERIFY(!row(0)->isEditing() && !row(2)->isEditing());
    QCOMPARE(m_table->contentOffset(), QPoint(0, 0));
    QCOMPARE(m_table->panGestureRecognizerState(), TableView::GestureStatePossible);
}

void tst_TableView::editingOffAndTheDeleteStrip()
{
    row(0)->setEditing(true, false);
    row(3)->setEditing(true, false);
    QWidget *strip = row(3)->deleteStrip();
    QCOMPARE(strip->geometry(), QRect(375 - TableViewCell::kDeleteStripWidth, 0, TableViewCell::kDeleteStripWidth, 40));
    QTest::mouseClick(strip, Qt::LeftButton);
    QCOMPARE(m_source.committed, QList<int>{3});
    QVERIFY(m_source.selected.isEmpty());
    m_table->setEditing(false, true);
    QVERIFY(!row(0)->isEditing() && !row(3)->isEditing());
    QVERIFY(!strip->isVisible());
}

void tst_TableView::deleteKeepsTheOtherRowsInOrder_data()
{
    QTest::addColumn<QList<int>>("gone");
    QTest::addColumn<bool>("inUpdates");
    QTest::addColumn<QStringList>("left");
    const QStringList five{"Spot 1", "Spot 2", "Spot 3", "Spot 4", "Spot 5"};
    QTest::newRow("the first") << QList<int>{0} << false << five.mid(1);
    QTest::newRow("a middle one, in updates") << QList<int>{2} << true
                                              << QStringList{"Spot 1", "Spot 2", "Spot 4", "Spot 5"};
    QTest::newRow("two, out of order") << QList<int>{3, 0} << true << QStringList{"Spot 2", "Spot 3", "Spot 5"};
    QTest::newRow("all") << QList<int>{4, 3, 2, 1, 0} << false << QStringList{};
}

void tst_TableView::deleteKeepsTheOtherRowsInOrder()
{
    QFETCH(QList<int>, gone);
    QFETCH(bool, inUpdates);
    QFETCH(QStringList, left);
    m_source.items = m_source.items.mid(0, 5);
    m_table->reloadData();
    const int made = m_source.made;
    QList<TableViewCell *> goneRows;
    QList<IndexPath> paths;
    for (const int i : gone) {
        goneRows << row(i);
        paths << IndexPath(i, 0);
    }
    m_source.items = left;
    LogCapture log;
    if (inUpdates)
        m_table->beginUpdates();
    m_table->deleteRowsAtIndexPaths(paths, TableView::RowAnimation::Fade);
    if (inUpdates)
        m_table->endUpdates();
    QCOMPARE(captions(*m_table), left);
    for (int i = 0; i < left.size(); ++i)
        QCOMPARE(row(i)->y(), 40 * i);
    QCOMPARE(m_table->contentHeight(), 40 * int(left.size()));
    QVERIFY(!log.contains("reloading"));
    QCOMPARE(m_source.made, made); // no reload made rows anew
    for (TableViewCell *goneRow : goneRows) {
        QVERIFY(!goneRow->isVisible());
        QVERIFY(m_table->dequeueReusableCellWithIdentifier(QStringLiteral("caption")));
    }
}

void tst_TableView::deleteTheDataSourceDisagreesWithReloads()
{
    LogCapture log;
    // The data source forgot to drop the item.
    m_table->deleteRowsAtIndexPaths({IndexPath(1, 0), IndexPath(42, 0)}, TableView::RowAnimation::Fade);
    QVERIFY(log.contains("cannot delete row 42"));
    QVERIFY(log.contains("the data source counts 10 rows where the table has 9 after the update; reloading"));
    QCOMPARE(captions(*m_table), m_source.items);
}

void tst_TableView::clickSelects_data()
{
    QTest::addColumn<bool>("allows");
    QTest::addColumn<bool>("onButton");
    QTest::addColumn<QList<int>>("selected");
    QTest::newRow("on the caption") << true << false << QList<int>{4};
    QTest::newRow("selection off") << false << false << QList<int>{};
    QTest::newRow("the button's own") << true << true << QList<int>{};
}

void tst_TableView::clickSelects()
{
    QFETCH(bool, allows);
    QFETCH(bool, onButton);
    QFETCH(QList<int>, selected);
    m_table->setAllowsSelection(allows);
    m_table->setContentOffset(QPoint(0, 100), false);
    QSignalSpy buttonClicks(row(4)->button, &QPushButton::clicked);
    QTest::mouseClick(onButton ? static_cast<QWidget *>(row(4)->button) : row(4)->caption, Qt::LeftButton);
    QCOMPARE(m_source.selected, selected);
    QCOMPARE(buttonClicks.size(), onButton ? 1 : 0);
}

void tst_TableView::scrollTargets_data()
{
    QTest::addColumn<int>("from");
    QTest::addColumn<int>("how"); // 0 row at the top, 1 rectangle, 2 offset
    QTest::addColumn<int>("target");
    QTest::addColumn<int>("offset");
    QTest::newRow("row 3 to the top") << 0 << 0 << 3 << 120;
    QTest::newRow("the last row stops at the end") << 0 << 0 << 9 << 200;
    QTest::newRow("the first spot's corner from below") << 160 << 1 << 0 << 0;
    QTest::newRow("a rectangle already seen stays") << 40 << 1 << 100 << 40;
    QTest::newRow("a rectangle below comes up to the bottom") << 0 << 1 << 230 << 70;
    QTest::newRow("an offset past the end") << 0 << 2 << 999 << 200;
}

void tst_TableView::scrollTargets()
{
    QFETCH(int, from);
    QFETCH(int, how);
    QFETCH(int, target);
    QFETCH(int, offset);
    for (const bool animated : {false, true}) {
        m_table->setContentOffset(QPoint(0, from), false);
        if (how == 0)
            m_table->scrollToRowAtIndexPath(IndexPath(target, 0), TableView::ScrollPosition::Top, animated);
        else if (how == 1)
            m_table->scrollRectToVisible(QRect(0, target, 1, 40), animated);
        else
            m_table->setContentOffset(QPoint(0, target), animated);
        QCOMPARE(m_table->contentOffset(), QPoint(0, offset));
    }
}

QTEST_MAIN(tst_TableView)
#include "tst_TableView.moc"
