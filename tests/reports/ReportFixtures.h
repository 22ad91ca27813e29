#pragma once

#include "model/FZHistoricalResultSpotsSet.h"

#include <QStringList>

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

// The lines of a CSV without its byte-order mark, split at CRLF.
inline QStringList csvLines(const QByteArray &csv)
{
    QString text = QString::fromUtf8(csv);
    if (text.startsWith(QChar(0xFEFF)))
        text.remove(0, 1);
    QStringList lines = text.split(QStringLiteral("\r\n"));
    if (!lines.isEmpty() && lines.last().isEmpty())
        lines.removeLast();
    return lines;
}

} // namespace ReportFixtures
