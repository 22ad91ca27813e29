#pragma once

#include <Brightmere/SDKUIExport.h>

#include <QByteArray>
#include <QHash>
#include <QString>
#include <QStringList>

#include <optional>

/// The text of a cached bundle file, UTF-8: one "key=text" line per entry,
/// ended by a line feed. A line feed inside a text is written as backslash-n
/// and every backslash-n read back becomes a line feed (so a text holding a
/// literal backslash-n comes back with a line feed). Reading splits at line
/// feeds, skips lines without "=", takes the key up to the first "=" (texts
/// may hold "=") and lets a later line win over an earlier one with its key.
/// A leading U+FEFF is kept as part of the first key, so a file reads back
/// exactly as it was written.
class BRIGHTMERE_SDKUI_EXPORT BMI18NBundleFile
{
public:
    /// Texts by key.
    using Texts = QHash<QString, QString>;

    /// Keys that cannot stand in the format (holding "=" or a line feed) are
    /// left out and, when skippedKeys is given, listed there. Lines come in the
    /// map's order, which carries no meaning.
    static QByteArray encode(const Texts &texts, QStringList *skippedKeys = nullptr);

    /// Empty optional when data is not valid UTF-8 (a file that was never a
    /// bundle); otherwise every line that parses. skippedLines counts the
    /// non-empty lines without "=".
    static std::optional<Texts> decode(const QByteArray &data, int *skippedLines = nullptr);

    /// A few of keys for a log line, sorted and quoted: '"a", "b" and 3 more'.
    static QString keysForLog(QStringList keys);
};
