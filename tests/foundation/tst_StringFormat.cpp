#include "BoundedRun.h"
#include "platform/foundation/StringFormat.h"

#include <QtTest>

using Brightmere::StringFormat;

class tst_StringFormat : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void format_data();
    void format();
    void printConvertsArguments();
    void hostileFormatsStayBounded_data();
    void hostileFormatsStayBounded();
};

void tst_StringFormat::format_data()
{
    QTest::addColumn<QString>("format");
    QTest::addColumn<QVariantList>("arguments");
    QTest::addColumn<QString>("expected");

    QTest::newRow("objects") << "'%@' %@" << QVariantList{QStringLiteral("Home"), QStringLiteral("already exists")} << "'Home' already exists";
    QTest::newRow("integer placeholder") << "Spot %d" << QVariantList{8} << "Spot 8";
    QTest::newRow("long unsigned") << "Added plot %lu" << QVariantList{qulonglong(3)} << "Added plot 3";
    QTest::newRow("two decimals rounded") << "%.2f %@" << QVariantList{12.345678, QStringLiteral("Mbps")} << "12.35 Mbps";
    QTest::newRow("default precision") << "%f" << QVariantList{1.5} << "1.500000";
    QTest::newRow("negative") << "%d|%.1f" << QVariantList{-4, -0.25} << "-4|-0.2";
    QTest::newRow("percent") << "100%% %@" << QVariantList{QStringLiteral("done")} << "100% done";
    QTest::newRow("line feed kept") << "%@\n%@" << QVariantList{QStringLiteral("a"), QStringLiteral("b")} << "a\nb";
    QTest::newRow("missing object") << "%@ and %@" << QVariantList{QStringLiteral("one")} << "one and (null)";
    QTest::newRow("missing integer") << "n=%d" << QVariantList{} << "n=0";
    QTest::newRow("null object") << "x=%@" << QVariantList{QVariant()} << "x=(null)";
    QTest::newRow("number as object") << "%@" << QVariantList{2.5} << "2.5";
    QTest::newRow("boolean as object") << "%@" << QVariantList{true} << "1";
    QTest::newRow("map as object") << "%@" << QVariantList{QVariantMap{{QStringLiteral("code"), 200}}} << "{\"code\":200}";
    QTest::newRow("text where a number goes") << "%d" << QVariantList{QStringLiteral("7")} << "7";
    QTest::newRow("positional") << "%2$@ %1$@" << QVariantList{QStringLiteral("world"), QStringLiteral("hello")} << "hello world";
    QTest::newRow("width and zero padding") << "[%5d][%-4d][%03d]" << QVariantList{42, 7, 5} << "[   42][7   ][005]";
    QTest::newRow("hexadecimal") << "%x %X %#x" << QVariantList{255, 255, 255} << "ff FF 0xff";
    QTest::newRow("doubles for unsigned conversions")
        << "%x|%u|%x|%u|%o" << QVariantList{255.9, -1.0, 1e300, qQNaN(), 8.0}
        << "ff|18446744073709551615|ffffffffffffffff|0|10";
    QTest::newRow("unknown conversion kept") << "%k and %@" << QVariantList{QStringLiteral("x")} << "%k and x";
    QTest::newRow("dangling percent") << "50%" << QVariantList{} << "50%";
    QTest::newRow("non-ASCII") << "%@ – ñ" << QVariantList{QStringLiteral("Cocina")} << "Cocina – ñ";
}

void tst_StringFormat::format()
{
    QFETCH(QString, format);
    QFETCH(QVariantList, arguments);
    QFETCH(QString, expected);
    QCOMPARE(StringFormat::format(format, arguments), expected);
}

void tst_StringFormat::printConvertsArguments()
{
    const std::size_t count = 4;
    QCOMPARE(StringFormat::print(QStringLiteral("%@ %lu %d %@ %.1f"), "text", count, -2,
                                 QStringLiteral("q"), 2.79f),
             QStringLiteral("text 4 -2 q 2.8"));
}

void tst_StringFormat::hostileFormatsStayBounded_data()
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

void tst_StringFormat::hostileFormatsStayBounded()
{
    QFETCH(QString, format);
    QFETCH(QVariantList, arguments);
    QFETCH(qsizetype, longest);
    // In a child with 256 MB and 5 s: a regression fails the row, it does
    // not take the run down.
    QVERIFY(runBounded([&] { return StringFormat::format(format, arguments).size() <= longest; }, 256u << 20));
}

QTEST_GUILESS_MAIN(tst_StringFormat)
#include "tst_StringFormat.moc"
