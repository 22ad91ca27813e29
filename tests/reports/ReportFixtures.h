#pragma once

#include <Brightmere/model/FZHistoricalResultSpotsSet.h>

#include <QStringList>

#include <utility>

// Sets with known values for the report tests.
namespace ReportFixtures {

inline QDateTime day(int n)
{
    return QDateTime(QDate(2025, 3, 14), QTime(9, 30, 0, 250), Qt::UTC).addDays(n);
}

inline WifiTestResult::Ptr spot(const QString &label, double speed, double time = 763637400.0)
{
    auto result = WifiTestResult::create(speed, time);
    result->setLabel(label);
    result->setSsid(QStringLiteral("HomeNet"));
    result->setBssid(QStringLiteral("a4:2b:b0:5c:17:e2"));
    return result;
}

// One spot per label, speeds 10, 20, 30... unless given.
inline FZHistoricalResultSpotsSet::Ptr makeSet(const QString &name, const QStringList &labels,
                                               const QList<double> &speeds = {}, int dayOffset = 0)
{
    WifiTestResult::List spots;
    for (qsizetype i = 0; i < labels.size(); ++i)
        spots.append(spot(labels.at(i), speeds.value(i, 10.0 * double(i + 1)), 763637400.0 + double(i) * 60.0));
    return FZHistoricalResultSpotsSet::create(name, QStringLiteral("HomeNet"), day(dayOffset), spots);
}

inline FZHistoricalResultSpotsSet::Ptr numberedSet(const QString &name, int count)
{
    QStringList labels;
    QList<double> speeds;
    for (int i = 1; i <= count; ++i) {
        labels.append(QStringLiteral("Spot %1").arg(i));
        speeds.append(5.0 + double((i * 37) % 90) + 0.25);
    }
    return makeSet(name, labels, speeds);
}

// A reader as strict as a spreadsheet's: RFC 4180 fields, CRLF between records.
inline QList<QStringList> parseCsv(const QByteArray &csv)
{
    QString text = QString::fromUtf8(csv);
    if (text.startsWith(QChar(0xFEFF)))
        text.remove(0, 1);
    QList<QStringList> records{QStringList()};
    QString field;
    bool quoted = false;
    for (qsizetype i = 0; i < text.size(); ++i) {
        const QChar c = text.at(i);
        if (quoted && c == u'"' && i + 1 < text.size() && text.at(i + 1) == u'"')
            field.append(text.at(++i));
        else if (c == u'"')
            quoted = !quoted;
        else if (!quoted && c == u',')
            records.last().append(std::exchange(field, QString()));
        else if (!quoted && c == u'\r' && i + 1 < text.size() && text.at(i + 1) == u'\n')
            (records.last().append(std::exchange(field, QString())), records.append(QStringList()), ++i);
        else
            field.append(c);
    }
    if (records.last().isEmpty() && field.isEmpty())
        records.removeLast();
    return records;
}

// The first field of each record after the header.
inline QStringList firstColumn(const QByteArray &csv)
{
    QStringList labels;
    for (const QStringList &record : parseCsv(csv).mid(1))
        labels.append(record.value(0));
    return labels;
}

} // namespace ReportFixtures
