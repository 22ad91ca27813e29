#include "LogCapture.h"
#include "TestEnvironment.h"
#include "ui/BrightmereColor.h"

#include <QTest>

#include <cmath>
#include <limits>

using namespace Brightmere;

namespace {

int colorLogLines(const LogCapture &log)
{
    int count = 0;
    for (const LogCapture::Line &line : log.lines())
        count += line.module == QLatin1String("BrightmereColor") ? 1 : 0;
    return count;
}

QColor rgb(quint32 hex)
{
    return QColor(int(hex >> 16) & 0xff, int(hex >> 8) & 0xff, int(hex) & 0xff);
}

QString hexText(uint r, uint g, uint b)
{
    const QLatin1Char zero('0');
    return QStringLiteral("%1%2%3").arg(r, 2, 16, zero).arg(g, 2, 16, zero).arg(b, 2, 16, zero);
}

} // namespace

class tst_BrightmereColor : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init() { m_env = std::make_unique<TestEnvironment>(); }
    void cleanup() { m_env.reset(); }
    void namedColors_data();
    void namedColors();
    void hexTexts_data();
    void hexTexts();
    void componentsAreCheckedAndScaled_data();
    void componentsAreCheckedAndScaled();
    void colorToStringTruncates_data();
    void colorToStringTruncates();
    void everyByteSurvivesTheRoundTrip();
    void equalityAcrossColourModels_data();
    void equalityAcrossColourModels();

private:
    std::unique_ptr<TestEnvironment> m_env;
};

void tst_BrightmereColor::namedColors_data()
{
    QTest::addColumn<QString>("key");
    QTest::addColumn<QString>("hex"); // empty: no such colour
    const QList<std::pair<const char *, const char *>> table{
        {"norva_red_1", "ff0000"},          {"norva_action_bar_green", "23aca3"},
        {"dark_blue", "066da9"},            {"disable_gray", "cccccc"},
        {"fixed_action_bar_green", "23aca3"}, {"fixed_dark_blue", "066da9"},
        {"fixed_light_gray", "f0f0f0"},     {"medium_blue", "3593da"},
        {"medium_gray", "7f7f7f"},          {"selected_button_blue", "0d72ae"},
        {"server_selection", "f0f0f0"},     {"strong_medium_blue", "358dcf"},
        {"fz_average_back", "e4f3e6"},      {"fz_chart_back", "ffffff"},
        {"fz_compare_set", "96c27b"},       {"text_blue", "0c72ae"},
        {"unselected_button_blue", "2d8fc8"}, {"wifi_health_average", "ffd24d"},
        {"wifi_health_good", "73ff73"},     {"wifi_health_poor", "ff7373"},
        {"wifi_health_working", "2769c0"},
        {"fz_report_text", "333333"},
    };
    for (const auto &[key, hex] : table)
        QTest::newRow(key) << QString::fromLatin1(key) << QString::fromLatin1(hex);
    QTest::newRow("unknown: empty key") << "" << "";
    QTest::newRow("unknown: keys are case-sensitive") << "FZ_CHART_BACK" << "";
    QTest::newRow("unknown: trailing blank") << "fz_chart_back " << "";
    QTest::newRow("unknown: a hex text is not a key") << "3593DA" << "";
}

void tst_BrightmereColor::namedColors()
{
    QFETCH(QString, key);
    QFETCH(QString, hex);
    LogCapture log;
    const QColor color = Color::named(key);
    QCOMPARE(Color::namedColorKeys().size(), 22);
    QCOMPARE(Color::namedColorKeys().contains(key), !hex.isEmpty());
    if (hex.isEmpty()) {
        QVERIFY(!color.isValid());
        QCOMPARE(colorLogLines(log), 1);
        QVERIFY(log.contains(QLatin1Char('\'') + key + QLatin1Char('\'')));
        return;
    }
    QCOMPARE(color, rgb(hex.toUInt(nullptr, 16)));
    QCOMPARE(color.alpha(), 255);
    QCOMPARE(Color::colorToString(color), hex);
    QCOMPARE(colorLogLines(log), 0);
}

void tst_BrightmereColor::hexTexts_data()
{
    // colorFromHex reads exactly six digits pair by pair; colorWithHexString
    // scans a number.
    QTest::addColumn<bool>("scanned");
    QTest::addColumn<QString>("text");
    QTest::addColumn<bool>("valid");
    QTest::addColumn<quint32>("expected");
    QTest::addColumn<bool>("logged");
    QTest::newRow("six digits, upper case") << false << "3593DA" << true << 0x3593DAu << false;
    QTest::newRow("six: empty is black") << false << "" << true << 0u << true;
    QTest::newRow("six: one pair") << false << "35" << true << 0x350000u << true;
    QTest::newRow("six: a bad pair stops the reading") << false << "35zzDA" << true << 0x350000u << true;
    QTest::newRow("six: hash in front") << false << "#3593DA" << true << 0u << true;
    QTest::newRow("six: digits after six ignored") << false << "3593DA77" << true << 0x3593DAu << true;
    QTest::newRow("scan: six digits") << true << "23ACA3" << true << 0x23ACA3u << false;
    QTest::newRow("scan: 0x prefix") << true << "0x23ACA3" << true << 0x23ACA3u << false;
    QTest::newRow("scan: 0X prefix, lower case") << true << "0X23aca3" << true << 0x23ACA3u << false;
    QTest::newRow("scan: leading blanks") << true << " \t\n23aca3" << true << 0x23ACA3u << false;
    QTest::newRow("scan: stops at a non-hex character") << true << "23ACA3zz" << true << 0x23ACA3u << false;
    QTest::newRow("scan: short number is blue") << true << "FF" << true << 0x0000FFu << false;
    QTest::newRow("scan: 0x alone is the number 0") << true << "0x" << true << 0u << false;
    QTest::newRow("scan: 0x then no digit is 0") << true << "0xzz" << true << 0u << false;
    QTest::newRow("scan: eight digits, top byte ignored") << true << "FF23ACA3" << true << 0x23ACA3u << false;
    QTest::newRow("scan: leading zeros do not overflow") << true << "000000000023ACA3" << true << 0x23ACA3u
                                                         << false;
    QTest::newRow("scan: beyond 32 bits saturates") << true << "123ACA3FF" << true << 0xFFFFFFu << true;
    QTest::newRow("scan: zz") << true << "zz" << false << 0u << true;
    QTest::newRow("scan: empty") << true << "" << false << 0u << true;
    QTest::newRow("scan: hash in front") << true << "#23ACA3" << false << 0u << true;
}

void tst_BrightmereColor::hexTexts()
{
    QFETCH(bool, scanned);
    QFETCH(QString, text);
    QFETCH(bool, valid);
    QFETCH(quint32, expected);
    QFETCH(bool, logged);
    LogCapture log;
    const QColor color = scanned ? Color::colorWithHexString(text) : Color::colorFromHex(text);
    QCOMPARE(color.isValid(), valid);
    if (valid) {
        QCOMPARE(color, rgb(expected));
        QCOMPARE(color.alpha(), 255);
    }
    QCOMPARE(colorLogLines(log), logged ? 1 : 0);
}

void tst_BrightmereColor::componentsAreCheckedAndScaled_data()
{
    QTest::addColumn<uint>("red");
    QTest::addColumn<uint>("green");
    QTest::addColumn<uint>("blue");
    QTest::addColumn<QVariant>("alpha"); // none: the three-component form
    QTest::addColumn<quint32>("expected");
    QTest::addColumn<double>("expectedAlpha");
    QTest::addColumn<bool>("logged");
    const float nan = std::numeric_limits<float>::quiet_NaN();
    QTest::newRow("three components") << 53u << 147u << 218u << QVariant() << 0x3593DAu << 1.0 << false;
    QTest::newRow("component above 255") << 256u << 0u << 1000u << QVariant() << 0xFF00FFu << 1.0 << true;
    QTest::newRow("alpha below 0") << 0u << 0u << 0u << QVariant(-0.5f) << 0u << 0.0 << true;
    QTest::newRow("alpha not a number") << 0u << 0u << 0u << QVariant(nan) << 0u << 1.0 << true;
}

void tst_BrightmereColor::componentsAreCheckedAndScaled()
{
    QFETCH(uint, red);
    QFETCH(uint, green);
    QFETCH(uint, blue);
    QFETCH(QVariant, alpha);
    QFETCH(quint32, expected);
    QFETCH(double, expectedAlpha);
    QFETCH(bool, logged);
    LogCapture log;
    const QColor color = alpha.isValid() ? Color::colorWithR(red, green, blue, alpha.toFloat())
                                         : Color::colorWithR(red, green, blue);
    QCOMPARE(color.spec(), QColor::Rgb);
    QCOMPARE(color.rgb() & 0xFFFFFFu, expected);
    QVERIFY2(std::abs(color.alphaF() - expectedAlpha) < 1e-4, qPrintable(QString::number(color.alphaF())));
    QCOMPARE(colorLogLines(log) > 0, logged);
}

void tst_BrightmereColor::colorToStringTruncates_data()
{
    QTest::addColumn<QColor>("color");
    QTest::addColumn<QString>("text");
    const QColor blue = rgb(0x3593DA);
    QTest::newRow("from six digits") << Color::colorFromHex("3593DA") << "3593da";
    QTest::newRow("0.999 gives fe, not ff") << QColor::fromRgbF(0.999f, 0.999f, 0.999f) << "fefefe";
    QTest::newRow("0.5 gives 7f, not 80") << QColor::fromRgbF(0.5f, 0.5f, 0.5f) << "7f7f7f";
    QTest::newRow("alpha dropped") << QColor(1, 2, 3, 4) << "010203";
    QTest::newRow("held in HSV") << blue.toHsv() << "3593da";
    QTest::newRow("held in HSL") << blue.toHsl() << "3593da";
    QTest::newRow("extended RGB beyond 0-1 is clamped") << QColor::fromRgbF(1.5f, -0.5f, 0.0f) << "ff0000";
    QTest::newRow("invalid colour has no text") << QColor() << "";
}

void tst_BrightmereColor::colorToStringTruncates()
{
    QFETCH(QColor, color);
    QFETCH(QString, text);
    QCOMPARE(Color::colorToString(color), text);
}

void tst_BrightmereColor::everyByteSurvivesTheRoundTrip()
{
    for (uint v = 0; v < 256; ++v) {
        const QString text = hexText(v, 255 - v, v);
        QCOMPARE(Color::colorToString(Color::colorWithR(v, 255 - v, v)), text);
        QCOMPARE(Color::colorToString(Color::colorWithR(v, 255 - v, v).toHsv()), text);
        QCOMPARE(Color::colorToString(Color::colorFromHex(text)), text);
        QCOMPARE(Color::colorToString(Color::colorWithRGBHex(0xA5000000u | v << 16 | (255 - v) << 8 | v)), text);
    }
}

void tst_BrightmereColor::equalityAcrossColourModels_data()
{
    QTest::addColumn<QColor>("a");
    QTest::addColumn<QColor>("b");
    QTest::addColumn<bool>("equal");
    const QColor blue = rgb(0x3593DA);
    QTest::newRow("white grey in HSV, RGB white") << QColor::fromHsvF(0, 0, 1) << QColor::fromRgbF(1, 1, 1) << true;
    QTest::newRow("grey in CMYK, RGB grey") << QColor::fromCmyk(0, 0, 0, 128) << QColor(127, 127, 127) << true;
    QTest::newRow("hue in HSV, RGB") << blue.toHsv() << blue << true;
    QTest::newRow("one 8-bit step apart") << blue << rgb(0x3593DB) << false;
    QTest::newRow("alpha differs") << blue << QColor(0x35, 0x93, 0xDA, 254) << false;
    QTest::newRow("extended beyond white") << QColor::fromRgbF(1.5f, 1, 1) << QColor(Qt::white) << false;
    QTest::newRow("two invalid colours") << QColor() << QColor() << false;
}

void tst_BrightmereColor::equalityAcrossColourModels()
{
    QFETCH(QColor, a);
    QFETCH(QColor, b);
    QFETCH(bool, equal);
    QCOMPARE(Color::isEqualToColor(a, b), equal);
    QCOMPARE(Color::isEqualToColor(b, a), equal);
}

QTEST_MAIN(tst_BrightmereColor)
#include "tst_BrightmereColor.moc"
