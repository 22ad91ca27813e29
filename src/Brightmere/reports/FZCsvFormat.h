#pragma once

#include <QByteArray>
#include <QList>
#include <QString>
#include <QStringList>

// The text of the kit's CSV files: UTF-8 with a byte-order mark (spreadsheets
// then pick the right encoding without asking), CRLF line ends and RFC 4180
// quoting. Numbers always with a dot, whatever the locale.
class FZCsvFormat
{
public:
    // The field as written: quoted, inner quotes doubled, when it holds a
    // comma, a quote, a line break or blanks at either end, or begins with
    // an apostrophe.
    static QString field(const QString &text);
    // A text cell that a spreadsheet must not run as a formula: one that
    // begins with "=", "+", "-", "@", a tab or a carriage return (a spot
    // name, a set title, a neighbour's SSID) gets a leading apostrophe,
    // which spreadsheets read as "this is text". Numbers are not passed
    // through here: they stay numbers.
    static QString text(const QString &text);
    // The whole document, the header first; every header cell is a text.
    static QByteArray document(const QStringList &header, const QList<QStringList> &rows);
    // Fixed decimals with a dot; empty for a value that is not a number.
    static QString decimal(double value, int decimals);
    // "2025-03-14T09:30:00.000Z" for seconds since the reference date.
    static QString isoTime(double secondsSinceReferenceDate);
};
