// The cost of one live-chart sample (appending it, then one offscreen
// repaint of a 375 x 240 chart) after 100 and after 100,000 samples, for the
// kit's RealTimePlot and for a plain QLineSeries that holds every point, in
// one run; then the kit's cost with 10 lines made before and with 1,000 (each
// start or stop of a recording begins a line). One JSON line per figure, then
// one with the verdicts; times are medians in milliseconds.
#include <Brightmere/chart/_CPTBMClearTheme.h>
#include <Brightmere/chart/ChartThemeRegistry.h>
#include <Brightmere/chart/RealTimePlot.h>

#include <QApplication>
#include <QChart>
#include <QChartView>
#include <QElapsedTimer>
#include <QImage>
#include <QLineSeries>
#include <QLoggingCategory>
#include <QPainter>
#include <QTextStream>
#include <QValueAxis>

#include <algorithm>
#include <cmath>

namespace {

constexpr QSize kChartSize(375, 240);
// Timed samples: five blocks after 100 samples, each on a fresh chart, and
// five after 100,000 samples on one chart. The plain series at 100,000 takes
// a tenth of a second a sample, so its late blocks are shorter.
constexpr int kBlocks = 5;
constexpr int kBlockSamples = 41;
constexpr int kPlainLateBlockSamples = 7;

// A walk through a home: speeds between about 5 and 60 Mbps.
double speedAt(qint64 index)
{
    return 32.0 + 20.0 * std::sin(double(index) / 9.0) + 6.0 * std::sin(double(index) / 2.3);
}

// One live chart: a way to add the next sample, and the widget to repaint.
class Subject
{
public:
    virtual ~Subject() = default;
    virtual void append(qint64 index) = 0;
    // Brings the chart to `count` samples without repainting.
    virtual void fillTo(qint64 count) = 0;
    virtual QWidget *view() = 0;
};

// Both line counts are reached well before this many samples, so the two
// charts differ only in their lines: same x labels, one line in view.
constexpr qint64 kLinesSamplesBefore = 2100;

class KitSubject : public Subject
{
public:
    // With lines, a start or stop after every second sample until the chart
    // has made that many lines, then none; without, a recording every 500
    // samples, as on the test screen.
    explicit KitSubject(int lines = 0)
        : m_lines(lines)
    {
        m_panel.resize(kChartSize);
        m_panel.show();
        m_plot.setRecordingColor(QColor(0x70, 0xbe, 0x7b));
        m_plot.renderInView(&m_panel, ChartThemeRegistry::themeNamed(QString::fromLatin1(kCPTBMClearTheme)), false);
    }
    void append(qint64 index) override
    {
        if (m_lines > 0) {
            if (index % 2 == 1 && m_plot.currentPlotIndex() < quint64(m_lines))
                m_plot.isRecording() ? m_plot.stopRecording() : m_plot.startRecording();
        } else if (index % 500 == 200)
            m_plot.startRecording();
        else if (index % 500 == 260)
            m_plot.stopRecording();
        m_plot.addSpeedToGraph(speedAt(index));
    }
    void fillTo(qint64 count) override
    {
        while (qint64(m_plot.currentSpeedIndex()) < count)
            append(qint64(m_plot.currentSpeedIndex()));
    }
    QWidget *view() override { return &m_panel; }

private:
    int m_lines = 0;
    QWidget m_panel;
    RealTimePlot m_plot;
};

class PlainSubject : public Subject
{
public:
    PlainSubject()
    {
        auto *chart = new QChart;
        chart->legend()->hide();
        m_series->setPen(QPen(QColor(153, 153, 153), 2.0));
        chart->addSeries(m_series);
        chart->addAxis(m_xAxis, Qt::AlignBottom);
        chart->addAxis(m_yAxis, Qt::AlignLeft);
        m_series->attachAxis(m_xAxis);
        m_series->attachAxis(m_yAxis);
        m_yAxis->setRange(0, 65);
        m_view = new QChartView(chart, &m_panel);
        m_panel.resize(kChartSize);
        m_view->resize(kChartSize);
        m_panel.show();
    }
    void append(qint64 index) override
    {
        m_series->append(double(index), speedAt(index));
        m_xAxis->setRange(double(std::max<qint64>(0, index - 8)), double(std::max<qint64>(8, index)));
        m_count = index + 1;
    }
    // In one call: appending 100,000 points one by one redraws the whole
    // line each time and would take hours.
    void fillTo(qint64 count) override
    {
        QList<QPointF> points = m_series->points();
        for (; m_count < count; ++m_count)
            points.append(QPointF(double(m_count), speedAt(m_count)));
        m_series->replace(points);
        m_xAxis->setRange(double(std::max<qint64>(0, count - 9)), double(std::max<qint64>(8, count - 1)));
    }
    QWidget *view() override { return m_view; }

private:
    QWidget m_panel;
    QLineSeries *m_series = new QLineSeries;
    QValueAxis *m_xAxis = new QValueAxis;
    QValueAxis *m_yAxis = new QValueAxis;
    QChartView *m_view = nullptr;
    qint64 m_count = 0;
};

// What the event loop does between frames. Without an event loop the chart
// items of lines taken out of the chart are never deleted, and every later
// sendPostedEvents walks past them: a cost of the bench, not of the chart.
void runPostedEvents()
{
    QCoreApplication::sendPostedEvents();
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
}

// Times `samples` samples, each an append and a repaint as a frame does it
// (pending layout, then drawing), adding the milliseconds to `times`.
void timeSamples(Subject &subject, qint64 first, int samples, QList<double> &times)
{
    QImage canvas(kChartSize, QImage::Format_ARGB32_Premultiplied);
    // A chart's first paints in a new view set up caches: not a sample's cost.
    for (int i = 0; i < 3; ++i) {
        runPostedEvents();
        QPainter painter(&canvas);
        subject.view()->render(&painter);
    }
    for (qint64 index = first; index < first + samples; ++index) {
        QElapsedTimer timer;
        timer.start();
        subject.append(index);
        runPostedEvents();
        canvas.fill(Qt::white);
        QPainter painter(&canvas);
        subject.view()->render(&painter);
        painter.end();
        times.append(double(timer.nsecsElapsed()) / 1e6);
    }
}

double median(QList<double> times)
{
    std::sort(times.begin(), times.end());
    return times.at(times.size() / 2);
}

struct Figures
{
    double after100 = 0.0;
    double after100k = 0.0;
    int earlySamples = 0;
    int lateSamples = 0;
};

// Early and late blocks take turns, so that whatever else the machine is
// doing weighs on both alike.
template<typename S>
Figures measure(int lateBlockSamples)
{
    S late;
    late.fillTo(100000);
    QList<double> early;
    QList<double> lateTimes;
    for (int block = 0; block < kBlocks; ++block) {
        S subject;
        subject.fillTo(100);
        timeSamples(subject, 100, kBlockSamples, early);
        timeSamples(late, 100000 + qint64(block) * lateBlockSamples, lateBlockSamples, lateTimes);
    }
    return {median(early), median(lateTimes), int(early.size()), int(lateTimes.size())};
}

// The kit with 10 lines and with 1,000, timed in turns on one chart each.
std::pair<double, double> measureLines(int *samples)
{
    KitSubject few(10);
    KitSubject many(1000);
    few.fillTo(kLinesSamplesBefore);
    many.fillTo(kLinesSamplesBefore);
    QList<double> fewTimes;
    QList<double> manyTimes;
    for (int block = 0; block < kBlocks; ++block) {
        const qint64 first = kLinesSamplesBefore + qint64(block) * kBlockSamples;
        timeSamples(few, first, kBlockSamples, fewTimes);
        timeSamples(many, first, kBlockSamples, manyTimes);
    }
    *samples = int(fewTimes.size());
    return {median(fewTimes), median(manyTimes)};
}

QString ms(double value)
{
    return QString::number(value, 'f', 3);
}

} // namespace

int main(int argc, char *argv[])
{
    if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM"))
        qputenv("QT_QPA_PLATFORM", "offscreen");
    QApplication app(argc, argv);
    QLoggingCategory::setFilterRules(QStringLiteral("brightmere.*=false"));

    // Fonts, glyphs and Qt's first-paint set-up, before anything is timed.
    {
        KitSubject warmUp;
        QList<double> ignored;
        timeSamples(warmUp, 0, 300, ignored);
    }
    const Figures kit = measure<KitSubject>(kBlockSamples);
    const Figures plain = measure<PlainSubject>(kPlainLateBlockSamples);
    int linesSamples = 0;
    const auto [fewLines, manyLines] = measureLines(&linesSamples);
    QTextStream out(stdout);
    const QString line = QStringLiteral(
        R"({"bench":"chart_sample","series":"%1","samples_before":%2,"timed_samples":%3,"width":375,"height":240,"median_ms_per_sample":%4})");
    out << line.arg("RealTimePlot").arg(100).arg(kit.earlySamples).arg(ms(kit.after100)) << '\n';
    out << line.arg("RealTimePlot").arg(100000).arg(kit.lateSamples).arg(ms(kit.after100k)) << '\n';
    out << line.arg("QLineSeries_all_points").arg(100).arg(plain.earlySamples).arg(ms(plain.after100)) << '\n';
    out << line.arg("QLineSeries_all_points").arg(100000).arg(plain.lateSamples).arg(ms(plain.after100k)) << '\n';
    const double growth = kit.after100k / kit.after100;
    const double advantage = plain.after100k / kit.after100k;
    const auto verdict = [](bool met) { return met ? QStringLiteral("true") : QStringLiteral("false"); };
    out << QStringLiteral(
               R"({"bench":"chart_sample_targets","growth_100k_over_100":%1,"target_growth_within_1_5":%2,"plain_over_kit_at_100k":%3,"target_10x_cheaper":%4})")
               .arg(QString::number(growth, 'f', 2), verdict(growth <= 1.5), QString::number(advantage, 'f', 1),
                    verdict(advantage >= 10.0))
        << '\n';
    const QString linesLine = QStringLiteral(
        R"({"bench":"chart_sample_lines","series":"RealTimePlot","lines":%1,"samples_before":%2,"timed_samples":%3,"width":375,"height":240,"median_ms_per_sample":%4})");
    out << linesLine.arg(10).arg(kLinesSamplesBefore).arg(linesSamples).arg(ms(fewLines)) << '\n';
    out << linesLine.arg(1000).arg(kLinesSamplesBefore).arg(linesSamples).arg(ms(manyLines)) << '\n';
    const double linesGrowth = manyLines / fewLines;
    out << QStringLiteral(R"({"bench":"chart_sample_lines_targets","growth_1000_lines_over_10":%1,"target_growth_within_1_2":%2})")
               .arg(QString::number(linesGrowth, 'f', 2), verdict(linesGrowth <= 1.2))
        << '\n';
    return 0;
}
