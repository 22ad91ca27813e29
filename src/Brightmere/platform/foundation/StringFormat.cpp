#include "StringFormat.h"

#include <QByteArray>
#include <QJsonDocument>
#include <QLocale>
#include <QLoggingCategory>

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <limits>
#include <mutex>

namespace Brightmere {

Q_LOGGING_CATEGORY(lcStringFormat, "brightmere.foundation")

namespace {

// A field's width or precision as written (or given for "*"), cut to the
// limit; the first cut of the process is logged.
int boundedField(qint64 requested)
{
    if (requested <= StringFormat::kMaxFieldLength)
        return int(std::max<qint64>(requested, -1));
    static std::once_flag logged;
    std::call_once(logged, [requested] {
        qCWarning(lcStringFormat).noquote() << "StringFormat: a width or precision of" << requested
                                            << "is past the limit;" << StringFormat::kMaxFieldLength
                                            << "is used (logged once)";
    });
    return StringFormat::kMaxFieldLength;
}

// Digits of a number in a format, saturating rather than overflowing.
qint64 readDigits(const QString &format, qsizetype &i)
{
    qint64 value = 0;
    while (i < format.size() && format.at(i).isDigit()) {
        value = std::min<qint64>(value * 10 + format.at(i).digitValue(), std::numeric_limits<int>::max());
        ++i;
    }
    return value;
}

struct Directive
{
    bool leftAlign = false;
    bool plusSign = false;
    bool space = false;
    bool zeroPad = false;
    bool alternate = false;
    int width = -1;
    int precision = -1;
};

QString pad(QString text, const Directive &directive)
{
    if (directive.width <= text.size())
        return text;
    const int fill = int(directive.width - text.size());
    if (directive.leftAlign)
        return text + QString(fill, u' ');
    if (directive.zeroPad) {
        int signLength = (text.startsWith(u'-') || text.startsWith(u'+') || text.startsWith(u' ')) ? 1 : 0;
        return text.left(signLength) + QString(fill, u'0') + text.mid(signLength);
    }
    return QString(fill, u' ') + text;
}

QString withSign(const QString &digits, bool negative, const Directive &directive)
{
    if (negative)
        return u'-' + digits;
    if (directive.plusSign)
        return u'+' + digits;
    if (directive.space)
        return u' ' + digits;
    return digits;
}

// A double given for %u, %x or %o: a plain cast is undefined outside the
// unsigned range, so NaN reads as 0, negatives wrap as their integer part
// would in C, and anything too large saturates.
qulonglong unsignedFromDouble(double value)
{
    constexpr double twoTo63 = 9223372036854775808.0;
    constexpr double twoTo64 = 18446744073709551616.0;
    if (std::isnan(value))
        return 0;
    if (value < 0.0)
        return value <= -twoTo63 ? qulonglong(1) << 63 : qulonglong(qlonglong(value));
    return value >= twoTo64 ? std::numeric_limits<qulonglong>::max() : qulonglong(value);
}

QString formatInteger(const QVariant &value, QChar conversion, const Directive &directive)
{
    if (conversion == u'd' || conversion == u'i') {
        const qlonglong n = value.toLongLong();
        const qulonglong magnitude = n < 0 ? qulonglong(0) - qulonglong(n) : qulonglong(n);
        QString digits = QString::number(magnitude);
        if (directive.precision >= 0 && digits.size() < directive.precision)
            digits.prepend(QString(directive.precision - digits.size(), u'0'));
        return withSign(digits, n < 0, directive);
    }
    const qulonglong n = value.typeId() == QMetaType::Double ? unsignedFromDouble(value.toDouble())
                                                             : value.toULongLong();
    int base = 10;
    if (conversion == u'x' || conversion == u'X')
        base = 16;
    else if (conversion == u'o')
        base = 8;
    QString digits = QString::number(n, base);
    if (conversion == u'X')
        digits = digits.toUpper();
    if (directive.precision >= 0 && digits.size() < directive.precision)
        digits.prepend(QString(directive.precision - digits.size(), u'0'));
    if (directive.alternate && n != 0 && base == 16)
        digits.prepend(conversion == u'X' ? QStringLiteral("0X") : QStringLiteral("0x"));
    return digits;
}

QString formatFloating(double value, QChar conversion, const Directive &directive)
{
    // The C library's own rounding (to the nearest binary value, ties to
    // even), so "%.2f" prints exactly what the platform's formatter prints.
    const int precision = directive.precision >= 0 ? std::min(directive.precision, 60) : 6;
    char format[8] = {'%', '.', '*', char(conversion.toLatin1()), '\0'};
    char buffer[512];
    const int length = std::snprintf(buffer, sizeof buffer, format, precision, std::abs(value));
    QString digits = QString::fromLatin1(buffer, std::clamp(length, 0, int(sizeof buffer) - 1));
    return withSign(digits, std::signbit(value) && !qIsNaN(value), directive);
}

} // namespace

QString StringFormat::describe(const QVariant &value)
{
    if (!value.isValid() || value.isNull()) {
        // A null QString or QByteArray is still "nothing".
        if (value.typeId() != QMetaType::QString || value.toString().isNull())
            return QStringLiteral("(null)");
    }
    switch (value.typeId()) {
    case QMetaType::Bool:
        return value.toBool() ? QStringLiteral("1") : QStringLiteral("0");
    case QMetaType::Double:
    case QMetaType::Float:
        return QString::number(value.toDouble(), 'g', QLocale::FloatingPointShortest);
    case QMetaType::QVariantMap:
    case QMetaType::QVariantHash:
    case QMetaType::QVariantList:
    case QMetaType::QStringList:
        return QString::fromUtf8(QJsonDocument::fromVariant(value).toJson(QJsonDocument::Compact));
    case QMetaType::QByteArray:
        return u'<' + QString::fromLatin1(value.toByteArray().toHex()) + u'>';
    default:
        break;
    }
    if (value.canConvert<QString>())
        return value.toString();
    return QStringLiteral("<%1>").arg(QString::fromLatin1(value.typeName()));
}

QString StringFormat::format(const QString &format, const QVariantList &arguments)
{
    QString out;
    out.reserve(format.size() + 16 * arguments.size());
    int nextArgument = 0;
    const qsizetype n = format.size();
    qsizetype i = 0;
    while (i < n && out.size() <= kMaxOutputLength) {
        const QChar c = format.at(i);
        if (c != u'%') {
            out += c;
            ++i;
            continue;
        }
        const qsizetype start = i++;
        if (i < n && format.at(i) == u'%') {
            out += u'%';
            ++i;
            continue;
        }
        Directive directive;
        int position = -1;
        // Positional argument "n$".
        qsizetype j = i;
        const qint64 number = readDigits(format, j);
        if (j > i && j < n && format.at(j) == u'$') {
            position = int(std::min<qint64>(number, std::numeric_limits<int>::max()) - 1);
            i = j + 1;
        }
        for (; i < n; ++i) {
            const QChar f = format.at(i);
            if (f == u'-') directive.leftAlign = true;
            else if (f == u'+') directive.plusSign = true;
            else if (f == u' ') directive.space = true;
            else if (f == u'0') directive.zeroPad = true;
            else if (f == u'#') directive.alternate = true;
            else break;
        }
        auto readNumber = [&](int &target) {
            if (i < n && format.at(i) == u'*') {
                target = boundedField(nextArgument < arguments.size() ? arguments.at(nextArgument).toLongLong() : 0);
                ++nextArgument;
                ++i;
                return;
            }
            if (i < n && format.at(i).isDigit())
                target = boundedField(readDigits(format, i));
        };
        readNumber(directive.width);
        if (i < n && format.at(i) == u'.') {
            ++i;
            directive.precision = 0;
            readNumber(directive.precision);
        }
        while (i < n && QStringView(u"hlLqjzt").contains(format.at(i)))
            ++i;
        if (i >= n) {
            out += format.mid(start);
            break;
        }
        const QChar conversion = format.at(i++);
        const int index = position >= 0 ? position : nextArgument++;
        const bool present = index >= 0 && index < arguments.size();
        const QVariant argument = present ? arguments.at(index) : QVariant();
        QString text;
        switch (conversion.unicode()) {
        case u'@':
            text = describe(argument);
            if (directive.precision >= 0)
                text.truncate(directive.precision);
            break;
        case u's':
            text = present ? argument.toString() : QStringLiteral("(null)");
            if (directive.precision >= 0)
                text.truncate(directive.precision);
            break;
        case u'c':
            text = present ? QString(QChar(char16_t(argument.toUInt()))) : QString();
            break;
        case u'd': case u'i': case u'u': case u'x': case u'X': case u'o':
            text = formatInteger(argument, conversion, directive);
            break;
        case u'f': case u'F': case u'e': case u'E': case u'g': case u'G':
            text = formatFloating(argument.toDouble(), conversion, directive);
            break;
        default:
            // Not a conversion we know: keep the text as written.
            out += format.mid(start, i - start);
            if (position < 0)
                --nextArgument;
            continue;
        }
        out += pad(text, directive);
    }
    if (out.size() > kMaxOutputLength) {
        static std::once_flag logged;
        std::call_once(logged, [] {
            qCWarning(lcStringFormat).noquote() << "StringFormat: a text past" << kMaxOutputLength
                                                << "characters is cut there (logged once)";
        });
        out.truncate(kMaxOutputLength);
    }
    return out;
}

int StringFormat::hexDigitValue(QChar c)
{
    const char16_t u = c.unicode();
    if (u >= u'0' && u <= u'9')
        return u - u'0';
    if (u >= u'a' && u <= u'f')
        return u - u'a' + 10;
    if (u >= u'A' && u <= u'F')
        return u - u'A' + 10;
    return -1;
}

} // namespace Brightmere
