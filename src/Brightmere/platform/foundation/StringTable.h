#pragma once

#include <QByteArray>
#include <QHash>
#include <QString>
#include <QStringList>

namespace Brightmere {

// One parsed string table in the per-language "Localizable.strings" format:
//
//     /* A block comment */
//     "key" = "text";   // a line comment
//
// Texts and keys are quoted and may hold the escapes \" \\ \n \t \r and
// \uXXXX (two of them make a surrogate pair); a line break inside quotes is
// kept. Unquoted keys and texts made of letters, digits and _ $ + / : . -
// are accepted, and `"key";` alone maps a key to itself. The file is UTF-8,
// or UTF-16 when it starts with a byte-order mark. A later entry with the
// same key replaces an earlier one.
//
// A table is a plain value: once built it is never changed, so one instance
// may be read from any number of threads.
class StringTable
{
public:
    StringTable() = default;

    // Parses data. Parsing stops at the first malformed entry or invalid byte
    // sequence: the table keeps every entry completed before it, and *error
    // (when given) says what went wrong and on which line ("line 7: ...").
    // *error is cleared when the data is well formed.
    static StringTable parse(const QByteArray &data, QString *error = nullptr);

    // Reads and parses the file at path (a file path or a ":/" resource). A
    // missing or unreadable file gives an empty table; problems are logged
    // under "brightmere.foundation" and, when error is given, returned there.
    static StringTable load(const QString &path, QString *error = nullptr);

    // The text for key; a null QString when the table has no such entry (an
    // entry with an empty text gives an empty, non-null QString).
    QString value(const QString &key) const;
    bool contains(const QString &key) const;
    // Every key, sorted, so that listings and comparisons are stable.
    QStringList keys() const;
    int size() const;
    bool isEmpty() const;

private:
    QHash<QString, QString> m_entries;
};

} // namespace Brightmere
