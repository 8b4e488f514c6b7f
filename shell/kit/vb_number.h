#pragma once

#include <cstdint>

#include <QString>
#include <QStringView>

// Numbers in text as the original program's runtime read and wrote them on
// a Turkish Windows, independent of the locale of the machine we run on.

namespace kit {

// The runtime's Val: the number at the start of a text, with "." as the
// decimal point whatever the locale.
// - Blanks, tabs, carriage returns and line feeds are skipped anywhere, also
//   inside the number: " 1 2 3" is 123.
// - Decimal: an optional "+" or "-", digits with at most one ".", then an
//   optional exponent: E, e, D or d, one optional sign, digits.
// - "&H" and "&O" (either case) read hexadecimal and octal digits. As with
//   the runtime's literals, up to four hexadecimal digits are a 16-bit
//   Integer and up to eight a 32-bit Long, so "&HFFFF" is -1 and "&H8000"
//   is -32768, while "&H10000" is 65536; octal alike by value (up to 0xFFFF
//   an Integer). "&" followed by anything else is 0.
// - Reading stops at the first character that does not fit; "", "abc",
//   "-" and "1,5" (that is 1) need no special case.
// Throws std::overflow_error (the runtime's error 6, "Overflow") when the
// number does not fit a Double, or a hexadecimal or octal number more than
// 32 bits. Type suffixes such as "%" and "&" after a number are not
// interpreted; the reading simply stops there.
double Val(QStringView text);

// The runtime's IsNumeric for a text, on a Turkish Windows: the runtime
// hands the text to the system's number parser with the user's locale, which
// store::readNumber follows (decimal separator ",", thousands separator ".",
// currency symbol "TL" or "₺"). "1,5", "1.000", "(5)" and "&HFF" are
// numbers; "", "12a", "1 2" and "1e400" are not.
bool IsNumeric(QStringView text);

// A Double written as the runtime writes it when it joins a number to a
// text on a Turkish Windows, as its CStr does: see store::numberText. So
// 1.5 gives "1,5", 12345678901 gives "12345678901" and 1E+15 "1E+15".
QString plainNumber(double value);

// The runtime's CLng: the nearest whole number, a half going to the even
// one (2.5 is 2, 3.5 is 4). Throws std::overflow_error (error 6,
// "Overflow") for a number beyond a Long's -2,147,483,648 to 2,147,483,647.
std::int32_t CLng(double value);

// The runtime's Hex of a number: CLng of it in hexadecimal digits, upper
// case, no leading zeros; a negative number as its 32 bits, so -1 is
// "FFFFFFFF".
QString Hex(double value);

// The sum of two Integers, as the runtime adds 16-bit numbers: a sum beyond
// -32,768 to 32,767 throws std::overflow_error (error 6, "Overflow").
qint16 addIntegers(qint16 left, qint16 right);

// The runtime's CInt of a text on a Turkish Windows: the text read as the
// system reads numbers (see store::readNumber), rounded halves to even, so
// "2,5" is 2 and "3,5" is 4. Throws store::DataError ("Type mismatch") for
// a text that is no number, std::overflow_error beyond -32,768 to 32,767.
qint16 CInt(QStringView text);

}  // namespace kit
