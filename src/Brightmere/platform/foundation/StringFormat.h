#pragma once

#include <Brightmere/FoundationExport.h>

#include <QString>
#include <QVariant>
#include <QVariantList>

#include <type_traits>

namespace Brightmere {

// printf-style formatting with the object placeholder "%@", as the kit's
// texts and log lines use it ("'%@' %@", "Added plot %lu", "Spot %d").
// Conversions: %@ (any value's description), d i u x X o c, f F e E g G, s,
// %%, with flags, width, precision, length modifiers (ignored) and positional
// arguments ("%2$@"). A missing argument formats as "(null)" or 0; a value of
// the wrong kind is converted, never an error.
//
// Formats come from outside too (a downloaded translation), so nothing in
// one can make formatting slow or large: a width or precision above
// kMaxFieldLength counts as that limit, and the text stops growing at
// kMaxOutputLength characters. Either is logged once per process.
class BRIGHTMERE_FOUNDATION_EXPORT StringFormat
{
public:
    static constexpr int kMaxFieldLength = 1000;
    static constexpr qsizetype kMaxOutputLength = 1 << 20;

    static QString format(const QString &format, const QVariantList &arguments);

    template<typename... Args>
    static QString print(const QString &fmt, const Args &...arguments)
    {
        return format(fmt, QVariantList{toVariant(arguments)...});
    }

    // The text of a value as "%@" prints it: "(null)" for nothing, JSON for
    // maps and lists, shortest round-trip text for numbers.
    static QString describe(const QVariant &value);

    // The value of one hexadecimal digit (either case), or -1 for any other character.
    static int hexDigitValue(QChar c);

    template<typename T>
    static QVariant toVariant(const T &value)
    {
        if constexpr (std::is_same_v<T, QVariant>)
            return value;
        else if constexpr (std::is_same_v<T, bool>)
            return QVariant(value);
        else if constexpr (std::is_integral_v<T> && std::is_signed_v<T>)
            return QVariant(qlonglong(value));
        else if constexpr (std::is_integral_v<T>)
            return QVariant(qulonglong(value));
        else if constexpr (std::is_enum_v<T>)
            return QVariant(qlonglong(value));
        else if constexpr (std::is_floating_point_v<T>)
            return QVariant(double(value));
        else if constexpr (std::is_convertible_v<T, const char *>)
            return QVariant(QString::fromUtf8(value));
        else if constexpr (std::is_convertible_v<T, QString>)
            return QVariant(QString(value));
        else
            return QVariant::fromValue(value);
    }
};

} // namespace Brightmere
