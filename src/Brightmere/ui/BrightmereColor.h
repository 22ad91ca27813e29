#pragma once

#include <Brightmere/platform/views/ColorContrast.h>

#include <QColor>
#include <QString>
#include <QStringList>
#include <QtGlobal>

class QRandomGenerator;

// The kit's colours. Screens name a colour by a lower-case key
// ("fz_chart_back") or by a hexadecimal text ("3498db"), never by a toolkit
// constant, so the whole look is changed in this one table.
//
// A colour that cannot be made is an invalid QColor (QColor::isValid() is
// false) with a log line; clear is a valid colour with alpha 0.
namespace Brightmere::Color {

// For clients that dim a colour; the kit itself does not read it.
inline constexpr double kAlpha = 0.25;

// The colour of the key, opaque; an invalid colour (logged) when the table
// has no such key. Keys are case-sensitive.
QColor named(const QString &key);

// Every key of the table, in the table's order.
QStringList namedColorKeys();

// Six hexadecimal digits, two each for red, green and blue, of either case;
// alpha 1. Reading goes pair by pair and stops at the first pair that is not
// two hexadecimal digits: the components not read are 0. Any text other than
// exactly six digits is logged.
QColor colorFromHex(const QString &text);

// The hexadecimal number at the start of the text, read as colorWithRGBHex
// reads it. White space before it is skipped and a "0x" or "0X" in front of
// its digits is allowed; reading stops at the first character that is not a
// hexadecimal digit. A number beyond 32 bits saturates to 0xffffffff (white).
// A text that does not start with a number gives an invalid colour (logged).
// "0x" with no digit after it reads as the number 0 followed by "x".
QColor colorWithHexString(const QString &text);

// Red from bits 16-23, green from 8-15, blue from 0-7, alpha 1; the top
// byte is ignored.
QColor colorWithRGBHex(quint32 hex);

// Components 0-255 (above 255 is logged and taken as 255); alpha 0-1 (outside
// is logged and clamped, not-a-number is taken as 1).
QColor colorWithR(uint red, uint green, uint blue);
QColor colorWithR(uint red, uint green, uint blue, float alpha);

// "rrggbb" in lower case, each component times 255 truncated toward zero
// (0.999 gives "fe"); alpha is dropped. A component short of a whole value
// only by the rounding of a conversion between colour models (see
// isEqualToColor) counts as that value, so a colour held in HSV has the text
// of the same colour in RGB. An invalid colour gives an empty text (logged).
QString colorToString(const QColor &color);

// Red, green and blue each drawn in that order from the generator (the
// process-wide one when null), modulo 255: 255 never occurs. Alpha 1.
QColor randomColor(QRandomGenerator *generator = nullptr);

// The semantic colours by slot: 0 label (black), 1 secondary label
// (60, 60, 67 at alpha 0.6), 2 background (white), 3 grey 5 (229, 229, 234),
// 4 grey 6 (242, 242, 247), 5 tertiary label (60, 60, 67 at alpha 0.3). The
// values are fixed: this platform has no system palette to follow. Every
// other slot is clear.
QColor system(int index);

// Whether the two name the same colour, whatever model each is held in (a
// grey or a hue in HSV, HSL or CMYK equals the same colour in RGB). The
// conversions between models round, so components that differ by less than
// a sixteenth of one 8-bit step count as equal. An invalid colour equals
// nothing, not even another invalid one.
bool isEqualToColor(const QColor &color, const QColor &other);

// For a colour the kit's design fixes: the colour as it is, or withContrast
// while the host asks for high contrast (BMSDKUISettings::highContrast).
QColor fixedColor(const QColor &color, const QColor &background, double ratio = kTextContrast);

} // namespace Brightmere::Color
