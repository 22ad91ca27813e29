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

// A caption (which lets clicks through) and a button (which takes them).
class CaptionRow : public TableViewCell
{
public:
    CaptionRow()
    {
        setReuseIdentifier(QStringLiteral("caption"));
        button->setGeometry(0, 0, 60, 40);
    }
    void resizeEvent(QResizeEvent *event) override
    {
        TableViewCell::resizeEvent(event);
        caption->setGeometry(60, 0, width() - 60, height());
    }
    QLabel *caption = new QLabel(this);
    QPushButton *button = new QPushButton(QStringLiteral("Go"), this);
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
        return heights.value(index.row(), table->rowHeight());
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

} // namespace

class tst_TableView : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();
    void rowsSitAtTheirHeightsAndComeBackFromThePool();
    void dragsScrollOrSwipe_data();
    void dragsScrollOrSwipe();
    void theDeleteStripAndEditingOff();
    void deleteKeepsTheOtherRowsInOrder_data();
    void deleteKeepsTheOtherRowsInOrder();
    void clickSelects_data();
    void clickSelects();
    void scrollTargets_data();
    void scrollTargets();

private:
    CaptionRow *row(int i) const { return static_cast<CaptionRow *>(m_table->cellForRowAtIndexPath(IndexPath(i, 0))); }
    QStringList captions() const
    {
        QStringList texts;
        for (int i = 0; row(i); ++i)
            texts << row(i)->caption->text();
        return texts;
    }

    std::unique_ptr<TestEnvironment> m_env;
    std::unique_ptr<TableView> m_table;
    Source m_source;
};

// Ten rows of 40 in a table 200 high.
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

void tst_TableView::rowsSitAtTheirHeightsAndComeBackFromThePool()
{
    m_source.items = {QStringLiteral("A"), QStringLiteral("B"), QStringLiteral("C")};
    m_source.heights = {38, -5, 50}; // an unusable height falls back to the table's
    m_table->reloadData();
    m_table->reloadData();
    QCOMPARE(m_source.made, 5); // only the rows in view of the first load were made
    QCOMPARE(captions(), (QStringList{"A", "B", "C"}));
    QCOMPARE(row(2)->geometry(), QRect(0, 78, 375, 50));
    m_table->resize(300, 200);
    QCOMPARE(row(2)->caption->width(), 240); // the row laid itself out again
    QVERIFY(!m_table->dequeueReusableCellWithIdentifier(QStringLiteral("other")));
    TableViewCell *back = m_table->dequeueReusableCellWithIdentifier(QStringLiteral("caption"));
    QVERIFY(back && !m_table->indexPathForCell(back).isValid() && !back->isVisible());
}

void tst_TableView::dragsScrollOrSwipe_data()
{
    QTest::addColumn<Kind>("kind");
    QTest::addColumn<bool>("editable");
    QTest::addColumn<QPoint>("by");
    QTest::addColumn<int>("offset");
    QTest::addColumn<bool>("editing"); // row 1, where the drag starts
    for (const Kind kind : {Kind::Mouse, Kind::Touch}) {
        const QByteArray k = PointerInput::name(kind);
        QTest::newRow(k + " up scrolls") << kind << true << QPoint(5, -110) << 110 << false;
        QTest::newRow(k + " far up stops at the end") << kind << true << QPoint(0, -900) << 200 << false;
        QTest::newRow(k + " 60 left, editable") << kind << true << QPoint(-60, 4) << 0 << true;
        QTest::newRow(k + " 60 left, not editable") << kind << false << QPoint(-60, 4) << 0 << false;
        QTest::newRow(k + " 25 left is too short") << kind << true << QPoint(-25, 0) << 0 << false;
        QTest::newRow(k + " 60 right") << kind << true << QPoint(60, 0) << 0 << false;
    }
}

void tst_TableView::dragsScrollOrSwipe()
{
    QFETCH(Kind, kind);
    QFETCH(bool, editable);
    QFETCH(QPoint, by);
    QFETCH(int, offset);
    QFETCH(bool, editing);
    m_source.editable = editable;
    const QPoint from(150, 60);
    const bool scrolls = qAbs(by.y()) > qAbs(by.x());
    PointerInput::press(kind, m_table->viewport(), from);
    QCOMPARE(m_table->panGestureRecognizerState(), TableView::GestureStatePossible);
    PointerInput::move(kind, m_table->viewport(), from + by / 2);
    QCOMPARE(m_table->panGestureRecognizerState(),
             scrolls ? TableView::GestureStateChanged : TableView::GestureStatePossible);
    PointerInput::move(kind, m_table->viewport(), from + by);
    PointerInput::release(kind, m_table->viewport(), from + by);
    QCOMPARE(m_table->panGestureRecognizerState(), TableView::GestureStatePossible);
    QCOMPARE(m_table->contentOffset(), QPoint(0, offset));
    QCOMPARE(row(1) && row(1)->isEditing(), editing);
    QCOMPARE(row(1) && row(1)->deleteStrip() && row(1)->deleteStrip()->isVisible(), editing);
    for (TableViewCell *cell : m_table->visibleCells())
        QVERIFY(cell == row(1) || !cell->isEditing());
    QVERIFY(m_source.selected.isEmpty());
}

void tst_TableView::theDeleteStripAndEditingOff()
{
    row(0)->setEditing(true, false);
    row(3)->setEditing(true, false);
    QWidget *strip = row(3)->deleteStrip();
    QCOMPARE(strip->geometry(), QRect(375 - TableViewCell::kDeleteStripWidth, 0, TableViewCell::kDeleteStripWidth, 40));
    QTest::mouseClick(strip, Qt::LeftButton);
    QCOMPARE(m_source.committed, QList<int>{3});
    m_table->setEditing(false, true);
    QVERIFY(!row(0)->isEditing() && !row(3)->isEditing() && !strip->isVisible());
}

void tst_TableView::deleteKeepsTheOtherRowsInOrder_data()
{
    QTest::addColumn<QList<int>>("gone");
    QTest::addColumn<bool>("inUpdates");
    QTest::addColumn<QStringList>("left"); // what the data source has after the delete
    QTest::addColumn<QString>("logged");
    const QStringList five{"Spot 1", "Spot 2", "Spot 3", "Spot 4", "Spot 5"};
    QTest::newRow("the first") << QList<int>{0} << false << five.mid(1) << "";
    QTest::newRow("a middle one, in updates") << QList<int>{2} << true
                                              << QStringList{"Spot 1", "Spot 2", "Spot 4", "Spot 5"} << "";
    QTest::newRow("two, out of order") << QList<int>{3, 0} << true << QStringList{"Spot 2", "Spot 3", "Spot 5"}
                                       << "";
    QTest::newRow("all") << QList<int>{4, 3, 2, 1, 0} << false << QStringList{} << "";
    QTest::newRow("the data source kept it: reload")
        << QList<int>{1, 42} << false << five
        << "cannot delete row 42|the data source counts 5 rows where the table has 4 after the update; reloading";
}

void tst_TableView::deleteKeepsTheOtherRowsInOrder()
{
    QFETCH(QList<int>, gone);
    QFETCH(bool, inUpdates);
    QFETCH(QStringList, left);
    QFETCH(QString, logged);
    m_source.items = m_source.items.mid(0, 5);
    m_table->reloadData();
    QList<IndexPath> paths;
    for (const int i : gone)
        paths << IndexPath(i, 0);
    m_source.items = left;
    LogCapture log;
    if (inUpdates)
        m_table->beginUpdates();
    m_table->deleteRowsAtIndexPaths(paths, TableView::RowAnimation::Fade);
    if (inUpdates)
        m_table->endUpdates();
    QCOMPARE(captions(), left);
    for (int i = 0; i < left.size(); ++i)
        QCOMPARE(row(i)->y(), 40 * i);
    QCOMPARE(m_table->contentHeight(), 40 * int(left.size()));
    QCOMPARE(m_source.made, 5); // rows came back from the pool, none made anew
    for (const QString &line : logged.split('|', Qt::SkipEmptyParts))
        QVERIFY2(log.contains(line), qPrintable(log.text()));
    QCOMPARE(log.contains("reloading"), !logged.isEmpty());
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
    QTest::addColumn<int>("row"); // to the top; -1: the rectangle instead
    QTest::addColumn<int>("rectangleTop");
    QTest::addColumn<int>("offset");
    QTest::newRow("row 3 to the top") << 0 << 3 << 0 << 120;
    QTest::newRow("the first spot's corner from below") << 160 << -1 << 0 << 0;
    QTest::newRow("a rectangle already seen stays") << 40 << -1 << 100 << 40;
    QTest::newRow("a rectangle below comes up to the bottom") << 0 << -1 << 230 << 70;
}

void tst_TableView::scrollTargets()
{
    QFETCH(int, from);
    QFETCH(int, row);
    QFETCH(int, rectangleTop);
    QFETCH(int, offset);
    for (const bool animated : {false, true}) {
        m_table->setContentOffset(QPoint(0, from), false);
        if (row >= 0)
            m_table->scrollToRowAtIndexPath(IndexPath(row, 0), TableView::ScrollPosition::Top, animated);
        else
            m_table->scrollRectToVisible(QRect(0, rectangleTop, 1, 40), animated);
        QCOMPARE(m_table->contentOffset(), QPoint(0, offset));
    }
}

QTEST_MAIN(tst_TableView)
#include "tst_TableView.moc"
