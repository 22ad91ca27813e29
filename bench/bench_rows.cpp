// The cost of the test screen's list of spots: filling a table of spot rows
// the first time (every row made) and again (every row from the reuse
// pool), and one step of a drag (the move plus an offscreen repaint of a
// 375 x 300 list), for 50 and 500 spots. One JSON line per figure; times are
// medians in milliseconds.
#include <Brightmere/platform/views/TableView.h>
#include <Brightmere/platform/views/TableViewDataSource.h>
#include <Brightmere/session/BMSpeedRecordCell.h>

#include <QApplication>
#include <QElapsedTimer>
#include <QLoggingCategory>
#include <QMouseEvent>
#include <QTextStream>

#include <algorithm>

using namespace Brightmere;

namespace {

constexpr int kRuns = 7;

class Spots : public TableViewDataSource
{
public:
    explicit Spots(int count)
    {
        for (int i = 0; i < count; ++i) {
            auto spot = WifiTestResult::create(5.0 + (i * 7) % 55);
            spot->setLabel(QStringLiteral("Spot %1").arg(i + 1));
            spot->setAverage(i % 3 == 0);
            spot->setDuration(i % 5);
            spots.append(spot);
        }
    }
    int numberOfRowsInSection(TableView *, int) override { return int(spots.size()); }
    TableViewCell *cellForRowAtIndexPath(TableView *table, const IndexPath &index) override
    {
        auto *row = static_cast<BMSpeedRecordCell *>(table->dequeueReusableCellWithIdentifier(
            BMTableViewCell::cellIdentifier(BMSpeedRecordCell::staticMetaObject)));
        if (!row)
            row = BMTableViewCell::cell<BMSpeedRecordCell>();
        row->setupWithRecord(spots.at(index.row()), index.row() % 2 == 0);
        return row;
    }
    double heightForRowAtIndexPath(TableView *, const IndexPath &) override { return BMSpeedRecordCell::height(); }

    WifiTestResult::List spots;
};

double median(QList<double> values)
{
    std::sort(values.begin(), values.end());
    return values.at(values.size() / 2);
}

void print(const char *figure, int spots, double milliseconds)
{
    QTextStream(stdout) << QStringLiteral("{\"figure\": \"%1\", \"spots\": %2, \"median_ms\": %3}\n")
                               .arg(QLatin1String(figure))
                               .arg(spots)
                               .arg(milliseconds, 0, 'f', 3);
}

void measure(int count)
{
    QList<double> first, again, dragStep;
    for (int run = 0; run < kRuns; ++run) {
        Spots spots(count);
        TableView table;
        table.resize(375, 300);
        table.setDataSource(&spots);
        table.show();
        QElapsedTimer clock;
        clock.start();
        table.reloadData();
        first << clock.nsecsElapsed() / 1e6;
        clock.restart();
        table.reloadData();
        again << clock.nsecsElapsed() / 1e6;

        QWidget *viewport = table.viewport();
        const auto send = [viewport](QEvent::Type type, int y, Qt::MouseButtons buttons) {
            const QPointF at(20, y);
            QMouseEvent event(type, at, viewport->mapToGlobal(at), Qt::LeftButton, buttons, Qt::NoModifier);
            QApplication::sendEvent(viewport, &event);
        };
        send(QEvent::MouseButtonPress, 280, Qt::LeftButton);
        send(QEvent::MouseMove, 260, Qt::LeftButton);
        QImage canvas(table.size(), QImage::Format_ARGB32_Premultiplied);
        clock.restart();
        send(QEvent::MouseMove, 250, Qt::LeftButton);
        table.render(&canvas);
        dragStep << clock.nsecsElapsed() / 1e6;
        send(QEvent::MouseButtonRelease, 250, Qt::NoButton);
    }
    print("fill_first", count, median(first));
    print("fill_again_from_pool", count, median(again));
    print("drag_step_with_repaint", count, median(dragStep));
}

} // namespace

int main(int argc, char **argv)
{
    qputenv("QT_QPA_PLATFORM", qgetenv("QT_QPA_PLATFORM").isEmpty() ? "offscreen" : qgetenv("QT_QPA_PLATFORM"));
    QApplication app(argc, argv);
    QLoggingCategory::setFilterRules(QStringLiteral("brightmere.*=false"));
    for (const int count : {50, 500})
        measure(count);
    return 0;
}
