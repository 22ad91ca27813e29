#include "FZReportPdfWriter.h"

#include "FZComparisonReportRows.h"
#include "FZReportFile.h"
#include <Brightmere/core/BMLogger.h>
#include <Brightmere/i18n/BMI18NManager.h>
#include <Brightmere/platform/foundation/Clock.h>
#include <Brightmere/platform/foundation/StringFormat.h>
#include <Brightmere/ui/BrightmereColor.h>
#include <Brightmere/ui/BrightmereFont.h>

#include <QBuffer>
#include <QFontMetricsF>
#include <QPainter>
#include <QPdfWriter>

#include <algorithm>
#include <cmath>
#include <functional>

namespace {

const QString kModule = QStringLiteral("FZReportPdfWriter");

// Points: the writer runs at 72 dots per inch, so one unit is one point.
constexpr qreal kMargin = 40.0;
constexpr qreal kRowHeight = 17.0;
constexpr qreal kFooterHeight = 24.0;
constexpr qreal kContinuationHeight = 30.0;
constexpr qreal kChartHeight = 170.0;
constexpr qreal kGap = 14.0;
constexpr qreal kCellPadding = 5.0;
// Below this many spots each bar carries its label; above, the table does.
constexpr int kMaxLabelledBars = 24;

using Brightmere::StringFormat;

QColor colour(const char *key)
{
    return Brightmere::Color::named(QString::fromLatin1(key));
}

QFont font(QFont::Weight weight, qreal points)
{
    QFont f;
    f.setWeight(weight);
    f.setPointSizeF(points);
    return Brightmere::View::kitFont(f);
}

// Rounded to the cent first: the manager's formatter cuts, and a change of
// 9.70 - 6.20 would read 3.49.
QString speedText(double mbps)
{
    return std::isfinite(mbps) ? BMI18NManager::formatNumber(std::round(mbps * 100.0) / 100.0, 2, 2)
                               : QStringLiteral("\u2013");
}

QLocale textLocale()
{
    return QLocale(BMI18NManager::sharedInstance()->currentLanguage());
}

QString dateText(const QDateTime &date)
{
    if (!date.isValid())
        return QStringLiteral("\u2013");
    const QLocale locale = textLocale();
    const QDateTime local = date.toLocalTime();
    return locale.toString(local.date(), QLocale::LongFormat) + QStringLiteral(", ")
        + locale.toString(local.time(), QLocale::ShortFormat);
}

struct Column
{
    QString title;
    qreal weight = 1.0;
    Qt::Alignment align = Qt::AlignLeft;
};

struct Cell
{
    QString text;
    QColor colour;  // invalid: the table's text colour
};

struct TableRow
{
    QList<Cell> cells;
    bool tinted = false;
};

struct BarChart
{
    QStringList labels;
    QList<QList<double>> series;
    QList<QColor> colours;
    QStringList legend;
};

struct Report
{
    QString runningTitle;
    qreal headerHeight = 0.0;
    std::function<void(QPainter &, const QRectF &)> drawHeader;
    BarChart chart;
    QList<Column> columns;
    QList<TableRow> rows;
};

void drawText(QPainter &p, const QRectF &rect, const QString &text, const QFont &f, const QColor &c,
              Qt::Alignment align = Qt::AlignLeft | Qt::AlignVCenter)
{
    p.setFont(f);
    p.setPen(c);
    const QFontMetricsF metrics(f, p.device());
    p.drawText(rect, int(align), metrics.elidedText(text, Qt::ElideRight, rect.width()));
}

qreal niceStep(double maximum)
{
    const double raw = maximum / 4.0;
    const double magnitude = std::pow(10.0, std::floor(std::log10(raw)));
    for (const double m : {1.0, 2.0, 2.5, 5.0, 10.0}) {
        if (m * magnitude >= raw)
            return m * magnitude;
    }
    return 10.0 * magnitude;
}

void drawChart(QPainter &p, const QRectF &area, const BarChart &chart)
{
    drawText(p, QRectF(area.left(), area.top(), area.width() / 2, 16),
             BMI18NManager::stringForCode(QStringLiteral("fairzones_report_chart_title")), font(QFont::DemiBold, 10),
             colour("fz_report_text"));
    // The legend, right-aligned on the title's line.
    qreal x = area.right();
    const QFont legendFont = font(QFont::Normal, 8);
    for (qsizetype i = chart.legend.size() - 1; i >= 0; --i) {
        const QFontMetricsF metrics(legendFont, p.device());
        const qreal width = std::min(metrics.horizontalAdvance(chart.legend.at(i)), area.width() / 4);
        x -= width;
        drawText(p, QRectF(x, area.top(), width, 16), chart.legend.at(i), legendFont, colour("fz_report_text"));
        x -= 14;
        p.fillRect(QRectF(x, area.top() + 4, 9, 9), chart.colours.value(i));
        x -= 12;
    }

    const bool labelled = chart.labels.size() <= kMaxLabelledBars;
    const QRectF plot(area.left() + 36, area.top() + 24, area.width() - 36, area.height() - 24 - (labelled ? 16 : 4));
    double maximum = 0.0;
    for (const QList<double> &values : chart.series) {
        for (const double v : values) {
            if (std::isfinite(v))
                maximum = std::max(maximum, v);
        }
    }
    if (maximum <= 0.0)
        maximum = 1.0;
    // No axis depends on a value's magnitude: what no measurement can be is
    // drawn at the plausible top, and the ticks are counted, not summed.
    maximum = std::min(maximum, WifiTestResult::kMaxPlausibleSpeedInMbps);
    const qreal step = niceStep(maximum);
    const int steps = int(std::ceil(maximum / step));
    const qreal top = steps * step;
    const QFont axisFont = font(QFont::Normal, 7);
    for (int tick = 0; tick <= steps; ++tick) {
        const qreal v = tick * step;
        const qreal y = plot.bottom() - v / top * plot.height();
        p.setPen(QPen(colour(v == 0.0 ? "medium_gray" : "fixed_light_gray"), 0.6));
        p.drawLine(QPointF(plot.left(), y), QPointF(plot.right(), y));
        drawText(p, QRectF(area.left(), y - 6, 31, 12), BMI18NManager::formatNumber(v, 1), axisFont,
                 colour("medium_gray"), Qt::AlignRight | Qt::AlignVCenter);
    }

    const qsizetype count = chart.labels.size();
    if (count == 0)
        return;
    const qreal groupWidth = plot.width() / qreal(count);
    const qreal barWidth = groupWidth * 0.72 / qreal(std::max<qsizetype>(1, chart.series.size()));
    for (qsizetype i = 0; i < count; ++i) {
        const qreal groupLeft = plot.left() + groupWidth * qreal(i) + groupWidth * 0.14;
        for (qsizetype s = 0; s < chart.series.size(); ++s) {
            const double v = chart.series.at(s).value(i, qQNaN());
            if (!std::isfinite(v) || v <= 0.0)
                continue;
            const qreal height = std::min(v, top) / top * plot.height();
            p.fillRect(QRectF(groupLeft + barWidth * qreal(s), plot.bottom() - height, barWidth, height),
                       chart.colours.value(s));
        }
        if (labelled)
            drawText(p, QRectF(plot.left() + groupWidth * qreal(i), plot.bottom() + 2, groupWidth, 12),
                     chart.labels.at(i), axisFont, colour("fz_report_text"), Qt::AlignHCenter | Qt::AlignVCenter);
    }
}

QList<qreal> columnWidths(const QList<Column> &columns, qreal width)
{
    qreal total = 0.0;
    for (const Column &c : columns)
        total += c.weight;
    QList<qreal> widths;
    for (const Column &c : columns)
        widths.append(width * c.weight / total);
    return widths;
}

void drawTableHeader(QPainter &p, qreal y, qreal width, const QList<Column> &columns)
{
    p.fillRect(QRectF(0, y, width, kRowHeight), colour("dark_blue"));
    const QList<qreal> widths = columnWidths(columns, width);
    qreal x = 0.0;
    for (qsizetype i = 0; i < columns.size(); ++i) {
        drawText(p, QRectF(x + kCellPadding, y, widths.at(i) - 2 * kCellPadding, kRowHeight), columns.at(i).title,
                 font(QFont::DemiBold, 7.5), colour("fz_chart_back"), columns.at(i).align | Qt::AlignVCenter);
        x += widths.at(i);
    }
}

void drawRow(QPainter &p, const QRectF &rect, const TableRow &row, bool odd, const QList<Column> &columns)
{
    if (row.tinted)
        p.fillRect(rect, colour("fz_average_back"));
    else if (odd)
        p.fillRect(rect, colour("fixed_light_gray"));
    const QList<qreal> widths = columnWidths(columns, rect.width());
    const QFont cellFont = font(QFont::Normal, 8.5);
    qreal x = rect.left();
    for (qsizetype i = 0; i < columns.size(); ++i) {
        const Cell cell = row.cells.value(i);
        drawText(p, QRectF(x + kCellPadding, rect.top(), widths.at(i) - 2 * kCellPadding, rect.height()), cell.text,
                 cellFont, cell.colour.isValid() ? cell.colour : colour("fz_report_text"),
                 columns.at(i).align | Qt::AlignVCenter);
        x += widths.at(i);
    }
}

void drawFooter(QPainter &p, const QRectF &page, const QString &title, int index, int count)
{
    const qreal y = page.bottom() - kFooterHeight + 8;
    p.setPen(QPen(colour("disable_gray"), 0.6));
    p.drawLine(QPointF(0, y), QPointF(page.width(), y));
    const QFont footerFont = font(QFont::Normal, 7.5);
    const QString pageText = StringFormat::print(
        BMI18NManager::stringForCode(QStringLiteral("fairzones_report_page")), index + 1, count);
    drawText(p, QRectF(0, y + 2, page.width() * 0.7, 14), title, footerFont, colour("medium_gray"));
    drawText(p, QRectF(page.width() * 0.7, y + 2, page.width() * 0.3, 14), pageText, footerFont,
             colour("medium_gray"), Qt::AlignRight | Qt::AlignVCenter);
}

// Places every row before anything is drawn, so each footer knows the page count.
FZReportPdfWriter::Layout placeRows(const Report &report, const QRectF &page)
{
    FZReportPdfWriter::Layout layout;
    layout.printableRect = page;
    const qreal bottom = page.height() - kFooterHeight;
    qreal tableTop = report.headerHeight + kGap + kChartHeight + kGap;
    int pageIndex = 0;
    if (tableTop + 2 * kRowHeight > bottom) {
        pageIndex = 1;
        tableTop = kContinuationHeight;
    }
    qreal y = tableTop + kRowHeight;
    for (qsizetype i = 0; i < report.rows.size(); ++i) {
        if (y + kRowHeight > bottom) {
            ++pageIndex;
            y = kContinuationHeight + kRowHeight;
        }
        layout.rows.append({pageIndex, QRectF(0, y, page.width(), kRowHeight)});
        y += kRowHeight;
    }
    layout.pageCount = pageIndex + 1;
    return layout;
}

FZReportResult render(const Report &report, QPageSize::PageSizeId pageSize, const QString &path,
                      FZReportPdfWriter::Layout *layoutOut)
{
    QByteArray bytes;
    QBuffer buffer(&bytes);
    buffer.open(QIODevice::WriteOnly);
    {
        QPdfWriter writer(&buffer);
        writer.setResolution(72);
        writer.setPageSize(QPageSize(pageSize));
        writer.setPageMargins(QMarginsF(kMargin, kMargin, kMargin, kMargin), QPageLayout::Point);
        writer.setTitle(report.runningTitle);
        writer.setCreator(QStringLiteral("BrightmereMobileSDKUI"));
        QPainter p;
        if (!p.begin(&writer)) {
            const QString message = QStringLiteral("the PDF of %1 could not be started").arg(path);
            BMLogger::sharedInstance().log(kModule, 3, message);
            return FZReportResult::failure(FZReportResult::Error::FileNotWritten, message);
        }
        p.setRenderHint(QPainter::Antialiasing);
        const QRectF page(0, 0, writer.width(), writer.height());
        const FZReportPdfWriter::Layout layout = placeRows(report, page);

        report.drawHeader(p, QRectF(0, 0, page.width(), report.headerHeight));
        drawChart(p, QRectF(0, report.headerHeight + kGap, page.width(), kChartHeight), report.chart);
        int currentPage = 0;
        bool headerDrawn = false;
        for (qsizetype i = 0; i < layout.rows.size(); ++i) {
            const FZReportPdfWriter::RowPlacement &placed = layout.rows.at(i);
            while (currentPage < placed.page) {
                drawFooter(p, page, report.runningTitle, currentPage, layout.pageCount);
                writer.newPage();
                ++currentPage;
                headerDrawn = false;
                drawText(p, QRectF(0, 0, page.width(), kContinuationHeight - 10), report.runningTitle,
                         font(QFont::DemiBold, 9), colour("text_blue"));
            }
            if (!headerDrawn) {
                drawTableHeader(p, placed.rect.top() - kRowHeight, page.width(), report.columns);
                headerDrawn = true;
            }
            drawRow(p, placed.rect, report.rows.at(i), i % 2 == 1, report.columns);
        }
        if (layout.rows.isEmpty())
            drawTableHeader(p, report.headerHeight + kGap + kChartHeight + kGap, page.width(), report.columns);
        drawFooter(p, page, report.runningTitle, currentPage, layout.pageCount);
        p.end();
        if (layoutOut)
            *layoutOut = layout;
    }
    return FZReportFile::writeBytes(path, bytes, kModule);
}

void drawTopOfFirstPage(QPainter &p, const QRectF &area, const QString &caption)
{
    p.fillRect(QRectF(area.left(), area.top(), area.width(), 4), colour("dark_blue"));
    drawText(p, QRectF(area.left(), area.top() + 10, area.width(), 16), caption, font(QFont::DemiBold, 9.5),
             colour("text_blue"));
}

} // namespace

FZReportPdfWriter::FZReportPdfWriter(const QLocale &locale)
    : m_locale(locale)
{
}

QPageSize::PageSizeId FZReportPdfWriter::pageSizeForLocale(const QLocale &locale)
{
    // Where Letter is the paper in the shops.
    static const QList<QLocale::Territory> letterTerritories{
        QLocale::UnitedStates, QLocale::Canada, QLocale::Mexico, QLocale::Chile, QLocale::Colombia,
        QLocale::Venezuela, QLocale::Philippines, QLocale::Guatemala, QLocale::CostaRica, QLocale::PuertoRico};
    return letterTerritories.contains(locale.territory()) ? QPageSize::Letter : QPageSize::A4;
}

FZReportResult FZReportPdfWriter::writeSetReport(const FZHistoricalResultSpotsSet::Ptr &set, const QString &path)
{
    m_layout = Layout();
    if (!set) {
        BMLogger::sharedInstance().log(kModule, 3, QStringLiteral("no set for the report %1").arg(path));
        return FZReportResult::failure(FZReportResult::Error::InvalidInput, QStringLiteral("no set for the report"));
    }
    const WifiTestResult::List spots = set->sortedSpots();
    QList<double> speeds;
    Report report;
    report.runningTitle = set->name();
    for (const WifiTestResult::Ptr &spot : spots) {
        if (!spot)
            continue;
        report.chart.labels.append(spot->label());
        speeds.append(spot->speedInMbps());
        const QDateTime time = QDateTime::fromMSecsSinceEpoch(
            qint64(std::llround((spot->timeAfterTest() + Brightmere::Clock::kReferenceDateUnixSeconds) * 1000.0)), Qt::UTC);
        const bool averaged = spot->isAverage();
        report.rows.append(
            {{{spot->label(), {}},
              {speedText(spot->speedInMbps()), {}},
              {averaged ? BMI18NManager::stringForCode(QStringLiteral("fairzones_report_yes"))
                        : BMI18NManager::stringForCode(QStringLiteral("fairzones_report_no")),
               {}},
              {averaged ? BMI18NManager::formatNumber(spot->duration(), 1) : QStringLiteral("\u2013"), {}},
              {spot->bssid(), {}},
              {textLocale().toString(time.toLocalTime().time(), QStringLiteral("HH:mm:ss")), {}}},
             averaged});
    }
    report.chart.series = {speeds};
    report.chart.colours = {colour("medium_blue")};
    report.columns = {
        {BMI18NManager::stringForCode(QStringLiteral("fairzones_report_column_spot")), 2.6, Qt::AlignLeft},
        {BMI18NManager::stringForCode(QStringLiteral("fairzones_report_column_speed")), 2.3, Qt::AlignRight},
        {BMI18NManager::stringForCode(QStringLiteral("fairzones_report_column_averaged")), 1.8, Qt::AlignLeft},
        {BMI18NManager::stringForCode(QStringLiteral("fairzones_report_column_duration")), 2.0, Qt::AlignRight},
        {BMI18NManager::stringForCode(QStringLiteral("fairzones_report_column_bssid")), 2.5, Qt::AlignLeft},
        {BMI18NManager::stringForCode(QStringLiteral("fairzones_report_column_time")), 1.6, Qt::AlignLeft}};

    QString summary = BMI18NManager::stringForCode(QStringLiteral("fairzones_report_no_spots"));
    QList<double> finite;
    std::copy_if(speeds.cbegin(), speeds.cend(), std::back_inserter(finite), [](double v) { return std::isfinite(v); });
    if (!finite.isEmpty()) {
        std::sort(finite.begin(), finite.end());
        const qsizetype mid = finite.size() / 2;
        const double median = finite.size() % 2 ? finite.at(mid) : (finite.at(mid - 1) + finite.at(mid)) / 2.0;
        summary = StringFormat::print(BMI18NManager::stringForCode(QStringLiteral("fairzones_report_summary")),
                                      speeds.size(), speedText(median), speedText(finite.first()),
                                      speedText(finite.last()));
    }
    const QString name = set->name();
    const QString network = StringFormat::print(
        BMI18NManager::stringForCode(QStringLiteral("fairzones_report_network")), set->ssid());
    const QString date = StringFormat::print(BMI18NManager::stringForCode(QStringLiteral("fairzones_report_date")),
                                             dateText(set->date()));
    report.headerHeight = 112;
    report.drawHeader = [=](QPainter &p, const QRectF &area) {
        drawTopOfFirstPage(p, area, BMI18NManager::stringForCode(QStringLiteral("fairzones_report_heading_set")));
        drawText(p, QRectF(0, 28, area.width(), 30), name, font(QFont::Bold, 20), colour("fz_report_text"));
        drawText(p, QRectF(0, 60, area.width(), 14), network, font(QFont::Normal, 9.5), colour("medium_gray"));
        drawText(p, QRectF(0, 75, area.width(), 14), date, font(QFont::Normal, 9.5), colour("medium_gray"));
        drawText(p, QRectF(0, 94, area.width(), 16), summary, font(QFont::DemiBold, 10), colour("fz_report_text"));
    };
    return render(report, pageSizeForLocale(m_locale), path, &m_layout);
}

FZReportResult FZReportPdfWriter::writeComparisonReport(const FZResultSpotsSetsComparison &comparison,
                                                        bool hideIdentical, const QString &path)
{
    m_layout = Layout();
    if (!comparison.firstSet() || !comparison.secondSet()) {
        BMLogger::sharedInstance().log(kModule, 3, QStringLiteral("a comparison report needs two sets: %1").arg(path));
        return FZReportResult::failure(FZReportResult::Error::InvalidInput,
                                       QStringLiteral("a comparison report needs two sets"));
    }
    const FZComparisonReportRows rows(comparison, hideIdentical);
    const QString firstName = comparison.nameForSetIndex(1);
    const QString secondName = comparison.nameForSetIndex(2);
    const QColor firstColour = colour("medium_blue");
    const QColor secondColour = colour("fz_compare_set");

    Report report;
    report.runningTitle = firstName + QStringLiteral(" \u2194 ") + secondName;
    QList<double> firstSpeeds;
    QList<double> secondSpeeds;
    for (const FZComparisonReportRows::Row &row : rows.rows()) {
        report.chart.labels.append(row.label);
        firstSpeeds.append(row.first ? row.first->speedInMbps() : qQNaN());
        secondSpeeds.append(row.second ? row.second->speedInMbps() : qQNaN());
        const QColor changeColour = !row.changeMbps || *row.changeMbps == 0.0
            ? QColor()
            : colour(*row.changeMbps > 0 ? "norva_action_bar_green" : "norva_red_1");
        const QString changeMbps = row.changeMbps
            ? (*row.changeMbps > 0 ? QStringLiteral("+") : QString()) + speedText(*row.changeMbps)
            : QStringLiteral("\u2013");
        const QString changePercent = row.changePercent
            ? FZComparisonReportRows::signedWholePercent(*row.changePercent) + QStringLiteral(" %")
            : QStringLiteral("\u2013");
        report.rows.append({{{row.label, {}},
                             {row.first ? speedText(row.first->speedInMbps()) : QStringLiteral("\u2013"), {}},
                             {row.second ? speedText(row.second->speedInMbps()) : QStringLiteral("\u2013"), {}},
                             {changeMbps, changeColour},
                             {changePercent, changeColour}},
                            false});
    }
    report.chart.series = {firstSpeeds, secondSpeeds};
    report.chart.colours = {firstColour, secondColour};
    report.chart.legend = {firstName, secondName};
    const QString setSpeed = BMI18NManager::stringForCode(QStringLiteral("fairzones_report_column_set_speed"));
    report.columns = {
        {BMI18NManager::stringForCode(QStringLiteral("fairzones_report_column_spot")), 3.0, Qt::AlignLeft},
        {StringFormat::print(setSpeed, firstName), 2.2, Qt::AlignRight},
        {StringFormat::print(setSpeed, secondName), 2.2, Qt::AlignRight},
        {BMI18NManager::stringForCode(QStringLiteral("fairzones_report_column_change_mbps")), 1.8, Qt::AlignRight},
        {Brightmere::StringFormat::print(BMI18NManager::stringForCode(QStringLiteral("fairzones_report_column_change_percent"))), 1.5, Qt::AlignRight}};

    struct Side
    {
        QString name, network, date, spots;
        QColor colour;
    };
    const auto sideOf = [](const FZHistoricalResultSpotsSet::Ptr &set, const QString &name, const QColor &c) {
        return Side{name,
                    StringFormat::print(BMI18NManager::stringForCode(QStringLiteral("fairzones_report_network")),
                                        set->ssid()),
                    StringFormat::print(BMI18NManager::stringForCode(QStringLiteral("fairzones_report_date")),
                                        dateText(set->date())),
                    StringFormat::print(BMI18NManager::stringForCode(QStringLiteral("fairzones_report_spots_count")),
                                        set->spotsCount()),
                    c};
    };
    const QList<Side> sides{sideOf(comparison.firstSet(), firstName, firstColour),
                            sideOf(comparison.secondSet(), secondName, secondColour)};
    const QString verdict = rows.verdict();
    report.headerHeight = 148;
    report.drawHeader = [=](QPainter &p, const QRectF &area) {
        drawTopOfFirstPage(p, area,
                           BMI18NManager::stringForCode(QStringLiteral("fairzones_report_heading_comparison")));
        const qreal columnWidth = (area.width() - kGap) / 2;
        for (qsizetype i = 0; i < sides.size(); ++i) {
            const Side &side = sides.at(i);
            const qreal x = qreal(i) * (columnWidth + kGap);
            p.fillRect(QRectF(x, 36, 10, 10), side.colour);
            drawText(p, QRectF(x + 16, 30, columnWidth - 16, 22), side.name, font(QFont::Bold, 15),
                     colour("fz_report_text"));
            drawText(p, QRectF(x + 16, 56, columnWidth - 16, 13), side.network, font(QFont::Normal, 9),
                     colour("medium_gray"));
            drawText(p, QRectF(x + 16, 70, columnWidth - 16, 13), side.date, font(QFont::Normal, 9),
                     colour("medium_gray"));
            drawText(p, QRectF(x + 16, 84, columnWidth - 16, 13), side.spots, font(QFont::Normal, 9),
                     colour("medium_gray"));
        }
        const QRectF box(0, 108, area.width(), 30);
        p.setPen(Qt::NoPen);
        p.setBrush(colour("fz_average_back"));
        p.drawRoundedRect(box, 4, 4);
        drawText(p, box.adjusted(10, 0, -10, 0), verdict, font(QFont::DemiBold, 11), colour("fz_report_text"));
    };
    return render(report, pageSizeForLocale(m_locale), path, &m_layout);
}
