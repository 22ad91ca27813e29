#pragma once

#include <QList>
#include <QString>
#include <QStringList>

// Reading localisation keys out of the kit's sources, and the printf
// directives out of texts, for the checks of the built-in string tables.
namespace LocalizationKeyScan {

struct KeyUse
{
    QString key;
    QString file;
    int line = 0;
};

// The keys a source file uses: literal first arguments of stringForCode( and
// stringForCodeWithDefault( (bare or in QStringLiteral( and the like), and
// every literal of a line whose comment is "// i18n-key", or
// "// i18n-key N..M" for a "%d" pattern standing for the keys N to M.
// Comments are not read for keys.
QList<KeyUse> keysInSource(const QString &source, const QString &fileName);

// The same over every .h and .cpp file under root; file names are relative.
QList<KeyUse> keysInTree(const QString &root, int *fileCount = nullptr);

// printf directives of a text, in order ("%%" is not one). A '%' that starts
// no directive is returned as "%?".
QStringList placeholders(const QString &text);

} // namespace LocalizationKeyScan
