#include "LocalizationKeyScan.h"

#include <QDir>
#include <QDirIterator>
#include <QFile>
#include <QHash>
#include <QRegularExpression>

// The patterns are raw strings, kept out of the test's own file: moc reads
// that file, and it loses its way in a raw string inside a macro argument.

namespace LocalizationKeyScan {

namespace {

// The source with comments blanked out (line breaks kept, so positions keep
// their line numbers) and the text of the line comment of each line.
struct StrippedSource
{
    QString code;
    QHash<int, QString> lineComments;
};

StrippedSource stripComments(const QString &source)
{
    StrippedSource out;
    out.code.reserve(source.size());
    int line = 1;
    qsizetype i = 0;
    const qsizetype n = source.size();
    const auto copyQuoted = [&](QChar quote) {
        out.code.append(source[i++]);
        while (i < n && source[i] != quote && source[i] != u'\n') {
            if (source[i] == u'\\' && i + 1 < n)
                out.code.append(source[i++]);
            out.code.append(source[i++]);
        }
        if (i < n && source[i] == quote)
            out.code.append(source[i++]);
    };
    while (i < n) {
        const QChar c = source[i];
        const QChar next = i + 1 < n ? source[i + 1] : QChar();
        if (c == u'\n') {
            ++line;
            out.code.append(source[i++]);
        } else if (c == u'/' && next == u'/') {
            const qsizetype end = source.indexOf(u'\n', i);
            const qsizetype stop = end < 0 ? n : end;
            out.lineComments.insert(line, source.mid(i + 2, stop - i - 2));
            out.code.append(QString(stop - i, u' '));
            i = stop;
        } else if (c == u'/' && next == u'*') {
            const qsizetype end = source.indexOf(QStringLiteral("*/"), i + 2);
            const qsizetype stop = end < 0 ? n : end + 2;
            for (; i < stop; ++i) {
                if (source[i] == u'\n') {
                    ++line;
                    out.code.append(u'\n');
                } else {
                    out.code.append(u' ');
                }
            }
        } else if (c == u'"' && i > 0 && source[i - 1] == u'R') {
            // Raw string: R"delim( ... )delim"
            const qsizetype open = source.indexOf(u'(', i);
            const QString delimiter = open < 0 ? QString() : source.mid(i + 1, open - i - 1);
            const qsizetype close = open < 0 ? -1 : source.indexOf(u')' + delimiter + u'"', open);
            const qsizetype stop = close < 0 ? n : close + delimiter.size() + 2;
            for (; i < stop; ++i) {
                if (source[i] == u'\n')
                    ++line;
                out.code.append(source[i]);
            }
        } else if (c == u'"' || c == u'\'') {
            copyQuoted(c);
        } else {
            out.code.append(source[i++]);
        }
    }
    return out;
}

int lineAt(const QString &text, qsizetype pos)
{
    return int(QStringView(text).left(pos).count(u'\n')) + 1;
}

} // namespace

QList<KeyUse> keysInSource(const QString &source, const QString &fileName)
{
    static const QRegularExpression call(QString::fromUtf8(
        R"(\bstringForCode(?:WithDefault)?\s*\(\s*)"
        R"((?:(?:QStringLiteral|QLatin1StringView|QLatin1String|QString::fromUtf8|QString::fromLatin1|QString)\s*\(\s*)?)"
        R"re(u?"((?:[^"\\\n]|\\.)*)")re"));
    static const QRegularExpression marker(QString::fromUtf8(R"(^\s*i18n-key(?:\s+(\d+)\.\.(\d+))?\s*$)"));
    static const QRegularExpression literal(QString::fromUtf8(R"re((?<![A-Za-z0-9_'])(?:u8|u|U|L)?"((?:[^"\\\n]|\\.)*)")re"));

    const StrippedSource stripped = stripComments(source);
    QList<KeyUse> uses;
    for (auto it = call.globalMatch(stripped.code); it.hasNext();) {
        const QRegularExpressionMatch match = it.next();
        uses.append({match.captured(1), fileName, lineAt(stripped.code, match.capturedStart(1))});
    }

    const QStringList codeLines = stripped.code.split(u'\n');
    for (auto comment = stripped.lineComments.cbegin(); comment != stripped.lineComments.cend(); ++comment) {
        const QRegularExpressionMatch mark = marker.match(comment.value());
        if (!mark.hasMatch() || comment.key() > codeLines.size())
            continue;
        const bool numbered = mark.hasCaptured(1);
        const int first = numbered ? mark.captured(1).toInt() : 0;
        const int last = numbered ? mark.captured(2).toInt() : 0;
        for (auto it = literal.globalMatch(codeLines[comment.key() - 1]); it.hasNext();) {
            const QString text = it.next().captured(1);
            if (!numbered) {
                uses.append({text, fileName, comment.key()});
                continue;
            }
            for (int number = first; number <= last; ++number) {
                QString key = text;
                key.replace(key.indexOf(QStringLiteral("%d")), 2, QString::number(number));
                uses.append({key, fileName, comment.key()});
            }
        }
    }
    return uses;
}

QList<KeyUse> keysInTree(const QString &root, int *fileCount)
{
    QList<KeyUse> uses;
    int files = 0;
    QDirIterator it(root, {QStringLiteral("*.h"), QStringLiteral("*.cpp")}, QDir::Files,
                    QDirIterator::Subdirectories);
    while (it.hasNext()) {
        const QString path = it.next();
        QFile file(path);
        if (!file.open(QIODevice::ReadOnly))
            continue;
        ++files;
        uses += keysInSource(QString::fromUtf8(file.readAll()), QDir(root).relativeFilePath(path));
    }
    if (fileCount)
        *fileCount = files;
    return uses;
}

QStringList placeholders(const QString &text)
{
    static const QRegularExpression directive(QString::fromUtf8(
        R"(%(?:\d+\$)?[-+ #0']*(?:\d+|\*)?(?:\.(?:\d+|\*))?(?:hh|h|ll|l|q|L|z|t|j)?[@dDiuUxXoOfFeEgGcCsSaAp%])"));
    QStringList found;
    qsizetype pos = 0;
    while ((pos = text.indexOf(u'%', pos)) >= 0) {
        const QRegularExpressionMatch match = directive.match(text, pos, QRegularExpression::NormalMatch,
                                                              QRegularExpression::AnchorAtOffsetMatchOption);
        if (!match.hasMatch()) {
            found.append(QStringLiteral("%?"));
            ++pos;
            continue;
        }
        if (match.captured() != QLatin1String("%%"))
            found.append(match.captured());
        pos = match.capturedEnd();
    }
    return found;
}

int atoi(QStringView text)
{
    qsizetype i = 0;
    while (i < text.size() && text[i].isSpace())
        ++i;
    int sign = 1;
    if (i < text.size() && (text[i] == u'-' || text[i] == u'+'))
        sign = text[i++] == u'-' ? -1 : 1;
    int value = 0;
    while (i < text.size() && text[i].isDigit())
        value = value * 10 + text[i++].digitValue();
    return sign * value;
}

} // namespace LocalizationKeyScan
