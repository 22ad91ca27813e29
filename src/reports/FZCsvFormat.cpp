#include "FZCsvFormat.h"

#include "platform/foundation/Clock.h"

#include <QDateTime>

#include <cmath>

QString FZCsvFormat::field(const QString &text)
{
    const bool needsQuotes = text.contains(u',') || text.contains(u'"') || text.contains(u'\n')
        || text.contains(u'\r') || (!text.isEmpty() && (text.front().isSpace() || text.back().isSpace()));
    if (!needsQuotes)
        return text;
    QString quoted = text;
    quoted.replace(u'"', QStringLiteral("\"\""));
    return u'"' + quoted + u'"';
}

QByteArray FZCsvFormat::document(const QStringList &header, const QList<QStringList> &rows)
{
    QString text;
    text.reserve((rows.size() + 1) * 96);
    const auto appendRow = [&text](const QStringList &row) {
        for (qsizetype i = 0; i < row.size(); ++i) {
            if (i > 0)
                text.append(u',');
            text.append(field(row.at(i)));
        }
        text.append(QLatin1String("\r\n"));
    };
    appendRow(header);
    for (const QStringList &row : rows)
        appendRow(row);
    return QByteArray("\xEF\xBB\xBF") + text.toUtf8();
}

QString FZCsvFormat::decimal(double value, int decimals)
{
    if (!std::isfinite(value))
        return QString();
    QString text = QString::number(value, 'f', decimals);
    // -0.00 reads as a change where there is none.
    if (text.startsWith(u'-') && QStringView(text).mid(1).toString().remove(u'0').remove(u'.').isEmpty())
        text.remove(0, 1);
    return text;
}

QString FZCsvFormat::isoTime(double secondsSinceReferenceDate)
{
    if (!std::isfinite(secondsSinceReferenceDate))
        return QString();
    const qint64 ms = qint64(std::llround((secondsSinceReferenceDate + Brightmere::Clock::kReferenceDateUnixSeconds) * 1000.0));
    return QDateTime::fromMSecsSinceEpoch(ms, Qt::UTC).toString(Qt::ISODateWithMs);
}
