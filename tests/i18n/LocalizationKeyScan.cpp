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

int lineAt(const QString &text, qsizetype pos)
{
    return int(QStringView(text).left(pos).count(u'\n')) + 1;
}

} // namespace

QList<KeyUse> keysInSource(const QString &source, const QString &fileName)
{
    // Literals and comments, whichever starts first: a comment marker inside
    // a literal is text, a quote inside a comment is comment.
    static const QRegularExpression token(QString::fromUtf8(
        R"re("(?:[^"\\\n]|\\.)*"|'(?:[^'\\\n]|\\.)*'|//[^\n]*|/\*[\s\S]*?(?:\*/|$))re"));
    static const QRegularExpression call(QString::fromUtf8(
        R"(\bstringForCode(?:WithDefault)?\s*\(\s*)"
        R"((?:(?:QStringLiteral|QLatin1StringView|QLatin1String|QString::fromUtf8|QString::fromLatin1|QString)\s*\(\s*)?)"
        R"re(u?"((?:[^"\\\n]|\\.)*)")re"));
    static const QRegularExpression marker(QString::fromUtf8(R"(^\s*i18n-key(?:\s+(\d+)\.\.(\d+))?\s*$)"));
    static const QRegularExpression literal(QString::fromUtf8(R"re((?<![A-Za-z0-9_'])(?:u8|u|U|L)?"((?:[^"\\\n]|\\.)*)")re"));

    // The source with comments blanked out (line breaks kept, so positions
    // keep their line numbers), and the text of each line's line comment.
    QString code = source;
    QHash<int, QString> lineComments;
    for (auto it = token.globalMatch(source); it.hasNext();) {
        const QRegularExpressionMatch match = it.next();
        if (!match.captured().startsWith(u'/'))
            continue;
        if (match.captured().startsWith(QLatin1String("//")))
            lineComments.insert(lineAt(source, match.capturedStart()), match.captured().mid(2));
        for (qsizetype i = match.capturedStart(); i < match.capturedEnd(); ++i)
            code[i] = code[i] == u'\n' ? u'\n' : u' ';
    }

    QList<KeyUse> uses;
    for (auto it = call.globalMatch(code); it.hasNext();) {
        const QRegularExpressionMatch match = it.next();
        uses.append({match.captured(1), fileName, lineAt(code, match.capturedStart(1))});
    }
    const QStringList codeLines = code.split(u'\n');
    for (auto comment = lineComments.cbegin(); comment != lineComments.cend(); ++comment) {
        const QRegularExpressionMatch mark = marker.match(comment.value());
        if (!mark.hasMatch())
            continue;
        const bool numbered = mark.hasCaptured(1);
        for (auto it = literal.globalMatch(codeLines[comment.key() - 1]); it.hasNext();) {
            const QString text = it.next().captured(1);
            if (!numbered)
                uses.append({text, fileName, comment.key()});
            for (int number = mark.captured(1).toInt(); numbered && number <= mark.captured(2).toInt(); ++number)
                uses.append({QString(text).replace(QLatin1String("%d"), QString::number(number)), fileName,
                             comment.key()});
        }
    }
    return uses;
}

QList<KeyUse> keysInTree(const QString &root, int *fileCount)
{
    QList<KeyUse> uses;
    int files = 0;
    QDirIterator it(root, {QStringLiteral("*.h"), QStringLiteral("*.cpp")}, QDir::Files, QDirIterator::Subdirectories);
    while (it.hasNext()) {
        QFile file(it.next());
        if (!file.open(QIODevice::ReadOnly))
            continue;
        ++files;
        uses += keysInSource(QString::fromUtf8(file.readAll()), QDir(root).relativeFilePath(file.fileName()));
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
        if (match.captured() != QLatin1String("%%"))
            found.append(match.hasMatch() ? match.captured() : QStringLiteral("%?"));
        pos = match.hasMatch() ? match.capturedEnd() : pos + 1;
    }
    return found;
}

} // namespace LocalizationKeyScan
