#include "FZCsvFormat.h"

#include <Brightmere/platform/foundation/Clock.h>

#include <QDateTime>

#include <cmath>

QString FZCsvFormat::field(const QString &text)
{
    const bool needsQuotes = text.contains(u',') || text.contains(u'"') || text.contains(u'\n')
        || text.contains(u'\r') || (!text.isEmpty() && (text.front().isSpace() || text.back().isSpace()))
        || text.startsWith(u'\'');
    if (!needsQuotes)
        return text;
    QString quoted = text;
    quoted.replace(u'"', QStringLiteral("\"\""));
    return u'"' + quoted + u'"';
}

QString FZCsvFormat::text(const QString &text)
{
    static const QString kFormulaStarts = QStringLiteral("=+-@\t\r");
    if (!text.isEmpty() && kFormulaStarts.contains(text.front()))
        return u'\'' + text;
    return text;
}

QByteArray FZCsvFormat::document(const QStringList &header, const QList<QStringList> &rows)
{
    QString out;
    out.reserve((rows.size() + 1) * 96);
    const auto appendRow = [&out](const QStringList &row) {
        for (qsizetype i = 0; i < row.size(); ++i) {
            if (i > 0)
                out.append(u',');
            out.append(field(row.at(i)));
        }
        out.append(QLatin1String("\r\n"));
    };
    QStringList headerTexts;
    for (const QString &cell : header)
        headerTexts.append(text(cell));
    appendRow(headerTexts);
    for (const QStringList &row : rows)
        appendRow(row);
    return QByteArray("\xEF\xBB\xBF") + out.toUtf8();
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
