#include "StringTable.h"
#include "StringFormat.h"

#include <QFile>
#include <QLoggingCategory>
#include <QStringDecoder>

#include <algorithm>

namespace Brightmere {

Q_LOGGING_CATEGORY(lcStringTable, "brightmere.foundation")

namespace {

// Decodes the file's bytes. On an invalid byte sequence *invalidAt is the
// position of the first character that could not be decoded (-1 otherwise);
// the text up to there is good.
QString decode(const QByteArray &data, qsizetype *invalidAt, const char **encodingName)
{
    QStringConverter::Encoding encoding = QStringConverter::Utf8;
    qsizetype skip = 0;
    if (data.startsWith("\xEF\xBB\xBF")) {
        skip = 3;
    } else if (data.startsWith("\xFF\xFE")) {
        encoding = QStringConverter::Utf16LE;
        skip = 2;
    } else if (data.startsWith("\xFE\xFF")) {
        encoding = QStringConverter::Utf16BE;
        skip = 2;
    }
    *encodingName = encoding == QStringConverter::Utf8 ? "UTF-8" : "UTF-16";

    QStringDecoder decoder(encoding, QStringConverter::Flag::Stateless);
    QString text = decoder.decode(QByteArrayView(data).sliced(skip));
    *invalidAt = -1;
    if (decoder.hasError()) {
        // A decoding error leaves a replacement character behind; the first one
        // marks where the damage starts (a real U+FFFD in a table is not worth
        // telling apart: it would only move the error earlier).
        const qsizetype replacement = text.indexOf(QChar::ReplacementCharacter);
        *invalidAt = replacement >= 0 ? replacement : text.size();
    }
    return text;
}

bool isUnquotedChar(QChar c)
{
    if (c.unicode() >= 0x80)
        return false;
    const char ch = char(c.unicode());
    return (ch >= 'a' && ch <= 'z') || (ch >= 'A' && ch <= 'Z') || (ch >= '0' && ch <= '9')
        || ch == '_' || ch == '$' || ch == '+' || ch == '/' || ch == ':' || ch == '.' || ch == '-';
}

class Parser
{
public:
    explicit Parser(QStringView text)
        : m_text(text)
    {
    }

    // Reads entries into entries until the end or the first fault. Returns
    // false on a fault; faultIsAtEnd() then tells whether the text simply ran out.
    bool run(QHash<QString, QString> &entries)
    {
        for (;;) {
            if (!skipSpaceAndComments())
                return false;
            if (m_pos >= m_text.size())
                return true;
            const qsizetype entryStart = m_pos;
            QString key;
            if (!readToken(&key, "a quoted key"))
                return false;
            // A missing '=' or ';' is reported on the line where the entry
            // stops, not on the line of whatever comes next.
            const qsizetype keyEnd = m_pos;
            if (!skipSpaceAndComments())
                return false;
            if (m_pos >= m_text.size())
                return failAtEnd(entryStart, "the entry has no '=' or ';'");
            QString value;
            if (m_text[m_pos] == u';') {
                value = key;
            } else {
                if (m_text[m_pos] != u'=')
                    return fail(keyEnd, QStringLiteral("expected '=' after the key \"%1\"").arg(key));
                ++m_pos;
                if (!skipSpaceAndComments())
                    return false;
                if (m_pos >= m_text.size())
                    return failAtEnd(entryStart, "the entry has no text");
                if (!readToken(&value, "a quoted text"))
                    return false;
                const qsizetype valueEnd = m_pos;
                if (!skipSpaceAndComments())
                    return false;
                if (m_pos >= m_text.size())
                    return failAtEnd(entryStart, "the entry has no closing ';'");
                if (m_text[m_pos] != u';')
                    return fail(valueEnd, QStringLiteral("expected ';' after the text of \"%1\"").arg(key));
            }
            ++m_pos;
            entries.insert(key, value);
        }
    }

    bool faultIsAtEnd() const { return m_faultAtEnd; }
    qsizetype faultPosition() const { return m_faultPos; }
    QString faultMessage() const { return m_fault; }

private:
    bool fail(qsizetype pos, const QString &message)
    {
        m_faultPos = pos;
        m_fault = message;
        return false;
    }

    bool failAtEnd(qsizetype pos, const char *message)
    {
        m_faultAtEnd = true;
        return fail(pos, QString::fromLatin1(message));
    }

    bool skipSpaceAndComments()
    {
        while (m_pos < m_text.size()) {
            const QChar c = m_text[m_pos];
            if (c.isSpace() || c == QChar(0xFEFF)) {
                ++m_pos;
            } else if (c == u'/' && m_pos + 1 < m_text.size() && m_text[m_pos + 1] == u'/') {
                while (m_pos < m_text.size() && m_text[m_pos] != u'\n')
                    ++m_pos;
            } else if (c == u'/' && m_pos + 1 < m_text.size() && m_text[m_pos + 1] == u'*') {
                const qsizetype start = m_pos;
                const qsizetype close = m_text.indexOf(u"*/", m_pos + 2);
                if (close < 0)
                    return failAtEnd(start, "a comment is never closed");
                m_pos = close + 2;
            } else {
                return true;
            }
        }
        return true;
    }

    bool readToken(QString *out, const char *what)
    {
        const QChar c = m_text[m_pos];
        if (c == u'"')
            return readQuoted(out);
        if (isUnquotedChar(c)) {
            const qsizetype start = m_pos;
            while (m_pos < m_text.size() && isUnquotedChar(m_text[m_pos]))
                ++m_pos;
            *out = m_text.mid(start, m_pos - start).toString();
            return true;
        }
        return fail(m_pos, QStringLiteral("expected %1, found %2")
                               .arg(QLatin1String(what), describe(c)));
    }

    static QString describe(QChar c)
    {
        if (c.isPrint())
            return QStringLiteral("'%1'").arg(c);
        return QStringLiteral("the character U+%1").arg(int(c.unicode()), 4, 16, QLatin1Char('0')).toUpper();
    }

    bool readQuoted(QString *out)
    {
        const qsizetype start = m_pos;
        ++m_pos;
        QString result;
        while (m_pos < m_text.size()) {
            const QChar c = m_text[m_pos++];
            if (c == u'"') {
                // "" is an empty text, not an absent one.
                *out = result.isNull() ? QStringLiteral("") : result;
                return true;
            }
            if (c != u'\\') {
                result.append(c);
                continue;
            }
            if (m_pos >= m_text.size())
                break;
            const QChar escaped = m_text[m_pos++];
            switch (escaped.unicode()) {
            case u'n': result.append(u'\n'); break;
            case u't': result.append(u'\t'); break;
            case u'r': result.append(u'\r'); break;
            case u'u':
            case u'U': {
                int code = 0;
                for (int i = 0; i < 4; ++i) {
                    const int digit = m_pos < m_text.size() ? StringFormat::hexDigitValue(m_text[m_pos]) : -1;
                    if (digit < 0)
                        return fail(m_pos - 2 - i, QStringLiteral("\\u needs four hexadecimal digits"));
                    code = code * 16 + digit;
                    ++m_pos;
                }
                result.append(QChar(char16_t(code)));
                break;
            }
            default:
                // \" \\ and any other escaped character stand for themselves.
                result.append(escaped);
                break;
            }
        }
        return failAtEnd(start, "a quoted text is never closed");
    }

    QStringView m_text;
    qsizetype m_pos = 0;
    qsizetype m_faultPos = -1;
    bool m_faultAtEnd = false;
    QString m_fault;
};

int lineOf(QStringView text, qsizetype pos)
{
    pos = std::clamp<qsizetype>(pos, 0, text.size());
    return int(text.left(pos).count(u'\n')) + 1;
}

} // namespace

StringTable StringTable::parse(const QByteArray &data, QString *error)
{
    StringTable table;
    if (error)
        error->clear();

    qsizetype invalidAt = -1;
    const char *encodingName = "";
    const QString text = decode(data, &invalidAt, &encodingName);
    const QStringView good = invalidAt >= 0 ? QStringView(text).left(invalidAt) : QStringView(text);

    Parser parser(good);
    QString message;
    if (!parser.run(table.m_entries)) {
        // Running out of text where the bytes went bad is the encoding's
        // fault, not a truncated entry.
        if (invalidAt >= 0 && parser.faultIsAtEnd())
            message = QStringLiteral("line %1: not valid %2 text")
                          .arg(lineOf(text, invalidAt))
                          .arg(QLatin1String(encodingName));
        else
            message = QStringLiteral("line %1: %2")
                          .arg(lineOf(good, parser.faultPosition()))
                          .arg(parser.faultMessage());
    } else if (invalidAt >= 0) {
        message = QStringLiteral("line %1: not valid %2 text")
                      .arg(lineOf(text, invalidAt))
                      .arg(QLatin1String(encodingName));
    }
    if (error)
        *error = message;
    return table;
}

StringTable StringTable::load(const QString &path, QString *error)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly)) {
        const QString message = QStringLiteral("cannot read %1: %2").arg(path, file.errorString());
        qCWarning(lcStringTable).noquote() << "StringTable:" << message;
        if (error)
            *error = message;
        return {};
    }
    QString parseError;
    StringTable table = parse(file.readAll(), &parseError);
    if (!parseError.isEmpty()) {
        qCWarning(lcStringTable).noquote()
            << "StringTable:" << path << parseError << "- kept" << table.size() << "entries";
        parseError = path + QStringLiteral(", ") + parseError;
    }
    if (error)
        *error = parseError;
    return table;
}

QString StringTable::value(const QString &key) const
{
    const auto it = m_entries.constFind(key);
    return it == m_entries.constEnd() ? QString() : *it;
}

bool StringTable::contains(const QString &key) const
{
    return m_entries.contains(key);
}

QStringList StringTable::keys() const
{
    QStringList list = m_entries.keys();
    list.sort();
    return list;
}

int StringTable::size() const
{
    return int(m_entries.size());
}

bool StringTable::isEmpty() const
{
    return m_entries.isEmpty();
}

} // namespace Brightmere
