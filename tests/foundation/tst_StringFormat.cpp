#include "BoundedRun.h"
#include "platform/foundation/StringFormat.h"

#include <QtTest>

using Brightmere::StringFormat;

class tst_StringFormat : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void format_data()
    {
        QTest::addColumn<QString>("format");
        QTest::addColumn<QVariantList>("arguments");
        QTest::addColumn<QString>("expected");
        QTest::newRow("objects, non-ASCII") << "'%@' – ñ %@" << QVariantList{"Home", "already exists"} << "'Home' – ñ already exists";
        QTest::newRow("long unsigned") << "Added plot %lu" << QVariantList{qulonglong(3)} << "Added plot 3";
        QTest::newRow("precision rounded, and its default") << "%.2f %@ %f" << QVariantList{12.345678, "Mbps", 1.5}
                                                            << "12.35 Mbps 1.500000";
        QTest::newRow("negative") << "%d|%.1f" << QVariantList{-4, -0.25} << "-4|-0.2";
        QTest::newRow("percent") << "100%% %@" << QVariantList{"done"} << "100% done";
        QTest::newRow("missing arguments") << "%@ and %@, n=%d" << QVariantList{"one"} << "one and (null), n=0";
        QTest::newRow("null object") << "x=%@" << QVariantList{QVariant()} << "x=(null)";
        QTest::newRow("number and map as objects") << "%@ %@" << QVariantList{2.5, QVariantMap{{"code", 200}}}
                                                   << "2.5 {\"code\":200}";
        QTest::newRow("text where a number goes") << "%d" << QVariantList{"7"} << "7";
        QTest::newRow("positional") << "%2$@ %1$@" << QVariantList{"world", "hello"} << "hello world";
        QTest::newRow("width and zero padding") << "[%5d][%-4d][%03d]" << QVariantList{42, 7, 5} << "[   42][7   ][005]";
        QTest::newRow("hexadecimal") << "%x %X %#x" << QVariantList{255, 255, 255} << "ff FF 0xff";
        QTest::newRow("doubles for unsigned conversions")
            << "%x|%u|%x|%u|%o" << QVariantList{255.9, -1.0, 1e300, qQNaN(), 8.0}
            << "ff|18446744073709551615|ffffffffffffffff|0|10";
        QTest::newRow("unknown conversion and dangling percent kept") << "%k and %@ 50%" << QVariantList{"x"} << "%k and x 50%";
    }
    void format()
    {
        QFETCH(QString, format);
        QFETCH(QVariantList, arguments);
        QFETCH(QString, expected);
        QCOMPARE(StringFormat::format(format, arguments), expected);
    }

    void printConvertsArguments()
    {
        QCOMPARE(StringFormat::print(QStringLiteral("%@ %lu %d %@ %.1f"), "text", std::size_t(4), -2, QStringLiteral("q"), 2.79f),
                 QStringLiteral("text 4 -2 q 2.8"));
    }

    void hostileFormatsStayBounded_data()
    {
        // Formats as a downloaded translation may hold them ("Spot %d" is one).
        QTest::addColumn<QString>("format");
        QTest::addColumn<QVariantList>("arguments");
        QTest::addColumn<qsizetype>("longest");
        const qsizetype field = StringFormat::kMaxFieldLength;
        QTest::newRow("huge width of an object") << "Spot %2000000000@" << QVariantList{"x"} << 5 + field;
        QTest::newRow("huge width of an integer") << "%999999999d" << QVariantList{7} << field;
        QTest::newRow("huge precision of an integer") << "%.2000000000d" << QVariantList{7} << field;
        QTest::newRow("a width that overflows int") << "%99999999999999999999d" << QVariantList{7} << field;
        QTest::newRow("a width taken from the arguments") << "%*d" << QVariantList{2147483647, 7} << field;
        QTest::newRow("many large fields") << QString("%999@").repeated(20000) << QVariantList{"x"}
                                           << StringFormat::kMaxOutputLength;
    }
    void hostileFormatsStayBounded()
    {
        QFETCH(QString, format);
        QFETCH(QVariantList, arguments);
        QFETCH(qsizetype, longest);
        // In a child with 256 MB and 5 s: a regression fails the row, it does
        // not take the run down.
        QVERIFY(runBounded([&] { return StringFormat::format(format, arguments).size() <= longest; }, 256u << 20));
    }
};

QTEST_GUILESS_MAIN(tst_StringFormat)
#include "tst_StringFormat.moc"
